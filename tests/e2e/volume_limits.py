"""Volumes that refuse: read-only, full, without a free inode, with a quota, with a largest file;
and sources that nothing may be written to. Called by volumes.py."""

import contextlib
import os
import subprocess

import harness
import volume_disks
from harness import Place
from volume_disks import Btrfs, Image, Refused, Tmpfs, Volume, command


class ReadOnly(Volume):
    name, quick = "lecture seule", True

    def mount(self):
        command("mount", "-t", "tmpfs", "-o", "size=50m", "essai", self.point)

    def freeze(self):
        command("mount", "-o", "remount,ro", self.point)


class Full(Tmpfs):
    name, quick = "plein", True

    def mount(self):
        command("mount", "-t", "tmpfs", "-o", "size=3m", "essai", self.point)


class FewInodes(Image):
    name, quick = "sans inode libre", True
    megabytes = 16
    make_words = ("mkfs.ext4", "-q", "-N", "40")


class Quota(Btrfs):
    """A volume that may hold ten megabytes."""

    name = "quota"

    def mount(self):
        super().mount()
        command("btrfs", "quota", "enable", self.point)
        command("btrfs", "qgroup", "limit", "10m", "0/5", self.point)


class OldSizes(Image):
    """Blocks of 1 KiB without extents: no file of more than 16 GiB."""

    name = "fichiers de 16 Go au plus"
    make_words = ("mkfs.ext4", "-q", "-b", "1024", "-O", "^extent,^64bit")


def numbers(outcome):
    return sorted({error["number"] for error in (outcome.json() or {}).get("errors", [])})


def old_copies(place, count=20, size=100_000):
    """A copy of small files that is whole, and originals that have all changed and grown."""
    for number in range(count):
        harness.write(f"{place.source}/{number:02d}", b"%d" % number)
        harness.touch(f"{place.source}/{number:02d}", 0)
    first = place.backup("--ecraser", "--json")
    for number in range(count):
        harness.write(f"{place.source}/{number:02d}", os.urandom(size * (number + 1)))
        harness.touch(f"{place.source}/{number:02d}", 10)
    return first


def each_is_whole(place, report, what, count=20):
    """Every copy is the old one or the new one."""
    wrong = []
    for number in range(count):
        with contextlib.suppress(FileNotFoundError):
            found = harness.read(f"{place.copy}/{number:02d}")
            if found not in (b"%d" % number, harness.read(f"{place.source}/{number:02d}")):
                wrong.append(number)
    report.equal(f"{what} : chaque copie est l'ancienne ou la nouvelle", wrong, [])
    left = [name for name in os.listdir(place.copy) if name.endswith(".tmp")]
    report.equal(f"{what} : aucun reste", left, [])


def read_only(volume, place, report):
    report.check("première sauvegarde", old_copies(place).status == 0)
    volume.freeze()
    outcome = place.backup("--ecraser", "--json")
    report.equal("lecture seule : l'erreur 19", numbers(outcome), [19])
    each_is_whole(place, report, "lecture seule")
    outcome = place.console("comparer", "--source", place.source, "--destination",
                            place.destination, "--json")
    report.equal("elle se compare", (outcome.json() or {}).get("outcome"), "differences")
    for name in os.listdir(place.source):
        os.unlink(f"{place.source}/{name}")
    outcome = place.console("restaurer", "--source", place.source, "--destination",
                            place.destination, "--confirmer", "--ecraser", "--json")
    report.check("et elle se restaure", (outcome.json() or {}).get("files") == 20, outcome)


def full(_, place, report):
    report.check("première sauvegarde", old_copies(place).status == 0)
    outcome = place.backup("--ecraser", "--json")
    report.equal("plein : l'erreur 112", numbers(outcome), [112])
    each_is_whole(place, report, "plein")


def few_inodes(_, place, report):
    for number in range(60):
        harness.write(f"{place.source}/{number:02d}", b"%d" % number)
    outcome = place.backup("--ecraser", "--json")
    report.equal("sans inode : l'erreur 112", numbers(outcome), [112])
    each_is_whole(place, report, "sans inode", 60)


def quota(_, place, report):
    report.check("première sauvegarde", old_copies(place).status == 0)
    outcome = place.backup("--ecraser", "--json")
    report.equal("quota : l'erreur 112", numbers(outcome), [112])
    each_is_whole(place, report, "quota")


def old_sizes(_, place, report):
    with open(f"{place.source}/énorme", "wb") as file:
        file.truncate(20 << 30)
    harness.write(f"{place.source}/petit")
    outcome = place.backup("--ecraser", "--json")
    report.equal("trop grand : l'erreur 223", numbers(outcome), [223])
    report.equal("le reste est copié, sans reste",
                 sorted(name for name in os.listdir(place.copy) if not name.endswith(".copie")),
                 ["petit"])


def read_only_source(_, place, report):
    """Nothing is written into a source, whatever is done with it but a restore."""
    for number in range(30):
        harness.write(f"{place.source}/d{number % 3}/{number}", os.urandom(number * 3000))
    command("mount", "--bind", place.source, place.source)
    try:
        command("mount", "-o", "remount,bind,ro", place.source)
        for words, expected in ((("sauvegarder", "--ecraser"), ("clean",)),
                                (("sauvegarder", "--ecraser"), ("nothing",)),
                                (("comparer",), ("clean",)), (("verifier",), ("clean",))):
            outcome = place.console(words[0], "--source", place.source, "--destination",
                                    place.destination, *words[1:], "--json")
            report.check(f"source en lecture seule, {words[0]} : aucune erreur",
                         (outcome.json() or {}).get("outcome") in expected and
                         not numbers(outcome), outcome)
    finally:
        subprocess.run(["umount", place.source], check=False)


CASES = ((ReadOnly, read_only), (Full, full), (FewInodes, few_inodes), (Quota, quota),
         (OldSizes, old_sizes), (Tmpfs, read_only_source))


def play(arguments, report):
    for kind, case in CASES:
        if arguments.court and not kind.quick:
            continue
        place = Place(arguments.programs)
        print(f"--- {case.__name__}")
        report.scenario = kind.name
        try:
            with volume_disks.mounted(kind, arguments.place) as volume:
                place.destination = volume.root
                place.copy = os.path.join(volume.root, os.path.basename(place.source))
                case(volume, place, report)
        except Refused as reason:
            report.leave_out(kind.name, reason)
        except OSError as error:
            report.check(f"{kind.name} va à son terme", False, error)
        finally:
            place.remove()
