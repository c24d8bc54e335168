#!/usr/bin/env bash
# A first look at Coffrelune for a newcomer: two backups of a small tree, in a temporary directory
# that is removed at the end. Usage: demonstration.sh CONSOLE_PROGRAM
set -euo pipefail

program=$1
place=$(mktemp -d "${TMPDIR:-/tmp}/coffrelune-demonstration.XXXXXX")
trap 'rm -rf "$place"' EXIT
# Settings of its own, so that the demonstration never meets the user's.
export COFFRELUNE_HOME=$place/réglages
source=$place/Mes\ documents
destination=$place/Clé\ USB

title() { printf '\n=== %s\n' "$*"; }

backup() {
    printf '$ coffrelune-console sauvegarder --source "%s" --destination "%s" --ecraser\n\n' \
        "$source" "$destination"
    "$program" sauvegarder --source "$source" --destination "$destination" --ecraser
}

list() { (cd "$destination" && find . -type f -printf '    %TY-%Tm-%Td %TH:%TM %9s octets  %P\n' | sort -k 5); }

echo "Démonstration de Coffrelune, dans le répertoire temporaire"
echo "    $place"

title "1. Des documents à sauvegarder, et une clé USB vide"
mkdir -p "$COFFRELUNE_HOME" "$destination" "$source/Été 2026/Photos de la plage" "$source/À classer"
echo "Tomates, pain, café" >"$source/Liste de courses.txt"
echo "Cher journal, il fait beau." >"$source/Été 2026/Journal.txt"
head -c 300000 /dev/urandom >"$source/Été 2026/Photos de la plage/Mer agitée.jpg"
(cd "$source" && find . -mindepth 1 -printf '    %P\n' | sort)

title "2. Première sauvegarde : tout est copié"
backup

title "3. Le journal change ; deuxième sauvegarde : lui seul est copié"
echo "Cher journal, il pleut." >>"$source/Été 2026/Journal.txt"
backup

title "4. Ce que contient maintenant la destination"
list
diff -r "$source" "$destination/Mes documents"
echo
echo "La copie est identique à l'original."

title "Fin"
rm -rf "$place"
echo "Le répertoire temporaire $place est supprimé."
echo "À vous : ./run sauvegarder --source RÉPERTOIRE --destination AUTRE_DISQUE --ecraser"
echo "L'aide : ./run --help"
