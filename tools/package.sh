#!/usr/bin/env bash
# Builds the packages into build/paquets, with their SHA-256. Usage: package.sh [linux] [windows]
# Linux: a .deb; Windows: a portable archive and the installer for one user. Both without an argument.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root"
packages=$root/build/paquets
# All that a package holds bears the time of the last change, so that it is the same each time.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
mkdir -p "$packages"

linux() {
    tools/install-dependencies.sh paquets
    tools/build.sh linux-package
    (cd build/linux-package && rm -rf packages && umask 022 && cpack -G DEB >cpack.log) ||
        { cat build/linux-package/cpack.log >&2 && return 1; }
    cp build/linux-package/packages/*.deb "$packages/"
}

windows() {
    tools/install-dependencies.sh windows
    tools/install-dependencies.sh paquets
    tools/build-wxwidgets-windows.sh
    tools/build.sh windows-package
    local programs=$root/build/windows-package
    local version
    version=$(sed -nE 's/^CMAKE_PROJECT_VERSION:STATIC=(.*)/\1/p' "$programs/CMakeCache.txt")
    tools/pack_portable.py "$packages/coffrelune-$version-portable.zip" \
        "$programs"/bin/coffrelune.exe "$programs"/bin/coffrelune-console.exe \
        "$programs"/package/Ok.wav "$programs"/package/Erreur.wav LICENSE "$programs"/bin/aide
    (cd packaging/windows &&
        makensis -V2 -INPUTCHARSET UTF8 "-DVERSION=$version" "-DPROGRAMS=$programs/bin" \
            "-DSOUNDS=$programs/package" "-DTEXTS=$root" \
            "-DOUTPUT=$packages/coffrelune-$version-installation.exe" coffrelune.nsi >&2)
}

(($#)) || set -- linux windows
for system in "$@"; do
    case $system in
        linux) linux ;;
        windows) windows ;;
        *)
            echo "Usage : ${0##*/} [linux] [windows]" >&2
            exit 2
            ;;
    esac
done
cd "$packages"
find . -maxdepth 1 -type f ! -name SHA256SUMS -printf '%P\n' | sort | xargs sha256sum >SHA256SUMS
cat SHA256SUMS
