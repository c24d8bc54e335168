"""Replacing what is already there: the two switches, the question, and nobody to ask."""

import json
import signal

from harness import names_below, read, touch, write

QUESTION = "Ce dossier contient déjà un fichier appelé 'a.txt'"


def plant_changed(place, names=("a.txt",)):
    """Files that are older and different on the destination, and one that is missing there."""
    for name in names:
        write(f"{place.source}/{name}", f"nouveau {name}")
        write(f"{place.copy}/{name}", "ancien")
        touch(f"{place.source}/{name}", 60)
    write(f"{place.source}/inédit.txt", "inédit")


def keep(place, report):
    """--conserver garde les fichiers changés de la destination"""
    plant_changed(place)
    outcome = place.backup("--conserver", "--json")
    report.equal("état 0", outcome.status, 0)
    report.equal("le fichier existant est gardé", read(f"{place.copy}/a.txt"), b"ancien")
    report.equal("le fichier absent est copié", read(f"{place.copy}/inédit.txt"), "inédit".encode())
    report.equal("un fichier copié", (outcome.json() or {}).get("files"), 1)


def replace(place, report):
    """--ecraser remplace sans question"""
    plant_changed(place)
    outcome = place.backup("--ecraser")
    report.equal("état 0", outcome.status, 0)
    report.check("aucune question", QUESTION not in outcome.all, outcome)
    report.equal("le fichier est remplacé", read(f"{place.copy}/a.txt"), b"nouveau a.txt")


def nobody_to_ask(place, report):
    """Sans terminal et sans réponse donnée d'avance, rien ne commence"""
    plant_changed(place)
    outcome = place.backup()
    report.equal("état 3", outcome.status, 3)
    report.check("le message nomme les deux options",
                 "--ecraser" in outcome.err and "--conserver" in outcome.err, outcome)
    report.equal("rien n'a changé", (names_below(place.copy), read(f"{place.copy}/a.txt")),
                 ({b"a.txt"}, b"ancien"))


def both_switches(place, report):
    """--ecraser et --conserver ensemble sont un mauvais usage"""
    plant_changed(place)
    outcome = place.backup("--ecraser", "--conserver")
    report.equal("état 2", outcome.status, 2)
    report.equal("rien n'a changé", read(f"{place.copy}/a.txt"), b"ancien")


def answers(place, report, typed, names=("a.txt",), question=QUESTION):
    plant_changed(place, names)
    outcome = place.converse([(question, typed)], *place.backup_arguments())
    report.check("la question est posée", question in outcome.out, outcome)
    return outcome


def answer_yes(place, report):
    """Sur un terminal, « o » remplace"""
    outcome = answers(place, report, "o\n")
    report.equal("état 0", outcome.status, 0)
    report.equal("remplacé", read(f"{place.copy}/a.txt"), b"nouveau a.txt")


def answer_no(place, report):
    """Sur un terminal, « n » garde le fichier et continue"""
    outcome = answers(place, report, "n\n")
    report.equal("état 0", outcome.status, 0)
    report.equal("gardé", read(f"{place.copy}/a.txt"), b"ancien")
    report.equal("la suite est copiée", read(f"{place.copy}/inédit.txt"), "inédit".encode())


def answer_all(place, report):
    """Sur un terminal, « t » remplace ce fichier et les suivants"""
    names = ("a.txt", "b.txt", "c.txt")
    outcome = answers(place, report, "t\n", names, "Ce dossier contient déjà un fichier appelé '")
    report.equal("état 0", outcome.status, 0)
    report.equal("tous remplacés", [read(f"{place.copy}/{name}") for name in names],
                 [f"nouveau {name}".encode() for name in names])
    report.equal("une seule question", outcome.out.count("Ce dossier contient déjà"), 1)


def answer_cancel(place, report):
    """Sur un terminal, « a » interrompt la sauvegarde"""
    outcome = answers(place, report, "a\n")
    report.equal("état 3", outcome.status, 3)
    report.equal("gardé", read(f"{place.copy}/a.txt"), b"ancien")


def answer_is_repeated(place, report):
    """Une réponse inconnue fait reposer la question"""
    plant_changed(place)
    outcome = place.converse([(QUESTION, "peut-être\n"), ("peut-être", ""), ("nnuler", "n\n")],
                             *place.backup_arguments())
    report.equal("état 0", outcome.status, 0)
    report.equal("gardé", read(f"{place.copy}/a.txt"), b"ancien")


def end_of_input(place, report):
    """La fin de l'entrée à la question interrompt la sauvegarde"""
    outcome = answers(place, report, "\x04")
    report.equal("état 3", outcome.status, 3)
    report.equal("gardé", read(f"{place.copy}/a.txt"), b"ancien")


def interrupted_question(place, report):
    """Ctrl-C à la question interrompt la sauvegarde"""
    outcome = answers(place, report, signal.SIGINT)
    report.equal("état 3", outcome.status, 3)
    report.equal("gardé", read(f"{place.copy}/a.txt"), b"ancien")


def json_beside_a_terminal(place, report):
    """Avec --json la question et la progression restent hors de la sortie standard"""
    plant_changed(place)
    path = f"{place.root}/résultat.json"
    with open(path, "wb") as result:
        outcome = place.converse([(QUESTION, "o\n")], *place.backup_arguments("--json"),
                                 result=result)
    report.equal("état 0", outcome.status, 0)
    report.equal("deux fichiers", json.loads(read(path)).get("files"), 2)


def progress_on_a_terminal(place, report):
    """Sur un terminal, la progression et la fin sont montrées"""
    for number in range(5000):
        write(f"{place.source}/f{number}", "x" * 1000)
    outcome = place.converse([], *place.backup_arguments("--ecraser"))
    report.equal("état 0", outcome.status, 0)
    report.check("une phase est montrée", "Analyse de la copie..." in outcome.out or
                 "Copie de l'arborescence..." in outcome.out or "% copiés (" in outcome.out, outcome)
    report.check("la fin aussi", "Sauvegarde terminée sans erreur." in outcome.out, outcome)


SCENARIOS = (keep, replace, nobody_to_ask, both_switches, answer_yes, answer_no, answer_all,
             answer_cancel, answer_is_repeated, end_of_input, interrupted_question,
             json_beside_a_terminal, progress_on_a_terminal)
