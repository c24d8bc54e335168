#!/usr/bin/env python3
"""Installs, uses and removes the Debian package on this machine, as root; a line for each check,
then the counts. It refuses to run where Coffrelune is installed already.

Usage: linux_package.py PACKAGE
"""

import os
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests/e2e"))
from harness import Report, write  # pylint: disable=wrong-import-position


def run(*words, **options):
    answer = subprocess.run(words, check=False, capture_output=True, timeout=300, **options)
    return answer.returncode, (answer.stdout + answer.stderr).decode(errors="replace")


def is_installed():
    return "installed" in run("dpkg-query", "-W", "-f", "${db:Status-Status}", "coffrelune")[1].split()


def check_files(report):
    """Ce que le paquet apporte"""
    for name in ("bin/coffrelune", "bin/coffrelune-console", "share/applications/coffrelune.desktop",
                 "share/metainfo/org.coffrelune.Coffrelune.metainfo.xml",
                 "share/coffrelune/aide/manuel.html", "share/coffrelune/aide/captures/principale.png", "share/coffrelune/Ok.wav",
                 "share/icons/hicolor/48x48/apps/coffrelune.png",
                 "share/icons/hicolor/scalable/apps/coffrelune.svg",
                 "share/bash-completion/completions/coffrelune-console"):
        report.check(name, os.path.isfile("/usr/" + name))
    for language, word in (("C.UTF-8", "NAME"), ("fr_FR.UTF-8", "NOM")):
        for page in ("coffrelune", "coffrelune-console"):
            folder = "man/man1" if word == "NAME" else "man/fr/man1"
            status, text = run("man", "-l", f"/usr/share/{folder}/{page}.1.gz",
                               env={"PATH": os.environ["PATH"], "LC_ALL": language, "MANPAGER": "cat",
                                    "MAN_KEEP_FORMATTING": ""})
            report.check(f"{page}.1, {word}", status == 0 and word in text, text)
    status, text = run("desktop-file-validate", "/usr/share/applications/coffrelune.desktop")
    report.equal("l'entrée du bureau est bonne", (status, text), (0, ""))
    status, text = run("appstreamcli", "validate", "--no-net",
                       "/usr/share/metainfo/org.coffrelune.Coffrelune.metainfo.xml")
    report.equal("sa fiche AppStream est bonne", (status, text.count("W:")), (0, 0))
    completion = ("source /usr/share/bash-completion/completions/coffrelune-console; "
                  "COMP_WORDS=(coffrelune-console ver); COMP_CWORD=1; _coffrelune_console; "
                  'echo "${COMPREPLY[@]}"')
    report.equal("bash complète", run("bash", "-c", completion)[1], "verifier\n")
    for words, wanted in ((["planifier", "a"], "ajouter"), (["sauvegarder", "--rap"], "--rapport"),
                          (["planifier", "ajouter", "--jours", "me"], "mercredi"),
                          (["options", "definir", "Synchro"], "SynchroCopie= SynchroDate=")):
        completion = ("source /usr/share/bash-completion/completions/coffrelune-console; compopt() { :; }; "
                      f"COMP_WORDS=(coffrelune-console {' '.join(words)}); COMP_CWORD={len(words)}; "
                      '_coffrelune_console; echo "${COMPREPLY[@]}"')
        report.equal(" ".join(words), run("bash", "-c", completion)[1].strip(), wanted)


def check_use(report):
    """Une sauvegarde avec le programme installé, dont les réglages vont chez l'utilisateur"""
    home = tempfile.mkdtemp(prefix="coffrelune-paquet-")
    try:
        environment = {"PATH": "/usr/bin:/bin", "HOME": home, "LC_ALL": "C.UTF-8"}
        write(f"{home}/Données/a.txt", "contenu")
        os.mkdir(f"{home}/copie")
        for words in (["configurations", "ajouter", "general"],
                      ["lignes", "definir", "1", "--source", f"{home}/Données", "--destination",
                       f"{home}/copie"],
                      ["lignes", "selectionner", "1"], ["sauvegarder", "--ecraser"], ["verifier"]):
            status, text = run("/usr/bin/coffrelune-console", *words, env=environment)
            report.check(" ".join(words[:2]), status == 0, text)
        report.check("la copie est là", os.path.isfile(f"{home}/copie/Données/a.txt"))
        place = f"{home}/.config/coffrelune"
        report.check("les réglages aussi", os.path.isfile(f"{place}/Coffrelune.ini"))
        report.check("et les sons", os.path.isfile(f"{place}/Ok.wav"))
        report.equal("rien à côté du programme", os.path.exists("/usr/bin/Coffrelune.ini"), False)
        return home
    except OSError:
        shutil.rmtree(home)
        raise


def main():
    report = Report()
    package = os.path.abspath(sys.argv[1])
    if is_installed():
        print("Coffrelune est déjà installé ici : rien n'est essayé.")
        return 1
    status, text = run("lintian", "--fail-on", "warning", "--allow-root", package)
    report.check("lintian l'accepte", status == 0, text)
    status, text = run("dpkg", "-i", package)
    home = None
    try:
        if report.check("il s'installe", status == 0, text):
            report.begin(check_files)
            check_files(report)
            report.begin(check_use)
            home = check_use(report)
    finally:
        status, text = run("dpkg", "-P", "coffrelune")
        report.check("il se retire", status == 0, text)
    report.equal("il ne reste rien", [path for path in ("/usr/bin/coffrelune", "/usr/share/coffrelune",
                                                        "/usr/share/doc/coffrelune")
                                      if os.path.exists(path)], [])
    if home is not None:
        report.check("que les réglages de l'utilisateur",
                     os.path.isfile(f"{home}/.config/coffrelune/Coffrelune.ini"))
        shutil.rmtree(home)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
