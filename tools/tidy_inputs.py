#!/usr/bin/env python3
"""What clang-tidy has to be told of each source, and what its verdict depends on.

Usage: tidy_inputs.py database OUTPUT DATABASE [--except=OTHER_OUTPUT] [ARGUMENT]...
       tidy_inputs.py keys OUTPUT SEED

"database" writes a compile database without what only the compiler that built it understands, nor
what has no say in a verdict: the sanitizers, the launcher, precompiled headers, outputs. Sources of OTHER_OUTPUT
are left out. ARGUMENTs end each command.

"keys" prints a line for each source of such a database, "KEY PATH": the hash of SEED, of the commands
and of every file that the preprocessor reads, comments included. Equal keys have equal verdicts,
whatever directory the clone lies in. A source whose files cannot be told gets no line.
"""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys

ROOT = os.getcwd()
DROPPED = re.compile(r"-fsanitize|-fno-sanitize|-fno-omit-frame-pointer|-g\d?$|-Winvalid-pch$|-fpch-")


def arguments_of(entry):
    """The arguments alone: the compiler, and what starts it, are left out."""
    words = entry.get("arguments") or shlex.split(entry["command"])
    return words[next(i for i, word in enumerate(words) if word.startswith("-")):]


def cleaned(words):
    kept, rest = [], iter(words)
    for word in rest:
        if word in ("-o", "-MF", "-MT"):
            next(rest, None)
        elif word == "-include":
            name = next(rest, "")
            if "cmake_pch" not in name:
                kept += [word, name]
        elif not DROPPED.match(word) and word not in ("-MD", "-MMD"):
            kept.append(word)
    return kept


def entries_of(database):
    with open(database, encoding="utf-8") as file:
        return json.load(file)


def write_database(output, database, *more):
    elsewhere = set()
    if more and more[0].startswith("--except="):
        other = os.path.join(more[0].partition("=")[2], "compile_commands.json")
        elsewhere = {entry["file"] for entry in entries_of(other)}
        more = more[1:]
    result, seen = [], set()
    for entry in entries_of(database):
        path = os.path.realpath(os.path.join(entry["directory"], entry["file"]))
        words = tuple(cleaned(arguments_of(entry)))
        ours = path.startswith((f"{ROOT}/src/", f"{ROOT}/tests/")) and path not in elsewhere
        if not ours or (path, words) in seen:
            continue
        seen.add((path, words))
        # The number makes the target of each make rule its own.
        result.append({"directory": entry["directory"], "file": path,
                       "arguments": ["/usr/bin/clang++", *words, *more, "-o", f"{len(result)}.o"]})
    os.makedirs(output, exist_ok=True)
    with open(os.path.join(output, "compile_commands.json"), "w", encoding="utf-8") as file:
        json.dump(result, file, indent=0)


def read_rules(text):
    """Pairs of the target of each make rule and the files that it depends on."""
    for rule in text.replace("\\\n", " ").splitlines():
        target, colon, names = rule.partition(": ")
        if colon:
            words = re.findall(r"(?:\\.|[^\s\\])+", names)
            yield target.strip(), [re.sub(r"\\([ #])", r"\1", word).replace("$$", "$")
                                   for word in words]


class Digests:
    """The hash of each file, read once."""

    def __init__(self):
        self.known = {}

    def of(self, path):
        if path not in self.known:
            with open(path, "rb") as file:
                self.known[path] = hashlib.sha256(file.read()).hexdigest()
        return self.known[path]


def relative(text):
    return text.replace(ROOT + "/", "./")


def print_keys(output, seed):
    database = os.path.join(output, "compile_commands.json")
    entries = entries_of(database)
    scan = subprocess.run(["clang-scan-deps-14", "-compilation-database", database, "-j",
                           str(os.cpu_count())], capture_output=True, text=True, check=False)
    read = dict(read_rules(scan.stdout))
    digests, commands = Digests(), {}
    for entry in entries:
        target = entry["arguments"][-1]
        files = read.get(target) or read.get(os.path.join(entry["directory"], target))
        commands.setdefault(entry["file"], []).append((entry, files))
    for path, parts in sorted(commands.items()):
        key = hashlib.sha256(seed.encode())
        try:
            for entry, files in parts:
                if not files:
                    raise OSError("unknown files")
                words = [relative(word) for word in entry["arguments"][:-2]]
                key.update(json.dumps([relative(entry["directory"]), words]).encode())
                for name in files:
                    name = os.path.normpath(os.path.join(entry["directory"], name))
                    key.update(f"\n{relative(name)} {digests.of(name)}".encode())
        except OSError:
            continue
        print(key.hexdigest(), os.path.relpath(path, ROOT))


if __name__ == "__main__":
    {"database": write_database, "keys": print_keys}[sys.argv[1]](*sys.argv[2:])
