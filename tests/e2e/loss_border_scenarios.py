"""Nothing is lost at borders: links, mounts, volumes that come and go, directories swapped."""

import contextlib
import os
import shutil
import subprocess
import sys

from drive_scenarios import letter_of
from harness import read, touch, wait_until, write
from loss_harness import (BACKUP, KEPT, OLDER, Halted, back_up, backed_up, check, disk, holds,
                          mounted, needs, plant, restore, run, settle, tree, unmount, why_no_mount,
                          why_no_root, why_no_trace)

FILES = {"a.txt": "a", "Photos/b.jpg": "b", "Photos/2024/c.jpg": "c"}


def directory_becomes_a_link_whose_disk_is_away(place, report):
    """Un répertoire remplacé par un lien dont le disque est absent : il garde sa copie"""
    settle(place)
    backed_up(place, report, FILES)
    shutil.rmtree(f"{place.source}/Photos")
    os.symlink("/mnt/disque absent/Photos", f"{place.source}/Photos")
    check(report, "sauvegarde", back_up(place), 1, "Fichiers excédentaires conservés",
          "est un lien")
    holds(report, "la copie a tout", place.copy, FILES)
    os.remove(f"{place.source}/Photos")
    check(report, "restauration", restore(place), 0)
    holds(report, "tout est revenu", place.source, FILES)


def copy_root_is_a_link(place, report):
    """Une copie dont la racine est un lien : rien n'est effacé derrière, et c'est dit"""
    settle(place)
    other = f"{place.root}/ailleurs"
    plant(other, {"d'un autre.txt": "o"})
    plant(place.source, FILES)
    os.symlink(other, place.copy)
    check(report, "sauvegarde", back_up(place), (0, 1), KEPT, "est un lien")
    holds(report, "rien d'effacé derrière le lien", other, {**FILES, "d'un autre.txt": "o"})


def original_is_a_link(place, report):
    """Un original dont la racine est un lien : la restauration n'efface rien derrière, et le dit"""
    real = f"{place.root}/vrai"
    plant(real, FILES, OLDER)
    os.rmdir(place.source)
    os.symlink(real, place.source)
    settle(place)
    check(report, "sauvegarde", back_up(place), 0)
    write(f"{real}/seul.txt", "seul")
    check(report, "restauration", restore(place), (0, 1), KEPT, "est un lien")
    holds(report, "le fichier vivant reste", real, {**FILES, "seul.txt": "seul"})


def link_in_the_copy(place, report):
    """Un lien dans la copie à la place d'un répertoire : rien n'est écrit ni effacé derrière"""
    settle(place)
    backed_up(place, report, FILES)
    shutil.move(f"{place.copy}/Photos", f"{place.root}/autres photos")
    os.symlink(f"{place.root}/autres photos", f"{place.copy}/Photos")
    write(f"{place.root}/autres photos/d'un autre.txt", "o")
    write(f"{place.source}/Photos/b.jpg", "b nouveau")
    behind = {"b.jpg": "b", "2024/c.jpg": "c", "d'un autre.txt": "o"}
    outcome = back_up(place, "--source", place.source, "--destination", place.destination,
                      "--ecraser")
    check(report, "sans effacement", outcome, 1, "Photos")
    holds(report, "rien n'a changé derrière le lien", f"{place.root}/autres photos", behind)
    check(report, "avec effacement", back_up(place), 0, "Effacé : ")
    holds(report, "seul le lien est parti", f"{place.root}/autres photos", behind)
    holds(report, "la copie est faite", place.copy, tree(place.source))
    holds(report, "l'original est intact", place.source, {**FILES, "Photos/b.jpg": "b nouveau"})


@needs(why_no_mount)
def source_mounted_inside_its_copy(place, report):
    """La source montée dans sa propre copie : aucun fichier vivant n'est effacé ni remplacé"""
    settle(place)
    files = {"a.txt": "a", "Photos/a.txt": "un autre a", "Photos/b.jpg": "b"}
    backed_up(place, report, files)
    plant(place.source, {"Photos/a.txt": "encore un autre"})
    live = {**files, "Photos/a.txt": "encore un autre"}
    with mounted(f"{place.copy}/Photos", "--bind", source=place.source):
        check(report, "sauvegarde", back_up(place), 1, "Photos")
        holds(report, "l'original est intact", place.source, live)
    with mounted(f"{place.copy}/En plus", "--bind", source=place.source):
        check(report, "monté sous un autre nom", back_up(place), 0)
        holds(report, "l'original est encore intact", place.source, live)
    os.rmdir(f"{place.copy}/En plus")
    holds(report, "la copie suit", place.copy, live)


@needs(why_no_mount)
def other_directory_mounted_inside_the_copy(place, report):
    """Un répertoire de la source monté dans la copie à la place d'un autre : rien n'y est écrit"""
    settle(place)
    files = {"A/f.txt": "celui de A", "B/f.txt": "celui de B"}
    plant(place.source, {"B/f.txt": files["B/f.txt"]}, OLDER)
    plant(place.source, {"A/f.txt": files["A/f.txt"]})
    os.makedirs(place.copy)
    with mounted(f"{place.copy}/A", "--bind", source=f"{place.source}/B"):
        check(report, "sauvegarde", back_up(place), 1, "A")
        holds(report, "l'original est intact", place.source, files)
    report.equal("B est copié", tree(place.copy).get("B/f.txt"), "celui de B")


@needs(why_no_mount)
def copy_mounted_inside_its_original(place, report):
    """Un répertoire de la copie monté dans l'original : la restauration n'abîme pas la copie"""
    settle(place)
    files = {"A/f.txt": "celui de A", "B/f.txt": "celui de B"}
    backed_up(place, report, files)
    shutil.rmtree(f"{place.source}/A")
    touch(f"{place.copy}/A/f.txt", 60)
    with mounted(f"{place.source}/A", "--bind", source=f"{place.copy}/B"):
        check(report, "restauration", restore(place), 1, "rien n'y est écrit")
        holds(report, "la copie est intacte", place.copy, files)


@needs(why_no_mount)
def volume_inside_the_original(place, report):
    """Un volume monté dans l'original est sauvegardé ; absent, sa copie reste, et c'est dit"""
    settle(place)
    plant(place.source, {"a.txt": "a"}, OLDER)
    with mounted(f"{place.source}/Volume"):
        plant(f"{place.source}/Volume", {"v.txt": "v"}, OLDER)
        check(report, "monté", back_up(place), 0)
    files = {"a.txt": "a", "Volume/v.txt": "v"}
    holds(report, "il est copié", place.copy, files)
    write(f"{place.source}/nouveau.txt", "n")
    for attempt in (1, 2):
        check(report, f"absent, fois {attempt}", back_up(place), 1, KEPT, "rien n'est monté",
              "--confirmer-source")
        holds(report, f"absent, fois {attempt} : la copie a tout", place.copy,
              {**files, "nouveau.txt": "n"})
    write(f"{place.source}/Volume/sur le disque nu.txt", "x")
    check(report, "le point de montage porte un fichier", back_up(place), 1, KEPT)
    report.equal("la copie du volume reste", tree(place.copy).get("Volume/v.txt"), "v")
    confirmed = back_up(place, "--confirmer-source")
    check(report, "confirmée par l'utilisateur", confirmed, 0)
    report.check("alors seulement elle suit", "Volume/v.txt" not in tree(place.copy), confirmed)


@needs(why_no_mount)
def volume_mounted_after_the_backup(place, report):
    """Un volume monté dans l'original après la sauvegarde : la restauration n'y efface rien"""
    settle(place)
    backed_up(place, report, FILES)
    with mounted(f"{place.source}/Photos"):
        write(f"{place.source}/Photos/du volume.txt", "v")
        write(f"{place.source}/en trop.txt", "x")
        check(report, "restauration", restore(place), 0)
        report.equal("le fichier du volume reste",
                     tree(place.source).get("Photos/du volume.txt"), "v")
        report.check("ce qui est en trop à côté est effacé",
                     "en trop.txt" not in tree(place.source))


@needs(why_no_mount, why_no_trace)
def volume_unmounted_in_mid_run(place, report):
    """Un volume de l'original démonté entre deux passes : il garde sa copie"""
    for known in (True, False):
        shutil.rmtree(place.copy, ignore_errors=True)
        settle(place)
        plant(place.source, {"a.txt": "a"}, OLDER)
        with mounted(f"{place.source}/Volume"):
            plant(f"{place.source}/Volume", {"v.txt": "v"}, OLDER)
            check(report, "monté", back_up(place), 0)
            if not known:
                for name in os.listdir(place.copy):
                    if name.startswith(".~coffrelune-"):
                        os.remove(f"{place.copy}/{name}")
            write(f"{place.copy}/aaa en trop.txt", "x")
            with Halted(place, report, "unlinkat", 1, *BACKUP) as running:
                unmount(f"{place.source}/Volume")
                running.finish()
        report.equal(f"certificat {known} : la copie du volume reste",
                     tree(place.copy).get("Volume/v.txt"), "v")


@needs(why_no_mount)
def bare_mount_point_as_source(place, report):
    """Un volume absent dont le point de montage porte un fichier : sa copie reste, c'est dit"""
    plant(place.source, {"oublié.txt": "sous le montage"})
    settle(place)
    with mounted(place.source):
        plant(place.source, FILES, OLDER)
        check(report, "monté", back_up(place), 0)
    check(report, "absent", back_up(place), 1, KEPT, "n'est pas sur le même volume",
          "--confirmer-source")
    report.equal("la copie a tout", {**FILES, **tree(place.copy)}, tree(place.copy))
    write(f"{place.source}/neuf.txt", "n")
    check(report, "absent, restauration", restore(place), 1, KEPT)
    report.equal("le fichier neuf reste", read(f"{place.source}/neuf.txt"), b"n")
    report.equal("le fichier sous le montage reste", read(f"{place.source}/oublié.txt"),
                 "sous le montage".encode())


@needs(why_no_mount)
def bare_mount_point_on_a_lettered_disk(place, report):
    """Le même sur un disque qui a une lettre : deux originaux y ont la même copie, rien n'est effacé"""
    with disk(place, "source") as point:
        original = f"{point}/Photos"
        plant(original, {"oublié.txt": "sous le montage"})
        copy = f"{place.destination}/Photos"
        settle(place, ("C:" + original.replace("/", "\\"), place.destination))
        with mounted(original):
            plant(original, FILES, OLDER)
            check(report, "monté", back_up(place), 0)
        check(report, "absent", back_up(place), 1, KEPT, "une autre sauvegarde")
        report.equal("la copie a tout", {**FILES, **tree(copy)}, tree(copy))
        write(f"{original}/neuf.txt", "n")
        check(report, "absent, restauration", restore(place), 1, KEPT,
              "est aussi la copie d'une autre sauvegarde")
        report.equal("le fichier neuf reste", read(f"{original}/neuf.txt"), b"n")
        report.equal("le fichier sous le montage reste", read(f"{original}/oublié.txt"),
                     "sous le montage".encode())


@needs(why_no_mount)
def source_drive_unplugged(place, report):
    """Le lecteur de la source débranché : sa copie reste, et c'est dit"""
    with disk(place, "source") as point:
        plant(point, FILES)
        back_up(place, "--source", f"{point}/a.txt", "--destination", place.root, "--ecraser")
        letter = letter_of(place, point)
        settle(place, (rf"{letter}:" + "\\", place.destination))
        check(report, "branché", back_up(place), 0)
        unmount(point)
        write(f"{point}/sur le disque nu.txt", "x")
        check(report, "débranché", back_up(place), (1, 3), f"{letter}:")
        holds(report, "la copie a tout", f"{place.destination}/{letter}", FILES)
        os.remove(f"{point}/sur le disque nu.txt")


@needs(why_no_mount)
def bare_destination(place, report):
    """Le point de montage nu de la destination : il ne reçoit rien, par lettre ou par chemin"""
    with disk(place, "dest") as point:
        plant(place.source, FILES)
        settle(place, (place.source, point))
        back_up(place, "--source", place.source, "--destination", point, "--ecraser")
        letter = letter_of(place, point)
        unmount(point)
        settle(place, (place.source, rf"{letter}:" + "\\"))
        check(report, "par sa lettre", back_up(place), 3, "n'existe pas")
        outcome = back_up(place, "--source", place.source, "--destination", point, "--ecraser")
        check(report, "par son chemin", outcome, 3)
        report.equal("rien d'écrit", os.listdir(point), [])


@needs(why_no_mount, why_no_trace)
def destination_lazily_unmounted(place, report):
    """La destination démontée au milieu : rien ne tombe dans le point de montage nu"""
    for call, number in (("mkdirat", 1), ("renameat", 1), ("renameat2", 1), ("syncfs", 1)):
        with disk(place, "dest") as point:
            shutil.rmtree(place.source)
            plant(place.source, FILES)
            run("rm", "-f", place.settings)
            with Halted(place, report, call, number, "sauvegarder", "--source", place.source,
                        "--destination", point, "--ecraser") as running:
                run("umount", "-l", point)
                outcome = running.finish()
            report.equal(f"{call} {number} : rien dans le point de montage nu", os.listdir(point),
                         [])
            report.check(f"{call} {number} : le programme finit", outcome.status in (0, 1, 3),
                         outcome)
            holds(report, f"{call} {number} : l'original est intact", place.source, FILES)


@needs(why_no_mount)
def read_only_copy(place, report):
    """Une copie montée en lecture seule : tout est gardé, la cause est dite"""
    settle(place)
    with mounted(place.destination):
        backed_up(place, report, FILES)
        os.remove(f"{place.source}/a.txt")
        write(f"{place.source}/Photos/b.jpg", "b nouveau")
        run("mount", "-o", "remount,ro", place.destination)
        check(report, "sauvegarde", back_up(place), (1, 3), "19")
        holds(report, "la copie est comme avant", place.copy, FILES)
        write(f"{place.source}/seul.txt", "seul")
        check(report, "restauration depuis elle", restore(place), 0)
        holds(report, "elle est la preuve de ce qu'elle contient", place.source, FILES)


SWAPPER = """
import ctypes, os, sys, time
a, b = os.fsencode(sys.argv[1]), os.fsencode(sys.argv[2])
libc = ctypes.CDLL(None)
open(sys.argv[3], "w").close()
while True:
    if libc.renameat2(-100, a, -100, b, 2): sys.exit(1)
    time.sleep(0.0003)
"""


@contextlib.contextmanager
def swapped(place, directory, link):
    """A directory and a link that change places all the time, as fast as another process can."""
    ready = f"{place.root}/prêt"
    process = subprocess.Popen([sys.executable, "-c", SWAPPER, directory, link, ready])
    try:
        wait_until(lambda: os.path.exists(ready), process)
        yield process
    finally:
        process.kill()
        process.wait()
        if os.path.islink(directory):
            os.remove(directory)
            os.rename(link, directory)


@needs(why_no_root)
def directory_swapped_for_a_link(place, report):
    """Un utilisateur échange un répertoire et un lien pendant que root travaille : rien dehors"""
    victim = f"{place.root}/à root"
    outside = {"mot de passe": "secret", "d/f1.txt": "de root"}
    plant(victim, outside, OLDER)
    settle(place)
    many = {f"d/f{number}.txt": f"contenu {number}" for number in range(60)}
    for side in ("source", "copy"):
        root = getattr(place, side)
        for attempt in range(12):
            shutil.rmtree(place.source)
            shutil.rmtree(place.copy, ignore_errors=True)
            plant(place.source, many, OLDER)
            back_up(place)
            for name in list(many)[::2]:
                os.remove(f"{place.source}/{name}")
            plant(place.source, {name: "nouveau" for name in list(many)[1::2]})
            os.symlink(victim + "/d", f"{root}/lien" if side == "copy" else f"{place.root}/lien")
            link = f"{root}/lien" if side == "copy" else f"{place.root}/lien"
            with swapped(place, f"{root}/d", link):
                back_up(place)
                restore(place)
            # The exchange may have left the directory here and the link in its place.
            if os.path.islink(link):
                os.remove(link)
            else:
                shutil.rmtree(link, ignore_errors=True)
            if tree(victim) != outside or "secret" in str(tree(place.copy)) or "de root" in str(
                    (tree(place.copy), tree(place.source))):
                report.check(f"{side}, essai {attempt}", False, tree(victim))
                break
        holds(report, f"{side} : rien n'a changé dehors", victim, outside)


@needs(why_no_trace)
def original_removed_in_mid_run(place, report):
    """L'original enlevé au milieu de l'effacement : ce qui reste de sa copie est gardé"""
    files = {f"{name}/{number}.txt": name for name in "abc" for number in range(5)}
    settle(place)
    backed_up(place, report, files)
    os.remove(f"{place.source}/a/0.txt")
    with Halted(place, report, "unlinkat", 1, *BACKUP) as run_:
        shutil.rmtree(place.source)
        outcome = run_.finish()
    check(report, "l'original n'est plus là", outcome, 1, "est introuvable")
    del files["a/0.txt"]
    holds(report, "seul ce qui manquait déjà est effacé", place.copy, files)


SCENARIOS = (directory_becomes_a_link_whose_disk_is_away, copy_root_is_a_link, original_is_a_link,
             link_in_the_copy, source_mounted_inside_its_copy,
             other_directory_mounted_inside_the_copy, copy_mounted_inside_its_original,
             volume_inside_the_original, volume_mounted_after_the_backup,
             volume_unmounted_in_mid_run, bare_mount_point_as_source,
             bare_mount_point_on_a_lettered_disk, source_drive_unplugged, bare_destination,
             destination_lazily_unmounted, read_only_copy, directory_swapped_for_a_link,
             original_removed_in_mid_run)
