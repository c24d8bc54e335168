"""What the main window says so that nobody is misled, and so that the first backup needs no help."""

import os
import re

from drive_scenarios import volume
from harness import differences, drive_path, read, write
from window_harness import comes
from window_lifecycle_scenarios import focus, next_focus, reach


def says(program, part):
    """Whether a text of the main window contains that."""
    return comes(lambda: any(part in text for text in program.main.labels()), 20)


def stand_ins(place, *names):
    """Puts programs of the desktop into a directory of the place, which only tell of their calls."""
    tools = f"{place.root}/outils"
    for name in names:
        write(f"{tools}/{name}", f'#!/bin/sh\necho "{name} $*" >>"{place.root}/appels"\n')
        os.chmod(f"{tools}/{name}", 0o755)
    return tools


def reasons(place, report):
    """Source absente, ligne pas cochée, tout à jour, destination absente : la fenêtre dit pourquoi"""
    write(f"{place.source}/a.txt", "a")
    place.write_line(more=f"""Source1="{drive_path(place.root)}\\absent"
Destination1="{drive_path(place.destination)}"
Select1=1
Source2="{drive_path(place.source)}"
Destination2="{drive_path(place.root)}\\ailleurs"
Select2=0
""")
    program = place.open()
    program.launch("Sauvegarde")
    report.check("le message de la source", "non trouvé." in program.answer("OK").text)
    report.check("puis celui de l'arrêt", "interrompue" in program.answer("OK").text)
    report.check("pourquoi elle s'est arrêtée", says(program, "une source manque."),
                 program.main.labels())
    report.check("la source absente", says(program, "absent est introuvable."),
                 program.main.labels())
    report.check("la ligne pas cochée", says(program, "Ligne 3 : remplie mais pas cochée"),
                 program.main.labels())
    program.kill()
    place.write_settings(place.line().replace(drive_path(place.destination),
                                              f"{drive_path(place.root)}\\parti"))
    program = place.open()
    for kind in ("Sauvegarde", "Comparaison"):
        program.show_tab(kind)
        program.launch(kind)
        if kind == "Sauvegarde":
            report.check("le message de la destination", program.answer("OK").words ==
                         "Rien à sauvegarder ! Le disque destination n'existe pas.")
        report.check(f"{kind} : l'arrêt et sa cause", says(
            program, f"{kind} interrompue, incomplète : Le disque destination n'existe pas."),
            program.main.labels())
        report.check(f"{kind} : la destination absente", says(program, "parti est introuvable."),
                     program.main.labels())
    program.kill()
    place.write_line()
    program = place.open()
    program.launch("Sauvegarde")
    program.answer("OK")
    report.check("tout est à jour", says(program, "Tout est à jour"), program.main.labels())


def silent_pictures(place, report):
    """Sans « Mes images », la fenêtre sauvegarde le reste sans un message de plus"""
    write(f"{place.source}/a.txt", "a")
    place.write_line(more=f"""Source1="{drive_path(place.root)}\\Mes images"
Destination1="{drive_path(place.destination)}"
Select1=1
""")
    program = place.open()
    program.launch("Sauvegarde")
    message = program.answer("OK")
    report.check("un seul message, celui de la fin",
                 message.text.startswith("Sauvegarde terminée sans erreur."), message.text)
    report.equal("le reste est copié", differences(place.source, place.copy), [])
    report.check("rien d'autre ne s'ouvre", comes(lambda: len(program.windows) == 1),
                 [window.name for window in program.windows])


def first_backup(place, report):
    """Première sauvegarde au clavier seul, chaque pas par son nom accessible"""
    source = f"{place.root}/Documents"  # the screen's keyboard has no accents of its own
    write(f"{source}/a.txt", "a")
    os.makedirs(place.destination, exist_ok=True)
    program = place.open()
    report.check("trois pas sont dits", says(program, "1. Source :") and
                 says(program, "2. Destination :") and says(program, "3. Cochez"))
    program.bring_forward()
    for side, path in (("Source", source), ("Destination", place.destination)):
        reach(program, program.label(side, 1))
        program.main.keys("Return")
        program.wait(lambda: any(window.find_all("menu") for window in program.windows), "le menu")
        place.screen.keys("i")
        window = program.window(f"Répertoire {side.lower()}")
        comes(lambda: window.find("field").focused)
        place.screen.write(path)
        place.screen.keys("Return")
        program.gone(f"Répertoire {side.lower()}")
    report.check("les pas sont partis", comes(
        lambda: not any("1. Source" in text for text in program.main.labels())))
    reach(program, program.box(1))
    program.main.keys("space")
    comes(lambda: program.box(1).checked)
    program.main.keys("F5")
    message = program.message()
    report.check("la sauvegarde finit", message.text.startswith("Sauvegarde terminée sans erreur."))
    message.element.keys("Return")
    comes(lambda: len(program.windows) == 1)
    report.equal("tout est copié", differences(source, f"{place.destination}/Documents"), [])


def announced(element):
    """What a screen reader says when an element takes the focus; it says nothing of one without
    a name."""
    kinds = {"push button": "bouton", "check box": "case à cocher", "text": "texte",
             "entry": "texte", "page tab list": "onglets", "combo box": "liste déroulante"}
    return f"{element.name}, {kinds.get(element.role, element.role)}" if element.name else ""


def spoken_backup(place, report):
    """Première sauvegarde à l'oreille : les tabulations disent tout, chaque pas se presse par son nom"""
    write(f"{place.source}/a.txt", "a")
    os.makedirs(place.destination, exist_ok=True)
    program = place.open()
    program.bring_forward()
    heard, seen = [], []
    focused = focus(program)
    while focused is not None and focused.node not in seen:
        seen.append(focused.node)
        heard.append(announced(focused))
        focused = next_focus(program, focused)
    print("    " + " ; ".join(heard)[:1000])
    report.check("rien n'est muet", all(heard), heard)
    report.equal("rien ne s'entend deux fois", len(heard), len(set(heard)))
    wanted = ("Opération, onglets", "Configuration : General, liste déroulante",
              "Choisir la source de la sauvegarde 1, bouton",
              "Choisir la destination de la sauvegarde 1, bouton", "Lancer la Sauvegarde, bouton")
    report.equal("les pas s'entendent", [words for words in wanted if words not in heard], [])

    for side, path in (("source", place.source), ("destination", place.destination)):
        program.main.find("button", f"Choisir la {side} de la sauvegarde 1").activate()
        report.equal("la question se lit", program.wait(
            lambda: next((window.name for window in program.windows
                          if window.role == "file chooser"), None), "le choix"),
            f"Sélectionnez le répertoire {side}:")
        program.choose(path)
        name = f"{side.capitalize()} 1 : {drive_path(path)}"
        report.check(f"« {name} » s'entend", comes(lambda: program.main.has("field", name)))
    program.box(1).activate()
    report.check("la case est cochée", comes(lambda: program.box(1).checked))
    program.main.find("button", "Lancer la Sauvegarde").activate()
    message = program.message()
    report.check("la fin se lit", message.text.startswith("Sauvegarde terminée sans erreur."))
    message.element.find("button", "OK").activate()
    comes(lambda: len(program.windows) == 1)
    report.equal("tout est copié", differences(place.source, place.copy), [])


def small_disk(place, report):
    """Un disque trop petit se dit avant la copie, qui a lieu quand même"""
    with volume(place, report, "disque trop petit") as point:
        if point is None:
            return
        write(f"{place.source}/grand.bin", b"x" * (6 << 20))
        write(f"{place.source}/a.txt", "a")
        write(f"{place.home}/Lecteurs.ini", f"[Lecteurs]\r\nV=path:{point}\r\n")
        place.write_settings("[Position]\nContinueOnError=-1\n" + place.line().replace(
            drive_path(place.destination), "V:\\"))
        program = place.open()
        program.launch("Sauvegarde")
        report.check("le disque est trop petit", says(program, "Le disque V:\\ risque d'être trop "
                                                      "petit : 6"), program.main.labels())
        program.window("Sauvegarde ...").find("button", "Fermer").press()
        report.check("la copie a eu lieu", "nombre d'erreur(s): 1" in program.answer("OK").text)
        report.check("ce qui tient est copié", os.path.exists(f"{point}/Données/a.txt"))
        program.kill()


def spoken_schedule(place, report):
    """La prochaine sauvegarde se lit en mots ; les exclusions se comptent ; les options s'expliquent"""
    place.write_line(more="AutoSave=1\nAutoTime=19:30\nRepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n")
    program = place.open_at("2026-03-09 10:00:00")
    report.check("aujourd'hui", says(program, "Prochaine sauvegarde : aujourd'hui à 19:30"),
                 program.main.labels())
    report.check("les exclusions", program.main.has("button", "Exclusions (1) de la sauvegarde 1"))
    program.show_tab("Restauration")
    report.check("ce qui la retient", says(program, "aujourd'hui à 19:30, pas sous cet onglet"))
    program.show_tab("Sauvegarde")
    program.command("Configurations et options")
    window = program.window("Configurations et options")
    boxes = window.find_all("checkbox")
    report.check("neuf options", len(boxes) == 9, boxes)
    report.check("chacune s'explique", all("Pour toutes les configurations." in box.description
                                           for box in boxes), [box.description for box in boxes])


def helping_hands(place, report):
    """F1 ouvre le manuel, une vieille sauvegarde se dit, le système sauvegarde sans la fenêtre"""
    write(f"{place.source}/a.txt", "a")
    place.write_line(more="LastSaveOk=01/02/2020 10:00:00\nAutoTime=08:05\n")
    tools = stand_ins(place, "xdg-open", "notify-send", "systemctl")
    calls = lambda: read(f"{place.root}/appels").decode() if os.path.exists(
        f"{place.root}/appels") else ""
    searched = {"PATH": f"{tools}:/usr/bin:/bin"}
    program = place.open(more=searched)
    report.check("la dernière bonne sauvegarde est vieille",
                 says(program, "sans erreur le sam. 1 février 2020"), program.main.labels())
    program.main.keys("F1")
    report.check("F1 ouvre le manuel", comes(lambda: re.search(
        r"xdg-open .*/aide/manuel\.html", calls()), 20), calls())
    program.main.find("button", "Planificateur de tâches").press()
    program.answer("Oui")
    program.answer("OK")
    report.check("le système sauvegardera", "restart coffrelune-General.timer" in calls(), calls())
    timer = f"{place.root}/config/systemd/user/coffrelune-General.timer"
    report.check("à l'heure de la fenêtre", "OnCalendar=*-*-* 08:05:00" in read(timer).decode())
    program.main.find("button", "Planificateur de tâches").press()
    program.answer("Oui")
    program.answer("OK")
    report.check("et ne le fait plus", not os.path.exists(timer))
    program.kill()
    program = place.open("/Auto", more=searched)
    program.process.wait(timeout=120)
    report.check("la fin est dite par le bureau", comes(
        lambda: "Sauvegarde terminée General : 1 fichier(s) copié(s)." in calls(), 20), calls())


def planned_names(place, report):
    """Renommer ou effacer une configuration dans la fenêtre emmène ou retire ce qui est planifié"""
    place.write_line(more="AutoTime=08:05\n[Bureau]\nSource0=\"C:\\Bureau\"\n")
    stand_ins(place, "systemctl")
    units = f"{place.root}/config/systemd/user"
    program = place.open(more={"PATH": f"{place.root}/outils:/usr/bin:/bin"})
    program.main.find("button", "Planificateur de tâches").press()
    program.answer("Oui")
    program.answer("OK")
    program.main.find("button", "Renommer la configuration").press()
    window = program.window("Renommer la configuration")
    window.find("field").set("maison")
    window.keys("Return")
    report.equal("c'est dit", program.answer("OK").words,
                 "La sauvegarde planifiée porte maintenant sur « Maison ».")
    report.equal("le timer a le nouveau nom", sorted(os.listdir(units)),
                 ["coffrelune-Maison.service", "coffrelune-Maison.timer"])
    service = read(f"{units}/coffrelune-Maison.service").decode()
    report.check("et le nomme", '"/Auto" "/Maison"' in service, service)
    program.main.find("choice", "Configuration").select(1)
    report.check("une autre configuration", says(program, "Bureau"))
    program.command("Configurations et options")
    window = program.window("Configurations et options")
    table = window.find("list")
    table.cell_at(table.entries().index("Maison"), 0).press()
    window.find("button", "Effacer").press()
    program.answer("OK")
    report.equal("c'est dit aussi", program.answer("OK").text,
                 "La planification de « Maison » est retirée.")
    report.equal("il n'en reste rien", os.listdir(units), [])


SCENARIOS = (reasons, silent_pictures, first_backup, spoken_backup, spoken_schedule, small_disk, helping_hands,
             planned_names)
