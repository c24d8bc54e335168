#!/usr/bin/env python3
"""Records all that a disk is given during a run, and makes of it the disks that a power cut may
leave: cut anywhere, with, without and with any part of what was not flushed. Each is mounted, looked
at and run again. Prints a line for each fault, then the counts.

Usage: power_images.py [--court] [--images N] [--seed N] [--programs DIRECTORY] [--place DIRECTORY]
                       [KIND]...
KIND: ext4, xfs, btrfs; all of them when none is named. --images: of each kind (500). --court: 20
images on ext4.
"""

import argparse
import contextlib
import dataclasses
import os
import random
import shutil
import sys
import tempfile
import threading
import time
import traceback

import harness
import recorded_disk
from cut_disk import MEMORY
from harness import Report, drive_path
from power_cut import ENDINGS, KEPT, NEW, OLD, OWN, Files, KeptPlace, leave
from recorded_disk import ALL, NONE, SOME, Log, RecordedDisk
from sweep_harness import Verdict, default_programs, finish


@dataclasses.dataclass
class Case:
    what: str
    replaced: bool = False  # everything is there in an older version
    in_step: bool = False   # excess files are deleted
    gone: bool = False      # a part of the older version has no new one
    restored: bool = False  # the recorded disk bears the original, and the run is a restore


CASES = (Case("premières copies"),
         Case("remplacements", replaced=True),
         Case("premières copies, excédentaires effacés", in_step=True),
         Case("remplacements, excédentaires effacés", replaced=True, in_step=True, gone=True),
         Case("restauration", replaced=True, restored=True),
         Case("restauration, excédentaires effacés", replaced=True, in_step=True, gone=True,
              restored=True))
SHORT_CASES = (CASES[2], CASES[3], CASES[5])


class Tree:
    """What is below a root, each file by its version."""

    def __init__(self, files, root):
        self.versions = {}  # OLD, NEW, or why it is neither
        self.leftovers = 0
        self.complete = self.marked = False
        for directory, below, names in os.walk(root):
            self.leftovers += sum(name.startswith(OWN) for name in below)
            below[:] = [name for name in below if not name.startswith(OWN)]
            for name in names:
                path = f"{directory}/{name}"
                if name.startswith(OWN):
                    self.own_file(path)
                else:
                    relative = path[len(root) + 1:]
                    self.versions[relative] = version_of(files, relative, path)

    def own_file(self, path):
        self.leftovers += not path.endswith(KEPT)
        self.marked = self.marked or path.endswith(".restauration")
        if path.endswith(".copie"):
            lines = harness.read(path).decode(errors="replace").split("\n")
            whole = lines[-2:] == ["fin", ""]
            self.complete = self.complete or (whole and "etat=complete" in lines)

    def __str__(self):
        found = list(self.versions.values())
        said = ", certificat complet" if self.complete else ""
        return (f"{found.count(NEW)} neufs, {found.count(OLD)} anciens, "
                f"{len(found) - found.count(NEW) - found.count(OLD)} autres, "
                f"{self.leftovers} restes{said}{', marque' if self.marked else ''}")


def version_of(files, name, path):
    if name not in files.sizes:
        return "inconnu"
    stamp = os.stat(path).st_mtime_ns // 100
    for version in (OLD, NEW):
        if stamp == files.time(name, version) // 100:
            whole = harness.read(path) == files.content(name, version)
            return version if whole else f"version {version}, d'autres octets"
    return "aucune date"  # the next run takes it for another file


class Trial:
    """One case on one kind of disk."""

    def __init__(self, place, disk, files, case, verdict, chance):
        self.place, self.disk, self.files, self.case = place, disk, files, case
        self.verdict, self.chance = verdict, chance
        self.old = set(files.sizes)
        self.new = set(files.sizes)
        if case.gone:
            self.new -= set(chance.sample(sorted(files.sizes), len(files.sizes) // 10))
            self.old -= set(chance.sample(sorted(self.new), len(files.sizes) // 20))
        if not case.replaced:
            self.old = set()
        self.counts = {}

    # ---- the trees ---------------------------------------------------------------------------
    @property
    def written(self):
        return self.place.source if self.case.restored else self.place.copy

    def lay(self, root, version):
        """Makes a tree hold one version, and nothing else but the program's own files there."""
        names = self.new if version == NEW else self.old
        found = Tree(self.files, root).versions
        for name in [name for name in found if name not in names]:
            os.remove(f"{root}/{name}")
        for name in names:
            if found.get(name) != version:
                path = f"{root}/{name}"
                harness.write(path, self.files.content(name, version))
                os.utime(path, ns=(self.files.time(name, version),) * 2)

    def forget_marks(self, root):
        for name in os.listdir(root):
            if name.startswith(OWN) and name.endswith(".restauration"):
                os.remove(f"{root}/{name}")

    def is_all(self, tree, version):
        names = self.new if version == NEW else self.old
        if not self.case.in_step and version == NEW:
            names = self.new | self.old
            return set(tree.versions) == names and all(
                tree.versions[name] == NEW for name in self.new)
        return set(tree.versions) == names and set(tree.versions.values()) <= {version}

    # ---- the recording -----------------------------------------------------------------------
    def settle(self):
        text = f"[Position]\nContinueOnError=-1\nSynchroCopie={-1 if self.case.in_step else 0}\n"
        text += f'[General]\nSource0="{drive_path(self.place.source)}"\n'
        text += f'Destination0="{drive_path(self.place.destination)}"\nSelect0=1\nModifie=1\n'
        self.place.write_settings(text)

    def backup(self, *more):
        return self.place.console("sauvegarder", "--ecraser", *more)

    def restore(self):
        return self.place.console("restaurer", "--confirmer", "--ecraser")

    def record(self):
        """How the run was told to the disk, with the part of the log that belongs to the run."""
        self.settle()
        self.disk.make()
        self.disk.put_on()
        os.makedirs(self.place.source, exist_ok=True)
        first = NEW if self.case.restored or not self.case.replaced else OLD
        self.lay(self.place.source, first)
        if self.case.replaced:
            outcome = self.backup()
            self.verdict.expect(outcome.status == 0, "la version d'avant est copiée", outcome)
            self.lay(self.place.source, OLD if self.case.restored else NEW)
        self.disk.take_off()
        self.disk.put_on_recorded()
        start = self.disk.log_size()
        with self.neighbour():
            outcome = self.restore() if self.case.restored else self.backup()
        self.verdict.expect(outcome.status == 0, "l'opération finit sans erreur", outcome)
        self.verdict.expect(self.is_all(Tree(self.files, self.written), NEW),
                            "l'opération rend les arbres égaux", outcome)
        self.sync_neighbour()
        self.disk.take_off_recorded()
        return Log(self.disk), start

    @contextlib.contextmanager
    def neighbour(self):
        """Another program has its own file made safe, again and again, and the journal goes with
        it: all names, and not yet what the files hold."""
        ended = threading.Event()

        def work():
            while not ended.wait(0.03):
                self.sync_neighbour()
        thread = threading.Thread(target=work)
        thread.start()
        try:
            yield
        finally:
            ended.set()
            thread.join()

    def sync_neighbour(self):
        with open(os.path.join(self.disk.point, "voisin"), "w", encoding="ascii") as file:
            file.write("x")
            file.flush()
            os.fsync(file.fileno())

    # ---- the images --------------------------------------------------------------------------
    def run(self, images):
        log, start = self.record()
        first = log.number_at(start)
        last = len(log.records)
        self.counts["écritures"] = last - first - log.flushes
        self.counts["vidages"] = log.flushes
        cuts = [(self.chance.randint(first, last), (ALL, NONE, SOME, SOME)[number % 4],
                 f"image {number}") for number in range(images)]
        for number, how, name, loose in log.images(cuts, self.chance):
            what = (f"{self.disk.kind}, {self.case.what}, après {number} de {last}, {how} de "
                    f"{loose} non vidés")
            try:
                self.look(name, what)
            finally:
                self.disk.take_off()
                os.remove(self.disk.file(name))

    def count(self, what):
        self.counts[what] = self.counts.get(what, 0) + 1

    def look(self, name, what):
        try:
            self.disk.put_on(name)
        except OSError as error:
            self.verdict.expect(False, f"{what} : le disque ne revient pas", error)
            return
        self.count("montées")
        tree = Tree(self.files, self.written)
        self.held(tree, what)
        if self.case.restored:
            self.after_restore(tree, what)
        else:
            self.after_backup(what)

    def held(self, tree, what):
        """What is found before anything is run again."""
        wrong = [(name, version) for name, version in tree.versions.items()
                 if version not in (OLD, NEW, "aucune date")]
        self.verdict.expect(not wrong, f"{what} : la date et d'autres octets", f"{wrong}\n{tree}")
        kept = self.old & self.new if self.case.in_step else self.old
        lost = sorted(kept - set(tree.versions))
        self.verdict.expect(not lost, f"{what} : anciens fichiers perdus", f"{lost}\n{tree}")
        bare = [name for name, version in tree.versions.items() if version == "aucune date"
                and name in self.old]
        self.verdict.expect(not bare, f"{what} : un ancien fichier en pièces", f"{bare}\n{tree}")
        if self.is_all(tree, NEW):
            self.count("tout neufs")
        elif self.is_all(tree, OLD):
            self.count("intacts")
        elif tree.complete and not self.case.restored:
            self.verdict.expect(False, f"{what} : le certificat dit plus que la copie", tree)
        else:
            self.count("entre deux")

    def after_backup(self, what):
        """A restore deletes nothing on the strength of what was lost; then the backup goes on."""
        if self.chance.random() < 0.5:
            self.count("restaurées")
            outcome = self.restore()
            self.verdict.expect(outcome.status in (0, 1), f"{what} : la restauration", outcome)
            tree = Tree(self.files, self.place.source)
            # An old file that the copy still had comes back; none may go.
            lost = sorted(self.new - set(tree.versions))
            whole = self.is_all(Tree(self.files, self.place.copy), OLD)  # the old one, proven
            self.verdict.expect(not lost or (whole and self.case.in_step),
                                f"{what} : la restauration a effacé", f"{lost}\n{tree}\n{outcome}")
            wrong = [name for name, version in tree.versions.items() if version not in (OLD, NEW)]
            self.verdict.expect(not wrong, f"{what} : restauré d'un fichier en pièces",
                                f"{wrong}\n{outcome}")
            self.lay(self.place.source, NEW)
            self.forget_marks(self.place.source)
        outcome = self.backup("--confirmer-source")
        again = Tree(self.files, self.place.copy)
        self.verdict.expect(outcome.status == 0 and self.is_all(again, NEW)
                            and again.leftovers == 0,
                            f"{what} : l'opération suivante", f"{again}\n{outcome}")

    def after_restore(self, tree, what):
        """A backup of what is half restored deletes nothing; then the restore goes on."""
        untouched = self.is_all(tree, OLD)
        if not untouched and self.chance.random() < 0.5:
            self.count("sauvegardées")
            before = set(Tree(self.files, self.place.copy).versions)
            outcome = self.backup()
            after = Tree(self.files, self.place.copy)
            lost = sorted(before - set(after.versions) - (self.old - self.new))
            self.verdict.expect(not lost, f"{what} : la sauvegarde a effacé",
                                f"{lost}\n{tree}\n{outcome}")
            self.lay(self.place.copy, NEW)
            outcome = self.restore()
            again = Tree(self.files, self.place.source)
            # What that backup brought into the copy is no longer proven to be too much.
            self.verdict.expect(outcome.status in (0, 1) and self.new <= {
                name for name, version in again.versions.items() if version == NEW},
                f"{what} : la restauration suivante", f"{again}\n{outcome}")
            self.remake_copy()
            return
        outcome = self.restore()
        again = Tree(self.files, self.place.source)
        self.verdict.expect(outcome.status == 0 and self.is_all(again, NEW)
                            and again.leftovers == 0 and not again.marked,
                            f"{what} : l'opération suivante", f"{again}\n{outcome}")

    def remake_copy(self):
        """The copy is complete and proven again, as it was before the run."""
        self.forget_marks(self.place.copy)
        self.lay(self.place.source, NEW)
        outcome = self.backup("--confirmer-source")
        self.verdict.expect(outcome.status == 0, "la copie est refaite", outcome)


class Session:
    """What the command line asks of trials on recorded disks: `what` they are, and how many of each
    kind of disk there are without a word."""

    def __init__(self, what, count, how_many):
        parser = argparse.ArgumentParser()
        parser.add_argument("--court", action="store_true")
        parser.add_argument(count, dest="count", type=int, default=how_many)
        parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
        parser.add_argument("--programs", default=default_programs())
        parser.add_argument("--place", default=MEMORY)
        parser.add_argument("kinds", nargs="*", metavar="KIND")
        self.asked = parser.parse_args()
        self.report = Report()
        self.report.scenario = what
        sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)
        for number in ENDINGS:
            harness.signal.signal(number, leave)
        print(f"graine : {self.asked.seed}")
        # The other tree, too, lies where nothing else makes it wait.
        tempfile.tempdir = self.asked.place
        if os.geteuid() == 0:
            recorded_disk.live_apart()

    def play(self, kind_of_trial, cases, count, files):
        """`count` trials on each kind of disk, shared out among the cases. Gives the exit status."""
        kinds = ("ext4",) if self.asked.court else ("ext4", "xfs", "btrfs")
        for kind in self.asked.kinds or kinds:
            reason = recorded_disk.why_not(kind)
            if reason:
                self.report.leave_out(f"{self.report.scenario}, {kind}", reason)
                continue
            for number, case in enumerate(cases):
                share = count // len(cases) + (number < count % len(cases))
                self.play_case(kind_of_trial, kind, case, share, Files(*files))
        return finish(self.report)

    def play_case(self, kind_of_trial, kind, case, count, files):
        place = KeptPlace(os.path.abspath(self.asked.programs))
        base = tempfile.mkdtemp(prefix="coffrelune-disque-", dir=self.asked.place)
        verdict = Verdict(self.report)
        started = time.monotonic()
        try:
            disk = RecordedDisk(base, kind, point_of(place, case))
            trial = kind_of_trial(place, disk, files, case, verdict,
                                  random.Random(f"{self.asked.seed} {kind} {case.what}"))
            try:
                trial.run(count)
            finally:
                told = ", ".join(f"{what} {number}" for what, number in trial.counts.items())
                print(f"    {told} ; {time.monotonic() - started:.0f} s")
                place.close()
                disk.take_off_recorded()
        except Exception:  # pylint: disable=broad-except  # the next case is still worth it
            verdict.expect(False, f"{kind}, {case.what} va à son terme", traceback.format_exc())
        finally:
            shutil.rmtree(base, ignore_errors=True)
            place.remove()
        verdict.close(f"{kind}, {case.what}", count)


def point_of(place, case):
    """Where the recorded disk is mounted: below the tree that the run writes."""
    if not case.restored:
        return place.destination
    point = os.path.join(place.root, "Disque de l'original")
    os.mkdir(point)
    place.source = os.path.join(point, "Données")
    return point


def main():
    session = Session("images", "--images", 500)
    if session.asked.court:
        return session.play(Trial, SHORT_CASES, 20, (1100, 2))
    return session.play(Trial, CASES, session.asked.count, (1300, 4))


if __name__ == "__main__":
    sys.exit(main())
