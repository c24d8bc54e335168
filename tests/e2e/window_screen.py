"""A display of its own with a session bus, an accessibility bus and a window manager, and what a
person does to it with a mouse and a keyboard."""

import contextlib
import os
import subprocess
import tempfile
import time

SIZE = (1280, 900)
TOOLS = ("Xvfb", "icewm", "icesh", "dbus-daemon", "xdotool", "xprop", "import")
BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"

# Windows alone, with plain frames: no task bar that takes room, no workspaces that keys lead to.
FRAMES = """ShowTaskBar=0
WorkspaceNames="1"
Look="flat"
TitleButtonsLeft=""
TitleButtonsRight=""
TitleBarHeight=26
TitleFontNameXft="sans-serif:size=10:bold"
BorderSizeX=2
BorderSizeY=2
DlgBorderSizeX=2
DlgBorderSizeY=2
ColorActiveTitleBar="rgb:2E/48/80"
ColorActiveTitleBarText="rgb:FF/FF/FF"
ColorActiveBorder="rgb:2E/48/80"
ColorNormalTitleBar="rgb:8A/94/A6"
ColorNormalBorder="rgb:8A/94/A6"
"""


def first_line(stream):
    """What a server says when it is ready."""
    line = stream.readline().decode().strip()
    if not line:
        raise RuntimeError("un serveur de l'affichage ne démarre pas")
    return line


class Screen:
    """Starts the servers and points this process at them. Everything ends with `close`."""

    def __init__(self, scale=1):
        self.processes = []
        self.scale = scale  # of the toolkit, which speaks of its own pixels on the bus
        # What the buses have started may still write there when they have ended.
        self.directory = tempfile.TemporaryDirectory(prefix="coffrelune-screen-",
                                                     ignore_cleanup_errors=True)
        runtime = os.path.join(self.directory.name, "run")
        os.mkdir(runtime, 0o700)
        # None of what the person at this machine has set may show.
        os.environ.update({"HOME": self.directory.name, "XDG_RUNTIME_DIR": runtime,
                           "XDG_CONFIG_HOME": self.directory.name, "LC_ALL": "C.UTF-8",
                           "GSETTINGS_BACKEND": "memory", "GTK_A11Y": "atspi"})
        os.environ["ICEWM_PRIVCFG"] = self.directory.name
        with open(os.path.join(self.directory.name, "prefoverride"), "w", encoding="ascii") as file:
            file.write(FRAMES)
        size = "x".join(str(edge * scale) for edge in SIZE) + "x24"
        try:
            display = self.start(["Xvfb", "-displayfd", "1", "-noreset", "-screen", "0", size,
                                  "-nolisten", "tcp"])
            os.environ["DISPLAY"] = ":" + display
            os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.start(
                ["dbus-daemon", "--session", "--nofork", "--print-address"])
            self.start([BUS_LAUNCHER, "--launch-immediately"], speaks=False)
            self.start(["icewm"], speaks=False)
            self.wait_for_window_manager()
        except BaseException:
            self.close()
            raise

    def start(self, command, speaks=True, env=None):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, env=env,
                                   stdout=subprocess.PIPE if speaks else subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, start_new_session=True)
        self.processes.append(process)
        return first_line(process.stdout) if speaks else None

    @staticmethod
    def wait_for_window_manager():
        deadline = time.monotonic() + 120
        while b"_NET_SUPPORTING_WM_CHECK(WINDOW)" not in subprocess.run(
                ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True,
                check=False).stdout:
            if time.monotonic() > deadline:
                raise RuntimeError("le gestionnaire de fenêtres ne démarre pas")
            time.sleep(0.05)

    @contextlib.contextmanager
    def other(self, width, height):
        """A second screen of that size on the same buses: the name of its display. What hands do
        goes to the first one."""
        count = len(self.processes)
        display = ":" + self.start(["Xvfb", "-displayfd", "1", "-noreset", "-screen", "0",
                                    f"{width}x{height}x24", "-nolisten", "tcp"])
        self.start(["icewm"], speaks=False, env={**os.environ, "DISPLAY": display})
        try:
            yield display
        finally:
            self.end(self.processes[count:])
            del self.processes[count:]

    def close(self):
        self.end(self.processes)
        self.processes = []
        self.directory.cleanup()

    @staticmethod
    def end(processes):
        for process in reversed(processes):
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()

    # ---- hands --------------------------------------------------------------------------------

    @staticmethod
    def xdotool(*arguments):
        answer = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True,
                                timeout=240, check=False)
        return answer.stdout.decode()

    def find(self, title):
        """The windows whose title matches, shown or not."""
        return self.xdotool("search", "--name", title).split()

    @staticmethod
    def state(window):
        """What the window manager says of it: "Normal", "Iconic" or nothing."""
        answer = subprocess.run(["xprop", "-id", window, "WM_STATE"], capture_output=True,
                                timeout=240, check=False)
        return answer.stdout.decode(errors="replace")

    @staticmethod
    def ask_to_close(window):
        """What a press on the close box of a window's frame does, minimised or not."""
        subprocess.run(["icesh", "-w", window, "close"], capture_output=True, timeout=240,
                       check=True)

    def keys(self, *names):
        """Presses keys one after the other: "Tab", "alt+s", "Return"..."""
        self.xdotool("key", "--delay", 20, *names)

    def write(self, text):
        """Types a text."""
        self.xdotool("type", "--delay", 5, text)

    def click(self, x, y, button=1, count=1):
        self.xdotool("mousemove", "--sync", x * self.scale, y * self.scale, "click", "--repeat", count,
                     "--delay", 60, button)

    def drag(self, start, end):
        """Presses at one point, moves to the other by small steps, and lets go there."""
        self.xdotool("mousemove", "--sync", *start, "mousedown", 1)
        steps = 12
        for step in range(1, steps + 1):
            self.xdotool("mousemove", "--sync",
                         *(round(a + (b - a) * step / steps) for a, b in zip(start, end)))
        self.xdotool("mousemove_relative", "--sync", "--", 1, 1)
        self.xdotool("mouseup", 1)

    def resize(self, window, *size):
        self.xdotool("windowsize", "--sync", window, *size)

    def capture(self, path, window=None, area=None):
        """A picture of the whole screen, of one window with its frame, or of an area of it."""
        target = ["-window", "root"] if window is None else ["-frame", "-window", str(window)]
        if area is not None:
            x, y, width, height = (edge * self.scale for edge in area)
            target += ["-crop", f"{width}x{height}+{x}+{y}"]
        subprocess.run(["import", "-silent", *target, path], timeout=240, check=True)
