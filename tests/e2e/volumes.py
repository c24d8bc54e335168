#!/usr/bin/env python3
"""Backs up onto volumes of every kind and looks at what each has kept: a first run, a second one
that copies nothing, changes, excess files, a restore onto an emptied source, a run that is killed
and one that finishes its work. Prints a line for each check, a row of a table for each volume, then
the counts.

Usage: volumes.py [--court] [--programs DIRECTORY] [--place DIRECTORY] [--docs] [KIND]...
KIND: a part of a name as the rows give it; all when none is named. --court: those that take
seconds. --docs: writes the rows into docs/volumes.md.
"""

import argparse
import collections
import contextlib
import os
import re
import shutil
import signal
import sys
import time

import hostile_tree
import harness
import volume_disks
import volume_faults
import volume_limits
import volume_names
from harness import Place, Report
from volume_disks import Refused
from volume_limits import contents, leftovers

TICK = 100  # nanoseconds, the finest that the program compares
MARKS = ("<!-- volumes : début -->", "<!-- volumes : fin -->")
HEADING = ("volume", "est", "dates", "avant 1970, après 2038", "modes", "liens",
           "attributs, ACL", "noms difficiles", "seconde sauvegarde")


class Tree:
    """The original: everyday files, and one of each that a volume may have trouble with."""

    OLD, LATE = -86400 * 365, 4_500_000_000

    def __init__(self, root, plain):
        self.root = root
        for number in range(40):
            self.write(f"dossier {number % 4}/fichier {number:02d}.txt", b"%d " % number * 50,
                       1_600_000_000 + number * 3601)
        self.write("Ete/Oeuvre.txt" if plain else "Été/Œuvre née à Noël.txt",
                   "accents composés".encode(), 1_500_000_001)
        self.write("grand", os.urandom(1 << 20) * 3, 1_400_000_001)
        self.write("vide", b"", 1_300_000_001)
        self.write("prive", b"secret", 1_300_000_003)
        os.chmod(self.path("prive"), 0o600)
        os.chmod(self.path("vide"), 0o755)
        self.write("avant", b"1969", self.OLD)
        self.write("apres", b"2112", self.LATE)
        with open(self.path("trous"), "wb") as file:
            file.seek(4 << 20)
            file.write(b"fin")
        self.stamp("trous", 1_450_000_001)
        os.symlink("grand", self.path("lien"))
        os.utime(self.path("lien"), ns=(self.time(1_460_000_001),) * 2, follow_symlinks=False)
        self.attributes = hostile_tree.give_attributes(self.path("prive"))

    @staticmethod
    def time(seconds):
        return seconds * 1_000_000_000 + 123_456_700

    def path(self, name):
        return os.path.join(self.root, name)

    def stamp(self, name, seconds):
        os.utime(self.path(name), ns=(self.time(seconds),) * 2)

    def write(self, name, content, seconds):
        harness.write(self.path(name), content)
        self.stamp(name, seconds)


class Trial:
    """One volume, from its first run to its row."""

    def __init__(self, volume, place, report):
        self.volume = volume
        self.place = place
        self.report = report
        self.cells = collections.OrderedDict.fromkeys(HEADING, "")
        self.cells["volume"], self.cells["est"] = volume.name, volume.what
        if volume.plain:
            place.source = os.path.join(place.root, "Donnees")
        place.destination = volume.root
        place.copy = os.path.join(volume.root, os.path.basename(place.source))
        self.tree = Tree(place.source, volume.plain)
        self.settle()

    def settle(self, rounded=False):
        self.place.write_line(f"ContinueOnError=-1\nSynchroCopie=-1\n"
                              f"DatesArrondies={-1 if rounded else 0}\n")

    def run(self, verb="sauvegarder", *more):
        words = [] if verb == "comparer" else ["--ecraser"]
        words += ["--confirmer"] if verb == "restaurer" else []
        outcome = self.place.console(verb, *words, "--json", *more)
        self.volume.sends()
        return outcome, outcome.json() or {}

    def expect(self, what, files=None, outcome=("clean", "nothing"), verb="sauvegarder"):
        ended, told = self.run(verb)
        good = told.get("outcome") in outcome and files in (None, told.get("files"))
        self.report.check(f"{what} : {told.get('outcome')}, {told.get('files')} fichiers", good,
                          ended)
        return told

    def same(self, what):
        """Every byte of the original is in the copy, and nothing else."""
        self.equal(f"{what} : la copie est égale", self.place.copy)
        self.report.equal(f"{what} : aucun reste", leftovers(self.place.copy), [])
        self.arrived(self.volume.kept(self.place.copy))

    def equal(self, what, copy):
        wanted, found = contents(self.place.source), contents(copy)
        if not os.path.islink(os.path.join(copy, "lien")):
            wanted.pop("lien", None)  # what it leads to stands for it
            found.pop("lien", None)
        wrong = sorted(name for name in {*wanted, *found} if wanted.get(name) != found.get(name))
        self.report.equal(what, wrong, [])

    def arrived(self, kept):
        """What a mount shows may be on this machine alone: is it with the server?"""
        if kept != self.place.copy:
            self.equal("tout est au serveur", kept)
            self.report.equal("et aucun reste", leftovers(kept), [])

    def play(self):
        self.report.scenario = self.volume.name
        print(f"--- {self.volume.name} : {self.volume.what}")
        self.expect("première sauvegarde", outcome=("clean",))
        self.same("première sauvegarde")
        self.look()
        self.second()
        self.remount()
        self.change()
        self.restore()
        self.kill()
        self.compare()
        self.names()

    copied_again = 0  # of an unchanged original

    def second(self):
        """What a run without a change copies, and what it says of that."""
        _, told = self.run()
        again = told.get("files")
        reasons = told.get("dates", [])
        cell = "ne recopie rien"
        if 0 < again <= 3 and not reasons:  # before 1970, after 2038, the link
            self.copied_again = again
            cell += f", sauf {again} hors de ses dates"
        elif again:
            self.report.check("ce qui est recopié est dit", len(reasons) == 1, reasons)
            self.settle(rounded=True)
            told = self.expect("avec les dates arrondies, seconde sauvegarde")
            self.copied_again = told.get("files")
            rounded = any("arrondit les dates" in reason for reason in reasons)
            self.report.check("arrondies ou perdues, et dites telles",
                              rounded == (self.copied_again <= 3), reasons)
            cell = "recopie tout, le dit ; "
            cell += "avec `DatesArrondies`, rien" if rounded else "`RecentSeul` l'évite"
            if rounded and self.copied_again:
                cell += f", sauf {self.copied_again} hors de ses dates"
        else:
            self.report.equal("rien n'est recopié, rien n'est dit", (again, reasons), (0, []))
        self.cells["seconde sauvegarde"] = cell

    def remount(self):
        """What the system had in its memory is gone: files whose times the disk does not hold show
        it now."""
        kept = self.volume.kept(self.place.copy)
        self.volume.again(lambda: self.arrived(kept))
        told = self.expect("après avoir démonté et remonté")
        more = told.get("files", 99) - self.copied_again
        # Before 1970, after 2038, and the link.
        self.report.check(f"{more} recopiés de plus, tous hors des dates que le volume garde",
                          0 <= more <= 3)
        if more:
            self.cells["seconde sauvegarde"] += f", sauf {more} hors de ses dates"
            self.copied_again += more

    def look(self):
        """What the volume has kept of each file."""
        copy = self.volume.kept(self.place.copy)
        at = lambda name: os.path.join(copy, name)
        steps = collections.Counter()
        for directory, _, names in os.walk(self.place.source):
            for name in names:
                original = os.path.join(directory, name)
                path = os.path.join(copy, os.path.relpath(original, self.place.source))
                if name not in ("avant", "apres", "lien"):
                    steps[self.step(os.stat(original).st_mtime_ns, os.stat(path).st_mtime_ns)] += 1
        usual = max(steps, key=lambda step: steps[step] if step != "exactes" else 0)
        rounded = [f"arrondies à {name}" for name, _ in self.STEPS]
        if usual in rounded:  # many a time is a multiple of more than its volume asks for
            usual = max((step for step in steps if step in rounded), key=rounded.index)
        self.cells["dates"] = usual
        beyond = [self.step(Tree.time(seconds), os.stat(at(name)).st_mtime_ns) != "perdues"
                  for name, seconds in (("avant", Tree.OLD), ("apres", Tree.LATE))]
        self.cells["avant 1970, après 2038"] = ", ".join("oui" if good else "non"
                                                         for good in beyond)
        modes = lambda root: [os.stat(os.path.join(root, name)).st_mode & 0o7777
                              for name in ("prive", "vide")]
        self.cells["modes"] = "gardés" if modes(copy) == modes(self.place.source) else \
            "non : " + ", ".join(f"{mode:o}" for mode in modes(copy))
        self.cells["liens"] = "gardés" if os.path.islink(at("lien")) else \
            "le fichier visé" if os.path.exists(at("lien")) else "non"
        kept = hostile_tree.attributes_named(at("prive"), self.tree.attributes)
        self.cells["attributs, ACL"] = ", ".join(
            "oui" if kept.get(key) == value else "non"
            for key, value in self.tree.attributes.items()) or "essai impossible ici"
        holes = os.stat(at("trous"))
        print(f"    trous gardés : {'oui' if holes.st_blocks * 512 < holes.st_size // 2 else 'non'}")

    STEPS = (("1 µs", 10**3), ("1 ms", 10**6), ("10 ms", 10**7), ("1 s", 10**9),
             ("2 s", 2 * 10**9))

    @staticmethod
    def step(wanted, kept):
        gap = kept // TICK - wanted // TICK
        if gap == 0:
            return "exactes"
        for name, step in Trial.STEPS:
            if 0 < gap * TICK < step and kept % step == 0:
                return f"arrondies à {name}"
        return "perdues"

    def change(self):
        """A file changed, one added, one gone."""
        self.tree.write("dossier 1/fichier 01.txt", b"autre contenu", 1_700_000_001)
        self.tree.write("dossier 2/nouveau.txt", b"nouveau", 1_700_000_003)
        os.unlink(self.tree.path("dossier 3/fichier 03.txt"))
        told = self.expect("un changé, un ajouté, un effacé", outcome=("clean",))
        if not self.copied_again:
            self.report.equal("deux copiés, un effacé",
                              (told.get("files"), told.get("deleted")), (2, 1))
        self.same("après le changement")

    def restore(self):
        """Onto an emptied source."""
        wanted = contents(self.place.source)
        for name in os.listdir(self.place.source):
            path = self.tree.path(name)
            (shutil.rmtree if os.path.isdir(path) and not os.path.islink(path)
             else os.unlink)(path)
        self.expect("restauration dans une source vidée", outcome=("clean",), verb="restaurer")
        found = contents(self.place.source)
        if not os.path.islink(self.tree.path("lien")):
            found.pop("lien", None)
            wanted.pop("lien", None)
        self.report.equal("la source est revenue", found == wanted, True)
        told = self.expect("la sauvegarde qui suit")
        self.report.check("elle n'en copie pas plus qu'avant",
                          told.get("files", 99) <= self.copied_again)

    def kill(self):
        """In the midst of copying, and once more to its end."""
        for number in range(60):
            self.tree.write(f"lot/{number:03d}", os.urandom(100_000), 1_650_000_000 + number)
        process = self.place.start("coffrelune-console", "sauvegarder", "--ecraser")
        harness.wait_until(lambda: self.begun(), process)
        process.kill()
        process.communicate()
        self.volume.sends()
        whole = {name: data for name, data in contents(self.place.copy).items()
                 if name.startswith("lot/") and not name.endswith(".tmp")}
        wrong = [name for name, data in whole.items()
                 if harness.read(self.tree.path(name)) != data]
        self.report.equal(f"tuée avec {len(whole)} de 60 copies : chacune est entière", wrong, [])
        self.expect("la suivante finit le travail")
        self.same("après la mort du programme")

    def begun(self):
        with contextlib.suppress(OSError):
            return len(os.listdir(os.path.join(self.place.copy, "lot"))) > 3
        return False

    def compare(self):
        ended, told = self.run("comparer")
        if self.copied_again:
            return
        self.report.check("la comparaison ne trouve rien", told.get("outcome") == "clean", ended)

    def names(self):
        """Names that some volumes refuse: each is kept as it is, or is an error with its number."""
        shutil.rmtree(self.tree.path("lot"))
        odd = self.volume.deadly + self.volume.renamed
        names = [name for name in hostile_tree.hard_names() if name not in odd]
        os.mkdir(self.tree.path("noms"))
        made = 0
        for name in names:
            with contextlib.suppress(OSError):
                with open(os.path.join(os.fsencode(self.tree.path("noms")), name), "wb") as file:
                    file.write(name)
                made += 1
        ended, told = self.run()
        numbers = collections.Counter(error["number"] for error in told.get("errors", [])
                                      if "\\noms\\" in error["path"])
        right, other = self.shown(names)
        self.report.check(f"noms : {right} de {made} gardés, {other} sous un autre nom, "
                          f"{sum(numbers.values())} erreurs",
                          right + other + sum(numbers.values()) >= made, ended)
        _, told = self.run()
        self.report.equal("noms : puis rien n'est effacé", told.get("deleted"), 0)
        self.arrived(self.volume.kept(self.place.copy))
        refused = ", ".join(f"{count} refusé{'s' if count > 1 else ''} (erreur {number})"
                            for number, count in sorted(numbers.items()))
        shown = f" ; {other} montrés sous un autre nom" if other else ""
        self.cells["noms difficiles"] = f"{right} de {made}{shown}" + \
            (f" ; {refused}" if refused else "")
        for name in self.volume.renamed:
            self.cells["noms difficiles"] += f" ; `{name.decode()}` y est pris pour un autre"
        if self.volume.deadly:
            self.cells["noms difficiles"] += f" ; {len(self.volume.deadly)} (`:`, `<`, `|`, " \
                "contrôles, octets) arrêtent le pilote : la sauvegarde s'arrête et le dit"
            self.survive(self.volume.deadly[0])

    def shown(self, names):
        """How many of the files that hold their own names bear them, and how many another."""
        copy = os.fsencode(os.path.join(self.place.copy, "noms"))
        held = {}
        for name in os.listdir(copy) if os.path.isdir(copy) else ():
            held[name] = harness.read(os.path.join(copy, name))
        right = sum(held.get(name) == name for name in names)
        other = sum(name not in held and name in held.values() for name in names)
        return right, other

    def survive(self, name):
        """A name after which the driver answers no more: that is told, and nothing is lost."""
        before = contents(self.place.copy)
        path = os.path.join(os.fsencode(self.tree.path("noms")), name)
        with open(path, "wb") as file:
            file.write(name)
        ended, told = self.run()
        self.report.check(f"{name.decode()} : ce n'est pas une réussite ({told.get('outcome')})",
                          ended.status != 0 and told.get("outcome") not in ("clean", "nothing"),
                          ended)
        os.unlink(path)
        self.volume.again()
        self.report.equal(f"{name.decode()} : remonté, la copie est intacte",
                          contents(self.place.copy) == before, True)
        self.run()
        self.report.equal(f"{name.decode()} : la suivante finit, sans reste",
                          leftovers(self.place.copy), [])

    def row(self):
        return "| " + " | ".join(self.cells.values()) + " |"


def play(kind, arguments, report):
    """The row of a volume; None where this machine has none."""
    place = Place(arguments.programs)
    try:
        with volume_disks.mounted(kind, arguments.place) as volume:
            started = time.monotonic()
            trial = Trial(volume, place, report)
            trial.play()
            print(f"    {time.monotonic() - started:.1f} s")
            print(trial.row())
            return trial.row()
    except Refused as reason:
        report.leave_out(kind.name, reason)
    except OSError as error:
        report.check(f"{kind.name} va à son terme", False, error)
    finally:
        place.remove()
    return None


def split_row(row):
    """The cells; a bar between backticks is no border."""
    return [cell.strip() for cell in re.split(r"\|(?=(?:[^`]*`[^`]*`)*[^`]*$)", row)[1:-1]]


def documented_rows(path):
    text = harness.read(path).decode()
    return text.split(MARKS[0])[1].split(MARKS[1])[0].strip().splitlines()[2:]


def compare(kind, row, documented, report):
    """Each cell as it was found is the one that people read."""
    known = [line for line in documented if split_row(line)[0] == kind.name]
    if report.check(f"{kind.name} a sa ligne dans docs/volumes.md", len(known) == 1, known):
        for heading, found, told in zip(HEADING, split_row(row), split_row(known[0])):
            report.equal(f"docs/volumes.md, {heading}", found, told)


def write_table(path, rows):
    """The rows take the place of those between the marks."""
    text = harness.read(path).decode()
    table = "\n".join(["| " + " | ".join(HEADING) + " |", "|" + "---|" * len(HEADING), *rows])
    start, end = (re.escape(mark) for mark in MARKS)
    text = re.sub(f"({start}\n).*({end})", lambda found: found[1] + table + "\n" + found[2], text,
                  flags=re.S)
    harness.write(path, text)


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--court", action="store_true")
    parser.add_argument("--docs", action="store_true")
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    parser.add_argument("--place", default=os.environ.get("TMPDIR", "/tmp"))
    parser.add_argument("kinds", nargs="*", metavar="KIND")
    arguments = parser.parse_args()
    arguments.programs = os.path.abspath(arguments.programs)
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)

    # Ended from outside, it still takes off what it has mounted.
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    report = Report()
    kinds = [kind for kind in volume_disks.KINDS
             if (kind.quick or not arguments.court)
             and (not arguments.kinds or any(word in kind.name for word in arguments.kinds))]
    documents = os.path.join(root, "docs/volumes.md")
    rows = []
    for kind in kinds:
        row = play(kind, arguments, report)
        if row and not arguments.docs and not arguments.court:  # older systems keep less
            compare(kind, row, documented_rows(documents), report)
        rows += [row] if row else []
    if not arguments.kinds or "limites" in arguments.kinds:
        for module in (volume_limits, volume_names, volume_faults):
            volume_limits.play(arguments, report, module.CASES)
    if arguments.docs:
        write_table(documents, rows)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
