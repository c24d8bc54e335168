#!/usr/bin/env bash
# Runs clang-tidy over every source, as the build for Linux compiles it or, when only Windows does, as
# the build for Windows does; a configured build is enough. A good verdict is kept outside the clone
# until something that it depends on changes (tools/tidy_inputs.py). A line for each source that is
# judged here, and the counts. Usage: check-tidy.sh [root of a tree]
set -uo pipefail

tools=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
cd -P "${1-$tools/..}" || exit 1
cache=${COFFRELUNE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/coffrelune}/tidy
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export work

# The build of the checks or that of daily work, whichever was configured last.
linux=build/linux-asan
[[ ! build/linux-debug/compile_commands.json -nt $linux/compile_commands.json ]] ||
    linux=build/linux-debug
for build in "$linux" build/windows-release; do
    [[ -f $build/compile_commands.json ]] || {
        echo "Il faut d'abord configurer ${build##*/}." >&2
        exit 1
    }
done

common=(-Wno-unknown-warning-option -Wno-sign-conversion)
# clang does not know where Debian keeps the C++ library of the compiler for Windows.
library=$(x86_64-w64-mingw32-g++-posix -print-file-name=include/c++)
for_windows=(--target=x86_64-w64-mingw32)
for folder in "" /x86_64-w64-mingw32 /backward; do
    for_windows+=("-isystem$library$folder")
done
"$tools/tidy_inputs.py" database "$work/linux" "$linux/compile_commands.json" "${common[@]}" &&
    "$tools/tidy_inputs.py" database "$work/windows" build/windows-release/compile_commands.json \
        "--except=$work/linux" "${common[@]}" "${for_windows[@]}" || exit 1

# Checks look at whole sources with every header that these read, and throw away what they find in
# those of the system. This keeps them from looking there at all, where a test takes most of its time.
plugin=$(
    source=$tools/own_code_only.cpp
    config=$(command -v llvm-config-14) && [[ -f $("$config" --includedir)/clang/AST/AST.h ]] || exit
    name=$cache/../own-code-$({ cat "$source" && dpkg-query -W libclang-14-dev; } 2>/dev/null |
        sha256sum | cut -c 1-16).so
    if [[ ! -f $name ]]; then
        mkdir -p "${name%/*}" && read -ra flags <<<"$("$config" --cppflags)" || exit
        c++ -std=c++17 -O1 -shared -fPIC -fno-rtti "${flags[@]}" "$source" -o "$work/plugin.so" &&
            mv "$work/plugin.so" "$name" || exit
    fi
    echo "$name"
)
lint=(clang-tidy-14 --quiet)
if [[ -n $plugin ]]; then
    lint+=("--load=$plugin")
else
    echo "Sans libclang-14-dev, clang-tidy prend plus de temps."
fi
export lint_command="${lint[*]@Q}"

# Beside the files that are read: the linter itself and what it is asked. Its packages name the
# libraries and headers that come with it.
seed=$(
    echo 2 # another number makes every verdict anew
    clang-tidy-14 --version
    sha256sum <"$(readlink -f "$(command -v clang-tidy-14)")"
    dpkg-query -W clang-tidy-14 libclang-cpp14 libllvm14 libclang-common-14-dev 2>/dev/null
    find . -name .clang-tidy -not -path './build/*' -not -path './.git/*' | sort |
        xargs -r -d '\n' sha256sum
)
# "KEY PATH" for each source of a database.
keys() { "$tools/tidy_inputs.py" keys "$work/$1" "$seed"; }

find src tests -name '*.cpp' | sort >"$work/files"
keys linux >"$work/linux.keys" && keys windows >"$work/windows.keys" || exit 1
while read -r file; do
    place=windows
    ! grep -qF "/$file\"" "$work/linux/compile_commands.json" || place=linux
    key=$(awk -v file="$file" 'substr($0, 66) == file { print $1 }' "$work/$place.keys")
    if [[ -n $key && -f $cache/$key ]]; then
        touch "$cache/$key"
        echo "$file" >>"$work/known"
    else
        echo "$place $file" >>"$work/unknown"
        [[ -z $key ]] || echo "$key $file" >>"$work/wanted"
    fi
done <"$work/files"
touch "$work"/{known,unknown,wanted,verdicts}

lint() { eval "$lint_command" '"$@"'; }
tidy() {
    local place=$1 file=$2 log
    log=$(mktemp -p "$work")
    if lint -p "$work/$place" "$file" >"$log" 2>&1; then
        echo "ok clang-tidy $file" | tee -a "$work/verdicts"
    else
        # The suppressed-warnings summary tells nothing about this file.
        grep -v -e '^[0-9]* warnings\? \(generated\|treated\)' -e '^Suppressed ' -e '^Use -header' "$log"
        echo "FAUTE clang-tidy $file" | tee -a "$work/verdicts"
    fi
}
# Judges sources of one folder as a single one: most of the time goes into the headers, which they
# share. Those in which that finds anything, since they do not compile together with the others or
# are bad, are judged apart, and in the end each alone: only that says that one is bad.
judge() {
    local place=$1 batch name blamed others
    shift
    if (($# == 1)); then
        tidy "$place" "$1"
        return
    fi
    batch=$(mktemp -d -p "$work")
    if name=$("$tools/tidy_inputs.py" batch "$work/$place" "$batch" "$@") &&
        lint -p "$batch" --vfsoverlay="$batch/overlay.yaml" "$name" >"$batch/said" 2>&1; then
        printf 'ok clang-tidy %s\n' "$@" | tee -a "$work/verdicts"
        return
    fi
    mapfile -t blamed < <("$tools/tidy_inputs.py" blamed "$batch" <"$batch/said" 2>/dev/null)
    mapfile -t others < <(printf '%s\n' "$@" | grep -vxF -f <(printf '%s\n' "${blamed[@]}"))
    if ((${#blamed[@]} > 0 && ${#blamed[@]} < $#)); then
        judge "$place" "${others[@]}"
        judge "$place" "${blamed[@]}"
    else
        judge "$place" "${@:1:$#/2}"
        judge "$place" "${@:$#/2+1}"
    fi
}
export tools
export -f judge lint tidy
# What the program itself takes is the analysis of its functions, which no company makes shorter.
for place in linux windows; do
    for folder in src tests; do
        size=1
        [[ $folder == src ]] || size=24
        sed -n "s,^$place \($folder/\),\1,p" "$work/unknown" |
            "$tools/tidy_inputs.py" groups "$work/$place" "$size" | sed "s/^/$place\t/"
    done
done >"$work/groups"
xargs -a "$work/groups" -d '\n' -r -P "$(nproc)" -I '{}' \
    bash -c 'IFS=$'"'\\t'"' read -ra words <<<"$1" && judge "${words[@]}"' _ '{}'

# A file that was changed meanwhile may have been judged in either state: that verdict is not kept.
if [[ -s $work/wanted ]] && mkdir -p "$cache"; then
    sort -u <(keys linux) <(keys windows) >"$work/keys.now"
    sed -n 's/^ok clang-tidy //p' "$work/verdicts" | sort >"$work/good"
    sort "$work/wanted" | comm -12 - "$work/keys.now" | while read -r key file; do
        grep -qxF "$file" "$work/good" && touch "$cache/$key"
    done
    find "$cache" -type f -mtime +60 -delete
fi

known=$(wc -l <"$work/known")
good=$((known + $(grep -c '^ok ' "$work/verdicts")))
bad=$(grep -c '^FAUTE ' "$work/verdicts")
echo "clang-tidy : $known sources sur $(wc -l <"$work/files") étaient déjà jugées bonnes"
echo "$good réussis, $bad échoués, 0 laissés"
((bad == 0 && good == $(wc -l <"$work/files")))
