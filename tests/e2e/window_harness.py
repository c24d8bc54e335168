"""The real window program on a display of its own, worked by captions as with a screen reader."""

import contextlib
import datetime
import os
import re
import signal
import subprocess
import time
import traceback
import zoneinfo

import harness
from window_elements import Element, atspi, forgiving, wait_for

FAKE_CLOCK = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1"


def comes(question, patience=60):
    """Whether something is so as soon as the program has done what it was asked to do."""
    try:
        return wait_for(question, "", patience)
    except TimeoutError:
        return False


def written(place, report, key, expected, section="General"):
    """Checks that a key of the settings takes a value."""
    comes(lambda: place.key(key, section) == expected)
    report.equal(f"{key} est écrit", place.key(key, section), expected)


def matches(place, report, key, pattern):
    """Checks that a key of the settings takes a value of that form."""
    comes(lambda: re.fullmatch(pattern, place.key(key)))
    report.check(key, re.fullmatch(pattern, place.key(key)), place.key(key))


def is_message(window):
    """Whether a window shows a text and buttons, and nothing else that can be worked. A program
    that is busy answers for a part of a window only: what is seen has to be seen twice."""
    kinds = ("tab", "field", "list", "checkbox", "option", "choice", "progress")

    def seen():
        return [button.name for button in window.find_all("button")], window.labels()

    before = seen()
    return (before[0] and not any(window.has(kind) for kind in kinds) and seen() == before and
            not any(window.has(kind) for kind in kinds))


class Message:
    """A message box."""

    def __init__(self, element):
        self.element = element
        self.title = element.name
        self.text = "\n".join(element.labels())

    @property
    def words(self):
        """The text without the line ends that come from the window's width."""
        return " ".join(self.text.split())

    def press(self, caption):
        self.element.find("button", caption).press()
        wait_for(lambda: not self.element.showing, f"la question {self.text!r} se ferme")


class Program:
    """A started program: its windows, its messages, its end."""

    TITLE = "^Coffrelune Version "  # of the main window, and of its messages

    def __init__(self, process, screen):
        self.process = process
        self.screen = screen

    @property
    def windows(self):
        """Everything that the program shows on the screen, the oldest first."""
        desktop = atspi().get_desktop(0)
        for i in range(desktop.get_child_count()):
            if (node := self.own(desktop, i)) is not None:
                return [window for window in Element(node, self.screen).children if window.showing]
        return []

    @forgiving(None)
    def own(self, desktop, index):
        """An application of the bus when it is this program; one may go away while it is asked."""
        node = desktop.get_child_at_index(index)
        return node if node is not None and node.get_process_id() == self.process.pid else None

    def window(self, title, patience=120):
        """The window of that title, waited for."""
        return self.wait(lambda: next((window for window in self.windows if window.name == title),
                                      None), f"la fenêtre {title!r}", patience)

    @property
    def main(self):
        return self.wait(lambda: next((window for window in self.windows
                                       if window.name.startswith("Coffrelune Version ") and
                                       window.has("tab")), None), "la fenêtre principale")

    def message(self, patience=120):
        """The message box that asks, waited for."""
        return Message(self.wait(lambda: next(filter(is_message, self.windows), None),
                                 "un message", patience))

    def answer(self, caption):
        """Reads the message that comes, presses its button, and gives it."""
        message = self.message()
        message.press(caption)
        return message

    def wait(self, question, what, patience=120):
        def asked():
            answer = question()
            if not answer and self.process.poll() is not None:
                raise RuntimeError(f"le programme a fini ({self.process.returncode}) avant {what}")
            return answer
        return wait_for(asked, what, patience)

    def gone(self, title):
        """Waits until no window of that title shows."""
        self.wait(lambda: not any(window.name == title for window in self.windows),
                  f"{title} se ferme")

    def show_tab(self, name):
        def shown():
            tab = self.main.find("tab", name)
            return tab.selected or tab.take()
        self.wait(shown, f"l'onglet {name}")

    def command(self, tool_tip):
        """A command of the toolbar."""
        self.main.find("button", tool_tip).press()

    # ---- the lines ----------------------------------------------------------------------------

    def label(self, side, number):
        """The field of a line's path; `side`: "Source" or "Destination"."""
        return self.main.find("field", lambda name: name.startswith(f"{side} {number} : "))

    def path(self, side, number):
        return self.label(side, number).name.partition(" : ")[2]

    def box(self, number):
        return self.main.find("checkbox", f"Sélectionner la sauvegarde {number}")

    def exclusions(self, number):
        """The button of a line's exclusions, which counts them."""
        return self.main.find("button", lambda name: name.startswith("Exclusions") and
                              name.endswith(f" de la sauvegarde {number}"))

    def type_path(self, side, number, path):
        """Types a line's path in the window that the toolbar opens."""
        self.label(side, number).press()
        self.command("Éditer le chemin")
        window = self.window(f"Répertoire {side.lower()}")
        window.find("field").set(path)
        window.find("button", "OK").press()
        self.gone(window.name)

    def choose(self, path):
        """Takes a path in the system's chooser, which is open."""
        window = self.wait(lambda: next((window for window in self.windows
                                         if window.role == "file chooser"), None), "le choix")
        window.keys("slash")  # opens the field for a path
        field = window.find("field")
        field.set(path)
        self.wait(lambda: field.text == path, "le chemin est écrit")
        title = window.name
        window.keys("Return")
        # The list that completes a name may come up late, and take the key for itself.
        if not comes(lambda: not any(other.name == title for other in self.windows), 10):
            window.keys("Return")
        self.gone(title)

    def launch(self, kind):
        self.main.find("button", f"Lancer la {kind}").press()

    # ---- its end ------------------------------------------------------------------------------

    def close(self):
        """Closes the main window as its close box does, and waits for the end."""
        self.bring_forward()
        self.screen.keys("alt+F4")
        return self.end()

    def bring_forward(self):
        self.screen.xdotool("windowactivate", "--sync", self.window_id())

    def end(self):
        return harness.wait(self.process)

    def window_id(self, title=TITLE):
        found = self.screen.xdotool("search", "--sync", "--onlyvisible", "--name", title).split()
        if not found:
            raise RuntimeError(f"aucune fenêtre {title}")
        return found[-1]

    def kill(self):
        if self.process.poll() is None:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(self.process.pid, signal.SIGKILL)
        with contextlib.suppress(subprocess.TimeoutExpired):  # what it started may keep the pipes
            self.process.communicate(timeout=30)


class WindowPlace(harness.Place):
    """A place whose programs show their windows on the screen."""

    def __init__(self, programs, screen):
        super().__init__(programs)
        self.screen = screen
        self.started = []

    def environment(self):
        passed = ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "GSETTINGS_BACKEND",
                  "GTK_THEME", "GDK_SCALE", "GDK_DPI_SCALE", "ASAN_OPTIONS")
        return {**super().environment(), "NO_AT_BRIDGE": "0",
                "GTK_MODULES": "gail:atk-bridge", "XDG_CONFIG_HOME": f"{self.root}/config",
                **{name: os.environ[name] for name in passed if name in os.environ}}

    def open(self, *arguments, more=None):
        """Starts the window program."""
        environment = {**self.environment(), **(more or {})}
        program = Program(self.start("coffrelune", *arguments, env=environment), self.screen)
        self.started.append(program)
        return program

    def open_at(self, moment, *arguments):
        """The same with a clock of its own, which starts at "yyyy-mm-dd hh:mm:ss" of local time
        and goes on until `set_clock` moves it: no scenario has to be done with something before
        a time comes."""
        self.set_clock(moment)
        return self.open(*arguments, more={
            "LD_PRELOAD": FAKE_CLOCK, "FAKETIME_TIMESTAMP_FILE": self.clock,
            "FAKETIME_NO_CACHE": "1", "NO_FAKE_STAT": "1", "FAKETIME_DONT_FAKE_MONOTONIC": "1",
            "DONT_FAKE_MONOTONIC": "1"})

    def set_clock(self, moment):
        """Moves the clock of the program that `open_at` started."""
        zone = zoneinfo.ZoneInfo(self.environment()["TZ"])
        wanted = datetime.datetime.fromisoformat(moment).replace(tzinfo=zone).timestamp()
        with open(f"{self.clock}.new", "w", encoding="ascii") as file:
            file.write(f"{round(wanted - time.time()):+d}\n")
        os.replace(f"{self.clock}.new", self.clock)

    @property
    def clock(self):
        return os.path.join(self.root, "horloge")

    def key(self, name, section="General"):
        """A key of the settings file, without its quotes; empty when it is missing."""
        if not os.path.exists(self.settings):
            return ""
        text = self.read_settings().decode("cp1252").replace("\r\n", "\n")
        found = re.search(rf"^\[{re.escape(section)}\]\n(.*?)(?=^\[|\Z)", text, re.M | re.S)
        value = re.search(rf"^{re.escape(name)}=(.*)$", found.group(1), re.M) if found else None
        return value.group(1).strip('"') if value else ""

    @forgiving("")
    def shown(self):
        """What its programs show, a window a line."""
        return "\n".join(f"{window} : {window.labels()} {window.find_all('button')}"
                         for program in self.started for window in program.windows)

    def remove(self):
        for program in self.started:
            program.kill()
        super().remove()


def run_all(scenarios, programs, report, screen, captures=None):
    """Runs every scenario in a place of its own; one that breaks off counts as failed, and leaves
    a picture of the screen."""
    for scenario in scenarios:
        place = WindowPlace(programs, screen)
        report.begin(scenario)
        failed = report.failed
        try:
            scenario(place, report)
        except Exception:  # pylint: disable=broad-except  # the next scenarios are still worth it
            report.check(f"{scenario.__name__} va à son terme", False,
                         traceback.format_exc() + place.shown())
        finally:
            if report.failed > failed and captures:
                os.makedirs(captures, exist_ok=True)
                with contextlib.suppress(subprocess.SubprocessError):
                    screen.capture(f"{captures}/{scenario.__name__}.png")
            place.remove()
