"""Backups, restores and comparisons, from the button to the last message."""

import os
import re
import time

from harness import differences, names_below, read, touch, write
from settings_scenarios import DATE, DURATION
from window_elements import wait_for
from window_harness import comes, matches, written

CLEAN_END = re.compile(rf"Sauvegarde terminée sans erreur\.\n\nDurée : {DURATION}")


def tree(place):
    write(f"{place.source}/Été.txt", "été")
    write(f"{place.source}/sous/b.txt", "b" * 1000)


def backup(place, report):
    """Une sauvegarde par le bouton : le message, les fichiers, le résumé, les clés"""
    tree(place)
    place.write_line()
    program = place.open()
    program.launch("Sauvegarde")
    message = program.message()
    report.equal("le titre du message", message.title, program.main.name)
    report.check("le message", CLEAN_END.fullmatch(message.text), message.text)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    report.check("la ligne est marquée",
                 comes(lambda: program.main.has("picture", "Ligne terminée")))
    message.press("OK")
    report.check("la marque s'en va",
                 comes(lambda: not program.main.has("picture", "Ligne terminée")))
    matches(place, report, "LastSave", DATE)
    matches(place, report, "LastDureeSave", DURATION)
    day = r"\w+\. \d+ \w+ \d{4} à \d\d:\d\d"
    report.check("le résumé le dit", comes(lambda: any(
        re.fullmatch(f"Dernière sauvegarde sans erreur le {day}", label)
        for label in program.main.labels())), program.main.labels())

    program.launch("Sauvegarde")
    report.equal("une deuxième n'a rien à copier", program.answer("OK").text,
                 "Rien à sauvegarder !")
    report.equal("le programme finit bien", program.close().status, 0)


def restore(place, report):
    """Une restauration : deux questions, chacune peut l'arrêter"""
    tree(place)
    place.write_line()
    program = place.open()
    program.launch("Sauvegarde")
    program.answer("OK")
    os.remove(f"{place.source}/sous/b.txt")
    program.show_tab("Restauration")
    report.check("la source est la copie",
                 comes(lambda: program.path("Source", 1).endswith("Disque de sauvegarde\\Données")),
                 program.path("Source", 1))

    program.launch("Restauration")
    first = program.answer("Annuler")
    report.equal("la première question", first.text,
                 "Confirmez-vous la restauration des fichiers ?")
    program.launch("Restauration")
    program.answer("OK")
    second = program.answer("Annuler")
    report.equal("la deuxième question", second.text,
                 "Vous êtes bien sûr de vous ?\n(Restauration des fichiers)")
    report.check("rien n'est restauré", not os.path.exists(f"{place.source}/sous/b.txt"))

    program.launch("Restauration")
    program.answer("OK")
    program.answer("OK")
    end = program.answer("OK")
    report.check("le message", re.fullmatch(
        rf"Restauration terminée sans erreur\.\n\nDurée : {DURATION}", end.text), end.text)
    report.equal("le fichier est revenu", differences(place.source, place.copy), [])
    matches(place, report, "LastRest", DATE)


def compare(place, report):
    """Une comparaison dans les deux sens : la liste, le résumé, et rien n'est copié"""
    tree(place)
    write(f"{place.copy}/à rendre.txt", "12345")
    place.write_line()
    program = place.open()
    program.show_tab("Comparaison")

    def compared(verb, count):
        program.launch("Comparaison")
        summary = f"{count} fichier(s) à copier"
        report.check(f"{verb} : le résumé", comes(lambda: any(
            label.startswith(summary) for label in program.main.labels())),
            program.main.labels())
        entries = lambda: program.main.find("list").entries()
        ends = (f"***** {verb} n°1", "***** Fin de la comparaison")
        report.check(f"{verb} : la liste", comes(
            lambda: (lines := entries()) and (lines[0], lines[-1]) == ends), entries())
        return "\n".join(entries())

    lines = compared("Sauvegarde", 2)
    report.check("les deux fichiers sont dans la liste", "Été.txt" in lines and "b.txt" in lines,
                 lines)
    program.main.find("button", "Comparaison Source -> Destination").press()
    report.check("le bouton dit l'autre sens", comes(
        lambda: program.main.has("button", "Comparaison Destination -> Source")))
    lines = compared("Restauration", 1)
    report.check("le fichier à rendre est dans la liste", "à rendre.txt" in lines, lines)
    write(f"{place.copy}/à rendre aussi.txt", "1")
    compared("Restauration", 2)
    program.main.find("button", "Comparaison Destination -> Source").press()
    # As many lines as before, other ones: none of the old may stay in the list.
    lines = compared("Sauvegarde", 2)
    report.check("la liste est celle du nouveau sens", "Été.txt" in lines and
                 "à rendre" not in lines, lines)
    report.equal("rien n'est copié", names_below(place.copy),
                 {"à rendre.txt".encode(), "à rendre aussi.txt".encode()})
    matches(place, report, "LastCompErr", DATE)
    written(place, report, "LastCompNbErr", "2")


def source_confirmed(place, report):
    """Une source sur un autre volume : les fichiers sont gardés, la raison et le bouton le disent"""
    tree(place)
    place.write_line("ContinueOnError=-1\nSynchroCopie=-1\n")
    program = place.open()
    program.launch("Sauvegarde")
    program.answer("OK")
    certificate = next(f"{place.copy}/{name}" for name in os.listdir(place.copy)
                       if name.endswith(".copie"))
    text = read(certificate).decode()
    write(certificate, re.sub("(?m)^volume=.*", "volume=uuid:un-autre-disque", text))
    write(f"{place.copy}/sous/ancien.txt", "la dernière copie")

    program.launch("Sauvegarde")
    program.window("Sauvegarde ...").find("button", "Fermer").press()
    program.answer("OK")
    report.check("le fichier est gardé", os.path.exists(f"{place.copy}/sous/ancien.txt"))
    report.check("la raison est dite", comes(lambda: any(
        "n'est pas sur le même volume" in label for label in program.main.labels())),
        program.main.labels())
    program.main.find("button", "Confirmer la source").press()
    report.check("le bouton s'en va", comes(
        lambda: not program.main.has("button", "Confirmer la source")))
    program.launch("Sauvegarde")
    program.answer("OK")
    report.check("le fichier est effacé", not os.path.exists(f"{place.copy}/sous/ancien.txt"))
    report.check("le nombre est dit", comes(lambda: any(
        "effacé de la copie 1 fichier(s)" in label for label in program.main.labels())),
        program.main.labels())
    report.equal("le programme finit bien", program.close().status, 0)


def errors(place, report):
    """Une erreur : la fenêtre attend « Fermer », le message compte, la liste des erreurs se lit"""
    tree(place)
    os.makedirs(f"{place.copy}/Été.txt/dans le chemin")
    place.write_line("ContinueOnError=-1\n")
    program = place.open()
    program.launch("Sauvegarde")
    window = program.window("Sauvegarde ...")
    close = window.find("button", "Fermer")
    journal = wait_for(lambda: (lines := window.find("list").entries()) and lines[-1].startswith(
        "Durée de la Sauvegarde") and lines, "la fin du journal")
    report.equal("le début du journal", journal[0], "Début de la Sauvegarde ...")
    report.check("sa fin", re.fullmatch(rf"Durée de la Sauvegarde \.\.\. : {DURATION}",
                                        journal[-1]), journal)
    report.equal("le compte", journal[-2], "Fin de la Sauvegarde ... 1 erreur(s).")
    report.check("la marque d'erreur", comes(
        lambda: window.has("picture", "Sauvegarde avec erreur") and
        window.has("picture", "Attention")))
    close.press()
    message = program.answer("OK")
    report.check("le message", message.text.startswith(
        "Sauvegarde terminée, nombre d'erreur(s): 1"), message.text)
    report.check("le reste est copié", os.path.exists(f"{place.copy}/sous/b.txt"))
    written(place, report, "LastSaveNbErr", "1")

    program.main.find("button", "Voir les erreurs").press()
    viewer = program.window("Liste des dernières erreurs de sauvegarde")
    report.check("la configuration", comes(
        lambda: "Configuration : General (Sauvegarde)" in viewer.labels()), viewer.labels())
    report.check("le compte", "Nombre d'erreur(s): 1" in viewer.labels(), viewer.labels())
    comes(lambda: len(viewer.find("list").entries()) == len(journal))
    lines = viewer.find("list").entries()
    report.equal("le fichier est le journal", read(f"{place.home}/S_General.err").decode("cp1252"),
                 "".join(line + "\r\n" for line in lines))
    report.equal("la liste est le journal", lines, journal)
    viewer.keys("Escape")
    program.gone("Liste des dernières erreurs de sauvegarde")


def replacement(place, report):
    """La question du remplacement : non, oui, tous, annuler"""
    title = "Confirmation du remplacement du fichier"
    names = [f"{letter}.txt" for letter in "abcdef"]
    for name in names:
        write(f"{place.source}/{name}", "nouveau")
        write(f"{place.copy}/{name}", "ancien")
        touch(f"{place.source}/{name}", 60)
    place.write_line()
    place.write_settings(place.read_settings().decode("cp1252").replace("\r\n", "\n").replace(
        "Confirmation=1", "Confirmation=0"))
    program = place.open()

    def answer(button):
        window = program.window(title)
        asked = wait_for(window.labels, "la question")[0]
        window.find("button", button).press()
        comes(lambda: not window.showing or window.labels()[:1] != [asked])
        return re.fullmatch(r"Ce dossier contient déjà un fichier appelé '(.*)'", asked).group(1)

    def copied():
        return [name for name in names if read(f"{place.copy}/{name}") == b"nouveau"]

    program.launch("Sauvegarde")
    kept, replaced = answer("Non"), answer("Oui")
    stopped = answer("Annuler")
    report.equal("l'annulation est dite", program.answer("OK").text.splitlines()[0],
                 "Sauvegarde interrompue !")
    report.equal("seul le oui est copié", copied(), [replaced])
    report.check("trois fichiers différents", len({kept, replaced, stopped}) == 3)
    program.launch("Sauvegarde")
    answer("Tous")
    program.answer("OK")
    report.equal("tous sont copiés", copied(), names)


def stop(place, report):
    """« Annuler » répond pendant une sauvegarde de 100 000 fichiers"""
    for i in range(100_000):
        write(f"{place.source}/d{i % 100}/f{i}.txt", "x")
    place.write_line()
    program = place.open()
    program.launch("Sauvegarde")
    window = program.window("Sauvegarde ...")
    button = window.find("button", "Annuler")
    report.check("elle copie", comes(lambda: os.path.exists(f"{place.copy}/d0") and
                                     any(name.endswith(".txt") for name in os.listdir(f"{place.copy}/d0")), 120))
    start = time.monotonic()
    button.press()
    question = program.message()
    taken = time.monotonic() - start
    print(f"    du clic à la question, outils compris : {taken * 1000:.0f} ms")
    report.equal("la question", (question.title, question.text),
                 ("Sauvegarde ...", "Voulez-vous interrompre la sauvegarde ?"))
    start = time.monotonic()
    question.press("Oui")
    end = program.message()
    print(f"    du oui au message, outils compris : {(time.monotonic() - start) * 1000:.0f} ms")
    report.equal("le message", end.text.strip(), "Sauvegarde interrompue !")
    count = sum(name.endswith(b".txt") for name in names_below(place.copy))
    report.check("elle s'est arrêtée au milieu", 0 < count < 100_000, count)
    end.press("OK")


def reader_launches(place, report):
    """Un lecteur d'écran presse le bouton : le programme lui répond encore pendant le message"""
    tree(place)
    place.write_line()
    program = place.open()
    program.main.find("button", "Lancer la Sauvegarde").activate()
    report.check("le fichier est copié", comes(lambda: os.path.exists(f"{place.copy}/Été.txt")))
    start = time.monotonic()
    text = program.message().text
    report.check("le message se lit", CLEAN_END.fullmatch(text), text)
    report.check("sans attendre", time.monotonic() - start < 20, time.monotonic() - start)


def link_without_address(place, report):
    """« Voir les erreurs » n'a pas d'adresse : ni bulle ni menu qui en montrent une"""
    place.write_line(more="LastSaveErr=12/11/2026 10:00:00\nLastSaveNbErr=1\n")
    program = place.open()
    button = program.main.find("button", "Choisir la source de la sauvegarde 1")
    link = program.main.find("button", "Voir les erreurs")
    program.bring_forward()
    # Tool tips and menus are windows that the bus does not show.
    count = lambda: len(place.screen.xdotool("search", "--onlyvisible", "--class",
                                             "coffrelune").split())
    place.screen.xdotool("mousemove", "--sync", *button.middle)
    report.check("le bouton d'une ligne a une bulle", comes(lambda: count() == 2), count())
    place.screen.xdotool("mousemove", "--sync", 1, 1)
    report.check("elle s'en va", comes(lambda: count() == 1), count())
    place.screen.xdotool("mousemove", "--sync", *link.middle)
    report.check("le lien n'en a pas", not comes(lambda: count() > 1, 3), count())
    link.press(button=3)
    report.check("ni de menu", not comes(lambda: count() > 1, 3), count())
    link.press()
    report.check("un clic ouvre la liste", program.window(
        "Liste des dernières erreurs de sauvegarde"))


SCENARIOS = (backup, restore, compare, source_confirmed, errors, replacement, stop,
             reader_launches, link_without_address)
