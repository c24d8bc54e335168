#!/usr/bin/env python3
"""Measures the most memory that the console program takes for many files: a first backup, the same
again, an error list and a comparison with one line for each file. Prints a line for each measure,
then the counts.

Usage: memory_bounds.py [--files N] [--programs DIRECTORY] [--place DIRECTORY]
--files: 1,000,000; ./test asks for 50,000. About 2.5 GB of --place for a million.
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

import harness
from cut_disk import MEMORY
from harness import Outcome, Place, Report
from scale_scenarios import MEASURE
from sweep_harness import default_programs, finish

# What a run may take at most: without any file, and for each that it has to keep something of.
BASE = 24 << 20
WALK = 32     # bytes for each file of a backup: names of one directory at a time
OFFSETS = 64  # bytes for each line that is kept, beside its text
ERROR = 250   # bytes for each error, beside its lines
# How often the text of a line may be there: while a list grows, it is there twice.
COMPARED = 4  # the list and the journal
FAILED = 2.5  # the journal, and what is written of it
READ = 3.5    # the bytes, the text, the list
PER_DIRECTORY = 500


class Many:
    """A source of files that hold next to nothing: names are what a program has to keep."""

    def __init__(self, place, count):
        self.place, self.count = place, count
        for number in range(count):
            if number % PER_DIRECTORY == 0:
                directory = f"{place.source}/répertoire {number // PER_DIRECTORY:05d}"
                os.mkdir(directory)
            with open(f"{directory}/un fichier comme un autre {number:07d}.txt", "wb") as file:
                file.write(b"x" if number % PER_DIRECTORY == 0 else b"")

    def each(self):
        for entry in os.scandir(self.place.source):
            for file in os.scandir(entry.path):
                yield file.path

    def line(self):
        """Bytes of one path as the program shows it."""
        return len(harness.drive_path(next(self.each())).encode())


def most_memory(place, *arguments):
    """The outcome of a run, the most memory that it held, and how much it said, in bytes."""
    output = os.path.join(place.root, "sortie")
    program = os.path.join(place.programs, "coffrelune-console")
    with open(output, "wb") as file:
        process = subprocess.run([sys.executable, "-I", "-S", "-c", MEASURE, program, *arguments],
                                 env=place.environment(), stdin=subprocess.DEVNULL, stdout=file,
                                 stderr=subprocess.PIPE, text=True, check=False)
    said, _, peak = process.stderr.rpartition("peak ")
    return Outcome(process.returncode, "", said[-2000:]), int(peak) << 10, os.stat(output).st_size


def measure(report, place, files, what, bound, status, *arguments):
    started = time.monotonic()
    outcome, most, told = most_memory(place, *arguments)
    print(f"    {time.monotonic() - started:.0f} s, {told / 1048576:.0f} Mio dits")
    check_bound(report, files, what, most, bound)
    report.check(f"{what} : état {status}", outcome.status == status, outcome)


def check_bound(report, files, what, most, bound):
    report.check(f"{what} : {most / 1048576:.1f} Mio pour {files.count} fichiers, au plus "
                 f"{bound / 1048576:.0f}", most <= bound)


def play(report, place, count):
    place.write_line("ContinueOnError=-1\nSynchroCopie=-1\n")
    files = Many(place, count)
    line = files.line() + 2
    compared = BASE + count * (OFFSETS + COMPARED * line)
    measure(report, place, files, "comparaison de tout", compared, 1, "comparer")
    measure(report, place, files, "première sauvegarde", BASE + count * WALK, 0, "sauvegarder")
    measure(report, place, files, "rien à copier", BASE + count * WALK, 0, "sauvegarder")
    # Each file is to be replaced by one that it cannot be replaced by: a directory is there.
    shutil.rmtree(place.copy)
    for path in files.each():
        os.makedirs(f"{place.copy}/{os.path.relpath(path, place.source)}")
    place.write_line("ContinueOnError=-1\nSynchroCopie=0\n")
    # What is said of each is known when it has been said.
    outcome, most, _ = most_memory(place, "sauvegarder", "--ecraser")
    report.check("liste d'erreurs : état 1", outcome.status == 1, outcome)
    listed = harness.read(f"{place.home}/S_General.err").decode("cp1252")
    text = len(listed.encode())
    named = listed.count("Erreur: ")
    check_bound(report, files, "liste d'erreurs", most, BASE + FAILED * text + count * ERROR)
    report.check("liste d'erreurs : chacun est nommé", named == count, named)
    bound = BASE + READ * text + count * OFFSETS
    measure(report, place, files, "journal relu", bound, 0, "journal")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--files", type=int, default=1_000_000)
    parser.add_argument("--programs", default=default_programs())
    parser.add_argument("--place", default=MEMORY)
    arguments = parser.parse_args()
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)
    report = Report()
    report.scenario = "mémoire"
    tempfile.tempdir = arguments.place
    place = Place(os.path.abspath(arguments.programs))
    try:
        play(report, place, arguments.files)
    finally:
        place.remove()
    return finish(report)


if __name__ == "__main__":
    sys.exit(main())
