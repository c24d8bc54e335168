"""Volumes that take names for one which the program tells apart, shown by passing_volume.py: dots at
the end, accents composed in two ways, letters that only their tables know in two cases; and volumes
that make up the numbers of their entries. Called by volumes.py."""

import os

import harness
from volume_disks import Exfat, Passing, command
from volume_limits import contents, leftovers, names_of_errors, numbers

# Two files that the volume takes for one, two directories, a file and a directory of a name that it
# shows otherwise, and two that are two to everybody.
NAMES = {
    "points": ("R.E.M.", "R.E.M", "Etc...", "Etc", "Seul.", "ici."),
    "accents": ("déjà", "de\u0301ja\u0300", "été", "e\u0301te\u0301", "Noël", "côté"),
    "lettres": ("Երևան", "երևան", "Straße", "STRASSE", "ﬁn", "ΑΣ"),
}


class Folded:
    """Originals of one volume, and their life with copies on another that folds their names."""

    def __init__(self, volume, place, report):
        self.volume, self.place, self.report = volume, place, report
        place.write_line("ContinueOnError=-1\nSynchroCopie=-1\n")
        one, other, first, second, alone, place_alone = NAMES[volume.names]
        self.files = {one: "l'un", other: "l'autre, plus long", f"{first}/a": "dans le premier",
                      f"{second}/b": "dans le second", f"{second}/a": "un autre a",
                      alone: "seul", f"{place_alone}/x": "x", "plan": "plan", "dé": "dé", "dà": "dà"}
        self.pairs = ({one, other}, {first, second})
        self.write("")

    def write(self, more, age=0):
        for number, (name, text) in enumerate(self.files.items()):
            harness.write(f"{self.place.source}/{name}", text + more)
            harness.touch(f"{self.place.source}/{name}", age + number)

    def run(self, verb="sauvegarder"):
        more = ["--confirmer"] if verb == "restaurer" else []
        outcome = self.place.console(verb, "--ecraser", *more, "--json")
        self.report.equal(f"{verb} : aucun reste", leftovers(self.volume.backing), [])
        return outcome, outcome.json() or {}

    def originals(self):
        return {name: data.decode() for name, data in contents(self.place.source).items()}

    def copies(self):
        return sorted(data.decode() for data in contents(self.place.copy).values())

    def told(self, what, outcome):
        """One of each pair is copied, and the other is an error that names it."""
        named = names_of_errors(outcome)
        self.report.equal(f"{what} : l'erreur 183 seule", numbers(outcome), [183])
        self.report.check(f"{what} : un de chaque paire est nommé",
                          len(named) == 2 and all(len(pair & set(named)) == 1
                                                  for pair in self.pairs), outcome)
        left = set(named)
        kept = sorted(text for name, text in self.originals().items()
                      if name.split("/")[0] not in left)
        self.report.equal(f"{what} : tous les autres sont dans la copie, entiers", self.copies(),
                          kept)

    def play(self):
        outcome, _ = self.run()
        self.told("première sauvegarde", outcome)
        self.volume.again()
        before = self.copies()
        outcome, told = self.run()
        self.told("seconde sauvegarde", outcome)
        self.report.equal("rien n'est copié, remplacé, effacé",
                          (told.get("files"), told.get("deleted"), self.copies()), (0, 0, before))
        self.write(", changé", 100)
        outcome, told = self.run()
        self.told("tout est changé", outcome)
        self.report.equal("rien n'est effacé", told.get("deleted"), 0)
        self.restore_over()
        gone = self.one_goes()
        self.one_comes_again(gone)
        self.come_back()

    def restore_over(self):
        """Originals that are still there: none is replaced by the copy of another."""
        self.write(", changé encore", 200)
        before = self.originals()
        outcome, _ = self.run("restaurer")
        after = self.originals()
        lost = {}
        for name in before:
            mine = (self.files[name] + ", changé", before[name])
            if after.get(name) not in mine:
                lost[name] = after.get(name)
        self.report.check("restauration par-dessus : chacun a sa propre copie, ou reste", not lost,
                          (lost, outcome))
        self.report.equal("restauration par-dessus : rien n'est effacé, ce qui est conservé est dit",
                          [name for name in before if name not in after], [])

    def one_goes(self):
        """The other one takes the place of the one that has gone."""
        command("rm", "-r", self.place.source)
        gone = {sorted(pair)[0] for pair in self.pairs}
        left_out = {name: text for name, text in self.files.items()
                    if name.split("/")[0] in gone}
        self.files = {name: text for name, text in self.files.items() if name not in left_out}
        self.write(", enfin", 300)
        outcome, _ = self.run()
        self.report.equal("l'un de chaque paire est parti : aucune erreur", numbers(outcome), [])
        kept = sorted(self.originals().values())
        # What is listed under a name that no original bears stays.
        missing = [text for text in kept if text not in self.copies()]
        self.report.equal("tout ce qui reste est dans la copie", missing, [])
        outcome, told = self.run()
        self.report.equal("puis rien", (told.get("outcome"), told.get("deleted")), ("nothing", 0))
        return left_out

    def one_comes_again(self, gone):
        """Beside one that has its copy, whichever is read first."""
        for name, text in gone.items():
            harness.write(f"{self.place.source}/{name}", text + ", revenu")
        for what in ("il revient", "il revient, la suite"):
            outcome, _ = self.run()
            self.told(what, outcome)
        for name in {path.split("/")[0] for path in gone}:
            command("rm", "-r", f"{self.place.source}/{name}")
        self.write(", enfin encore", 400)
        outcome, _ = self.run()
        self.report.equal("il repart : aucune erreur", numbers(outcome), [])

    def come_back(self):
        """Onto an emptied source."""
        wanted = sorted(self.originals().values())
        command("rm", "-r", self.place.source)
        os.mkdir(self.place.source)
        outcome, _ = self.run("restaurer")
        self.report.equal("restauration : aucune erreur", numbers(outcome), [])
        found = sorted(self.originals().values())
        self.report.equal("restauration : tout est revenu",
                          [text for text in wanted if text not in found], [])


def folded(volume, place, report):
    Folded(volume, place, report).play()


def made_up_numbers(volume, place, report):
    """No deletion, and no copy lost, where an entry is another one at each question."""
    place.write_line("ContinueOnError=-1\nSynchroCopie=-1\n")
    for number in range(12):
        harness.write(f"{place.source}/d{number % 3}/{number}", f"contenu {number}")
        harness.touch(f"{place.source}/d{number % 3}/{number}", number)
    run = lambda verb, *more: place.console(verb, "--ecraser", *more, "--json")
    report.check("première sauvegarde", run("sauvegarder").status == 0)
    report.equal("la copie est égale", contents(place.copy), contents(place.source))
    outcome = run("sauvegarder")
    report.equal("seconde sauvegarde : rien", (outcome.json() or {}).get("outcome"), "nothing")
    old = contents(place.copy)
    for number in range(6):
        harness.write(f"{place.source}/d{number % 3}/{number}", f"contenu {number}, changé")
        harness.touch(f"{place.source}/d{number % 3}/{number}", 100)
    os.unlink(f"{place.source}/d0/9")
    outcome = run("sauvegarder")
    new = contents(place.copy)
    wrong = {name: text for name, text in new.items()
             if text not in (old[name], contents(place.source).get(name))}
    report.equal("chaque copie est l'ancienne ou la nouvelle", wrong, {})
    report.equal("seul ce qui est parti est effacé", sorted(set(old) - set(new)), ["d0/9"])
    stale = [name for name, text in contents(place.source).items() if new[name] != text]
    named = names_of_errors(outcome)
    report.equal("ce qui n'a pu être remplacé est dit",
                 [name for name in stale if os.path.basename(name) not in named], [])
    report.equal("aucun reste", leftovers(volume.backing), [])
    command("rm", "-r", place.source)
    os.mkdir(place.source)
    run("restaurer", "--confirmer")
    report.equal("restauration : tout est revenu", contents(place.source), new)


def other_alphabet(volume, place, report):
    """Two pairs of originals that its driver takes for one and numbers by the name asked for."""
    place.write_line("ContinueOnError=-1\nSynchroCopie=-1\nDatesArrondies=-1\n")
    names = ("Երևան", "երևան", "ԾԱՂԻԿ/a", "ծաղիկ/a", "plan")
    for age, name in enumerate(names):
        harness.write(f"{place.source}/{name}", f"texte {name}" * (age + 1))
        harness.touch(f"{place.source}/{name}", age * 10)
    first = None
    for what in ("première", "seconde", "troisième"):
        outcome = place.console("sauvegarder", "--ecraser", "--json")
        report.equal(f"{what} : l'erreur 183 seule", numbers(outcome), [183])
        named = [name.lower() for name in names_of_errors(outcome)]
        report.equal(f"{what} : un de chaque paire est nommé", sorted(named), ["երևան", "ծաղիկ"])
        found = contents(place.copy)
        report.equal(f"{what} : la copie est la même", found, first or found)
        report.equal(f"{what} : trois copies", len(found), 3)
        first = found
        volume.again()


class ExfatAlphabets(Exfat):
    name, quick = "exfat, autres alphabets", True


class Dots(Passing):
    name, names, quick = "points à la fin confondus", "points", True


class Accents(Passing):
    name, names, quick = "accents confondus", "accents", True


class Letters(Passing):
    name, names = "lettres confondues", "lettres"


class ByName(Passing):
    name, numbers = "numéros par nom", "by-name"


class DotsByName(Dots):
    name, numbers = "points confondus, numéros par nom", "by-name"


class AccentsByName(Accents):
    name, numbers = "accents confondus, numéros par nom", "by-name"


class LettersByName(Letters):
    name, numbers, quick = "lettres confondues, numéros par nom", "by-name", True


class Anew(Passing):
    name, numbers, quick = "numéros sans cesse nouveaux", "anew", True


CASES = ((Dots, folded), (Accents, folded), (Letters, folded), (ByName, made_up_numbers),
         (Anew, made_up_numbers), (DotsByName, folded), (AccentsByName, folded),
         (LettersByName, folded), (ExfatAlphabets, other_alphabet))
