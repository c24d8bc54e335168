#!/usr/bin/env bash
# Configures and builds one preset. Silent when all goes well; on a failure the whole output of the
# compiler goes to stderr. Usage: build.sh PRESET [option for the configuration]...
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
preset=$1
shift
directory=$root/build/$preset
mkdir -p "$directory"

# Two builds in one directory would spoil each other: the second one waits.
exec 9>"$directory/.lock"
if ! flock -n 9; then
    echo "Une autre construction est en cours, attente..." >&2
    flock 9
fi

# What another clone of this machine has compiled need not be compiled again. Paths count from this
# clone, wherever it lies. What the caller has set for himself goes first.
if command -v ccache >/dev/null; then
    cache=${COFFRELUNE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/coffrelune}
    export CCACHE_DIR=${CCACHE_DIR-$cache/ccache} CCACHE_BASEDIR=${CCACHE_BASEDIR-$root}
    export CCACHE_NOHASHDIR=${CCACHE_NOHASHDIR-1}
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
cd "$root"
if [[ ! -f $directory/build.ninja || CMakePresets.json -nt $directory/build.ninja ]]; then
    if ! cmake --preset "$preset" "$@" >"$log" 2>&1 9>&-; then
        cat "$log" >&2
        echo "La configuration de $preset a échoué." >&2
        exit 1
    fi
fi
# Passes on what ninja says, and tells the user once something is really built: to look through the
# folders of the tests for new ones comes before every build.
announce() {
    local line told=
    while IFS= read -r line; do
        printf '%s\n' "$line"
        [[ -z $told && $line == \[* && $line != *"Re-checking globbed directories"* ]] || continue
        echo "Construction de $preset..." >&2
        told=1
    done
}
if ! ninja -C "$directory" -j "$(nproc)" 2>&1 9>&- | announce >"$log"; then
    # A line that begins with "[12/80]" only tells what was built.
    grep -v '^\[[0-9]*/[0-9]*\] \(Building\|Linking\|Generating\)' "$log" >&2 || cat "$log" >&2
    echo "La construction de $preset a échoué." >&2
    exit 1
fi
