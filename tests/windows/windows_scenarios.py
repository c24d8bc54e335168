"""What only Windows has: its console, its drives, its names, its other copying programs."""

import os
import re
import shutil
import signal
import subprocess

from harness import (PATIENCE, caught, differences, drive_path, incomplete, names_below, read,
                     times_of, touch, wait, wait_until, write)
from settings_scenarios import DATE, section

MOON = "\N{CRESCENT MOON}"


def write_tree(root):
    """Names and sizes that Windows can hold and that break simple programs."""
    write(f"{root}/Été/À lire d'abord.txt", "accents")
    write(f"{root}/{MOON} 日本/Ωmega.txt", "hors de la page de codes")
    write(f"{root}/vide.txt", "")
    write(f"{root}/grand.bin", os.urandom(20 * 1024 * 1024 + 1))
    deep = "/".join(f"un répertoire dont le nom est assez long {i}" for i in range(12))
    write(f"{root}/{deep}/au-delà de 260 caractères.txt", "loin")
    os.makedirs(f"{root}/répertoire vide/encore un")
    write(f"{root}/lecture seule.txt", "ne pas toucher")
    os.chmod(f"{root}/lecture seule.txt", 0o444)
    for number in range(50):
        write(f"{root}/beaucoup/f{number}.txt", str(number))
        touch(f"{root}/beaucoup/f{number}.txt", -86400 * number - 1)


def whole_tree(place, report):
    """Un arbre entier de E: vers F:"""
    write_tree(place.source)
    outcome = place.backup("--ecraser", "--json")
    report.equal("état 0", outcome.status, 0)
    report.equal("56 fichiers", (outcome.json() or {}).get("files"), 56)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    report.equal("les dates sont égales à 100 ns", times_of(place.copy), times_of(place.source))
    again = place.backup("--ecraser", "--json").json() or {}
    report.equal("la deuxième fois, rien", (again.get("files"), again.get("outcome")),
                 (0, "nothing"))


def compare_with(place, report, program, *switches):
    """The same tree copied by another program of Windows and by ours."""
    write(f"{place.source}/Été/À lire.txt", "accents")
    write(f"{place.source}/vide.txt", "")
    write(f"{place.source}/grand.bin", os.urandom(3 * 1024 * 1024 + 1))
    os.makedirs(f"{place.source}/répertoire vide")
    other = f"{place.destination}/{program}"
    peer = place.prefix.run(f"{program}.exe", drive_path(place.source), drive_path(other), *switches)
    if not os.path.isdir(other) and program == "robocopy":
        report.leave_out("comparaison avec robocopy",
                         f"celui de Wine ne copie rien (état {peer.returncode})")
        return
    report.equal("état 0", place.backup("--ecraser").status, 0)
    report.equal("les mêmes noms", names_below(place.copy), names_below(other))
    report.equal("les mêmes contenus", differences(other, place.copy), [])


def as_xcopy(place, report):
    """Les mêmes fichiers que xcopy"""
    compare_with(place, report, "xcopy", "/E", "/I", "/Y")


def as_robocopy(place, report):
    """Les mêmes fichiers que robocopy"""
    compare_with(place, report, "robocopy", "/E")


def accents_in_a_pipe(place, report):
    """Dans un tube, le texte est en UTF-8, avec les fins de ligne de partout"""
    write(f"{place.source}/été.txt", "1")
    outcome = place.start("coffrelune-console", *place.backup_arguments("--ecraser"))
    out, err = outcome.communicate(timeout=PATIENCE)
    report.check("« Sauvegarde terminée »", "Sauvegarde terminée sans erreur.\n".encode() in out, out)
    report.check("aucun retour chariot", b"\r" not in out + err, out + err)
    wrong = place.console("sauvegarder", f"--été{MOON}")
    report.equal("argument inconnu : état 2", wrong.status, 2)
    report.check("l'argument est redit tel quel", f"--été{MOON}" in wrong.err, wrong)


def accents_on_a_console(place, report):
    """Sur une console, les accents de l'aide et des messages"""
    for arguments, text in ((["--help"], "Résume les dernières opérations de chaque sorte"),
                            (["tout"], "« coffrelune-console --help » montre l'utilisation."),
                            (["resultats"], "Aucune configuration n'est enregistrée.")):
        outcome = place.converse([], *arguments)
        report.check(f"{arguments[0]} : « {text} »", text in outcome.out, outcome)


def arguments_as_typed(place, report):
    """Un argument n'est ni développé ni relu dans la page de codes"""
    source = f"{place.source}/{MOON} à *"
    # "*" stands for itself here; no such file may be found in its place.
    outcome = place.console("sauvegarder", "--source", drive_path(source), "--destination",
                            drive_path(place.destination), "--ecraser")
    report.equal("une source qui n'existe pas : état 2", outcome.status, 2)
    report.check("elle est redite telle quelle", f"{MOON} à *" in outcome.err, outcome)
    write(f"{place.source}/{MOON} à/x.txt")
    outcome = place.console("sauvegarder", "--source", drive_path(source[:-2]), "--destination",
                            drive_path(place.destination), "--ecraser")
    report.equal("une source hors de la page de codes : état 0", outcome.status, 0)
    report.equal("copiée", names_below(place.destination),
                 {f"{MOON} à".encode(), f"{MOON} à/x.txt".encode()})


def absent_drive(place, report):
    """Un lecteur absent : état 3 et la cause, sans rien écrire"""
    write(f"{place.source}/a.txt")
    place.write_settings(place.line().replace('"F:\\"', '"Q:\\Sauvegardes"'))
    outcome = place.console("sauvegarder")
    report.equal("état 3", outcome.status, 3)
    report.check("la cause est dite", "Le disque destination n'existe pas." in outcome.all, outcome)
    report.check("aucun résultat n'est noté", b"LastSave" not in place.read_settings())


def other_alphabet_in_settings(place, report):
    """Un chemin hors de la page de codes : les réglages sont en UTF-16, et le restent"""
    place.source = f"{place.prefix.drives['e']}/{MOON} 日本"
    place.copy = f"{place.destination}/{MOON} 日本"
    write(f"{place.source}/a.txt", "a")
    with open(place.settings, "wb") as file:
        file.write(place.line().replace("\n", "\r\n").encode("utf-16"))
    outcome = place.console("sauvegarder")
    report.equal("état 0", outcome.status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    text = read(place.settings).decode("utf-16")
    report.check("le résultat est noté", re.search(rf"^LastSave={DATE}\r$", text, re.M), text)
    report.check("la source est gardée", f'Source0="E:\\{MOON} 日本"' in text, text)


def other_code_pages(place, report):
    """Les réglages et la liste des erreurs sont dans la page de codes du système, quelle qu'elle soit"""
    # The second bytes of the Japanese names are "\\", "[", "]" and "|" in that page.
    for language, page, name in (("ru_RU", "cp1251", "Мои фото"), ("pl_PL", "cp1250", "Łódź"),
                                 ("ja_JP", "cp932", "構ゼゾポ 表")):
        place.prefix.empty_drives()
        place.speak(language)
        place.move_source(name)
        write(f"{place.source}/{name} 1/été.txt", "hors de la page, parfois")
        write(f"{place.source}/{name}.txt", "un répertoire est à sa place")
        write(f"{place.copy}/{name}.txt/plein", "")
        lines = place.line(name, f'Description="{name}"\nRepExclu0_Mode=0\n')
        text = f"; {name}\n[Position]\nContinueOnError=-1\nConfig={name}\n{lines}"
        with open(place.settings, "wb") as file:
            file.write(text.replace("\n", "\r\n").encode(page))
        outcome = place.console("sauvegarder")
        report.equal(f"{page} : état 1, une erreur", outcome.status, 1)
        report.check(f"{page} : le reste est copié",
                     names_below(place.source) <= names_below(place.copy))
        after = place.read_settings().decode(page)
        report.check(f"{page} : ce qui y était est gardé",
                     after.startswith(f"; {name}\r\n[Position]") and
                     all(line in after.split("\r\n") for line in text.split("\n")), after)
        report.equal(f"{page} : le résultat est noté sous ce nom",
                     section(place.read_settings(), name, page).get("LastSaveNbErr"), "1")
        journal = read(f"{place.home}/S_{name}.err").decode(page)
        report.check(f"{page} : la liste des erreurs nomme le fichier",
                     f"{drive_path(place.source)}\\{name}.txt" in journal, journal)
        shown = place.console("journal")
        report.check(f"{page} : et se relit", f"{name}.txt" in shown.out, shown)


def case_of_names(place, report):
    """Un nom qui ne diffère que par la casse est le même fichier"""
    write(f"{place.source}/Lettre.txt", "nouveau")
    write(f"{place.copy}/LETTRE.TXT", "ancien")
    touch(f"{place.source}/Lettre.txt", 60)
    outcome = place.backup("--ecraser", "--json")
    report.equal("état 0", outcome.status, 0)
    names = [name for name in os.listdir(place.copy) if not name.startswith(".~coffrelune-")]
    report.equal("un seul fichier dans la copie", len(names), 1)
    report.equal("son contenu est remplacé", read(f"{place.copy}/{names[0]}"), b"nouveau")
    report.equal("la deuxième fois, rien", (place.backup("--json", "--ecraser").json() or {})
                 .get("files"), 0)


def link_in_the_copy(place, report):
    """Un lien qui se trouve dans la copie n'est pas suivi : ce qu'il montre reste intact"""
    write(f"{place.source}/s/a.txt", "nouveau")
    write(f"{place.source}/z.txt", "z")
    write(f"{place.destination}/Travail/a.txt", "à moi")
    os.makedirs(place.copy)
    os.symlink("../Travail", f"{place.copy}/s")
    outcome = place.backup("--ecraser")
    report.equal("état 1, une erreur", outcome.status, 1)
    report.check("elle est nommée", "Erreur: 267" in outcome.all, outcome)
    report.equal("ce que le lien montre est intact", read(f"{place.destination}/Travail/a.txt"),
                 "à moi".encode())
    report.equal("rien n'y est ajouté", os.listdir(f"{place.destination}/Travail"), ["a.txt"])
    os.unlink(f"{place.copy}/s")
    report.equal("le lien enlevé, état 0", place.backup("--ecraser").status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])


def odd_end_of_a_destination(place, report):
    """Un blanc ou un point au bout d'une destination : celle que les autres programmes ouvrent"""
    write(f"{place.source}/a.txt", "a")
    os.makedirs(f"{place.destination}/Save")
    for end in (" ", "."):
        outcome = place.console("sauvegarder", "--source", drive_path(place.source),
                                "--destination", drive_path(place.destination) + "Save" + end,
                                "--ecraser")
        report.equal(f"« Save{end} » : état 0", outcome.status, 0)
    report.equal("rien d'autre n'est créé", os.listdir(place.destination), ["Save"])
    report.equal("la copie est dans Save",
                 differences(place.source, f"{place.destination}/Save/Données"), [])


def afresh(place):
    """As before a backup."""
    shutil.rmtree(place.copy, ignore_errors=True)
    place.write_settings(place.line())


def killed(place, report):
    """Tué pendant la copie : rien d'abîmé sous un nom définitif, et rien n'en reste ensuite"""
    for number in range(40):
        write(f"{place.source}/f{number}.bin", os.urandom(8 * 1024 * 1024))
    place.write_settings(place.line())

    def finished():
        return {name for name in names_below(place.copy) if re.fullmatch(rb"f\d+\.bin", name)}

    # Not by another program of Windows, which would take longer to start than the copy.
    program = caught(lambda: place.start("coffrelune-console", "sauvegarder"),
                     lambda: os.path.isdir(place.copy) and os.listdir(place.copy),
                     lambda: afresh(place), lambda: len(finished()) < 40)
    if not report.check("il était en route", program):
        return
    program.kill()
    wait(program)
    copied = finished()
    report.check("tout n'était pas copié", len(copied) < 40, copied)
    report.equal("ce qui porte son nom est entier",
                 [name for name in incomplete(place.source, place.copy) if name in copied], [])
    report.equal("la sauvegarde suivante : état 0", place.console("sauvegarder").status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])


def is_unfinished(copy):
    """The certificate in the root of a copy says that a run has not ended."""
    names = [name for name in (os.listdir(copy) if os.path.isdir(copy) else [])
             if name.endswith(".copie")]
    return any(b"etat=inachevee" in read(f"{copy}/{name}") for name in names)


def two_at_once(place, report):
    """Un deuxième programme sur les mêmes réglages est refusé avant de les lire"""
    for number in range(40):
        write(f"{place.source}/f{number}.bin", os.urandom(8 * 1024 * 1024))
    place.write_settings(place.line())
    # The certificate of an unfinished copy is there as long as it copies. It stands still
    # meanwhile: else it may be done before the second one, on a slow machine.
    first = caught(lambda: place.start("coffrelune-console", "sauvegarder"),
                   lambda: is_unfinished(place.copy),
                   lambda: afresh(place),
                   lambda: is_unfinished(place.copy))
    if not report.check("le premier est en route", first):
        return
    before = place.read_settings()
    second = place.console("sauvegarder")
    if report.check("le premier l'est encore", first.poll() is None):
        report.equal("le deuxième : état 3", second.status, 3)
        report.check("il dit pourquoi", "LE PROGRAMME EST DEJA EN MEMOIRE !" in second.all, second)
        report.equal("les réglages n'ont pas changé", place.read_settings(), before)
    first.send_signal(signal.SIGCONT)
    report.equal("le premier finit", wait(first).status, 0)
    report.equal("après lui, un autre peut courir", place.console("sauvegarder").status, 0)


def window_program(place, report):
    """Le programme à fenêtres s'ouvre, se ferme par sa fenêtre et retient sa configuration"""
    place.write_settings(place.line("Travail"))
    program = place.start("coffrelune", "/Travail")
    title = ["xdotool", "search", "--onlyvisible", "--name", "^Coffrelune Version "]
    shown = wait_until(lambda: subprocess.run(title, capture_output=True, check=False).returncode == 0,
                       program)
    report.check("sa fenêtre est là", shown)
    report.check("elle reste", program.poll() is None)
    place.prefix.run("taskkill", "/IM", "coffrelune.exe")  # asks its windows to close
    report.equal("état 0", wait(program).status, 0)
    keys = section(place.read_settings(), "Position")
    report.equal("la configuration est retenue", keys.get("Config"), "Travail")
    report.check("la place de la fenêtre aussi", "Left" in keys and "Top" in keys, keys)


SCENARIOS = (whole_tree, as_xcopy, as_robocopy, accents_in_a_pipe, accents_on_a_console, arguments_as_typed,
             absent_drive, other_alphabet_in_settings, other_code_pages, case_of_names,
             link_in_the_copy, odd_end_of_a_destination, killed, two_at_once, window_program)
