#!/usr/bin/env bash
# Takes a picture of every window of the real program into docs/captures: in the usual theme, in the
# dark one ("sombre-..."), at double density ("double-...") and with text at 150 % ("texte-150-...").
# It has to be root, for two small volumes that nobody else sees.
# Usage: captures.sh [directory of the programs]
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
programs=${1-$root/build/linux-release/bin}

if [[ ${COFFRELUNE_VOLUMES-} != mounted ]]; then
    COFFRELUNE_VOLUMES=mounted exec unshare --mount --propagation private "$0" "$programs"
fi

# What this machine has mounted is no part of the pictures. Volumes below /run/media have letters;
# /run itself has none.
findmnt -rno TARGET | grep -E '^/(mnt|media|run/media)/' | while read -r other; do
    umount -l "$other" || true
done
mount -t tmpfs empty /run
for volume in Maison Coffre; do
    mkdir -p "/run/media/$volume"
    mount -t tmpfs -o size=64m "$volume" "/run/media/$volume"
done

take() { /usr/bin/python3 "$root/tests/e2e/window_captures.py" --programs "$programs" --disks /run/media "$@"; }

captures=$root/docs/captures
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Those of Windows are taken by tests/windows/windows_captures.py.
find "$captures" -name '*.png' ! -name 'windows-*' -delete
take "$captures"
GTK_THEME=Adwaita:dark take "$work/sombre"
GDK_SCALE=2 take "$work/double"
GDK_DPI_SCALE=1.5 take "$work/texte-150"
for variant in sombre double texte-150; do
    for picture in principale comparaison operation configurations message; do
        mv "$work/$variant/$picture.png" "$captures/$variant-$picture.png"
    done
done
