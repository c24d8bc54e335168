"""The desktop program without a display, and two programs at once."""

import os
import shutil
import signal

from harness import caught, differences, names_below, touch, wait, write
from settings_scenarios import section


def auto_run(place, report):
    """coffrelune /Auto /Travail sauvegarde sans rien demander"""
    write(f"{place.source}/a.txt", "nouveau")
    write(f"{place.copy}/a.txt", "ancien")
    touch(f"{place.source}/a.txt", 60)
    # Without Confirmation=1: an unattended run replaces all the same.
    place.write_settings(place.line("Travail").replace("Confirmation=1\n", ""))
    outcome = place.run("coffrelune", "/Auto", "/Travail")
    report.equal("état 0", outcome.status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    settings = place.read_settings()
    report.check("le résultat est noté", "LastSave" in section(settings, "Travail"), settings)
    report.equal("la configuration est retenue", section(settings, "Position").get("Config"),
                 "Travail")


def command_line_forms(place, report):
    """Les formes de la ligne de commande"""
    write(f"{place.source}/a.txt")
    forms = (["/auto", "/TRAVAIL"], ["/Travail", "/AUTO"], ["/Auto/travail"], ["x/Auto/Travail"],
             ["/ Auto / travail "])
    for number, form in enumerate(forms):
        place.destination = f"{place.root}/destination {number}"
        os.mkdir(place.destination)
        place.write_settings(place.line("Travail"))
        outcome = place.run("coffrelune", *form)
        report.equal(f"{form} : état 0", outcome.status, 0)
        report.equal(f"{form} : copié", names_below(place.destination),
                     {"Données".encode(), "Données/a.txt".encode()})


def empty_last_element(place, report):
    """« /Auto/ » nomme une configuration vide : celle de « Config » sert"""
    write(f"{place.source}/a.txt")
    place.write_settings("[Position]\nConfig=Maison\n" + place.line("Maison"))
    outcome = place.run("coffrelune", "/Auto/")
    report.equal("état 0", outcome.status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])


def unknown_name(place, report):
    """coffrelune /Auto avec un nom inconnu : état 2, et le nom n'est pas retenu"""
    write(f"{place.source}/a.txt")
    place.write_settings("[Position]\nConfig=Maison\n" + place.line("Maison"))
    outcome = place.run("coffrelune", "/Auto", "/Travial")
    report.equal("état 2", outcome.status, 2)
    report.equal("« Config » n'a pas changé",
                 section(place.read_settings(), "Position").get("Config"), "Maison")
    report.equal("rien n'est copié", names_below(place.destination), set())


def missing_disk(place, report):
    """coffrelune /Auto sans le disque de destination : état 3, la cause sur stderr"""
    write(f"{place.source}/a.txt")
    place.write_settings(place.line())
    os.rmdir(place.destination)
    outcome = place.run("coffrelune", "/Auto")
    report.equal("état 3", outcome.status, 3)
    report.check("aucun résultat n'est noté", b"LastSave" not in place.read_settings())


def two_at_once(place, report):
    """Un deuxième programme sur les mêmes réglages est refusé avant de les lire"""
    for number in range(3000):
        write(f"{place.source}/f{number}", "x")
    place.write_settings(place.line())
    first = caught(lambda: place.start("coffrelune-console", "sauvegarder"),
                   lambda: os.path.isdir(place.copy), lambda: shutil.rmtree(place.copy))
    if not report.check("le premier est en route", first):
        return
    try:
        before = place.read_settings()
        for program, arguments in (("coffrelune", ["/Auto"]),
                                   ("coffrelune-console", ["sauvegarder"])):
            second = place.run(program, *arguments)
            report.check(f"{program} est refusé", second.status not in (0, 1), second)
            report.check(f"{program} dit pourquoi",
                         "LE PROGRAMME EST DEJA EN MEMOIRE !" in second.all, second)
        report.equal("les réglages n'ont pas changé", place.read_settings(), before)
        other = f"{place.root}/autre"
        os.mkdir(other)
        third = place.console("sauvegarder", "--config", "General",
                              env={**place.environment(), "COFFRELUNE_HOME": other})
        report.check("d'autres réglages ne sont pas concernés",
                     "DEJA EN MEMOIRE" not in third.all, third)
    finally:
        first.send_signal(signal.SIGCONT)
    report.equal("le premier finit", wait(first).status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    report.equal("après lui, un autre peut courir", place.console("sauvegarder").status, 0)


SCENARIOS = (auto_run, command_line_forms, empty_last_element, unknown_name, missing_disk,
             two_at_once)
