"""Ours and the others: the command of each operation."""

import os
import shutil
import subprocess

FIRST, NOTHING, REPLACE = "première", "rien", "remplacement"
COMPARE, DIFFERING = "comparaison", "différents"
LABELS = {FIRST: "Première copie", NOTHING: "Rien de changé", REPLACE: "Tout remplacer",
          COMPARE: "Comparaison, arbres égaux", DIFFERING: "Comparaison, tout diffère"}


class Program:
    """One that copies the tree `source` to `target`, both named alike."""

    def __init__(self, name, commands, needs=()):
        self.name = name
        self.commands = commands  # operation to words, "{s}" and "{t}" standing for the trees
        self.needs = needs  # programs that must be there

    def missing(self):
        absent = [need for need in self.needs if not shutil.which(need)]
        return f"il manque {', '.join(absent)}" if absent else ""

    def does(self, operation):
        return operation in self.commands

    def words(self, operation, source, target):
        return [word.format(s=source, t=target, up=os.path.dirname(target))
                for word in self.commands[operation]]

    def prepare(self, source, target):
        """What is done once before the first run, unmeasured."""

    def finish(self):
        """What is done once after the last."""

    def environment(self):
        return {**os.environ, "LC_ALL": "C.UTF-8"}

    def good(self, operation, status):
        """Whether it ended well: 1 tells of differences."""
        return status == (1 if operation == DIFFERING else 0)

    leads = None  # the program whose copy it looks at, where it makes none
    copies = True  # it makes a copy that can be compared with its original


class Ours(Program):
    """The console program, with settings of its own."""

    def __init__(self, name, programs, home):
        program = os.path.join(programs, "coffrelune-console")
        run = ["--source", "{s}", "--destination", "{up}"]
        backup = [program, "sauvegarder", *run, "--ecraser"]
        compare = [program, "comparer", *run]
        super().__init__(name, {FIRST: backup, NOTHING: backup, REPLACE: backup, COMPARE: compare,
                                DIFFERING: compare}, (program,))
        self.home = home
        os.makedirs(home, exist_ok=True)

    def environment(self):
        return {**super().environment(), "COFFRELUNE_HOME": self.home}


class OursBySettings(Ours):
    """The same run from a settings file: a line for the whole tree, or one for each directory in
    it."""

    def __init__(self, name, programs, home, by_directory):
        super().__init__(name, programs, home)
        program = self.needs[0]
        self.by_directory = by_directory
        backup = [program, "sauvegarder", "--ecraser"]
        self.commands = {FIRST: backup, NOTHING: backup, REPLACE: backup}

    def prepare(self, source, target):
        pairs = [(source, os.path.dirname(target))]
        if self.by_directory:
            os.makedirs(target, exist_ok=True)
            pairs = [(os.path.join(source, name), target) for name in sorted(os.listdir(source))]
        text = f"[Position]\nContinueOnError=-1\nRepertMax={len(pairs)}\n"
        text += "[General]\nModifie=1\nConfirmation=1\n"
        for number, (original, destination) in enumerate(pairs):
            text += f'Source{number}="{core(original)}"\n'
            text += f'Destination{number}="{core(destination)}"\nSelect{number}=1\n'
        with open(os.path.join(self.home, "Coffrelune.ini"), "wb") as file:
            file.write(text.replace("\n", "\r\n").encode("cp1252"))


class Window(OursBySettings):
    """The window program on a screen of its own, which is open all the time."""

    def __init__(self, name, programs, home):
        super().__init__(name, programs, home, by_directory=False)
        words = [os.path.join(programs, "coffrelune"), "/Auto"]
        self.commands = {FIRST: words, NOTHING: words, REPLACE: words}
        self.needs = (words[0], "Xvfb")


class Loop(Program):
    """The bare loop of two look-ups a file, over the copy that another program has made."""

    def __init__(self, tool, threads, leads):
        name = f"deux stat, {threads} fil{'s' if threads > 1 else ''}"
        super().__init__(name, {NOTHING: [tool, str(threads), "{s}", "{t}"]})
        self.leads = leads


class InOneGo(Program):
    """As many bytes in one file, flushed: what the disk alone asks of whoever makes a copy safe."""

    copies = False

    def __init__(self):
        super().__init__("autant d'octets d'un trait, vidés", {FIRST: []})
        self.bytes = {}

    def prepare(self, source, target):
        self.bytes[source] = sum(os.lstat(os.path.join(directory, name)).st_size
                                 for directory, _, names in os.walk(source) for name in names)

    def words(self, operation, source, target):
        return shell('mkdir "$1" && head -c "$2" /dev/zero > "$1/octets" && sync -f "$1"',
                     target, str(self.bytes[source]))


def core(path):
    """A native path as the settings hold it."""
    return "C:\\" + path.lstrip("/").replace("/", "\\")


def shell(script, *words):
    return ["sh", "-c", script, "sh", *words]


RSYNC = Program("rsync -a", {operation: ["rsync", "-a", "{s}/", "{t}/"]
                             for operation in (FIRST, NOTHING, REPLACE)}, ("rsync",))
RSYNC_SPARSE = Program("rsync -aS", {operation: ["rsync", "-aS", "{s}/", "{t}/"]
                                     for operation in (FIRST, REPLACE)}, ("rsync",))
RSYNC_FSYNC = Program("rsync -a --fsync", {operation: ["rsync", "-a", "--fsync", "{s}/", "{t}/"]
                                           for operation in (FIRST, REPLACE)}, ("rsync",))
CP = Program("cp -a", {operation: ["cp", "-aT", "{s}", "{t}"] for operation in (FIRST, REPLACE)})
CP_UPDATE = Program("cp -au", {FIRST: ["cp", "-aT", "{s}", "{t}"],
                               NOTHING: ["cp", "-auT", "{s}", "{t}"]})
CP_SYNC = Program("cp -a, sync -f", {
    operation: shell('cp -aT "$1" "$2" && sync -f "$2"', "{s}", "{t}")
    for operation in (FIRST, REPLACE)})


# ---- Windows programs under Wine -----------------------------------------------------------------
class UnderWine(Program):
    """A Windows program; the system's root is its drive Z:."""

    def __init__(self, name, wine, commands, home, needs=()):
        super().__init__(name, {operation: [wine, *words] for operation, words in commands.items()},
                         ("wine", *needs))
        self.wine = wine
        self.home = home

    def words(self, operation, source, target):
        return super().words(operation, windows(source), windows(target))

    def prepare(self, source, target):
        # The prefix is made by the first program that runs in it.
        self.run("cmd.exe", "/c", "exit")

    def finish(self):
        self.run("--fin")

    def run(self, *words):
        subprocess.run([self.wine, *words], env=self.environment(), stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)

    def environment(self):
        return {**super().environment(), "COFFRELUNE_HOME": windows(self.home),
                "COFFRELUNE_WINEPREFIX": os.path.join(self.home, "wine")}


def windows(path):
    return "Z:" + path.replace("/", "\\")


def under_wine(root, home):
    os.makedirs(home, exist_ok=True)
    wine = os.path.join(root, "tools/wine.sh")
    program = os.path.join(root, "build/windows-release/bin/coffrelune-console.exe")
    backup = [program, "sauvegarder", "--source", "{s}", "--destination", "{t}\\..", "--ecraser"]
    copy = ["xcopy.exe", "/E", "/I", "/Y", "/H", "/K", "/Q", "{s}", "{t}"]
    return [UnderWine("coffrelune, Wine", wine, {FIRST: backup, NOTHING: backup}, home, (program,)),
            UnderWine("xcopy, Wine", wine, {FIRST: copy, NOTHING: [*copy[:-2], "/D", *copy[-2:]]},
                      home)]
