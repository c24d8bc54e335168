"""The window program under Wine, worked through window messages by the captions that a user reads."""

import os
import subprocess

from harness import differences, names_below, read, touch, wait, write
from settings_scenarios import section
from wine_place import WINE, driver

TITLE = "Coffrelune Version "
QUESTION = "Confirmez-vous la restauration des fichiers ?"
SURE = "Vous êtes bien sûr de vous ?"


class WindowProgram:
    """The program, started, and what a user does with it. Every step waits for what it needs."""

    def __init__(self, place, report, *arguments):
        self.place = place
        self.report = report
        self.driver = driver(place.programs)
        self.process = place.start("coffrelune", *arguments)
        self.title = TITLE + "0.01"

    def step(self, name, *words):
        done = self.drive(*words)
        # What is shown is asked only after a fault: it waits for a window, which may be gone.
        good = done.returncode == 0
        self.report.check(name, good, "" if good else " ".join(words) + "\n" + self.shown(words[1]))

    def drive(self, *words):
        return subprocess.run([WINE, self.driver, *words], env=self.place.environment(),
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=20, check=False)

    def shown(self, title):
        return self.drive("texts", title).stdout.decode(errors="replace")

    def sees(self, name, *texts, title=None):
        self.step(name, "wait", title or self.title, *texts)

    def press(self, caption, title=None):
        self.step(f"« {caption} »", "press", title or self.title, caption)

    @staticmethod
    def capture(name):
        """A picture of the screen, for who asked for pictures."""
        if directory := os.environ.get("COFFRELUNE_CAPTURES"):
            subprocess.run(["import", "-silent", "-window", "root",
                            os.path.join(directory, f"{name}.png")], timeout=20, check=True)

    def close(self):
        self.step("la fenêtre se ferme", "close", self.title)
        return wait(self.process).status


def window_backup(place, report):
    """Sauvegarder depuis la fenêtre"""
    write(f"{place.source}/été.txt", "un")
    write(f"{place.source}/sous/b.txt", "deux")
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.sees("la fenêtre principale", "Lancer la Sauvegarde")
    program.capture("windows-principale")
    program.press("Lancer la Sauvegarde")
    program.sees("le message final", "Sauvegarde terminée sans erreur.")
    program.capture("windows-message-final")
    report.equal("les fichiers sont les mêmes", differences(place.source, place.copy), [])
    program.press("OK")
    program.sees("le résultat est affiché", "Dernière sauvegarde sans erreur le ")
    report.equal("état 0", program.close(), 0)
    settings = place.read_settings()
    report.check("le résultat est noté", "LastSave" in section(settings, "General"), settings)
    report.equal("la configuration est retenue", section(settings, "Position").get("Config"),
                 "General")


def window_edit_line(place, report):
    """Saisir les chemins d'une ligne, la monter, la remettre à zéro"""
    place.write_settings("[General]\n")
    program = WindowProgram(place, report)
    program.press("Source 2 : ")
    program.press("Editer le chemin")
    program.step("le chemin se saisit", "type", "Répertoire source", "0", r"E:\Données")
    program.press("OK", "Répertoire source")
    program.press("Destination 2 : ")
    program.press("Editer le chemin")
    program.step("l'autre aussi", "type", "Répertoire destination", "0", "F:\\")
    program.press("OK", "Répertoire destination")
    program.sees("les deux sont affichés", r"Source 2 : E:\Données", "Destination 2 : F:\\")
    general = section(place.read_settings(), "General")
    report.equal("la source est notée", general.get("Source1"), r'"E:\Données"')
    program.press("Monter la ligne")
    program.sees("la ligne est montée", r"Source 1 : E:\Données")
    program.press("Remise à zéro de la ligne")
    program.sees("la question", "Remise à zéro de la sauvegarde 1 ?")
    program.press("OK")
    program.sees("la ligne est vide", "Lancer la Sauvegarde")
    report.equal("état 0", program.close(), 0)
    general = section(place.read_settings(), "General")
    report.check("plus rien n'est noté", not general.get("Source0") and not general.get("Source1"),
                 str(general))


def window_restore(place, report):
    """Restaurer : deux questions, puis les fichiers"""
    write(f"{place.source}/a.txt", "abîmé")
    write(f"{place.copy}/a.txt", "bon")
    touch(f"{place.source}/a.txt", 60)
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.step("l'onglet", "tab", program.title, "1")
    program.press("Lancer la Restauration")
    program.sees("la première question", QUESTION)
    program.press("Annuler")
    report.equal("rien n'a changé", read(f"{place.source}/a.txt"), b"ab\xc3\xaem\xc3\xa9")
    program.press("Lancer la Restauration")
    program.sees("la première question, encore", QUESTION)
    program.press("OK")
    program.sees("la seconde question", SURE)
    program.press("OK")
    program.sees("le message final", "Restauration terminée sans erreur.")
    report.equal("le fichier est revenu", read(f"{place.source}/a.txt"), b"bon")
    program.press("OK")
    report.equal("état 0", program.close(), 0)


def window_compare(place, report):
    """Comparer dans les deux sens"""
    write(f"{place.source}/a.txt", "contenu")
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.step("l'onglet", "tab", program.title, "2")
    program.press("Lancer la Comparaison")
    program.sees("le résumé", "1 fichier(s) à copier soit ")
    program.press("Comparaison Source -> Destination")
    program.sees("le sens est changé", "Comparaison Destination -> Source")
    program.press("Lancer la Comparaison")
    program.sees("rien dans l'autre sens", "Aucun fichier à restaurer")
    report.equal("rien n'a été copié", names_below(place.copy), set())
    report.equal("état 0", program.close(), 0)


def window_dialogs(place, report):
    """Chaque dialogue s'ouvre, et Annuler ne change rien"""
    place.write_settings(place.line())
    before = place.read_settings()
    program = WindowProgram(place, report)
    for tool, title, answer in (
            ("Configurations et options", "Configurations et options", "Annuler"),
            ("Description de la configuration", "Configuration : General", "Annuler"),
            ("Modification de toutes les destinations",
             "Choisissez un lecteur pour toutes les destinations", "Annuler"),
            ("Exclusions", "Sous-répertoires à exclure", "Annuler"),
            ("À propos de Coffrelune", "À propos de Coffrelune", "OK")):
        program.press(tool)
        program.sees(f"« {title} » s'ouvre", answer, title=title)
        program.press(answer, title)
        program.step(f"« {title} » est fermé", "gone", title)
    report.equal("rien n'est écrit", place.read_settings(), before)
    report.equal("état 0", program.close(), 0)


def window_auto(place, report):
    """coffrelune /Auto sauvegarde et se ferme"""
    write(f"{place.source}/a.txt", "contenu")
    place.write_settings(place.line("Travail"))
    outcome = wait(place.start("coffrelune", "/Auto", "/Travail"))
    report.equal("état 0", outcome.status, 0)
    report.equal("les fichiers sont les mêmes", differences(place.source, place.copy), [])


def window_second(place, report):
    """Un second programme est refusé"""
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.sees("le premier est ouvert", "Lancer la Sauvegarde")
    second = place.start("coffrelune")
    program.sees("le second le dit", "LE PROGRAMME EST DEJA EN MEMOIRE !")
    program.press("OK")
    report.equal("état 3", wait(second).status, 3)
    report.equal("le premier vit toujours : état 0", program.close(), 0)


SCENARIOS = (window_backup, window_edit_line, window_restore, window_compare, window_dialogs,
             window_auto, window_second)
