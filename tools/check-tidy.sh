#!/usr/bin/env bash
# Runs clang-tidy over every source that the debug build compiles, a line and a count for each.
set -uo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
database=build/linux-debug
[[ -f $database/compile_commands.json ]] || {
    echo "Il faut d'abord construire linux-debug." >&2
    exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The largest first, so that no long one is left to run alone at the end.
find src tests bench -name '*.cpp' -printf '%s %p\n' | sort -rn | cut -d' ' -f2- >"$work/files"
export database work
tidy() {
    local log
    log=$(mktemp -p "$work")
    if clang-tidy-14 -p "$database" --quiet --extra-arg=-Wno-unknown-warning-option \
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
