#!/usr/bin/env python3
"""Writes src/system/casing_tables.h: Unicode's simple case mappings of three scripts.

    tools/make-casing-tables.py > src/system/casing_tables.h

The mappings are those of Python's own Unicode database, whose version the header names.
"""
import unicodedata

SCRIPTS = ("LATIN", "GREEK", "CYRILLIC", "FULLWIDTH LATIN")
# Of these scripts, though their names do not say so.
OTHERS = ("OHM SIGN", "KELVIN SIGN", "ANGSTROM SIGN", "TURNED CAPITAL F", "TURNED SMALL F")
NUMERALS = ("ROMAN NUMERAL", "SMALL ROMAN NUMERAL")

HEAD = """#pragma once

#include <array>
#include <cstdint>

namespace coffrelune {{

/// Characters of one range, every `step`-th of which has its counterpart `delta` away.
struct CaseRange {{
    char32_t first;
    char32_t last;
    std::uint32_t step;
    std::int32_t delta;
}};

// Written by tools/make-casing-tables.py: Unicode {version}, simple mappings of the Latin, Greek and
// Cyrillic scripts (UnicodeData.txt, fields 12 and 13).
// https://www.unicode.org/reports/tr44/#UnicodeData.txt
// Sorted, no two ranges overlap.
// clang-format off"""


def belongs(character):
    name = unicodedata.name(character, "")
    return name.startswith(SCRIPTS + NUMERALS) or name in OTHERS


def lower(character):
    # The one full mapping of several characters is the simple one and a mark.
    return character.lower()[0]


def upper(character):
    # Where the full mapping has several characters, the simple one is that of titles, if any.
    for mapped in (character.upper(), character.title()):
        if len(mapped) == 1:
            return mapped
    return character


def ranges(mapping):
    found = []
    for code in range(0x110000):
        character = chr(code)
        delta = ord(mapping(character)) - code if belongs(character) else 0
        if delta == 0:
            continue
        if found:
            first, last, step, old = found[-1]
            gap = code - last
            if delta == old and gap <= 2 and (first == last or gap == step):
                found[-1] = (first, code, gap, old)
                continue
        found.append((code, code, 1, delta))
    return found


def table(name, entries):
    print(f"inline constexpr std::array<CaseRange, {len(entries)}> {name} = {{{{")
    texts = [f"{{0x{first:04X}, 0x{last:04X}, {step}, {delta}}},"
             for first, last, step, delta in entries]
    for start in range(0, len(texts), 3):
        print("    " + " ".join(texts[start:start + 3]))
    print("}};")


def main():
    print(HEAD.format(version=unicodedata.unidata_version.split(".")[0]))
    table("lowerMappings", ranges(lower))
    table("upperMappings", ranges(upper))
    print("// clang-format on\n\n}  // namespace coffrelune")


if __name__ == "__main__":
    main()
