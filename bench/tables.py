"""Medians and spreads of what was measured, and the tables that tell them."""

import statistics

import programs as p


def french(number, digits=2):
    return f"{number:.{digits}f}".replace(".", ",")


def significant(number):
    """Three figures or so."""
    if number == 0:
        return "0"
    if number >= 10000:
        return f"{number:,.0f}".replace(",", " ")
    return french(number, 0 if number >= 100 else 1 if number >= 10 else 2 if number >= 1 else 3)


class Spread:
    """What the rounds gave: the median, and the lowest and the highest."""

    def __init__(self, values):
        self.median = statistics.median(values)
        self.low = min(values)
        self.high = max(values)
        self.count = len(values)

    def __str__(self):
        return f"{french(self.median)} ({french(self.low)} à {french(self.high)})"


class Measures:
    """The records of runs, by trial, operation, program and tree."""

    def __init__(self, records):
        self.records = records

    def trials(self):
        return list(dict.fromkeys(record["essai"] for record in self.records))

    def of(self, **wanted):
        return Measures([record for record in self.records if
                         all(record[key] == value for key, value in wanted.items())])

    def values(self, key):
        return list(dict.fromkeys(record[key] for record in self.records))

    def seconds(self):
        return Spread([record["secondes"] for record in self.records])

    def processor(self):
        """Microseconds a file."""
        return statistics.median((record["utilisateur"] + record["système"]) * 1e6
                                 / record["fichiers"] for record in self.records)

    def peak(self):
        """MiB."""
        return max(record["pointe_kio"] for record in self.records) / 1024

    def __bool__(self):
        return bool(self.records)


def ratio(over, under, scale=1.0):
    """Of the same rounds; nothing when there is none. `scale`: of files, where trees differ."""
    below = {record["tour"]: record["secondes"] for record in under.records}
    values = [record["secondes"] / below[record["tour"]] * scale for record in over.records
              if record["tour"] in below]
    return Spread(values) if values else None


def time_table(measures):
    """Lines of one trial: each operation, tree and program, with the ratio of ours to it."""
    ours = next((name for name in measures.values("programme") if name == "coffrelune"), None)
    ours = ours or min(measures.values("programme"), key=lambda n: not n.startswith("coffrelune"))
    lines = ["| Opération | Arbre | Programme | Médiane (s) | De … à … (s) | Coffrelune / lui | "
             "Processeur (µs/fichier) | Mémoire (Mio) |",
             "|---|---|---|--:|--:|--:|--:|--:|"]
    for operation in measures.values("opération"):
        for tree in measures.of(opération=operation).values("arbre"):
            these = measures.of(opération=operation, arbre=tree)
            for program in sorted(these.values("programme"), key=lambda name: name != ours):
                own = these.of(programme=program)
                seconds = own.seconds()
                share = ratio(these.of(programme=ours), own) if program != ours else None
                lines.append(
                    f"| {p.LABELS[operation]} | {tree} | {program} | {significant(seconds.median)} "
                    f"| {significant(seconds.low)} à {significant(seconds.high)} "
                    f"| {share or ''} | {significant(own.processor())} "
                    f"| {french(own.peak(), 1)} |")
    return lines


def conditions(measures):
    record = measures.records[0]
    rounds = 1 + max(record["tour"] for record in measures.records)
    return (f"{record['disque']}, {'cache vidé avant chaque mesure' if record['froid'] else 'à chaud'}"
            f", {record['cœurs']} cœur{'s' if record['cœurs'] > 1 else ''}, "
            f"{rounds} tour{'s' if rounds > 1 else ''}")


def calls_per_file(record):
    return sum(record["appels"].values()) / record["fichiers"]


def calls_table(calls):
    """Calls per file of each program, then ours by name."""
    lines = ["| Opération | Programme | Appels par fichier | Les plus fréquents |",
             "|---|---|--:|---|"]
    for record in calls:
        most = [f"{name} {french(count / record['fichiers'])}"
                for name, count in record["appels"].items()
                if count / record["fichiers"] >= 0.05]
        lines.append(f"| {p.LABELS[record['opération']]} | {record['programme']} "
                     f"| {french(calls_per_file(record))} | {', '.join(most)} |")
    return lines


def everything(results):
    """All tables of a run, under a heading each."""
    lines = []
    measures = Measures(results["mesures"])
    for trial in measures.trials():
        these = measures.of(essai=trial)
        lines += ["", f"### {trial.capitalize()} ({conditions(these)})", "", *time_table(these)]
    if results["appels"]:
        lines += ["", "### Appels au système, par fichier", "", *calls_table(results["appels"])]
    return lines
