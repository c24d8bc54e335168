"""Comparisons, excess files and restores, one after the other on the same files."""

import os
import re
import shutil

from drive_scenarios import letter_of, volume
from harness import differences, drive_path, names_below, read, touch, write
from settings_scenarios import DATE, DURATION, section


def write_lines(place, lines, options=""):
    """Settings of the configuration General: pairs of source and destination, and more keys."""
    text = f"[Position]\nContinueOnError=-1\n{options}[General]\nModifie=1\nConfirmation=1\n"
    for index, (source, destination) in enumerate(lines):
        text += f'Source{index}="{source}"\nDestination{index}="{destination}"\nSelect{index}=1\n'
    place.write_settings(text)


def listed(outcome):
    """The lines of a printed comparison."""
    return outcome.out.splitlines()


def whole_cycle(place, report):
    """Sauvegarde, comparaisons, fichiers excédentaires, restauration, pas à pas"""
    copy = drive_path(place.copy)
    write(f"{place.source}/même.txt", "inchangé")
    write(f"{place.source}/plus récent.txt", "1234")
    write(f"{place.source}/recule.txt", "12")
    write(f"{place.source}/sous/disparaît.txt", "123456")
    write_lines(place, [(drive_path(place.source), drive_path(place.destination))],
                "SynchroCopie=-1\n")

    backup = place.console("sauvegarder")
    report.equal("première sauvegarde : état 0", backup.status, 0)
    keys = section(place.read_settings(), "General")
    report.check("LastSave est écrit", re.fullmatch(DATE, keys.get("LastSave", "")), keys)
    nothing = place.console("comparer")
    report.equal("rien à comparer : état 0", nothing.status, 0)
    report.equal("rien à comparer : la liste", listed(nothing),
                 ["***** Sauvegarde n°1", "***** Fin de la comparaison",
                  "Aucun fichier à sauvegarder"])
    keys = section(place.read_settings(), "General")
    report.check("LastComp est écrit", re.fullmatch(DATE, keys.get("LastComp", "")), keys)
    report.check("LastCompErr ne l'est pas", "LastCompErr" not in keys, keys)

    write(f"{place.source}/plus récent.txt", "12345678")
    touch(f"{place.source}/plus récent.txt", 60)
    touch(f"{place.source}/recule.txt", -3600)
    write(f"{place.source}/nouveau.txt", "abc")
    write(f"{place.source}/vide.txt", "")
    os.remove(f"{place.source}/sous/disparaît.txt")

    forward = place.console("comparer")
    report.equal("comparaison : état 1", forward.status, 1)
    report.equal("comparaison : la liste", sorted(listed(forward)[1:-2]), sorted([
        rf"{copy}\plus récent.txt est plus ancien",
        rf"{copy}\recule.txt est plus récent",
        rf"{copy}\nouveau.txt n'existe pas",
        rf"{copy}\vide.txt n'existe pas"]))
    report.equal("comparaison : le total", listed(forward)[-1],
                 "4 fichier(s) à copier soit 13 octets (13 octets)")
    keys = section(place.read_settings(), "General")
    report.equal("LastCompNbErr compte les copies", keys.get("LastCompNbErr"), "4")
    report.check("LastDureeCompErr est écrit",
                 re.fullmatch(DURATION, keys.get("LastDureeCompErr", "")), keys)
    kept_list = read(f"{place.home}/C_General.err").decode("cp1252")
    report.check("la liste de la comparaison est gardée",
                 kept_list.startswith("Début de la Comparaison ...\r\n***** Sauvegarde n°1\r\n")
                 and "4 fichier(s) à copier soit 13 octets (13 octets)\r\n" in kept_list,
                 kept_list)

    backward = place.console("comparer", "--inverse", "--json")
    result = backward.json() or {}
    origin = drive_path(place.source)
    report.equal("comparaison inverse : état 1", backward.status, 1)
    report.equal("comparaison inverse : la liste", sorted(result.get("list", [])), sorted([
        "***** Restauration n°1",
        rf"{origin}\plus récent.txt est plus récent",
        rf"{origin}\recule.txt est plus ancien",
        rf"{origin}\sous\disparaît.txt n'existe pas",
        "***** Fin de la comparaison"]))
    report.equal("comparaison inverse : le total", result.get("summary"),
                 "3 fichier(s) à copier soit 12 octets (12 octets)")
    report.equal("comparaison inverse : l'issue", result.get("outcome"), "differences")
    report.check("rien n'a été copié", not os.path.exists(f"{place.source}/sous/disparaît.txt"))

    synchronized = place.console("sauvegarder", "--json")
    result = synchronized.json() or {}
    report.equal("SynchroCopie : état 0", synchronized.status, 0)
    report.equal("SynchroCopie : fichiers effacés", result.get("deleted"), 1)
    report.equal("SynchroCopie : diff ne trouve rien", differences(place.source, place.copy), [])
    report.check("SynchroCopie : le répertoire reste", os.path.isdir(f"{place.copy}/sous"))

    before = names_below(place.source)
    shutil.rmtree(place.source)
    os.mkdir(place.source)
    refused = place.console("restaurer")
    report.equal("sans --confirmer : état 3", refused.status, 3)
    report.check("sans --confirmer : le message", "--confirmer" in refused.err, refused)
    report.equal("sans --confirmer : rien n'est restauré", os.listdir(place.source), [])
    restored = place.console("restaurer", "--confirmer")
    report.equal("restauration : état 0", restored.status, 0)
    report.check("restauration : le message", "Restauration terminée sans erreur." in restored.out,
                 restored)
    report.equal("restauration : les mêmes noms", names_below(place.source), before)
    report.equal("restauration : diff ne trouve rien", differences(place.source, place.copy), [])
    keys = section(place.read_settings(), "General")
    report.check("LastRest est écrit", re.fullmatch(DATE, keys.get("LastRest", "")), keys)
    report.equal("une deuxième n'a rien à faire",
                 (again := place.console("restaurer", "--confirmer")).status, 0)
    report.check("et le dit", "Rien à restaurer !" in again.out, again)

    results = place.console("resultats")
    report.check("resultats : les trois sortes",
                 all(text in results.out for text in
                     ("Dernière sauvegarde sans erreur le ", "Dernière restauration sans erreur le ",
                      "Dernière comparaison avec copie le ", "3 copie(s)")), results)
    journal = place.console("journal", "--type", "comparaison")
    report.check("journal : la dernière comparaison",
                 "Configuration : General (Comparaison)" in journal.out
                 and "***** Restauration n°1" in journal.out, journal)


def gone_disk(place, report):
    """Restauration sur un disque où même le répertoire parent a disparu"""
    source = f"{place.root}/disque/loin/Photos"
    write(f"{source}/é.jpg", "image")
    write(f"{source}/2024/b.jpg", "image b")
    single = f"{place.root}/disque/loin/lettre.txt"
    write(single, "chère grand-mère")
    write_lines(place, [(drive_path(source), drive_path(place.destination)),
                        (drive_path(single), drive_path(place.destination))])
    report.equal("sauvegarde : état 0", place.console("sauvegarder").status, 0)
    shutil.copytree(f"{place.root}/disque", f"{place.root}/avant", symlinks=True)
    shutil.rmtree(f"{place.root}/disque")
    report.equal("restauration : état 0", place.console("restaurer", "--confirmer").status, 0)
    report.equal("tout est revenu", differences(f"{place.root}/disque", f"{place.root}/avant"), [])


def never_backed_up(place, report):
    """Restaurer avec SynchroCopie ce qui n'a jamais été sauvegardé n'efface rien"""
    write(f"{place.source}/seul exemplaire.txt", "précieux")
    write_lines(place, [(drive_path(place.source), drive_path(place.destination))],
                "SynchroCopie=-1\n")
    outcome = place.console("restaurer", "--confirmer")
    report.equal("le fichier est là", read(f"{place.source}/seul exemplaire.txt"),
                 "précieux".encode())
    report.equal("état 1", outcome.status, 1)
    report.check("la copie absente est nommée", drive_path(place.copy) in outcome.err, outcome)


def unplugged_source(place, report):
    """Une source débranchée n'efface pas sa sauvegarde"""
    with volume(place, report, "source débranchée") as point:
        if point is None:
            return
        write(f"{point}/Photos/a.jpg", "a")
        place.console("sauvegarder", "--source", f"{point}/Photos", "--destination",
                      place.destination, "--ecraser")
        letter = letter_of(place, point)
        write_lines(place, [(rf"{letter}:\Photos", drive_path(place.destination))],
                    "SynchroCopie=-1\n")
        report.equal("branchée : état 0", place.console("sauvegarder").status, 0)
        os.system(f"umount '{point}'")
        outcome = place.console("sauvegarder")
        report.equal("débranchée : la copie est là", read(f"{place.destination}/Photos/a.jpg"), b"a")
        report.equal("débranchée : état 1", outcome.status, 1)


def root_of_a_volume(place, report):
    """Un volume entier, sauvegardé dans un répertoire à sa lettre et restauré"""
    with volume(place, report, "volume entier") as point:
        if point is None:
            return
        write(f"{point}/a.txt", "a")
        write(f"{point}/Sous répertoire/b.txt", "b")
        place.console("sauvegarder", "--source", f"{point}/a.txt", "--destination", place.root,
                      "--ecraser")
        letter = letter_of(place, point)
        write_lines(place, [(rf"{letter}:" + "\\", drive_path(place.destination))],
                    "SynchroCopie=-1\n")
        report.equal("sauvegarde : état 0", place.console("sauvegarder").status, 0)
        copy = f"{place.destination}/{letter}"
        report.equal("la copie porte la lettre", differences(point, copy), [])
        for name in ("a.txt", "Sous répertoire/b.txt"):
            os.remove(f"{point}/{name}")
        os.rmdir(f"{point}/Sous répertoire")
        report.equal("restauration : état 0", place.console("restaurer", "--confirmer").status, 0)
        report.equal("tout est revenu", differences(point, copy), [])
        report.equal("rien d'autre", names_below(point),
                     {b"a.txt", "Sous répertoire".encode(), "Sous répertoire/b.txt".encode()})


def two_lines_in_one_place(place, report):
    """Deux lignes dont l'une est copiée dans la copie de l'autre ne s'effacent rien"""
    write(f"{place.source}/a.txt", "a")
    other = f"{place.root}/Autre"
    write(f"{other}/b.txt", "b")
    write_lines(place, [(drive_path(place.source), drive_path(place.destination)),
                        (drive_path(other), drive_path(place.copy))], "SynchroCopie=-1\n")
    os.mkdir(place.copy)
    report.equal("première : état 0", place.console("sauvegarder").status, 0)
    write(f"{place.copy}/en trop.txt", "x")
    report.equal("deuxième : état 0", place.console("sauvegarder").status, 0)
    report.equal("l'autre copie est entière", differences(other, f"{place.copy}/Autre"), [])
    report.check("le fichier en trop est effacé", not os.path.exists(f"{place.copy}/en trop.txt"))


def target_over_source(place, report):
    """Une ligne dont la copie tomberait sur sa source est refusée"""
    inner = f"{place.root}/X/X"
    write(f"{inner}/a.txt", "dedans")
    write(f"{place.root}/X/b.txt", "dehors")
    write_lines(place, [(drive_path(inner), drive_path(place.root))], "SynchroCopie=-1\n")
    outcome = place.console("sauvegarder", "--json")
    result = outcome.json() or {}
    report.equal("une erreur", [error["path"] for error in result.get("errors", [])],
                 [drive_path(inner)])
    report.equal("état 1", outcome.status, 1)
    report.equal("rien n'a bougé", (read(f"{inner}/a.txt"), read(f"{place.root}/X/b.txt")),
                 (b"dedans", b"dehors"))


def restore_questions(place, report):
    """Les deux confirmations d'une restauration, sur un terminal"""
    write(f"{place.source}/a.txt", "a")
    write_lines(place, [(drive_path(place.source), drive_path(place.destination))])
    place.console("sauvegarder")
    os.remove(f"{place.source}/a.txt")
    first, second = "Confirmez-vous la restauration des fichiers ?", "Vous êtes bien sûr de vous ?"
    refused = place.converse([(first, ""), (" : ", "o\n"), (second, ""), (" : ", "a\n")],
                             "restaurer")
    report.equal("Annuler à la deuxième : état 3", refused.status, 3)
    report.check("rien n'est restauré", not os.path.exists(f"{place.source}/a.txt"), refused)
    accepted = place.converse([(first, ""), (" : ", "o\n"), (second, ""), (" : ", "o\n")],
                              "restaurer")
    report.equal("OK aux deux : état 0", accepted.status, 0)
    report.check("le fichier est revenu", os.path.exists(f"{place.source}/a.txt"), accepted)


def copy_inside_source(place, report):
    """Un volume de sauvegarde monté dans la source : la restauration n'y efface rien"""
    with volume(place, report, "volume dans la source") as point:
        if point is None:
            return
        write(f"{point}/docs/a.txt", "a")
        os.makedirs(f"{point}/copies")
        os.system(f"mount -t tmpfs -o size=2m petit2 '{point}/copies'")
        try:
            write(f"{point}/copies/autre/o.txt", "o")
            place.console("sauvegarder", "--source", f"{point}/docs", "--destination",
                          f"{point}/copies", "--ecraser")
            outer, inner = letter_of(place, point), letter_of(place, f"{point}/copies")
            write_lines(place, [(rf"{outer}:" + "\\", rf"{inner}:\Save")], "SynchroCopie=-1\n")
            os.mkdir(f"{point}/copies/Save")
            report.equal("sauvegarde : état 0", place.console("sauvegarder").status, 0)
            before = names_below(f"{point}/copies")
            os.remove(f"{point}/docs/a.txt")
            restored = place.console("restaurer", "--confirmer", "--journal")
            report.check("restauration : état 0", restored.status == 0, restored)
            report.equal("le fichier est revenu", read(f"{point}/docs/a.txt"), b"a")
            report.equal("la sauvegarde est entière", names_below(f"{point}/copies"), before)
        finally:
            os.system(f"umount '{point}/copies'")


def keeps_everything(place, report):
    """Avec --conserver, SynchroCopie n'efface rien"""
    write(f"{place.source}/a.txt", "vieux")
    write_lines(place, [(drive_path(place.source), drive_path(place.destination))],
                "SynchroCopie=-1\n")
    place.console("sauvegarder")
    write(f"{place.source}/a.txt", "nouveau travail")
    touch(f"{place.source}/a.txt", 60)
    write(f"{place.source}/b.txt", "b")
    place.console("restaurer", "--confirmer", "--conserver")
    report.equal("les fichiers vivants restent",
                 (read(f"{place.source}/a.txt"), read(f"{place.source}/b.txt")),
                 (b"nouveau travail", b"b"))


def tree_only_without_terminal(place, report):
    """L'arborescence seule, sans terminal : refusée avec l'option qui la permet"""
    os.makedirs(f"{place.source}/un/deux")
    write_lines(place, [(drive_path(place.source), drive_path(place.destination))],
                "ArbreMode=-1\n")
    refused = place.console("sauvegarder", "--json")
    report.equal("sans --confirmer : état 3", refused.status, 3)
    report.check("l'option est nommée", "--confirmer" in refused.err, refused)
    done = place.console("sauvegarder", "--confirmer")
    report.equal("avec --confirmer : état 0", done.status, 0)
    report.check("l'arbre est là", os.path.isdir(f"{place.copy}/un/deux"), done)


def absent_mount_point(place, report):
    """Un chemin tapé dans le point de montage d'un volume absent n'y écrit rien"""
    write(f"{place.source}/a.txt", "a")
    with volume(place, report, "point de montage vide") as point:
        if point is None:
            return
        run = ("sauvegarder", "--source", place.source, "--destination", point, "--ecraser")
        report.equal("monté : état 0", place.console(*run).status, 0)
        os.system(f"umount '{point}'")
        outcome = place.console(*run)
        report.equal("absent : état 3", outcome.status, 3)
        report.equal("absent : rien n'est écrit", os.listdir(point), [])


SCENARIOS = (copy_inside_source, keeps_everything, tree_only_without_terminal, absent_mount_point,
             whole_cycle, gone_disk, never_backed_up, unplugged_source, root_of_a_volume,
             two_lines_in_one_place, target_over_source, restore_questions)
