#!/usr/bin/env python3
"""Groups of sources that can be compiled as one: most of the time goes into the headers, which they
share. No source of a group sees what another one declares for itself, so that each is what it is alone.

Usage: source_groups.py FOLDER SIZE FILE...

Writes a source for each group into FOLDER and prints what is to be compiled: these sources, and the
FILEs that stand alone, in one list with semicolons between.
"""

import functools
import os
import re
import sys

ROOT = os.getcwd()
NO_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:[^"\\\n]|\\.)*"', re.DOTALL)
INCLUDE = re.compile(r"^[ \t]*#[ \t]*include\b.*\n", re.MULTILINE)
QUOTED = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"(.*)"', re.MULTILINE)
# What would reach from one source into the next: macros, and every name of a namespace.
REACHES_ON = re.compile(r"^[ \t]*(?:#[ \t]*(?!include)\w|using namespace\b)", re.MULTILINE)
TAKEN_NAME = re.compile(r"^[ \t]*(?:using (?:\w|::)*::(\w+);|namespace (\w+) = )", re.MULTILINE)
# A source's own names: what it declares in an unnamed namespace, and its types.
OWN_PART = re.compile(r"^namespace \{\n(.*?)^\}  // namespace$", re.MULTILINE | re.DOTALL)
OWN_NAME = re.compile(r"^(?!using |TEST|INSTANT|class|struct|enum)[A-Za-z].*?\b(\w+)"
                      r"(?: [:=](?: |$)|[({;\[]| \{)", re.MULTILINE)
OWN_TYPE = re.compile(r"^(?:class|struct|enum|enum class|union|using) (\w+)\b(?! ?::)(?!;)",
                      re.MULTILINE)
HEADER_TYPE = re.compile(r"^(?:class|struct|enum class|using|MATCHER\w*\() ?(\w+)\b(?!;)",
                         re.MULTILINE)


@functools.cache
def types_in(header):
    with open(header, encoding="utf-8") as file:
        text = file.read()
    return dict.fromkeys(HEADER_TYPE.findall(text), header) | types_below(text)


def types_below(text):
    """The types of the house's headers that a text includes, and where they are defined."""
    types = {}
    for name in QUOTED.findall(text):
        for folder in ("src", "tests"):
            header = os.path.join(ROOT, folder, name)
            if os.path.exists(header):
                types |= types_in(header)
    return types


class Source:
    """What decides in whose company a source is judged as it is alone."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        code = NO_CODE.sub('""', text)
        self.words = set(re.findall(r"\w+", code))
        self.own = set(OWN_TYPE.findall(code))
        for part in OWN_PART.findall(text):
            self.own.update(OWN_NAME.findall(NO_CODE.sub('""', part)))
        # Another source's use of the same name would hide that this one takes it in vain.
        rest = TAKEN_NAME.sub("", code)
        beside = [name for name in QUOTED.findall(text)
                  if os.path.exists(os.path.join(os.path.dirname(path), name))]
        self.types = types_below(text)
        self.stands_alone = bool(beside or REACHES_ON.search(code)) or not all(
            re.search(rf"(?<![\w:.>]){name or alias}\b", rest)
            for name, alias in TAKEN_NAME.findall(code))

    def minds(self, other):
        return bool(self.stands_alone or self.own & (other.words | other.types.keys())
                    or any(other.types.get(name, place) != place
                           for name, place in self.types.items()))


def grouped(paths, size):
    """Lists of paths, each no longer than SIZE, the largest first."""
    known, groups = {}, []
    for path in paths:
        known[path] = Source(path)
        for group in groups:
            if len(group) < size and not any(known[other].minds(known[path])
                                             or known[path].minds(known[other])
                                             for other in group):
                group.append(path)
                break
        else:
            groups.append([path])
    return sorted(groups, key=len, reverse=True)


def includes_of(paths):
    """The lines by which sources include headers. They come first in a group: no header sees what a
    source declares."""
    lines = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            lines.update(dict.fromkeys(line.strip() for line in INCLUDE.findall(file.read())))
    return "\n".join(lines) + "\n"


def write(path, text):
    """Leaves a file that already holds the text alone: nothing is compiled for it."""
    try:
        with open(path, encoding="utf-8") as file:
            if file.read() == text:
                return
    except FileNotFoundError:
        os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def main(folder, size, *paths):
    compiled = []
    for group in grouped(paths, int(size)):
        if len(group) == 1:
            compiled += group
            continue
        compiled.append(os.path.join(folder, f"group_{len(compiled)}.cpp"))
        parts = [f'#include "{os.path.relpath(path, folder)}"\n' for path in group]
        write(compiled[-1], includes_of(group) + PARTS + "".join(parts))
    print(";".join(compiled), end="")


# Above the sources of a group that was written.
PARTS = "// The sources of this group.\n"


def parts_of(path):
    """The sources that a source which main has written includes; of any other, itself."""
    if not re.search(r"/groups/[\w-]+/group_\d+\.cpp$", path):
        return [path]
    with open(path, encoding="utf-8") as file:
        names = QUOTED.findall(file.read().partition(PARTS)[2])
    return [os.path.normpath(os.path.join(os.path.dirname(path), name)) for name in names]


if __name__ == "__main__":
    main(*sys.argv[1:])
