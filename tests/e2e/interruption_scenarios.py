"""Ctrl-C, the end of the session, and a process that is killed."""

import os
import re
import shutil
import signal
import time

from harness import (CERTIFICATE, TRIES, caught, differences, incomplete, names_below, read,
                     stands_still, touch, wait, write)

MANY = 20_000
LARGE = 1 << 29  # bytes


def plant_many(place):
    for number in range(MANY):
        write(f"{place.source}/f{number:05}", f"contenu {number}" * 20)


def plant_large(place):
    """A large file with an older, smaller copy on the destination."""
    block = os.urandom(1 << 20)
    with open(f"{place.source}/gros.bin", "wb") as file:
        for _ in range(LARGE >> 20):
            file.write(block)
    touch(f"{place.source}/gros.bin", 60)
    plant_old_copy(place)


def plant_old_copy(place):
    shutil.rmtree(place.copy, ignore_errors=True)
    write(f"{place.copy}/gros.bin", "ancienne copie")


def entries(directory):
    """How many names a copy holds besides its certificate."""
    try:
        return len([name for name in os.listdir(directory)
                    if not CERTIFICATE.fullmatch(os.fsencode(name))])
    except FileNotFoundError:
        return 0


def signals_pending(process):
    """Whether a signal waits that the process has not yet taken."""
    with open(f"/proc/{process.pid}/status", encoding="ascii") as file:
        pending = re.findall(r"^S[hi][dg]Pnd:\s*([0-9a-f]+)$", file.read(), re.M)
    return any(int(mask, 16) for mask in pending)


def deliver(process, number):
    """Sends a signal to a program that stands still and lets it take it, and hardly more: the stop
    that follows comes behind it, or before it where another thread is quicker to stop them all,
    as it is each time on a busy machine: it gets a millisecond more at each trial. So two of them
    never melt into one."""
    process.send_signal(number)
    for patience in range(100):
        process.send_signal(signal.SIGCONT)
        end = time.monotonic() + patience / 1000
        while time.monotonic() < end and process.poll() is None and signals_pending(process):
            pass
        stands_still(process)
        if not signals_pending(process):
            return True
    return False


def stop_among_many(place, report, more, arguments=None):
    """Starts a backup of many files and stops it (SIGSTOP) once it has copied `more` of them, and
    not nearly all; None when it was too quick."""
    before = entries(place.copy)

    def again():
        shutil.rmtree(place.copy)
        if arguments:
            place.write_settings(place.line())

    process = caught(
        lambda: place.start("coffrelune-console",
                            *(arguments or place.backup_arguments("--ecraser"))),
        lambda: entries(place.copy) > before + more, again,
        lambda: before < entries(place.copy) < (before + MANY) // 2)
    report.check("la sauvegarde est arrêtée en son milieu", process)
    return process


def stop_in_the_large_file(place, report):
    """The same while the large file has a temporary name beside the old copy."""
    process = caught(
        lambda: place.start("coffrelune-console", *place.backup_arguments("--ecraser")),
        lambda: entries(place.copy) > 1, lambda: plant_old_copy(place),
        lambda: entries(place.copy) > 1)
    report.check("la sauvegarde est arrêtée en son milieu", process)
    return process


def check_complete(place, report):
    """Whatever bears a final name is complete, and nothing else is there."""
    names = names_below(place.copy)
    report.equal("aucun fichier temporaire ne reste", names - names_below(place.source), set())
    report.equal("chaque fichier copié est complet", incomplete(place.source, place.copy), [])
    return len(names)


def interrupted_once(place, report):
    """Ctrl-C une fois : ce qui est copié est complet et gardé"""
    plant_many(place)
    for name, number in (("SIGINT", signal.SIGINT), ("SIGTERM", signal.SIGTERM)):
        before = entries(place.copy)
        process = stop_among_many(place, report, 200)
        if process is None:
            return
        process.send_signal(number)
        process.send_signal(signal.SIGCONT)
        outcome = wait(process)
        report.equal(f"{name} : état 3", outcome.status, 3)
        report.check(f"{name} : « Sauvegarde interrompue ! »",
                     "Sauvegarde interrompue !" in outcome.all, outcome)
        copied = check_complete(place, report)
        report.check(f"{name} : une partie est copiée", before < copied < MANY, f"{copied} fichiers")
    report.equal("la suivante : état 0", place.backup("--ecraser").status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])


def interrupted_before_copy(place, report):
    """SIGTERM pendant que l'arborescence se crée : l'interruption est dite, pas seulement « rien »"""
    directories = 2000
    for number in range(directories):
        write(f"{place.source}/d{number:04}/a.txt", "a")
    process = caught(
        lambda: place.start("coffrelune-console", *place.backup_arguments("--ecraser")),
        lambda: entries(place.copy) > 20,
        lambda: shutil.rmtree(place.copy, ignore_errors=True),
        lambda: entries(place.copy) < directories)
    report.check("la sauvegarde est arrêtée en son début", process)
    if process is None:
        return
    process.send_signal(signal.SIGTERM)
    process.send_signal(signal.SIGCONT)
    outcome = wait(process)
    report.equal("état 3", outcome.status, 3)
    report.check("l'interruption est dite",
                 "Sauvegarde interrompue avant la copie : rien n'a été copié." in outcome.all, outcome)


def interrupted_during_large_file(place, report):
    """Ctrl-C une fois pendant un gros fichier : il est fini d'abord"""
    plant_large(place)
    process = stop_in_the_large_file(place, report)
    if process is None:
        return
    process.send_signal(signal.SIGINT)
    process.send_signal(signal.SIGCONT)
    report.equal("état 3", wait(process).status, 3)
    check_complete(place, report)


def interrupted_twice(place, report):
    """Ctrl-C deux fois pendant un gros fichier : l'ancienne copie est intacte"""
    plant_large(place)
    # A machine that is busy may let it run to the end of the file while it takes the first one.
    for _ in range(TRIES):
        process = stop_in_the_large_file(place, report)
        if process is None:
            return
        taken = deliver(process, signal.SIGINT)
        if taken and entries(place.copy) > 1:
            break
        process.kill()
        wait(process)
        plant_old_copy(place)
    report.check("le premier signal est pris, dans le gros fichier",
                 taken and entries(place.copy) > 1)
    process.send_signal(signal.SIGINT)
    process.send_signal(signal.SIGCONT)
    report.equal("état 3", wait(process).status, 3)
    report.equal("l'ancienne copie est intacte", read(f"{place.copy}/gros.bin")[:100],
                 "ancienne copie".encode())
    report.equal("aucun fichier temporaire ne reste", names_below(place.copy), {b"gros.bin"})


def killed_during_large_file(place, report):
    """Un processus tué pendant un gros fichier, puis une autre sauvegarde"""
    plant_large(place)
    process = stop_in_the_large_file(place, report)
    if process is None:
        return
    process.kill()
    wait(process)
    report.equal("l'ancienne copie est intacte", read(f"{place.copy}/gros.bin")[:100],
                 "ancienne copie".encode())
    report.equal("la suivante : état 0", place.backup("--ecraser").status, 0)
    report.equal("tout est copié, rien ne reste", differences(place.source, place.copy), [])


def killed_among_many(place, report):
    """Un processus tué parmi beaucoup de fichiers, puis une autre sauvegarde"""
    plant_many(place)
    process = stop_among_many(place, report, 500)
    if process is None:
        return
    process.kill()
    wait(process)
    final = names_below(place.source)
    report.equal("chaque nom définitif est complet",
                 [name for name in incomplete(place.source, place.copy) if name in final], [])
    report.equal("la suivante : état 0", place.backup("--ecraser").status, 0)
    report.equal("tout est copié, rien ne reste", differences(place.source, place.copy), [])


def interrupted_result(place, report):
    """Une sauvegarde interrompue rend compte en JSON et ne note aucun résultat"""
    plant_many(place)
    place.write_settings(place.line())
    process = stop_among_many(place, report, 200, ["sauvegarder", "--json"])
    if process is None:
        return
    process.send_signal(signal.SIGINT)
    process.send_signal(signal.SIGCONT)
    outcome = wait(process)
    result = outcome.json() or {}
    report.equal("état 3", outcome.status, 3)
    report.check("l'objet compte ce qui est copié",
                 result.get("files") == entries(place.copy) < MANY, f"{result} {entries(place.copy)}")
    report.check("aucun résultat n'est noté", b"LastSave" not in place.read_settings())


SCENARIOS = (interrupted_once, interrupted_before_copy, interrupted_during_large_file, interrupted_twice,
             killed_during_large_file, killed_among_many, interrupted_result)
