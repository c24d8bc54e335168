#!/usr/bin/env bash
# Proves that the verdicts that check-tidy.sh keeps hide nothing: a small tree that is clean, then one
# change at a time, each of which must be judged anew.
set -uo pipefail

tool=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/check-tidy.sh
place=$(realpath "$(mktemp -d)")
trap 'rm -rf "$place"' EXIT
export COFFRELUNE_CACHE=$place/cache
tree=$place/tree
passed=0
failed=0

tell() {
    if [[ $1 == ok ]]; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
    echo "$1 $2"
}

database() {
    local build=$1 flags=$2 file
    shift 2
    mkdir -p "$tree/build/$build"
    for file; do
        printf '{ "directory": "%s", "command": "/usr/bin/c++ %s -std=c++20 -o a.o -c %s", "file": "%s" }\n' \
            "$tree/build/$build" "-I$tree/src/near -I$tree/src $flags" "$tree/$file" "$tree/$file"
    done | sed '1s/^/[/; $!s/$/,/; $s/$/]/' >"$tree/build/$build/compile_commands.json"
}
sound_tree() {
    rm -rf "$place/tree" "$place/other"
    tree=$place/${1-tree}
    mkdir -p "$tree"/src/{near,win32} "$tree/tests"
    printf "Checks: '-*,readability-container-size-empty'\nWarningsAsErrors: '*'\nHeaderFilterRegex: '/(src|tests)/.*\\.h\$'\n" >"$tree/.clang-tidy"
    printf '#pragma once\n#include <string>\ninline bool bare(const std::string& text) {\n    return text.empty();\n}\n' \
        >"$tree/src/text.h"
    printf '#pragma once\n#include "text.h"\ninline bool known(const std::string& text) {\n    return text.size() == 0;  // NOLINT\n}\n' \
        >"$tree/src/words.h"
    printf '#include "words.h"\nbool answer() {\n    return bare("a");\n}\n' >"$tree/src/words.cpp"
    printf '#include "text.h"\n#ifdef MORE\nbool more(const std::string& text) {\n    return text.size() == 0;\n}\n#endif\n' \
        >"$tree/tests/words_test.cpp"
    printf 'int number() {\n    return 1;\n}\n' >"$tree/src/win32/number.cpp"
    database linux-asan "-g1 -fsanitize=address" src/words.cpp tests/words_test.cpp
    database windows-release "" src/win32/number.cpp
}

# What the tool finds: the sources with a fault, in one line.
faults() {
    output=$("$tool" "$tree" 2>&1)
    sed -n 's/^FAUTE clang-tidy //p' <<<"$output" | sort | tr '\n' ' '
}
judged_before() { sed -n 's/^clang-tidy : \([0-9]*\) sources sur.*/\1/p' <<<"$output"; }

expect() {
    local name=$1 wanted=$2 found=$3
    if [[ $found == "$wanted" ]]; then
        tell ok "$name"
    else
        sed 's/^/    /' <<<"$output"
        tell FAUTE "$name : « $found » au lieu de « $wanted »"
    fi
}
# Changes the sound tree, which is judged good, by a command; the sources that then have a fault.
change() {
    local name=$1 wanted=$2
    shift 2
    sound_tree
    faults >/dev/null
    (cd "$tree" && "$@")
    faults >"$place/found"
    expect "$name" "$wanted" "$(<"$place/found")"
    # A fault is never kept as good.
    [[ -z $wanted ]] || expect "$name : la faute reste" "$wanted" "$(faults)"
}

sound_tree
faults >"$place/found"
expect "un arbre sain passe" "" "$(<"$place/found")"
output=$("$tool" "$tree")
expect "un arbre jugé bon n'est pas jugé à nouveau" 3 "$(judged_before)"
database linux-asan "-g" src/words.cpp tests/words_test.cpp
output=$("$tool" "$tree")
expect "les options du débogueur n'y changent rien" 3 "$(judged_before)"
sound_tree other
output=$("$tool" "$tree")
expect "les verdicts valent pour un autre clone" 3 "$(judged_before)"

bad_line='return text.size() == 0;'
change "une faute dans un en-tête" "src/words.cpp tests/words_test.cpp " \
    sed -i "s/return text.empty();/$bad_line/" src/text.h
change "une faute dans une source" "src/words.cpp " \
    sed -i "s/return bare.*/const std::string text; $bad_line/" src/words.cpp
change "une faute dans une source de Windows" "src/win32/number.cpp " \
    sed -i "1i #include <string>\nbool bare(const std::string\& text) { $bad_line }" src/win32/number.cpp
change "une dispense enlevée dans un commentaire" "src/words.cpp " \
    sed -i 's,  // NOLINT,,' src/words.h
change "une autre option de compilation" "tests/words_test.cpp " \
    database linux-asan "-DMORE" src/words.cpp tests/words_test.cpp
change "un en-tête qui en cache un autre" "src/words.cpp tests/words_test.cpp " \
    sh -c "sed 's/return text.empty();/$bad_line/' src/text.h >src/near/text.h && sed -i 's/\"text.h\"/<text.h>/' src/words.h tests/*.cpp"
change "une autre règle" "src/win32/number.cpp src/words.cpp tests/words_test.cpp " \
    sed -i 's/^Checks: .*/Checks: "-*,readability-container-size-empty,modernize-use-trailing-return-type"/' .clang-tidy

# Three sources that can be judged at once, each with a line of its own.
together() {
    local number=0 line checks=readability-container-size-empty,misc-unused-using-decls,clang-analyzer-core.\*
    mkdir -p tests/group
    printf '#pragma once\nnamespace house {\nstruct Thing {};\n}\n' >src/names.h
    for line; do
        number=$((number + 1))
        printf '#include "text.h"\nbool text%s() {\n    return bare("a");\n}\n%b\n' "$number" "$line" \
            >tests/group/"$number".cpp
    done
    sed -i "s/^Checks: .*/Checks: '-*,$checks'/" .clang-tidy
    database linux-asan "" src/words.cpp tests/words_test.cpp tests/group/{1,2,3}.cpp
}
own='namespace {\nbool own(const std::string& text) {\n    return text.empty();\n}\n}  // namespace\nbool'
change "des sources jugées ensemble" "" together "" "" ""
change "une faute parmi des sources jugées ensemble" "tests/group/2.cpp " \
    together "" "bool empty2(const std::string& text) { $bad_line }" ""
change "deux sources qui ont un nom en commun" "" \
    together "$own a() { return own(\"a\"); }" "$own b() { return own(\"b\"); }" ""
change "un nom pris pour rien, dont une autre source se sert" "tests/group/1.cpp " \
    together '#include "names.h"\nusing house::Thing;' \
    '#include "names.h"\nusing house::Thing;\nint b(const Thing&) {\n    return 1;\n}' ""
change "une faute dans ce qu'une autre source appelle" "tests/group/1.cpp " \
    together "int first(const int* a) {\n    if (a) return 1;\n    return *a;\n}" \
    "int first(const int* a);\nint second() {\n    const int a = 1;\n    return first(&a);\n}" ""

echo "$passed réussis, $failed échoués, 0 laissés"
((failed == 0))
