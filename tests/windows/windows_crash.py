#!/usr/bin/env python3
"""Kills the real Windows program under Wine at random moments, of a backup and of a restore; after
each kill every file is its old self or its new self, and the next run makes everything right and
leaves no temporary file.

Usage: windows_crash.py [--programs DIRECTORY] [--kills N] [--seed N]
--kills: 500; ./test asks for 20.
"""

import argparse
import os
import random
import signal
import sys
import time
import traceback

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TESTS, "e2e"))

# pylint: disable=wrong-import-position
import harness
from loss_harness import BACKUP, RESTORE, marks
from crash_sweep import content, is_whole, settle
from sweep_harness import (Verdict, damaged_certificates, difference, files_of, finish, lying_times,
                           says_complete, temporaries)
from wine_place import Prefix, WinePlace

PROGRAM = "coffrelune-console.exe"
STILL_THERE = "EST DEJA EN MEMOIRE"  # Windows takes a moment to forget who was killed
FILES = 100


class Job:
    """A source of some hundred files that changes between the kills."""

    def __init__(self, place, chance):
        self.place, self.chance = place, chance
        self.version = 0
        settle(place)
        for number in range(FILES):
            self.put(f"d{number % 7}/s{number % 3}/f{number}")

    def put(self, name):
        self.version += 1
        size = self.chance.choice((0, 10, 500, 5_000, 5_000, 70_000, 200_000))
        harness.write(f"{self.place.source}/{name}", content(name, self.version, size))
        harness.touch(f"{self.place.source}/{name}", -1_000_000 + self.version)

    def change(self):
        names = list(files_of(self.place.source))
        for name in self.chance.sample(names, self.chance.randint(20, len(names) // 2)):
            if self.chance.random() < 0.3:
                os.remove(f"{self.place.source}/{name}")
                self.put(f"{name.split('-')[0]}-{self.version}")
            else:
                self.put(name)

    def damage(self):
        """What a restore has to bring back."""
        names = list(files_of(self.place.source))
        for name in self.chance.sample(names, len(names) // 3):
            os.remove(f"{self.place.source}/{name}")
        for number in range(5):
            self.put(f"en trop {number}")


def windows_pid(place):
    """Of the program itself: what was started is Wine's own. None before it is there."""
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            words = harness.read(f"/proc/{entry}/cmdline").split(b"\0")
            settings = f"COFFRELUNE_WINEPREFIX={place.prefix.wine}\0".encode()
            mine = settings in harness.read(f"/proc/{entry}/environ") + b"\0"
        except OSError:
            continue
        if mine and any(PROGRAM.encode() in word for word in words[:2]):
            return int(entry)
    return None


def started(place, arguments):
    """What the program says goes into a file: other programs of Wine's, which it may be the first
    to start, keep what it is given to write to."""
    with open(os.path.join(place.root, "dit"), "wb") as file:
        return place.start("coffrelune-console", *arguments, stdout=file, stderr=file)


def ended(place, process):
    status = process.wait(harness.PATIENCE)
    said = harness.read(os.path.join(place.root, "dit")).decode(errors="replace")
    return harness.Outcome(status, said)


def killed(place, arguments, after):
    """Runs the program and kills it so many seconds after it has begun to work. True when it was
    killed before its end; and its outcome."""
    process = started(place, arguments)
    found = []
    harness.wait_until(lambda: found or found.extend(filter(None, [windows_pid(place)])) or found,
                       process)
    began = time.monotonic()
    while process.poll() is None and time.monotonic() < began + after:
        time.sleep(0.001)
    caught = process.poll() is None and bool(found)
    if caught:
        try:
            os.kill(found[0], signal.SIGKILL)
        except ProcessLookupError:
            caught = False
    outcome = ended(place, process)
    return caught and outcome.status not in (0, 1, 3), outcome


def once_forgotten(start):
    """The outcome of a program that starts when the one before it has been forgotten."""
    deadline = time.monotonic() + harness.PATIENCE
    while True:
        result = start()
        if STILL_THERE not in result[1].all or time.monotonic() > deadline:
            return result
        time.sleep(0.2)


def undisturbed(place, arguments):
    """The outcome of a run that nobody kills."""
    return once_forgotten(lambda: (False, ended(place, started(place, arguments))))[1]


class Kills:
    def __init__(self, place, chance, verdict):
        self.place, self.chance, self.verdict = place, chance, verdict
        self.job = Job(place, chance)
        self.lasts = {}
        self.done = self.ended = 0

    def measure(self):
        for arguments in (BACKUP, RESTORE):
            began = time.monotonic()
            outcome = undisturbed(self.place, arguments)
            self.lasts[arguments[0]] = time.monotonic() - began
            self.verdict.expect(outcome.status == 0, f"{arguments[0]} sans arrêt", outcome)
            self.job.damage()

    def backup(self, what):
        before = files_of(self.place.copy)
        self.job.change()
        if not self.kill(BACKUP):
            return
        copy = files_of(self.place.copy)
        torn = [name for name, text in copy.items() if not is_whole(text, name)]
        self.verdict.expect(not torn, f"{what} : pas entier", torn)
        lying = lying_times(self.place.source, self.place.copy)
        self.verdict.expect(not lying, f"{what} : heure sans contenu", lying)
        source = files_of(self.place.source)
        lost = [name for name in before if name not in copy and name in source]
        self.verdict.expect(not lost, f"{what} : une ancienne copie manque", lost)
        self.verdict.expect(not damaged_certificates(self.place.copy), f"{what} : certificat")
        if says_complete(self.place.copy):
            self.verdict.expect(copy in (before, source),
                                f"{what} : un certificat dit plus que la copie")

    def restore(self, what):
        """The copy is complete: a restore of what was damaged, and then a backup that loses
        nothing of it."""
        self.right(BACKUP, f"{what}, avant")
        copy = files_of(self.place.copy)
        self.job.damage()
        before = files_of(self.place.source)
        if self.kill(RESTORE):
            now = files_of(self.place.source)
            torn = [name for name, text in now.items() if not is_whole(text, name)]
            self.verdict.expect(not torn, f"{what} : pas entier", torn)
            self.verdict.expect(files_of(self.place.copy) == copy, f"{what} : la copie a changé")
            begun = marks(self.place.source, "restauration")
            self.verdict.expect(begun or now in (before, copy),
                                f"{what} : à moitié restauré, et rien ne le dit")
            if begun:
                undisturbed(self.place, BACKUP)
                lost = [name for name in copy if name not in files_of(self.place.copy)]
                self.verdict.expect(not lost, f"{what} : la sauvegarde a effacé la seule copie",
                                    lost)
        self.right(RESTORE, what)

    def kill(self, arguments):
        after = self.chance.uniform(0, self.lasts[arguments[0]])
        began = time.monotonic()
        caught, outcome = once_forgotten(lambda: killed(self.place, arguments, after))
        if not caught:  # this machine has become faster, or there was less to do
            self.lasts[arguments[0]] = min(after, time.monotonic() - began)
        self.done += caught
        self.ended += not caught
        self.verdict.expect(caught or outcome.status == 0, f"{arguments[0]} à son terme", outcome)
        return caught

    def right(self, arguments, what):
        outcome = undisturbed(self.place, arguments)
        self.verdict.expect(outcome.status == 0, f"{what} : reprise, état {outcome.status}",
                            outcome)
        copy, source = files_of(self.place.copy), files_of(self.place.source)
        missing = (source, copy) if arguments is BACKUP else (copy, source)
        lacks = [name for name, text in missing[0].items() if missing[1].get(name) != text]
        self.verdict.expect(not lacks, f"{what} : reprise incomplète",
                            f"{difference(*missing)[:5]}\n{outcome}")
        left = temporaries(self.place.source, self.place.destination, self.place.home)
        self.verdict.expect(not left, f"{what} : restes", left)


def play(place, report, count, seed):
    verdict = Verdict(report)
    kills = Kills(place, random.Random(seed), verdict)
    kills.measure()
    attempts = 0
    while kills.done < count and attempts < 3 * count + 20:
        attempts += 1
        if attempts % 4 == 0:
            kills.restore(f"restauration {attempts}")
        else:
            kills.backup(f"sauvegarde {attempts}")
        if attempts % 20 == 0:
            print(f"    {kills.done} arrêts, {verdict.faults} fautes", flush=True)
    kills.right(BACKUP, "à la fin")
    verdict.expect(files_of(place.copy) == files_of(place.source), "à la fin : égaux")
    print(f"    {kills.ended} opérations finies avant leur arrêt, "
          f"{kills.lasts['sauvegarder']:.1f} s une sauvegarde")
    verdict.close(f"Windows (graine {seed})", kills.done, count)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs",
                        default=os.path.join(os.path.dirname(TESTS), "build/windows-release/bin"))
    parser.add_argument("--kills", type=int, default=500)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    arguments = parser.parse_args()
    programs = os.path.abspath(arguments.programs)
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    report = harness.Report()
    report.scenario = "arrêts sous Windows"
    print(f"graine : {arguments.seed}")
    prefix = Prefix(programs)
    try:
        place = WinePlace(programs, prefix)
        try:
            play(place, report, arguments.kills, arguments.seed)
        except Exception:  # pylint: disable=broad-except
            report.check("les arrêts vont à leur terme", False, traceback.format_exc())
        finally:
            place.remove()
    finally:
        prefix.remove()
    return finish(report)


if __name__ == "__main__":
    sys.exit(main())
