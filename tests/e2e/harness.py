"""What every scenario stands on: a place of its own on the disk, the real programs, the counts."""

import contextlib
import filecmp
import json
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import traceback

# Who starts this in the background may have it ignore Ctrl-C, and the programs would with it.
signal.signal(signal.SIGINT, signal.default_int_handler)

PATIENCE = 240  # seconds after which a program counts as hung
TRIES = 10  # to catch a program in its midst
# Where the programs see a native directory: the first that holds a path counts.
DRIVES = [("/", "C:\\")]
# What says in the root of a copy whose copy it is: beside the user's files, none of them.
CERTIFICATE = re.compile(rb"\.~coffrelune-[0-9a-f]{16}\.copie")


class Report:
    """Prints a line a check and keeps the counts."""

    def __init__(self):
        self.passed = self.failed = self.left_out = 0
        self.scenario = ""

    def begin(self, scenario):
        self.scenario = scenario.__name__
        print(f"--- {self.scenario} : {scenario.__doc__.strip().splitlines()[0]}")

    def check(self, name, good, detail=""):
        if good:
            self.passed += 1
            print(f"ok {name}")
        else:
            self.failed += 1
            for line in str(detail).splitlines():
                print(f"    {line}")
            print(f"FAUTE {self.scenario} : {name}")
        sys.stdout.flush()
        return bool(good)

    def equal(self, name, found, expected):
        return self.check(name, found == expected, f"attendu : {expected!r}\nobtenu  : {found!r}")

    def leave_out(self, name, reason):
        self.left_out += 1
        print(f"laissé {name} : {reason}")


class Outcome:
    """How a program ended."""

    def __init__(self, status, out, err=""):
        self.status = status
        self.out = out
        self.err = err

    @property
    def all(self):
        return self.out + self.err

    def json(self):
        """The whole of stdout as one object; None when it is none."""
        try:
            value = json.loads(self.out)
        except ValueError:
            return None
        return value if isinstance(value, dict) else None

    def __str__(self):
        return f"état {self.status}\nstdout : {self.out[-2000:]}\nstderr : {self.err[-2000:]}"


class Place:
    """A temporary directory with a source tree, a destination, and the home of the settings."""

    def __init__(self, programs):
        self.root = os.path.realpath(tempfile.mkdtemp(prefix="coffrelune-e2e-"))
        os.chmod(self.root, 0o755)  # a run as another user has to get in
        self.programs = programs
        self.source = os.path.join(self.root, "Données")
        self.destination = os.path.join(self.root, "Disque de sauvegarde")
        self.copy = os.path.join(self.destination, "Données")
        self.home = os.path.join(self.root, "réglages")
        for directory in (self.source, self.destination, self.home):
            os.mkdir(directory)
        self.user = {}
        self.language = {}  # more of the environment

    def remove(self):
        for directory, _, _ in os.walk(self.root):
            with contextlib.suppress(OSError):
                os.chmod(directory, 0o700)
        shutil.rmtree(self.root, ignore_errors=True)

    def become_nobody(self):
        """Root may read everything: what must be refused is tried as nobody. Call it last."""
        if os.geteuid() != 0:
            return
        programs = os.path.join(self.root, "bin")
        shutil.copytree(self.programs, programs)
        self.programs = programs
        for directory, names, files in os.walk(self.root):
            for name in [*names, *files, "."]:
                os.chown(os.path.join(directory, name), 65534, 65534, follow_symlinks=False)
        self.user = {"user": 65534, "group": 65534, "extra_groups": []}

    def environment(self):
        return {
            "PATH": os.environ["PATH"],
            "HOME": self.root,
            "LC_ALL": "C.UTF-8",
            "TZ": "Europe/Paris",
            "COFFRELUNE_HOME": self.home,
            **self.language,
        }

    def speak(self, language):
        """The system of the programs that start from here on is one of that language ("ja_JP")."""
        made = os.path.join(self.root, "langues")
        os.makedirs(made, exist_ok=True)
        subprocess.run(["localedef", "-i", language, "-f", "UTF-8", f"{made}/{language}.UTF-8"],
                       capture_output=True, timeout=PATIENCE, check=True)
        self.language = {"LOCPATH": made, "LC_ALL": f"{language}.UTF-8"}

    def start(self, program, *arguments, **options):
        options = {
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.PIPE,
            "stderr": subprocess.PIPE,
            "cwd": self.root,
            "env": self.environment(),
            "start_new_session": True,
            **self.user,
            **options,
        }
        return subprocess.Popen([os.path.join(self.programs, program), *arguments], **options)

    def run(self, program, *arguments, **options):
        return wait(self.start(program, *arguments, **options))

    def console(self, *arguments, **options):
        return self.run("coffrelune-console", *arguments, **options)

    def backup(self, *arguments, **options):
        """A run without a settings file, from the source to the destination."""
        return self.console(*self.backup_arguments(*arguments), **options)

    def typed(self, path):
        """A path as a user of this system types it."""
        return path

    def backup_arguments(self, *arguments):
        return ["sauvegarder", "--source", self.typed(self.source), "--destination",
                self.typed(self.destination), *arguments]

    def converse(self, answers, *arguments, result=None):
        """Runs the console program on a terminal. `answers`: pairs of what to wait for and what to
        type then; a signal's number is sent instead. Gives the outcome, with everything that the
        terminal showed as its output. `result`: a file that takes standard output instead."""
        master, slave = pty.openpty()
        process = self.start("coffrelune-console", *arguments, stdin=slave,
                             stdout=result or slave, stderr=slave)
        os.close(slave)
        shown = b""
        rest = 0  # where to look for the next question
        answers = list(answers)
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            if select.select([master], [], [], 0.2)[0]:
                try:
                    piece = os.read(master, 65536)
                except OSError:  # the program has closed the terminal
                    break
                if not piece:
                    break
                shown += piece
            if answers and (at := shown.find(answers[0][0].encode(), rest)) >= 0:
                rest = at + len(answers[0][0].encode())
                if isinstance(answers[0][1], int):
                    process.send_signal(answers[0][1])
                else:
                    os.write(master, answers[0][1].encode())
                answers.pop(0)
        else:
            process.kill()
            shown += "\n*** le programme ne finissait pas".encode()
        status = wait(process).status
        os.close(master)
        return Outcome(status, shown.decode(errors="replace"))

    def write_line(self, options="", more="", name="General"):
        """Writes settings that hold options and one configuration with one line, from the source to
        the destination."""
        return self.write_settings(f"[Position]\n{options}" + self.line(name, more))

    def line(self, name="General", more=""):
        return f"""[{name}]
Source0="{drive_path(self.source)}"
Destination0="{drive_path(self.destination)}"
Select0=1
Modifie=1
Confirmation=1
{more}"""

    def write_settings(self, text):
        """Writes the settings file as Windows does: its code page, CR LF."""
        data = text.replace("\n", "\r\n").encode("cp1252")
        with open(self.settings, "wb") as file:
            file.write(data)
        return data

    @property
    def settings(self):
        return os.path.join(self.home, "Coffrelune.ini")

    def read_settings(self):
        with open(self.settings, "rb") as file:
            return file.read()


SEAL = 'mount --rbind "$0" "$0" && mount -o remount,bind,ro "$0" && exec "$@"'


class SealedPlace(Place):
    """A place whose programs find the originals on a read-only mount, unless they restore. The
    mount is theirs alone: the scenario still writes there, also while they run."""

    sealed = 0  # programs that have been started so

    def start(self, program, *arguments, **options):
        if program == "coffrelune-console" and self.seals(arguments):
            type(self).sealed += 1
            words = (self.source, os.path.join(self.programs, program), *arguments)
            return super().start("/usr/bin/unshare", "--mount", "--propagation", "slave",
                                 "/bin/sh", "-c", SEAL, *words, **options)
        return super().start(program, *arguments, **options)

    def seals(self, arguments):
        """Whether this run writes nothing into the directory of the originals. What a user keeps
        there himself, as his settings or the copy, is another thing; so is the mark of a restore,
        which goes when he confirms the original."""
        reads = arguments and arguments[0] in ("sauvegarder", "comparer", "verifier")
        reads = reads and "--confirmer-source" not in arguments
        inside = any(f"{path}/".startswith(f"{self.source}/")
                     for path in (self.home, self.destination))
        return reads and not inside and not self.user and os.path.isdir(self.source)

    @staticmethod
    def why_not():
        """What is missing for it."""
        if os.geteuid() != 0:
            return "il faut root, pour monter"
        made = subprocess.run(["unshare", "--mount", "true"], capture_output=True, check=False)
        return "" if made.returncode == 0 else "unshare --mount n'est pas permis"


def wait(process):
    """The outcome of a started program, which is ended when it hangs."""
    try:
        out, err = process.communicate(timeout=PATIENCE)
    except subprocess.TimeoutExpired:
        os.kill(process.pid, signal.SIGKILL)
        out, err = process.communicate()
        err = (err or b"") + "\n*** le programme ne finissait pas".encode()
    decode = lambda data: (data or b"").decode(errors="replace")
    return Outcome(process.returncode, decode(out), decode(err))


def wait_until(condition, process=None):
    """True as soon as the condition holds; False when the program ends or time runs out first."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        if condition():
            return True
        if process is not None and process.poll() is not None:
            return False
        time.sleep(0.001)
    return False


def stands_still(process):
    """Stops a program where it is; False when it had ended. Only when every thread of it stands
    does what the disk holds stay as it is."""
    process.send_signal(signal.SIGSTOP)
    wait_until(lambda: process.poll() is not None or all(
        re.search(r"^State:\s+[Tt]", text, re.M) for text in states(process)))
    return process.poll() is None


def states(process):
    """What the system says of each of its threads. One may end meanwhile, or all of them."""
    with contextlib.suppress(OSError):
        for thread in os.listdir(f"/proc/{process.pid}/task"):
            with contextlib.suppress(OSError):
                yield read(f"/proc/{process.pid}/task/{thread}/status").decode(errors="replace")


def caught(start, arrived, again=None, holds=None):
    """A program that `start` has started and that stands still where `arrived` came to hold, and
    `holds` when that is more. This machine may be too slow to see it pass there: then it tries
    once more, after `again` has put the files back. None when it never succeeds."""
    for attempt in range(TRIES):
        if attempt > 0 and again is not None:
            again()
        process = start()
        seen = wait_until(arrived, process)
        if stands_still(process) and seen and (holds is None or holds()):
            return process
        process.send_signal(signal.SIGCONT)
        wait(process)
    return None


def write(path, content="contenu"):
    """Writes a file with the directories above it. `path` may be bytes."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    data = content if isinstance(content, bytes) else content.encode()
    with open(path, "wb") as file:
        file.write(data)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def drive_path(path):
    """A native path as the settings file holds it: C: is the system's own root on Linux."""
    for directory, root in DRIVES:
        if path == directory or path.startswith(directory.rstrip("/") + "/"):
            return root + path[len(directory):].lstrip("/").replace("/", "\\")
    raise ValueError(f"{path} is on no drive")


def touch(path, seconds):
    """Sets the last-write time that many seconds later, with a fraction that ends in 100 ns."""
    now = os.stat(path, follow_symlinks=False).st_mtime_ns
    later = now // 1_000_000_000 * 1_000_000_000 + seconds * 1_000_000_000 + 123_456_700
    os.utime(path, ns=(later, later), follow_symlinks=False)


def times_of(root):
    """Relative path to last-write time in units of 100 ns, of everything that is no directory."""
    times = {}
    for directory, names, files in os.walk(os.fsencode(root)):
        for name in [*files, *names]:
            if CERTIFICATE.fullmatch(name):
                continue
            path = os.path.join(directory, name)
            if os.path.islink(path) or not os.path.isdir(path):
                times[os.path.relpath(path, os.fsencode(root))] = os.lstat(path).st_mtime_ns // 100
    return times


def names_below(root):
    """Every relative path below a directory, as bytes, but for the certificates of copies."""
    found = set()
    for directory, names, files in os.walk(os.fsencode(root)):
        for name in [*names, *(name for name in files if not CERTIFICATE.fullmatch(name))]:
            found.add(os.path.relpath(os.path.join(directory, name), os.fsencode(root)))
    return found


def differences(left, right):
    """What diff finds between two trees, line by line, links compared as links. The certificates
    of copies are no part of it."""
    answer = subprocess.run(["diff", "-r", "--no-dereference", "-x", ".~coffrelune-*.copie", left,
                             right],
                            capture_output=True, env={**os.environ, "LC_ALL": "C"}, check=False)
    return (answer.stdout + answer.stderr).decode(errors="backslashreplace").splitlines()


def incomplete(source, copy):
    """Files of the copy that differ from the source's, or have none there."""
    source, copy = os.fsencode(source), os.fsencode(copy)
    wrong = []
    for name in names_below(copy):
        try:
            same = os.path.isdir(os.path.join(copy, name)) or filecmp.cmp(
                os.path.join(source, name), os.path.join(copy, name), shallow=False)
        except OSError:
            same = False
        if not same:
            wrong.append(name)
    return wrong


def run_all(scenarios, programs, report, make_place=Place):
    """Runs every scenario in a place of its own; one that breaks off counts as failed."""
    for scenario in scenarios:
        place = make_place(programs)
        report.begin(scenario)
        try:
            scenario(place, report)
        except Exception:  # pylint: disable=broad-except  # the next scenarios are still worth it
            report.check(f"{scenario.__name__} va à son terme", False, traceback.format_exc())
        finally:
            place.remove()
