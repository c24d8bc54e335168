"""What we want of ourselves, and whether the measures show it."""

import programs as p
import tables
from tables import Measures, Spread, french, ratio

OURS = "coffrelune"


class Results:
    """The measures of a run, by what the targets ask."""

    def __init__(self, results):
        self.measures = Measures(results["mesures"])
        self.calls = results["appels"]

    def ratio(self, trial, operation, other, ours=OURS):
        these = self.measures.of(essai=trial, opération=operation)
        return ratio(these.of(programme=ours), these.of(programme=other))

    def inverse(self, trial, operation, other):
        these = self.measures.of(essai=trial, opération=operation)
        return ratio(these.of(programme=other), these.of(programme=OURS))

    def between(self, trial, over, under):
        """Ours at one operation against ours at another."""
        these = self.measures.of(essai=trial, programme=OURS)
        return ratio(these.of(opération=over), these.of(opération=under))

    def per_file(self, trial, operation, tree, than):
        """The time of a file in one tree against that in another, their labels' beginnings."""
        these = self.measures.of(essai=trial, opération=operation, programme=OURS)
        over, under = (Measures([record for record in these.records
                                 if record["arbre"].startswith(name)]) for name in (tree, than))
        if not over or not under:
            return None
        files = under.records[0]["fichiers"] / over.records[0]["fichiers"]
        return ratio(over, under, files)

    def count(self, operation):
        found = [tables.calls_per_file(record) for record in self.calls
                 if record["programme"] == OURS and record["opération"] == operation]
        return Spread(found) if found else None

    def peak(self, trial):
        """Without a list of all that differs: what that may take grows with its text."""
        these = Measures([record for record in
                          self.measures.of(essai=trial, programme=OURS).records
                          if record["opération"] != p.DIFFERING])
        return Spread([these.peak()]) if these else None

    def more_seconds(self, trial, over, under):
        """Of the largest tree."""
        these = self.measures.of(essai=trial, programme=OURS)
        most = max((record["fichiers"] for record in these.records), default=0)
        these = these.of(fichiers=most)
        below = {record["tour"]: record["secondes"] for record in these.of(opération=under).records}
        values = [record["secondes"] - below[record["tour"]]
                  for record in these.of(opération=over).records if record["tour"] in below]
        return Spread(values) if values else None


MOST, LEAST = "au plus", "au moins"
# What it is, how it is had of the results, its bound.
TARGETS = (
    ("Rien de changé / rsync -a, deux cœurs",
     lambda r: r.ratio("repos", p.NOTHING, "rsync -a"), MOST, 0.35),
    ("Rien de changé / rsync -a, un cœur",
     lambda r: r.ratio("repos, un cœur", p.NOTHING, "rsync -a"), MOST, 0.7),
    ("Rien de changé / deux stat par fichier, deux fils",
     lambda r: r.ratio("repos", p.NOTHING, "deux stat, 2 fils"), MOST, 1.1),
    ("Rien de changé / deux stat par fichier, un cœur",
     lambda r: r.ratio("repos, un cœur", p.NOTHING, "deux stat, 1 fil"), MOST, 1.1),
    ("Appels par fichier inchangé", lambda r: r.count(p.NOTHING), MOST, 2.3),
    ("Première copie / rsync -a (qui ne vide rien)",
     lambda r: r.ratio("petits", p.FIRST, "rsync -a"), MOST, 0.65),
    ("Première copie / cp -a puis sync -f",
     lambda r: r.ratio("petits", p.FIRST, "cp -a, sync -f"), MOST, 0.65),
    ("Première copie / rsync -a --fsync",
     lambda r: r.ratio("vidage par fichier", p.FIRST, "rsync -a --fsync"), MOST, 0.2),
    ("Appels par fichier copié", lambda r: r.count(p.FIRST), MOST, 11),
    ("Tout remplacer / première copie",
     lambda r: r.between("petits", p.REPLACE, p.FIRST), MOST, 1.2),
    ("Grands fichiers : cp -a puis sync -f / Coffrelune",
     lambda r: r.inverse("grands", p.FIRST, "cp -a, sync -f"), LEAST, 1.4),
    ("Grands fichiers sur tmpfs : cp -a / Coffrelune",
     lambda r: r.inverse("grands, tmpfs", p.FIRST, "cp -a"), LEAST, 0.97),
    ("Comparaison d'arbres égaux / rien de changé",
     lambda r: r.between("repos", p.COMPARE, p.NOTHING), MOST, 1.1),
    ("Un million de fichiers qui diffèrent : secondes de plus que d'égaux",
     lambda r: r.more_seconds("croissance", p.DIFFERING, p.COMPARE), MOST, 2),
    ("Un million de fichiers, sans liste de différences : Mio de mémoire",
     lambda r: r.peak("croissance"), MOST, 16),
    ("Première copie, temps par fichier, un million / cent mille",
     lambda r: r.per_file("croissance", p.FIRST, "1 000 000", "100 000"), MOST, 1.1),
    ("Rien de changé, temps par fichier, un million / cent mille",
     lambda r: r.per_file("croissance", p.NOTHING, "1 000 000", "100 000"), MOST, 1.1),
    ("Première copie, temps par fichier d'un répertoire, un million / cent mille",
     lambda r: r.per_file("un répertoire d'un million", p.FIRST, "un répertoire de 1 000 000",
                          "un répertoire de 100 000"), MOST, 1.1),
    ("Rien de changé, temps par fichier d'un répertoire, un million / cent mille",
     lambda r: r.per_file("un répertoire d'un million", p.NOTHING, "un répertoire de 1 000 000",
                          "un répertoire de 100 000"), MOST, 1.1),
    ("Première copie, 2 000 niveaux / 20",
     lambda r: r.per_file("profondeur", p.FIRST, "2 000", "20 "), MOST, 1.1),
    ("Rien de changé, 2 000 niveaux / 20",
     lambda r: r.per_file("profondeur", p.NOTHING, "2 000", "20 "), MOST, 1.1),
    ("Première copie, 300 lignes / une",
     lambda r: r.ratio("lignes", p.FIRST, "coffrelune, réglages", "coffrelune, 300 lignes"),
     MOST, 1.1),
    ("Rien de changé, 300 lignes / une",
     lambda r: r.ratio("lignes", p.NOTHING, "coffrelune, réglages", "coffrelune, 300 lignes"),
     MOST, 1.1),
    ("Première copie, fenêtre / console",
     lambda r: r.ratio("fenêtre", p.FIRST, "coffrelune, réglages", "coffrelune, fenêtre"),
     MOST, 1.1),
    ("Rien de changé, fenêtre / console",
     lambda r: r.ratio("fenêtre", p.NOTHING, "coffrelune, réglages", "coffrelune, fenêtre"),
     MOST, 1.1),
)


def table(results):
    """The lines of the table of targets, for those that were measured."""
    found = Results(results)
    lines = ["| Cible | Limite | Mesuré : médiane (de … à …) | Atteinte |", "|---|--:|--:|---|"]
    for text, measured, bound, limit in TARGETS:
        value = measured(found)
        if value is None:
            continue
        good = value.median <= limit if bound == MOST else value.median >= limit
        lines.append(f"| {text} | {bound} {french(limit)} | {value} | {'oui' if good else 'non'} |")
    return lines
