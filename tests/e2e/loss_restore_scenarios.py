"""A restore deletes a living file only under a proof, whatever came between backup and restore."""

import os
import shutil

from drive_scenarios import letter_of
from harness import read, write
from loss_harness import (BACKUP, KEPT, OLDER, RESTORE, back_up, backed_up, certificate, check,
                          disk, elsewhere, holds, killed, marks, mounted, needs, plant, restore,
                          run, settle, silent, tree, why_no_mount, why_no_trace)

FILES = {"a.txt": "a", "Tmp/t.txt": "t", "Docs/d.txt": "d"}
ALONE = "seul exemplaire.txt"
NONE = "RepExclu0_Mode=0\n"
ALL = "RepExclu0_Mode=1\n"
TMP = "RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n"
DOCS = "RepExclu0_Mode=2\nRepExclu0_Rep1=\\Docs\n"
BOTH = "RepExclu0_Mode=2\nRepExclu0_Rep1=\\Docs\nRepExclu0_Rep2=\\Tmp\n"


def live(place):
    return f"{place.source}/{ALONE}"


def kept(place, report, what, *reasons, status=1, **more):
    """A restore that may not delete what lives in the original alone, and says why."""
    write(live(place), "seul")
    outcome = restore(place, **more)
    check(report, what, outcome, status, KEPT, *reasons)
    report.check(f"{what} : le fichier vivant est là", os.path.exists(live(place)), outcome)
    return outcome


def deleted(place, report, what):
    """A restore that may delete: the proof holds, and what is deleted is told."""
    write(live(place), "en trop")
    outcome = restore(place)
    check(report, what, outcome, 0, "La restauration va effacer 1 fichier(s)", "Effacé : ",
          "La restauration a effacé 1 fichier(s)")
    report.check(f"{what} : ce qui est en trop est effacé", not os.path.exists(live(place)),
                 outcome)


def complete_certificate_is_the_proof(place, report):
    """Après une sauvegarde complète : la restauration efface ce qui est en trop et le dit"""
    settle(place)
    backed_up(place, report, FILES)
    report.check("le certificat est complet", b"etat=complete" in read(certificate(place.copy)))
    deleted(place, report, "restauration")
    holds(report, "l'original est celui de la sauvegarde", place.source, FILES)
    report.equal("aucune marque ne reste", marks(place.root, "restauration"), [])


def exclusions_of_then_and_now(place, report):
    """Ce qui était exclu alors, ou l'est maintenant : jamais effacé d'un original"""
    cases = (("exclu alors, plus maintenant", TMP, NONE, {"Tmp"}),
             ("tout exclu alors, plus maintenant", ALL, NONE, {"Tmp", "Docs"}),
             ("exclu maintenant, pas alors", NONE, TMP, {"Tmp"}),
             ("tout exclu maintenant, pas alors", NONE, ALL, {"Tmp", "Docs"}),
             ("l'un alors, l'autre maintenant", TMP, DOCS, {"Tmp", "Docs"}),
             ("deux alors, un maintenant", BOTH, TMP, {"Tmp", "Docs"}),
             ("aucun", NONE, NONE, set()))
    for name, then, now, expected in cases:
        shutil.rmtree(place.copy, ignore_errors=True)
        shutil.rmtree(place.source)
        plant(place.source, FILES, OLDER)
        settle(place, keys=then)
        check(report, f"{name} : sauvegarde", back_up(place), 0)
        for directory in ("Tmp", "Docs"):
            write(f"{place.source}/{directory}/neuf/n.txt", "n")
        settle(place, keys=now)
        check(report, f"{name} : restauration", restore(place), 0)
        found = {directory for directory in ("Tmp", "Docs")
                 if os.path.exists(f"{place.source}/{directory}/neuf/n.txt")}
        report.equal(f"{name} : ce qui vit encore", found, expected)
        report.equal(f"{name} : les anciens fichiers", {**tree(place.source), **FILES},
                     tree(place.source))


def narrower_run_last(place, report):
    """La dernière sauvegarde plus étroite que les précédentes : seule elle compte"""
    settle(place)
    backed_up(place, report, FILES)
    settle(place, keys=TMP)
    write(f"{place.source}/Tmp/neuf.txt", "n")
    write(f"{place.source}/a.txt", "a nouveau")
    check(report, "plus étroite", back_up(place), 0)
    settle(place)
    check(report, "restauration", restore(place), 0)
    report.equal("le fichier exclu vit", tree(place.source).get("Tmp/neuf.txt"), "n")


def tree_only_run_last(place, report):
    """Une arborescence seule : elle ne prouve rien, et ne retire rien si elle n'a rien changé"""
    settle(place)
    backed_up(place, report, FILES)
    settle(place, options="ArbreMode=-1\n")
    check(report, "rien de neuf", back_up(place, "--confirmer"), 0)
    settle(place)
    deleted(place, report, "la preuve tient")
    os.makedirs(f"{place.source}/Neuf")
    settle(place, options="ArbreMode=-1\n")
    check(report, "un répertoire neuf", back_up(place, "--confirmer"), 0)
    settle(place)
    kept(place, report, "restauration", "n'a pas tout copié")


def backup_by_source_counts(place, report):
    """Une sauvegarde par --source : elle laisse la même preuve, et n'efface rien"""
    settle(place)
    plant(place.source, FILES, OLDER)
    write(f"{place.copy}/d'un autre.txt", "o")
    outcome = back_up(place, "--source", place.source, "--destination", place.destination,
                      "--ecraser")
    check(report, "par --source", outcome, 0)
    holds(report, "rien d'effacé", place.copy, {**FILES, "d'un autre.txt": "o"})
    write(live(place), "seul")
    by_source = restore(place, "--source", place.source, "--destination", place.destination,
                        "--ecraser")
    check(report, "restauration par --source", by_source, 0)
    report.check("elle n'efface rien", os.path.exists(live(place)), by_source)
    deleted(place, report, "restauration par les réglages")


def other_home(place, report):
    """Un autre ordinateur, ou des réglages neufs : la copie parle pour elle-même"""
    settle(place)
    backed_up(place, report, FILES)
    elsewhere(place)
    settle(place)
    deleted(place, report, "preuve faite ailleurs")
    shutil.rmtree(place.home)
    elsewhere(place)
    settle(place, keys=TMP)
    write(f"{place.source}/a.txt", "a nouveau")
    check(report, "sauvegarde plus étroite ailleurs", back_up(place), 0)
    elsewhere(place)
    settle(place)
    write(f"{place.source}/Tmp/neuf.txt", "n")
    deleted(place, report, "restauration encore ailleurs")
    report.equal("ce qui fut exclu ailleurs vit", tree(place.source).get("Tmp/neuf.txt"), "n")


@needs(why_no_mount)
def two_disks_in_turn(place, report):
    """Deux disques à tour de rôle : chacun a sa preuve, l'un inachevé ne vaut rien"""
    point = f"{place.root}/disque"
    with mounted(f"{place.root}/un") as one, mounted(f"{place.root}/deux") as two:
        plant(place.source, FILES, OLDER)
        settle(place, (place.source, point))
        with mounted(point, "--bind", source=one):
            check(report, "sur le premier", back_up(place), 0)
        with mounted(point, "--bind", source=two):
            write(f"{place.source}/refusé.bin", b"x" * (8 << 20))
            check(report, "sur le deuxième, trop petit", back_up(place), 1)
            os.remove(f"{place.source}/refusé.bin")
            kept(place, report, "restauration du deuxième", "n'a pas tout copié")
            holds(report, "l'original a tout", place.source, {**FILES, ALONE: "seul"})
        with mounted(point, "--bind", source=one):
            deleted(place, report, "restauration du premier")


def read_only_settings(place, report):
    """Des réglages en lecture seule : les preuves restent les mêmes"""
    settle(place)
    os.chmod(place.settings, 0o444)
    os.chmod(place.home, 0o555)
    try:
        place.become_nobody()
        backed_up(place, report, FILES)
        deleted(place, report, "restauration")
        os.remove(certificate(place.copy))
        kept(place, report, "sans certificat", "rien ne dit que")
    finally:
        os.chmod(place.home, 0o755)


def other_spellings(place, report):
    """Par un lien, par « .. », avec une barre finale : la même paire"""
    settle(place)
    backed_up(place, report, FILES)
    os.symlink(place.root, f"{place.root}/raccourci")
    link = f"{place.root}/raccourci"
    name = os.path.basename(place.source)
    for what, source, destination in (
            ("un lien", f"{link}/{name}", f"{link}/Disque de sauvegarde"),
            ("..", f"{place.destination}/../{name}", f"{place.source}/../Disque de sauvegarde"),
            ("barre finale", f"{place.source}/", f"{place.destination}/")):
        settle(place, (source, destination))
        deleted(place, report, f"{what} : restauration")
        write(f"{place.copy}/en trop.txt", "x")
        outcome = back_up(place)
        check(report, f"{what} : sauvegarde", outcome, 0)
        silent(report, f"{what} : sauvegarde", outcome)
        holds(report, f"{what} : la copie suit", place.copy, FILES)
    report.equal("un seul certificat", len(marks(place.copy)), 1)


@needs(why_no_mount)
def other_letter(place, report):
    """L'original, puis la copie, sous une autre lettre : la même paire"""
    with disk(place, "s") as source, disk(place, "c") as target:
        plant(f"{source}/Docs", FILES, OLDER)
        settle(place, (f"{source}/Docs", target))
        check(report, "sauvegarde", back_up(place), 0)
        letters = [letter_of(place, point) for point in (source, target)]
        elsewhere(place)
        write(f"{place.home}/Lecteurs.ini", f"[Lecteurs]\r\nR=path:{source}\r\nS=path:{target}\r\n")
        settle(place, (r"R:\Docs", "S:\\"))
        write(f"{source}/Docs/en trop.txt", "x")
        outcome = restore(place)
        report.check("les lettres ont changé", letters != ["R", "S"], letters)
        check(report, "restauration", outcome, 0, r"Effacé : R:\Docs\en trop.txt")
        os.remove(f"{source}/Docs/a.txt")
        outcome = back_up(place)
        check(report, "sauvegarde sous l'autre lettre", outcome, 0)
        silent(report, "sauvegarde sous l'autre lettre", outcome)
        report.equal("un seul certificat", len(marks(f"{target}/Docs")), 1)


def copy_of_the_copy(place, report):
    """Une copie de la copie n'est pas la preuve ; la copie déplacée l'est"""
    settle(place)
    backed_up(place, report, FILES)
    other = f"{place.root}/Autre disque"
    os.mkdir(other)
    run("cp", "-a", place.copy, other)
    settle(place, (place.source, other))
    kept(place, report, "cp -a ailleurs", "n'est pas le répertoire où la sauvegarde a été faite")
    settle(place)
    os.rename(place.copy, f"{place.root}/mise de côté")
    run("cp", "-a", f"{place.root}/mise de côté", place.copy)
    kept(place, report, "cp -a au même endroit", "n'est pas le répertoire")
    shutil.rmtree(f"{place.copy}/Docs")
    kept(place, report, "cp -a partiel", "n'est pas le répertoire")
    report.equal("les fichiers vivants sont là", {**tree(place.source), **FILES},
                 tree(place.source))
    shutil.rmtree(place.copy)
    os.rename(f"{place.root}/mise de côté", place.copy)
    deleted(place, report, "la vraie copie, revenue")
    shutil.rmtree(other)
    os.mkdir(other)
    shutil.move(place.copy, other)
    settle(place, (place.source, other))
    deleted(place, report, "la copie déplacée")


def copied_copy_becomes_a_copy(place, report):
    """Une sauvegarde menée jusqu'au bout dans une copie de la copie : elle en fait une preuve"""
    settle(place)
    backed_up(place, report, FILES)
    other = f"{place.root}/Autre disque"
    os.mkdir(other)
    run("cp", "-a", place.copy, other)
    settle(place, (place.source, other))
    check(report, "sauvegarde", back_up(place), 0)
    deleted(place, report, "restauration")


def damaged_certificates(place, report):
    """Un certificat coupé, vide, d'une version inconnue, étranger : rien n'est effacé"""
    settle(place)
    backed_up(place, report, FILES)
    path = certificate(place.copy)
    good = read(path)
    damages = (("vide", b""), ("coupé", good[:len(good) // 2]), ("sans fin", good[:-4]),
               ("version inconnue", good.replace(b"Coffrelune 1", b"Coffrelune 2")),
               ("clé inconnue", good.replace(b"volume=", b"chiffre=oui\nvolume=")),
               ("suite inattendue", good + b"exclu=x\n"), ("zéros", b"\0" * 400))
    for name, data in damages:
        write(path, data)
        kept(place, report, f"{name} : restauration", "rien ne dit que")
        write(f"{place.copy}/d'avant.txt", "x")
        write(path, data)
        outcome = back_up(place)
        check(report, f"{name} : sauvegarde", outcome, 1, KEPT)
        report.equal(f"{name} : la copie garde tout", tree(place.copy).get("d'avant.txt"), "x")
        os.remove(live(place))
        check(report, f"{name} : la sauvegarde suivante", back_up(place), 0)
        report.check(f"{name} : le certificat est refait",
                     b"etat=complete" in read(certificate(place.copy)))
    os.remove(path)
    os.mkdir(path)
    kept(place, report, "un répertoire de ce nom", "rien ne dit que")


def unreadable_certificate(place, report):
    """Un certificat illisible : rien n'est effacé, de part ni d'autre"""
    settle(place)
    place.become_nobody()
    backed_up(place, report, FILES)
    os.chmod(certificate(place.copy), 0)
    kept(place, report, "restauration", "rien ne dit que")
    write(f"{place.copy}/d'avant.txt", "x")
    check(report, "sauvegarde", back_up(place), 1, KEPT)
    report.equal("la copie garde tout", tree(place.copy).get("d'avant.txt"), "x")


def certificate_in_another_directory(place, report):
    """Un certificat copié dans un autre répertoire : il n'y prouve rien"""
    settle(place)
    backed_up(place, report, FILES)
    other = f"{place.root}/Autre disque"
    write(f"{other}/Données/un fichier.txt", "d'un autre")
    shutil.copy2(certificate(place.copy), f"{other}/Données")
    settle(place, (place.source, other))
    kept(place, report, "restauration", "n'est pas le répertoire où la sauvegarde a été faite")
    report.equal("les fichiers vivants sont là", {**tree(place.source), **FILES},
                 tree(place.source))


@needs(why_no_trace)
def interrupted_backup_each_pass(place, report):
    """Une sauvegarde tuée dans chaque passe : la restauration n'efface rien"""
    for name, call, number in (("arborescence", "mkdirat", 1), ("effacement", "unlinkat", 1),
                               ("copie", "renameat2", 1), ("fin", "syncfs", 2),
                               ("certificat", "renameat", 2)):
        shutil.rmtree(place.copy, ignore_errors=True)
        shutil.rmtree(place.source)
        settle(place)
        backed_up(place, report, FILES)
        os.remove(f"{place.source}/a.txt")
        plant(place.source, {"Docs/d.txt": "d nouveau", "Neuf/n.txt": "n"})
        report.check(f"{name} : tuée", killed(place, call, number, BACKUP))
        kept(place, report, f"{name} : restauration", "n'a pas tout copié")
        report.check(f"{name} : Neuf vit", "Neuf/n.txt" in tree(place.source))
        os.remove(live(place))
        outcome = back_up(place)
        check(report, f"{name} : la sauvegarde suivante", outcome, 0)
        deleted(place, report, f"{name} : et la preuve revient")


@needs(why_no_trace)
def interrupted_restore_then_backup(place, report):
    """Une restauration tuée, puis une sauvegarde vers le même disque ou l'autre : tout y reste"""
    other = f"{place.root}/Autre disque"
    os.mkdir(other)
    for call, number in (("renameat2", 1), ("renameat2", 2), ("unlinkat", 1)):
        for root in (place.destination, other):
            shutil.rmtree(f"{root}/Données", ignore_errors=True)
        shutil.rmtree(place.source)
        plant(place.source, FILES, OLDER)
        for destination in (other, place.destination):
            settle(place, (place.source, destination))
            check(report, f"{call} {number} : sauvegarde", back_up(place), 0)
        for name in FILES:
            os.remove(f"{place.source}/{name}")
        write(f"{place.source}/en trop.txt", "x")
        report.check(f"{call} {number} : tuée", killed(place, call, number, RESTORE))
        for destination in (other, place.destination):
            settle(place, (place.source, destination))
            check(report, f"{call} {number} : vers {os.path.basename(destination)}", back_up(place),
                  1, KEPT, "n'a pas tout remis", "--confirmer-source")
            copy = tree(f"{destination}/Données")
            report.equal("la copie a tout", {**copy, **FILES}, copy)
        for _ in range(2):
            check(report, f"{call} {number} : elle reprend", restore(place), 0)
        report.equal("tout est revenu", {**tree(place.source), **FILES}, tree(place.source))
        outcome = back_up(place)
        check(report, f"{call} {number} : plus rien ne retient", outcome, 0)
        silent(report, f"{call} {number}", outcome)


def confirmed_source_after_a_restore(place, report):
    """Une restauration que l'on ne veut pas finir : --confirmer-source lève sa marque"""
    settle(place)
    backed_up(place, report, FILES)
    write(f"{place.source}/.~coffrelune-0123456789abcdef.restauration", "Restauration inachevée\n")
    os.remove(f"{place.source}/a.txt")
    check(report, "sans", back_up(place), 1, KEPT, "--confirmer-source")
    report.equal("la copie garde a.txt", tree(place.copy).get("a.txt"), "a")
    check(report, "avec", back_up(place, "--confirmer-source"), 0)
    report.check("la copie suit", "a.txt" not in tree(place.copy))
    report.equal("la marque est partie", marks(place.source, "restauration"), [])


SCENARIOS = (complete_certificate_is_the_proof, exclusions_of_then_and_now, narrower_run_last,
             tree_only_run_last, backup_by_source_counts, other_home, two_disks_in_turn,
             read_only_settings, other_spellings, other_letter, copy_of_the_copy,
             copied_copy_becomes_a_copy, damaged_certificates, unreadable_certificate,
             certificate_in_another_directory, interrupted_backup_each_pass,
             interrupted_restore_then_backup, confirmed_source_after_a_restore)
