#!/usr/bin/env bash
# Checks that hold the house together, which no compiler makes: a line for each, "ok ..." or
# "FAUTE ..." after the places concerned, then the counts. Usage: check-tree.sh [root of a tree]
set -uo pipefail
# The last command of a pipe runs in this shell, so that its counts are kept.
shopt -s lastpipe

tools=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
root=${1-$(cd "$tools/.." && pwd)}
cd "$root" || exit 1
# The build of the checks or that of daily work, whichever was configured last.
database=build/linux-asan/compile_commands.json
[[ ! build/linux-debug/compile_commands.json -nt $database ]] ||
    database=build/linux-debug/compile_commands.json
windows_database=build/windows-release/compile_commands.json

passed=0
failed=0
# Reads the offending places from stdin: none is good.
verdict() {
    local places
    places=$(cat)
    if [[ -z $places ]]; then
        echo "ok $1"
        passed=$((passed + 1))
    else
        sed 's/^/    /' <<<"$places"
        echo "FAUTE $1"
        failed=$((failed + 1))
    fi
}

# Lines of the code below the given places that match a pattern.
code() {
    local pattern=$1
    shift
    find "$@" \( -name '*.cpp' -o -name '*.h' \) -print0 2>/dev/null |
        xargs -0 -r grep -nHE -e "$pattern"
}

# ---- what is on the disk is in the build ----------------------------------------------------

not_compiled() {
    if [[ ! -f $1 ]]; then
        echo "$1 est absent"
        return
    fi
    comm -23 <(sort) <("$tools/tidy_inputs.py" sources "$1" | sort)
}
# What only Windows compiles is looked for in its own build, where there is one.
for_windows='^(src/platform|tests/platform|tests/views/terminal)/win32/|/win32_[^/]*\.cpp$|_msw\.cpp$|/main_windows\.cpp$'
find tests -name '*_test.cpp' | grep -vE "$for_windows" | not_compiled "$database" |
    verdict "chaque *_test.cpp est dans la construction"
find src -name '*.cpp' | grep -vE "$for_windows" | not_compiled "$database" |
    verdict "chaque source est dans la construction"
if [[ -f $windows_database ]]; then
    find src tests \( -path 'src/*.cpp' -o -name '*_test.cpp' \) | grep -E "$for_windows" |
        not_compiled "$windows_database" |
        verdict "chaque source de Windows est dans sa construction"
fi

# ---- the system stays behind the platform ---------------------------------------------------

include='^[[:space:]]*#[[:space:]]*include[[:space:]]*'
posix='(unistd|fcntl|dirent|c?signal|poll|termios|pwd|grp|mntent|fstab|langinfo|dlfcn|pthread|spawn|ftw|glob|syslog|sched|sys/[^>]*|linux/[^>]*|netinet/[^>]*|arpa/[^>]*)(\.h)?'

code "$include<$posix>" src | grep -vE '^src/(platform/posix/|views/terminal/posix_[^:/]*\.cpp:)' |
    verdict "les en-têtes du système restent dans src/platform/posix et dans les posix_*.cpp des vues"
code "$include<(windows|winbase|shlobj|shellapi|mmsystem|winreg)[^>]*>" src |
    grep -vE '^src/(platform/win32/[^:]*|platform/native/win32_[^:/]*|views/terminal/win32_[^:/]*|views/wx/[^:/]*_msw)\.cpp:' |
    verdict "les en-têtes de Windows restent dans src/platform/win32 et dans les sources de Windows des vues"
code "$include<wx/" src | grep -vE '^src/views/wx/' |
    verdict "les en-têtes des fenêtres restent dans src/views/wx"
code "$include<(CLI/|nlohmann/|xxhash)" src | grep -vE '^src/console/' |
    verdict "arguments et JSON restent dans src/console"
{
    code "$include<(fstream|filesystem)>" src
    code '(^|[^[:alnum:]_.>])(std::)?(fopen|freopen|fdopen|tmpfile|popen)[[:space:]]*\(|::system[[:space:]]*\(' src
} | grep -vE '^src/platform/(posix|win32)/' |
    verdict "hors de src/platform, rien n'ouvre un fichier ni ne lance un programme"
code '^[[:space:]]*#[[:space:]]*(if|ifdef|ifndef|elif).*(_WIN32|_WIN64|WIN32|__linux__|__unix__|__APPLE__|_MSC_VER|__MINGW|__GNUC__)' src |
    grep -vE '^src/platform/' |
    verdict "hors de src/platform, rien ne dépend du système à la compilation"

# ---- arrows go down ------------------------------------------------------------------------

# A line each: a folder, then what it may include besides itself. Implementations of the platform
# are named by those who put a program together, and by nobody else.
layers='
platform
platform/posix       platform
platform/posix/desktop platform platform/posix
platform/win32       platform
platform/win32/desktop platform platform/win32
platform/memory      platform
platform/native      platform platform/posix platform/posix/desktop platform/win32 platform/win32/desktop
system               platform
settings             platform system
engine               platform system settings
operation            platform system settings engine
dialogs              platform system settings engine
mainwindow           platform system settings engine operation dialogs
views/terminal       platform system settings engine operation
views/wx             platform platform/win32/desktop system settings engine operation dialogs mainwindow
startup              platform system settings engine operation dialogs mainwindow platform/posix platform/posix/desktop platform/win32 platform/win32/desktop platform/native views/terminal views/wx
console              platform system settings engine operation startup platform/native views/terminal
'
code "$include\"" src | sed -E 's/^src\/(([^:]*)\/)?([^:\/]+):([0-9]+):[^"]*"((.*)\/)?([^"\/]+)".*/\2 \6 src\/\1\3:\4/' |
    awk -v layers="$layers" '
        BEGIN {
            count = split(layers, lines, "\n")
            for (i = 1; i <= count; i++) {
                words = split(lines[i], word, " ")
                if (words == 0) continue
                known[word[1]] = 1
                for (j = 1; j <= words; j++) allowed[word[1], word[j]] = 1
            }
        }
        NF != 3 { print $NF ": chemin d'\''inclusion sans dossier"; next }
        !($1 in known) { print $3 ": le dossier " $1 " n'\''a pas de place dans les couches"; next }
        !(($1, $2) in allowed) { print $3 ": " $1 " inclut " $2 }' |
    verdict "aucun dossier n'inclut un dossier qui est au-dessus de lui"

# ---- every picture that the code names is drawn ----------------------------------------------

{
    code 'setImage\("|makeIconButton\(.*"|pictures\.find\("' src | grep -oE '"[a-z-]*[a-z]"'
    code '"(sens|ligne|resultat|lecteur|drive|folder)-[a-z-]+"' src |
        grep -oE '"(sens|ligne|resultat|lecteur|drive|folder)-[a-z-]+"'
    code '(bar|TB)\.add\(\{"' src/mainwindow | sed -E 's/.*add\(\{"([A-Za-z]+)".*/"commande-\1"/'
} | tr -d '"' | sort -u | while read -r name; do
    [[ -f assets/icons/$name.svg ]] || grep -qs "^$name " assets/icons/autres-noms.txt ||
        echo "assets/icons/$name.svg"
done | verdict "chaque image que le code nomme est dessinée"

# ---- a reader keeps a file in mind ----------------------------------------------------------

find src -name '*.h' -o -name '*.cpp' | sort | while read -r file; do
    lines=$(wc -l <"$file")
    limit=400
    [[ $file == *.h ]] && limit=150
    ((lines < limit)) || echo "$file : $lines lignes (moins de $limit)"
done | verdict "en-têtes de moins de 150 lignes, sources de moins de 400"

# ---- the text of the repository stands by itself ---------------------------------------------

texts() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files -z --cached --others --exclude-standard
    else
        find . -type f -not -path './build/*' -not -path './.git/*' -print0
    fi
}
grep_texts() { texts | xargs -0 -r grep -nHI -s "$@"; }

# Numbered references lead a reader to documents and tickets that the repository does not hold.
grep_texts -E -e '\b([Pp]art|[Cc]hapter|[Tt]icket|[Ii]ssue|[Ss]tep) [#A-H]?[0-9]' -e '§ ?[0-9]' |
    verdict "aucun renvoi numéroté à un document que le dépôt ne contient pas"
grep_texts -F -e "$root/" | verdict "aucun chemin de la machine d'un développeur"
grep_texts -w -e "TO""DO" -e "FIX""ME" -e "XX""X" -e "HA""CK" |
    verdict "aucune note de travail inachevé"
{
    grep_texts -e '[[:blank:]]$' -- | grep -vE '\.md:|^fuzz/corpus/'
    texts | xargs -0 -r -I '{}' sh -c '[ ! -s "$1" ] || [ -z "$(tail -c 1 "$1" | tr -d "\n\0")" ] || echo "$1 : dernière ligne sans fin"' _ '{}' |
        grep -vE '\.(ico|png|wav|ini) :|^fuzz/corpus/'
} | verdict "ni blancs en fin de ligne, ni dernière ligne sans fin"

echo "$passed réussis, $failed échoués, 0 laissés"
((failed == 0))
