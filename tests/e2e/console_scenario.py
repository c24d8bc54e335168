#!/usr/bin/env python3
"""Drives the real programs on real files, and prints a line for each check, then the counts.

Usage: console_scenario.py [--programs DIRECTORY] [--sealed] [WORD]
With WORD, only the scenarios whose name contains it. With --sealed, the programs find the originals
on a read-only mount: nothing is written there.
"""

import argparse
import os
import signal
import sys

import account_scenarios
import change_scenarios
import copy_scenarios
import drive_scenarios
import error_scenarios
import harness
import interruption_scenarios
import loss_border_scenarios
import loss_neighbour_scenarios
import loss_restore_scenarios
import loss_scenarios
import question_scenarios
import restore_scenarios
import scale_scenarios
import settings_command_scenarios
import settings_scenarios
import unattended_scenarios
import verification_scenarios

MODULES = (copy_scenarios, question_scenarios, error_scenarios, drive_scenarios,
           settings_scenarios, settings_command_scenarios, restore_scenarios, unattended_scenarios, interruption_scenarios,
           loss_scenarios, loss_border_scenarios, loss_restore_scenarios, loss_neighbour_scenarios,
           scale_scenarios, verification_scenarios, account_scenarios,
           change_scenarios)


# What these show is itself about what lies in the originals or is mounted there; the run without the
# option plays them.
UNSEALED = {copy_scenarios.destination_inside_source: "la copie y est",
            loss_border_scenarios.source_mounted_inside_its_copy: "il s'agit de leur montage"}


def run_sealed(scenarios, arguments, report):
    reason = harness.SealedPlace.why_not()
    if reason:
        report.leave_out("les originaux en lecture seule", reason)
        return
    for scenario in (scenario for scenario in scenarios if scenario in UNSEALED):
        print(f"(seulement sans --sealed : {scenario.__name__}, {UNSEALED[scenario]})")
    harness.run_all([scenario for scenario in scenarios if scenario not in UNSEALED],
                    os.path.abspath(arguments.programs), report, harness.SealedPlace)
    count = harness.SealedPlace.sealed
    report.check(f"les originaux étaient en lecture seule ({count} programmes)", count > 0)


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    parser.add_argument("--sealed", action="store_true")
    parser.add_argument("word", nargs="?", default="")
    arguments = parser.parse_args()

    # Names on a disk need not be text, and the report has to show them all the same.
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    # Ended from outside, the scenario still removes what it made.
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    report = harness.Report()
    scenarios = [scenario for module in MODULES for scenario in module.SCENARIOS
                 if arguments.word in scenario.__name__]
    for program in ("coffrelune-console", "coffrelune"):
        path = os.path.join(arguments.programs, program)
        report.check(f"{program} est construit", os.access(path, os.X_OK), path)
    if report.failed == 0 and arguments.sealed:
        run_sealed(scenarios, arguments, report)
    elif report.failed == 0:
        harness.run_all(scenarios, os.path.abspath(arguments.programs), report)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
