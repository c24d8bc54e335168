"""What a command costs: time, processor, memory, system calls by name."""

import dataclasses
import os
import re
import shutil
import signal
import subprocess

HERE = os.path.dirname(os.path.abspath(__file__))


@dataclasses.dataclass
class Cost:
    seconds: float
    user: float  # seconds of processor
    system: float
    peak: int  # KiB of its largest process
    status: int
    errors: str  # what it said of them


class Meter:
    """Runs commands and tells their costs. Its tools are compiled where `base` says."""

    def __init__(self, base):
        self.base = base
        for name in ("timed", "two_stats"):
            subprocess.run([os.environ.get("CC", "cc"), "-std=gnu11", "-O2", "-pthread", "-o",
                            self.tool(name), os.path.join(HERE, name + ".c")], check=True)

    def tool(self, name):
        return os.path.join(self.base, name)

    def cost(self, words, cores, environment):
        """`cores`: how many it may use. What it prints is read by nobody."""
        told, tell = os.pipe()
        # The reading end is inherited by nobody; the writing end is descriptor 3 of the tool.
        shell = f'exec 3>&{tell} {tell}>&-; exec "$@"' if tell != 3 else 'exec "$@"'
        process = started(["bash", "-c", shell, "bash", self.tool("timed"), str(cores), *words],
                          pass_fds=(tell,), env=environment)
        os.close(tell)
        errors = end_of(process)
        with os.fdopen(told) as answer:
            numbers = [int(word) for word in answer.read().split()]
        if process.returncode != 0 or len(numbers) != 5:
            raise OSError(f"{words[0]} : la mesure a échoué")
        nanoseconds, user, system, peak, status = numbers
        return Cost(nanoseconds / 1e9, user / 1e6, system / 1e6, peak, status, errors[-2000:])

    def calls(self, words, environment):
        """Name to number of the system calls of a command and its children; its status."""
        table = os.path.join(self.base, "appels")
        process = started(["strace", "-c", "-f", "-qq", "-o", table, "--", *words],
                          env=environment)
        end_of(process)
        with open(table, encoding="ascii") as file:
            return parsed(file.read()), process.returncode


def started(words, **options):
    return subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, text=True, errors="replace",
                            start_new_session=True, **options)


def end_of(process):
    """Waits for a program; gives what it said of errors. Who is ended meanwhile ends it, too: it
    would hold the volumes that are to be taken away."""
    try:
        return process.communicate()[1]
    except BaseException:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        raise


def parsed(table):
    """The calls of strace's table: share, seconds, microseconds a call, calls, errors or nothing,
    name."""
    found = {}
    for line in table.splitlines():
        row = re.fullmatch(r"\s*[\d.]+\s+[\d.]+\s+\d+\s+(\d+)\s+(?:\d+\s+)?([a-z]\w*)", line)
        if row and row[2] != "total":
            found[row[2]] = int(row[1])
    return found


def why_no_calls():
    return "" if shutil.which("strace") else "il faut strace pour compter les appels"
