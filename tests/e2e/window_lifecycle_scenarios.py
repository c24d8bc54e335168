"""The schedule, the program to run after, start, place and end of the program, the keyboard."""

import os
import stat
import time

from harness import differences, drive_path, write
from window_elements import Element, ear, wait_for
from window_harness import FAKE_CLOCK, comes, written
from window_screen import SIZE

TIME_FIELD = "Heure de la sauvegarde automatique (hh:mm)"
AUTOMATIC = "Sauvegarde Automatique :"


def schedule(place, report):
    """Une sauvegarde planifiée à la minute suivante part seule, et sans un mot"""
    if not os.path.exists(FAKE_CLOCK):
        report.leave_out("sauvegarde planifiée", f"{FAKE_CLOCK} est absent")
        return
    write(f"{place.source}/a.txt", "a")
    place.write_line()
    program = place.open_at("2026-11-21 11:00:00")
    field = program.main.find("field", TIME_FIELD)
    report.equal("l'heure d'abord", field.text, "00:00")
    program.main.find("checkbox", AUTOMATIC).press()
    written(place, report, "AutoSave", "1")
    field.focus()
    field.set("12:00")
    program.main.find("checkbox", AUTOMATIC).focus()
    written(place, report, "AutoTime", "12:00")
    place.set_clock("2026-11-21 11:59:50")
    report.check("rien avant l'heure", not os.path.exists(f"{place.copy}/a.txt"))
    report.check("la sauvegarde part", comes(lambda: os.path.exists(f"{place.copy}/a.txt"), 120))
    report.check("LastSave est de ce jour", comes(
        lambda: place.key("LastSave").startswith("21/11/2026 12:0")), place.key("LastSave"))
    # The window of the run goes by itself; a message would stay.
    report.check("aucun message", comes(lambda: [window.name for window in program.windows] ==
                                        [program.main.name]), program.windows)


def missing_at_the_hour(place, report):
    """Une sauvegarde planifiée dont la source a disparu le dit en haut de la fenêtre"""
    if not os.path.exists(FAKE_CLOCK):
        report.leave_out("source disparue à l'heure dite", f"{FAKE_CLOCK} est absent")
        return
    place.write_line(more="AutoSave=1\nAutoTime=12:00\n")
    os.rmdir(place.source)
    program = place.open_at("2026-11-21 11:00:00")
    main = program.main
    report.check("rien n'est dit d'abord", not main.has("button", "Masquer"))
    place.set_clock("2026-11-21 11:59:55")
    notice = wait_for(lambda: [name for name in main.labels() if "est introuvable" in name],
                      "le message", 180)
    report.check("la ligne et la source sont nommées",
                 notice[0].endswith(f"Ligne 1 : la source {drive_path(place.source)} est introuvable."),
                 notice)
    report.check("l'heure aussi", notice[0].startswith("21/11/2026 12:0"), notice)
    report.equal("aucune boîte", [window.name for window in program.windows], [main.name])
    report.equal("aucun résultat n'est noté", place.key("LastSave"), "")
    main.find("button", "Masquer").press()
    report.check("« Masquer » l'enlève", comes(
        lambda: not any("introuvable" in name for name in main.labels())))
    report.check("et s'en va aussi", comes(lambda: not main.has("button", "Masquer")))


def wrong_time(place, report):
    """Une heure qui n'en est pas une est refusée, l'ancienne revient"""
    place.write_line(more="AutoTime=08:30\n")
    program = place.open()
    field = program.main.find("field", TIME_FIELD)
    field.focus()
    field.set("25:00")
    place.screen.keys("Tab")
    report.equal("le message", program.answer("OK").text,
                 "L'heure de sauvegarde saisie est incorrecte !")
    report.check("l'ancienne est là", comes(lambda: field.text == "08:30"), field.text)
    report.check("le champ a le focus", comes(lambda: field.focused))
    report.equal("rien n'est écrit", place.key("AutoTime"), "08:30")
    field.set("9")
    place.screen.keys("Tab")
    report.equal("« 9 » n'en est pas une non plus", program.answer("OK").text,
                 "L'heure de sauvegarde saisie est incorrecte !")
    report.check("l'ancienne revient encore", comes(
        lambda: field.text == "08:30" and field.focused), field.text)
    field.set("09:1")
    place.screen.keys("Tab")
    written(place, report, "AutoTime", "09:10")


def program_after(place, report):
    """Le programme à exécuter part après une sauvegarde, avec ses paramètres"""
    write(f"{place.source}/a.txt", "a")
    script, trace = f"{place.root}/apres.sh", f"{place.root}/trace"
    write(script, f'#!/bin/sh\necho "$@" > {trace}\n')
    os.chmod(script, os.stat(script).st_mode | stat.S_IXUSR)
    place.write_line()
    program = place.open()
    program.main.find("button", "Choisir le programme à exécuter").press()
    program.choose(script)
    written(place, report, "ProgToRun", drive_path(script))
    parameters = program.main.find("field", "Paramètres du programme")
    parameters.focus()
    parameters.set("un deux")
    program.main.find("checkbox", "Programme à exécuter après la sauvegarde :").press()
    written(place, report, "PrmToRun", "un deux")
    written(place, report, "SelectP", "1")
    program.launch("Sauvegarde")
    report.check("pas avant le message", not os.path.exists(trace))
    program.answer("OK")
    report.check("il est parti", comes(
        lambda: os.path.exists(trace) and open(trace, encoding="utf-8").read() == "un deux\n"))
    program.main.find("button", "Supprimer le programme à exécuter").press()
    asked = program.answer("OK")
    report.equal("la question", (asked.title, asked.text), (
        "Suppression",
        "Confirmez-vous la suppression du programme à exécuter après la Sauvegarde ?"))
    for key, expected in (("ProgToRun", ""), ("PrmToRun", ""), ("SelectP", "0")):
        written(place, report, key, expected)


def place_kept(place, report):
    """Fermée et rouverte, la fenêtre est au même endroit ; hors de l'écran, elle y revient"""
    place.write_line()
    program = place.open()
    report.check("elle s'ouvre en haut à gauche", comes(
        lambda: max(program.main.extents[:2]) < 40), program.main.extents)
    place.screen.xdotool("windowmove", "--sync", program.window_id(), 120, 90)
    # The program hears of its new place after the window manager has moved it there.
    comes(lambda: all(edge <= now < edge + 40
                      for edge, now in zip((120, 90), program.main.extents)))
    moved = program.main.extents[:2]
    report.equal("le programme finit bien", program.close().status, 0)
    stored = [place.key(name, "Position") for name in ("Left", "Top")]
    report.check("sa place est écrite", all(0 < int(value or 0) < 3000 for value in stored), stored)
    program = place.open()
    report.check("elle revient au même endroit", comes(lambda: all(
        abs(a - b) <= 2 for a, b in zip(program.main.extents, moved))),
        f"{moved} puis {program.main.extents}")
    report.equal("elle finit bien encore", program.close().status, 0)
    report.equal("et y reste", [place.key(name, "Position") for name in ("Left", "Top")], stored)

    place.write_line("Left=90000\nTop=60000\n")
    program = place.open()
    report.check("elle est tout entière à l'écran", comes(lambda: inside(program)),
                 program.main.children[0].extents)


def minimised(place, report):
    """Fermée réduite, la fenêtre revient réduite, et le reste"""
    place.write_line("WindowState=1\nLeft=600\nTop=600\n")
    program = place.open()
    window = wait_for(lambda: place.screen.find(program.TITLE), "la fenêtre")[-1]
    report.check("elle est réduite", comes(lambda: "Iconic" in place.screen.state(window)),
                 place.screen.state(window))
    place.screen.ask_to_close(window)
    report.equal("elle finit bien", program.end().status, 0)
    report.equal("sa place est gardée", [place.key(name, "Position") for name in (
        "WindowState", "Left", "Top")], ["1", "600", "600"])
    program = place.open()
    window = wait_for(lambda: place.screen.find(program.TITLE), "la fenêtre")[-1]
    report.check("elle revient réduite", comes(lambda: "Iconic" in place.screen.state(window)),
                 place.screen.state(window))


def inside(program):
    """What the frame holds; the frame itself is the window manager's."""
    x, y, width, height = program.main.children[0].extents
    return x >= 0 and y >= 0 and x + width <= SIZE[0] and y + height <= SIZE[1]


def first_sight(place, report):
    """Le temps du départ à la première fenêtre est dit"""
    place.write_line()
    start = time.monotonic()
    program = place.open()
    wait_for(lambda: place.screen.xdotool("search", "--onlyvisible", "--name", program.TITLE),
             "la fenêtre")
    taken = time.monotonic() - start
    print(f"    du départ à la fenêtre, outils compris : {taken * 1000:.0f} ms")
    report.check("la fenêtre est là", program.main.showing)


def second_start(place, report):
    """Une deuxième fois sur les mêmes réglages : le message, et la première continue"""
    place.write_line()
    program = place.open()
    title = program.main.name
    before = place.read_settings()
    second = place.open()
    message = second.answer("OK")
    report.equal("le titre", message.title, title)
    report.equal("le message", message.text, "LE PROGRAMME EST DEJA EN MEMOIRE !\n"
                 "     (Regardez la barre des taches)")
    report.equal("état 3", second.end().status, 3)
    report.equal("les réglages n'ont pas changé", place.read_settings(), before)
    report.equal("la première répond", program.path("Source", 1), drive_path(place.source))


def automatic(place, report):
    """« /Auto » sauvegarde sans rien demander, puis le programme finit"""
    write(f"{place.source}/a.txt", "a")
    place.write_settings("[Position]\n" + place.line("Travail"))
    outcome = place.open("/Auto", "/travail").end()
    report.equal("état 0", outcome.status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    report.check("LastSave", place.key("LastSave", "Travail"))


def no_display(place, report):
    """Sans affichage : une ligne claire qui nomme coffrelune-console, état 2"""
    place.write_line()
    environment = {name: value for name, value in place.environment().items()
                   if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    for display in ({}, {"DISPLAY": ":9999"}):
        outcome = place.run("coffrelune", env={**environment, **display})
        report.equal(f"{display} : état 2", outcome.status, 2)
        lines = outcome.all.strip().splitlines()
        report.check(f"{display} : une ligne", len(lines) == 1 and "coffrelune-console" in lines[0],
                     outcome)


def keyboard(place, report):
    """Le clavier seul : les tabulations dans l'ordre, les mnémoniques, Entrée et Échap"""
    write(f"{place.source}/a.txt", "a")
    place.write_line()
    program = place.open()
    program.bring_forward()
    order = []
    focused = focus(program)
    for _ in range(12):
        focused = next_focus(program, focused)
        if focused and focused.extents[1] and focused.name not in order:
            order.append(focused.name)
    names = order
    report.check("les tabulations passent par la première ligne", any(
        name == "Sélectionner la sauvegarde 1" for name in names), names)
    report.check("dans l'ordre de lecture", is_reading_order(names), names)

    press_until(program, "alt+r", lambda: tab(program, "Restauration"))
    report.check("Alt+R montre la restauration", tab(program, "Restauration"))
    press_until(program, "alt+s", lambda: tab(program, "Sauvegarde"))
    report.check("Alt+S montre la sauvegarde", tab(program, "Sauvegarde"))
    program.main.keys("alt+e")
    written(place, report, "Confirmation", "0")
    program.main.keys("alt+e")
    written(place, report, "Confirmation", "1")

    launch = program.main.find("button", "Lancer la Sauvegarde")
    reach(program, launch)
    program.main.keys("space")
    message = program.message()
    report.check("la barre d'espace lance la sauvegarde",
                 message.text.startswith("Sauvegarde terminée sans erreur."))
    message.element.keys("Return")
    report.check("Entrée ferme le message", comes(lambda: len(program.windows) == 1))
    report.equal("le fichier est copié", differences(place.source, place.copy), [])

    label = program.label("Source", 2)
    reach(program, label)
    program.main.keys("Return")
    program.wait(lambda: any(window.find_all("menu") for window in program.windows), "le menu")
    place.screen.keys("i")
    window = program.window("Répertoire source")
    report.check("le champ attend le texte", comes(lambda: window.find("field").focused))
    place.screen.write("C:\\tmp")
    place.screen.keys("Return")
    program.gone(window.name)
    written(place, report, "Source1", "C:\\tmp")
    program.main.keys("alt+F4")
    report.equal("Alt+F4 finit le programme", program.end().status, 0)


def is_reading_order(names):
    """Of one line: its tick, its source, its buttons, its destination, its exclusions."""
    line = ("Sélectionner la sauvegarde 1", "Source 1", "Choisir la source de la sauvegarde 1",
            "Destination 1", "Choisir la destination de la sauvegarde 1", "Exclusions")
    places = [next((i for i, name in enumerate(names) if name.startswith(part)), None)
              for part in line]
    return None not in places and places == sorted(places)


def focus(program):
    """What has the focus in the main window."""
    heard = ear().focused()
    seen = next((element for element in program.main.below() if element.focused), None)
    if seen is not None or heard is None:
        return seen
    part = Element(heard, program.screen)
    return part if part.focused else None


def tab(program, name):
    return program.main.find("tab", name).selected


def press_until(program, keys, question):
    program.main.keys(keys)
    comes(question)


def next_focus(program, before):
    """What has the focus after a Tab. The program takes the key when it comes to it."""
    def moved():
        now = focus(program)
        return now and (before is None or now.node != before.node) and now
    program.main.keys("Tab")
    return wait_for(moved, f"la tabulation mène plus loin que {before}")


def reach(program, element):
    """Tab until the focus is there; an error when it never gets there."""
    focused = focus(program)
    for _ in range(80):
        if element.focused:
            return
        focused = next_focus(program, focused)
    raise RuntimeError(f"les tabulations n'arrivent jamais à {element}")


def silent_end(place, report):
    """Le programme que l'on ferme ne se plaint de rien"""
    place.write_line()
    program = place.open()
    program.show_tab("Comparaison")
    outcome = program.close()
    report.equal("il finit bien", outcome.status, 0)
    report.check("rien de grave sur stderr", "CRITICAL" not in outcome.err, outcome.err)


def maximised(place, report):
    """Fermée agrandie, la fenêtre garde la place qu'elle avait avant"""
    place.write_line()
    program = place.open()
    window = program.window_id()
    comes(lambda: program.main.active)
    place.screen.xdotool("windowmove", "--sync", window, 150, 90)
    report.check("elle est ailleurs", comes(lambda: all(
        edge <= now < edge + 40 for edge, now in zip((150, 90), program.main.extents))),
        program.main.extents)
    report.equal("elle se ferme", program.close().status, 0)
    kept = [place.key(name, "Position") for name in ("Left", "Top")]
    report.check("sa place est écrite", all(int(value or 0) > 0 for value in kept), kept)
    program = place.open()
    window = program.window_id()
    comes(lambda: program.main.active)
    x, y = program.main.extents[:2]
    place.screen.click(x + 300, y + 10, count=2)  # on the title bar
    report.check("elle est agrandie", comes(
        lambda: program.main.extents[2] >= SIZE[0] - 10), program.main.extents)
    report.equal("elle finit bien", program.close().status, 0)
    report.equal("sa place d'avant est gardée", [place.key(name, "Position") for name in (
        "WindowState", "Left", "Top")], ["2", *kept])


SCENARIOS = (first_sight, schedule, missing_at_the_hour, wrong_time, program_after, place_kept, minimised, second_start, automatic,
             no_display, keyboard, maximised, silent_end)
