"""Backups of a source to a destination named on the command line."""

import os
import stat
import subprocess

from harness import PATIENCE, differences, names_below, read, times_of, touch, write

NEVER_COPIED = ("pagefile.sys", "HIBERFIL.SYS", "Thumbs.db", "NTUSER.DAT", "ntuser.dat.LOG",
                "UsrClass.dat", "usrclass.DAT.log")
NEVER_ENTERED = ("System Volume Information", "Recycled")


def plant_tree(root):
    """Names and kinds of entries that a real disk holds."""
    write(f"{root}/Liste de courses.txt", "Tomates")
    write(f"{root}/Été/À la plage/Château de sable.jpg", os.urandom(200_000))
    write(f"{root}/Été/À la plage/  blancs autour  ", "blancs")
    write(f"{root}/vide.txt", "")
    os.makedirs(f"{root}/Répertoire vide/encore un")
    write(f"{root}/lecture seule.txt", "ne pas toucher")
    os.chmod(f"{root}/lecture seule.txt", 0o444)
    write(f"{root}/exécutable", "#!/bin/sh\n")
    os.chmod(f"{root}/exécutable", 0o755)
    write(f"{root}/RECYCLED/gardé.txt", "une autre casse est un répertoire comme un autre")
    write(f"{root}/.caché/réglage", "caché")
    write(f"{root}/C:\\essai\\nom.txt", "deux-points et barres")
    write(f"{root}/saut\nde ligne *?\".txt", "contrôle")
    write(os.fsencode(root) + b"/latin-\xe9t\xe9/caf\xe9.txt", "octets")
    os.symlink("Liste de courses.txt", f"{root}/lien vers un fichier")
    os.symlink("Été", f"{root}/lien vers un répertoire")
    os.symlink("..", f"{root}/Été/lien vers le parent")
    os.symlink("nulle part", f"{root}/lien mort")
    with open(f"{root}/à trous.bin", "wb") as file:
        file.write("début".encode())
        file.seek(30_000_000)
        file.write(b"fin")


def plant_left_out(root):
    for name in NEVER_COPIED:
        write(f"{root}/Été/{name}", "à laisser")
    for name in NEVER_ENTERED:
        write(f"{root}/{name}/dedans.txt", "à laisser")
    os.mkfifo(f"{root}/tuyau")


def whole_tree(place, report):
    """Un arbre réel est copié entier, une deuxième fois rien ne l'est, puis ce qui a changé"""
    plant_tree(place.source)
    first = place.backup("--ecraser")
    report.equal("première sauvegarde : état 0", first.status, 0)
    report.check("elle se dit terminée sans erreur", "Sauvegarde terminée sans erreur." in first.out,
                 first)
    report.check("elle dit sa durée", "Durée : 00:00:" in first.out, first)
    report.check("hors d'un terminal, aucun code d'échappement", "\x1b" not in first.all, first)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])
    report.equal("les dates sont égales à 100 ns", times_of(place.copy), times_of(place.source))
    mode = stat.S_IMODE(os.stat(f"{place.copy}/lecture seule.txt").st_mode)
    report.equal("la copie d'un fichier en lecture seule l'est aussi", mode & 0o222, 0)
    sparse = os.stat(f"{place.copy}/à trous.bin")
    report.check("les trous restent des trous", sparse.st_blocks * 512 < sparse.st_size // 10,
                 f"{sparse.st_blocks} blocs pour {sparse.st_size} octets")

    second = place.backup("--ecraser", "--json")
    report.equal("deuxième sauvegarde : état 0", second.status, 0)
    report.equal("elle ne copie aucun fichier", (second.json() or {}).get("files"), 0)
    second = place.backup("--ecraser")
    report.check("elle dit « Rien à sauvegarder ! »", "Rien à sauvegarder !" in second.out, second)

    changed = ["Liste de courses.txt", "Été/À la plage/Château de sable.jpg", "lecture seule.txt"]
    before = {name: os.stat(os.path.join(os.fsencode(place.copy), name)).st_ino
              for name in times_of(place.copy) if not os.path.islink(
                  os.path.join(os.fsencode(place.copy), name))}
    for name in changed:
        touch(f"{place.source}/{name}", 10)
    third = place.backup("--ecraser", "--json")
    report.equal("trois fichiers changés : état 0", third.status, 0)
    report.equal("trois fichiers copiés", (third.json() or {}).get("files"), 3)
    after = {name: os.stat(os.path.join(os.fsencode(place.copy), name)).st_ino for name in before}
    report.equal("ceux-là et nuls autres", {name for name in before if before[name] != after[name]},
                 {os.fsencode(name) for name in changed})
    report.equal("dates de nouveau égales à 100 ns", times_of(place.copy), times_of(place.source))
    report.equal("diff ne trouve toujours rien", differences(place.source, place.copy), [])


def fixed_exclusions(place, report):
    """Les fichiers du système et les tuyaux ne sont jamais copiés"""
    plant_tree(place.source)
    plant_left_out(place.source)
    outcome = place.backup("--ecraser")
    report.equal("état 0", outcome.status, 0)
    missing = set(differences(place.source, place.copy))
    expected = {f"Only in {place.source}/Été: {name}" for name in NEVER_COPIED}
    expected |= {f"Only in {place.source}: {name}" for name in (*NEVER_ENTERED, "tuyau")}
    report.equal("il ne manque qu'eux", missing, expected)


def documentation_tree(place, report):
    """Un grand arbre de la machine est copié à l'identique"""
    source = "/usr/share/doc"
    if not os.path.isdir(source):
        report.leave_out("grand arbre", f"{source} n'existe pas ici")
        return
    outcome = place.console("sauvegarder", "--source", source, "--destination", place.destination,
                            "--ecraser", "--json")
    result = outcome.json() or {}
    report.equal("état 0", outcome.status, 0)
    copy = os.path.join(place.destination, "doc")
    report.equal("diff ne trouve rien", differences(source, copy), [])
    report.equal("le compte des fichiers est juste", result.get("files"), len(times_of(source)))
    again = place.console("sauvegarder", "--source", source, "--destination", place.destination,
                          "--ecraser", "--json")
    report.equal("une deuxième fois : aucun fichier", (again.json() or {}).get("files"), 0)


def json_object(place, report):
    """--json écrit un seul objet, complet"""
    write(f"{place.source}/a.txt", "12345")
    write(f"{place.source}/b/c.txt", "678")
    outcome = place.backup("--ecraser", "--json")
    result = outcome.json()
    if not report.check("toute la sortie est un objet JSON", result is not None, outcome):
        return
    keys = {"kind", "configuration", "lines", "files", "bytes", "errors", "duration", "outcome"}
    report.equal("toutes les clés y sont", keys - set(result), set())
    report.equal("deux fichiers, huit octets", (result["files"], result["bytes"]), (2, 8))
    report.equal("aucune erreur", result["errors"], [])
    report.equal("issue", result["outcome"], "clean")
    report.check("une durée hh:mm:ss", result["duration"].startswith("00:00:"), result)
    if report.equal("une ligne", len(result["lines"]), 1):
        line = result["lines"][0]
        report.equal("la ligne a ses clés",
                     {"source", "destination", "files", "bytes", "errors"} - set(line), set())
        report.equal("ses comptes", (line.get("files"), line.get("bytes")), (2, 8))
    again = place.backup("--ecraser", "--json").json() or {}
    report.equal("la deuxième fois, rien", (again.get("outcome"), again.get("files")),
                 ("nothing", 0))


def single_file(place, report):
    """Une source qui est un fichier est copiée à chaque fois"""
    write(f"{place.source}/seul.txt", "un")
    arguments = ["sauvegarder", "--source", f"{place.source}/seul.txt", "--destination",
                 place.destination, "--ecraser"]
    report.equal("état 0", place.console(*arguments).status, 0)
    report.equal("le fichier est copié", read(f"{place.destination}/seul.txt"), b"un")
    number = os.stat(f"{place.destination}/seul.txt").st_ino
    report.equal("état 0 la deuxième fois", place.console(*arguments).status, 0)
    report.check("il est copié de nouveau",
                 os.stat(f"{place.destination}/seul.txt").st_ino != number, "même fichier")


def relative_paths(place, report):
    """Des chemins relatifs partent du répertoire de l'appelant"""
    write(f"{place.source}/a.txt")
    outcome = place.console("sauvegarder", "--source", "../Données/", "--destination", ".",
                            "--ecraser", cwd=place.destination)
    report.equal("état 0", outcome.status, 0)
    report.equal("diff ne trouve rien", differences(place.source, place.copy), [])


def equal_time_other_size(place, report):
    """Une autre taille avec la même date n'est pas une raison de copier"""
    write(f"{place.source}/a.txt", "nouveau et plus long")
    write(f"{place.copy}/a.txt", "ancien")
    same = os.stat(f"{place.source}/a.txt").st_mtime_ns // 100 * 100
    for directory in (place.source, place.copy):
        os.utime(f"{directory}/a.txt", ns=(same, same))
    outcome = place.backup("--ecraser")
    report.equal("état 0", outcome.status, 0)
    report.equal("la copie est restée", read(f"{place.copy}/a.txt"), b"ancien")


def destination_inside_source(place, report):
    """Une destination dans la source n'est pas copiée dans elle-même"""
    write(f"{place.source}/a.txt")
    inside = f"{place.source}/copies"
    os.mkdir(inside)
    for _ in range(2):
        outcome = place.console("sauvegarder", "--source", place.source, "--destination", inside,
                                "--ecraser")
        report.equal("état 0", outcome.status, 0)
    report.equal("un seul niveau", names_below(inside),
                 {os.fsencode(name) for name in ("Données", "Données/a.txt", "Données/copies")})


def target_is_the_source(place, report):
    """Une copie qui écraserait sa propre source est refusée"""
    write(f"{place.source}/a.txt", "précieux")
    for name, parent in (("même répertoire", place.root), ("par un lien", f"{place.root}/lien")):
        if parent.endswith("lien"):
            os.symlink(place.root, parent)
        outcome = place.console("sauvegarder", "--source", place.source, "--destination", parent,
                                "--ecraser")
        report.check(f"{name} : refusée", outcome.status != 0, outcome)
        report.equal(f"{name} : la source est intacte", read(f"{place.source}/a.txt"),
                     "précieux".encode())


def closed_output(place, report):
    """Une sortie fermée par son lecteur n'arrête pas la copie"""
    for number in range(2000):
        write(f"{place.source}/f{number}", "x")
    process = place.start("coffrelune-console", *place.backup_arguments("--ecraser", "--journal"),
                          stderr=subprocess.DEVNULL)
    process.stdout.close()
    process.stdout = None
    process.wait(timeout=PATIENCE)
    report.equal("tout est copié", differences(place.source, place.copy), [])


SCENARIOS = (whole_tree, fixed_exclusions, documentation_tree, json_object, single_file,
             relative_paths, equal_time_other_size, destination_inside_source,
             target_is_the_source, closed_output)
