"""Backups, restores and comparisons, from the button to the last message."""

import os
import re
import time

from harness import differences, drive_path, names_below, read, touch, write
from settings_scenarios import DATE, DURATION
from window_elements import wait_for
from window_harness import comes, is_message, matches, written

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


def compare_in_languages(place, report):
    """Le résumé d'une comparaison groupe ses chiffres par des blancs dans toutes les langues"""
    write(f"{place.source}/grand.bin", "x" * 1234567)
    place.write_line()
    summary = "1 fichier(s) à copier soit 1,18 Mo (1 234 567 octets)"
    for language in ("fr_FR", "ps_AF"):
        place.speak(language)
        program = place.open()
        program.show_tab("Comparaison")
        program.launch("Comparaison")
        report.check(f"{language} : le résumé", comes(
            lambda seen=program: summary in seen.main.labels()), program.main.labels())
        program.main.find("button", "Voir les copies").press()
        window = program.window("Liste des dernières erreurs de sauvegarde")
        lines = window.find("list").entries()
        report.check(f"{language} : la liste", summary in lines, lines)
        window.keys("Escape")
        program.gone(window.name)
        report.equal(f"{language} : le programme finit bien", program.close().status, 0)


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
    window = program.window(title)
    folder, there, newer = wait_for(lambda: window.labels()[2:], "ce qu'on sait des fichiers")[:3]
    report.equal("le dossier", folder, f"Dossier : {drive_path(place.copy)}")
    day = r"(lun|mar|mer|jeu|ven|sam|dim)\. \d+ \w+ \d{4} à \d\d:\d\d:\d\d"
    report.check("le fichier en place", re.fullmatch(f"Fichier en place : 6 octets, {day}", there),
                 there)
    report.check("celui qui le remplace", re.fullmatch(
        f"Remplacé par : 7 octets, {day}, plus récent", newer), newer)
    report.check("la touche Entrée garde le fichier", comes(
        lambda: window.find("button", "Non").focused))
    behind = program.window("Sauvegarde ...").labels()
    report.check("derrière, ses répertoires", f"De: {drive_path(place.source)}\\" in behind, behind)
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


def search_in_lists(place, report):
    """Les longues listes : filtrer, copier, enregistrer, ouvrir le dossier, comprendre une erreur"""
    for name in ("Été/lettre.txt", "Été/plage.jpg", "facture.txt"):
        write(f"{place.source}/{name}", name)
    os.makedirs(f"{place.copy}/facture.txt/en travers")
    place.write_line(options="ContinueOnError=-1\n")
    program = place.open()
    program.show_tab("Comparaison")
    program.launch("Comparaison")
    table = program.main.find("list")
    comes(lambda: any("Fin de la comparaison" in line for line in table.entries()), 30)
    whole = table.entries()
    field = program.main.find("field", "Filtrer les lignes")
    field.set("ÉTÉ")
    report.check("deux lignes en parlent", comes(lambda: len(table.entries()) == 2), table.entries())
    field.set("plage")
    comes(lambda: len(table.entries()) == 1)
    line = table.entries()[0]
    table.cell_at(0, 0).press()
    folder = program.main.find("button", "Ouvrir le dossier de la ligne sélectionnée")
    report.check("son dossier s'ouvre", comes(lambda: folder.enabled))
    program.main.find("button", lambda name: name.startswith("Copier les lignes")).press()
    field.press(count=3)
    field.keys("ctrl+a", "ctrl+v")
    report.check("la ligne est copiée", comes(lambda: field.text.strip() == line), field.text)
    field.set("lettre")
    comes(lambda: len(table.entries()) == 1 and "lettre" in table.entries()[0])
    program.main.find("button", "Enregistrer les lignes affichées dans un fichier").press()
    program.choose(f"{place.root}/liste.txt")
    report.check("elle est enregistrée", comes(
        lambda: os.path.exists(f"{place.root}/liste.txt") and
        read(f"{place.root}/liste.txt").decode("utf-8-sig") == table.entries()[0] + "\r\n"))
    field.set("")
    report.check("tout revient", comes(lambda: table.entries() == whole), table.entries())

    program.show_tab("Sauvegarde")
    program.launch("Sauvegarde")
    program.window("Sauvegarde ...").find("button", "Fermer").press()
    program.answer("OK")
    program.main.find("button", "Voir les erreurs").press()
    viewer = program.window("Liste des dernières erreurs de sauvegarde")
    table = viewer.find("list")
    comes(lambda: len(table.entries()) > 2)
    viewer.find("field", "Filtrer les lignes").set("erreur: ")
    comes(lambda: len(table.entries()) == 1)
    report.check("la liste reste lettre pour lettre", re.fullmatch(
        r"Erreur: \d+ - Fichier: .*facture\.txt", table.entries()[0]), table.entries())
    table.cell_at(0, 0).press()
    report.check("l'erreur est expliquée", comes(lambda: any(
        label.startswith("Cette erreur signifie : ") for label in viewer.labels())),
        viewer.labels())
    viewer.keys("Escape")
    program.gone(viewer.name)


def long_paths(place, report):
    """« De: » et « Vers: » gardent la fin du chemin, et disent tout à qui écoute"""
    deep = "/".join(f"répertoire assez long {i}" for i in range(8)) + "/le dernier"
    write(f"{place.source}/{deep}/a.txt", "nouveau")
    write(f"{place.copy}/{deep}/a.txt", "ancien")
    touch(f"{place.source}/{deep}/a.txt", 60)
    place.write_line()
    place.write_settings(place.read_settings().decode("cp1252").replace("\r\n", "\n").replace(
        "Confirmation=1", "Confirmation=0"))
    program = place.open()
    program.launch("Sauvegarde")
    program.window("Confirmation du remplacement du fichier")
    behind = program.window("Sauvegarde ...")
    for start in ("De: ", "Vers: "):
        label = behind.find("label", lambda name, begin=start: name.startswith(begin))
        shown = label.text
        report.check(f"{start}tout pour qui écoute", label.name.endswith("7\\le dernier\\") and
                     "..." not in label.name, label.name)
        report.check(f"{start}la fin reste", shown.startswith(start) and "..." in shown and
                     shown.endswith("\\le dernier\\"), shown)
    program.window("Confirmation du remplacement du fichier").keys("Escape")
    program.answer("OK")


def tabs_by_keys(place, report):
    """Les lettres des onglets répondent d'où que l'on soit"""
    place.write_line()
    program = place.open()
    program.main.find("field", lambda name: "aramètre" in name).press()
    for key, name in (("r", "Restauration"), ("c", "Comparaison"), ("s", "Sauvegarde")):
        program.main.keys(f"alt+{key}")
        report.check(name, comes(lambda tab=name: program.main.find("tab", tab).selected))


def careful_defaults(place, report):
    """Entrée refuse ce qui efface, remplace ou remet à zéro"""
    write(f"{place.source}/a.txt", "nouveau")
    write(f"{place.source}/Tmp/b.txt", "b")
    place.write_line(more="RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\nProgToRun=C:\\bin\\true\n")
    before = place.read_settings()
    program = place.open()

    def refused(what, text):
        message = program.message()
        message.element.keys("Return")
        program.wait(lambda: not message.element.showing, f"{what} se ferme")
        report.check(what, text in message.words, message.words)

    program.label("Source", 1).press()
    program.command("Remise à zéro de la ligne")
    refused("remise à zéro", "Remise à zéro de la sauvegarde 1 ?")
    program.exclusions(1).press()
    window = program.window("Sous-répertoires à exclure")
    window.find("button", "Supprimer Tout").press()
    refused("exclusions", "Voulez-vous supprimer la liste des répertoires exclus ?")
    report.equal("la liste reste", window.find("list").entries(), ["\\Tmp"])
    window.keys("Escape")
    program.gone(window.name)
    program.show_tab("Restauration")
    program.launch("Restauration")
    refused("restauration", "Confirmez-vous la restauration des fichiers ?")
    report.check("rien n'est restauré", not any(
        window.name == "Restauration ..." for window in program.windows))
    report.equal("rien n'a changé", place.read_settings(), before)


def quick_end(place, report):
    """À la fin, rien ne dit plus que le temps restant se calcule ; le fichier copié était nommé"""
    write(f"{place.source}/a.txt", "a")
    write(f"{place.copy}/b.txt/en travers", "x")
    write(f"{place.source}/b.txt", "b")
    place.write_line(options="ContinueOnError=-1\n")
    program = place.open()
    program.launch("Sauvegarde")
    window = program.window("Sauvegarde ...")
    window.find("button", "Fermer")
    labels = window.labels()
    report.check("plus de calcul en cours", not any("Calcul" in label for label in labels), labels)
    report.check("le dernier fichier est nommé", any(
        label.startswith("Fichier: ") for label in labels), labels)
    window.find("button", "Fermer").press()
    program.answer("OK")


def stop(place, report):
    """« Annuler » répond pendant une sauvegarde de 100 000 fichiers"""
    for i in range(100_000):
        write(f"{place.source}/d{i % 100}/f{i}.txt", "x")
    place.write_line()
    program = place.open()
    program.launch("Sauvegarde")
    window = program.window("Sauvegarde ...")
    button = window.find("button", "Annuler")
    # The copies get their names when a busy disk has taken them, and the end may be near by then.
    report.check("elle copie", comes(lambda: any(re.match(r"\d+% copiés", text)
                                                 for text in window.labels()), 120))
    start = time.monotonic()
    button.press()
    question = program.message()
    taken = time.monotonic() - start
    print(f"    du clic à la question, outils compris : {taken * 1000:.0f} ms")
    report.equal("la question", (question.title, question.text),
                 ("Sauvegarde ...", "Voulez-vous interrompre la sauvegarde ?"))
    start = time.monotonic()
    question.press("Oui")
    report.check("la demande est dite", comes(lambda: any(
        "Arrêt demandé…" in other.labels() for other in program.windows) or
        any(is_message(other) for other in program.windows)))
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


SCENARIOS = (backup, restore, compare, compare_in_languages, source_confirmed, errors, replacement,
             careful_defaults, quick_end, search_in_lists,
             long_paths, tabs_by_keys, stop, reader_launches, link_without_address)
