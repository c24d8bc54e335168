#!/usr/bin/env bash
# Draws coffrelune.ico, which the programs and their shortcuts show, from the picture of the program.
# To be run again when that picture changes. Needs rsvg-convert (librsvg2-bin) and convert
# (imagemagick).
set -euo pipefail

here=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
picture=$here/../../assets/icons/programme.svg
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The sizes that Windows asks for, from the title bar at 100 % to the desktop's large icons at 200 %.
sizes=(16 20 24 32 40 48 64 96 256)
for size in "${sizes[@]}"; do
    rsvg-convert --width="$size" --height="$size" "$picture" -o "$work/$size.png"
done
cd "$work"
convert "${sizes[@]/%/.png}" coffrelune.ico
mv "$work/coffrelune.ico" "$here/coffrelune.ico"
echo "$here/coffrelune.ico"
