#!/usr/bin/env python3
"""Holds what the packages bring besides the programs against the programs themselves: manual, manual
pages, completion, desktop and AppStream data, version; a line for each check, then the counts.
Builds, installs and removes nothing: tools/package.sh and the other files of this folder do.

Usage: package_texts.py [--programs DIRECTORY]
"""

import argparse
import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests/e2e"))
from harness import Report  # pylint: disable=wrong-import-position

LINUX = os.path.join(ROOT, "packaging/linux")


def text_of(*path):
    with open(os.path.join(ROOT, *path), encoding="utf-8") as file:
        return file.read()


def run(*words):
    answer = subprocess.run(words, check=False, capture_output=True, timeout=60,
                            env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "100"})
    return answer.returncode, answer.stdout.decode(), answer.stderr.decode()


class Console:
    """The commands and options that the program itself tells of."""

    def __init__(self, program):
        self.program = program

    def words(self, *command):
        """Sub-commands, and long options, of a command."""
        shown = run(self.program, *command, "--help")[1].split("\n\nExemple")[0]
        actions = re.findall(r"^  ([a-z]+)(?: {2,}|$)", shown, re.MULTILINE)
        options = re.findall(r"^  (?:-\w,)?(--[a-z-]+)", shown, re.MULTILINE)
        return actions, options


def check_version(report):
    """La version est à un seul endroit, et dite dans les changements"""
    version = re.search(r"project\(Coffrelune VERSION ([\d.]+) ", text_of("CMakeLists.txt"))[1]
    report.check("CHANGELOG.md la raconte", re.search(
        rf"^## \[{re.escape(version)}\] - \d{{4}}-\d\d-\d\d$", text_of("CHANGELOG.md"), re.MULTILINE))
    for name in ("metainfo.xml.in", "changelog.in"):
        report.check(f"{name} la reçoit", "@PROJECT_VERSION@" in text_of("packaging/linux", name))


def check_desktop(report):
    """L'entrée du bureau et la fiche AppStream"""
    if not shutil.which("desktop-file-validate") or not shutil.which("appstreamcli"):
        report.leave_out("l'entrée et la fiche", "desktop-file-utils ou appstream sont absents")
        return
    status, out, err = run("desktop-file-validate", f"{LINUX}/coffrelune.desktop")
    report.equal("l'entrée est bonne", (status, out + err), (0, ""))
    made = text_of("packaging/linux/metainfo.xml.in").replace("@PROJECT_VERSION@", "1.0").replace(
        "@COFFRELUNE_RELEASE_DATE@", "2026-11-22")
    with tempfile.TemporaryDirectory() as place:
        path = f"{place}/org.coffrelune.Coffrelune.metainfo.xml"
        with open(path, "w", encoding="utf-8") as file:
            file.write(made)
        status, out, err = run("appstreamcli", "validate", "--no-net", path)
        report.check("la fiche aussi", status == 0 and "W:" not in out, out + err)


def check_pages(console, report):
    """Les pages de manuel disent chaque commande"""
    commands = console.words()[0]
    report.check("le programme en dit dix ou plus", len(commands) >= 10, commands)
    for page in sorted(glob.glob(f"{LINUX}/man/*/*.1")):
        name = os.path.relpath(page, f"{LINUX}/man")
        status, shown, err = run("man", "--warnings", "-E", "UTF-8", "-l", page)
        report.equal(f"{name} est bien formée", (status, err), (0, ""))
        if name.endswith("console.1"):
            text = re.sub(".\b", "", shown)
            missing = [word for word in commands if not re.search(rf"^\s+{word}\b", text, re.MULTILINE)]
            report.equal(f"{name} est complète", missing, [])


def complete(words):
    """What bash proposes for the last of the words."""
    script = ('source "$1"; shift; compopt() { :; }; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
              '_coffrelune_console; printf "%s\\n" "${COMPREPLY[@]}"')
    return run("bash", "-c", script, "bash", f"{LINUX}/coffrelune-console.bash",
               "coffrelune-console", *words)[1].split()


def check_completion(console, report):
    """La complétion de bash propose tout ce que le programme connaît"""
    commands = console.words()[0]
    report.equal("les commandes", [word for word in commands if word not in complete([""])], [])
    for command in commands:
        actions, options = console.words(command)
        report.equal(f"{command} : ses mots", sorted(set(actions) - set(complete([command, ""]))), [])
        report.equal(f"{command} : ses options",
                     sorted(set(options) - set(complete([command, "--"]))), [])
        for action in actions:
            options = console.words(command, action)[1]
            report.equal(f"{command} {action} : ses options",
                         sorted(set(options) - set(complete([command, action, "--"]))), [])


def check_manual(console, programs, report):
    """Le manuel : construit à côté du programme, et complet"""
    report.check("il est à côté du programme", os.path.isfile(f"{programs}/aide/manuel.html"))
    manual = text_of("docs/manuel.md")
    with tempfile.TemporaryDirectory() as place:
        status, _, err = run(f"{ROOT}/tools/make-manual.py", f"{ROOT}/docs/manuel.md", place)
        report.equal("ses liens et ses images mènent quelque part", (status, err), (0, ""))
    for option in re.findall(r"coffrelune-console (\w+)[^\n]*?(--[a-z-]+)", manual):
        words = console.words(option[0])
        known = words[1] + [one for action in words[0] for one in console.words(option[0], action)[1]]
        report.check(f"« {option[0]} {option[1]} » existe", option[1] in known, known)
    numbers = {name: int(value) for name, value in re.findall(
        r"constexpr std::uint32_t (\w+) = (\d+);", text_of("src/platform/status.h"))}
    told = {int(number) for line in re.findall(r"^\| ([\d, ]+) \|", manual, re.MULTILINE)
            for number in line.split(",")}
    report.equal("chaque numéro d'erreur y est", sorted(set(numbers.values()) - {0} - told), [])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=os.path.join(ROOT, "build/linux-release/bin"))
    programs = os.path.abspath(parser.parse_args().programs)
    report = Report()
    console = Console(os.path.join(programs, "coffrelune-console"))
    report.begin(check_version)
    check_version(report)
    report.begin(check_desktop)
    check_desktop(report)
    report.begin(check_pages)
    check_pages(console, report)
    report.begin(check_completion)
    check_completion(console, report)
    report.begin(check_manual)
    check_manual(console, programs, report)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
