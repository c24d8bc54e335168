#!/usr/bin/env bash
# Builds every package from what is committed, twice in two places, compares the bytes, and leaves the
# packages with their SHA-256 in build/paquets. Usage: release.sh [linux] [windows]
# The version is that of CMakeLists.txt; CHANGELOG.md must tell what it brings.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root"
version=$(sed -nE 's/^project\(Coffrelune VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
[[ -n $version ]] || { echo "CMakeLists.txt ne dit pas la version." >&2 && exit 1; }
grep -q "^## \[$version\] - " CHANGELOG.md ||
    { echo "CHANGELOG.md ne dit rien de la version $version." >&2 && exit 1; }
[[ -z $(git status --porcelain --untracked-files=no) ]] ||
    { echo "Des changements ne sont pas enregistrés : git commit d'abord." >&2 && exit 1; }

commit=$(git rev-parse HEAD) # of both: somebody may go on working meanwhile
# Of two lengths: a path that got into a package would show.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for place in "$work/une" "$work/une autre construction"; do
    git clone -q --no-hardlinks "$root" "$place"
    git -C "$place" checkout -q "$commit"
    # What the first one has compiled must not be handed to the second.
    CCACHE_DISABLE=1 CMAKE_CXX_COMPILER_LAUNCHER='' "$place/tools/package.sh" "$@" >"$work/journal" ||
        { cat "$work/journal" >&2 && exit 1; }
done
mkdir -p build/paquets
find build/paquets -maxdepth 1 -type f -delete
status=0
for package in "$work"/une/build/paquets/*; do
    name=${package##*/}
    cp "$package" build/paquets/
    if cmp -s "$package" "$work/une autre construction/build/paquets/$name"; then
        echo "ok $name : deux constructions, les mêmes octets"
    else
        echo "FAUTE $name diffère d'une construction à l'autre"
        status=1
    fi
done
cat build/paquets/SHA256SUMS
exit $status
