"""Many files: memory stays small, and time is told."""

import os
import subprocess
import sys
import time

from harness import times_of, write

FILES = 100_000
LIMIT = 30 * 1024  # KiB of resident memory

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


def hundred_thousand_files(place, report):
    """100 000 fichiers en moins de 30 Mo de mémoire"""
    plant(place)
    program = os.path.join(place.programs, "coffrelune-console")
    for name, copied in (("première sauvegarde", FILES), ("deuxième sauvegarde", 0)):
        start = time.monotonic()
        process = subprocess.run(
            [sys.executable, "-I", "-S", "-c", MEASURE, program,
             *place.backup_arguments("--ecraser", "--json")],
            env=place.environment(), stdin=subprocess.DEVNULL, capture_output=True, text=True,
            check=False)
        seconds = time.monotonic() - start
        report.equal(f"{name} : état 0", process.returncode, 0)
        report.check(f"{name} : {copied} fichiers copiés", f'"files":{copied},' in
                     process.stdout.replace(" ", "").replace("\n", ""), process.stdout[-500:])
        peak = int(process.stderr.rpartition("peak ")[2] or 0)
        print(f"    {name} : {seconds:.1f} s, {peak / 1024:.1f} Mo")
        report.check(f"{name} : moins de 30 Mo", 0 < peak < LIMIT, f"{peak} Kio")
    report.equal("les dates sont égales", times_of(place.copy), times_of(place.source))


SCENARIOS = (hundred_thousand_files,)
