"""Volumes that come and go."""

import contextlib
import os
import re
import shutil
import subprocess

from harness import differences, drive_path, write


@contextlib.contextmanager
def volume(place, report, scenario):
    """A small file system of its own below /mnt; gives its mount point, or None when it cannot be."""
    point = f"/mnt/{os.path.basename(place.root)}"
    if os.geteuid() != 0 or shutil.which("mount") is None:
        report.leave_out(scenario, "il faut root et mount pour monter un petit disque")
        yield None
        return
    os.makedirs(point)
    answer = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m", "petit", point],
                            capture_output=True, check=False)
    try:
        if answer.returncode != 0:
            report.leave_out(scenario, answer.stderr.decode(errors="replace").strip())
            yield None
        else:
            yield point
    finally:
        subprocess.run(["umount", point], capture_output=True, check=False)
        os.rmdir(point)  # fails when something was written beside the volume


def letter_of(place, point):
    """The letter under which the program remembers a mount point; this machine may have others."""
    with open(os.path.join(place.home, "Lecteurs.ini"), encoding="cp1252") as file:
        found = re.search(rf"^([D-Z])=.*{re.escape(point)}$", file.read(), re.M)
    return found.group(1) if found else None


def volume_with_a_letter(place, report):
    """Un volume a sa lettre ; absent, rien n'est écrit dans son point de montage"""
    write(f"{place.source}/a.txt", "a")
    with volume(place, report, "volume à lettre") as point:
        if point is None:
            return
        first = place.console("sauvegarder", "--source", place.source, "--destination", point,
                              "--ecraser")
        report.equal("par son chemin : état 0", first.status, 0)
        report.equal("diff ne trouve rien", differences(place.source, f"{point}/Données"), [])

        letter = letter_of(place, point)
        if not report.check("le volume a une lettre", letter, os.listdir(place.home)):
            return
        place.write_settings("[Position]\nContinueOnError=0\n" + place.line().replace(
            drive_path(place.destination), f"{letter}:\\"))
        write(f"{place.source}/b.txt", "b")
        second = place.console("sauvegarder")
        report.equal("par sa lettre : état 0", second.status, 0)
        report.equal("diff ne trouve toujours rien", differences(place.source, f"{point}/Données"),
                     [])

        subprocess.run(["umount", point], check=True)
        write(f"{place.source}/c.txt", "c")
        third = place.console("sauvegarder")
        report.equal("absent : état 3", third.status, 3)
        report.check("absent : la cause est dite",
                     "Le disque destination n'existe pas." in third.all, third)
        report.equal("absent : rien dans le point de montage", os.listdir(point), [])


SCENARIOS = (volume_with_a_letter,)
