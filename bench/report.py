#!/usr/bin/env python3
"""Writes the tables of docs/performances.md between their markers, and its plots, from a run.

Usage: report.py [RESULTS] [DOCUMENT]
RESULTS: what run.py has written. A part whose measures are not there stays as it is.
"""

import json
import os
import re
import sys

import plots
import programs as p
import tables
import targets
from tables import Measures, ratio
from targets import OURS

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# Trial and operation, whose ratios to the others are shown side by side.
SHOWN = (("repos", p.NOTHING), ("repos, un cœur", p.NOTHING), ("petits", p.FIRST),
         ("petits", p.REPLACE), ("petits, tmpfs", p.FIRST), ("grands", p.FIRST),
         ("mélange", p.FIRST))


def machine(results):
    known = results["machine"]
    versions = ", ".join(f"{name} {version}" for name, version in known["versions"].items())
    charge = tables.french(known["charge"], 1)
    return [f"Mesuré le {known['date']} : {known['processeur']}, {known['cœurs']} cœurs, "
            f"{known['mémoire_gio']} Gio de mémoire, Linux {known['noyau']}, {versions} ; "
            f"{charge} programme(s) prêts à tourner en moyenne au début."]


def ratios(results):
    """Ours against each other program, the shorter the better."""
    rows = []
    measures = Measures(results["mesures"])
    for trial, operation in SHOWN:
        these = measures.of(essai=trial, opération=operation)
        for name in these.values("programme"):
            share = ratio(these.of(programme=OURS), these.of(programme=name))
            if name != OURS and share:
                rows.append((f"{p.LABELS[operation]}, {trial} : {name}", share.median, share.low,
                             share.high))
    return plots.bars("Temps de Coffrelune / temps de l'autre (trait : de … à …)", rows,
                      mark=1) if rows else None


def calls(results):
    rows = []
    for record in results["appels"]:
        value = tables.calls_per_file(record)
        rows.append((f"{p.LABELS[record['opération']]} : {record['programme']}", value, value,
                     value))
    return plots.bars("Appels au système par fichier", rows) if rows else None


def growing(results, operation):
    """Microseconds a file, as there are more of them."""
    these = Measures(results["mesures"]).of(essai="croissance", opération=operation)
    lines = {name: [(files, these.of(programme=name, fichiers=files).seconds().median / files * 1e6)
                    for files in these.of(programme=name).values("fichiers")]
             for name in these.values("programme")}
    return plots.growth(p.LABELS[operation] + ", temps par fichier", "µs",
                        lines) if these else None


def remembering(results):
    these = Measures(results["mesures"]).of(essai="croissance")
    lines = {name: [(files, these.of(programme=name, fichiers=files).peak())
                    for files in these.of(programme=name).values("fichiers")]
             for name in these.values("programme")}
    return plots.growth("Mémoire à son plus haut", "Mio", lines) if these else None


PICTURES = {"rapports.svg": ratios, "appels.svg": calls,
            "croissance-copie.svg": lambda results: growing(results, p.FIRST),
            "croissance-repos.svg": lambda results: growing(results, p.NOTHING),
            "memoire.svg": remembering}


def between(text, name, lines):
    """Puts lines between the markers of a name."""
    begin, end = f"<!-- {name} -->", f"<!-- fin {name} -->"
    pattern = re.compile(f"({re.escape(begin)}\n).*?({re.escape(end)})", re.S)
    if not pattern.search(text):
        raise ValueError(f"{begin} … {end} manque")
    return pattern.sub(lambda match: match[1] + "\n".join(lines) + "\n" + match[2], text)


def main():
    words = sys.argv[1:]
    path = words[0] if words else os.path.join(ROOT, "build/bench/mesures.json")
    document = words[1] if len(words) > 1 else os.path.join(ROOT, "docs/performances.md")
    with open(path, encoding="utf-8") as file:
        results = json.load(file)
    with open(document, encoding="utf-8") as file:
        text = file.read()
    text = between(text, "machine", machine(results))
    text = between(text, "cibles", targets.table(results))
    text = between(text, "mesures", tables.everything({**results, "appels": []}))
    if results["appels"]:
        text = between(text, "appels", tables.calls_table(results["appels"]))
    pictures = os.path.join(os.path.dirname(document), "performances")
    os.makedirs(pictures, exist_ok=True)
    for name, draw in PICTURES.items():
        picture = draw(results)
        if picture:
            with open(os.path.join(pictures, name), "w", encoding="utf-8") as file:
                file.write(picture)
    with open(document, "w", encoding="utf-8") as file:
        file.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
