"""The window program under Wine, worked through window messages by the captions that a user reads."""

import os
import re
import subprocess

from harness import (PATIENCE, differences, drive_path, names_below, read, touch, wait, wait_until,
                     write)
from package_checks import file_version
from settings_scenarios import section
from wine_place import WINE, driver

TITLE = "Coffrelune Version "
QUESTION = "Confirmez-vous la restauration des fichiers ?"
SURE = "Vous êtes bien sûr de vous ?"


def version():
    """As the title shows it: the minor number has two digits."""
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    with open(os.path.join(root, "CMakeLists.txt"), encoding="utf-8") as file:
        major, minor = re.search(r"VERSION (\d+)\.(\d+)", file.read().split("project(")[1]).groups()
    return f"{major}.{int(minor):02}"


class WindowProgram:
    """The program, started, and what a user does with it. Every step waits for what it needs."""

    def __init__(self, place, report, *arguments, process=None):
        self.place = place
        self.report = report
        self.driver = driver(place.programs)
        self.process = process or place.start("coffrelune", *arguments)
        self.title = TITLE + version()

    def step(self, name, *words):
        done = self.drive(*words)
        if done.returncode != 0 and words[0] == "wait":
            # A window that a driver has taken for hung stays so for that driver: another one looks.
            done = self.drive(*words)
        # What is shown is asked only after a fault: it waits for a window, which may be gone.
        good = done.returncode == 0
        self.report.check(name, good, "" if good else " ".join(words) + "\n" + self.shown(words[1]))

    def drive(self, *words):
        return subprocess.run([WINE, self.driver, *words], env=self.place.environment(),
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=PATIENCE, check=False)

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

    def session(self, title=None):
        """What a window answers when the system asks whether the session may end."""
        return self.drive("session", title or self.title).stdout.decode().strip()

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
    program.press("Éditer le chemin")
    program.step("le chemin se saisit", "type", "Répertoire source", "0", r"E:\Données")
    program.press("OK", "Répertoire source")
    program.press("Destination 2 : ")
    program.press("Éditer le chemin")
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


def window_second_auto(place, report):
    """Un second programme lancé par /Auto le dit aussi, et se ferme de lui-même"""
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.sees("le premier est ouvert", "Lancer la Sauvegarde")
    second = place.start("coffrelune", "/Auto")
    program.sees("le second le dit", "LE PROGRAMME EST DEJA EN MEMOIRE !", title="Coffrelune")
    report.equal("personne ne répond : état 3", wait(second).status, 3)
    report.equal("rien n'a été sauvegardé", names_below(place.copy), set())
    report.equal("le premier vit toujours : état 0", program.close(), 0)


def window_command_line(place, report):
    """La ligne de commande est lue telle quelle : les blancs comptent, pas les guillemets"""
    write(f"{place.source}/a.txt", "contenu")
    place.write_settings(place.line("Mes  photos"))
    # Who passes words puts quotes round those with blanks; a shortcut has none.
    for argument, name in ((" travail", " travail"), ("/mes  photos", "Mes  photos")):
        program = WindowProgram(place, report, argument)
        program.sees(f"« {argument} » entre guillemets", name)
        report.equal("état 0", program.close(), 0)
    typed = drive_path(os.path.join(place.programs, "coffrelune.exe")) + " /mes  photos"
    process = subprocess.Popen([WINE, "cmd.exe", "/c", typed], env=place.environment(),
                               cwd=place.root, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
    program = WindowProgram(place, report, process=process)
    program.sees("« /mes  photos » sans guillemets", "Mes  photos")
    report.equal("état 0, encore", program.close(), 0)


def window_about(place, report):
    """La fenêtre « À propos » dit ce que disent les propriétés du fichier"""
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    about = "À propos de Coffrelune"
    program.press(about)
    with open(os.path.join(place.programs, "coffrelune.exe"), "rb") as file:
        data = file.read()
    major, minor = file_version(data)
    texts = [version_text(data, name) for name in ("ProductName", "Comments")]
    report.check("les propriétés ont un nom et un commentaire", all(texts), str(texts))
    program.sees("la fenêtre montre les mêmes", *texts, f"Version {major}.{minor:02}", title=about)
    program.press("OK", about)
    program.step("elle est fermée", "gone", about)
    report.equal("état 0", program.close(), 0)


def version_text(data, name):
    """A text of the version resource: name, padding to four bytes, text, each ended by a zero."""
    mark = (name + "\0").encode("utf-16-le")
    at = data.find(mark)
    if at < 0:
        return ""
    rest = data[at + len(mark):at + len(mark) + 400].decode("utf-16-le", "replace")
    return rest.lstrip("\0").partition("\0")[0]


def window_session_idle(place, report):
    """Fin de session, rien en cours : elle peut finir, les réglages sont notés"""
    place.write_settings(place.line("Travail"))
    program = WindowProgram(place, report, "/Travail")
    program.sees("la fenêtre principale", "Lancer la Sauvegarde")
    report.equal("la session peut finir", program.session(), "1")
    program.step("elle continue, à cause d'un autre", "goes-on", program.title)
    program.sees("le programme est toujours là", "Lancer la Sauvegarde")
    report.equal("la session peut finir, encore", program.session(), "1")
    program.step("elle finit", "ends", program.title)
    kept = section(place.read_settings(), "Position")
    report.equal("état 0", wait(program.process).status, 0)
    report.equal("la configuration était déjà retenue", kept.get("Config"), "Travail")


def window_session_run(place, report):
    """Fin de session pendant une sauvegarde : refusée ; si elle finit quand même, interrompue"""
    write(f"{place.source}/a.txt", "nouveau")
    write(f"{place.copy}/a.txt", "ancien")
    touch(f"{place.copy}/a.txt", -60)
    settings = place.line().replace("Confirmation=1", "Confirmation=0")
    place.write_settings(settings)
    program = WindowProgram(place, report)
    program.press("Lancer la Sauvegarde")
    question = "Confirmation du remplacement du fichier"
    program.sees("la sauvegarde demande", "Etes-vous sûr de vouloir remplacer ce fichier ?",
                 title=question)
    for title in (program.title, "Sauvegarde ...", question):
        report.equal(f"« {title} » refuse", program.session(title), "0")
    program.sees("la question est toujours là", "Annuler", title=question)
    program.step("la session finit quand même", "ends", program.title)
    report.equal("état 3", wait(program.process).status, 3)
    report.equal("la copie n'a pas changé", read(f"{place.copy}/a.txt"), b"ancien")
    report.equal("rien d'autre n'est là", names_below(place.copy), {b"a.txt"})
    report.check("aucun résultat n'est noté",
                 "LastSave" not in section(place.read_settings(), "General"))


def window_session_copy(place, report):
    """La session finit au milieu d'un fichier : il est abandonné, rien ne porte son nom"""
    with open(f"{place.source}/gros.bin", "wb") as file:
        file.truncate(3 << 30)  # seconds of copying, of which the first few are enough
    place.write_settings(place.line("Travail"))
    program = WindowProgram(place, report, "/Auto", "/Travail")
    report.check("la copie commence", wait_until(lambda: names_below(place.copy), program.process))
    report.equal("la fin est refusée", program.session(), "0")
    program.step("la session finit quand même", "ends", program.title)
    report.equal("état 3", wait(program.process).status, 3)
    report.equal("rien n'est resté", names_below(place.copy), set())


def window_session_dialog(place, report):
    """Fin de session, une fenêtre ouverte : refusée ; si elle finit quand même, tout se ferme"""
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.press("Exclusions")
    dialog = "Sous-répertoires à exclure"
    program.sees("la fenêtre s'ouvre", "Annuler", title=dialog)
    report.equal("refusée", program.session(), "0")
    program.step("la session finit quand même", "ends", program.title)
    report.equal("état 0", wait(program.process).status, 0)
    report.equal("la configuration est retenue",
                 section(place.read_settings(), "Position").get("Config"), "General")


def window_closed_from_outside(place, report):
    """Ses fenêtres fermées par un autre programme, celles qu'on ne voit pas d'abord"""
    place.write_settings(place.line())
    program = WindowProgram(place, report)
    program.sees("la fenêtre principale", "Lancer la Sauvegarde")
    program.step("les autres se ferment", "close-others", program.title)
    # Of a place that changes the program takes note a little later.
    move = ["xdotool", "search", "--onlyvisible", "--name", program.title, "windowmove", "60", "70"]
    report.check("elle est déplacée", wait_until(  # a window met on the way may go meanwhile
        lambda: subprocess.run(move, capture_output=True, check=False).returncode == 0))
    program.step("l'onglet", "tab", program.title, "1")
    program.sees("il est montré", "Lancer la Restauration")
    report.equal("état 0", program.close(), 0)
    report.check("la place de la fenêtre est retenue",
                 "Left" in section(place.read_settings(), "Position"), place.read_settings())


def window_no_display(place, report):
    """Sans affichage : une ligne le dit, état 2"""
    environment = {**place.environment(), "DISPLAY": ""}
    outcome = wait(place.start("coffrelune", env=environment))
    report.equal("état 2", outcome.status, 2)
    report.equal("une ligne le dit", outcome.err.replace("\r", ""),
                 "Aucun affichage n'est disponible : utilisez coffrelune-console.\n")


SCENARIOS = (window_backup, window_edit_line, window_restore, window_compare, window_dialogs,
             window_auto, window_second, window_second_auto, window_command_line, window_about,
             window_session_idle, window_session_run, window_session_copy, window_session_dialog,
             window_closed_from_outside, window_no_display)
