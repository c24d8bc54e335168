#!/usr/bin/env python3
"""Drives the Windows programs under Wine, and prints a line for each check, then the counts.

Usage: windows_scenario.py [--programs DIRECTORY] [WORD]
With WORD, only the scenarios whose name contains it.
"""

import argparse
import os
import signal
import sys

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TESTS, "e2e"))

# pylint: disable=wrong-import-position
import copy_scenarios
import error_scenarios
import harness
import loss_neighbour_scenarios
import loss_restore_scenarios
import loss_scenarios
import package_checks
import question_scenarios
import restore_scenarios
import settings_command_scenarios
import settings_scenarios
import unattended_scenarios
import verification_scenarios
import window_scenarios
import windows_scenarios
from wine_place import Prefix, WinePlace

# Of the scenarios of the console, those that need neither a Unix file system nor Unix signals.
SHARED = {
    copy_scenarios: ("json_object", "single_file", "equal_time_other_size",
                     "destination_inside_source", "closed_output"),
    question_scenarios: ("keep", "replace", "nobody_to_ask", "both_switches", "answer_yes",
                         "answer_no", "answer_all", "answer_cancel", "answer_is_repeated",
                         "end_of_input", "interrupted_question", "json_beside_a_terminal",
                         "progress_on_a_terminal"),
    error_scenarios: ("wrong_use", "unknown_command", "help_text", "missing_source",
                      "file_in_the_way", "directory_in_the_way", "replaces_read_only_copy"),
    settings_scenarios: ("configuration_run", "default_configuration", "line_by_line",
                         "unknown_configuration", "no_settings", "settings_untouched",
                         "odd_settings", "other_line_ends", "journal"),
    settings_command_scenarios: ("configurations", "lines", "options", "drives",
                                 "help_of_every_command"),
    restore_scenarios: ("whole_cycle", "keeps_everything", "tree_only_without_terminal",
                        "gone_disk", "never_backed_up", "two_lines_in_one_place",
                        "target_over_source", "restore_questions"),
    loss_scenarios: ("a_differing_file_is_counted_not_deleted",),
    loss_restore_scenarios: ("complete_certificate_is_the_proof", "exclusions_of_then_and_now",
                             "narrower_run_last", "tree_only_run_last", "backup_by_source_counts",
                             "other_home", "copied_copy_becomes_a_copy",
                             "damaged_certificates", "certificate_in_another_directory",
                             "confirmed_source_after_a_restore"),
    loss_neighbour_scenarios: ("other_configurations", "two_lines_one_copy",
                               "shared_copy_restored", "copy_inside_its_source",
                               "settings_inside_the_copy", "settings_inside_the_original",
                               "file_and_directory_change_places"),
    verification_scenarios: ("one_flipped_bit", "single_file"),
    unattended_scenarios: ("auto_run", "command_line_forms", "empty_last_element", "unknown_name",
                           "missing_disk"),
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs",
                        default=os.path.join(os.path.dirname(TESTS), "build/windows-release/bin"))
    parser.add_argument("word", nargs="?", default="")
    arguments = parser.parse_args()
    programs = os.path.abspath(arguments.programs)

    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    # Ended from outside, the scenario still removes what it made.
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(1))
    report = harness.Report()
    package_checks.check_all(programs, report)
    shared = [getattr(module, name) for module, names in SHARED.items() for name in names]
    scenarios = [scenario for scenario in (*windows_scenarios.SCENARIOS,
                                           *window_scenarios.SCENARIOS, *shared)
                 if arguments.word in scenario.__name__]
    if report.failed == 0:
        prefix = Prefix(programs)
        try:
            harness.run_all(scenarios, programs, report, lambda place: WinePlace(place, prefix))
        finally:
            prefix.remove()
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
