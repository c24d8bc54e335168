"""The lines: their paths, their tick, the commands on them."""

import os

from drive_scenarios import letter_of, volume
from harness import drive_path, write
from window_elements import wait_for
from window_harness import comes, written
from window_lifecycle_scenarios import reach


def two_lines(place):
    """Settings with two lines, the second one unticked."""
    return place.write_line(more=f"""Source1="{drive_path(place.root)}\\Musique"
Destination1="{drive_path(place.destination)}"
Select1=0
""")


def type_paths(place, report):
    """Sans réglages : les chemins s'écrivent par « Editer », la ligne se coche, tout est gardé"""
    write(f"{place.source}/a.txt")
    program = place.open()
    report.check("la case est grise sans chemins", not program.box(1).enabled)
    program.type_path("Source", 1, place.source)
    written(place, report, "Source0", drive_path(place.source))
    report.check("la case est grise avec une source seule", not program.box(1).enabled)
    program.type_path("Destination", 1, place.destination)
    written(place, report, "Destination0", drive_path(place.destination))
    report.equal("la source se lit", program.path("Source", 1), drive_path(place.source))
    program.box(1).press()
    written(place, report, "Select0", "1")
    report.check("la case est cochée", comes(lambda: program.box(1).checked))

    program.label("Source", 1).press()
    program.command("Éditer le chemin")
    window = program.window("Répertoire source")
    window.find("field").set("C:\\ailleurs")
    window.find("button", "Annuler").press()
    program.gone("Répertoire source")
    report.equal("annuler garde la source", place.key("Source0"), drive_path(place.source))

    program.label("Source", 1).press()
    program.command("Éditer le chemin")
    window = program.window("Répertoire source")
    window.find("button", "Effacer le texte").press()
    wait_for(lambda: window.find("field").text == "", "le texte s'efface")
    report.check("le champ a le focus", comes(lambda: window.find("field").focused))
    window.find("button", "OK").press()
    program.gone("Répertoire source")
    written(place, report, "Source0", "")
    report.check("la ligne n'est plus cochée", comes(lambda: not program.box(1).checked))
    written(place, report, "Select0", "0")
    report.equal("le programme finit bien", program.close().status, 0)


def row_menu(place, report):
    """Le menu d'une ligne : ce qu'il offre de chaque côté, et l'échange de deux lignes"""
    two_lines(place)
    program = place.open()

    def menu(side, number):
        program.label(side, number).press(button=3)
        return program.wait(lambda: next((item for window in program.windows
                                          for item in window.find_all("menu")), None), "le menu")

    def captions(found):
        # The menu shows before the last of its entries does.
        return program.wait(lambda: (items := found.children) and all(
            item.showing for item in items) and [item.name for item in items], "les entrées")

    offered = captions(menu("Source", 1))
    report.check("la source offre le fichier", any("fichier" in name for name in offered), offered)
    place.screen.keys("Escape")
    program.wait(lambda: not any(window.find_all("menu") for window in program.windows),
                 "le menu se ferme")
    found = menu("Destination", 1)
    offered = captions(found)
    report.check("la destination ne l'offre pas", offered and
                 not any("ou le fichier" in name for name in offered), offered)
    report.check("la première ligne ne monte pas", not found.find("item", "Monter la ligne").enabled)
    report.check("elle descend", found.find("item", "Descendre la ligne").enabled)
    found.find("item", "Descendre la ligne").press()
    written(place, report, "Source1", drive_path(place.source))
    written(place, report, "Source0", drive_path(place.root) + "\\Musique")
    comes(lambda: (place.key("Select0"), place.key("Select1")) == ("0", "1"))
    report.equal("les coches ont suivi", (place.key("Select0"), place.key("Select1")), ("0", "1"))
    comes(lambda: program.path("Source", 2) == drive_path(place.source))
    report.equal("la ligne 2 la montre", program.path("Source", 2), drive_path(place.source))


def reset_line(place, report):
    """La remise à zéro d'une ligne se confirme, puis vide ses clés"""
    place.write_line(more="RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n")
    program = place.open()
    program.label("Source", 1).press()
    program.command("Remise à zéro de la ligne")
    asked = program.answer("Annuler")
    report.equal("la question", asked.text, "Remise à zéro de la sauvegarde 1 ?")
    report.equal("annuler ne touche à rien", place.key("Source0"), drive_path(place.source))
    program.command("Remise à zéro de la ligne")
    program.answer("OK")
    written(place, report, "Source0", "")
    written(place, report, "Destination0", "")
    written(place, report, "RepExclu0_Rep1", "")
    written(place, report, "RepExclu0_Mode", "0")
    report.check("la case est grise", comes(lambda: not program.box(1).enabled))


def drag_path(place, report):
    """Un chemin se tire d'une étiquette à l'autre"""
    place.write_line()
    program = place.open()
    place.screen.drag(program.label("Source", 1).middle, program.label("Destination", 3).middle)
    written(place, report, "Destination2", drive_path(place.source))
    report.equal("la source est restée", place.key("Source0"), drive_path(place.source))


def raw_name(place, report):
    """Un nom qui n'est pas de l'UTF-8 se montre, se copie d'une ligne à l'autre et se sauvegarde"""
    name = b"caf\xe9"
    raw = os.path.join(os.fsencode(place.root), name)
    write(os.path.join(raw, b"a.txt"), "a")
    source = drive_path(os.fsdecode(raw))
    text = place.line().replace(drive_path(place.source), source)
    with open(place.settings, "wb") as file:
        file.write(("\ufeff" + text).encode("utf-16-le", "surrogatepass"))
    program = place.open()
    shown = program.path("Source", 1)
    report.check("la ligne se lit", shown.startswith(source[:-1]), shown)
    program.label("Source", 1).press()
    place.screen.keys("ctrl+c")
    program.label("Source", 4).press()
    place.screen.keys("ctrl+v")
    report.check("la copie se lit de même", comes(lambda: program.path("Source", 4) == shown))
    settings = lambda: place.read_settings().decode("utf-16-le", "surrogatepass")
    report.check("le même nom est noté", comes(lambda: f'Source3="{source}"' in settings()),
                 ascii(settings()))
    program.launch("Sauvegarde")
    report.check("elle finit sans erreur", program.answer("OK").text.startswith(
        "Sauvegarde terminée sans erreur."))
    copy = os.path.join(os.fsencode(place.destination), name, b"a.txt")
    report.check("le fichier est copié sous ce nom", os.path.exists(copy))


def colon_in_a_name(place, report):
    """Un « : » dans un nom se lit tel quel, et la copie le garde"""
    write(f"{place.root}/12:30/a.txt", "a")
    os.makedirs(place.destination, exist_ok=True)
    program = place.open()
    program.type_path("Source", 1, f"{place.root}/12:30")
    program.type_path("Destination", 1, place.destination)
    report.check("il se lit", comes(lambda: program.path("Source", 1).endswith("\\12:30")),
                 program.path("Source", 1))
    program.box(1).press()
    comes(lambda: program.box(1).checked)
    program.launch("Sauvegarde")
    report.check("elle finit sans erreur", program.answer("OK").text.startswith(
        "Sauvegarde terminée sans erreur."))
    report.check("la copie le porte", os.path.exists(f"{place.destination}/12:30/a.txt"))


def all_destinations(place, report):
    """Toutes les destinations changent de lecteur ; sur deux lecteurs, c'est refusé"""
    two_lines(place)
    with volume(place, report, "changement de lecteur") as point:
        if point is None:
            return
        title = "Choisissez un lecteur pour toutes les destinations"
        program = place.open()
        program.command("Modification de toutes les destinations")
        window = program.window(title)
        letter = letter_of(place, point)
        drives = [cells[0].strip() for cells in window.find("list").entries()]
        report.check("le volume est dans la liste", f"{letter}:\\" in drives, drives)
        described = window.find("list").entries()[drives.index(f"{letter}:\\")][1]
        report.equal("par son nom", described, f"{os.path.basename(point)} ({letter}:)")
        window.find("button", "OK").press()
        report.equal("sans choix", program.answer("OK").text, "Sélectionnez d'abord un lecteur !")
        window.find("list").cell_at(drives.index(f"{letter}:\\"), 1).press()
        window.find("button", "OK").press()
        program.gone(title)
        moved = f"{letter}:" + drive_path(place.destination)[2:]
        written(place, report, "Destination0", moved)
        written(place, report, "Destination1", moved)
        report.equal("l'étiquette le montre", program.path("Destination", 1), moved)

        program.type_path("Destination", 1, "C:\\copies")
        written(place, report, "Destination0", "C:\\copies")
        program.command("Modification de toutes les destinations")
        refused = program.answer("OK")
        report.equal("sur deux lecteurs", (refused.title, refused.text), (
            "Modification de toutes les destinations",
            "Toutes les sauvegardes doivent être sur la même unité disque !"))
        report.equal("rien n'a changé", place.key("Destination1"), moved)
        program.close()


def chooser(place, report):
    """Le bouton d'une ligne ouvre le choix d'un répertoire, avec sa question"""
    program = place.open()
    program.main.find("button", "Choisir la destination de la sauvegarde 1").press()
    program.window("Sélectionnez le répertoire destination:").keys("Escape")
    program.gone("Sélectionnez le répertoire destination:")
    report.equal("annuler n'écrit rien", place.key("Destination0"), "")
    program.main.find("button", "Choisir la source de la sauvegarde 1").press()
    program.window("Sélectionnez le répertoire source:")
    program.choose(place.destination)
    written(place, report, "Source0", drive_path(place.destination))


def edit_in_place(place, report):
    """Un chemin s'écrit à sa place : la frappe, F2 et le double clic ; Entrée garde, Échap renonce"""
    write(f"{place.source}/a.txt", "a")
    program = place.open()

    def editor():
        label = program.label("Source", 1)
        return next((element for element in label.below() if element.role == "text"), None)

    reach(program, program.label("Source", 1))
    program.main.keys("slash")
    report.check("la frappe ouvre le champ", comes(lambda: editor() and editor().text == "/"))
    editor().set(place.source)
    place.screen.keys("Return")
    written(place, report, "Source0", drive_path(place.source))
    report.check("le champ est parti", comes(lambda: editor() is None))
    report.check("l'étiquette garde le focus", comes(lambda: program.label("Source", 1).focused))
    program.main.keys("F2")
    report.check("F2 montre le chemin", comes(
        lambda: editor() and editor().text == drive_path(place.source)))
    place.screen.write("C:\\ailleurs")
    place.screen.keys("Escape")
    report.check("Échap renonce", comes(lambda: editor() is None))
    report.equal("la source est gardée", place.key("Source0"), drive_path(place.source))
    program.label("Source", 1).press(count=2)
    report.check("le double clic aussi", comes(editor))
    place.screen.keys("Escape")
    comes(lambda: editor() is None)
    program.main.keys("Delete")
    asked = program.answer("Annuler")
    report.equal("la question", asked.text, "Voulez-vous vider la source de la sauvegarde 1 ?")
    report.equal("annuler garde la source", place.key("Source0"), drive_path(place.source))
    program.main.keys("Delete")
    program.answer("OK")
    written(place, report, "Source0", "")


SCENARIOS = (edit_in_place, type_paths, row_menu, reset_line, drag_path, raw_name,
             colon_in_a_name, all_destinations, chooser)
