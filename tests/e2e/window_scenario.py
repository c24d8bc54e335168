#!/usr/bin/python3
"""Works the real window program through the accessibility bus, on a display of its own, and prints
a line for each check, then the counts.

Usage: window_scenario.py [--programs DIRECTORY] [--captures DIRECTORY] [--share K/N] [WORD]
With WORD, only the scenarios whose name contains it; with --share 1/2 or 2/2, every second one, so
that two of these share the work. With --captures, the screen is kept there as it was when a
scenario failed. The system's own Python is needed: it has the bindings of the bus.
"""

import argparse
import os
import shutil
import signal
import sys

import harness
import window_dialog_scenarios
import window_focus_scenarios
import window_guidance_scenarios
import window_lifecycle_scenarios
import window_line_scenarios
import window_name_scenarios
import window_run_scenarios
import window_size_scenarios
from window_harness import run_all
from window_screen import BUS_LAUNCHER, TOOLS, Screen

MODULES = (window_line_scenarios, window_run_scenarios, window_dialog_scenarios,
           window_lifecycle_scenarios, window_size_scenarios, window_focus_scenarios,
           window_name_scenarios, window_guidance_scenarios)


def missing_tools():
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    if not os.path.exists(BUS_LAUNCHER):
        missing.append(BUS_LAUNCHER)
    return missing


def run(arguments, report):
    screen = Screen()
    try:
        scenarios = [scenario for module in MODULES for scenario in module.SCENARIOS
                     if arguments.word in scenario.__name__]
        share, shares = map(int, arguments.share.split("/"))
        scenarios = scenarios[share - 1::shares]
        run_all(scenarios, os.path.abspath(arguments.programs), report, screen, arguments.captures)
    finally:
        screen.close()


def main():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=os.path.join(root, "build/linux-release/bin"))
    parser.add_argument("--captures")
    parser.add_argument("--share", default="1/1")
    parser.add_argument("word", nargs="?", default="")
    arguments = parser.parse_args()

    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    # Ended from outside, the display and its servers still go.
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    report = harness.Report()
    path = os.path.join(arguments.programs, "coffrelune")
    report.check("coffrelune est construit", os.access(path, os.X_OK), path)
    report.equal("ce que l'affichage demande est installé", missing_tools(), [])
    if report.failed == 0:
        run(arguments, report)
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
