#!/usr/bin/env bash
# Runs clang-tidy over every source, as the debug build compiles it or, when only Windows does, as
# the build for Windows does. A line and a count for each.
set -uo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
database=build/linux-debug
windows=build/windows-release
for build in "$database" "$windows"; do
    [[ -f $build/compile_commands.json ]] || {
        echo "Il faut d'abord construire ${build##*/}." >&2
        exit 1
    }
done
# clang does not know where Debian keeps the C++ library of the compiler for Windows.
library=$(x86_64-w64-mingw32-g++-posix -print-file-name=include/c++)
windows_flags="--extra-arg=--target=x86_64-w64-mingw32"
for folder in "" /x86_64-w64-mingw32 /backward; do
    windows_flags+=" --extra-arg-before=-isystem$library$folder"
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The largest first, so that no long one is left to run alone at the end.
find src tests bench -name '*.cpp' -printf '%s %p\n' | sort -rn | cut -d' ' -f2- >"$work/files"
export database windows windows_flags work
tidy() {
    local log place=$database flags=''
    log=$(mktemp -p "$work")
    if ! grep -qF "/$1\"" "$database/compile_commands.json"; then
        place=$windows
        flags=$windows_flags
    fi
    if clang-tidy-14 -p "$place" $flags --quiet --extra-arg=-Wno-unknown-warning-option \
        --extra-arg=-Wno-sign-conversion "$1" >"$log" 2>&1; then
        echo "ok clang-tidy $1" | tee -a "$work/verdicts"
    else
        # The suppressed-warnings summary tells nothing about this file.
        grep -v -e '^[0-9]* warnings\? \(generated\|treated\)' -e '^Suppressed ' -e '^Use -header' "$log"
        echo "FAUTE clang-tidy $1" | tee -a "$work/verdicts"
    fi
}
export -f tidy
xargs -a "$work/files" -d '\n' -P "$(nproc)" -I '{}' bash -c 'tidy "$1"' _ '{}'

good=$(grep -c '^ok ' "$work/verdicts")
bad=$(grep -c '^FAUTE ' "$work/verdicts")
echo "$good réussis, $bad échoués, 0 laissés"
((bad == 0 && good == $(wc -l <"$work/files")))
