#!/usr/bin/env python3
"""Installs, uses, upgrades and removes the Windows installer under Wine, and unpacks the portable
archive; a line for each check, then the counts.

Usage: windows_package.py INSTALLER [ARCHIVE]
"""

import glob
import os
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests/e2e"))
from harness import Report  # pylint: disable=wrong-import-position

PROGRAMS = ("coffrelune.exe", "coffrelune-console.exe", "Ok.wav", "Erreur.wav", "LICENSE.txt",
            "desinstaller.exe")
MANUAL = "aide/manuel.html"
UNINSTALL = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Coffrelune"


class Windows:
    """A fresh Windows of its own."""

    def __init__(self):
        self.base = tempfile.mkdtemp(prefix="coffrelune-paquet-")
        self.environment = {**os.environ, "COFFRELUNE_WINEPREFIX": os.path.join(self.base, "wine")}
        self.environment.pop("DISPLAY", None)
        self.environment.pop("COFFRELUNE_HOME", None)

    def run(self, *words):
        return subprocess.run([os.path.join(ROOT, "tools/wine.sh"), *words], check=False,
                              capture_output=True, env=self.environment, timeout=300,
                              stdin=subprocess.DEVNULL)

    def text(self, *words):
        answer = self.run(*words)
        return (answer.stdout + answer.stderr).decode(errors="replace")

    @property
    def installed(self):
        found = glob.glob(os.path.join(self.base, "wine/drive_c/users/*/AppData/Local/Programs/Coffrelune"))
        return found[0] if found else os.path.join(self.base, "absent")

    @property
    def shortcuts(self):
        return glob.glob(os.path.join(self.base, "wine/drive_c/users/*/AppData/Roaming/Microsoft/"
                                      "Windows/Start Menu/Programs/Coffrelune.lnk"))

    def uninstall(self, *words):
        """The uninstaller goes on in a copy of its own, which nobody waits for."""
        self.run(os.path.join(self.installed, "desinstaller.exe"), "/S", *words)
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline and "DisplayName" in self.text("reg", "query", UNINSTALL):
            time.sleep(0.2)
        self.run("wineboot", "-e")

    def remove(self):
        subprocess.run([os.path.join(ROOT, "tools/wine.sh"), "--fin"], check=False,
                       env=self.environment)
        shutil.rmtree(self.base, ignore_errors=True)


def missing(windows):
    return [name for name in (*PROGRAMS, MANUAL) if not os.path.exists(os.path.join(windows.installed, name))]


def check_installer(windows, installer, report):
    """Le programme d'installation : installer, utiliser, remplacer, retirer"""
    report.equal("il finit bien", windows.run(installer, "/S").returncode, 0)
    report.equal("tout est là", missing(windows), [])
    report.equal("le menu Démarrer", len(windows.shortcuts), 1)
    registered = windows.text("reg", "query", UNINSTALL)
    report.check("la liste des programmes", "DisplayName" in registered, registered)

    console = os.path.join(windows.installed, "coffrelune-console.exe")
    shown = windows.text(console, "--version")
    report.check("il s'exécute", "Coffrelune Version" in shown, shown)
    settings = os.path.join(windows.installed, "Coffrelune.ini")
    content = b"[General]\r\nModifie=1\r\n"
    with open(settings, "wb") as file:
        file.write(content)
    shown = windows.text(console, "resultats")
    report.check("ses réglages sont à côté", "Configuration : General" in shown, shown)

    report.equal("remplacé en place", windows.run(installer, "/S").returncode, 0)
    report.equal("tout est encore là", missing(windows), [])
    with open(settings, "rb") as file:
        report.equal("les réglages sont gardés", file.read(), content)

    windows.uninstall()
    report.equal("retiré : il reste les réglages", sorted(os.listdir(windows.installed)),
                 ["Coffrelune.ini"])
    report.equal("ni raccourci", windows.shortcuts, [])
    registered = windows.text("reg", "query", UNINSTALL)
    report.check("ni entrée dans la liste", "DisplayName" not in registered, registered)

    windows.run(installer, "/S")
    with open(os.path.join(windows.installed, "à moi.txt"), "wb") as file:
        file.write(b"x")
    windows.uninstall("/REGLAGES")
    report.equal("sur demande, les réglages aussi ; jamais un autre fichier",
                 os.listdir(windows.installed), ["à moi.txt"])


def check_archive(windows, archive, report):
    """L'archive : la décompresser suffit"""
    with zipfile.ZipFile(archive) as packed:
        whole = packed.namelist()
        names = sorted(name for name in whole if not name.startswith("Coffrelune/aide/"))
        packed.extractall(windows.base)
    report.equal("ce qu'elle contient", names, sorted(
        "Coffrelune/" + name for name in PROGRAMS if name != "desinstaller.exe"))
    report.check("avec le manuel et ses images", "Coffrelune/" + MANUAL in whole and
                 "Coffrelune/aide/captures/principale.png" in whole, whole)
    place = os.path.join(windows.base, "Coffrelune")
    shown = windows.text(os.path.join(place, "coffrelune-console.exe"), "--version")
    report.check("elle s'exécute", "Coffrelune Version" in shown, shown)


def main():
    report = Report()
    windows = Windows()
    try:
        report.begin(check_installer)
        check_installer(windows, os.path.abspath(sys.argv[1]), report)
        if len(sys.argv) > 2:
            report.begin(check_archive)
            check_archive(windows, sys.argv[2], report)
    finally:
        windows.remove()
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
