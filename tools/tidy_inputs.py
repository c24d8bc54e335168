#!/usr/bin/env python3
"""What clang-tidy has to be told of each source, and what its verdict depends on.

Usage: tidy_inputs.py database OUTPUT DATABASE [--except=OTHER_OUTPUT] [ARGUMENT]...
       tidy_inputs.py keys OUTPUT SEED
       tidy_inputs.py sources DATABASE
       tidy_inputs.py groups OUTPUT SIZE
       tidy_inputs.py batch OUTPUT BATCH FILE...
       tidy_inputs.py blamed BATCH

"database" writes a compile database without what only the compiler that built it understands, nor
what has no say in a verdict: the sanitizers, the launcher, the assembler, outputs. Sources that were
compiled in a group have a command each. Sources of OTHER_OUTPUT are left out. ARGUMENTs end each
command.

"keys" prints a line for each source of such a database, "KEY PATH": the hash of SEED, of the commands
and of every file that the preprocessor reads, comments included. Equal keys have equal verdicts,
whatever directory the clone lies in. A source whose files cannot be told gets no line.

"sources" prints the path of each source that a compile database of CMake compiles.

"groups" reads paths of sources, a line each, and prints them in groups that can be judged at once, a
line each, separated by tabs. "batch" makes such a group one source: BATCH gets its compile database
and an overlay in which it lies, under the name that is printed, where no header lies beside it.
"blamed" reads what was said of that source, and prints the paths of those in which it finds errors.
"""

import bisect
import hashlib
import itertools
import json
import os
import re
import shlex
import subprocess
import sys

from source_groups import grouped, includes_of, parts_of

ROOT = os.getcwd()
DROPPED = re.compile(r"-fsanitize|-fno-sanitize|-fno-omit-frame-pointer|-g\d?$|-Wa,")


def arguments_of(entry):
    """The arguments alone: the compiler, and what starts it, are left out."""
    words = entry.get("arguments") or shlex.split(entry["command"])
    return words[next(i for i, word in enumerate(words) if word.startswith("-")):]


def cleaned(words):
    kept, rest = [], iter(words)
    for word in rest:
        if word in ("-o", "-MF", "-MT"):
            next(rest, None)
        elif not DROPPED.match(word) and word not in ("-MD", "-MMD"):
            kept.append(word)
    return kept


def entries_of(database):
    with open(database, encoding="utf-8") as file:
        return json.load(file)


def sources_of(database):
    """The entries of a build, one a source."""
    for entry in entries_of(database):
        name = entry["file"]
        path = os.path.join(entry["directory"], name)
        for part in parts_of(path):
            words = arguments_of(entry)
            if part != path:
                words = [part if word == name else word for word in words]
            yield {"directory": entry["directory"], "file": part, "arguments": words}


def print_sources(database):
    for entry in entries_of(database):
        for part in parts_of(os.path.join(entry.get("directory", ""), entry["file"])):
            print(os.path.relpath(os.path.realpath(part), os.path.realpath(ROOT)))


def write_database(output, database, *more):
    elsewhere = set()
    if more and more[0].startswith("--except="):
        other = os.path.join(more[0].partition("=")[2], "compile_commands.json")
        elsewhere = {entry["file"] for entry in entries_of(other)}
        more = more[1:]
    result, seen = [], set()
    for entry in sources_of(database):
        path = os.path.realpath(entry["file"])
        words = tuple(cleaned(entry["arguments"]))
        ours = path.startswith((f"{ROOT}/src/", f"{ROOT}/tests/")) and path not in elsewhere
        if not ours or (path, words) in seen:
            continue
        seen.add((path, words))
        # The number makes the target of each make rule its own.
        result.append({"directory": entry["directory"], "file": path,
                       "arguments": ["/usr/bin/clang++", *words, *more, "-o", f"{len(result)}.o"]})
    save(output, result)


def save(output, entries):
    os.makedirs(output, exist_ok=True)
    with open(os.path.join(output, "compile_commands.json"), "w", encoding="utf-8") as file:
        json.dump(entries, file, indent=0)


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


def commands_by_source(output):
    """For each source of a cleaned database its commands, in which the source has no name."""
    commands = {}
    for entry in entries_of(os.path.join(output, "compile_commands.json")):
        words = ["" if word == entry["file"] else word for word in entry["arguments"][:-2]]
        commands.setdefault(entry["file"], []).append([entry["directory"], words])
    return commands


def rules_of(path):
    """The folder whose .clang-tidy a source is judged by."""
    folder = os.path.dirname(os.path.join(ROOT, path))
    while folder != ROOT and not os.path.exists(os.path.join(folder, ".clang-tidy")):
        folder = os.path.dirname(folder)
    return folder


def print_groups(output, size):
    commands, alike = commands_by_source(output), {}
    for path in sorted(line.rstrip("\n") for line in sys.stdin):
        key = commands.get(os.path.join(ROOT, path)) or path
        alike.setdefault((rules_of(path), json.dumps(key)), []).append(path)
    groups = [group for paths in alike.values() for group in grouped(paths, int(size))]
    # The largest first, so that no long one is left to run alone at the end.
    for group in sorted(groups, key=len, reverse=True):
        print("\t".join(group))


def make_batch(output, batch, *paths):
    name = os.path.join(rules_of(paths[0]), "batch", "batch.cpp")
    text = os.path.join(os.path.abspath(batch), "batch.txt")
    with open(text, "w", encoding="utf-8") as file:
        parts = [("", includes_of(paths))]
        for path in paths:
            with open(path, encoding="utf-8") as source:
                parts.append((path, source.read() + "\n"))
        file.writelines(part for _, part in parts)
    with open(os.path.join(batch, "parts"), "w", encoding="utf-8") as file:
        json.dump([(path, part.count("\n")) for path, part in parts], file)
    with open(os.path.join(batch, "overlay.yaml"), "w", encoding="utf-8") as file:
        json.dump({"version": 0, "roots": [{"name": name, "type": "file",
                                            "external-contents": text}]}, file)
    # A function that is called from another source is examined by itself as well, as it is alone.
    more = ["-Xclang", "-analyzer-inlining-mode=all", "-ferror-limit=0"]
    save(batch, [{"directory": directory, "file": name,
                  "arguments": [word or name for word in words] + more}
                 for directory, words in commands_by_source(output)[os.path.join(ROOT, paths[0])]])
    print(name)


def print_blamed(batch):
    """The sources of a batch in which what a compiler has said of it finds an error."""
    with open(os.path.join(batch, "parts"), encoding="utf-8") as file:
        parts = json.load(file)
    ends = list(itertools.accumulate(count for _, count in parts))
    lines = [int(number) for number in re.findall(r"batch\.txt:(\d+):\d+: error: ", sys.stdin.read())]
    blamed = {parts[bisect.bisect_left(ends, line)][0] for line in lines if line <= ends[-1]}
    print("\n".join(sorted(blamed - {""})))


if __name__ == "__main__":
    {"database": write_database, "keys": print_keys, "sources": print_sources,
     "groups": print_groups, "batch": make_batch, "blamed": print_blamed}[sys.argv[1]](*sys.argv[2:])
