#!/usr/bin/env python3
"""Cuts the power of the copy's disk during a backup and up to half a minute after its end, and
looks at what is there when the disk comes back. Prints a line for each check, then the counts.

Usage: power_cut.py [--court] [--programs DIRECTORY] [--place DIRECTORY] [KIND]...
KIND: ext4, xfs, btrfs; all of them when none is named. --court: three cuts on ext4.
A cut shows what the file system had handed to its disk; a disk that forgets what it was given and
not asked to flush is not played.
"""

import argparse
import contextlib
import dataclasses
import functools
import os
import random
import shutil
import signal
import sys
import tempfile
import time

import cut_disk
import harness
from cut_disk import CutDisk
from harness import Place, Report, drive_path, stands_still, wait, wait_until

ENDINGS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
OWN = ".~coffrelune-"  # how the names of the program's own files begin
KEPT = (".copie", ".restauration", ".verrou")  # the endings of those that are no leftovers
OLD, NEW = 0, 1


class Files:
    """What the original holds in each version, known without reading it."""

    def __init__(self, small, large):
        draw = random.Random(5)
        self.pool = draw.randbytes(4 << 20)
        self.sizes = {f"d{n // 200:03d}/{n % 3}/fichier {n:05d}": draw.randint(100, 16384)
                      for n in range(small)}
        self.sizes.update({f"grands/{n}": draw.randint(1 << 20, 3 << 20) for n in range(large)})

    def content(self, path, version):
        number = hash_of(path) + version * 7919
        start = number % (1 << 20)
        head = f"{version} {path}\n".encode()
        return (head + self.pool[start:start + self.sizes[path]])[:self.sizes[path]]

    @property
    def bytes(self):
        return sum(self.sizes.values())

    @staticmethod
    def time(path, version):
        return (1_600_000_000 + version * 86400 + hash_of(path) % 3600) * 10**9 + 123_456_700

    def write(self, root, version):
        for path in self.sizes:
            harness.write(f"{root}/{path}", self.content(path, version))
            os.utime(f"{root}/{path}", ns=(self.time(path, version),) * 2)


@functools.cache
def hash_of(path):
    return random.Random(path).randrange(1 << 30)


class Found:
    """What a copy holds after a cut."""

    def __init__(self, files, root):
        self.whole = {OLD: 0, NEW: 0}
        self.absent = []
        self.wrong = []  # bears the time of a version, and not its bytes
        self.otherwise = 0  # bears the time of none: the next run copies it again
        self.alien = []
        self.leftovers = 0
        self.files = files
        self.complete = None  # what the certificate says; None without one that can be read
        rest = dict(files.sizes)
        for directory, below, names in os.walk(root):
            self.leftovers += sum(name.startswith(OWN) for name in below)
            below[:] = [name for name in below if not name.startswith(OWN)]
            for name in names:
                path = os.path.relpath(f"{directory}/{name}", root)
                if name.startswith(OWN):
                    self.own_file(f"{directory}/{name}")
                elif rest.pop(path, None) is None:
                    self.alien.append(path)
                else:
                    self.look_at(path, f"{directory}/{name}")
        self.absent = list(rest)

    def look_at(self, path, place):
        stamp = os.stat(place).st_mtime_ns // 100
        for version in (OLD, NEW):
            if stamp == self.files.time(path, version) // 100:
                if harness.read(place) == self.files.content(path, version):
                    self.whole[version] += 1
                else:
                    size = os.stat(place).st_size
                    self.wrong.append(f"{path} (version {version}, {size} octets)")
                return
        self.otherwise += 1

    def own_file(self, place):
        self.leftovers += not place.endswith(KEPT)
        if place.endswith(".copie"):
            lines = harness.read(place).decode(errors="replace").split("\n")
            if lines[-2:] == ["fin", ""]:
                self.complete = self.complete or "etat=complete" in lines

    def is_all(self, version):
        return self.whole[version] == len(self.files.sizes) and not self.alien

    def faults(self, replaced):
        """Why this is no state to find a disk in. `replaced`: every file had a safe old copy."""
        told = [f"{len(self.wrong)} avec la date de l'original et un autre contenu : "
                f"{', '.join(self.wrong[:3])}"] if self.wrong else []
        if self.alien:
            told.append(f"{len(self.alien)} que l'original n'a pas : {self.alien[:3]}")
        if replaced and self.absent:
            told.append(f"{len(self.absent)} anciennes copies perdues : {self.absent[:3]}")
        if self.complete and not (self.is_all(NEW) or self.is_all(OLD)):
            told.append("le certificat dit la copie complète, et elle ne l'est pas")
        return "\n".join(told)

    def __str__(self):
        certificate = {None: "sans certificat", True: "complète", False: "inachevée"}
        return (f"{self.whole[NEW]} neufs, {self.whole[OLD]} anciens, {len(self.absent)} absents, "
                f"{len(self.wrong)} faux, {self.otherwise} à recopier, {self.leftovers} restes, "
                f"{certificate[self.complete]}")


class KeptPlace(Place):
    """Ends what still runs when it is left: a program would keep the disk from being taken away."""

    def __init__(self, programs):
        super().__init__(programs)
        self.processes = []

    def start(self, *words, **options):
        self.processes.append(super().start(*words, **options))
        return self.processes[-1]

    def close(self):
        for process in self.processes:
            if process.poll() is None:
                process.kill()
                process.wait()


class Trial:
    """Runs on one kind of disk, each with several cuts."""

    def __init__(self, place, report, disk, files):
        self.place = place
        self.report = report
        self.disk = disk
        self.files = files

    def run(self, case, during, after):
        """Cuts where parts of the bytes have been written, and seconds after the end."""
        self.report.scenario = f"{self.disk.kind}, {case.what}"
        print(f"--- {self.report.scenario}")
        self.settle(case.in_step)
        self.disk.make()
        self.files.write(self.place.source, OLD if case.replaced else NEW)
        if case.replaced:
            self.backup("la version d'avant est copiée")
            self.files.write(self.place.source, NEW)
        if case.refused:
            self.refuse("+i")
        # What is to be lost must have been safe: only then does nothing excuse its loss.
        self.disk.take_off()
        self.disk.put_on("disque")
        cuts = self.cuts(case, during, after)
        self.disk.take_off()
        for number, (name, moment) in enumerate(cuts):
            self.look(case, f"coupure {number + 1}, {moment}", name)

    def settle(self, in_step):
        text = f"[Position]\nContinueOnError=-1\nSynchroCopie={-1 if in_step else 0}\n"
        text += f'[General]\nSource0="{drive_path(self.place.source)}"\n'
        text += f'Destination0="{drive_path(self.place.destination)}"\nSelect0=1\nModifie=1\n'
        self.place.write_settings(text)

    def backup(self, what):
        outcome = self.place.console("sauvegarder", "--ecraser")
        self.report.check(f"{what} : état 0", outcome.status == 0, outcome)

    def refuse(self, how):
        """One old copy that cannot be replaced, or can again."""
        cut_disk.command("chattr", how, os.path.join(self.place.copy, next(iter(self.files.sizes))))

    def cuts(self, case, during, after):
        """Names of the images that were kept, each with when."""
        kept = []

        def cut(moment):
            kept.append((f"coupure {len(kept)}", moment))
            self.disk.cut(kept[-1][0])

        process = self.place.start("coffrelune-console", "sauvegarder", "--ecraser")
        for number, share in enumerate(during):
            self.wait_for(process, share)
            if not stands_still(process):
                break
            # A copy that waits for its original, while the journal is written.
            if number % 2:
                time.sleep(STILL[self.disk.kind])
            else:
                self.neighbour()
            cut(f"pendant ({share:.0%} écrits)")
            process.send_signal(signal.SIGCONT)
        self.report.check("le programme est pris en route", len(kept) > 0)
        if case.interrupted:
            process.send_signal(signal.SIGINT)
        outcome = wait(process)
        ended = time.monotonic()
        for seconds in after:
            time.sleep(max(0.0, ended + seconds - time.monotonic()))
            if seconds == 1:
                self.neighbour()
            cut(f"{time.monotonic() - ended:.1f} s après la fin")
        self.report.check("l'opération finit comme prévu",
                          outcome.status in case.status, outcome)
        return kept

    def wait_for(self, process, share):
        """Until a part of all bytes has been written."""
        def arrived():
            with contextlib.suppress(OSError):
                text = harness.read(f"/proc/{process.pid}/io").decode()
                return int(text.split("wchar: ")[1].split()[0]) >= share * self.files.bytes
            return False
        wait_until(arrived, process)

    def neighbour(self):
        """Another program has its own file made safe, and the journal goes with it: all names, and
        not yet what the files hold."""
        with open(os.path.join(self.place.destination, "voisin"), "w", encoding="ascii") as file:
            file.write("x")
            file.flush()
            os.fsync(file.fileno())
        self.disk.write_journal()

    def look(self, case, what, name):
        """Brings a disk back, looks at it, and lets the next run finish the work."""
        try:
            self.disk.put_on(name)
        except OSError as error:
            self.report.check(f"{what} : le disque revient", False, error)
            self.disk.take_off()
            return
        found = Found(self.files, self.place.copy)
        print(f"    {what} : {found}")
        self.report.equal(f"{what} : entiers ou absents", found.faults(case.replaced), "")
        if case.refused:
            with contextlib.suppress(OSError):  # a lost copy has been told
                self.refuse("-i")
        outcome = self.place.console("sauvegarder", "--ecraser")
        again = Found(self.files, self.place.copy)
        self.report.check(f"{what} : l'opération suivante rend la copie égale, sans reste",
                          outcome.status == 0 and again.is_all(NEW) and again.leftovers == 0,
                          f"{again}\n{outcome}")
        self.disk.take_off()
        self.disk.forget(name)


# Seconds that names take to reach the disk by themselves; what files hold may take longer.
STILL = {"ext4": 7, "xfs": 32, "btrfs": 32}
DURING = (0.1, 0.4, 0.7)  # of the bytes written
AFTER = (0, 1, 4, 8, 15, 30)


@dataclasses.dataclass
class Case:
    what: str
    replaced: bool = False  # everything is there in an older version
    in_step: bool = False  # excess files are deleted
    interrupted: bool = False  # by Ctrl-C, in its midst
    refused: bool = False  # one file cannot be replaced, so the run ends with an error

    @property
    def status(self):
        return (1,) if self.refused else (0, 3) if self.interrupted else (0,)


CASES = (Case("premières copies"), Case("remplacements", replaced=True),
         Case("premières copies, excédentaires effacés", in_step=True),
         Case("remplacements, excédentaires effacés", replaced=True, in_step=True),
         Case("premières copies interrompues", interrupted=True),
         Case("remplacements interrompus", replaced=True, interrupted=True),
         Case("remplacements dont un échoue", replaced=True, refused=True))


def play(kind, arguments, report):
    reason = cut_disk.why_not(arguments.place, kind)
    if reason:
        report.leave_out(f"coupures sur {kind}", reason)
        return
    place = KeptPlace(arguments.programs)
    base = tempfile.mkdtemp(prefix="coffrelune-coupure-", dir=arguments.place)
    try:
        with CutDisk(base, kind, place.destination) as disk, contextlib.closing(place):
            if arguments.court:
                Trial(place, report, disk, Files(3000, 4)).run(CASES[0], (0.3,), (0, 7))
                return
            for case in CASES:
                Trial(place, report, disk, Files(8000, 20)).run(case, DURING, AFTER)
    except OSError as error:
        report.check(f"les coupures sur {kind} vont à leur terme", False, error)
    finally:
        shutil.rmtree(base, ignore_errors=True)
        place.remove()


def leave(*_):
    """Ended from outside, the volumes are still taken away; being told twice does not stop that."""
    for number in ENDINGS:
        signal.signal(number, signal.SIG_IGN)
    sys.exit(1)


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--court", action="store_true")
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    parser.add_argument("--place", default=cut_disk.MEMORY)
    parser.add_argument("kinds", nargs="*", metavar="KIND")
    arguments = parser.parse_args()
    arguments.programs = os.path.abspath(arguments.programs)

    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)
    for number in ENDINGS:
        signal.signal(number, leave)
    report = Report()
    for kind in arguments.kinds or (("ext4",) if arguments.court else ("ext4", "xfs", "btrfs")):
        play(kind, arguments, report)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
