"""What the sweeps stand on: a program whose every call of the file system is counted, and which ends
or fails at one of them (trap.c)."""

import argparse
import contextlib
import os
import random
import re
import shutil
import signal
import stat
import tempfile
import traceback

from harness import Place, Report, read, touch, write
from loss_harness import OLDER, OWN, run, why_no_mount

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


def below(root, prefix=""):
    """Relative path and entry of everything below a directory that is none itself; nothing of a
    directory that is not there."""
    try:
        entries = list(os.scandir(f"{root}/{prefix}"))
    except (FileNotFoundError, NotADirectoryError):
        return
    for entry in entries:
        if entry.is_dir(follow_symlinks=False):
            yield from below(root, f"{prefix}{entry.name}/")
        else:
            yield prefix + entry.name, entry


def users_files(root):
    """The same without the program's own files and directories."""
    return ((name, entry) for name, entry in below(root) if ".~" not in name
            or not any(OWN.fullmatch(part) for part in name.split("/")))


def files_of(root):
    """Relative path to content of every file and link; nothing of a directory that is not there.
    A directory that has become empty stays, and is no part of it."""
    found = {}
    for name, entry in users_files(root):
        if entry.is_symlink():
            found[name] = "-> " + os.readlink(entry.path)
        else:
            found[name] = (read(entry.path).decode(errors="replace") if entry.is_file() else "?")
    return found


def stamps(root):
    """Last-write times of every file and link below."""
    return {name: entry.stat(follow_symlinks=False).st_mtime_ns // 100
            for name, entry in users_files(root)}


def temporaries(*roots):
    return sorted(f"{directory}/{name}" for root in roots
                  for directory, below_it, files in os.walk(root) for name in below_it + files
                  if OWN.fullmatch(name) and name.endswith(".tmp"))


class Snapshot:
    """What stands below some directories, to be brought back without the runs that made it. The
    directories themselves stay: a copy knows its place by them."""

    def __init__(self, *roots):
        self.roots = {root: self.entries(root) for root in roots}

    def entries(self, root):
        """Relative path to (kind and rights, last-write time, content), each directory before what
        it holds."""
        found = {}
        for directory, below_it, files in os.walk(root):
            for name in ["", *below_it, *files] if directory == root else [*below_it, *files]:
                path = f"{directory}/{name}".rstrip("/")
                found[path[len(root):]] = self.entry(path)
        return found

    @staticmethod
    def entry(path):
        status = os.lstat(path)
        content = None
        if stat.S_ISLNK(status.st_mode):
            content = os.readlink(path)
        elif stat.S_ISREG(status.st_mode):
            content = read(path)
        return status.st_mode, status.st_mtime_ns, content

    def bring_back(self):
        for root, entries in self.roots.items():
            now = self.entries(root)
            for name in sorted(now, reverse=True):
                if name not in entries or stat.S_IFMT(now[name][0]) != stat.S_IFMT(
                        entries[name][0]):
                    is_directory = stat.S_ISDIR(now.pop(name)[0])
                    (os.rmdir if is_directory else os.remove)(root + name)
            for name, entry in entries.items():
                if now.get(name) != entry and not stat.S_ISDIR(entry[0]):
                    self.put(root + name, *entry)
                elif name not in now:
                    os.mkdir(root + name)
            for name in sorted(entries, reverse=True):
                mode, time, _ = entries[name]
                if stat.S_ISDIR(mode):
                    os.chmod(root + name, stat.S_IMODE(mode))
                    os.utime(root + name, ns=(time, time))

    @staticmethod
    def put(path, mode, time, content):
        with contextlib.suppress(FileNotFoundError):
            os.remove(path)
        if stat.S_ISLNK(mode):
            os.symlink(content, path)
        else:
            with open(path, "wb") as file:
                file.write(content)
            os.chmod(path, stat.S_IMODE(mode))
        os.utime(path, ns=(time, time), follow_symlinks=False)


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


class Course:
    """How far a sweep has come. One that is cut off says from where to take it up."""

    EACH = 1000  # trials after which it is said anyhow

    def __init__(self, seed, sample, start):
        self.seed, self.sample = seed, sample
        self.skipped_to, _, number = start.rpartition(":")
        self.first = int(number or 0)
        self.at = "rien n'était commencé"
        signal.signal(signal.SIGTERM, signal.default_int_handler)

    def begins(self, scene):
        """Whether a scene is played, as none is before the one where it is to begin."""
        if self.skipped_to and scene.name != self.skipped_to:
            return False
        self.skipped_to = ""
        return True

    def chance(self, scene):
        return random.Random(f"{self.seed} {scene.name}")

    def trials(self, scene, verdict, chosen):
        first, self.first = self.first, 0
        for number, trial in enumerate(chosen[first:], first):
            done = f"{scene.name}, {number - first} essais, {verdict.faults} fautes"
            self.at = f"{done} ; la suite : --seed {self.seed} --from '{scene.name}:{number}'"
            if number > first and number % self.EACH == 0:
                print(f"    {number} de {len(chosen)} : {self.at}", flush=True)
            yield trial


def sampled(name, scenes, sweep):
    """Plays a sweep over scenes, or over those that the command line names, of each call or of a
    sample of them. Gives the exit status."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", default=default_programs())
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("--from", dest="start", default="", metavar="SCENE:NUMBER")
    parser.add_argument("words", nargs="*", metavar="WORD")
    arguments = parser.parse_args()
    report = Report()
    print(f"graine : {arguments.seed}", flush=True)
    course = Course(arguments.seed, arguments.sample, arguments.start)
    with Workshop(os.path.abspath(arguments.programs)) as shop:
        if shop.why_not:
            report.leave_out(name, shop.why_not)
            return finish(report)
        try:
            for scene in scenes:
                wanted = not arguments.words or any(word in scene.name for word in arguments.words)
                if wanted and course.begins(scene):
                    played(report, scene, lambda made: sweep(shop, made, report, course))
        except KeyboardInterrupt:
            report.check(f"{name} va à son terme", False, course.at)
    return finish(report)


def played(report, scene, sweep):
    report.begin(scene)
    try:
        sweep(scene())
    except Exception:  # pylint: disable=broad-except  # the next scene is still worth it
        report.check(f"{scene.name} va à son terme", False, traceback.format_exc())
