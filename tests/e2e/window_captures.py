#!/usr/bin/python3
"""Takes a picture of every window of the real program, for the manual and for whoever looks after
the windows. tools/captures.sh calls it, with two volumes to work on.

Usage: window_captures.py [--programs DIRECTORY] [--disks DIRECTORY] [--only WORD] OUTPUT
--disks: where the volumes "Maison" and "Coffre" are mounted. GTK_THEME and GDK_SCALE of the
environment count. OUTPUT receives a <name>.png for each window.
"""

import argparse
import os
import shutil
import signal
import sys

from harness import write
from window_harness import WindowPlace, comes
from window_screen import Screen

MAIN = "^Coffrelune Version "


class Album:
    """The program with a household's settings, and where its pictures go."""

    def __init__(self, place, disks, output, only):
        self.place, self.screen = place, place.screen
        self.output, self.only = output, only
        self.house, self.safe = f"{disks}/Maison", f"{disks}/Coffre"
        write(f"{place.home}/Lecteurs.ini",
              f"[Lecteurs]\r\nD=path:{self.house}\r\nE=path:{self.safe}\r\n")
        for sound in ("Ok", "Erreur", "Carillon"):
            write(f"{place.home}/{sound}.wav", "")
        self.reset()

    def reset(self):
        """The files and the settings as they are before anything has run."""
        for volume in (self.house, self.safe):
            for name in os.listdir(volume):
                shutil.rmtree(os.path.join(volume, name))
        for name in ("Documents", "Photos", "Courrier"):
            for i in range(60):
                write(f"{self.house}/{name}/{2015 + i % 8}/{name.lower()} {i:02}.txt", name * i)
        os.makedirs(f"{self.safe}/Sauvegardes")
        lines = "".join(f"""Source{i}="D:\\{name}"
Destination{i}="E:\\Sauvegardes"
Select{i}={int(name != "Courrier")}
""" for i, name in enumerate(("Documents", "Photos", "Courrier")))
        self.place.write_settings(f"""[Position]
Left=1200
Top=600
ContinueOnError=-1
[General]
Description="Tous les soirs"
{lines}Modifie=1
Confirmation=1
AutoTime=19:30
AutoSave=1
ProgToRun="C:\\usr\\bin\\poweroff"
RepExclu0_Mode=2
RepExclu0_Rep1=\\2015
RepExclu0_Rep2=\\2019
[Bureau]
Description="Le lundi"
Modifie=1
[Photos]
Modifie=1
""")

    def shoot(self, name, title=MAIN):
        """A window with its frame, the pointer away and everything painted."""
        if self.only in name:
            self.screen.xdotool("mousemove", "--sync", 1, 1)
            number = self.screen.xdotool("search", "--onlyvisible", "--name", title).split()[-1]
            comes(lambda: False, 0.6)  # until the theme's animations are over
            self.screen.capture(f"{self.output}/{name}.png", number)
            print(name)


def first_start(album):
    """The main window before anything has been filled in."""
    album.place.write_settings("[Position]\nLeft=1200\nTop=600\n")
    program = album.place.open()
    program.main.find("button", "Lancer la Sauvegarde")
    album.shoot("premier-lancement")
    program.kill()


def visit(album, program, command, title, name):
    """Opens a window by the toolbar, takes its picture, closes it."""
    program.command(command)
    program.window(title)
    album.shoot(name, f"^{title}")
    album.screen.keys("Escape")
    program.gone(title)


def dialogs(album):
    program = album.place.open()
    program.label("Source", 1).press()
    album.shoot("principale")
    visit(album, program, "Description de la configuration", "Configuration : General",
          "description")
    visit(album, program, "Renommer la configuration", "Renommer la configuration", "renommer")
    visit(album, program, "Éditer le chemin", "Répertoire source", "chemin")
    visit(album, program, "Modification de toutes les destinations",
          "Choisissez un lecteur pour toutes les destinations", "lecteurs")
    visit(album, program, "À propos de Coffrelune", "À propos de Coffrelune", "a-propos")
    program.exclusions(1).press()
    program.window("Sous-répertoires à exclure")
    album.shoot("exclusions", "^Sous-répertoires")
    album.screen.keys("Escape")
    program.gone("Sous-répertoires à exclure")
    program.command("Configurations et options")
    window = program.window("Configurations et options")
    album.shoot("configurations", "^Configurations et options")
    window.find("button", "Ajouter").press()
    program.window("Nouvelle configuration")
    album.shoot("nouvelle-configuration", "^Nouvelle configuration")
    album.screen.keys("Escape")
    album.screen.keys("Escape")
    program.gone("Configurations et options")
    if album.only in "menu":
        program.label("Source", 1).press(button=3)
        comes(lambda: False, 0.6)
        album.screen.capture(f"{album.output}/menu.png", area=program.main.extents)
        print("menu")
    program.kill()


def operations(album):
    """A run with an error, its list, a question of replacement, a restore, a comparison."""
    os.makedirs(f"{album.safe}/Sauvegardes/Photos/2016/photos 01.txt/en travers")
    program = album.place.open()
    program.launch("Sauvegarde")
    program.window("Sauvegarde ...").find("button", "Fermer")
    album.shoot("operation", "^Sauvegarde \\.")
    program.window("Sauvegarde ...").find("button", "Fermer").press()
    message = program.message()
    album.shoot("message", MAIN)
    message.press("OK")
    album.shoot("resultats")
    program.main.find("button", "Voir les erreurs").press()
    program.window("Liste des dernières erreurs de sauvegarde")
    album.shoot("liste-des-erreurs", "^Liste des derni")
    album.screen.keys("Escape")
    program.gone("Liste des dernières erreurs de sauvegarde")
    program.show_tab("Restauration")
    album.shoot("restauration")
    for i in range(1, 60, 3):
        write(f"{album.house}/Documents/{2015 + i % 8}/documents {i:02}.txt", "modifié")
    program.show_tab("Comparaison")
    program.launch("Comparaison")
    comes(lambda: any("à copier" in label for label in program.main.labels()), 30)
    album.shoot("comparaison")
    program.show_tab("Sauvegarde")
    program.main.find("checkbox", "Ecrasement sans confirmation").press()
    program.launch("Sauvegarde")
    program.window("Confirmation du remplacement du fichier")
    album.shoot("remplacement", "^Confirmation du remplacement")
    program.kill()


def take(arguments):
    screen = Screen(int(os.environ.get("GDK_SCALE", "1")))
    place = None
    try:
        place = WindowPlace(os.path.abspath(arguments.programs), screen)
        album = Album(place, arguments.disks, arguments.output, arguments.only)
        for part in (first_start, dialogs, operations):
            album.reset()
            part(album)
    finally:
        if place is not None:
            place.remove()
        screen.close()


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    parser.add_argument("--disks", required=True)
    parser.add_argument("--only", default="")
    parser.add_argument("output")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    os.makedirs(arguments.output, exist_ok=True)
    take(arguments)


if __name__ == "__main__":
    main()
