"""What a Windows program must be as a file: it stands alone, is small, and tells what it is."""

import os
import re
import struct
import subprocess

from wine_place import ROOT

OBJDUMP = "x86_64-w64-mingw32-objdump"
LARGEST = 8 * 1024 * 1024  # bytes
CONSOLE, WINDOWS = 3, 2  # the subsystems of a program
TERMINAL_SERVER_AWARE = 0x8000

# Libraries that every Windows 10 has in its system directory.
SYSTEM_LIBRARIES = {
    "advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
    "ole32.dll", "oleacc.dll", "oleaut32.dll", "shell32.dll", "shlwapi.dll", "user32.dll",
    "uxtheme.dll", "version.dll", "winmm.dll",
}
PROGRAMS = {"coffrelune": WINDOWS, "coffrelune-console": CONSOLE}


def project_version():
    with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as file:
        major, minor = re.search(r"project\(Coffrelune VERSION (\d+)\.(\d+)", file.read()).groups()
    return int(major), int(minor)


def headers(path):
    return subprocess.run([OBJDUMP, "-p", path], capture_output=True, text=True, check=True).stdout


def file_version(data):
    """The two halves of the version that the resources hold, after their signature."""
    at = data.index(struct.pack("<II", 0xFEEF04BD, 0x00010000))
    number = struct.unpack_from("<I", data, at + 8)[0]
    return number >> 16, number & 0xFFFF


def check_program(name, subsystem, directory, report):
    path = os.path.join(directory, f"{name}.exe")
    if not report.check(f"{name}.exe est construit", os.path.isfile(path), path):
        return
    text = headers(path)
    imported = {library.lower() for library in re.findall(r"DLL Name: (\S+)", text)}
    report.check(f"{name}.exe importe des bibliothèques", imported)
    report.equal(f"{name}.exe n'importe que celles du système", imported - SYSTEM_LIBRARIES, set())
    size = os.path.getsize(path)
    report.check(f"{name}.exe fait moins de 8 Mo", size < LARGEST, f"{size} octets")
    report.check(f"{name}.exe a le bon sous-système",
                 re.search(rf"^Subsystem\s+0*{subsystem}\b", text, re.M), text[:3000])
    marks = re.search(r"^DllCharacteristics\s+([0-9a-f]+)", text, re.M)
    report.check(f"{name}.exe est prévu pour un serveur à plusieurs utilisateurs",
                 marks and int(marks.group(1), 16) & TERMINAL_SERVER_AWARE, text[:3000])
    with open(path, "rb") as file:
        data = file.read()
    for wanted in (b"Microsoft.Windows.Common-Controls", b"asInvoker", b"PerMonitorV2",
                   b">true</longPathAware>"):
        report.equal(f"{name}.exe : {wanted.decode()} une fois dans son manifeste",
                     data.count(wanted), 1)
    report.equal(f"{name}.exe porte la version du projet", file_version(data), project_version())
    for wanted in ("Coffrelune : sauvegarde", f"{name}.exe", "AAA_COFFRELUNE"):
        report.check(f"{name}.exe : « {wanted} » dans ses ressources",
                     wanted.encode("utf-16-le") in data)


def check_all(directory, report):
    report.begin(check_all_programs)
    for name, subsystem in PROGRAMS.items():
        check_program(name, subsystem, directory, report)
    libraries = [name for name in os.listdir(directory) if name.lower().endswith(".dll")]
    report.equal("aucune bibliothèque à côté", libraries, [])


def check_all_programs():
    """Les programmes eux-mêmes : bibliothèques, taille, manifeste, version, icône"""
