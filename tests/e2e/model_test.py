#!/usr/bin/env python3
"""Random sequences of what users do, on the real console program, against a small model of what may
exist where: an original and two copies on volumes that come and go. A version of a file may leave a
tree only when the model knows why. A sequence that fails is shortened as far as it still fails.

Usage: model_test.py [--programs DIRECTORY] [--sequences N] [--seed N] [--from N] [--play FILE]
--from leaves out the first ones of that seed: what is cut off says where it goes on.
"""

import argparse
import ast
import contextlib
import ctypes
import os
import random
import re
import shutil
import signal
import sys

from harness import Report, drive_path, read
from loss_harness import KEPT, why_no_mount
from sweep_harness import (KILLED, Workshop, default_programs, difference, emptied, files_of,
                           finish, stamps, temporaries)

NAMES = ("a.txt", "b.txt", "d0/a.txt", "d0/b.txt", "d0/e/c.txt", "d1/a.txt", "d1/e/f/d.txt", "d2",
         "d2/x.txt", "A.txt")
DIRECTORIES = ("d0", "d1", "d2", "d0/e")
DISKS = ("F", "G")
LIBC = ctypes.CDLL(None, use_errno=True)
MS_BIND, MNT_DETACH = 4096, 2


def mount(what, point, kind=b"tmpfs", flags=0):
    if LIBC.mount(what.encode(), point.encode(), kind, flags, b"size=16m" if kind else None):
        raise OSError(ctypes.get_errno(), f"mount {what} {point}")


def unmount(point):
    LIBC.umount2(point.encode(), MNT_DETACH)


class Broken(Exception):
    """What the model does not allow."""


# ---- volumes -------------------------------------------------------------------------------------
class Volume:
    """A file system that is shown at one of two places, or at none."""

    def __init__(self, place, name, can_mount):
        self.can_mount = can_mount
        base = f"/mnt/{os.path.basename(place.root)}" if can_mount else place.root
        self.points = [f"{base}-{name}{number}" for number in (0, 1)]
        self.hidden = f"{place.root}/caché-{name}"
        self.at = None
        for point in self.points if can_mount else self.points[:1]:
            os.makedirs(point)
        if can_mount:
            os.makedirs(self.hidden)
            mount(name, self.hidden)

    def plug(self, where=0):
        self.unplug()
        if self.can_mount:
            mount(self.hidden, self.points[where], None, MS_BIND)
        self.at = self.points[where if self.can_mount else 0]

    def unplug(self):
        if self.can_mount and self.at is not None:
            unmount(self.at)
            self.at = None

    @property
    def content(self):
        """Where its files can be seen, plugged or not."""
        return self.hidden if self.can_mount else self.points[0]

    def close(self):
        self.unplug()
        if self.can_mount:
            unmount(self.hidden)
            for point in self.points:
                with contextlib.suppress(OSError):
                    os.rmdir(point)


class World:
    """The volumes, the settings, and what the model knows."""

    def __init__(self, shop):
        self.shop = shop
        self.place = shop.place()
        can_mount = not why_no_mount()
        self.volumes = {name: Volume(self.place, name, can_mount) for name in ("S", *DISKS)}
        self.letters = self.find_letters() if can_mount else {}
        self.counts = {}

    def find_letters(self):
        """Each place of each volume gets its letter once."""
        letters = {}
        self.place.write_settings("[General]\n")
        for where in (0, 1):
            for volume in self.volumes.values():
                volume.plug(where)
            self.place.console("resultats")
            text = read(f"{self.place.home}/Lecteurs.ini").decode("cp1252")
            for volume in self.volumes.values():
                found = re.search(rf"^([D-Z])=.*{re.escape(volume.at)}$", text, re.M)
                letters[volume.at] = found.group(1) + ":\\"
        self.kept_letters = read(f"{self.place.home}/Lecteurs.ini")
        return letters

    def begin(self):
        emptied(self.place.home)
        if self.letters:
            with open(f"{self.place.home}/Lecteurs.ini", "wb") as file:
                file.write(self.kept_letters)
        for volume in self.volumes.values():
            volume.plug(0)
            emptied(volume.content)
        os.mkdir(self.original)
        self.where = {name: 0 for name in self.volumes}  # as the settings say
        self.version = 0
        self.synchro, self.excluded = True, frozenset()
        # What its certificate may say of a copy: its files then, and what was left out.
        self.proofs = {disk: [] for disk in DISKS}
        self.unfinished = set()  # copies whose restore was stopped with something still to do

    def count(self, what):
        self.counts[what] = self.counts.get(what, 0) + 1

    @property
    def original(self):
        return f"{self.volumes['S'].content}/Données"

    def copy(self, disk):
        return f"{self.volumes[disk].content}/Données"

    def close(self):
        for volume in self.volumes.values():
            volume.close()
        self.place.remove()

    # ---- the user's hand -------------------------------------------------------------------------
    def path(self, name):
        return f"{self.original}/{name}"

    def clear_way(self, name):
        """Takes away what stands where a file or its directories are to be."""
        for at, _ in [*enumerate(name)] + [(len(name), "")]:
            if name[at:at + 1] in ("/", "") and os.path.isfile(self.path(name[:at])):
                os.remove(self.path(name[:at]))
        if os.path.isdir(self.path(name)):
            shutil.rmtree(self.path(name))
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)

    def date(self, name):
        self.version += 1
        # No two an hour apart, and none the same.
        time = 1_600_000_000_000_000_000 + self.version * 7_919_000_000_000 + self.version * 100
        os.utime(self.path(name), ns=(time, time))

    def write(self, name, size):
        self.clear_way(name)
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(f"{name}|{self.version}|" + "x" * size)
        self.date(name)

    def remove(self, name):
        if os.path.isfile(self.path(name)):
            os.remove(self.path(name))

    def remove_directory(self, name):
        if os.path.isdir(self.path(name)):
            shutil.rmtree(self.path(name))

    def rename(self, name, to):
        if not os.path.isfile(self.path(name)) or to.startswith(name + "/"):
            return
        held = self.path(".en route")
        os.rename(self.path(name), held)
        self.clear_way(to)
        os.rename(held, self.path(to))

    def redate(self, name):
        if os.path.isfile(self.path(name)):
            self.date(name)

    def plug(self, volume, where):
        self.volumes[volume].plug(where)
        self.where[volume] = where

    def plug_unsettled(self, volume, where):
        """At a place that the settings do not name."""
        self.volumes[volume].plug(where)

    def unplug(self, volume):
        self.volumes[volume].unplug()

    def exclude(self, names):
        self.excluded = frozenset(names)

    def synchronise(self, on):
        self.synchro = on

    # ---- the program -----------------------------------------------------------------------------
    def core(self, volume):
        point = self.volumes[volume].points[self.where[volume]]
        if not self.letters:
            point = self.volumes[volume].points[0]
        return self.letters.get(point) or drive_path(point) + "\\"

    def settle(self):
        text = (f"[Position]\nContinueOnError=-1\nSynchroCopie={-1 if self.synchro else 0}\n"
                "SuiviAnalyse=0\n")
        for disk in DISKS:
            text += (f'[{disk.capitalize()}]\nModifie=1\nConfirmation=1\nSelect0=1\n'
                     f'Source0="{self.core("S")}Données"\nDestination0="{self.core(disk)}"\n')
            if self.excluded:
                text += "RepExclu0_Mode=2\n"
            for number, name in enumerate(sorted(self.excluded), 1):
                native = name.replace("/", "\\")
                text += f"RepExclu0_Rep{number}=\\{native}\n"
        self.place.write_settings(text)

    def present(self, disk):
        return all(self.volumes[name].at is not None and (
            not self.volumes[name].can_mount
            or self.volumes[name].at == self.volumes[name].points[self.where[name]])
            for name in ("S", disk))

    def left_out(self, name, *more):
        return any(name.startswith(directory + "/") for directory in self.excluded.union(*more))

    def run(self, command, disk, number, how, more):
        self.settle()
        arguments = [command, "--config", disk.capitalize(), "--journal", *more]
        below = self.place.root if not self.letters else "/mnt"
        if how == "none":
            return self.place.console(*arguments)
        return self.shop.trapped(self.place, arguments, at=number, do=how, reads=1, below=below)

    def backup(self, disk, number=0, how="none", confirmed=False):
        before, source = files_of(self.copy(disk)), files_of(self.original)
        times = stamps(self.original)
        outcome = self.run("sauvegarder", disk, number, how,
                           ["--confirmer-source"] if confirmed else [])
        after = files_of(self.copy(disk))
        self.common(disk, outcome, how)
        expect((files_of(self.original), stamps(self.original)) == (source, times),
               "une sauvegarde a changé l'original", outcome)
        expect(self.present(disk) or after == before,
               "une sauvegarde a changé une copie qui n'est pas la sienne, ou d'un original absent",
               difference(before, after), outcome)
        if confirmed:
            self.unfinished.clear()
        for name in before:
            if after.get(name) in (before[name], source.get(name)) and name in after:
                continue
            expect(name not in after, f"{name} n'est ni l'ancien ni le nouveau", outcome)
            # A file that went because a directory takes its place, or the other way round, is gone
            # from the original, too.
            expect(self.synchro and name not in source and source
                   and not self.unfinished and not self.left_out(name),
                   f"{name} a disparu de la copie", outcome)
            self.count("effacés d'une copie")
        for name in after:
            expect(name in before or after[name] == source.get(name),
                   f"{name} est un inconnu dans la copie", outcome)
        self.after_backup(disk, outcome, source, before, after)

    def after_backup(self, disk, outcome, source, before, after):
        if outcome.status != 0:
            # A stop may come when all has been done: then the copy is one to restore from. Or it
            # came before anything was: then it is what it was.
            whole = self.present(disk) and all(
                self.left_out(name) or after.get(name) == source[name] for name in source)
            if after != before or (whole and outcome.status not in (3, *KILLED)):
                self.proofs[disk] = []
            if whole:
                self.proofs[disk].append((after, self.excluded))
            return
        self.count("sauvegardes sans erreur")
        for name in source:
            expect(self.left_out(name) or after.get(name) == source[name],
                   f"« sans erreur », et {name} n'est pas dans la copie", outcome)
        for name in after:
            expect(name in source or not self.synchro or self.left_out(name) or
                   "Fichiers excédentaires conservés" in outcome.all or "Non effacé" in outcome.all,
                   f"« sans erreur », et {name} est encore dans la copie", outcome)
        expect(self.excluded or not temporaries(self.copy(disk)), "un reste", outcome)
        self.proofs[disk] = [(after, self.excluded)]

    def restore(self, disk, number=0, how="none"):
        before, source = files_of(self.original), files_of(self.copy(disk))
        times = stamps(self.copy(disk))
        outcome = self.run("restaurer", disk, number, how, ["--confirmer"])
        after = files_of(self.original)
        self.common(disk, outcome, how)
        expect((files_of(self.copy(disk)), stamps(self.copy(disk))) == (source, times),
               "une restauration a changé la copie", outcome)
        expect(self.present(disk) or after == before, "une restauration d'une copie absente",
               difference(before, after), outcome)
        for name in before:
            if name in after and after[name] in (before[name], source.get(name)):
                continue
            expect(name not in after, f"{name} n'est ni l'ancien ni le nouveau", outcome)
            expect(self.synchro and name not in source
                   and any(files == source and not self.left_out(name, excluded)
                           for files, excluded in self.proofs[disk]),
                   f"{name} a disparu de l'original", outcome)
            self.count("effacés de l'original")
        for name in after:
            expect(name in before or after[name] == source.get(name),
                   f"{name} est un inconnu dans l'original", outcome)
        wanted = {name for name in source if not self.left_out(name)}
        missing = [name for name in wanted if after.get(name) != source[name]]
        if outcome.status == 0:
            self.count("restaurations sans erreur")
            expect(not missing, "« sans erreur », et tout n'est pas revenu", missing, outcome)
            self.unfinished.discard(disk)
        elif missing and after != before and outcome.status in (3, *KILLED):
            self.unfinished.add(disk)

    def common(self, disk, outcome, how):
        """What holds of every run."""
        allowed = (0, 1, 3) if how in ("none", "interrupt") else (0, 1, 3, *KILLED)
        expect(outcome.status in allowed, f"état {outcome.status}", outcome)
        self.count("tués" if outcome.status in KILLED else f"état {outcome.status}")
        expect(outcome.status != 0 or self.present(disk), "sans erreur, et un volume manque",
               outcome)
        expect(outcome.status != 0 or KEPT not in outcome.err, "sans erreur, et tout n'est pas dit",
               outcome)
        for volume in self.volumes.values():
            for point in volume.points:
                bare = volume.can_mount and point != volume.at
                expect(not bare or not os.listdir(point), f"{point} est nu, et a reçu des fichiers",
                       outcome)


def expect(good, what, *details):
    if not good:
        raise Broken("\n".join([what, *(str(detail) for detail in details)]))


# ---- sequences -----------------------------------------------------------------------------------
def some_action(chance):
    kind = chance.choices(
        ("write", "remove", "remove_directory", "rename", "redate", "plug", "plug_unsettled",
         "unplug", "exclude", "synchronise", "backup", "restore"),
        (22, 9, 2, 8, 4, 7, 1, 3, 5, 3, 22, 14))[0]
    name, disk = chance.choice(NAMES), chance.choice(DISKS)
    volume = chance.choice(("S", *DISKS))
    if kind == "write":
        return (kind, name, chance.choice((0, 5, 5, 300, 9_000, 200_000)))
    if kind in ("remove", "redate"):
        return (kind, name)
    if kind == "remove_directory":
        return (kind, chance.choice(DIRECTORIES))
    if kind == "rename":
        return (kind, name, chance.choice(NAMES))
    if kind in ("plug", "plug_unsettled"):
        return (kind, volume, chance.randrange(2))
    if kind == "unplug":
        return (kind, volume)
    if kind == "exclude":
        return (kind, tuple(sorted(chance.sample(DIRECTORIES, chance.choice((0, 0, 1, 2))))))
    if kind == "synchronise":
        return (kind, chance.random() < 0.8)
    how = chance.choices(("none", "kill", "tear", "interrupt"), (5, 3, 1, 1))[0]
    number = 0 if how == "none" else int(2 ** chance.uniform(3, 10))
    confirmed = (chance.random() < 0.1,) if kind == "backup" else ()
    return (kind, disk, number, how, *confirmed)


def sequence(chance):
    """A few files and a first backup, then anything; at the end every volume is back."""
    actions = [("write", name, 5) for name in chance.sample(NAMES, 5)]
    actions += [("backup", chance.choice(DISKS))]
    actions += [some_action(chance) for _ in range(chance.randint(6, 16))]
    return actions + [("plug", "S", 0), ("plug", "F", 0), ("plug", "G", 0), ("backup", "F"),
                      ("backup", "G", 0, "none", True)]


def broken(world, actions):
    """Why a sequence fails; None when it does not."""
    world.begin()
    for number, (kind, *arguments) in enumerate(actions):
        try:
            getattr(world, kind)(*arguments)
        except Broken as reason:
            return f"{number} {kind} {arguments} : {reason}"
    return None


def shortened(world, actions):
    """The shortest sequence that still fails, taking actions away by ever smaller pieces."""
    size = len(actions) // 2
    while size >= 1:
        start = 0
        while start < len(actions):
            fewer = actions[:start] + actions[start + size:]
            if broken(world, fewer) is not None:
                actions = fewer
            else:
                start += size
        size //= 2
    return actions


def play(world, report, first, count, seed):
    failures = played = 0
    for number in range(first, count):
        if played and number % 500 == 0:
            print(f"    {number} suites, {failures} fautes, {world.counts}", flush=True)
        actions = sequence(random.Random(f"{seed}/{number}"))
        try:
            reason = broken(world, actions)
        except KeyboardInterrupt:
            report.check("le modèle va à son terme", False,
                         f"la suite : --seed {seed} --from {number} --sequences {count}")
            break
        played += 1
        if reason is None:
            continue
        failures += 1
        print(f"    suite {number} de la graine {seed} : {reason[:200]}", flush=True)
        actions = shortened(world, actions)
        print(f"    raccourcie : {actions!r}")
        print("\n".join(f"    {line}" for line in (broken(world, actions) or reason).splitlines()),
              flush=True)
        if failures >= 5:
            break
    told = ", ".join(f"{what} {found}" for what, found in sorted(world.counts.items()))
    print(f"    {told}")
    report.check(f"modèle : {played} suites, {failures} fautes", failures == 0)
    if played >= 100:
        for what in ("effacés d'une copie", "effacés de l'original", "tués",
                     "restaurations sans erreur"):
            report.check(f"modèle : il y en a eu ({what})", world.counts.get(what, 0) > 0)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=default_programs())
    parser.add_argument("--sequences", type=int, default=200)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("--from", dest="first", type=int, default=0)
    parser.add_argument("--play", help="un fichier qui contient une suite, telle qu'affichée")
    arguments = parser.parse_args()
    report = Report()
    report.scenario = "modèle"
    print(f"graine : {arguments.seed}", flush=True)
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    with Workshop(os.path.abspath(arguments.programs)) as shop:
        if shop.why_not:
            report.leave_out("model_test", shop.why_not)
            return finish(report)
        if why_no_mount():
            print(f"    sans volumes qui vont et viennent : {why_no_mount()}")
        world = World(shop)
        try:
            if arguments.play:
                with open(arguments.play, encoding="utf-8") as file:
                    reason = broken(world, ast.literal_eval(file.read()))
                report.check("la suite", reason is None, reason)
            else:
                play(world, report, arguments.first, arguments.sequences,
                     arguments.seed)
        finally:
            world.close()
    return finish(report)


if __name__ == "__main__":
    sys.exit(main())
