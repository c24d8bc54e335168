"""What is measured on what. A trial is a few programs in turn on the same trees and volumes."""

import dataclasses

import programs as p
import trees

GIB = 1 << 30
COPIES = ("ours", "other", p.RSYNC, p.CP, p.CP_SYNC)
SPARSE = ("ours", "other", p.RSYNC_SPARSE, p.CP, p.CP_SYNC)
UPDATES = ("ours", "other", p.RSYNC, p.CP_UPDATE)


@dataclasses.dataclass
class Trial:
    name: str
    trees: list  # functions that give a tree: a million names are made when their turn comes
    operations: tuple
    programs: tuple  # programs, or the words "ours", "other", "loops", "lines", "window"
    disk: str = "ext4"
    cores: int = 2
    cold: bool = False
    rounds: int = 5
    fresh: bool = True  # each round begins with an empty volume; else with the copies of the first
    calls: bool = False  # the calls are counted instead of the time


def of(make, *arguments):
    return [lambda: make(*arguments)]


def everything():
    hundred = of(trees.tiny, "cent mille", 100_000)
    thirty = of(trees.small, "petits", 30_000)
    rest = (p.NOTHING, p.COMPARE)
    copy = (p.FIRST, p.REPLACE)
    return [
        Trial("repos", hundred, rest, (*UPDATES, "loops"), rounds=15, fresh=False),
        Trial("repos, un cœur", hundred, rest, (*UPDATES, "loops"), cores=1, rounds=11,
              fresh=False),
        Trial("repos, tmpfs", hundred, rest, (*UPDATES, "loops"), disk="tmpfs", rounds=11,
              fresh=False),
        Trial("repos, froid", hundred, rest, (*UPDATES, "loops"), cold=True, rounds=5,
              fresh=False),
        Trial("petits", thirty, copy, (*COPIES, p.InOneGo()), rounds=9),
        Trial("petits, un cœur", thirty, copy, COPIES, cores=1, rounds=5),
        Trial("petits, tmpfs", thirty, copy, COPIES, disk="tmpfs", rounds=7),
        Trial("petits, froid", thirty, copy, COPIES, cold=True, rounds=5),
        Trial("vidage par fichier", of(trees.small, "dix mille petits", 10_000), copy,
              ("ours", "other", p.RSYNC_FSYNC), rounds=3),
        Trial("mélange", of(trees.mixed, "mélange"), copy, COPIES, rounds=5),
        Trial("grands", of(trees.large, "grands", 8, 128 << 20), copy, COPIES, rounds=9),
        Trial("grands, tmpfs", of(trees.large, "grands", 8, 128 << 20), copy, COPIES, disk="tmpfs",
              rounds=7),
        Trial("creux", of(trees.sparse, "creux", 4, GIB), copy, SPARSE, rounds=3),
        Trial("un répertoire", of(trees.one_directory, "un répertoire", 100_000),
              (p.FIRST, p.NOTHING), COPIES, rounds=3),
        Trial("un répertoire d'un million", of(trees.one_directory, "dix mille ensemble", 10_000)
              + of(trees.one_directory, "cent mille ensemble", 100_000)
              + of(trees.one_directory, "un million ensemble", 1_000_000),
              (p.FIRST, p.NOTHING, p.COMPARE), ("ours", "other"), rounds=3),
        Trial("profondeur", of(trees.deep, "20 niveaux", 20, 100)
              + of(trees.deep, "2000 niveaux", 2000, 1), (p.FIRST, p.NOTHING, p.COMPARE),
              ("ours", "other"), rounds=3),
        Trial("lignes", thirty, (p.FIRST, p.NOTHING), ("lines",), rounds=5),
        Trial("fenêtre", of(trees.tiny, "cent mille", 100_000), (p.FIRST, p.NOTHING),
              ("ours by settings", "window"), rounds=3),
        Trial("croissance", of(trees.tiny, "dix mille", 10_000) + hundred
              + of(trees.tiny, "un million", 1_000_000),
              (p.FIRST, p.NOTHING, p.COMPARE, p.DIFFERING), ("ours", p.RSYNC, p.CP), rounds=3),
        Trial("appels", of(trees.small, "dix mille petits", 10_000),
              (p.FIRST, p.NOTHING, p.REPLACE, p.COMPARE),
              ("ours", "other", p.RSYNC, p.CP, p.CP_UPDATE), rounds=1, calls=True),
        Trial("wine", of(trees.small, "trois mille petits", 3000), (p.FIRST, p.NOTHING),
              ("wine",), rounds=5),
    ]


def short():
    """Everything once, in seconds: that the command works, and that the copies are equal."""
    few = of(trees.small, "petits", 300)
    copy = (p.FIRST, p.REPLACE)
    return [
        Trial("petits", few, copy, (*COPIES, p.RSYNC_FSYNC), rounds=1),
        Trial("petits, tmpfs", few, copy, COPIES, disk="tmpfs", rounds=1, cores=1),
        Trial("repos", few, (p.NOTHING, p.COMPARE, p.DIFFERING), (*UPDATES, "loops"), rounds=2,
              fresh=False),
        Trial("repos, froid", few, (p.NOTHING,), UPDATES, rounds=1, fresh=False, cold=True),
        Trial("mélange", of(trees.mixed, "mélange", 10), copy, COPIES, rounds=1),
        Trial("grands", of(trees.large, "grands", 2, 3 << 20), copy, COPIES, rounds=1),
        Trial("creux", of(trees.sparse, "creux", 1, 128 << 20), copy, SPARSE, rounds=1),
        Trial("un répertoire d'un million", of(trees.one_directory, "trente ensemble", 30)
              + of(trees.one_directory, "trois cents ensemble", 300),
              (p.FIRST, p.NOTHING), ("ours",), rounds=1),
        Trial("profondeur", of(trees.deep, "20 niveaux", 20, 2)
              + of(trees.deep, "40 niveaux", 40, 1), (p.FIRST, p.NOTHING), ("ours",), rounds=1),
        Trial("lignes", few, (p.FIRST, p.NOTHING), ("lines",), rounds=1),
        Trial("appels", few, (p.FIRST, p.NOTHING, p.REPLACE, p.COMPARE),
              ("ours", p.RSYNC, p.CP, p.CP_UPDATE), rounds=1, calls=True),
    ]
