#!/usr/bin/env python3
"""Refuses memory to the real program: each allocation in turn, then all of them from one on. It says
so in French and ends, or counts an error and goes on; nothing is lost, and the next run makes all
right.

Usage: memory_sweep.py [--programs DIRECTORY] [--sample N] [--seed N] [--from SCENE:NUMBER]
                       [WORD]...
--sample tries N allocations of each scene only; the WORDs pick scenes. What is cut off says with
which --from it goes on.
"""

import sys

from crash_sweep import Delete, ErrorList, New, Overwrite, Restore, state_of
from sweep_harness import Verdict, error_lines, sampled

SCENES = (New, Overwrite, Delete, Restore, ErrorList)
SAID = "La mémoire ne suffit pas : le programme s'arrête."
ENDED = 3


def allocations(shop, scene, place):
    """How many an undisturbed run makes."""
    outcome = shop.trapped(place, scene.arguments, log=shop.log, memory="0", below="/nulle part")
    return outcome, int(shop.logged_text().split(" m\n", maxsplit=1)[0].splitlines()[-1])


def play(shop, scene, place, number, onwards, verdict):
    scene.prepare(place)
    state = state_of(scene, place)
    outcome = shop.trapped(place, scene.arguments, memory=number, on=onwards, below="/nulle part")
    what = f"{scene.name}, allocation {number}{' et la suite' if onwards else ''}"
    told = SAID in outcome.err
    verdict.expect(outcome.status in (0, 1, 2, ENDED), f"{what} : état {outcome.status}", outcome)
    verdict.expect(told == (outcome.status == ENDED), f"{what} : dit sans s'arrêter, ou l'inverse",
                   outcome)
    verdict.expect(outcome.status != 1 or error_lines(outcome.all) or scene.status == 1,
                   f"{what} : une erreur sans nom", outcome)
    if outcome.status == 0:
        verdict.expect(scene.right(place), f"{what} : sans erreur, et pourtant", outcome)
    scene.held(place, state, verdict, what)
    scene.again(place, verdict, what)
    return told


def sweep(shop, scene, report, course):
    place = shop.place()
    verdict = Verdict(report)
    scene.prepare(place)
    outcome, most = allocations(shop, scene, place)
    verdict.expect(outcome.status == scene.status, f"{scene.name} : sans panne", outcome)
    chosen = [(number, onwards) for number in range(1, most + 1) for onwards in (0, 1)]
    if course.sample is not None:
        chosen = sorted(course.chance(scene).sample(chosen, min(course.sample, len(chosen))))
    visited = said = 0
    for number, onwards in course.trials(scene, verdict, chosen):
        said += play(shop, scene, place, number, onwards, verdict)
        visited += 1
    verdict.expect(said > 0 or not visited, f"{scene.name} : le texte n'est jamais venu")
    verdict.close(f"{scene.name}, {most} allocations, {said} fins dites", visited)
    place.remove()


def main():
    return sampled("memory_sweep", SCENES, sweep)


if __name__ == "__main__":
    sys.exit(main())
