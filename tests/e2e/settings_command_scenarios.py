"""The commands of the console that show and change the settings."""

import json
import os
import signal

from harness import caught, drive_path, wait, write
from settings_scenarios import section


def configurations(place, report):
    """Une configuration s'ajoute, se décrit, se renomme, se duplique et s'efface"""
    report.equal("sans réglages, la liste est vide",
                 (place.console("configurations", "--json").json() or {}).get("configurations"), [])
    outcome = place.console("configurations", "ajouter", "travail", "--description", "Le bureau")
    report.equal("ajoutée", outcome.status, 0)
    report.equal("son nom et sa description", section(place.read_settings(), "Travail"),
                 {"Modifie": "0", "Description": '"Le bureau"'})
    for name, message in (("Tra", "Cette configuration existe déjà !"),
                          ("TRAVAIL", "Cette configuration existe déjà !"),
                          ("position", "Impossible, nom réservé !")):
        outcome = place.console("configurations", "ajouter", name)
        report.check(f"« {name} » est refusé", outcome.status == 2 and message in outcome.err,
                     outcome)
    write(f"{place.home}/S_Travail.err", "une liste")
    place.write_settings("[Position]\nConfig=Travail\n; à garder\n" + place.line(
        "Travail", "Clé=à moi\nLastSave=01/02/2026 10:00:00\n"))
    report.equal("dupliquée", place.console("configurations", "dupliquer", "travail",
                                            "vacances").status, 0)
    copied = section(place.read_settings(), "Vacances")
    report.check("avec ses lignes, sans ses résultats", "Source0" in copied and copied["Clé"] ==
                 "à moi" and "LastSave" not in copied, copied)
    report.equal("renommée", place.console("configurations", "renommer", "travail",
                                           "bureau").status, 0)
    report.equal("c'est toujours celle en cours", section(place.read_settings(), "Position"),
                 {"Config": "Bureau"})
    report.check("sa liste d'erreurs la suit", os.path.exists(f"{place.home}/S_Bureau.err") and
                 not os.path.exists(f"{place.home}/S_Travail.err"))
    report.check("le commentaire est gardé", "; à garder".encode("cp1252") in place.read_settings())
    outcome = place.console("configurations", "effacer", "bureau", "--confirmer")
    report.check("celle en cours ne s'efface pas", outcome.status == 2 and
                 "Impossible d'effacer la configuration en cours !" in outcome.err, outcome)
    outcome = place.console("configurations", "effacer", "vacances")
    report.check("sans terminal il faut confirmer", outcome.status == 3 and "--confirmer" in
                 outcome.err, outcome)
    outcome = place.converse([("nnuler", "a\n")], "configurations", "effacer", "vacances")
    report.equal("qui répond non n'efface rien", outcome.status, 3)
    report.equal("décrite", place.console("configurations", "decrire", "vacances", "Été").status, 0)
    report.equal("la liste", (place.console("configurations", "--json").json() or {}), {
        "current": "Bureau", "configurations": [
            {"name": "Bureau", "description": "", "current": True},
            {"name": "Vacances", "description": "Été", "current": False}]})
    outcome = place.converse([("nnuler", "o\n")], "configurations", "effacer", "vacances")
    report.equal("qui répond oui efface", (outcome.status, section(place.read_settings(),
                                                                   "Vacances")), (0, {}))
    report.equal("choisie", place.console("configurations", "choisir", "bureau").status, 0)
    report.equal("une inconnue ne l'est pas",
                 place.console("configurations", "choisir", "rien").status, 2)


def lines(place, report):
    """Une ligne se définit, se sélectionne, exclut, et la sauvegarde fait ce qu'elles disent"""
    write(f"{place.source}/a.txt", "a")
    write(f"{place.source}/Tmp/b.txt", "b")
    place.console("configurations", "ajouter", "travail")
    config = ("--config", "travail")
    outcome = place.console("lignes", "selectionner", "1", *config)
    report.equal("une ligne vide ne se sélectionne pas", outcome.status, 2)
    outcome = place.console("lignes", "definir", "1", "--source", place.typed(place.source),
                            "--destination", place.typed(place.destination), *config)
    report.equal("définie", outcome.status, 0)
    outcome = place.console("lignes", "selectionner", "1", *config)
    report.equal("sélectionnée", (outcome.status, outcome.out.rstrip()),
                 (0, "Ligne 1 : sélectionnée"))
    outcome = place.console("lignes", "definir", "7", "--source", place.typed(place.source),
                            *config)
    report.equal("au-delà de la dernière", outcome.status, 2)
    outcome = place.console("lignes", "exclusions", "1", "--ajouter", "Tmp", "--ajouter",
                            place.typed(f"{place.source}/Absent"), *config)
    report.check("exclut, et dit ce qui n'existe pas",
                 outcome.status == 0 and "Absent" in outcome.err, outcome)
    outcome = place.console("lignes", "exclusions", "1", "--ajouter",
                            place.typed(place.root), *config)
    report.check("ce qui est ailleurs est refusé", outcome.status == 2 and
                 "doit se trouver dans le disque" in outcome.err, outcome)
    outcome = place.console("lignes", "exclusions", "1", "--retirer", "Absent", "--json", *config)
    report.equal("retire", (outcome.json() or {}).get("exclusions"),
                 {"mode": "listed", "directories": ["\\Tmp"]})
    shown = place.console("lignes", "--json", *config).json() or {}
    report.equal("montrée", shown.get("lines", [{}])[0], {
        "line": 1, "source": drive_path(place.source), "destination": drive_path(place.destination),
        "selected": True, "exclusions": {"mode": "listed", "directories": ["\\Tmp"]}})
    report.equal("six lignes", len(shown.get("lines", [])), 6)
    result = place.console("sauvegarder", "--ecraser", "--json", *config).json() or {}
    report.equal("la sauvegarde les suit", (result.get("files"), os.path.exists(
        f"{place.copy}/a.txt"), os.path.exists(f"{place.copy}/Tmp")), (1, True, False))
    report.equal("désélectionnée", place.console("lignes", "deselectionner", "1",
                                                 *config).status, 0)
    outcome = place.console("lignes", "vider", "1", "--confirmer", *config)
    report.equal("vidée", outcome.status, 0)
    report.check("aucune n'est remplie", "Aucune ligne n'est remplie." in
                 place.console("lignes", *config).out)
    report.equal("sans configuration", place.console("lignes", "--config", "rien").status, 2)


def options(place, report):
    """Les options se définissent toutes ou aucune, et se lisent"""
    place.write_settings(place.line() + "Source4=C:\\x\n")
    before = place.read_settings()
    for wrong in ("SynchroCopie=peut-être", "Inconnue=oui", "RepertMax=3", "AutoTime=25:00",
                  "Modifie"):
        outcome = place.console("options", "definir", "RecentSeul=oui", wrong)
        report.equal(f"{wrong} est refusé", outcome.status, 2)
    report.equal("et rien n'est écrit", place.read_settings(), before)
    outcome = place.console("options", "definir", "recentseul=OUI", "RepertMax=9", "AutoTime=12:30",
                            "Modifie=non")
    report.equal("définies", outcome.status, 0)
    settings = place.read_settings()
    report.equal("les communes", section(settings, "Position"),
                 {"RecentSeul": "-1", "RepertMax": "9"})
    report.equal("celles de la configuration", [section(settings, "General").get(key) for key in
                                                ("AutoTime", "Modifie")], ["12:30", "0"])
    shown = place.console("options", "--json").json() or {}
    report.equal("lues", (shown.get("options", {}).get("RecentSeul"),
                          shown.get("options", {}).get("RepertMax"),
                          shown.get("configurationOptions", {}).get("Modifie")), (True, 9, False))
    report.check("en texte", "RecentSeul      oui" in place.console("options").out)


def drives(place, report):
    """Les lecteurs sont montrés, avec leur place"""
    shown = (place.console("lecteurs", "--json").json() or {}).get("drives", [])
    first = shown[0] if shown else {}
    report.equal("le premier", first.get("drive"), "C:\\")
    report.check("avec sa taille", (first.get("total") or 0) > (first.get("free") or 0) > 0, shown)
    report.check("en texte", "C:\\" in place.console("lecteurs").out)


def beside_another_program(place, report):
    """Pendant qu'un autre programme tient les réglages, on les lit, on ne les change pas"""
    for number in range(300):
        write(f"{place.source}/{number % 20}/{number}.txt", "x" * 1000)
    place.write_settings(place.line())
    first = caught(lambda: place.start("coffrelune-console", "sauvegarder"),
                   lambda: os.path.isdir(place.copy))
    if not report.check("le premier est en route", first):
        return
    try:
        before = place.read_settings()
        for words in (["journal"], ["resultats"], ["configurations"], ["lignes"], ["options"],
                      ["lecteurs"], ["lignes", "exclusions", "1"]):
            outcome = place.console(*words)
            report.equal(f"{' '.join(words)} répond", outcome.status, 0)
        for words in (["configurations", "ajouter", "x"], ["options", "definir", "Modifie=non"],
                      ["lignes", "deselectionner", "1"]):
            outcome = place.console(*words)
            report.check(f"{words[0]} {words[1]} est refusé", outcome.status == 3 and
                         "DEJA EN MEMOIRE" in outcome.all, outcome)
        report.equal("les réglages n'ont pas changé", place.read_settings(), before)
    finally:
        first.send_signal(signal.SIGCONT)
        wait(first)


def progress_lines(place, report):
    """--progression : des objets JSON, un par ligne, jusqu'à la fin"""
    write(f"{place.source}/gros.bin", b"x" * (40 << 20))
    outcome = place.backup("--ecraser", "--progression", "--json")
    report.equal("état 0", outcome.status, 0)
    report.equal("le résultat reste seul sur la sortie standard",
                 (outcome.json() or {}).get("files"), 1)
    lines = [json.loads(line) for line in outcome.err.splitlines() if line.startswith("{")]
    report.check("des lignes", lines, outcome)
    report.check("avec leurs clés", all(list(line) == ["progress", "phase", "detail",
                                                       "remainingTime", "rate"] for line in lines),
                 lines)
    report.equal("la dernière dit la fin", lines[-1].get("progress") if lines else None, 100)


def help_of_every_command(place, report):
    """Chaque commande a son aide en français, avec un exemple"""
    words = [["sauvegarder"], ["restaurer"], ["comparer"], ["verifier"], ["journal"], ["resultats"],
             ["configurations"], ["lignes"], ["options"], ["lecteurs"],
             *(["configurations", word] for word in ("ajouter", "renommer", "dupliquer", "effacer",
                                                     "decrire", "choisir")),
             *(["lignes", word] for word in ("definir", "vider", "selectionner", "deselectionner",
                                             "exclusions")), ["options", "definir"]]
    for command in words:
        outcome = place.console(*command, "--help")
        report.check(" ".join(command), outcome.status == 0 and "Exemple" in outcome.out and
                     f"coffrelune-console {' '.join(command)}" in outcome.out and
                     "Positionals" not in outcome.out and "REQUIRED" not in outcome.out, outcome)


SCENARIOS = (configurations, lines, options, drives, beside_another_program, progress_lines,
             help_of_every_command)
