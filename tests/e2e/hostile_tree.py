#!/usr/bin/env python3
"""Makes a tree of everything that a Linux disk may hold, backs it up and restores it, and compares
what comes back with the original and with what rsync -aAX makes of it: names, contents, links,
modes, owners, times, attributes.

Usage: hostile_tree.py [--court] [--seed N] [--programs DIRECTORY] [--place DIRECTORY] [--make PATH]
--court: a part of the modes. --make: makes the tree there, and nothing else.
Pipes, sockets and devices are left out of the comparison: the program copies none of them.
"""

import argparse
import hashlib
import os
import random
import shutil
import socket
import stat
import struct
import subprocess
import sys
import unicodedata

import harness
from harness import Place, Report

USER = "user.essai"
ACL, CHILDREN = "system.posix_acl_access", "system.posix_acl_default"
OWN = b".~coffrelune-"
NANO = 10**9
# Before 1970, around the ends of 32 bits, far away; with every digit down to the nanosecond.
TIMES = (-NANO * 2**31, -86400 * NANO, -1, 0, 1, 999_999_999, 315_532_800 * NANO - 1,
         2**31 * NANO - 1, 2**31 * NANO + 1, 2**32 * NANO + 123_456_789,
         1_700_000_000 * NANO + 123_456_789, 7_000_000_000 * NANO)


def access_list(user):
    """The owner, one user more, the group, the mask, others, as the system keeps it."""
    entry = lambda tag, rights, number=0xFFFFFFFF: struct.pack("<HHI", tag, rights, number)
    return struct.pack("<I", 2) + entry(1, 6) + entry(2, 4, user) + entry(4, 4) + entry(16, 4) + \
        entry(32, 0)


def give_attributes(path):
    """Those that this machine lets a file have, by their names."""
    given = {}
    for name, value in ((USER, b"valeur"), (ACL, access_list(65533))):
        try:
            os.setxattr(path, name, value)
            given[name] = value
        except OSError:
            pass
    return given


def attributes_of(path):
    """Of a file or directory; of a link none, since the system gives it none of a user's."""
    if os.path.islink(path):
        return {}
    found = {}
    try:
        for name in os.listxattr(path):
            if name.startswith("user.") or name in (ACL, CHILDREN):
                found[name] = os.getxattr(path, name)
    except OSError:
        pass
    return found


def attributes_named(path, names):
    """Each asked for by its name: to list them ends some programs that serve a volume."""
    found = {}
    for name in names:
        try:
            found[name] = os.getxattr(path, name)
        except OSError:
            pass
    return found


def hard_names():
    """Names that one volume or another refuses, shortens, folds or spells its own way."""
    composed = "déjà vu"
    return [os.fsencode(name) for name in (
        composed + " composé", unicodedata.normalize("NFD", composed) + " décomposé", "a:b",
        'point ? étoile * guillemet "', "<plus|moins>", "barre\\inverse", "fin en point.",
        "fin en blanc ", " début en blanc", "CON", "aux.txt", "tabulation\t", "saut\nde ligne",
        "\x01\x1f\x7f", "Casse", "casse", "日本語 🙂", "é" * 127, "x" * 255, "~$a", "-r", "%41",
        "private \uf05c\uf03a", "#", "a" * 64 + ".txt")] + [b"octets \xff\xfe\x80", b"\xc3"]


class Tree:
    """The hostile tree below a root; the same for the same seed."""

    def __init__(self, root, seed=1, modes=range(0o10000)):
        self.root = os.fsencode(root)
        self.draw = random.Random(seed)
        self.times = []  # set last, since each entry that is made changes its directory's
        os.makedirs(self.root, exist_ok=True)
        self.names()
        self.links()
        self.special()
        self.contents()
        self.modes(modes)
        self.owners()
        self.attributes()
        self.deep()
        self.dates()

    def at(self, *parts):
        return os.path.join(self.root, *(os.fsencode(part) for part in parts))

    def file(self, *parts, content=None):
        path = self.at(*parts)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(parts[-1].encode() if isinstance(parts[-1], str) and content is None
                       else parts[-1] if content is None else content)
        return path

    def names(self):
        for number in range(1, 256):
            byte = bytes([number])
            if byte != b"/":
                self.file("octets", b"a" + byte + b"z")
                if byte != b".":
                    self.file("octets", byte)
        for name in hard_names():
            self.file("noms", name)
            os.makedirs(self.at("noms de répertoires", name), exist_ok=True)
        self.file("...")
        self.file("..a")

    def links(self):
        os.makedirs(self.at("liens/répertoire"))
        self.file("liens/cible")
        for name, text in (("relatif", "cible"), ("absolu", "/etc/hostname"), ("pendant", "rien"),
                           ("soi-même", "soi-même"), ("vers un répertoire", "répertoire"),
                           ("dehors", "../../../.."), ("long", "x/" * 2000 + "fin"),
                           ("octets", b"\xff\n\\:"), ("rond 1", "rond 2"),
                           ("rond 2", "rond 1")):
            path = self.at("liens", name)
            os.symlink(text if isinstance(text, bytes) else os.fsencode(text), path)
            # Not of this second: rsync would take a link that it has just made for as old.
            moment = self.draw.choice(TIMES[5:])
            os.utime(path, ns=(moment, moment), follow_symlinks=False)
        os.link(self.at("liens/cible"), self.at("liens/second nom"))

    def special(self):
        os.makedirs(self.at("spéciaux"))
        os.mkfifo(self.at("spéciaux/tuyau"))
        here = os.getcwd()
        os.chdir(self.at("spéciaux"))  # the name of a socket may not be long
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind("prise")
        os.chdir(here)
        if os.geteuid() == 0:
            os.mknod(self.at("spéciaux/nul"), stat.S_IFCHR | 0o666, os.makedev(1, 3))

    def contents(self):
        self.file("contenus/vide", content=b"")
        for size in (1, 4095, 4096, 4097, 131_071, 131_073, 5_000_001):
            self.file("contenus", f"{size} octets", content=self.draw.randbytes(size))
        for name, pieces in (("trou au début", ((9 << 20, b"fin"),)),
                             ("trou au milieu", ((0, b"bord"), (7 << 20, b"fin"))),
                             ("trou à la fin", ((0, b"bord"),)), ("un seul trou", ())):
            with open(self.at("contenus", name), "wb") as file:
                for start, data in pieces:
                    file.seek(start)
                    file.write(data)
                file.truncate(10 << 20)

    def modes(self, modes):
        for mode in modes:
            path = self.file(f"modes/{mode >> 6:02o}", f"{mode:04o}")
            os.chmod(path, mode)
        for mode in (0o0, 0o111, 0o555, 0o700, 0o1777, 0o2775, 0o7777):
            os.makedirs(self.at("modes de répertoires", f"{mode:04o}"))
            self.file("modes de répertoires", f"{mode:04o}", "dedans")
            os.chmod(self.at("modes de répertoires", f"{mode:04o}"), mode)

    def owners(self):
        for user, group in ((0, 0), (1, 2), (65534, 65534), (4_000_000_000, 3_999_999_999)):
            path = self.file("propriétaires", str(user))
            if os.geteuid() == 0:
                os.chown(path, user, group)
                os.chmod(path, 0o6755)
        if os.geteuid() == 0:
            os.makedirs(self.at("propriétaires/répertoire"))
            os.chown(self.at("propriétaires/répertoire"), 12345, 54321)

    def attributes(self):
        for number in range(20):
            path = self.file("attributs", f"{number}")
            for key in range(number):
                os.setxattr(path, f"user.nom {key}", bytes([key]) * (key * 10))
        give_attributes(self.file("attributs", "liste"))
        give_attributes(self.file("attributs", "lecture seule"))
        os.chmod(self.at("attributs/lecture seule"), 0o444)
        os.makedirs(self.at("attributs/répertoire"))
        give_attributes(self.at("attributs/répertoire"))
        try:
            os.setxattr(self.at("attributs/répertoire"), CHILDREN, access_list(65532))
        except OSError:
            return
        self.file("attributs/répertoire/hérite")
        plain = self.file("attributs/répertoire/n'hérite pas")
        os.removexattr(plain, ACL)
        os.chmod(plain, 0o640)

    def deep(self):
        place = self.at("profond")
        for level in range(60):
            place = os.path.join(place, b"niveau %d" % level)
        os.makedirs(place)
        with open(os.path.join(place, b"fond"), "wb") as file:
            file.write(b"fond")

    def dates(self):
        for number, moment in enumerate(TIMES):
            self.times.append((self.file("dates", str(number)), moment))
        for directory, below, _ in os.walk(self.root):
            for name in below:
                path = os.path.join(directory, name)
                if not os.path.islink(path):
                    self.times.append((path, self.draw.choice(TIMES[5:])))
        for path, moment in self.times:
            os.utime(path, ns=(moment, moment))


def fact(path):
    """What is compared of one entry, with a word for each part."""
    entry = os.lstat(path)
    told = {"sorte": stat.S_IFMT(entry.st_mode), "propriétaire": (entry.st_uid, entry.st_gid),
            "date": entry.st_mtime_ns}
    if stat.S_ISLNK(entry.st_mode):
        return {**told, "contenu": os.readlink(path)}
    told.update(mode=stat.S_IMODE(entry.st_mode), attributs=attributes_of(path))
    if stat.S_ISREG(entry.st_mode):
        with open(path, "rb") as file:
            told["contenu"] = hashlib.file_digest(file, "sha256").hexdigest()
    return told


def facts(root):
    """Of everything below a root that the program copies."""
    root = os.fsencode(root)
    found = {}
    for directory, below, names in os.walk(root):
        for name in [*below, *names]:
            path = os.path.join(directory, name)
            kind = os.lstat(path).st_mode
            copied = stat.S_ISDIR(kind) or stat.S_ISREG(kind) or stat.S_ISLNK(kind)
            if copied and not name.startswith(OWN):
                found[os.path.relpath(path, root)] = fact(path)
    return found


def compare(report, what, wanted, found):
    """One check for names, one for each part of what is compared."""
    report.equal(f"{what} : les mêmes {len(wanted)} noms", sorted(wanted.keys() ^ found.keys())[:5],
                 [])
    for part in ("sorte", "contenu", "mode", "propriétaire", "date", "attributs"):
        wrong = [(name, wanted[name].get(part), found[name].get(part))
                 for name in wanted.keys() & found.keys()
                 if wanted[name].get(part) != found[name].get(part)]
        report.check(f"{what} : {part}", not wrong,
                     f"{len(wrong)} diffèrent : " + "\n".join(repr(one)[:200] for one in wrong[:5]))


def round_trip(place, report, arguments):
    """Backed up, taken away, restored; and the same by rsync."""
    modes = range(0, 0o10000, 61) if arguments.court else range(0o10000)
    Tree(place.source, arguments.seed, modes)
    wanted = facts(place.source)
    print(f"    {len(wanted)} entrées, graine {arguments.seed}")
    reads = {name: os.lstat(os.path.join(os.fsencode(place.source), name)).st_atime_ns
             for name in wanted}
    peer = os.path.join(place.root, "rsync")
    outcome = place.backup("--ecraser")
    report.check("sauvegarde : état 0", outcome.status == 0, outcome)
    copied = facts(place.copy)
    compare(report, "copie", wanted, copied)
    subprocess.run(["rsync", "-aAX", place.source + "/", peer], check=True)
    compare(report, "copie et rsync -aAX", facts(peer), copied)
    moved = os.path.join(place.root, "original")
    os.rename(place.source, moved)
    os.mkdir(place.source)
    outcome = place.console("restaurer", "--source", place.source, "--destination",
                            place.destination, "--confirmer", "--ecraser")
    report.check("restauration : état 0", outcome.status == 0, outcome)
    compare(report, "aller et retour", wanted, facts(place.source))
    outcome = place.backup("--ecraser", "--json")
    report.equal("une seconde sauvegarde ne copie rien",
                 (outcome.json() or {}).get("outcome"), "nothing")
    return reads


def reading_leaves_no_trace(place, report, _):
    """A backup and a comparison leave the times of the last access of the source alone, for root
    and for the owner; those of directories, too."""
    for owner in ("root", "propriétaire"):
        paths = [place.source]
        for number in range(50):
            path = os.path.join(place.source, f"d{number % 5}", str(number))
            harness.write(path, os.urandom(1000 + number * 5000))
            paths += [path, os.path.dirname(path)]
        if owner != "root":
            place.become_nobody()
        for number, path in enumerate(paths):
            # Older than its last change, which is what has the system note an access.
            os.utime(path, ns=(10**18 + number, 10**18 + len(owner) * NANO))
        before = {path: os.lstat(path).st_atime_ns for path in paths}
        for words in (("sauvegarder", "--ecraser"), ("sauvegarder", "--ecraser"), ("comparer",),
                      ("verifier",)):
            outcome = place.console(words[0], "--source", place.source, "--destination",
                                    place.destination, *words[1:])
            report.check(f"{owner}, {words[0]} : état 0", outcome.status == 0, outcome)
            touched = [path for path in before if before[path] != os.lstat(path).st_atime_ns]
            report.equal(f"{owner}, {words[0]} : dates de dernier accès", touched, [])


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--court", action="store_true")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    parser.add_argument("--place", default=None)
    parser.add_argument("--make")
    arguments = parser.parse_args()
    arguments.programs = os.path.abspath(arguments.programs)
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)
    if arguments.make:
        Tree(arguments.make, arguments.seed)
        return 0
    if arguments.place:
        os.environ["TMPDIR"] = arguments.place
    report = Report()
    if os.geteuid() != 0:
        report.leave_out("arbre hostile", "il faut root pour ses propriétaires et ses modes")
    elif not shutil.which("rsync"):
        report.leave_out("arbre hostile", "il manque rsync")
    else:
        for scenario in (round_trip, reading_leaves_no_trace):
            place = Place(arguments.programs)
            report.begin(scenario)
            try:
                scenario(place, report, arguments)
            finally:
                place.remove()
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
