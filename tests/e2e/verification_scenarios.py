"""Copies whose contents are compared with their originals."""

import os
import shutil

from harness import drive_path, read, write


def state_of(*roots):
    """Every name below, with its times, its mode and its content."""
    found = {}
    for root in roots:
        for directory, names, files in os.walk(root):
            for name in [*names, *files]:
                path = os.path.join(directory, name)
                information = os.lstat(path)
                content = None
                if os.path.isfile(path) and not os.path.islink(path):
                    content = read(path)
                found[path] = (information.st_mtime_ns, information.st_mode, content)
    return found


def one_flipped_bit(place, report):
    """Un bit changé dans un fichier parmi 10 000, à la même date et de la même taille"""
    for number in range(10000):
        write(f"{place.source}/{number // 500}/{number}.txt", f"{number} " * 20)
    write(f"{place.source}/gros.bin", os.urandom(3 << 20))
    report.equal("la sauvegarde", place.backup("--ecraser").status, 0)
    arguments = ("verifier", "--source", place.typed(place.source), "--destination",
                 place.typed(place.destination))
    outcome = place.console(*arguments)
    report.check("tout est pareil", outcome.status == 0 and
                 "10001 fichier(s) lu(s), 0 différence(s)" in outcome.out, outcome)
    for name in ("13/6789.txt", "gros.bin"):
        path = f"{place.copy}/{name}"
        whole = read(path)
        times = os.stat(path)
        with open(path, "r+b") as file:
            file.seek(len(whole) - 5)
            file.write(bytes([whole[-5] ^ 0x10]))
        os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
        before = state_of(place.source, place.destination)
        result = place.console("comparer", *arguments[1:], "--json").json() or {}
        report.equal("une comparaison ne le voit pas", result.get("outcome"), "clean")
        outcome = place.console(*arguments, "--json")
        result = outcome.json() or {}
        report.equal("état 1", outcome.status, 1)
        report.equal("une différence", (result.get("kind"), result.get("outcome"),
                                        result.get("files"), result.get("filesRead")),
                     ("verification", "differences", 1, 10001))
        wanted = drive_path(path) + " est différent, à la même date"
        report.check("le fichier est nommé", wanted in result.get("list", []), result.get("list"))
        report.equal("rien n'a changé", state_of(place.source, place.destination), before)
        with open(path, "wb") as file:
            file.write(whole)
        os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
    report.equal("réparé, tout est pareil", place.console(*arguments).status, 0)


def what_differs(place, report):
    """Ce qui manque, ce qui a changé, les liens, et ce que la ligne exclut"""
    for name in ("a.txt", "b.txt", "c.txt", "Tmp/d.txt", "vide"):
        write(f"{place.source}/{name}", "" if name == "vide" else name)
    os.symlink("a.txt", f"{place.source}/lien")
    os.symlink("nulle part", f"{place.source}/perdu")
    place.write_line(more="RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n")
    report.equal("la sauvegarde", place.console("sauvegarder").status, 0)
    settings = place.read_settings()
    outcome = place.console("verifier")
    report.check("tout est pareil, sans ce qui est exclu", outcome.status == 0 and
                 "6 fichier(s) lu(s), 0 différence(s)" in outcome.out, outcome)
    os.remove(f"{place.copy}/a.txt")
    write(f"{place.copy}/b.txt", "B.txt")
    os.utime(f"{place.copy}/c.txt")
    os.remove(f"{place.copy}/lien")
    os.symlink("b.txt", f"{place.copy}/lien")
    os.remove(f"{place.copy}/vide")
    write(f"{place.copy}/en plus", "x")
    found = place.console("verifier", "--json").json() or {}
    report.equal("ce qui diffère", sorted(found.get("list", [])[1:-1]), sorted(
        drive_path(f"{place.copy}/{name}") + text for name, text in (
            ("a.txt", " n'existe pas"), ("vide", " n'existe pas"), ("b.txt", " est différent"),
            ("lien", " est différent"))))
    found = place.console("verifier", "--inverse", "--json").json() or {}
    report.check("ce que la source n'a pas", drive_path(f"{place.source}/en plus") +
                 " n'existe pas" in found.get("list", []), found.get("list"))
    report.equal("aucun résultat n'est enregistré", place.read_settings(), settings)
    report.equal("aucune liste d'erreurs", [name for name in os.listdir(place.home)
                                            if name.endswith(".err")], [])
    shutil.rmtree(place.source)
    outcome = place.console("verifier")
    report.equal("sans la source, état 1", outcome.status, 1)


def single_file(place, report):
    """Un seul fichier est vérifié comme les autres"""
    write(f"{place.source}/a.txt", "contenu")
    line = ("--source", place.typed(f"{place.source}/a.txt"), "--destination",
            place.typed(place.destination))
    report.equal("sa copie", place.console("sauvegarder", *line, "--ecraser").status, 0)
    report.equal("pareille", place.console("verifier", *line).status, 0)
    write(f"{place.destination}/a.txt", "Contenu")
    outcome = place.console("verifier", *line)
    report.check("différente", outcome.status == 1 and "est différent" in outcome.out, outcome)


def what_cannot_be_read(place, report):
    """Un fichier illisible est une erreur, et non une différence"""
    write(f"{place.source}/a.txt", "contenu")
    write(f"{place.source}/b.txt", "contenu")
    report.equal("la sauvegarde", place.backup("--ecraser").status, 0)
    place.become_nobody()
    os.chmod(f"{place.copy}/a.txt", 0)
    outcome = place.console("verifier", "--source", place.typed(place.source), "--destination",
                            place.typed(place.destination), "--json")
    result = outcome.json() or {}
    report.equal("état 1", (outcome.status, result.get("outcome")), (1, "errors"))
    report.equal("nommé avec son numéro", result.get("errors"),
                 [{"number": 5, "path": drive_path(f"{place.copy}/a.txt")}])


SCENARIOS = (one_flipped_bit, what_differs, single_file, what_cannot_be_read)
