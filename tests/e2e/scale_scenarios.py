#!/usr/bin/env python3
"""Many files: memory stays small, and time is told.

Usage: scale_scenarios.py [--files N] [--programs DIRECTORY]
Run by itself, it fills one directory with a million files.
"""

import argparse
import os
import subprocess
import sys
import time

from harness import Report, run_all, times_of, write

FILES = 100_000
ALONE = 20_000  # of one directory, in the short form
LIMIT = 20 * 1024  # KiB of resident memory
EACH = 40 / 1024  # KiB more of it for each name of one directory

# The peak of a child includes the moment before its exec, when it still is a copy of its parent: a
# bare interpreter stands between, smaller than what is measured.
MEASURE = """
import os, sys
child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ)
_, status, usage = os.wait4(child, 0)
sys.stderr.write("\\npeak %d" % usage.ru_maxrss)
sys.exit(os.waitstatus_to_exitcode(status))
"""


def plant(place):
    """Half of the files in one directory, the others a hundred each."""
    for number in range(FILES):
        directory = "tous ensemble" if number % 2 else f"répertoire {number // 200}"
        path = f"{place.source}/{directory}/fichier numéro {number}.txt"
        if number < 2 or number % 200 == 0:
            write(path, "x")
        else:
            with open(path, "wb") as file:
                file.write(b"x")


def measured(place, report, name, copied, limit):
    """A backup, what it has copied, and what it took for it."""
    start = time.monotonic()
    process = subprocess.run(
        [sys.executable, "-I", "-S", "-c", MEASURE,
         os.path.join(place.programs, "coffrelune-console"),
         *place.backup_arguments("--ecraser", "--json")],
        env=place.environment(), stdin=subprocess.DEVNULL, capture_output=True, text=True,
        check=False)
    seconds = time.monotonic() - start
    report.equal(f"{name} : état 0", process.returncode, 0)
    report.check(f"{name} : {copied} fichiers copiés", f'"files":{copied},' in
                 process.stdout.replace(" ", "").replace("\n", ""), process.stdout[-500:])
    peak = int(process.stderr.rpartition("peak ")[2] or 0)
    print(f"    {name} : {seconds:.1f} s, {peak / 1024:.1f} Mo")
    report.check(f"{name} : moins de {limit / 1024:.0f} Mo", 0 < peak < limit, f"{peak} Kio")


def hundred_thousand_files(place, report):
    """100 000 fichiers en moins de 20 Mo de mémoire"""
    plant(place)
    measured(place, report, "première sauvegarde", FILES, LIMIT)
    measured(place, report, "deuxième sauvegarde", 0, LIMIT)
    report.equal("les dates sont égales", times_of(place.copy), times_of(place.source))


def one_directory(place, report, count=ALONE):
    """Un seul répertoire de très nombreux fichiers : tous copiés, puis aucun, sans erreur"""
    directory = f"{place.source}/ensemble"
    write(f"{directory}/0", b"x")
    for number in range(1, count):
        with open(f"{directory}/{number}", "wb") as file:
            file.write(b"x")
    measured(place, report, "première sauvegarde", count, LIMIT + count * EACH)
    measured(place, report, "deuxième sauvegarde", 0, LIMIT + count * EACH)
    os.unlink(f"{directory}/{count // 2}")
    write(f"{directory}/nouveau", b"nouveau")
    measured(place, report, "un de plus, un de moins", 1, LIMIT + count * EACH)
    report.equal("les noms sont là", len(os.listdir(f"{place.copy}/ensemble")), count + 1)


SCENARIOS = (hundred_thousand_files, one_directory)


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--files", type=int, default=1_000_000)
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    arguments = parser.parse_args()
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)

    def all_together(place, report):
        one_directory(place, report, arguments.files)

    report = Report()
    all_together.__doc__ = one_directory.__doc__
    run_all([all_together], os.path.abspath(arguments.programs), report)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
