"""A volume whose server fails, as networks do, at one call after another: at listing, looking,
opening, reading, writing, naming, dating, flushing, deleting. Nothing is lost, no run that lacks
something calls itself good, the number says what happened, and the next run sets all right. Called
by volumes.py."""

import errno
import os
import shutil

import harness
import passing_volume as fuse
from volume_disks import Passing
from volume_limits import contents, leftovers, numbers

# As the program tells them.
ERRORS = {errno.EIO: 1117, errno.ESTALE: 55, errno.ENOTCONN: 55, errno.ETIMEDOUT: 121,
          errno.ECONNRESET: 64, errno.ECONNREFUSED: 1225, errno.ENETUNREACH: 1231,
          errno.EHOSTUNREACH: 1232, errno.EINTR: 995}
READING = {"lister": (fuse.OPENDIR, fuse.READDIR), "regarder": (fuse.LOOKUP, fuse.GETATTR),
           "ouvrir": (fuse.OPEN,), "lire": (fuse.READ,)}
WRITING = {"créer": (fuse.CREATE, fuse.MKDIR), "écrire": (fuse.WRITE,),
           "renommer": (fuse.RENAME, fuse.RENAME2), "dater": (fuse.SETATTR,),
           "vider": (fuse.FSYNC, fuse.SYNCFS, fuse.FLUSH), "effacer": (fuse.UNLINK, fuse.RMDIR)}
EVERYTHING = {"tout": tuple(call for calls in [*READING.values(), *WRITING.values()]
                            for call in calls)}
FOREVER = 1 << 30
OLD = {"a": "ancien", "gros": "o" * 300_000, "sous/b": "b", "sous/c": "c ancien", "vieux/d": "d",
       "même": "même", "profond/e/f/g": "g"}
NEW = {"a": "nouveau, plus long", "gros": "n" * 400_000, "sous/b": "b", "sous/c": "c nouveau",
       "même": "même", "sous/neuf": "neuf", "ailleurs/h": "h", "profond/e/f/g": "g"}


def plant(root, files, seconds):
    """Files that both have are the same file, of one age."""
    shutil.rmtree(root, ignore_errors=True)
    os.makedirs(root)
    for name, text in files.items():
        harness.write(f"{root}/{name}", text)
        same = OLD.get(name) == NEW.get(name)
        times = (1_600_000_000_000_000_000 + (0 if same else seconds) * 10**9,) * 2
        os.utime(f"{root}/{name}", ns=times)


def texts(root):
    return {name: data.decode(errors="replace") for name, data in contents(root).items()}


class Trial:
    """One run from the same start for each call that fails."""

    def __init__(self, volume, place, report, side):
        self.volume, self.place, self.report = volume, place, report
        self.side = side  # which of the two trees lies on the volume
        if side == "source":
            self.behind, place.source = place.source, os.path.join(volume.root, "Données")
            self.behind = os.path.join(volume.backing, "Données")
            place.destination = os.path.join(place.root, "Disque de sauvegarde")
            place.copy = self.copy = os.path.join(place.destination, "Données")
            self.source = self.behind
        else:
            self.source = place.source
            self.copy = os.path.join(volume.backing, "Données")
        self.saved = os.path.join(place.root, "copie d'avant")
        self.runs = 0

    def settle(self, synchro):
        self.place.write_line(f"ContinueOnError=-1\nSynchroCopie={synchro}\n")

    def first(self):
        """A good copy, kept to begin from."""
        plant(self.source, OLD, 0)
        self.settle(-1)
        outcome = self.run("sauvegarder")
        self.report.check("première sauvegarde", outcome.status == 0, outcome)
        shutil.copytree(self.copy, self.saved)

    def begin(self):
        plant(self.source, NEW, 100)
        shutil.rmtree(self.copy)
        shutil.copytree(self.saved, self.copy)

    def run(self, verb):
        more = ["--confirmer"] if verb == "restaurer" else []
        return self.place.console(verb, "--ecraser", *more, "--json")

    def fails(self, what, verb, synchro, calls, error, skip, times):
        """False when the fault was not met."""
        self.begin()
        self.settle(synchro)
        self.volume.faults.set(calls, error, skip, times)
        outcome = self.run(verb)
        met = self.volume.faults.met
        self.volume.faults.set()
        self.runs += 1
        what = f"{verb} {what} {errno.errorcode[error]} après {skip}, SynchroCopie {synchro}"
        self.look(what, verb, synchro, outcome, calls, error)
        self.repair(what, verb)
        return met > 0

    def expect(self, what, good, *details):
        if not good:
            self.report.check(what, False, "\n".join(str(detail)[-3000:] for detail in details))

    def look(self, what, verb, synchro, outcome, calls, error):
        """Each file is the old or the new one, and what both have is there."""
        written = texts(self.copy if verb == "sauvegarder" else self.source)
        read = texts(self.source if verb == "sauvegarder" else self.copy)
        wanted, before = (NEW, OLD) if verb == "sauvegarder" else (OLD, NEW)
        self.expect(f"{what} : ce qui est lu reste", read == wanted, sorted(read), outcome)
        wrong = [name for name, text in written.items()
                 if text not in (before.get(name), wanted.get(name))]
        self.expect(f"{what} : chaque fichier est l'ancien ou le nouveau", not wrong, wrong, outcome)
        must = {name for name in before if synchro == 0 or name in wanted}
        self.expect(f"{what} : rien n'est perdu", must <= set(written), must - set(written),
                    outcome)
        self.expect(f"{what} : il finit", outcome.status in (0, 1, 2, 3), outcome)
        told = (outcome.json() or {}).get("outcome")
        if outcome.status == 0 or told in ("clean", "nothing"):
            # What could not be deleted waits for the next run.
            complete = wanted if synchro and fuse.UNLINK not in calls else {**before, **wanted}
            self.expect(f"{what} : une réussite en est une",
                        wanted.items() <= written.items() <= complete.items(),
                        sorted(set(complete.items()) ^ set(written.items()))[:3], outcome)
        # 13: nothing is deleted, for a reason that is told.
        right = {ERRORS[error], *([13] if (outcome.json() or {}).get("kept") else [])}
        if ERRORS[error] == 55:  # a tree that is not there is not ready for anything
            right.add(21)
        found = set(numbers(outcome))
        self.expect(f"{what} : le numéro", found <= right, found, outcome)

    def repair(self, what, verb):
        self.settle(-1)
        if verb == "restaurer":  # what is left of one that broke off lets nothing be deleted
            outcome = self.run(verb)
            self.expect(f"{what} : la restauration qui suit finit", outcome.status in (0, 1), outcome)
            self.expect(f"{what} : elle rend les deux égaux", OLD.items() <= texts(self.source).items(),
                        sorted(texts(self.source)), outcome)
        plant(self.source, NEW, 100)
        outcome = self.run("sauvegarder")
        self.expect(f"{what} : la suivante est bonne", outcome.status == 0, outcome)
        self.expect(f"{what} : la suivante rend les deux égaux", texts(self.copy) == NEW,
                    sorted(texts(self.copy)), outcome)
        self.expect(f"{what} : aucun reste", leftovers(self.copy) == [], leftovers(self.copy))

    def sweep(self, verb, synchro, kinds, errors, most):
        """One call after another fails, alone and with all that follow."""
        for what, calls in kinds.items():
            for error in errors:
                for times in (1, FOREVER):
                    skip = 0
                    while skip < most and self.fails(what, verb, synchro, calls, error, skip,
                                                     times):
                        skip += 1 + skip // 8  # what comes late is alike


def play(volume, place, report, side, forms):
    trial = Trial(volume, place, report, side)
    trial.first()
    for form in forms:
        before = trial.runs, report.failed
        trial.sweep(*form)
        report.check(f"{form[0]}, SynchroCopie {form[1]}, {', '.join(form[2])} : "
                     f"{trial.runs - before[0]} fautes", report.failed == before[1])


OTHERS = [error for error in ERRORS if error != errno.EIO]


def faulty_copy(volume, place, report):
    """The disk of the copy fails."""
    play(volume, place, report, "copy", [
        (verb, synchro, kinds, errors, most)
        for verb, kinds in (("sauvegarder", {**READING, **WRITING}), ("restaurer", READING))
        for synchro in (-1, 0) for errors, most in (([errno.EIO], 1000), (OTHERS, 1))])


def faulty_source(volume, place, report):
    """The disk of the originals fails."""
    play(volume, place, report, "source", [
        (verb, synchro, kinds, errors, most)
        for verb, kinds in (("sauvegarder", READING), ("restaurer", {**READING, **WRITING}))
        for synchro in (-1, 0) for errors, most in (([errno.EIO], 1000), (OTHERS, 1))])


def some_faults(volume, place, report):
    """The disk of the copy fails at once."""
    play(volume, place, report, "copy", [("sauvegarder", -1, {**READING, **WRITING},
                                          [errno.ESTALE], 1),
                                         ("sauvegarder", 0, EVERYTHING, [errno.EIO, errno.EINTR], 1),
                                         ("restaurer", -1, EVERYTHING, [errno.ETIMEDOUT], 1)])


class Faulty(Passing):
    name = "serveur qui ne répond plus"


class FaultyAtOnce(Faulty):
    name, quick = "serveur qui ne répond pas", True


CASES = ((FaultyAtOnce, some_faults), (Faulty, faulty_copy), (Faulty, faulty_source))
