#!/usr/bin/env bash
# Proves that every check of check-tree.sh can fail: a small tree that passes, then one fault at a
# time, each of which exactly one check must name.
set -uo pipefail

tool=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/check-tree.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
passed=0
failed=0

tell() {
    if [[ $1 == ok ]]; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
    echo "$1 $2"
}

sound_tree() {
    local file
    rm -rf "${tree:?}"/*
    mkdir -p "$tree"/{src/{engine,platform/{posix,win32},console},tests/engine}
    mkdir -p "$tree"/build/{linux-debug,windows-release}
    printf '#include "platform/status.h"\n' >"$tree/src/engine/walk.cpp"
    printf '#pragma once\n' >"$tree/src/platform/status.h"
    printf '#include <unistd.h>\n' >"$tree/src/platform/posix/files.cpp"
    printf '#include <CLI/CLI.hpp>\n#include "engine/walk.h"\n' >"$tree/src/console/main.cpp"
    printf '#include "engine/walk.h"\n' >"$tree/tests/engine/walk_test.cpp"
    {
        echo '['
        for file in src/engine/walk.cpp src/platform/posix/files.cpp src/console/main.cpp \
            tests/engine/walk_test.cpp; do
            printf '{ "file": "%s" },\n' "$tree/$file"
        done | sed '$s/,$//'
        echo ']'
    } >"$tree/build/linux-debug/compile_commands.json"
    printf '#include <windows.h>\n' >"$tree/src/platform/win32/files.cpp"
    printf '[\n{ "file": "%s" }\n]\n' "$tree/src/platform/win32/files.cpp" \
        >"$tree/build/windows-release/compile_commands.json"
}

# The check that must fail, then the file that gets the faulty line, then the line.
fault() {
    local name=$1 file=$2 text=$3 output
    sound_tree
    mkdir -p "$(dirname "$tree/$file")"
    printf "$text" >>"$tree/$file"
    output=$("$tool" "$tree")
    local status=$?
    if ((status != 0)) && [[ $(grep '^FAUTE' <<<"$output") == "FAUTE $name" ]]; then
        tell ok "$name : remarque $file"
    else
        grep -v '^ok' <<<"$output" | sed 's/^/    /'
        tell FAUTE "$name : ne remarque pas $file, ou pas lui seul"
    fi
}

sound_tree
if output=$("$tool" "$tree") && ! grep -q '^FAUTE' <<<"$output"; then
    tell ok "un arbre sain passe"
else
    sed 's/^/    /' <<<"$output"
    tell FAUTE "un arbre sain passe"
fi

built="est dans la construction"
fault "chaque *_test.cpp $built" tests/engine/forgotten_test.cpp '#include "engine/walk.h"\n'
fault "chaque source $built" src/engine/forgotten.cpp '#include "platform/status.h"\n'
fault "chaque source de Windows est dans sa construction" src/platform/win32/forgotten.cpp '#include <windows.h>\n'
headers="restent dans src/platform/posix et dans les posix_*.cpp des vues"
fault "les en-têtes du système $headers" src/engine/walk.cpp '#include <sys/stat.h>\n'
fault "les en-têtes du système $headers" src/platform/status.h '#include <dirent.h>\n'
fault "les en-têtes du système $headers" src/console/main.cpp '# include <unistd.h>\n'
fault "les en-têtes du système $headers" src/views/terminal/streams.h '#include <poll.h>\n'
headers="restent dans src/platform/win32 et dans les sources de Windows des vues"
fault "les en-têtes de Windows $headers" src/platform/win32/files.h '#include <windows.h>\n'
fault "les en-têtes de Windows $headers" src/engine/walk.cpp '#include <windows.h>\n'
fault "les en-têtes de Windows $headers" src/views/wx/desktop.h '#include <windows.h>\n'
fault "les en-têtes des fenêtres restent dans src/views/wx" src/engine/walk.cpp '#include <wx/wx.h>\n'
fault "arguments et JSON restent dans src/console" src/engine/walk.cpp '#include <nlohmann/json.hpp>\n'
files="hors de src/platform, rien n'ouvre un fichier ni ne lance un programme"
fault "$files" src/console/main.cpp '#include <fstream>\n'
fault "$files" src/engine/walk.cpp 'auto f = std::fopen("a", "r");\n'
fault "$files" src/engine/walk.cpp 'int status = std::system("ls");\n'
fault "hors de src/platform, rien ne dépend du système à la compilation" src/engine/walk.cpp '#ifdef _WIN32\n#endif\n'
layers="aucun dossier n'inclut un dossier qui est au-dessus de lui"
fault "$layers" src/engine/walk.cpp '#include "operation/copie.h"\n'
fault "$layers" src/platform/status.h '#include "system/text.h"\n'
fault "$layers" src/engine/walk.cpp '#include "platform/posix/files.h"\n'
fault "$layers" src/engine/walk.cpp '#include "views/wx/views.h"\n'
fault "$layers" src/engine/walk.cpp '#include "walk.h"\n'
fault "$layers" src/attic/walk.h '#include "engine/walk.h"\n'
pictures="chaque image que le code nomme est dessinée"
fault "$pictures" src/engine/walk.cpp 'image.setImage("nulle-part");\n'
fault "$pictures" src/mainwindow/toolbar.h 'TB.add({"Rien", "Rien", ""});\n'
fault "en-têtes de moins de 150 lignes, sources de moins de 400" src/engine/walk.h '\n%.0s'"$(printf '//\\n%.0s' {1..150})"
fault "aucun renvoi numéroté à un document que le dépôt ne contient pas" src/engine/walk.cpp "// see Pa""rt 2.1\n"
fault "aucun chemin de la machine d'un développeur" src/engine/walk.cpp "// $tree/src\n"
fault "aucune note de travail inachevé" src/engine/walk.cpp "// TO""DO\n"
fault "ni blancs en fin de ligne, ni dernière ligne sans fin" src/engine/walk.cpp 'int a; \n'
fault "ni blancs en fin de ligne, ni dernière ligne sans fin" src/engine/walk.cpp 'int a;'

echo "$passed réussis, $failed échoués, 0 laissés"
((failed == 0))
