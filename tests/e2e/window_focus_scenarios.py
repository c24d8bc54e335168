"""Where the focus is, and what keys do: nobody is left without a place to go on from."""

from harness import differences, write
from window_elements import wait_for
from window_harness import comes, written
from window_lifecycle_scenarios import focus, reach


def focused_in(window):
    """What has the focus in a window and can be used, if anything."""
    return next((element for element in window.below() if element.focused and element.enabled), None)


def handed_on(place, report):
    """Un bouton qui se grise ou disparaît sous le focus le passe au suivant"""
    place.write_line(more="RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n")
    write(f"{place.source}/a.txt", "a")
    program = place.open()
    program.exclusions(1).press()
    window = program.window("Sous-répertoires à exclure")
    window.find("list").cell_at(0, 0).press()
    remove = window.find("button", "Supprimer")
    wait_for(lambda: remove.enabled, "le bouton sert")
    remove.focus()
    window.keys("space")
    report.check("le bouton est gris", comes(lambda: not remove.enabled))
    report.check("un autre a le focus", comes(lambda: focused_in(window)), list(window.below()))
    window.keys("Escape")
    program.gone(window.name)
    report.check("la fenêtre principale le reprend", comes(lambda: focused_in(program.main)))


def hidden_notice(place, report):
    """« Masquer » fait disparaître le message et lui-même : le focus est ailleurs, pas nulle part"""
    place.write_line("SynchroCopie=-1\n")
    write(f"{place.source}/a.txt", "a")
    write(f"{place.copy}/vieux.txt", "v")
    program = place.open()
    program.launch("Sauvegarde")
    program.answer("OK")
    hide = program.main.find("button", "Masquer")
    reach(program, hide)
    program.main.keys("space")
    report.check("le message est parti", comes(lambda: not program.main.has("button", "Masquer")))
    report.check("quelque chose a le focus", comes(lambda: focused_in(program.main)))


def shortcuts(place, report):
    """F5 lance la sauvegarde, Échap et Entrée ferment, Ctrl+Q quitte ; le focus revient"""
    write(f"{place.source}/a.txt", "a")
    place.write_line()
    program = place.open()
    program.bring_forward()
    launch = program.main.find("button", "Lancer la Sauvegarde")
    reach(program, launch)
    program.main.keys("F5")
    message = program.message()
    report.check("F5 lance la sauvegarde",
                 message.text.startswith("Sauvegarde terminée sans erreur."), message.text)
    message.element.keys("Escape")
    report.check("Échap ferme le message", comes(lambda: len(program.windows) == 1))
    report.equal("le fichier est copié", differences(place.source, place.copy), [])
    report.check("le focus revient au bouton", comes(lambda: launch.focused), focus(program))

    program.command("Configurations et options")
    window = program.window("Configurations et options")
    box = window.find("checkbox", "Continuer la copie en cas d'erreur:")
    box.focus()
    window.keys("space", "Return")
    program.gone(window.name)
    written(place, report, "ContinueOnError", "-1", "Position")
    program.main.keys("ctrl+q")
    report.equal("Ctrl+Q quitte", program.end().status, 0)


def chooser(place, report):
    """Le choix d'un répertoire ou d'un fichier est une boîte de dialogue, qu'Échap ferme"""
    write(f"{place.source}/a.txt", "a")
    place.write_line()
    program = place.open()
    program.label("Source", 1).press()
    program.command("Modifier le répertoire ou le fichier source")
    window = program.window("Sélectionnez le répertoire (ou le fichier) source:")
    report.equal("son rôle", window.role, "dialog")
    window.find("button", "Choisir la sélection")
    title = window.name
    window.keys("Escape")
    program.gone(title)
    report.check("le focus revient à l'étiquette",
                 comes(lambda: focused_in(program.main)), focus(program))


SCENARIOS = (handed_on, hidden_notice, shortcuts, chooser)
