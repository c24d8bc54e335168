#!/usr/bin/env python3
"""Originals that change, vanish or become something else between the moment when they are listed
and the one when they are copied; and disks that answer with the errors of a network.

Usage: change_scenarios.py [--programs DIRECTORY]
Run by itself, it plays the changes at every look at an entry; console_scenario.py, at some.
"""

import argparse
import contextlib
import fcntl
import os
import shutil
import signal
import struct
import sys

from harness import Report, read, run_all, touch, write
from loss_harness import (BACKUP, OLDER, Halted, back_up, backed_up, check, faulty, holds, marks,
                          needs, settle, traced, tree, why_no_root, why_no_trace)

SOME, ALL = (1, 4, 7), range(1, 16)  # of the looks at an entry
FILES = {"victime": "ancien contenu", "autre": "autre", "sous/plus bas": "plus bas"}


class HaltedAt(Halted):
    """A run that stands still where it looks at an entry for the n-th time, by its name."""

    def __init__(self, place, name, number):  # pylint: disable=super-init-not-called
        self.process = traced(place, [f"statx,openat2:signal=SIGSTOP:when={number}"], *BACKUP,
                              path=name)
        self.stands = self.stops(place)

    def stops(self, place):
        while self.process.poll() is None:
            if b"stopped by SIGSTOP" in self.log(place):
                return True
            with contextlib.suppress(Exception):
                self.process.wait(0.005)
        return b"stopped by SIGSTOP" in self.log(place) and self.process.poll() is None


def at_each_look(place, report, name, change, after):
    """Plays `change` at looks at an entry, each in a run of its own from the same start; `after`
    sees how each run ended."""
    stops = 0
    for number in ALL if __name__ == "__main__" else SOME:
        shutil.rmtree(place.copy, ignore_errors=True)
        shutil.rmtree(place.source)
        os.mkdir(place.source)
        settle(place)
        backed_up(place, Silent(report), FILES)
        write(f"{place.source}/victime", "nouveau contenu")
        write(f"{place.source}/sous/plus bas", "plus bas, changé")
        with HaltedAt(place, name, number) as running:
            if not running.stands:
                break
            stops += 1
            change(place)
            outcome = running.finish()
        after(f"au regard {number}", outcome)
    report.check(f"{name} : arrêté à {stops} regards", stops > 1)


class Silent:
    """Says only what has failed."""

    def __init__(self, report):
        self.report = report

    def check(self, what, good, *details):
        if not good:
            self.report.check(what, good, *details)

    def equal(self, what, found, wanted):
        if found != wanted:
            self.report.equal(what, found, wanted)


def replaced(change):
    """What stood there is gone when the other thing comes."""
    def act(place):
        path = f"{place.source}/victime"
        os.unlink(path)
        change(path)
    return act


def grown(place):
    with open(f"{place.source}/victime", "ab") as file:
        file.write(b" qui a grandi" * 20_000)
    touch(f"{place.source}/victime", 5)


def shrunk(place):
    os.truncate(f"{place.source}/victime", 3)
    touch(f"{place.source}/victime", 5)


def full_directory(path):
    os.mkdir(path)
    write(f"{path}/dedans", "dedans")


CHANGES = (("grandit", grown), ("raccourcit", shrunk),
           ("disparaît", replaced(lambda path: None)),
           ("devient un répertoire", replaced(full_directory)),
           ("devient un lien", replaced(lambda path: os.symlink("autre", path))),
           ("devient un tuyau", replaced(os.mkfifo)))


@needs(why_no_trace)
def a_file_changes_before_its_copy(place, report):
    """Un fichier grandit, raccourcit, disparaît ou change de sorte avant sa copie"""
    for what, change in CHANGES:
        quiet = Silent(report)

        def after(when, outcome, what=what, quiet=quiet):
            quiet.check(f"{what} {when} : le programme finit", outcome.status in (0, 1), outcome)
            copy = tree(place.copy)
            original = tree(place.source)
            told = "victime" in outcome.all
            quiet.check(f"{what} {when} : une copie entière, ou une erreur qui le nomme",
                        copy.get("victime") in ("ancien contenu", "nouveau contenu",
                                                original.get("victime")) or told or
                        "victime" not in original, (copy, outcome))
            quiet.check(f"{what} {when} : sans erreur, l'ancien contenu ne passe pas pour copié",
                        outcome.status == 1 or copy.get("victime") != "ancien contenu" or
                        original.get("victime") in (None, "?") or
                        read_as_changed(place), (copy, outcome))
            quiet.equal(f"{what} {when} : le reste est copié",
                        [copy.get(name) for name in ("autre", "sous/plus bas")],
                        ["autre", "plus bas, changé"])
            quiet.equal(f"{what} {when} : rien ne traîne", marks(place.copy, "tmp"), [])
            outcome = back_up(place)
            copy, original = tree(place.copy), tree(place.source)
            if original.get("victime") == "?":  # a pipe is copied by nobody
                original.pop("victime")
                copy.pop("victime", None)
            quiet.equal(f"{what} {when} : la suivante rend les deux égaux", copy, original)

        at_each_look(place, report, "victime", change, after)
        report.check(f"{what} : joué à chaque regard", True)


def read_as_changed(place):
    """The copy bears another time than the original: the next run copies it."""
    return os.lstat(f"{place.source}/victime").st_mtime_ns != \
        os.lstat(f"{place.copy}/victime").st_mtime_ns


def moved(change):
    def act(place):
        path = f"{place.source}/sous"
        os.rename(path, f"{place.root}/emporté")
        change(place, path)
    return act


def elsewhere(place, path):
    os.mkdir(f"{place.root}/dehors")
    write(f"{place.root}/dehors/étranger", "étranger")
    os.symlink(f"{place.root}/dehors", path)


@needs(why_no_trace)
def a_directory_changes_before_its_copy(place, report):
    """Un répertoire disparaît, devient fichier, lien ou tuyau avant que l'on y entre"""
    for what, change in (("disparaît", lambda place, path: None),
                         ("devient un fichier", lambda place, path: write(path, "fichier")),
                         ("devient un lien", elsewhere),
                         ("devient un tuyau", lambda place, path: os.mkfifo(path))):
        quiet = Silent(report)

        def after(when, outcome, what=what, quiet=quiet):
            quiet.check(f"{what} {when} : le programme finit", outcome.status in (0, 1), outcome)
            copy = tree(place.copy)
            quiet.equal(f"{what} {when} : rien d'ailleurs n'est copié",
                        [name for name in copy if name.startswith("sous/étranger")], [])
            quiet.equal(f"{what} {when} : le reste est copié", copy.get("victime"),
                        "nouveau contenu")
            quiet.check(f"{what} {when} : ce qui y était garde sa copie, ou son effacement est dit",
                        copy.get("sous/plus bas") in ("plus bas", "plus bas, changé") or
                        "Effacé : " in outcome.all, (copy, outcome))
            quiet.equal(f"{what} {when} : ce qui est dehors reste",
                        not os.path.exists(f"{place.root}/dehors") or
                        tree(f"{place.root}/dehors") == {"étranger": "étranger"}, True)
            for name in ("emporté", "dehors"):
                shutil.rmtree(f"{place.root}/{name}", ignore_errors=True)
            back_up(place)
            original = {name: text for name, text in tree(place.source).items() if text != "?"}
            copy = {name: text for name, text in tree(place.copy).items() if name != "sous/"}
            if os.path.islink(f"{place.source}/sous"):  # what it leads to may be away for a while
                original.pop("sous")
                quiet.check(f"{what} {when} : la copie du répertoire reste", "sous/plus bas" in copy)
                copy.pop("sous/plus bas", None)
            quiet.equal(f"{what} {when} : la suivante rend les deux égaux", copy, original)

        at_each_look(place, report, "sous", moved(change), after)
        report.check(f"{what} : joué à chaque regard", True)


@needs(why_no_trace)
def a_locked_original(place, report):
    """Un fichier verrouillé entre l'analyse et la copie : erreur 33, l'ancienne copie reste"""
    settle(place)
    backed_up(place, report, FILES)
    write(f"{place.source}/victime", "nouveau contenu")
    with contextlib.ExitStack() as stack:
        # Who opens it for reading has to wait until its holder gives it up.
        handler = signal.signal(signal.SIGIO, signal.SIG_IGN)
        stack.callback(signal.signal, signal.SIGIO, handler)
        running = stack.enter_context(HaltedAt(place, "victime", 1))
        report.check("le programme est arrêté à l'analyse", running.stands)
        held = os.open(f"{place.source}/victime", os.O_RDWR)
        stack.callback(os.close, held)
        fcntl.fcntl(held, fcntl.F_SETLEASE, fcntl.F_WRLCK)
        outcome = running.finish()
    check(report, "verrouillé", outcome, 1, "Erreur: 33 ", "victime")
    holds(report, "l'ancienne copie reste", place.copy, FILES)
    check(report, "libéré", back_up(place), 0)
    holds(report, "la suivante le copie", place.copy, {**FILES, "victime": "nouveau contenu"})


NETWORK = (("ESTALE", 55), ("EIO", 1117), ("ETIMEDOUT", 121), ("ENOTCONN", 55))
BIG = {"gros.bin": "v" * 300_000}
# Which call fails; of what path; whether the file that it concerns can be named.
READS = (("openat", "gros.bin"), ("read", "Données/gros.bin"), ("getdents64", None))
WRITES = (("renameat,renameat2", None), ("syncfs", None))


@needs(why_no_trace)
def a_network_that_fails(place, report):
    """Les erreurs d'un réseau : leur numéro est dit, l'ancienne copie reste, la suivante copie"""
    settle(place)
    backed_up(place, report, BIG)
    write(f"{place.source}/gros.bin", "n" * 400_000)
    for error, number in NETWORK:
        for call, path in READS + WRITES:
            what = f"{call} {error}"
            if path and "/" in path:
                path = os.path.join(place.root, path)
            outcome = faulty(place, [f"{call}:error={error}"], *BACKUP, path=path)
            check(Silent(report), what, outcome, (1, 2, 3), f"Erreur: {number} ")
            quiet = Silent(report)
            quiet.equal(f"{what} : l'ancienne copie reste", read(f"{place.copy}/gros.bin"),
                        BIG["gros.bin"].encode())
            quiet.equal(f"{what} : rien ne traîne", marks(place.copy, "tmp"), [])
        report.check(f"{error} : joué", True)
    check(report, "la suivante", back_up(place), 0)
    holds(report, "elle copie tout", place.copy, {"gros.bin": "n" * 400_000})


@needs(why_no_trace)
def calls_that_are_interrupted(place, report):
    """Des appels interrompus une fois (EINTR) : recommencés, ou dits"""
    for call in ("openat", "read", "write", "getdents64", "statx", "openat2", "syncfs",
                 "renameat,renameat2", "utimensat", "fsync"):
        shutil.rmtree(place.copy, ignore_errors=True)
        settle(place)
        shutil.rmtree(place.source)
        backed_up(place, Silent(report), BIG)
        write(f"{place.source}/gros.bin", "n" * 400_000)
        path = place.copy if call in ("syncfs", "fsync") else None
        when = "3+7"
        if call == "read":
            path, when = f"{place.source}/gros.bin", "1+2"
        outcome = faulty(place, [f"{call}:error=EINTR:when={when}"], *BACKUP, path=path)
        copied = read(f"{place.copy}/gros.bin") == b"n" * 400_000
        report.check(f"{call} : copié, ou dit ({outcome.status})",
                     outcome.status == 0 and copied or outcome.status in (1, 2, 3), outcome)
        check(Silent(report), f"{call} : la suivante", back_up(place), 0)
        holds(Silent(report), f"{call} : elle copie tout", place.copy, {"gros.bin": "n" * 400_000})


def rights_alone(place, report):
    """Des droits ou des attributs seuls : ceux d'un répertoire suivent, ceux d'un fichier attendent"""
    settle(place)
    backed_up(place, report, FILES)
    mode = lambda name: os.stat(f"{place.copy}/{name}").st_mode & 0o7777
    written = os.stat(f"{place.source}/sous").st_mtime_ns
    old = mode("victime")
    os.chmod(f"{place.source}/sous", 0o750)
    os.chmod(f"{place.source}/victime", 0o600)
    check(report, "droits seuls", back_up(place), 0, "Rien à sauvegarder")
    report.equal("le répertoire a les nouveaux, et sa date",
                 (mode("sous"), os.stat(f"{place.copy}/sous").st_mtime_ns), (0o750, written))
    report.equal("le fichier garde les anciens", mode("victime"), old)
    touch(f"{place.source}/victime", 7)
    check(report, "avec une date nouvelle", back_up(place), 0)
    report.equal("le fichier a les siens", mode("victime"), 0o600)
    try:
        os.setxattr(f"{place.source}/sous", "user.essai", b"valeur")
    except OSError as error:
        report.leave_out("attributs seuls", error)
        return
    write(f"{place.source}/autre", "autre, encore")
    check(report, "attribut seul d'un répertoire", back_up(place), 0)
    report.equal("il attend", os.listxattr(f"{place.copy}/sous"), [])
    os.chmod(f"{place.source}/sous", 0o755)
    write(f"{place.source}/autre", "autre, enfin")
    check(report, "avec un droit nouveau", back_up(place), 0)
    report.equal("il suit", os.getxattr(f"{place.copy}/sous", "user.essai"), b"valeur")


# The owner may do all, another user and the group read and enter: the mode is 750 with or without.
ACCESS = struct.pack("<I", 2) + b"".join(
    struct.pack("<HHI", tag, rights, number)
    for tag, rights, number in ((1, 7, 0xFFFFFFFF), (2, 5, 65533), (4, 5, 0xFFFFFFFF),
                                (16, 5, 0xFFFFFFFF), (32, 0, 0xFFFFFFFF)))


def attribute_of(path, name):
    try:
        return os.getxattr(path, name)
    except OSError:
        return None


# What changes alone: how, how it is seen, and whether the next run carries that of a directory.
ALONE = {
    "mode": (lambda path: os.chmod(path, 0o710), lambda path: os.stat(path).st_mode & 0o7777, True),
    "propriétaire": (lambda path: os.chown(path, 65533, -1), lambda path: os.stat(path).st_uid, True),
    "groupe": (lambda path: os.chown(path, -1, 65533), lambda path: os.stat(path).st_gid, True),
    "attribut": (lambda path: os.setxattr(path, "user.essai", b"valeur"),
                 lambda path: attribute_of(path, "user.essai"), False),
    "ACL": (lambda path: os.setxattr(path, "system.posix_acl_access", ACCESS),
            lambda path: attribute_of(path, "system.posix_acl_access"), False),
}


@needs(why_no_root)
def one_thing_alone(place, report):
    """Mode, propriétaire, attribut, ACL seuls : du répertoire les droits suivent, le reste attend"""
    settle(place)
    for name in ALONE:
        write(f"{place.source}/dossier {name}/dedans", name)
        write(f"{place.source}/fichier {name}", name)
        for kind in ("dossier", "fichier"):
            os.chmod(f"{place.source}/{kind} {name}", 0o750)
            touch(f"{place.source}/{kind} {name}", OLDER)
    check(report, "première sauvegarde", back_up(place), 0)
    changed = []
    for name, (change, _, _) in ALONE.items():
        try:
            for kind in ("dossier", "fichier"):
                change(f"{place.source}/{kind} {name}")
            changed.append(name)
        except OSError as error:
            report.leave_out(f"{name} seul", error)
    state = lambda root, kind, name: ALONE[name][1](f"{root}/{kind} {name}")
    carried = lambda kind: [name for name in changed if state(place.copy, kind, name) ==
                            state(place.source, kind, name)]
    check(report, "rien que cela", back_up(place), 0, "Rien à sauvegarder")
    report.equal("ce qu'un répertoire a déjà", carried("dossier"),
                 [name for name in changed if ALONE[name][2]])
    report.equal("ce qu'un fichier a déjà", carried("fichier"), [])
    for name in ALONE:
        for kind in ("dossier", "fichier"):
            touch(f"{place.source}/{kind} {name}", 7)
    check(report, "avec une date nouvelle", back_up(place), 0)
    for kind in ("dossier", "fichier"):
        report.equal(f"{kind} : tout a suivi", carried(kind), changed)


SCENARIOS = (rights_alone, one_thing_alone, a_file_changes_before_its_copy,
             a_directory_changes_before_its_copy, a_locked_original, a_network_that_fails,
             calls_that_are_interrupted)


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    report = Report()
    run_all(SCENARIOS, os.path.abspath(parser.parse_args().programs), report)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
