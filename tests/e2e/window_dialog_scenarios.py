"""Exclusions, configurations, options, description, the About box."""

import os

from harness import drive_path, names_below, write
from window_elements import wait_for
from window_harness import comes, written

EXCLUDED = "Liste des répertoires exclus de la sauvegarde"
CONFIGURATIONS = "Liste des configurations de sauvegarde"


def open_exclusions(program, number=1):
    program.exclusions(number).press()
    return program.window("Sous-répertoires à exclure")


def exclusions(place, report):
    """Les exclusions d'une ligne : ajouter, refuser, enlever, et la sauvegarde en tient compte"""
    for name in ("a.txt", "Tmp/x.txt", "Docs/y.txt", "Vieux/z.txt"):
        write(f"{place.source}/{name}", name)
    place.write_line()
    program = place.open()
    window = open_exclusions(program)
    report.check("tout est sauvegardé d'abord", window.find(
        "option", "Sauvegarder tous les sous-répertoires").checked)
    remove, remove_all = (window.find("button", name) for name in ("Supprimer", "Supprimer Tout"))
    report.check("rien à supprimer", not remove.enabled and not remove_all.enabled)

    def add(directory):
        window.find("button", "Ajouter").press()
        program.choose(directory)

    def entries():
        return window.find("list").entries()

    add(f"{place.source}/Tmp")
    report.check("le répertoire est dans la liste", comes(lambda: entries() == ["\\Tmp"]), entries())
    report.check("l'exclusion est choisie", window.find(
        "option", "Exclure de la sauvegarde les sous-répertoires suivants:").checked)
    add(f"{place.source}/Tmp")
    report.equal("deux fois", program.answer("OK").text, "Ce répertoire est déjà dans la liste !")
    add(place.destination)
    report.equal("ailleurs", program.answer("OK").words, "Le répertoire à exclure doit se trouver "
                 "dans le disque ou répertoire à sauvegarder !")
    add(f"{place.source}/Vieux")
    add(f"{place.source}/Docs")
    comes(lambda: len(entries()) == 3)
    window.find("list").cell_at(2, 0).press()
    wait_for(lambda: remove.enabled, "« Supprimer » se laisse presser")
    remove.press()
    report.check("le dernier est enlevé", comes(lambda: entries() == ["\\Tmp", "\\Vieux"]),
                 entries())
    report.equal("rien n'est encore écrit", place.key("RepExclu0_Mode"), "")
    window.find("button", "OK").press()
    program.gone(window.name)
    written(place, report, "RepExclu0_Mode", "2")
    written(place, report, "RepExclu0_Rep1", "\\Tmp")
    written(place, report, "RepExclu0_Rep2", "\\Vieux")
    program.launch("Sauvegarde")
    program.answer("OK")
    report.equal("la sauvegarde s'y tient", names_below(place.copy),
                 {b"a.txt", b"Docs", b"Docs/y.txt"})

    window = open_exclusions(program)
    window.find("button", "Supprimer Tout").press()
    report.equal("la question", program.answer("Annuler").text,
                 "Voulez-vous supprimer la liste des répertoires exclus ?")
    window.find("button", "Supprimer Tout").press()
    program.answer("OK")
    report.check("la liste est vide", comes(lambda: window.find("list").entries() == []))
    window.find("button", "Annuler").press()
    program.gone(window.name)
    report.equal("annuler garde tout", place.key("RepExclu0_Rep2"), "\\Vieux")


def exclusions_need_a_source(place, report):
    """Sans source, ou sans sous-répertoire, un message et rien d'autre"""
    place.write_line()
    program = place.open()
    program.exclusions(2).press()
    report.equal("sans source", program.answer("OK").text,
                 "Sélectionnez d'abord un disque ou répertoire à sauvegarder !")
    open_exclusions(program).find("button", "Ajouter").press()
    report.equal("sans sous-répertoire", program.answer("OK").text,
                 "Pas de sous-répertoire dans le disque/répertoire à sauvegarder !")


def open_configurations(program):
    program.command("Configurations et options")
    return program.window("Configurations et options")


def pick(window, text):
    """Picks an entry of the list of configurations."""
    table = window.find("list")
    table.cell_at(wait_for(lambda: table.entries(), "des configurations").index(text), 0).press()


def configurations(place, report):
    """Ajouter une configuration, la choisir, la remplir, revenir, l'effacer"""
    place.write_line()
    program = place.open()
    window = open_configurations(program)
    window.find("button", "Ajouter").press()
    form = program.window("Nouvelle configuration")
    form.find("field").set("travail")
    form.find("button", "OK").press()
    program.gone(form.name)
    report.check("elle est dans la liste", comes(
        lambda: window.find("list").entries() == ["General", "Travail"]),
        window.find("list").entries())
    window.find("button", "OK").press()
    program.gone(window.name)
    report.check("la fenêtre la montre", comes(lambda: "Travail" in program.main.labels()))
    report.equal("ses lignes sont vides", program.path("Source", 1), "")
    program.type_path("Source", 1, place.source)
    written(place, report, "Source0", drive_path(place.source), "Travail")
    report.equal("l'autre garde la sienne", place.key("Source0"), drive_path(place.source))

    window = open_configurations(program)
    pick(window, "Travail")
    window.find("button", "Effacer").press()
    report.equal("la question", program.answer("OK").text,
                 "Voulez-vous effacer cette configuration ?")
    report.equal("elle est en cours", program.answer("OK").text,
                 "Impossible d'effacer la configuration en cours !")
    pick(window, "General")
    window.find("button", "OK").press()
    program.gone(window.name)
    report.check("retour à la première", comes(
        lambda: program.path("Source", 1) == drive_path(place.source)))

    write(f"{place.home}/S_Travail.err", "ancien")
    window = open_configurations(program)
    pick(window, "Travail")
    window.find("button", "Effacer").press()
    program.answer("OK")
    report.check("elle n'est plus dans la liste", comes(
        lambda: window.find("list").entries() == ["General"]))
    report.check("ni dans le fichier", b"[Travail]" not in place.read_settings())
    report.check("sa liste d'erreurs non plus", not os.path.exists(f"{place.home}/S_Travail.err"))
    window.find("button", "Annuler").press()
    report.equal("le programme finit bien", program.close().status, 0)
    report.equal("la configuration est retenue", place.key("Config", "Position"), "General")


def beside_the_name(place, report):
    """À côté du nom : choisir une autre configuration, la renommer, la dupliquer, sans les options"""
    place.write_line(more="""LastSave=10/11/2026 20:12:01
[Bureau]
Description="Le lundi"
Source0="C:\\Bureau"
""")
    program = place.open()
    choice = program.main.find("choice", "Configuration")

    def shown(name):
        return comes(lambda: name in program.main.labels())

    def named(command, name):
        """Gives a name in the window that the button opens: the one that it proposed."""
        program.main.find("button", f"{command} la configuration").press()
        window = program.window(f"{command} la configuration")
        before = window.find("field").text
        window.find("field").set(name)
        window.keys("Return")
        return before

    def refused(name):
        named("Renommer", name)
        return program.answer("OK").text

    choice.select(1)
    report.check("l'autre se montre", shown("Bureau (Le lundi)"), program.main.labels())
    report.check("avec ses lignes", comes(lambda: program.path("Source", 1) == "C:\\Bureau"))
    choice.select(0)
    report.check("retour", shown("General"))

    report.equal("son nom est proposé", named("Renommer", "maison"), "General")
    report.check("le nouveau nom", shown("Maison"))
    report.equal("les résultats suivent", place.key("LastSave", "Maison"), "10/11/2026 20:12:01")
    report.check("l'ancien n'est plus là", b"[General]" not in place.read_settings())
    report.equal("deux fois le même", refused("BUREAU"), "Cette configuration existe déjà !")
    report.equal("le nom réservé", refused("position"), "Impossible, nom réservé !")

    report.equal("un nom libre est proposé", named("Dupliquer", "chalet"), "Maison 2")
    report.check("la nouvelle se montre", shown("Chalet"), program.main.labels())
    report.equal("avec les mêmes lignes", place.key("Source0", "Chalet"),
                 drive_path(place.source))
    report.equal("elle n'a jamais servi", place.key("LastSave", "Chalet"), "")
    report.equal("le programme finit bien", program.close().status, 0)
    report.equal("elle est retenue", place.key("Config", "Position"), "Chalet")


def odd_mode(place, report):
    """Un mode d'exclusion inconnu ne choisit aucune des trois possibilités"""
    write(f"{place.source}/Tmp/x.txt", "x")
    place.write_line(more="RepExclu0_Mode=7\n")
    program = place.open()
    window = open_exclusions(program)
    options = window.find_all("option")
    report.equal("aucune", [option.name for option in options if option.checked], [])
    options[1].press()
    report.check("celle que l'on choisit", comes(lambda: options[1].checked))
    window.find("button", "OK").press()
    program.gone(window.name)
    written(place, report, "RepExclu0_Mode", "1")


def sound_tests(place, report):
    """Les deux essais de sons ont chacun leur nom, qui se lit en bulle"""
    place.write_line()
    program = place.open()
    window = open_configurations(program)
    for name in ("Test du signal sonore (Réussi)", "Test du signal sonore (Erreur)"):
        button = window.find("button", name)
        report.equal(f"« {name} » en bulle", button.description, name)


def language_of_choosers(place, report):
    """Les fenêtres du système parlent la langue de l'utilisateur"""
    place.write_line()
    place.speak("fr_FR")
    program = place.open()
    program.main.find("button", "Choisir la destination de la sauvegarde 1").press()
    window = program.window("Sélectionnez le répertoire destination:")
    names = [button.name for button in window.find_all("button")]
    report.check("Annuler et Ouvrir", {"Annuler", "Ouvrir"} <= set(names), names)
    window.keys("Escape")
    program.gone(window.name)


def utf8_settings(place, report):
    """Des réglages écrits par un éditeur, en UTF-8 sans marque, sont lus et restent ainsi"""
    write(f"{place.source}/a.txt", "a")
    text = place.line(more='Description="Été à la mer"\n').replace("[General]", "[Général]")
    write(place.settings, text)
    program = place.open("Général")
    report.check("la description se lit", comes(
        lambda: "Général (Été à la mer)" in program.main.labels()), program.main.labels())
    program.command("Description de la configuration")
    window = program.window("Configuration : Général")
    window.find("field").set("Жизнь")
    window.find("button", "OK").press()
    program.gone(window.name)
    report.equal("le programme finit bien", program.close().status, 0)
    kept = place.read_settings().decode("utf-8")
    report.check("le fichier reste en UTF-8", 'Description="Жизнь"' in kept and "[Général]" in kept,
                 kept)


def nothing_chosen_yet(place, report):
    """Une configuration sans section : rien n'est choisi dans la liste tant que personne ne choisit"""
    place.write_line()
    before = place.read_settings()
    program = place.open("Nouvelle")
    window = open_configurations(program)
    table = window.find("list")

    def chosen():
        rows = range(len(table.entries()))
        return [row for row in rows if table.cell_at(row, 0).selected]

    report.check("la liste prend le clavier", table.focus() and comes(lambda: table.focused))
    report.check("rien n'y est choisi", comes(lambda: not chosen()) and not chosen(), chosen())
    window.find("button", "Effacer").press()
    window.find("button", "OK").press()
    program.gone(window.name)
    report.check("rien n'a été effacé", place.read_settings().startswith(before.rstrip()))
    report.check("la configuration reste la même", "Nouvelle" in program.main.labels())

    window = open_configurations(program)
    table = window.find("list")
    table.focus()
    comes(lambda: table.focused)
    window.keys("Down")
    report.check("la flèche choisit la première", comes(lambda: chosen() == [0]), chosen())
    window.find("button", "OK").press()
    program.gone(window.name)
    report.check("elle est prise", comes(lambda: "General" in program.main.labels()))


def taken_without_section(place, report):
    """Une configuration ajoutée et prise est choisie dans la liste quand la fenêtre se rouvre"""
    place.write_line()
    program = place.open()
    window = open_configurations(program)
    window.find("button", "Ajouter").press()
    form = program.window("Nouvelle configuration")
    form.find("field").set("travail")
    form.find("button", "OK").press()
    program.gone(form.name)
    window.find("button", "OK").press()
    program.gone(window.name)
    comes(lambda: "Travail" in program.main.labels())
    window = open_configurations(program)
    table = window.find("list")
    report.equal("elle est dans la liste", table.entries(), ["General", "Travail"])
    report.check("elle est choisie", table.cell_at(1, 0).selected)
    window.find("button", "Effacer").press()
    program.answer("OK")
    report.equal("elle est en cours", program.answer("OK").text,
                 "Impossible d'effacer la configuration en cours !")
    window.find("button", "OK").press()
    program.gone(window.name)
    report.check("elle reste celle de la fenêtre", "Travail" in program.main.labels())
    report.equal("l'autre est intacte", place.key("Source0"), drive_path(place.source))


def refused_names(place, report):
    """Un nom réservé, ou déjà pris, est refusé"""
    place.write_line()
    program = place.open()
    window = open_configurations(program)
    for name, refusal in (("position", "Impossible, nom réservé !"),
                          ("general", "Cette configuration existe déjà !")):
        window.find("button", "Ajouter").press()
        form = program.window("Nouvelle configuration")
        form.find("field").set(name)
        form.find("button", "OK").press()
        report.equal(f"« {name} »", program.answer("OK").text, refusal)
    report.equal("la liste n'a pas changé", window.find("list").entries(), ["General"])


def options(place, report):
    """Les options et le nombre de lignes : OK les écrit, Annuler non"""
    place.write_line()
    program = place.open()
    window = open_configurations(program)
    for caption in ("Copie seulement les fichiers plus récents:",
                    "Continuer la copie en cas d'erreur:",
                    "Efface les fichiers excédentaires sur la destination:"):
        window.find("checkbox", caption).press()
    window.find("button", "Annuler").press()
    program.gone(window.name)
    report.equal("annuler n'écrit rien", place.key("RecentSeul", "Position"), "")

    window = open_configurations(program)
    report.check("les cases sont comme avant", not window.find(
        "checkbox", "Continuer la copie en cas d'erreur:").checked)
    window.find("checkbox", "Continuer la copie en cas d'erreur:").press()
    window.find("checkbox", "Synchronise la date des fichiers pendant la copie:").press()
    count = window.find("choice", "Nombre maximum de répertoires:")
    count.select(count.children[0].position_of("8"))
    window.find("button", "OK").press()
    program.gone(window.name)
    written(place, report, "ContinueOnError", "-1", "Position")
    written(place, report, "SynchroDate", "-1", "Position")
    written(place, report, "RepertMax", "8", "Position")
    report.check("huit lignes", comes(lambda: program.main.has("label", "8.")))
    report.equal("la première est toujours là", program.path("Source", 1),
                 drive_path(place.source))


def description(place, report):
    """La description se lit à côté du nom, et s'efface"""
    place.write_line()
    program = place.open()
    for text, shown in (("Photos de l'été", "General (Photos de l'été)"), ("", "General")):
        program.command("Description de la configuration")
        window = program.window("Configuration : General")
        window.find("field").set(text)
        window.find("button", "OK").press()
        program.gone(window.name)
        written(place, report, "Description", text)
        report.check(f"« {shown} » se lit", comes(
            lambda expected=shown: expected in program.main.labels()), program.main.labels())


def about(place, report):
    """La boîte « À propos » : la version, Échap, et le lancement automatique"""
    place.write_line()
    program = place.open()
    entry = f"{place.root}/config/autostart/Coffrelune.desktop"
    os.makedirs(os.path.dirname(entry))
    program.command("À propos de Coffrelune")
    window = program.window("À propos de Coffrelune")
    report.check("la version", any(label.startswith("Version ") for label in window.labels()))
    window.find("checkbox", "Lancement automatique au démarrage de Windows").press()
    window.keys("Escape")
    program.gone("À propos de Coffrelune")
    report.check("le lancement est inscrit", comes(lambda: os.path.exists(entry)))
    program.command("À propos de Coffrelune")
    window = program.window("À propos de Coffrelune")
    box = window.find("checkbox", "Lancement automatique au démarrage de Windows")
    report.check("la case le montre", box.checked)
    box.press()
    window.find("button", "OK").press()
    program.gone(window.name)
    report.check("il est retiré", comes(lambda: not os.path.exists(entry)))


SCENARIOS = (exclusions, exclusions_need_a_source, configurations, beside_the_name, odd_mode,
             sound_tests, language_of_choosers, utf8_settings, nothing_chosen_yet,
             taken_without_section, refused_names, options,
             description, about)
