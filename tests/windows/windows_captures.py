#!/usr/bin/env python3
"""Takes pictures of the windows of the Windows program under Wine, for the manual and for whoever
looks after the windows.

Usage: windows_captures.py [--programs DIRECTORY] [--look usual|150|dark] OUTPUT
--look: as the system comes, with text at 150 %, or with dark colours. OUTPUT receives a <name>.png
for each window.
"""

import argparse
import os
import signal
import subprocess
import sys
import time

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TESTS, "e2e"))

# pylint: disable=wrong-import-position
from harness import Report, write
from window_scenarios import WindowProgram
from wine_place import Prefix, WinePlace, driver

COLOURS = r"HKCU\Control Panel\Colors"
DARK, RAISED, LIGHT, GREY = "43 43 43", "60 60 60", "235 235 235", "150 150 150"
DARK_COLOURS = {
    "ActiveBorder": DARK, "AppWorkSpace": DARK, "Background": DARK, "ButtonFace": DARK,
    "ButtonHilight": RAISED, "ButtonLight": RAISED, "ButtonShadow": RAISED,
    "ButtonDkShadow": RAISED, "ButtonText": LIGHT, "GrayText": GREY, "Hilight": "20 90 160",
    "HilightText": LIGHT, "HotTrackingColor": "110 170 255", "InfoText": LIGHT,
    "InfoWindow": RAISED, "Menu": DARK, "MenuBar": DARK, "MenuText": LIGHT, "Scrollbar": DARK,
    "Window": "30 30 30", "WindowFrame": GREY, "WindowText": LIGHT}


def change_look(prefix, look):
    """What a user sets in the system's settings; read when the desktop starts."""
    if look == "150":
        for key in (r"HKCU\Control Panel\Desktop", r"HKCU\Software\Wine\Fonts"):
            prefix.run("reg.exe", "add", key, "/v", "LogPixels", "/t", "REG_DWORD", "/d", "144",
                       "/f")
    if look == "dark":
        for name, colour in DARK_COLOURS.items():
            prefix.run("reg.exe", "add", COLOURS, "/v", name, "/t", "REG_SZ", "/d", colour, "/f")
        prefix.run("reg.exe", "add", r"HKCU\Software\Microsoft\Windows\CurrentVersion\ThemeManager",
                   "/v", "ThemeActive", "/t", "REG_SZ", "/d", "0", "/f")


class Album:
    """The program with a few settings, and where its pictures go."""

    def __init__(self, place, report, output):
        self.output = output
        for i in range(40):
            write(f"{place.source}/{2015 + i % 8}/lettre {i:02}.txt", "texte" * (i + 1))
        # A directory where a file is to be copied is an error.
        os.makedirs(f"{place.copy}/2015/lettre 00.txt/en travers")
        place.write_settings(place.line().replace("[General]", "[Position]\nContinueOnError=-1\n"
                                                  "[General]\nDescription=\"Tous les soirs\"") +
                             "AutoTime=19:30\nAutoSave=1\n[Photos]\nModifie=1\n")
        self.program = WindowProgram(place, report)

    def shoot(self, name, title):
        """A window with its frame, everything painted."""
        subprocess.run(["xdotool", "mousemove", "--sync", "1", "1"], check=True, timeout=20)
        time.sleep(1)  # nothing tells that Wine has painted
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title],
                               check=True, timeout=20, capture_output=True, text=True).stdout
        subprocess.run(["import", "-silent", "-frame", "-window", found.split()[-1],
                        os.path.join(self.output, f"{name}.png")], timeout=60, check=True)
        print(name)

    def visit(self, tool, title, answer, name):
        self.program.press(tool)
        self.program.sees(f"« {title} » s'ouvre", answer, title=title)
        self.shoot(name, f"^{title}")
        self.program.press(answer, title)
        self.program.step(f"« {title} » est fermé", "gone", title)

    def take(self, prefix):
        program = self.program
        program.sees("la fenêtre principale", "Lancer la Sauvegarde")
        self.shoot(f"{prefix}principale", "^Coffrelune Version ")
        self.visit("Configurations et options", "Configurations et options", "Annuler",
                   f"{prefix}configurations")
        self.visit("Exclusions", "Sous-répertoires à exclure", "Annuler", f"{prefix}exclusions")
        self.visit("Modification de toutes les destinations",
                   "Choisissez un lecteur pour toutes les destinations", "Annuler",
                   f"{prefix}lecteurs")
        program.press("Lancer la Sauvegarde")
        program.sees("l'opération attend", "Fermer", title="Sauvegarde ...")
        self.shoot(f"{prefix}operation", "^Sauvegarde \\.")
        program.press("Fermer", "Sauvegarde ...")
        program.sees("le message final", "OK")
        self.shoot(f"{prefix}message-final", "^Coffrelune Version ")
        program.press("OK")
        program.sees("le résultat", "Voir les erreurs")
        self.shoot(f"{prefix}resultats", "^Coffrelune Version ")
        program.press("Voir les erreurs")
        title = "Liste des dernières erreurs de sauvegarde"
        program.sees("la liste", "Fermer", title=title)
        self.shoot(f"{prefix}liste-des-erreurs", "^Liste des derni")
        program.press("Fermer", title)
        program.step("l'onglet", "tab", program.title, "2")
        program.press("Lancer la Comparaison")
        program.sees("le résumé", " à copier")
        self.shoot(f"{prefix}comparaison", "^Coffrelune Version ")
        program.close()


def main():
    root = os.path.dirname(TESTS)
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=os.path.join(root, "build/windows-release/bin"))
    parser.add_argument("--look", choices=("usual", "150", "dark"), default="usual")
    parser.add_argument("output")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    programs = os.path.abspath(arguments.programs)
    os.makedirs(arguments.output, exist_ok=True)
    report = Report()
    prefix = Prefix(programs)
    place = None
    try:
        change_look(prefix, arguments.look)
        prefix.stop()
        prefix.open_desktop(driver(programs))
        place = WinePlace(programs, prefix)
        Album(place, report, arguments.output).take(
            {"usual": "windows-", "150": "windows-150-", "dark": "windows-sombre-"}[arguments.look])
    finally:
        if place is not None:
            place.remove()
        prefix.remove()
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main())
