#!/usr/bin/env python3
"""Makes every call of the file system of the real program fail, one at a time, with each of nine
errors, and from one moment on all those of the copy's volume; each error is counted and named, no
run says that it was clean when it was not, and nothing goes that should stay.

Usage: fault_sweep.py [--programs DIRECTORY] [--sample N] [--seed N] [--from SCENE:NUMBER]
                      [WORD]...
--sample tries N faults of each scene only, chosen by the seed; the WORDs pick scenes. What is cut
off says with which --from it goes on.
"""

import errno
import os
import re
import sys
import traceback

from crash_sweep import Delete, Filled, New, Overwrite, Restore, SingleFile, state_of
from harness import read
from loss_harness import KEPT
from sweep_harness import (Verdict, difference, error_lines, files_of, sampled, says_complete,
                           stamps)

ERRORS = ("ENOSPC", "EIO", "EACCES", "EINTR", "EDQUOT", "EMFILE", "ENOENT", "ESTALE", "ENOTCONN")
PULLED = ("EIO", "ENOTCONN", "ESTALE", "ENOSPC", "EROFS")


class Faulty:
    """What a scene has to hold besides when something failed."""

    def right(self, place):
        written, reference = files_of(self.written(place)), files_of(self.reference(place))
        if self.synchro:
            return written == reference
        return all(written.get(name) == content for name, content in reference.items())


class NewFault(Faulty, New):
    """Une première sauvegarde"""


class FilledFault(Faulty, Filled):
    """De nouveaux répertoires, pleins de fichiers"""


class OverwriteFault(Faulty, Overwrite):
    """Tout a changé, SynchroCopie"""


class OverwriteAlone(Faulty, Overwrite):
    """Tout a changé, sans SynchroCopie"""

    name = "remplacement sans SynchroCopie"
    synchro = 0


class DeleteFault(Faulty, Delete):
    """Des fichiers ne sont plus là, SynchroCopie"""


class DeleteAlone(Faulty, Delete):
    """Des fichiers ne sont plus là, sans SynchroCopie : rien n'est effacé"""

    name = "effacement sans SynchroCopie"
    synchro = 0
    gone = ("x", "e.txt", "sous/lien")
    then = {"a.txt": "nouveau a"}


class RestoreFault(Faulty, Restore):
    """L'original est abîmé, SynchroCopie"""


class RestoreAlone(Faulty, Restore):
    """L'original est abîmé, sans SynchroCopie : rien n'en est effacé"""

    name = "restauration sans SynchroCopie"
    synchro = 0
    gone = ("sous", "e.txt")
    then = {"a.txt": "abîmé", "en trop.txt": "x", "trop/y.txt": "y"}


class SingleFault(SingleFile):
    """La ligne d'un seul fichier"""


SCENES = (NewFault, FilledFault, OverwriteFault, OverwriteAlone, DeleteFault, DeleteAlone, RestoreFault,
          RestoreAlone, SingleFault)


class Fault:
    """One fault of one run."""

    def __init__(self, number, call, path, error, sticky=False):
        self.number, self.call, self.path = number, call, path
        self.error, self.sticky = error, sticky

    def how(self, place):
        below = place.destination if self.sticky else None
        return {"at": self.number, "do": getattr(errno, self.error), "reads": 1,
                "on": 1 if self.sticky else None, "below": below}

    def says_gone(self, name, root):
        """The system was made to say that this file, or a directory above it, is not there."""
        gone = os.path.normpath(self.path)
        return self.error == "ENOENT" and f"{root}/{name}/".startswith(gone + "/")

    def __str__(self):
        onwards = " et la suite" if self.sticky else ""
        return f"{self.call} {self.number}{onwards} {self.error} {self.path}"


def check_told(scene, place, fault, outcome, verdict, what):
    """The error is counted and named wherever a user looks."""
    listed = f"{place.home}/{'R' if 'restaur' in scene.arguments[0] else 'S'}_General.err"
    named = error_lines(outcome.out) or error_lines(outcome.err)
    if outcome.status == 2:
        verdict.expect("ne peut pas être lu" in outcome.err or "n'existe pas" in outcome.err,
                       f"{what} : refusé sans raison", outcome)
        return
    about_settings = fault.path.startswith(place.home)
    verdict.expect(named or about_settings or KEPT in outcome.all
                   or any(word in outcome.all for word in ("introuvable", "n'existe pas")),
                   f"{what} : une erreur sans nom", outcome)
    verdict.expect("terminée sans erreur" not in outcome.all or not named,
                   f"{what} : des erreurs, et « sans erreur »", outcome)
    if about_settings or not named:
        return
    text = read(listed).decode("cp1252") if os.path.exists(listed) else ""
    missing = [line for line in named if line not in error_lines(text)]
    verdict.expect(not missing, f"{what} : pas dans la liste d'erreurs", f"{missing}\n{text}")
    verdict.expect(f" ... {len(named)} erreur(s)." in outcome.out,
                   f"{what} : {len(named)} erreurs, un autre compte", outcome)


def check_kept(scene, place, state, fault, verdict, what, outcome):
    """Nothing has gone that should stay, and no file is in pieces."""
    reference = scene.reference(place)
    verdict.expect((files_of(reference), stamps(reference)) ==
                   (state["reference"], state["stamps"]), f"{what} : ce qui est lu a changé",
                   difference(files_of(reference), state["reference"]))
    now = files_of(scene.written(place))
    torn = [name for name, content in now.items()
            if content not in (state["written"].get(name), state["reference"].get(name))]
    verdict.expect(not torn, f"{what} : ni l'ancien ni le nouveau", f"{torn}\n{outcome}")
    lost = [name for name in state["written"] if name not in now
            and (name in state["reference"] or not scene.synchro)
            and not fault.says_gone(name, reference)]
    verdict.expect(not lost, f"{what} : perdu", f"{lost}\n{outcome}")
    if scene.arguments[0] == "sauvegarder" and says_complete(place.copy):
        missed = [name for name in state["reference"] if now.get(name) != state["reference"][name]
                  and not fault.says_gone(name, reference)]
        verdict.expect(not missed or now == state["written"],
                       f"{what} : un certificat dit plus que la copie", f"{missed}\n{outcome}")


def check_clean(scene, place, fault, verdict, what, outcome):
    """A run that says that all went well has done everything."""
    written, reference = files_of(scene.written(place)), files_of(scene.reference(place))
    wrong = [entry for entry in difference(written, reference)
             if not fault.says_gone(entry[0], scene.reference(place))
             and not fault.says_gone(entry[0], scene.written(place))
             and (scene.synchro or entry[0] in reference)
             # What is too much and stays costs a line, and is no error.
             and (entry[0] in reference or "Non effacé : " not in outcome.out)]
    verdict.expect(not wrong, f"{what} : « sans erreur », et pourtant", f"{wrong}\n{outcome}")


def play(shop, scene, place, fault, verdict):
    scene.prepare(place)
    state = state_of(scene, place)
    outcome = shop.trapped(place, scene.arguments, log=shop.log, **fault.how(place))
    hit = shop.logged()
    if not hit:
        return False  # this run has made fewer calls
    # How often the system's tables are read differs from run to run: what was hit counts.
    _, fault.call, fault.path = hit[0]
    what = f"{scene.name}, {str(fault).replace(place.root, '')}"
    gone = any(word in outcome.all for word in ("non trouvé", "n'existe pas"))
    statuses = (0, 1, 2, 3) if gone else (0, 1, 2)  # 3: a root that has gone ends the run
    if not verdict.expect(outcome.status in statuses, f"{what} : état {outcome.status}", outcome):
        return True
    if outcome.status == 0:
        check_clean(scene, place, fault, verdict, what, outcome)
    else:
        check_told(scene, place, fault, outcome, verdict, what)
    check_kept(scene, place, state, fault, verdict, what, outcome)
    # Who is told that there are no settings yet makes new ones.
    if not fault.says_gone("Coffrelune.ini", place.home) or fault.call == "read":
        scene.settings_held(place, state, verdict, what)
        scene.again(place, verdict, what)
    return True


def faults_of(shop, scene, place):
    """Every fault that there is to try."""
    scene.prepare(place)
    _, calls = shop.calls(place, scene.arguments, reads=1)
    faults = [Fault(number, call, path, error) for number, (_, call, path) in enumerate(calls, 1)
              for error in ERRORS]
    scene.prepare(place)
    _, calls = shop.calls(place, scene.arguments, reads=1, below=place.destination)
    faults += [Fault(number, call, path, error, sticky=True)
               for number, (_, call, path) in enumerate(calls, 1) for error in PULLED]
    return faults


def chosen_of(faults, sample, chance):
    """Some of them, no call and no path more often than the others."""
    groups = {}
    for fault in faults:
        path = re.sub(r"[0-9a-f]{16}", "", fault.path)
        groups.setdefault((fault.call, path, fault.sticky), []).append(fault)
    keys = sorted(groups)
    return [chance.choice(groups[chance.choice(keys)]) for _ in range(sample)]


def sweep(shop, scene, report, course):
    place = shop.place()
    chosen = faults = faults_of(shop, scene, place)
    if course.sample is not None:
        chosen = chosen_of(faults, course.sample, course.chance(scene))
    verdict = Verdict(report)
    visited = 0
    for fault in course.trials(scene, verdict, chosen):
        try:
            visited += play(shop, scene, place, fault, verdict)
        except OSError as error:
            verdict.expect(False, f"{scene.name}, {fault} : {error}", traceback.format_exc())
    verdict.close(f"{scene.name}, {len(faults)} pannes possibles", visited)
    place.remove()


def main():
    return sampled("fault_sweep", SCENES, sweep)


if __name__ == "__main__":
    sys.exit(main())
