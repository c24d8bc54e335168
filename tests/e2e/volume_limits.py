"""Volumes that refuse: read-only, full, without a free inode, with a quota, with a largest file;
such as take two names for one; and sources that nothing may be written to. Called by volumes.py."""

import contextlib
import os
import subprocess

import harness
import volume_disks
from harness import Place
from volume_disks import Btrfs, Exfat, Image, Ntfs, Refused, Tmpfs, Volume, command


def contents(root):
    """What each file below holds, links and own files left out."""
    found = {}
    for directory, _, names in os.walk(root):
        for name in names:
            path = os.path.join(directory, name)
            if not name.startswith(".~coffrelune-") and not os.path.islink(path):
                found[os.path.relpath(path, root)] = harness.read(path)
    return found


def leftovers(root):
    return [name for _, _, names in os.walk(root) for name in names if name.endswith(".tmp")]


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


def names_of_errors(outcome):
    return sorted(error["path"].rpartition("\\")[2]
                  for error in (outcome.json() or {}).get("errors", []))


class Folded:
    """Originals whose names differ in their case alone, onto a volume that takes them for one."""

    FILES = {"Rapport.txt": "le premier", "rapport.txt": "le second, plus long", "seul.txt": "seul",
             "Dossier/lettre": "dans Dossier", "dossier/autre": "dans dossier",
             "Été/x": "été", "ÉTÉ/y": "grand été", "Sous/N": "N", "Sous/n": "nn"}

    def __init__(self, volume, place, report):
        self.volume, self.place, self.report = volume, place, report
        place.write_line("ContinueOnError=-1\nSynchroCopie=-1\nDatesArrondies=-1\n")
        for age, (name, content) in enumerate(self.FILES.items()):
            self.put(name, content, age)

    def put(self, name, content, seconds):
        harness.write(f"{self.place.source}/{name}", content)
        harness.touch(f"{self.place.source}/{name}", seconds)

    def run(self, verb="sauvegarder"):
        """How it ended, and what the copy holds then: without case, the content of each file."""
        more = ["--confirmer"] if verb == "restaurer" else []
        outcome = self.place.console(verb, "--ecraser", *more, "--json")
        found = {}
        for directory, _, names in os.walk(self.place.copy):
            for name in names:
                path = os.path.join(directory, name)
                if not name.startswith(".~coffrelune-"):
                    key = os.path.relpath(path, self.place.copy).lower()
                    found[key] = harness.read(path).decode()
        return outcome, outcome.json() or {}, found

    def originals(self, key):
        return [harness.read(f"{self.place.source}/{name}").decode() for name in self.FILES
                if name.lower() == key and os.path.exists(f"{self.place.source}/{name}")]

    def told(self, what, outcome, found):
        """One of each pair is in the copy, and the other is an error that names it."""
        lost = names_of_errors(outcome)
        self.report.equal(f"{what} : l'erreur 183 seule", numbers(outcome), [183])
        self.report.equal(f"{what} : chacun des quatre en trop est nommé, une fois",
                          sorted(name.lower() for name in lost),
                          ["dossier", "n", "rapport.txt", "été"])
        wrong = {key: text for key, text in found.items() if text not in self.originals(key)}
        self.report.equal(f"{what} : chaque copie est un des originaux, entier", wrong, {})
        self.report.equal(f"{what} : un de chaque", len(found), 5)

    def play(self):
        outcome, _, first = self.run()
        self.told("première sauvegarde", outcome, first)
        self.volume.again()
        outcome, told, second = self.run()
        self.told("seconde sauvegarde", outcome, second)
        self.report.equal("seconde sauvegarde : rien n'est copié, remplacé, effacé",
                          (second, told.get("files"), told.get("deleted")), (first, 0, 0))
        for age, (name, content) in enumerate(self.FILES.items()):
            self.put(name, content + ", changé", 100 + age)
        outcome, told, third = self.run()
        self.told("tout est changé", outcome, third)
        self.report.equal("tout est changé : cinq copiés, rien d'effacé",
                          (told.get("files"), told.get("deleted")), (5, 0))
        self.report.equal("tout est changé : les mêmes originaux qu'avant",
                          third, {key: text + ", changé" for key, text in first.items()})
        self.one_goes(third)
        self.another_case()
        self.come_back()

    def one_goes(self, before):
        """The other one takes the place of the one that has gone."""
        for name in ("Rapport.txt", "rapport.txt"):
            path = f"{self.place.source}/{name}"
            if harness.read(path).decode() == before["rapport.txt"]:
                os.unlink(path)
                break
        outcome, told, found = self.run()
        self.report.check("l'un des deux est parti : l'autre n'est plus une erreur",
                          "rapport.txt" not in [name.lower() for name in names_of_errors(outcome)],
                          outcome)
        self.report.equal("l'autre est dans la copie, rien n'est effacé",
                          ([found.get("rapport.txt")], told.get("deleted")),
                          (self.originals("rapport.txt"), 0))

    def another_case(self):
        """A name that has changed its case alone is no excess file, and no second one."""
        for name in ("dossier", "ÉTÉ"):
            for below in os.listdir(f"{self.place.source}/{name}"):
                os.unlink(f"{self.place.source}/{name}/{below}")
            os.rmdir(f"{self.place.source}/{name}")
        os.unlink(f"{self.place.source}/Sous/n")
        os.rename(f"{self.place.source}/seul.txt", f"{self.place.source}/SEUL.txt")
        outcome, told, found = self.run()
        self.report.equal("sans les autres : aucune erreur", numbers(outcome), [])
        self.report.equal("un nom d'une autre casse garde sa copie", found.get("seul.txt"),
                          "seul, changé")
        outcome, told, found = self.run()
        self.report.equal("puis rien", (told.get("outcome"), told.get("deleted")), ("nothing", 0))

    def come_back(self):
        """Onto an emptied source."""
        wanted = self.run()[2]
        command("rm", "-r", self.place.source)
        os.mkdir(self.place.source)
        outcome = self.run("restaurer")[0]
        self.report.equal("restauration : aucune erreur", numbers(outcome), [])
        back = {os.path.relpath(os.path.join(directory, name), self.place.source).lower():
                harness.read(os.path.join(directory, name)).decode()
                for directory, _, names in os.walk(self.place.source) for name in names}
        self.report.equal("restauration : tout est revenu", back, wanted)


def folded(volume, place, report):
    Folded(volume, place, report).play()


class ExfatFolded(Exfat):
    """Names are found in any case, and kept as they were given first."""

    name, quick = "exfat, casse confondue", True


class NtfsFolded(Ntfs):
    """Names are found in any case, and kept in lower case."""

    name, quick = "ntfs, casse confondue", True
    mount_words = ("lowntfs-3g", "-o", "ignore_case")


CASES = ((ReadOnly, read_only), (Full, full), (FewInodes, few_inodes), (Quota, quota),
         (OldSizes, old_sizes), (Tmpfs, read_only_source), (ExfatFolded, folded), (NtfsFolded, folded))


def play(arguments, report, cases=CASES):
    words = [word for word in arguments.kinds if word != "limites"]
    for kind, case in cases:
        if arguments.court and not kind.quick or \
                words and not any(word in case.__name__ + kind.name for word in words):
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
