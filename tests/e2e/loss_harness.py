"""What the scenarios that set out to lose files stand on: mounts, faults, halts, whole trees."""

import contextlib
import functools
import os
import re
import shutil
import signal
import subprocess
import tempfile

from harness import drive_path, read, touch, wait, wait_until, write

OWN = re.compile(r"\.~coffrelune-[0-9a-f]{16}\.(tmp|copie|restauration|verrou)")
KEPT = "Fichiers excédentaires conservés"
OLDER = -3600  # seconds: a file of then is older than every one that a scenario writes


# ---- what cannot be had everywhere ---------------------------------------------------------------
@functools.cache
def why_no_mount():
    """Empty where this machine lets the scenarios mount."""
    if os.geteuid() != 0 or shutil.which("mount") is None:
        return "il faut root et mount pour monter un volume"
    point = tempfile.mkdtemp(prefix="coffrelune-e2e-")
    answer = run("mount", "-t", "tmpfs", "-o", "size=64k", "essai", point)
    if answer.returncode == 0:
        run("umount", point)
    os.rmdir(point)
    return answer.stderr.strip()


@functools.cache
def why_no_trace():
    """Empty where strace can put faults into a program."""
    if shutil.which("strace") is None:
        return "il faut strace pour arrêter le programme à un appel donné"
    answer = run("strace", "-qq", "-o", "/dev/null", "-e", "inject=unlinkat:error=EIO", "true")
    return answer.stderr.strip()


def why_no_root():
    return "" if os.geteuid() == 0 else "il faut root pour donner les fichiers à un autre"


def needs(*reasons):
    """Leaves a scenario out, with the reason, where the machine lacks what it needs."""
    def decorate(scenario):
        @functools.wraps(scenario)
        def guarded(place, report):
            reason = next((text for text in (why() for why in reasons) if text), "")
            if reason:
                report.leave_out(scenario.__name__, reason)
            else:
                scenario(place, report)
        return guarded
    return decorate


def run(*words):
    return subprocess.run(words, capture_output=True, text=True, check=False)


@contextlib.contextmanager
def mounted(point, *how, source="petit"):
    """A tmpfs at `point`, which is made, or what `how` says; taken away whatever happens."""
    os.makedirs(point, exist_ok=True)
    how = how or ("-t", "tmpfs", "-o", "size=4m")
    subprocess.run(["mount", *how, source, point], check=True)
    try:
        yield point
    finally:
        run("umount", "-l", point)


def unmount(point):
    subprocess.run(["umount", point], check=True)


@contextlib.contextmanager
def disk(place, name, *how, source="petit"):
    """A volume where the program gives letters, below /mnt."""
    point = f"/mnt/{os.path.basename(place.root)}-{name}"
    try:
        with mounted(point, *how, source=source):
            yield point
    finally:
        with contextlib.suppress(OSError):
            os.rmdir(point)  # fails when something was written beside the volume


# ---- trees ---------------------------------------------------------------------------------------
def plant(root, files, seconds=0):
    """Writes files: relative path to content. `seconds`: their age against now."""
    for name, content in files.items():
        write(f"{root}/{name}", content)
        if seconds:
            touch(f"{root}/{name}", seconds)


def tree(root):
    """Relative path to content of every file, link (as "-> target") or other thing; directories
    that hold nothing end with a slash. The program's own files are left out."""
    found = {}
    for directory, names, files in os.walk(root):
        names[:] = [name for name in names if not OWN.fullmatch(name)]
        for name in files + [name for name in names if os.path.islink(f"{directory}/{name}")]:
            path = f"{directory}/{name}"
            if OWN.fullmatch(name):
                continue
            key = os.path.relpath(path, root)
            if os.path.islink(path):
                found[key] = "-> " + os.readlink(path)
            elif os.path.isfile(path):
                found[key] = read(path).decode(errors="replace")
            else:
                found[key] = "?"
        if not names and not files and directory != root:
            found[os.path.relpath(directory, root) + "/"] = ""
    return found


def marks(root, kind="copie"):
    """The program's own files of a kind, anywhere below."""
    return sorted(f"{directory}/{name}" for directory, _, files in os.walk(root) for name in files
                  if OWN.fullmatch(name) and name.endswith(kind))


def certificate(root):
    """The only certificate in the root of a copy."""
    found = [path for path in marks(root) if os.path.dirname(path) == root]
    assert len(found) == 1, found
    return found[0]


# ---- settings and runs ---------------------------------------------------------------------------
def settle(place, *lines, options="", keys="", go_on=-1):
    """Settings that keep copies in step, one line for each pair of source and destination."""
    pairs = lines or ((place.source, place.destination),)
    text = f"[Position]\nContinueOnError={go_on}\nSynchroCopie=-1\n{options}"
    text += "[General]\nModifie=1\nConfirmation=1\n" + keys
    for index, (source, destination) in enumerate(pairs):
        for key, path in (("Source", source), ("Destination", destination)):
            core = drive_path(path) if path.startswith("/") else path
            text += f'{key}{index}="{core}"\n'
        text += f"Select{index}=1\n"
    place.write_settings(text)


def back_up(place, *more, **options):
    return place.console("sauvegarder", "--journal", *more, **options)


def restore(place, *more, **options):
    return place.console("restaurer", "--confirmer", "--journal", *more, **options)


def check(report, what, outcome, status, *words):
    """How a run ended, and what it said. `status`: one, or several that are all right."""
    expected = status if isinstance(status, tuple) else (status,)
    report.check(f"{what} : état {status}", outcome.status in expected, outcome)
    for word in words:
        report.check(f"{what} : « {word} » est dit", word in outcome.all, outcome)


def silent(report, what, outcome):
    report.check(f"{what} : rien n'est retenu", KEPT not in outcome.all, outcome)


def holds(report, what, root, expected):
    report.equal(what, tree(root), expected)


def backed_up(place, report, files, *more):
    """A first complete backup of these files."""
    plant(place.source, files, OLDER)
    check(report, "première sauvegarde", back_up(place, *more), 0)
    holds(report, "la copie est là", place.copy, files)


# ---- faults --------------------------------------------------------------------------------------
def traced(place, faults, *arguments, path=None, **options):
    """Starts the program below strace with faults ("renameat:error=EIO:when=2")."""
    log = f"{place.root}/trace"
    with contextlib.suppress(OSError):
        os.remove(log)
    words = ["strace", "-f", "-qq", "-o", log]
    for fault in faults:
        words += ["-e", f"inject={fault}"]
    calls = ",".join(fault.split(":")[0] for fault in faults)
    words += ["-e", f"trace={calls}", *(["-P", path] if path else [])]
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE,
               "cwd": place.root, "env": place.environment(), "start_new_session": True, **options}
    program = os.path.join(place.programs, "coffrelune-console")
    return subprocess.Popen([*words, program, *arguments], **options)


def faulty(place, faults, *arguments, path=None):
    return wait(traced(place, faults, *arguments, path=path))


def write_of_data(place, *arguments):
    """Which of the writes of a run that ends well is the first of a file of some size."""
    wait(traced(place, ["write:error=EIO:when=65535"], *arguments))
    writes = re.findall(rb"^(\d+) +write\(\d+, .*, (\d+)(?:\)| <unf)", read(f"{place.root}/trace"), re.M)
    thread, _ = next(found for found in writes if int(found[1]) > 100_000)
    own = [int(size) for number, size in writes if number == thread]  # strace counts by thread
    return next(number for number, size in enumerate(own, 1) if size > 100_000)


BACKUP = ("sauvegarder", "--journal")
RESTORE = ("restaurer", "--confirmer", "--journal")


def killed(place, call, number, arguments):
    """True when the program was killed at its n-th call of that name; False when it had ended."""
    outcome = faulty(place, [f"{call}:signal=SIGKILL:when={number}"], *arguments)
    return outcome.status in (-signal.SIGKILL, 128 + signal.SIGKILL)


class Halted:
    """A run that stands still before its n-th call of a name, and goes on when told to."""

    def __init__(self, place, report, call, number, *arguments, path=None):
        self.process = traced(place, [f"{call}:signal=SIGSTOP:when={number}"], *arguments,
                              path=path)
        self.stands = wait_until(lambda: b"stopped by SIGSTOP" in self.log(place), self.process)
        report.check("le programme est arrêté en son milieu", self.stands,
                     self.log(place).decode(errors="replace")[-800:])

    @staticmethod
    def log(place):
        try:
            return read(f"{place.root}/trace")
        except OSError:
            return b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.finish()

    def signal(self, number):
        for child in read(f"/proc/{self.process.pid}/task/{self.process.pid}/children").split():
            os.kill(int(child), number)

    def finish(self):
        # strace counts the calls of each thread apart: another one may stop the program again.
        while self.process.poll() is None:
            with contextlib.suppress(OSError):
                self.signal(signal.SIGCONT)
            with contextlib.suppress(subprocess.TimeoutExpired):
                self.process.wait(0.2)
        return wait(self.process)

    def kill(self):
        self.signal(signal.SIGKILL)
        return wait(self.process)


def elsewhere(place):
    """Another computer, as far as the settings tell: the same lines, another home."""
    place.home = f"{place.root}/autre machine {len(os.listdir(place.root))}"
    os.mkdir(place.home)

