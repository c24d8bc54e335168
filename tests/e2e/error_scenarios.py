"""Wrong use, and disks that refuse."""

import os
import re
import shutil
import subprocess

from harness import differences, drive_path, names_below, read, touch, write


def wrong_use(place, report):
    """Un mauvais usage : état 2, un message en français, rien de fait"""
    write(f"{place.source}/a.txt")
    cases = (
        ("option inconnue", ["--nimporte"], "--nimporte"),
        ("source sans destination", None, "--destination"),
        ("argument de trop", ["surplus"], "surplus"),
    )
    for name, more, named in cases:
        if more is None:
            outcome = place.console("sauvegarder", "--source", place.source, "--ecraser")
        else:
            outcome = place.backup("--ecraser", *more)
        report.equal(f"{name} : état 2", outcome.status, 2)
        report.check(f"{name} : le message le nomme", named in outcome.err, outcome)
        english = re.search(r"\b(argument was|expected|required|requires|not allowed|excludes|help "
                            r"for|following|more information|run with)\b", outcome.err, re.I)
        report.check(f"{name} : rien d'anglais", not english, outcome)
    report.equal("rien n'est copié", names_below(place.destination), set())


def unknown_command(place, report):
    """Une commande inconnue, ou aucune : état 2"""
    for arguments, named in ((["sauvegrader"], "sauvegrader"), ([], "commande")):
        outcome = place.console(*arguments)
        report.equal(f"{arguments} : état 2", outcome.status, 2)
        report.check(f"{arguments} : le message nomme « {named} »", named in outcome.err, outcome)


def help_text(place, report):
    """L'aide est en français et nomme les commandes et les options"""
    expected = {
        (): ("sauvegarder", "restaurer", "comparer", "journal", "resultats"),
        ("sauvegarder",): ("--config", "--source", "--destination", "--ecraser", "--conserver",
                           "--journal", "--json"),
        ("restaurer",): ("--confirmer",),
        ("comparer",): ("--inverse",),
        ("journal",): ("--type",),
        ("resultats",): ("--config",),
    }
    for command, words in expected.items():
        outcome = place.console(*command, "--help")
        name = " ".join(command) or "programme"
        report.equal(f"{name} : état 0", outcome.status, 0)
        report.equal(f"{name} : tout est nommé", [word for word in words
                                                  if word not in outcome.out], [])
        english = re.findall(r"\b(Usage|Subcommands|Print this|REQUIRED|TEXT|Excludes|Needs|value "
                             r"in|OR)\b", outcome.out)
        report.equal(f"{name} : rien d'anglais", english, [])


def missing_source(place, report):
    """Une source qui n'existe pas : état 2"""
    outcome = place.console("sauvegarder", "--source", f"{place.root}/nulle part", "--destination",
                            place.destination, "--ecraser")
    report.equal("état 2", outcome.status, 2)
    report.check("le message la nomme", "nulle part" in outcome.err, outcome)
    report.equal("rien n'est créé", names_below(place.destination), set())


def missing_pictures(place, report):
    """« Mes images » absente, que la fenêtre tait : la console la dit comme toute source absente"""
    write(f"{place.source}/a.txt", "a")
    place.write_line(more=f"""Source1="{drive_path(place.root)}\\Mes images"
Destination1="{drive_path(place.destination)}"
Select1=1
""")
    outcome = place.console("sauvegarder", "--ecraser", "--json")
    report.equal("état 1", outcome.status, 1)
    report.check("le message la nomme", "Mes images est introuvable." in outcome.err, outcome)
    missing = [line.get("sourceMissing") for line in (outcome.json() or {}).get("lines", [])]
    report.equal("le JSON aussi", missing, [False, True])
    report.check("le reste est copié", os.path.exists(f"{place.copy}/a.txt"))


def missing_destination(place, report):
    """Un disque de destination absent : état 3 et la cause, rien n'est créé"""
    write(f"{place.source}/a.txt")
    os.rmdir(place.destination)
    place.write_line()
    outcome = place.console("sauvegarder")
    report.equal("état 3", outcome.status, 3)
    report.check("la cause est dite", "Le disque destination n'existe pas." in outcome.all, outcome)
    report.check("rien n'est créé", not os.path.exists(place.destination))


def new_destination(place, report):
    """Une destination nommée sur la ligne de commande est créée, sauf là où se branchent les disques"""
    write(f"{place.source}/a.txt")
    os.rmdir(place.destination)
    outcome = place.backup("--ecraser")
    report.equal("état 0", outcome.status, 0)
    report.check("la création est dite", "Disque de sauvegarde" in outcome.all, outcome)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    for absent in (f"{place.root}/absent/plus bas", "/mnt/coffrelune-essai-absent"):
        outcome = place.console("sauvegarder", "--source", place.source, "--destination", absent,
                                "--ecraser")
        report.equal(f"{absent} : état 3", outcome.status, 3)
        report.check(f"{absent} : la cause est dite",
                     "Le disque destination n'existe pas." in outcome.all, outcome)
        report.check(f"{absent} : rien n'est créé", not os.path.exists(os.path.dirname(absent))
                     if "plus bas" in absent else not os.path.exists(absent))


def unreadable(place, continue_on_error):
    """A tree with one file that may not be read, run through the settings file."""
    write(f"{place.source}/a/secret.txt", "secret")
    for name in ("b/après.txt", "c/après.txt"):
        write(f"{place.source}/{name}", "lisible")
    place.write_line(f"ContinueOnError={continue_on_error}\n")
    place.become_nobody()
    os.chmod(f"{place.source}/a/secret.txt", 0)
    return place.console("sauvegarder", "--json")


def unreadable_continues(place, report):
    """Un fichier illisible avec ContinueOnError : compté, et la suite est copiée"""
    outcome = unreadable(place, -1)
    result = outcome.json() or {}
    report.equal("état 1", outcome.status, 1)
    errors = result.get("errors", [])
    report.equal("une erreur, le numéro 5", [error.get("number") for error in errors], [5])
    report.check("son chemin", all(error.get("path", "").replace("\\", "/").endswith(
        "Données/a/secret.txt") for error in errors) and errors, errors)
    report.equal("les autres sont copiés",
                 [os.path.exists(f"{place.copy}/{name}/après.txt") for name in "bc"], [True, True])
    report.check("rien sous le nom du fichier illisible",
                 not os.path.exists(f"{place.copy}/a/secret.txt"))
    settings = place.read_settings().decode("cp1252")
    report.check("le résultat est noté avec ses erreurs",
                 re.search(r"^LastSaveErr=\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\r$", settings, re.M) and
                 re.search(r"^LastSaveNbErr=1\r$", settings, re.M), settings)
    report.check("et non comme une réussite", not re.search(r"^LastSave=", settings, re.M), settings)


def unreadable_stops(place, report):
    """Un fichier illisible sans ContinueOnError : la sauvegarde s'arrête"""
    outcome = unreadable(place, 0)
    report.equal("état 3", outcome.status, 3)
    report.equal("l'erreur est dans l'objet",
                 [error.get("number") for error in (outcome.json() or {}).get("errors", [])], [5])
    settings = place.read_settings().decode("cp1252")
    report.check("aucun résultat n'est noté", "LastSave" not in settings, settings)


def unreadable_text(place, report):
    """La cause d'un arrêt est dite en clair"""
    write(f"{place.source}/secret.txt", "secret")
    place.write_line("ContinueOnError=0\n")
    place.become_nobody()
    os.chmod(f"{place.source}/secret.txt", 0)
    outcome = place.console("sauvegarder")
    report.equal("état 3", outcome.status, 3)
    report.check("« Sauvegarde interrompue ! » et la cause",
                 "Sauvegarde interrompue !" in outcome.all and
                 "Accès disque destination refusé." in outcome.all, outcome)


def unreadable_raw_name(place, report):
    """Une erreur sur un nom qui n'est pas de l'UTF-8 laisse l'objet JSON lisible"""
    name = os.fsencode(place.source) + b"/caf\xe9.txt"
    write(name, "secret")
    write(f"{place.source}/lisible.txt", "lisible")
    place.become_nobody()
    os.chmod(name, 0)
    outcome = place.backup("--ecraser", "--json")
    report.equal("état 1", outcome.status, 1)
    report.equal("une erreur dans l'objet", len((outcome.json() or {}).get("errors", [])), 1)
    report.equal("l'autre fichier est copié", read(f"{place.copy}/lisible.txt"), b"lisible")


def unreadable_directory(place, report):
    """Un répertoire illisible est une erreur comptée une fois, jamais une sauvegarde « sans erreur »"""
    write(f"{place.source}/fermé/a.txt", "a")
    write(f"{place.source}/b.txt", "b")
    place.become_nobody()
    os.chmod(f"{place.source}/fermé", 0)
    for name in ("avec une copie", "sans rien d'autre à copier"):
        outcome = place.backup("--ecraser", "--json")
        errors = (outcome.json() or {}).get("errors", [])
        report.equal(f"{name} : état 1", outcome.status, 1)
        report.check(f"{name} : une erreur qui le nomme", len(errors) == 1 and
                     errors[0].get("path", "").rstrip("\\").endswith("fermé"), outcome)
        report.check(f"{name} : aucun « sans erreur »", "sans erreur" not in outcome.all, outcome)
    report.equal("le reste est copié", read(f"{place.copy}/b.txt"), b"b")


def unsearchable_directory(place, report):
    """Un répertoire dont on lit les noms mais pas les fichiers : chacun est nommé"""
    write(f"{place.source}/à part/secret.txt", "secret")
    os.chmod(f"{place.source}/à part", 0o444)
    place.become_nobody()
    outcome = place.backup("--ecraser", "--json")
    os.chmod(f"{place.source}/à part", 0o755)
    result = outcome.json() or {}
    report.equal("état 1", outcome.status, 1)
    report.check("le fichier est nommé",
                 any(error["path"].endswith(r"\secret.txt") for error in result.get("errors", [])),
                 outcome)


def file_in_the_way(place, report):
    """Un fichier qui porte le nom d'un répertoire à créer est une erreur, et reste"""
    write(f"{place.source}/sous/a.txt", "a")
    write(f"{place.copy}/sous", "un fichier")
    outcome = place.backup("--ecraser")
    report.check("un état d'échec", outcome.status in (1, 3), outcome)
    report.equal("le fichier est resté", read(f"{place.copy}/sous"), b"un fichier")
    report.check("rien n'est à copier sans lui, et son erreur est comptée",
                 "Rien à sauvegarder !" in outcome.out and
                 "\nNombre d'erreur(s): 1" in outcome.out, outcome)


def directory_in_the_way(place, report):
    """Un répertoire qui porte le nom d'un fichier à copier est une erreur, et reste"""
    write(f"{place.source}/a", "fichier")
    write(f"{place.copy}/a/dedans.txt", "précieux")
    touch(f"{place.source}/a", 60)  # the same time would be no reason to copy
    outcome = place.backup("--ecraser")
    report.check("un état d'échec", outcome.status in (1, 3), outcome)
    report.equal("son contenu est resté", read(f"{place.copy}/a/dedans.txt"), "précieux".encode())


def full_destination(place, report):
    """Une destination pleine : la cause est dite, l'ancienne copie est intacte"""
    if os.geteuid() != 0 or shutil.which("mount") is None:
        report.leave_out("destination pleine", "il faut root et mount pour monter un petit disque")
        return
    mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1m", "petit", place.destination],
                             capture_output=True, check=False)
    if mounted.returncode != 0:
        report.leave_out("destination pleine", mounted.stderr.decode(errors="replace").strip())
        return
    try:
        write(f"{place.copy}/gros.bin", "ancien")
        write(f"{place.source}/gros.bin", os.urandom(3_000_000))
        touch(f"{place.source}/gros.bin", 60)
        place.write_line("ContinueOnError=0\n")
        outcome = place.console("sauvegarder")
        report.equal("état 3", outcome.status, 3)
        report.check("la cause est dite", "Le disque destination est plein." in outcome.all, outcome)
        report.equal("l'ancienne copie est intacte", read(f"{place.copy}/gros.bin"), b"ancien")
        report.equal("aucun reste", names_below(place.copy), {b"gros.bin"})
        write(f"{place.source}/petit.txt", "petit")
        outcome = place.backup("--ecraser", "--json")
        report.equal("avec --source : état 1", outcome.status, 1)
        report.equal("avec --source : l'erreur 112", [error.get("number") for error in (
            outcome.json() or {}).get("errors", [])], [112])
        report.equal("avec --source : le petit est copié", read(f"{place.copy}/petit.txt"), b"petit")
    finally:
        subprocess.run(["umount", place.destination], check=True)


def read_only_destination(place, report):
    """Une destination où l'on ne peut écrire : une erreur, l'ancienne copie est intacte"""
    write(f"{place.source}/a.txt", "nouveau")
    write(f"{place.copy}/a.txt", "ancien")
    touch(f"{place.source}/a.txt", 60)
    place.write_line("ContinueOnError=0\n")
    if os.geteuid() != 0:
        report.leave_out("destination d'un autre", "il faut root pour la donner à un autre")
        return
    place.become_nobody()
    os.chown(place.copy, 0, 0)
    outcome = place.console("sauvegarder")
    report.equal("état 3", outcome.status, 3)
    report.check("la cause est dite", "Accès disque destination refusé." in outcome.all, outcome)
    report.equal("l'ancienne copie est intacte", read(f"{place.copy}/a.txt"), b"ancien")


def replaces_read_only_copy(place, report):
    """Une copie en lecture seule est remplacée au deuxième essai"""
    write(f"{place.source}/a.txt", "nouveau")
    write(f"{place.copy}/a.txt", "ancien")
    os.chmod(f"{place.copy}/a.txt", 0o444)
    touch(f"{place.source}/a.txt", 60)
    place.become_nobody()
    outcome = place.backup("--ecraser")
    report.equal("état 0", outcome.status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])


SCENARIOS = (wrong_use, unknown_command, help_text, missing_source, missing_pictures,
             missing_destination,
             new_destination, unreadable_continues, unreadable_stops, unreadable_text,
             unreadable_raw_name, unreadable_directory, unsearchable_directory, file_in_the_way,
             directory_in_the_way,
             full_destination, read_only_destination, replaces_read_only_copy)
