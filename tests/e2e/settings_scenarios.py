"""Runs that read the settings file."""

import os
import re

from harness import differences, drive_path, names_below, read, write

DATE = r"\d\d/\d\d/\d{4} \d\d:\d\d:\d\d"
DURATION = r"\d\d:\d\d:\d\d"


def section(settings, name, page="cp1252"):
    """Key to value of one section, as text."""
    text = settings.decode(page).replace("\r\n", "\n")
    found = re.search(rf"^\[{re.escape(name)}\]\n(.*?)(?=^\[|\Z)", text, re.M | re.S)
    return dict(re.findall(r"^([^=;\n]+)=(.*)$", found.group(1), re.M)) if found else {}


def kept(before, after, written):
    """Lines of the first text that the second lacks or holds in another order, but for the keys
    that a run writes."""
    rest = iter(after.split(b"\r\n"))
    return [text for text in before.split(b"\r\n")
            if text.partition(b"=")[0] not in written and not any(text == other for other in rest)]


def configuration_run(place, report):
    """Une configuration du fichier de réglages, qui garde tout le reste du fichier"""
    write(f"{place.source}/Été.txt", "été")
    write(f"{place.source}/sous/b.txt", "b")
    before = place.write_settings("""; Réglages de la maison, à la main

[Position]
RepertMax=3
Inconnue=gardée telle quelle
   Espacée = oui

[Autre]
Description="Une autre configuration"

""" + place.line("Travail", "; une note à garder\nCléÀMoi=ça reste\n\n[Fin]\nRien=\n"))
    outcome = place.console("sauvegarder", "--config", "Travail")
    report.equal("état 0", outcome.status, 0)
    report.check("sans erreur", "Sauvegarde terminée sans erreur." in outcome.out, outcome)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    after = place.read_settings()
    written = section(after, "Travail")
    report.check("LastSave est écrit", re.fullmatch(DATE, written.get("LastSave", "")), written)
    report.check("LastDureeSave est écrit", re.fullmatch(DURATION, written.get("LastDureeSave", "")),
                 written)
    report.equal("SuiviAnalyse est écrit", section(after, "Position").get("SuiviAnalyse"), "0")
    report.equal("le reste est gardé, octet pour octet et dans l'ordre",
                 kept(before, after, {b"SuiviAnalyse", b"Config"}), [])
    report.equal("aucun fichier à côté des réglages", [name for name in os.listdir(place.home)
                 if name.endswith((".tmp", ".err", "~"))], [])

    outcome = place.console("sauvegarder", "--config", "travail", "--json")
    result = outcome.json() or {}
    report.equal("la casse du nom n'importe pas", (outcome.status, result.get("configuration")),
                 (0, "Travail"))
    report.equal("plus rien à copier", result.get("files"), 0)


def default_configuration(place, report):
    """Sans --config, la configuration est celle de « Config », sinon « General »"""
    write(f"{place.source}/a.txt", "a")
    place.write_settings("[Position]\nConfig=Maison\n" + place.line("Maison"))
    result = place.console("sauvegarder", "--json").json() or {}
    report.equal("celle de « Config »", (result.get("configuration"), result.get("files")),
                 ("Maison", 1))
    place.write_settings(place.line())
    result = place.console("sauvegarder", "--json").json() or {}
    report.equal("sinon « General »", result.get("configuration"), "General")


def line_by_line(place, report):
    """Seules les lignes choisies et remplies sont sauvegardées, avec leurs comptes"""
    write(f"{place.source}/a.txt", "12345")
    write(f"{place.root}/Musique/b.txt", "123")
    write(f"{place.root}/Ignorée/c.txt", "1")
    destination = drive_path(place.destination)
    place.write_settings(f"""[General]
Source0="{drive_path(place.source)}"
Destination0="{destination}"
Select0=1
Source1="{drive_path(place.root)}\\Ignorée"
Destination1="{destination}"
Select1=0
Source2="{drive_path(place.root)}\\Musique"
Destination2="{destination}"
Select2=1
Source3="{drive_path(place.root)}\\Ignorée"
Select3=1
Modifie=1
Confirmation=1
""")
    outcome = place.console("sauvegarder", "--json")
    result = outcome.json() or {}
    report.equal("état 0", outcome.status, 0)
    report.equal("deux lignes", [(item.get("files"), item.get("bytes"))
                                 for item in result.get("lines", [])], [(1, 5), (1, 3)])
    report.equal("deux copies", names_below(place.destination),
                 {os.fsencode(name) for name in
                  ("Données", "Données/a.txt", "Musique", "Musique/b.txt")})


def exclusions(place, report):
    """Les sous-répertoires exclus d'une ligne ne sont pas copiés"""
    for name in ("a.txt", "Tmp/x.txt", "Docs/Tmp/y.txt", "tmp/z.txt"):
        write(f"{place.source}/{name}", name)
    cases = (
        ("mode 2, « \\Tmp »", "RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n",
         {"a.txt", "Docs", "Docs/Tmp", "Docs/Tmp/y.txt", "tmp", "tmp/z.txt"}),
        ("mode 2, « Docs\\Tmp »", "RepExclu0_Mode=2\nRepExclu0_Rep1=Docs\\Tmp\n",
         {"a.txt", "Tmp", "Tmp/x.txt", "Docs", "tmp", "tmp/z.txt"}),
        ("mode 1", "RepExclu0_Mode=1\n", {"a.txt"}),
        ("un trou dans la liste", "RepExclu0_Mode=2\nRepExclu0_Rep2=\\Tmp\n",
         {"a.txt", "Tmp", "Tmp/x.txt", "Docs", "Docs/Tmp", "Docs/Tmp/y.txt", "tmp", "tmp/z.txt"}),
    )
    for number, (name, keys, expected) in enumerate(cases):
        place.destination = f"{place.root}/destination {number}"
        os.mkdir(place.destination)
        place.write_settings(place.line(more=keys))
        outcome = place.console("sauvegarder")
        report.equal(f"{name} : état 0", outcome.status, 0)
        report.equal(f"{name} : ce qui est copié", names_below(f"{place.destination}/Données"),
                     {os.fsencode(path) for path in expected})


def unknown_configuration(place, report):
    """Une configuration inconnue : état 2, et la liste des noms"""
    before = place.write_settings("[Position]\nConfig=Maison\n" + place.line("Maison") +
                                  place.line("Travail"))
    outcome = place.console("sauvegarder", "--config", "Travial")
    report.equal("état 2", outcome.status, 2)
    report.check("les noms sont donnés", "Maison" in outcome.err and "Travail" in outcome.err and
                 "Position" not in outcome.err, outcome)
    report.equal("le fichier n'a pas changé", place.read_settings(), before)


def no_settings(place, report):
    """Sans fichier de réglages, --config est un mauvais usage et rien n'est écrit"""
    outcome = place.console("sauvegarder", "--config", "Travail")
    report.equal("état 2", outcome.status, 2)
    report.check("aucun fichier n'est créé", not os.path.exists(place.settings))


def settings_untouched(place, report):
    """--source et --destination ne lisent ni n'écrivent les réglages"""
    write(f"{place.source}/a.txt")
    before = place.write_settings("[Position]\nContinueOnError=-1\n" + place.line())
    outcome = place.backup("--ecraser")
    report.equal("état 0", outcome.status, 0)
    report.equal("le fichier n'a pas changé", place.read_settings(), before)


def unreadable_settings(place, report):
    """Un fichier de réglages illisible : état 2, et il reste tel quel"""
    write(f"{place.source}/a.txt")
    before = place.write_settings(place.line())
    place.become_nobody()
    os.chmod(place.settings, 0)
    for arguments in (["sauvegarder"], ["sauvegarder", "--config", "General"]):
        outcome = place.console(*arguments)
        report.equal(f"{arguments} : état 2", outcome.status, 2)
        report.check("le message nomme le fichier", "Coffrelune.ini" in outcome.err, outcome)
    outcome = place.run("coffrelune", "/Auto")
    report.equal("coffrelune /Auto : état 2", outcome.status, 2)
    os.chmod(place.settings, 0o600)
    report.equal("il n'a pas changé", place.read_settings(), before)
    report.equal("rien n'est copié", names_below(place.destination), set())


def odd_settings(place, report):
    """Un fichier abîmé ou énorme ne fait rien perdre"""
    write(f"{place.source}/a.txt")
    cases = (
        ("binaire", bytes(range(256)) * 500),
        ("vide", b""),
        ("énorme", b"[General]\r\nx=" + b"y" * 40_000_000),
        ("nuls", b"\0" * 100_000),
    )
    for name, data in cases:
        write(place.settings, data)
        outcome = place.console("sauvegarder", "--config", "Travail")
        report.equal(f"{name} : état 2", outcome.status, 2)
        report.check(f"{name} : le fichier n'a pas changé", read(place.settings) == data)


def other_line_ends(place, report):
    """Des réglages avec LF, sans dernière fin de ligne, clés et sections en double : la première"""
    write(f"{place.source}/a.txt")
    forms = (("LF", lambda text: text.encode("cp1252")),
             ("BOM UTF-8", lambda text: text.encode("utf-8-sig")),
             ("UTF-16", lambda text: text.replace("\n", "\r\n").encode("utf-16")))
    for name, encode in forms:
        place.destination = f"{place.root}/pour {name}"
        os.mkdir(place.destination)
        nowhere = drive_path(f"{place.root}/nulle part")
        write(place.settings, encode(
            place.line("general") + f'Source0="{nowhere}"\n[GENERAL]\nDestination0="{nowhere}"'))
        outcome = place.console("sauvegarder")
        report.equal(f"{name} : état 0", outcome.status, 0)
        report.equal(f"{name} : diff ne trouve rien",
                     differences(place.source, f"{place.destination}/Données"), [])


def journal(place, report):
    """--journal écrit le journal"""
    write(f"{place.source}/a.txt")
    place.write_settings(place.line())
    outcome = place.console("sauvegarder", "--journal")
    report.equal("état 0", outcome.status, 0)
    report.check("sa première ligne", "Début de la Sauvegarde ..." in outcome.out, outcome)


def special_folder(place, report):
    """« Mes images » absent : rien à l'écran, mais le résultat le dit comme de toute source"""
    write(f"{place.source}/a.txt", "a")
    missing = drive_path(f"{place.root}/Mes images")
    place.write_settings(place.line().replace("\r\n", "\n") + f"""Source1="{missing}"
Destination1="{drive_path(place.destination)}"
Select1=1
""")
    outcome = place.console("sauvegarder", "--json")
    result = outcome.json() or {}
    report.equal("l'état de sortie", outcome.status, 1)
    report.equal("le JSON", [line.get("sourceMissing") for line in result.get("lines", [])],
                 [False, True])
    report.check("stderr", f"la source {missing} est introuvable" in outcome.err, outcome.err)
    report.check("l'autre ligne est copiée", os.path.exists(f"{place.copy}/a.txt"))


def colon_in_names(place, report):
    """Un « : » dans un nom se lit comme tel"""
    write(f"{place.source}/10:30 réunion.txt", "a")
    place.write_line()
    outcome = place.console("comparer")
    report.check("dans la liste", "10:30 réunion.txt n'existe pas" in outcome.all, outcome)
    with open(f"{place.home}/C_General.err", "rb") as file:
        report.check("dans le fichier", "10:30 réunion.txt" in file.read().decode("cp1252"))


def numbers_of_languages(place, report):
    """Les nombres en groupes se lisent partout : à l'écran et dans la liste, sans « ? »"""
    write(f"{place.source}/grand.bin", "x" * 1234567)
    place.write_line()
    for language in ("fr_FR", "ps_AF"):
        place.speak(language)
        outcome = place.console("comparer")
        summary = "1 fichier(s) à copier soit 1,18 Mo (1 234 567 octets)"
        report.check(f"{language} : dit", summary in outcome.all, outcome)
        with open(f"{place.home}/C_General.err", "rb") as file:
            kept = file.read().decode("cp1252")
        report.check(f"{language} : la liste le dit aussi", summary in kept and "?" not in kept, kept)


SCENARIOS = (configuration_run, default_configuration, line_by_line, exclusions,
             unknown_configuration, no_settings, settings_untouched, unreadable_settings,
             odd_settings, other_line_ends, journal,
             special_folder, colon_in_names, numbers_of_languages)
