"""Where the scenarios run Windows programs: drives E: and F: under Wine, in a prefix of their own,
on a screen of their own."""

import os
import pty
import select
import shutil
import subprocess
import tempfile
import time
import tty

import harness
from window_screen import FRAMES, Screen, first_line

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WINE = os.path.join(ROOT, "tools/wine.sh")
SILENCE = 10  # seconds after which a console that stays has no more to show


def driver(programs):
    """What works a window from outside; built beside the programs."""
    return os.path.join(os.path.dirname(programs), "tests/windows/window_driver.exe")


class Prefix:
    """A fresh Windows whose drives E: and F: are directories here, and Z: is the system's root."""

    def __init__(self, programs):
        self.base = os.path.realpath(tempfile.mkdtemp(prefix="coffrelune-wine-"))
        self.processes = []
        self.open_screen()
        self.wine = os.path.join(self.base, "wine")
        self.drives = {letter: os.path.join(self.base, f"disque {letter}") for letter in "ef"}
        # Made once: which letters there are is read when the first program starts.
        self.run("cmd.exe", "/c", "exit")
        self.stop()
        for letter, directory in self.drives.items():
            os.mkdir(directory)
            os.symlink(directory, os.path.join(self.wine, "dosdevices", f"{letter}:"))
        harness.DRIVES[:] = [*((directory, f"{letter.upper()}:\\")
                               for letter, directory in self.drives.items()), ("/", "Z:\\")]
        self.open_desktop(driver(programs))

    def open_screen(self):
        """A screen of its own: nothing appears on that of the person at this machine. Its window
        manager gives a new window the focus, as Windows does."""
        screen = self.launch("Xvfb", "-displayfd", "1", "-noreset", "-screen", "0", "1280x1000x24",
                             "-nolisten", "tcp", stdout=subprocess.PIPE)
        os.environ["DISPLAY"] = ":" + first_line(screen.stdout)
        os.environ.pop("XAUTHORITY", None)
        settings = os.path.join(self.base, "fenêtres")
        os.mkdir(settings)
        with open(os.path.join(settings, "prefoverride"), "w", encoding="ascii") as file:
            file.write(FRAMES)
        self.launch("icewm", env={**os.environ, "ICEWM_PRIVCFG": settings})
        Screen.wait_for_window_manager()

    def open_desktop(self, program):
        """The first program that looks at the desktop starts it, which takes its time, and gives
        it its own stderr: whoever reads that would wait for the end of the desktop. A program
        that does nothing else does so once, and keeps it."""
        if os.path.exists(program):
            keeper = self.launch(WINE, program, "stay", env=self.environment(),
                                 stdout=subprocess.PIPE)
            first_line(keeper.stdout)  # no other program may be the first

    def launch(self, *command, **options):
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
                   "stderr": subprocess.DEVNULL, **options}
        self.processes.append(subprocess.Popen(command, **options))
        return self.processes[-1]

    def environment(self):
        return {**os.environ, "COFFRELUNE_WINEPREFIX": self.wine, "WINEPREFIX": self.wine,
                "LC_ALL": "C.UTF-8"}

    def run(self, *command):
        return subprocess.run([WINE, *command], env=self.environment(), stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=harness.PATIENCE, check=False)

    def stop(self):
        """Ends every program of the prefix, and its server."""
        subprocess.run(["wineserver", "-k"], env=self.environment(), check=False,
                       timeout=harness.PATIENCE)
        subprocess.run(["wineserver", "-w"], env=self.environment(), check=False,
                       timeout=harness.PATIENCE)

    def empty_drives(self):
        for directory in self.drives.values():
            # A program that was killed may still be about to write its last.
            harness.wait_until(lambda place=directory: removed(place))
            os.mkdir(directory)

    def remove(self):
        self.stop()
        for process in reversed(self.processes):
            process.terminate()
            process.wait()
        shutil.rmtree(self.base, ignore_errors=True)


def removed(directory):
    shutil.rmtree(directory, ignore_errors=True)
    return not os.path.exists(directory)


def keys(answer):
    """What a person at a Windows console presses to give an answer that the scenarios know."""
    if isinstance(answer, int):  # a signal
        return b"\x03"
    return answer.replace("\n", "\r").replace("\x04", "\x1a\r").encode()


class WinePlace(harness.Place):
    """The source is on E:, the destination is the root of F:, the settings are on Z:."""

    def __init__(self, programs, prefix):
        super().__init__(programs)
        self.prefix = prefix
        prefix.empty_drives()
        for directory in (self.source, self.destination):
            os.rmdir(directory)
        self.source = os.path.join(prefix.drives["e"], "Données")
        self.destination = prefix.drives["f"]
        self.copy = os.path.join(self.destination, "Données")
        os.mkdir(self.source)

    def environment(self):
        return {**super().environment(),
                "COFFRELUNE_HOME": harness.drive_path(self.home),
                "COFFRELUNE_WINEPREFIX": self.prefix.wine,
                "HOME": os.environ["HOME"],
                "DISPLAY": os.environ["DISPLAY"]}

    def move_source(self, name):
        """The source is another directory of E:, not there yet."""
        self.source = os.path.join(self.prefix.drives["e"], name)
        self.copy = os.path.join(self.destination, name)

    def start(self, program, *arguments, **options):
        options = {
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.PIPE,
            "stderr": subprocess.PIPE,
            "cwd": self.root,
            "env": self.environment(),
            "start_new_session": True,
            **options,
        }
        path = os.path.join(self.programs, f"{program}.exe")
        return subprocess.Popen([WINE, path, *arguments], **options)

    def typed(self, path):
        return harness.drive_path(path)

    def converse(self, answers, *arguments, result=None):
        """As on Linux. Wine's console reads keys, so the terminal leaves them alone; it moves over
        blanks instead of writing them."""
        master, slave = pty.openpty()
        tty.setraw(slave)
        process = self.start("coffrelune-console", *arguments, stdin=slave, stdout=result or slave,
                             stderr=slave, env={**self.environment(), "TERM": "xterm"})
        os.close(slave)
        shown, rest, answers = b"", 0, list(answers)
        deadline = time.monotonic() + harness.PATIENCE
        silent = None  # since when, after the end
        while time.monotonic() < deadline:
            if silent is None and process.poll() is not None:
                silent = time.monotonic()
            if select.select([master], [], [], 0.2)[0]:
                try:
                    shown += os.read(master, 65536)
                except OSError:  # the console, a process of its own, has shown all and ended
                    break
                silent = silent and time.monotonic()
            elif silent is not None and time.monotonic() > silent + SILENCE:
                break
            if answers and (at := shown.find(answers[0][0].rstrip().encode(), rest)) >= 0:
                rest = at + len(answers[0][0].encode())
                os.write(master, keys(answers.pop(0)[1]))
        else:
            process.kill()
            shown += "\n*** le programme ne finissait pas".encode()
        status = harness.wait(process).status
        os.close(master)
        return harness.Outcome(status, shown.decode(errors="replace"))
