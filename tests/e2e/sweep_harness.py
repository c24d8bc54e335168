"""What the sweeps stand on: a program whose every call of the file system is counted, and which ends
or fails at one of them (trap.c)."""

import argparse
import contextlib
import os
import random
import re
import shutil
import signal
import tempfile
import traceback

from harness import Place, Report, read, touch, write
from loss_harness import OLDER, OWN, run, tree, why_no_mount

KILLED = (-signal.SIGKILL, 128 + signal.SIGKILL)


class Workshop:
    """A directory for the places of a sweep, in memory where that can be had, with the trap."""

    def __init__(self, programs):
        self.programs = programs
        self.root = tempfile.mkdtemp(prefix="coffrelune-sweep-")
        os.chmod(self.root, 0o755)
        self.mounted = not why_no_mount() and run(
            "mount", "-t", "tmpfs", "-o", "size=512m", "essai", self.root).returncode == 0
        self.trap = f"{self.root}/trap.so"
        self.why_not = self.build()

    def build(self):
        """Why there is no trap, or an empty text."""
        compiler = next(filter(None, map(shutil.which, ("cc", "gcc", "g++", "clang-14"))), None)
        if compiler is None:
            return "il faut un compilateur de C pour arrêter le programme à un appel donné"
        source = os.path.join(os.path.dirname(os.path.abspath(__file__)), "trap.c")
        built = run(compiler, "-xc", "-shared", "-fPIC", "-O1", "-o", self.trap, source, "-ldl")
        return "" if built.returncode == 0 else f"trap.c ne se construit pas : {built.stderr}"

    def place(self):
        before = tempfile.tempdir
        tempfile.tempdir = self.root
        try:
            return Place(self.programs)
        finally:
            tempfile.tempdir = before

    def close(self):
        if self.mounted:
            run("umount", "-l", self.root)
        shutil.rmtree(self.root, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    # ---- runs ------------------------------------------------------------------------------------
    def trapped(self, place, arguments, **how):
        """A run with TRAP_AT, TRAP_DO… as in trap.c (`at=3, do="kill", reads=True`)."""
        with contextlib.suppress(OSError, KeyError):
            os.remove(how["log"])
        wanted = {f"TRAP_{name.upper()}": str(value) for name, value in how.items()
                  if value is not None and value is not False and value != 0}
        environment = {**place.environment(), "LD_PRELOAD": self.trap, **wanted}
        return place.console(*arguments, env=environment)

    def calls(self, place, arguments, **how):
        """How an undisturbed run ends, and its counted calls: (kind, name, path)."""
        outcome = self.trapped(place, arguments, log=self.log, **how)
        return outcome, self.logged()

    @property
    def log(self):
        return f"{self.root}/calls"

    def logged_text(self):
        with contextlib.suppress(OSError):
            return read(self.log).decode(errors="replace")
        return ""

    def logged(self):
        found = []
        for line in self.logged_text().splitlines():
            words = line.split(" ", 3)
            found.append((words[1], words[2], words[3] if len(words) > 3 else ""))
        return found


# ---- what a place holds --------------------------------------------------------------------------
def emptied(directory):
    """An empty directory of that name, the same one as before where it stood already."""
    os.makedirs(directory, exist_ok=True)
    for entry in os.scandir(directory):
        if entry.is_dir(follow_symlinks=False):
            shutil.rmtree(entry.path)
        else:
            os.remove(entry.path)


def planted(root, files, seconds=OLDER):
    """Writes files; a content that begins with "-> " is a link."""
    for name, content in files.items():
        path = f"{root}/{name}"
        if name.endswith("/"):
            os.makedirs(path, exist_ok=True)
        elif isinstance(content, str) and content.startswith("-> "):
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with contextlib.suppress(OSError):
                os.remove(path)
            os.symlink(content[3:], path)
        else:
            write(path, content)
            touch(path, seconds)


def files_of(root):
    """Relative path to content of every file and link; nothing of a directory that is not there.
    A directory that has become empty stays, and is no part of it."""
    return {name: content for name, content in tree(root).items() if not name.endswith("/")}


def stamps(root):
    """Last-write times of every file below."""
    return {os.path.relpath(f"{directory}/{name}", root):
            os.lstat(f"{directory}/{name}").st_mtime_ns // 100
            for directory, _, files in os.walk(root) for name in files if not OWN.fullmatch(name)}


def temporaries(*roots):
    return sorted(f"{directory}/{name}" for root in roots for directory, _, files in os.walk(root)
                  for name in files if OWN.fullmatch(name) and name.endswith(".tmp"))


def certificates(root):
    """The bytes of every certificate in the root of a copy."""
    if not os.path.isdir(root):
        return []
    return [read(f"{root}/{name}") for name in sorted(os.listdir(root))
            if OWN.fullmatch(name) and name.endswith(".copie")]


def damaged_certificates(root):
    return [text for text in certificates(root)
            if not (text.startswith(b"Coffrelune 1\n") and text.endswith(b"\nfin\n"))]


def says_complete(root):
    return any(b"\netat=complete\n" in text for text in certificates(root))


def lying_times(source, copy):
    """Files of the copy that bear the time of their original and hold other bytes."""
    mine, theirs = stamps(source), stamps(copy)
    return [name for name, time in theirs.items() if mine.get(name) == time
            and os.path.isfile(f"{source}/{name}") and os.path.isfile(f"{copy}/{name}")
            and not os.path.islink(f"{copy}/{name}")
            and read(f"{source}/{name}") != read(f"{copy}/{name}")]


def strangers(found, *versions):
    """Names whose content is none of the versions'."""
    return sorted(name for name, content in found.items()
                  if content not in [version.get(name) for version in versions])


def difference(one, other):
    """What two trees differ in, short enough to be read."""
    return [(name, str(one.get(name))[:40], str(other.get(name))[:40])
            for name in sorted({*one, *other}) if one.get(name) != other.get(name)]


def error_lines(text):
    return re.findall(r"Erreur: \d+ - Fichier: .*", text.replace("\r", ""))


class Verdict:
    """The faults of a sweep: each is told at once, with what is needed to play it again."""

    def __init__(self, report, most=20):
        self.report = report
        self.most = most  # further ones are counted alone
        self.faults = 0

    def expect(self, good, what, detail=""):
        if good:
            return True
        self.faults += 1
        if self.faults <= self.most:
            print("\n".join(f"    {line}" for line in str(detail)[:2500].splitlines()))
            print(f"    -> {what}", flush=True)
        return False

    def close(self, name, visited, least=1):
        self.report.check(f"{name} : {visited} visites, {self.faults} fautes",
                          self.faults == 0 and visited >= least)


def default_programs():
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    return os.path.join(root, "build/linux-release/bin")


def finish(report):
    print(f"{report.passed} réussis, {report.failed} échoués, {report.left_out} laissés")
    return 0 if report.failed == 0 and report.passed > 0 else 1


def sampled(name, scenes, sweep):
    """Plays a sweep over scenes, or over those that the command line names, of each call or of a
    sample of them. Gives the exit status."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=default_programs())
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("word", nargs="?", default="")
    arguments = parser.parse_args()
    report = Report()
    print(f"graine : {arguments.seed}")
    chance = random.Random(arguments.seed)
    with Workshop(os.path.abspath(arguments.programs)) as shop:
        if shop.why_not:
            report.leave_out(name, shop.why_not)
            return finish(report)
        for scene in scenes:
            if arguments.word in scene.name:
                played(report, scene, lambda made: sweep(shop, made, report, arguments.sample,
                                                         chance))
    return finish(report)


def played(report, scene, sweep):
    report.begin(scene)
    try:
        sweep(scene())
    except Exception:  # pylint: disable=broad-except  # the next scene is still worth it
        report.check(f"{scene.name} va à son terme", False, traceback.format_exc())
