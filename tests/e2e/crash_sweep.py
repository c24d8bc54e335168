#!/usr/bin/env python3
"""Kills the real program at every call that changes the disk, in each scene, and at random calls of
a longer job; after each kill every file is its old self or its new self, and the next run makes
everything right and leaves no temporary file.

Usage: crash_sweep.py [--programs DIRECTORY] [--short] [--kills N] [--seed N] [WORD]
--short kills at a part of the calls only; WORD picks scenes ("hasard" is the longer job).
"""

import argparse
import os
import random
import shutil
import sys

from harness import Report, drive_path, read, touch, write
from loss_harness import BACKUP, RESTORE, marks
from sweep_harness import (KILLED, Snapshot, Verdict, Workshop, certificates, damaged_certificates,
                           default_programs, difference, emptied, files_of, finish, lying_times,
                           planted, played, says_complete, stamps, strangers, temporaries)

BIG = "g" * 300_000
OLD = {"a.txt": "ancien a", "gros.bin": BIG, "sous/b.txt": "ancien b", "sous/lien": "-> b.txt",
       "vide.txt": ""}
NEW = {"a.txt": "nouveau a", "gros.bin": "n" * 280_000, "sous/b.txt": "nouveau b",
       "sous/lien": "-> ../a.txt", "vide.txt": "plus vide"}
ADDED = {"neuf/c.txt": "c", "neuf/profond/d.txt": "d", "e.txt": "e"}
SETTINGS = """; à moi
[Position]
ContinueOnError=-1
SynchroCopie={synchro}
Inconnue=gardée
[General]
; la ligne
Source0="{source}"
Destination0="{destination}"
Select0=1
Confirmation=1
Autre = " valeur "
[Ancienne]
Source0="C:\\x"
"""


def settle(place, synchro=-1, more=""):
    place.write_settings(SETTINGS.format(
        synchro=synchro, source=drive_path(place.source),
        destination=drive_path(place.destination)) + more)


class Scene:
    """A state to start from, what is then run, and what has to be true whenever it stops."""

    name = ""
    arguments = BACKUP
    synchro = -1
    before = OLD  # in source and copy, after a complete backup
    then = {}     # written to the source since
    gone = ()     # removed from the source since
    status = 0    # of an undisturbed run
    start = None  # what was laid

    def prepare(self, place):
        """The same start each time."""
        if self.start is None:
            self.lay(place)
            self.start = Snapshot(place.source, place.destination, place.home)
        else:
            self.start.bring_back()

    def lay(self, place):
        for directory in (place.source, place.destination, place.home):
            emptied(directory)
        settle(place, self.synchro)
        planted(place.source, self.before)
        if self.before:
            place.console(*BACKUP)
        for name in self.gone:
            path = f"{place.source}/{name}"
            shutil.rmtree(path) if os.path.isdir(path) else os.remove(path)
        planted(place.source, self.then, seconds=-60)

    def written(self, place):
        return place.copy

    def reference(self, place):
        return place.source

    def right(self, place):
        """Whether an undisturbed run has done everything."""
        return files_of(place.copy) == files_of(place.source)

    def held(self, place, state, verdict, what):
        """After the kill. `state`: what was there before the run."""
        now = files_of(self.written(place))
        verdict.expect((files_of(self.reference(place)), stamps(self.reference(place))) ==
                       (state["reference"], state["stamps"]), f"{what} : ce qui est lu a changé")
        verdict.expect(not strangers(now, state["written"], state["reference"]),
                       f"{what} : ni l'ancien ni le nouveau",
                       strangers(now, state["written"], state["reference"]))
        lost = [name for name in state["written"] if name not in now and name in state["reference"]]
        verdict.expect(not lost, f"{what} : un fichier qui devait rester manque", lost)
        verdict.expect(not lying_times(place.source, place.copy), f"{what} : heure sans contenu",
                       lying_times(place.source, place.copy))
        self.proof(place, state, now, verdict, what)
        self.settings_held(place, state, verdict, what)

    def proof(self, place, state, now, verdict, what):
        verdict.expect(not damaged_certificates(place.copy), f"{what} : certificat en morceaux",
                       certificates(place.copy))
        if says_complete(place.copy):
            verdict.expect(now in (state["written"], state["reference"]),
                           f"{what} : un certificat dit plus que la copie",
                           difference(now, state["reference"]))

    @staticmethod
    def settings_held(place, state, verdict, what):
        found = read(place.settings).decode("cp1252")
        own = [line for line in state["settings"].splitlines()]
        lost = [line for line in own if line not in found.splitlines()
                and not any(key in line for key in ("Save", "Rest", "Comp", "Config", "Date"))]
        verdict.expect(not lost, f"{what} : un réglage est perdu", f"{lost}\n{found}")

    def again(self, place, verdict, what):
        outcome = place.console(*self.arguments)
        verdict.expect(outcome.status == self.status, f"{what} : reprise, état {outcome.status}",
                       outcome)
        verdict.expect(self.right(place), f"{what} : reprise incomplète",
                       f"{difference(files_of(place.copy), files_of(place.source))}\n{outcome}")
        left = temporaries(place.source, place.destination, place.home)
        verdict.expect(not left, f"{what} : restes", left)


class New(Scene):
    """Une première sauvegarde"""

    name = "nouveau"
    before = {}
    then = {**OLD, **ADDED}


class Filled(Scene):
    """De nouveaux répertoires, pleins de fichiers"""

    name = "répertoires pleins"
    then = {**{f"lot/f{number}": f"lot {number}" for number in range(26)},
            **{f"sous/lot/f{number}": f"autre {number}" for number in range(26)},
            "sous/lot/lien": "-> f3"}


class Overwrite(Scene):
    """Tout a changé"""

    name = "remplacement"
    then = {**NEW, **ADDED}


class Delete(Scene):
    """Des fichiers et des répertoires ne sont plus là, l'un est devenu l'autre"""

    name = "effacement"
    before = {**OLD, **ADDED, "x/1.txt": "1", "x/y/2.txt": "2", "change": "fichier"}
    gone = ("x", "e.txt", "sous/lien", "change", "neuf/profond")
    then = {"change/dedans.txt": "répertoire", "neuf/profond": "fichier"}


class Restore(Scene):
    """L'original est abîmé"""

    name = "restauration"
    arguments = RESTORE
    before = {**OLD, **ADDED}
    gone = ("sous", "e.txt", "neuf")
    then = {"a.txt": "abîmé", "en trop.txt": "x", "trop/y.txt": "y", "neuf": "fichier"}

    def written(self, place):
        return place.source

    def reference(self, place):
        return place.copy

    def proof(self, place, state, now, verdict, what):
        marked = bool(marks(place.source, "restauration") or marks(place.copy, "restauration"))
        verdict.expect(marked or now in (state["written"], state["reference"]),
                       f"{what} : à moitié restauré, et rien ne le dit",
                       difference(now, state["reference"]))


class RestoreThenBackup(Restore):
    """Après une restauration tuée, une sauvegarde garde tout"""

    name = "sauvegarde après"

    def again(self, place, verdict, what):
        begun = bool(marks(place.source, "restauration"))
        kept = files_of(place.copy)
        place.console(*BACKUP)
        if begun:
            after = files_of(place.copy)
            lost = [name for name in kept if name not in after]
            verdict.expect(not lost, f"{what} : la sauvegarde a effacé la seule copie", lost)


class Settings(Scene):
    """Rien à copier : seuls les réglages changent"""

    name = "réglages"


class ErrorList(Scene):
    """La liste d'erreurs d'une opération remplace celle d'avant"""

    name = "liste d'erreurs"
    synchro = 0
    status = 1

    def lay(self, place):
        super().lay(place)
        for name in ("a.txt", "sous/b.txt"):
            os.remove(f"{place.copy}/{name}")
            os.makedirs(f"{place.copy}/{name}")
        place.console(*BACKUP)
        os.rmdir(f"{place.copy}/a.txt")
        self.list = f"{place.home}/S_General.err"
        self.old = read(self.list)

    def held(self, place, state, verdict, what):
        text = read(self.list) if os.path.exists(self.list) else b""
        whole = text.startswith(self.old[:20]) and text.endswith(b"\r\n")
        verdict.expect(text == self.old or (whole and b"b.txt" in text and b"a.txt" not in text),
                       f"{what} : ni l'ancienne liste ni la nouvelle", text)
        self.settings_held(place, state, verdict, what)

    def right(self, place):
        text = read(self.list)
        return b"b.txt" in text and read(f"{place.copy}/a.txt") == b"ancien a"


class Certificate(Scene):
    """Un répertoire est exclu depuis : la preuve doit le dire"""

    name = "certificat"

    def lay(self, place):
        super().lay(place)
        settle(place, self.synchro, "[General]\n")
        text = read(place.settings).decode("cp1252")
        text = text.replace("Confirmation=1\r\n", "Confirmation=1\r\nRepExclu0_Mode=2\r\n"
                            "RepExclu0_Rep1=\\sous\r\n", 1)
        write(place.settings, text.encode("cp1252"))
        write(f"{place.source}/a.txt", "autre a")

    def proof(self, place, state, now, verdict, what):
        verdict.expect(not damaged_certificates(place.copy), f"{what} : certificat en morceaux")
        for text in certificates(place.copy):
            complete = b"etat=complete" in text
            untouched = now == state["written"]
            done = now.get("a.txt") == "autre a" and b"exclu=\\sous" in text
            verdict.expect(not complete or untouched or done,
                           f"{what} : un certificat dit plus que la copie", text)

    def right(self, place):
        copy, source = files_of(place.copy), files_of(place.source)
        return all(copy.get(name) == content for name, content in source.items())


class SingleFile(Scene):
    """La ligne d'un seul fichier"""

    name = "un fichier"
    before = {"seul.bin": BIG}
    then = {"seul.bin": "n" * 280_000}

    def lay(self, place):
        source = place.source
        place.source = f"{source}/seul.bin"
        settle(place)
        text = place.read_settings()
        place.source = source
        for directory in (place.source, place.destination, place.home):
            emptied(directory)
        write(place.settings, text)
        planted(place.source, self.before)
        place.console(*BACKUP)
        planted(place.source, self.then, seconds=-60)

    def written(self, place):
        return place.destination

    def proof(self, place, state, now, verdict, what):
        pass

    def right(self, place):
        return files_of(place.destination) == files_of(place.source)


SCENES = (New, Filled, Overwrite, Delete, Restore, RestoreThenBackup, Settings, ErrorList, Certificate,
          SingleFile)


def state_of(scene, place):
    written = scene.written(place)
    return {"written": files_of(written),
            "reference": files_of(scene.reference(place)),
            "stamps": stamps(scene.reference(place)),
            "settings": read(place.settings).decode("cp1252")}


def sweep(shop, scene, report, step, offset):
    place = shop.place()
    scene.prepare(place)
    outcome, calls = shop.calls(place, scene.arguments, below=place.root)
    verdict = Verdict(report)
    verdict.expect(outcome.status == scene.status and scene.right(place),
                   f"{scene.name} : sans arrêt, état {outcome.status}", outcome)
    visited = 0
    for number, (_, call, path) in enumerate(calls, 1):
        if (number + offset) % step:
            continue
        for how in ("kill", "tear") if call == "write" else ("kill",):
            scene.prepare(place)
            state = state_of(scene, place)
            outcome = shop.trapped(place, scene.arguments, at=number, do=how, below=place.root)
            what = f"{scene.name}, {how} {number} {call} {os.path.relpath(path, place.root)}"
            # How many settings a run writes depends on the second in which it ends.
            ended = outcome.status == scene.status and number > len(calls) // 2
            if not verdict.expect(outcome.status in KILLED or ended, f"{what} : pas tué", outcome):
                continue
            if outcome.status not in KILLED:
                continue
            visited += 1
            scene.held(place, state, verdict, what)
            scene.again(place, verdict, what)
    verdict.close(f"{scene.name}, {len(calls)} appels qui changent le disque", visited)
    place.remove()


# ---- a longer job --------------------------------------------------------------------------------
def content(name, version, size):
    head = f"{name}|{version}|{size}|"
    return (head + f"{version:07d}" * (size // 7 + 1))[:max(size, len(head))]


def is_whole(text, name):
    """A content says itself what it has to be."""
    parts = text.split("|", 3)
    return len(parts) == 4 and parts[0] == name and content(
        name, int(parts[1]), int(parts[2])) == text


class Job:
    """A source of a hundred files that changes between the kills."""

    def __init__(self, place, chance):
        self.place = place
        self.chance = chance
        self.version = 0
        settle(place)
        for number in range(100):
            self.put(f"d{number % 7}/s{number % 3}/f{number}")

    def put(self, name):
        self.version += 1
        size = self.chance.choice((0, 10, 500, 5_000, 5_000, 70_000, 200_000))
        write(f"{self.place.source}/{name}", content(name, self.version, size))
        touch(f"{self.place.source}/{name}", -100_000 + self.version)

    def change(self):
        names = list(files_of(self.place.source))
        for name in self.chance.sample(names, min(len(names), self.chance.randint(1, 25))):
            if self.chance.random() < 0.3:
                os.remove(f"{self.place.source}/{name}")
                self.put(f"{name.split('-')[0]}-{self.version}")
            else:
                self.put(name)

    def check(self, verdict, what):
        copy = files_of(self.place.copy)
        torn = [name for name, text in copy.items()
                if not is_whole(text, name)]
        verdict.expect(not torn, f"{what} : pas entier", torn)
        lying = lying_times(self.place.source, self.place.copy)
        verdict.expect(not lying, f"{what} : heure sans contenu", lying)
        verdict.expect(not damaged_certificates(self.place.copy), f"{what} : certificat")
        if says_complete(self.place.copy):
            untouched = copy == self.copied
            verdict.expect(untouched or copy == files_of(self.place.source),
                           f"{what} : un certificat dit plus que la copie")

    def settle_down(self, verdict, what):
        outcome = self.place.console(*BACKUP)
        verdict.expect(outcome.status == 0, f"{what} : reprise, état {outcome.status}", outcome)
        verdict.expect(files_of(self.place.copy) == files_of(self.place.source), f"{what} : reprise")
        left = temporaries(self.place.source, self.place.destination, self.place.home)
        verdict.expect(not left, f"{what} : restes", left)


def at_random(shop, report, kills, seed):
    chance = random.Random(seed)
    place = shop.place()
    verdict = Verdict(report)
    job = Job(place, chance)
    job.copied = {}
    done = attempts = 0
    most = len(shop.calls(place, BACKUP, below=place.root, reads=1)[1])
    while done < kills and attempts < kills * 4 + 40:
        attempts += 1
        job.copied = files_of(place.copy)
        job.change()
        number = chance.randint(1, most)
        how = chance.choice(("kill", "kill", "tear"))
        outcome = shop.trapped(place, BACKUP, at=number, do=how, below=place.root, reads=1)
        what = f"hasard {seed}, {attempts}e, {how} {number}"
        if outcome.status in KILLED:
            done += 1
        else:
            verdict.expect(outcome.status == 0, f"{what} : état {outcome.status}", outcome)
        job.check(verdict, what)
        if attempts % 10 == 0:
            job.settle_down(verdict, what)
    job.settle_down(verdict, "à la fin")
    verdict.close(f"hasard (graine {seed})", done, kills)
    place.remove()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=default_programs())
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--kills", type=int)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("word", nargs="?", default="")
    arguments = parser.parse_args()
    kills = arguments.kills if arguments.kills is not None else (200 if arguments.short else 10_000)
    report = Report()
    print(f"graine : {arguments.seed}")
    step = 4 if arguments.short else 1
    with Workshop(os.path.abspath(arguments.programs)) as shop:
        if shop.why_not:
            report.leave_out("crash_sweep", shop.why_not)
            return finish(report)
        for scene in SCENES:
            if arguments.word in scene.name:
                played(report, scene,
                       lambda made: sweep(shop, made, report, step, arguments.seed % step))
        if arguments.word in "hasard" and kills:
            report.scenario = "hasard"
            at_random(shop, report, kills, arguments.seed)
    return finish(report)


if __name__ == "__main__":
    sys.exit(main())
