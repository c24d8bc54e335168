#!/usr/bin/env python3
"""Measures a backup beside other programs, in turn, on volumes of its own.

Usage: run.py [--court] [--programs DIRECTORY] [--other DIRECTORY] [--rounds N] [--output FILE]
              [--place DIRECTORY] [WORD]...
With WORDs, only the trials that one names, or whose names contain one that names none. Results go
to FILE (JSON) and, as tables, beside it (.md); a trial measured before is replaced there, the others
stay. --other names the programs of another build, measured in the same rounds. --court does
everything once on few files, in seconds.
Root mounts ext4 and tmpfs; who is not root measures in plain directories.
"""

import argparse
import contextlib
import datetime
import json
import os
import platform
import re
import shutil
import signal
import subprocess
import sys
import tempfile

import costs
import disks
import programs as p
import runner
import tables
import targets
import trials

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
MEMORY = "/dev/shm"
ENDINGS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
LOAD = os.getloadavg()[0]  # before anything is measured
OURS = "coffrelune"
OTHER = "coffrelune, autre"


class Setup:
    """Where things lie, and what the words of the trials stand for."""

    def __init__(self, arguments, base):
        self.base = base
        self.arguments = arguments
        self.meter = costs.Meter(base)
        self.why_no_volume = disks.why_none(base)
        self.screen = {}

    def volume(self, kind):
        """The kind of volume that there is for the one that is wanted, and why it is another."""
        if self.why_no_volume:
            return disks.Directory, self.why_no_volume
        return disks.KINDS[kind], ""

    def home(self, name):
        return os.path.join(self.base, "réglages", name)

    def programs(self, trial):
        found = []
        for entry in trial.programs:
            found += self.named(entry, trial) if isinstance(entry, str) else [entry]
        return found

    def named(self, word, trial):
        ours = self.arguments.programs
        if word == "ours":
            return [p.Ours(OURS, ours, self.home("ours"))]
        if word == "other":
            other = self.arguments.other
            return [p.Ours(OTHER, other, self.home("other"))] if other else []
        if word == "loops":
            return [p.Loop(self.meter.tool("two_stats"), threads, OURS)
                    for threads in (1, 2) if threads <= trial.cores]
        if word == "ours by settings":
            return [p.OursBySettings("coffrelune, réglages", ours, self.home("settings"),
                                     by_directory=False)]
        if word == "lines":
            return [*self.named("ours by settings", trial),
                    p.OursBySettings("coffrelune, 300 lignes", ours,
                                     self.home("lines"), by_directory=True)]
        if word == "window":
            return [p.Window("coffrelune, fenêtre", ours, self.home("window"))]
        if word == "wine":
            return p.under_wine(ROOT, self.home("wine"))
        raise ValueError(word)

    def environment(self, program):
        return {**program.environment(), **(self.screen if isinstance(program, p.Window) else {})}

    @contextlib.contextmanager
    def with_screen(self):
        """A screen that nobody sees, for those who show something."""
        if not shutil.which("Xvfb"):
            yield
            return
        process = subprocess.Popen(["Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp",
                                    "-screen", "0", "1280x1000x24"],
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.screen = {"DISPLAY": ":" + process.stdout.readline().decode().strip()}
        try:
            yield
        finally:
            process.terminate()
            process.wait()


def machine():
    """What the figures depend on."""
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = re.search(r"model name\s*: (.*)", file.read())
    with open("/proc/meminfo", encoding="ascii") as file:
        memory = int(re.search(r"MemTotal:\s*(\d+)", file.read())[1]) >> 20
    versions = {}
    for tool in ("rsync", "cp"):
        if shutil.which(tool):
            answer = subprocess.run([tool, "--version"], capture_output=True, text=True,
                                    check=False)
            versions[tool] = re.search(r"\d+\.\d+[.\d]*", answer.stdout)[0]
    return {"processeur": model[1] if model else platform.machine(),
            "cœurs": len(os.sched_getaffinity(0)), "mémoire_gio": memory,
            "noyau": platform.release(), "versions": versions, "charge": LOAD,
            "date": datetime.date.today().isoformat()}


def keep(path, runner_, names):
    """Adds what was measured to the file, in place of what it said of the same trials."""
    results = {"mesures": [], "appels": []}
    if os.path.exists(path):
        with open(path, encoding="utf-8") as file:
            results = json.load(file)
    for key, new in (("mesures", runner_.records), ("appels", runner_.calls)):
        results[key] = [old for old in results[key] if old["essai"] not in names] + new
    results["machine"] = machine()
    os.makedirs(os.path.dirname(path), exist_ok=True)
    temporary = path + ".tmp"
    with open(temporary, "w", encoding="utf-8") as file:
        json.dump(results, file, ensure_ascii=False, indent=0)
        file.write("\n")
    os.replace(temporary, path)
    with open(os.path.splitext(path)[0] + ".md", "w", encoding="utf-8") as file:
        file.write("\n".join(shown(results)) + "\n")
    return results


def shown(results):
    return [*targets.table(results), *tables.everything(results)]


def counted(found, names):
    """The verdict of the short form, which times nothing: a line each, then the counts."""
    checks = [(f"{found.copies} copies égales à leur original", found.copies > 0
               and not found.faults)]
    for name in names:
        some = [record for record in found.records + found.calls if record["essai"] == name]
        checks.append((f"« {name} » est mesuré", bool(some)))
    if found.calls and not costs.why_no_calls():
        ours = [tables.calls_per_file(record) for record in found.calls
                if record["programme"] == OURS]
        checks.append(("les appels par fichier sont comptés",
                       len(ours) == 4 and all(0.1 < calls < 1000 for calls in ours)))
    for text, good in checks:
        print(f"ok {text}" if good else f"FAUTE {text}")
    failed = sum(not good for _, good in checks)
    print(f"{len(checks) - failed} réussis, {failed} échoués, {len(found.left_out)} laissés")
    return 0 if failed == 0 else 1


def named(all_trials, words):
    names = {trial.name for trial in all_trials}
    return [trial for trial in all_trials if not words or any(
        word == trial.name or (word not in names and word in trial.name) for word in words)]


def parsed():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--court", action="store_true")
    parser.add_argument("--programs", default=os.path.join(ROOT, "build/linux-release/bin"),
                        type=os.path.abspath)
    parser.add_argument("--other", type=os.path.abspath)
    parser.add_argument("--rounds", type=int)
    parser.add_argument("--output", default=os.path.join(ROOT, "build/bench/mesures.json"),
                        type=os.path.abspath)
    parser.add_argument("--place")
    parser.add_argument("words", nargs="*", metavar="WORD")
    return parser.parse_args()


def leave(*_):
    """Ended from outside, the volumes are still taken away; being told twice does not stop that."""
    for number in ENDINGS:
        signal.signal(number, signal.SIG_IGN)
    sys.exit(1)


def main():
    arguments = parsed()
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace", line_buffering=True)
    for number in ENDINGS:
        signal.signal(number, leave)
    chosen = named(trials.short() if arguments.court else trials.everything(), arguments.words)
    # What the short form shows does not depend on the disk, so it need not wait for one.
    place = arguments.place or (MEMORY if arguments.court and os.access(MEMORY, os.W_OK) else None)
    base = os.path.realpath(tempfile.mkdtemp(prefix="coffrelune-bench-", dir=place))
    names = [trial.name for trial in chosen]
    try:
        setup = Setup(arguments, base)
        found = runner.Runner(setup)
        if LOAD > 0.5 and not arguments.court:
            print(f"Cette machine fait autre chose (charge {LOAD:.1f}) : les écarts seront grands.")
        with setup.with_screen():
            for number, trial in enumerate(chosen):
                trial.rounds = arguments.rounds or trial.rounds
                print(f"[{number + 1}/{len(chosen)}] ", end="")
                found.run(trial)
                if not arguments.court:
                    results = keep(arguments.output, found, names[:number + 1])
    finally:
        shutil.rmtree(base, ignore_errors=True)
    if arguments.court:
        return counted(found, names)
    print("\n".join(shown(results)) if chosen else "aucun essai de ce nom")
    for text in found.faults:
        print(f"FAUTE {text}")
    return 1 if found.faults else 0


if __name__ == "__main__":
    sys.exit(main())
