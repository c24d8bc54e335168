"""What a run tells afterwards: its report, how old the last good one is, what the copies held; and
what the system is to start by itself."""

import json
import os
import shutil
import stat

from harness import drive_path, read, write
from settings_scenarios import section


def flip(path, offset=-2):
    """Another bit, at the same date."""
    whole = read(path)
    times = os.stat(path)
    with open(path, "r+b") as file:
        file.seek(len(whole) + offset)
        file.write(bytes([whole[offset] ^ 0x08]))
    os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))


def reports(place, report):
    """--rapport nomme ce que devient chaque fichier, en texte ou en JSON"""
    path = f"{place.root}/rapport.txt"
    for name in ("a.txt", "b.txt", "b.txt", "Sous/c\nd.txt"):
        write(f"{place.source}/{name}", name)
    place.write_line("Config=Travail\nSynchroCopie=-1\n", name="Travail")
    run = ("sauvegarder", "--ecraser", "--rapport")
    report.equal("la première sauvegarde", place.console(*run, path).status, 0)
    lines = read(path).decode().splitlines()
    report.check("titre et fin", lines[0].startswith("Coffrelune, rapport de « sauvegarder », "
                                                     "configuration Travail") and
                 lines[-1] == "Fin : sans erreur (état 0)", lines)
    report.equal("chaque fichier est copié", sorted(lines[1:-1]), sorted(
        "copié : " + drive_path(f"{place.source}/{name}")
        for name in ("a.txt", "b.txt", "Sous/c␊d.txt")))
    write(f"{place.source}/a.txt", "autre chose")
    os.remove(f"{place.source}/b.txt")
    path = f"{place.root}/rapport.jsonl"
    report.equal("la suivante", place.console(*run, path).status, 0)
    entries = [json.loads(line) for line in read(path).decode().splitlines()]
    report.equal("en JSON, ligne par ligne", {
        (entry["outcome"], entry["path"], entry.get("reason")) for entry in entries[1:-1]}, {
            ("deleted", drive_path(f"{place.copy}/b.txt"), None),
            ("replaced", drive_path(f"{place.source}/a.txt"), None),
            ("skipped", drive_path(f"{place.source}/Sous/c\nd.txt"), "à jour")})
    report.equal("la fin", entries[-1], {"end": "sans erreur", "exitStatus": 0})
    write(f"{place.source}/a.txt", "encore")
    report.equal("gardé", place.console("sauvegarder", "--conserver", "--rapport", path).status, 0)
    report.check("dit « conservé »", "conservé" in read(path).decode(), read(path))
    report.equal("une comparaison", place.console("comparer", "--rapport", path).status, 1)
    report.check("a le sien", '"outcome":"differs"' in read(path).decode(), read(path))
    for victim in (f"{place.source}/a.txt", f"{place.copy}/a.txt"):
        before = read(victim)
        outcome = place.console(*run, victim)
        report.check("un fichier de l'utilisateur est laissé", outcome.status == 2 and
                     read(victim) == before and "laissé tel quel" in outcome.err, outcome)
    outcome = place.console(*run, f"{place.root}/absent/rapport.txt")
    report.equal("un rapport impossible empêche la sauvegarde", outcome.status, 2)


def failures_reported(place, report):
    """Un échec est dans le rapport avec son numéro"""
    write(f"{place.source}/a.txt", "contenu")
    write(f"{place.source}/b.txt", "contenu")
    place.become_nobody()
    os.chmod(f"{place.source}/a.txt", 0)
    path = f"{place.home}/rapport.jsonl"
    outcome = place.backup("--ecraser", "--rapport", path)
    entries = [json.loads(line) for line in read(path).decode().splitlines()]
    report.equal("état 1", (outcome.status, entries[-1]["exitStatus"]), (1, 1))
    report.check("le fichier et son erreur", {"outcome": "failed", "line": 1, "path": drive_path(
        f"{place.source}/a.txt"), "number": 5} in entries, entries)


def alert(place, report):
    """resultats --alerte : une sauvegarde trop ancienne se voit à l'état de sortie"""
    write(f"{place.source}/a.txt", "contenu")
    place.write_line("Config=Travail\n", name="Travail")
    outcome = place.console("resultats", "--alerte", "7")
    report.check("sans sauvegarde, état 1", outcome.status == 1 and "ALERTE" in outcome.out, outcome)
    report.equal("une sauvegarde", place.console("sauvegarder").status, 0)
    report.equal("état 0", place.console("resultats", "--alerte", "7").status, 0)
    stored = section(place.read_settings(), "Travail")
    report.check("sa date est gardée", stored.get("LastSaveOk") == stored.get("LastSave"), stored)
    for key in ("LastSave", "LastSaveOk"):
        place.write_settings(place.read_settings().decode("cp1252").replace("\r\n", "\n").replace(
            f"{key}={stored['LastSave']}", f"{key}=01/02/2020 10:00:00"))
    outcome = place.console("resultats", "--alerte", "7", "--json")
    result = outcome.json() or {}
    report.check("ancienne, état 1", outcome.status == 1 and result.get("alert") is True and
                 result.get("lastGoodBackup") == "01/02/2020 10:00:00", outcome)
    report.equal("sans l'option, état 0", place.console("resultats").status, 0)
    report.equal("rien à copier", place.console("sauvegarder").status, 0)
    report.equal("c'est aussi une bonne sauvegarde",
                 place.console("resultats", "--alerte", "7").status, 0)
    report.equal("qui n'est pas un résultat affiché",
                 section(place.read_settings(), "Travail").get("LastSave"), "01/02/2020 10:00:00")
    good = section(place.read_settings(), "Travail").get("LastSaveOk")
    shutil.move(place.source, place.source + " ailleurs")
    report.equal("sans la source", place.console("sauvegarder").status, 1)
    report.equal("ce n'en est pas une",
                 section(place.read_settings(), "Travail").get("LastSaveOk"), good)
    outcome = place.console("resultats", "--alerte", "bientôt")
    report.equal("un nombre de jours est attendu", outcome.status, 2)


def hashes_of_many(place, report):
    """Une liste d'empreintes : un bit changé parmi 10 000 fichiers de la copie, sans l'original"""
    for number in range(10000):
        write(f"{place.source}/{number // 500}/{number}.txt", f"{number} " * 20)
    path = f"{place.root}/liste"
    outcome = place.backup("--ecraser", "--ecrire-empreintes", path)
    report.check("la liste est écrite", outcome.status == 0 and
                 read(path).endswith(b"\nfin 10000\n"), outcome)
    shutil.move(place.source, place.source + " ailleurs")
    check = ("verifier", "--source", place.source, "--destination", place.destination,
             "--empreintes", path)
    outcome = place.console(*check)
    report.check("tout est pareil", outcome.status == 0 and
                 "10000 fichier(s) lu(s), 0 différence(s)" in outcome.out, outcome)
    flip(f"{place.copy}/13/6789.txt")
    os.remove(f"{place.copy}/2/1000.txt")
    write(f"{place.copy}/nouveau.txt", "x")
    outcome = place.console(*check, "--json")
    result = outcome.json() or {}
    report.equal("le bit et ce qui manque", (outcome.status, sorted(result.get("list", [])[1:-1])), (
        1, sorted((drive_path(f"{place.copy}/13/6789.txt") + " est différent, à la même date",
                   drive_path(f"{place.copy}/2/1000.txt") + " n'existe pas"))))
    shutil.move(place.source + " ailleurs", place.source)
    before = read(path)
    outcome = place.console("verifier", "--source", place.source, "--destination",
                            place.destination, "--ecrire-empreintes", path)
    report.equal("la vérification le voit aussi", outcome.status, 1)
    known = [line for line in before.splitlines() if line.endswith(b" 13\\6789.txt")]
    report.check("et ne prend pas le dégât pour bon", known[0] in read(path).splitlines())


def hash_lists(place, report):
    """Une liste suit les sauvegardes ; abîmée, elle n'est pas crue"""
    for name in ("a.txt", "Sous/b\n%.txt", "vide"):
        write(f"{place.source}/{name}", "" if name == "vide" else name)
    path = f"{place.root}/liste"
    place.write_line()
    save = ("sauvegarder", "--ecrire-empreintes", path)
    report.equal("écrite", place.console(*save).status, 0)
    first = read(path)
    report.equal("encore, elle est la même", (place.console(*save).status, read(path)), (0, first))
    write(f"{place.source}/a.txt", "un autre texte")
    report.equal("après un changement", place.console(*save).status, 0)
    report.check("elle a changé", read(path) != first)
    report.equal("la copie est bonne", place.console("verifier", "--empreintes", path).status, 0)
    shutil.move(place.destination, place.destination + " 2")
    report.equal("copie absente", place.console("verifier", "--empreintes", path).status, 1)
    shutil.move(place.destination + " 2", place.destination)
    whole = read(path)
    for broken in (whole[:-4], whole.replace(b"fin 3", b"fin 2"), b"mon journal\n"):
        write(path, broken)
        for command in ("verifier", "--empreintes", path), save:
            outcome = place.console(*command)
            report.check("refusée et laissée", outcome.status == 2 and read(path) == broken, outcome)
    report.equal("il faut une liste",
                 place.console("verifier", "--empreintes", f"{place.root}/rien").status, 2)


def fake(place, name, text):
    path = f"{place.root}/outils/{name}"
    write(path, "#!/bin/sh\n" + text)
    os.chmod(path, stat.S_IRWXU)


def planning(place, report):
    """planifier : un timer de la session, ou une ligne de crontab, et rien d'autre n'est touché"""
    table = f"{place.root}/crontab"
    fake(place, "crontab", f'case $1 in -l) cat "{table}" 2>/dev/null ;; -) cat >"{table}" ;; esac')
    place.language = {"PATH": f"{place.root}/outils:/usr/bin:/bin",
                      "XDG_CONFIG_HOME": f"{place.root}/config"}
    place.write_line(name="Travail")
    fake(place, "systemctl", "exit 1")
    write(table, "# à moi\n0 1 * * * ls\n")
    plan = ("planifier", "ajouter", "--config", "travail", "--heure")
    report.equal("sans gestionnaire de session", place.console(*plan, "12:30", "--jours",
                                                               "jeudi,lundi").status, 0)
    lines = read(table).decode().splitlines()
    report.check("une ligne de crontab", lines[:2] == ["# à moi", "0 1 * * * ls"] and
                 len(lines) == 4 and lines[3].startswith("30 12 * * 1,4 COFFRELUNE_HOME='"), lines)
    report.check("qui sauvegarde", lines[3].endswith(
        "coffrelune-console' 'sauvegarder' '--config' 'Travail' '--ecraser' '--notifier'"), lines)
    write(f"{place.source}/a.txt", "contenu")
    status = os.system(lines[3].split(" ", 5)[5].replace("\\%", "%") + " >/dev/null 2>&1")
    report.equal("et marche", (status, os.path.exists(f"{place.copy}/a.txt")), (0, True))
    fake(place, "systemctl", f'echo "$@" >>"{place.root}/appels"')
    report.equal("avec lui", place.console(*plan, "08:05").status, 0)
    report.equal("la crontab est comme avant", read(table).decode(), "# à moi\n0 1 * * * ls\n")
    units = f"{place.root}/config/systemd/user"
    report.check("un timer", "OnCalendar=*-*-* 08:05:00" in
                 read(f"{units}/coffrelune-Travail.timer").decode())
    report.check("mis en route", "restart coffrelune-Travail.timer" in
                 read(f"{place.root}/appels").decode())
    if shutil.which("systemd-analyze"):
        outcome = place.console("planifier", "--json")
        report.equal("se montre", [one["when"] for one in (outcome.json() or {}).get("planned", [])],
                     ["*-*-* 08:05:00"])
    report.equal("retiré", place.console("planifier", "retirer", "--config", "travail").status, 0)
    report.equal("rien n'en reste", os.listdir(units), [])
    report.equal("rien à retirer", place.console("planifier", "retirer", "--config",
                                                 "travail").status, 2)
    os.remove(f"{place.root}/outils/crontab")
    os.remove(f"{place.root}/outils/systemctl")
    place.language["PATH"] = f"{place.root}/outils"
    outcome = place.console(*plan, "08:05")
    report.check("sans rien pour planifier, c'est dit", outcome.status == 2 and "crontab" in
                 outcome.err, outcome)


def planned_names(place, report):
    """renommer ou effacer une configuration emmène ou retire ce qui est planifié pour elle"""
    units = f"{place.root}/config/systemd/user"
    place.language = {"PATH": f"{place.root}/outils:/usr/bin:/bin",
                      "XDG_CONFIG_HOME": f"{place.root}/config"}
    fake(place, "systemctl", f'echo "$@" >>"{place.root}/appels"')
    place.write_line(name="Travail")
    place.console("planifier", "ajouter", "--config", "travail", "--heure", "08:05", "--jours",
                  "lundi")
    outcome = place.console("configurations", "renommer", "travail", "le bureau")
    report.check("renommée, et c'est dit", outcome.status == 0 and
                 "La sauvegarde planifiée porte maintenant sur « Le bureau »." in
                 outcome.out + outcome.err, outcome)
    report.equal("le timer porte le nouveau nom", sorted(os.listdir(units)),
                 ["coffrelune-Le_20bureau.service", "coffrelune-Le_20bureau.timer"])
    service = read(f"{units}/coffrelune-Le_20bureau.service").decode()
    report.check("et le nomme", '"--config" "Le bureau" "--ecraser"' in service, service)
    report.check("à la même heure", "OnCalendar=Mon *-*-* 08:05:00" in
                 read(f"{units}/coffrelune-Le_20bureau.timer").decode())
    calls = read(f"{place.root}/appels").decode().splitlines()
    report.check("il est en route, l'ancien arrêté", "--user restart coffrelune-Le_20bureau.timer"
                 in calls and "--user disable --now coffrelune-Travail.timer" in calls, calls)
    fake(place, "systemctl", 'case "$*" in *enable*) exit 1 ;; esac')
    outcome = place.console("configurations", "renommer", "le bureau", "maison")
    report.check("ce qui ne peut pas suivre est dit", outcome.status == 1 and
                 "n'a pas pu suivre" in outcome.err and "planifier retirer" in outcome.err, outcome)
    names = place.console("configurations").out
    report.check("la configuration est renommée quand même", "Maison" in names, names)
    report.equal("l'ancien timer est resté", sorted(os.listdir(units))[1:],
                 ["coffrelune-Le_20bureau.timer"])
    report.equal("le conseil donné marche", place.console("planifier", "retirer", "--config",
                                                          "Le bureau").status, 0)
    fake(place, "systemctl", "exit 0")
    place.console("planifier", "ajouter", "--config", "maison", "--heure", "08:05")
    place.console("configurations", "ajouter", "reste")
    place.console("configurations", "choisir", "reste")
    outcome = place.console("configurations", "effacer", "maison", "--confirmer")
    report.check("effacée, et c'est dit", outcome.status == 0 and
                 "La planification de « Maison » est retirée." in outcome.out + outcome.err, outcome)
    report.equal("aucun timer n'en reste", os.listdir(units), [])


SCENARIOS = (reports, failures_reported, alert, hashes_of_many, hash_lists, planning, planned_names)
