"""Volumes of every kind that this machine can mount for a test, each with its way to be mounted,
taken off, and mounted again with what was on it."""

import contextlib
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request

import passing_volume

PATIENCE = 30


class Refused(Exception):
    """This machine has no such volume, for the reason that the text says."""


def command(*words, **options):
    try:
        answer = subprocess.run(words, capture_output=True, text=True, timeout=PATIENCE * 4,
                                check=False, **options)
    except FileNotFoundError as missing:
        raise Refused(f"il manque {words[0]}") from missing
    if answer.returncode != 0:
        raise Refused(f"{' '.join(words)} : {(answer.stderr or answer.stdout).strip()}")
    return answer.stdout.strip()


def until(condition, what):
    deadline = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > deadline:
            raise Refused(what)
        time.sleep(0.05)


def free_port():
    with contextlib.closing(socket.socket()) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def listens(port):
    with contextlib.closing(socket.socket()) as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


class Volume:
    """One volume. `point`: where it is mounted; `root`: where a copy goes."""

    name = ""
    what = ""  # for people
    quick = False
    plain = False  # it takes names of ASCII alone
    deadly = ()  # names after which its driver answers no more
    renamed = ()  # names that its driver takes for others

    def __init__(self, base):
        self.base = base
        self.point = os.path.join(base, "volume")
        self.servers = []
        os.makedirs(self.point, exist_ok=True)

    @property
    def root(self):
        return self.point

    def __enter__(self):
        try:
            self.make()
            self.mount()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def make(self):
        """Before it is mounted the first time."""

    def mount(self):
        raise NotImplementedError

    def unmount(self):
        if not os.path.ismount(self.point):
            return
        for _ in range(50):  # a program may hold it a little longer
            if subprocess.run(["umount", self.point], capture_output=True,
                              check=False).returncode == 0:
                return
            time.sleep(0.1)
        subprocess.run(["umount", "-l", self.point], capture_output=True, check=False)

    def sends(self):
        """Waits until nothing that was written is still on its way."""

    def kept(self, path):
        """Where that lies in the end: a mount may show what its server has not."""
        return path

    def again(self, meanwhile=lambda: None):
        """What a volume says may be in the system's memory alone: taken off and mounted again."""
        self.unmount()
        meanwhile()
        self.mount()

    def close(self):
        try:
            self.unmount()
        finally:
            self.end_servers()

    def end_servers(self):
        for server in self.servers:
            if server.poll() is None:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(server.pid, signal.SIGTERM)
                server.wait()

    def serve(self, *words, port, **options):
        """Starts a server that listens there from here on."""
        if not shutil.which(words[0]):
            raise Refused(f"il manque {words[0]}")
        self.servers.append(subprocess.Popen(words, stdin=subprocess.DEVNULL,
                                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                             start_new_session=True, **options))
        until(lambda: listens(port), f"{words[0]} ne répond pas")

    def directory(self, name):
        path = os.path.join(self.base, name)
        os.makedirs(path, exist_ok=True)
        return path

    def is_mounted(self):
        until(lambda: os.path.ismount(self.point), f"{self.name} ne se monte pas")


class Image(Volume):
    """A file system in a file, on a loop device."""

    megabytes = 400
    make_words = ()
    mount_words = ("mount",)

    def make(self):
        image = os.path.join(self.base, "image")
        with open(image, "wb") as file:
            file.truncate(self.megabytes << 20)
        self.device = None
        if not shutil.which(self.make_words[0]):
            raise Refused(f"il manque {self.make_words[0]}")
        self.device = command("losetup", "--find", "--show", image)
        command(*self.make_words, self.device)

    def mount(self):
        command(*self.mount_words, self.device, self.point)

    def close(self):
        super().close()
        if getattr(self, "device", None):
            subprocess.run(["losetup", "--detach", self.device], capture_output=True, check=False)


class Ext4(Image):
    name, what, quick = "ext4", "disque Linux", True
    make_words = ("mkfs.ext4", "-q")


class Ext4Small(Image):
    """Inodes of 128 bytes, as the tools of old made them."""

    name, what = "ext4, anciens inodes", "disque Linux formaté il y a longtemps"
    make_words = ("mkfs.ext4", "-q", "-I", "128")


class Xfs(Image):
    name, what = "xfs", "disque Linux"
    make_words = ("mkfs.xfs", "-q")


class Btrfs(Image):
    name, what = "btrfs", "disque Linux"
    make_words = ("mkfs.btrfs", "-q")


class Ntfs(Image):
    name, what = "ntfs-3g", "disque Windows"
    make_words = ("mkfs.ntfs", "-q", "-F", "-f")
    mount_words = ("ntfs-3g",)


class Exfat(Image):
    name, what = "exfat-fuse", "clé USB, carte mémoire"
    make_words = ("mkfs.exfat",)
    mount_words = ("mount.exfat-fuse",)


class Fat(Volume):
    """Served from the image itself: this driver takes no device."""

    name, what, plain = "FAT (fusefat)", "clé USB, appareil photo", True

    def make(self):
        image = os.path.join(self.base, "image")
        with open(image, "wb") as file:
            file.truncate(200 << 20)
        command("mkfs.fat", "-F", "32", image)

    def mount(self):
        command("fusefat", "-o", "rw+", os.path.join(self.base, "image"), self.point)
        self.is_mounted()


class Tmpfs(Volume):
    name, what, quick = "tmpfs", "mémoire", True

    def mount(self):
        command("mount", "-t", "tmpfs", "-o", "size=400m", "essai", self.point)

    def again(self, meanwhile=None):
        """It would lose everything."""


class Passing(Volume):
    """A directory shown by a program that is as odd as it is told to be (passing_volume.py)."""

    names, numbers = "exact", "kept"

    def make(self):
        if not os.path.exists("/dev/fuse"):
            raise Refused("le système n'a pas FUSE")
        self.backing = self.directory("montre")
        self.control = os.path.join(self.base, "fautes")
        with open(self.control, "wb") as file:
            file.write(bytes(passing_volume.Faults.SHAPE.size))
        self.faults = passing_volume.Faults(self.control)

    def mount(self):
        words = [sys.executable, passing_volume.__file__, self.backing, self.control, self.point,
                 self.names, self.numbers]
        self.servers.append(subprocess.Popen(words, stdin=subprocess.DEVNULL,
                                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                             start_new_session=True))
        if not self.servers[-1].stdout.readline():
            raise Refused("le système ne laisse pas monter par FUSE")


class Bindfs(Volume):
    name, what, quick = "bindfs", "répertoire montré ailleurs", True

    def mount(self):
        command("bindfs", self.directory("montre"), self.point)


class Sshfs(Volume):
    name, what = "sshfs", "autre machine, par SSH"

    def make(self):
        for tool in ("/usr/sbin/sshd", "ssh-keygen", "sshfs"):
            if not shutil.which(tool):
                raise Refused(f"il manque {tool}")
        keys = self.directory("cles")
        for key in ("hote", "client"):
            command("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", f"{keys}/{key}")
        os.makedirs("/run/sshd", exist_ok=True)
        self.port = free_port()
        with open(f"{keys}/reglages", "w", encoding="ascii") as file:
            file.write(f"Port {self.port}\nListenAddress 127.0.0.1\nHostKey {keys}/hote\n"
                       f"AuthorizedKeysFile {keys}/client.pub\nStrictModes no\nUsePAM no\n"
                       f"PidFile {keys}/pid\nSubsystem sftp internal-sftp\n")
        self.serve("/usr/sbin/sshd", "-D", "-f", f"{keys}/reglages", port=self.port)

    def mount(self):
        options = f"IdentityFile={self.base}/cles/client,StrictHostKeyChecking=no," \
                  "UserKnownHostsFile=/dev/null"
        command("sshfs", "-p", str(self.port), "-o", options,
                f"root@127.0.0.1:{self.directory('serveur')}", self.point)


class Smb(Volume):
    name, what = "smbnetfs", "partage Windows ou Samba"
    renamed = (b"%41",)  # as an address on the web is written
    deadly = (b"a:b", b"<plus|moins>", b"tabulation\t", b"saut\nde ligne", b"\x01\x1f\x7f",
              b"octets \xff\xfe\x80", b"\xc3")

    @property
    def root(self):
        return os.path.join(self.point, "127.0.0.1", "partage")

    def make(self):
        if listens(445):
            raise Refused("le port 445 est pris, et ce client n'en connaît pas d'autre")
        state = self.directory("samba")
        share = self.directory("serveur")
        with open(f"{state}/reglages", "w", encoding="ascii") as file:
            file.write("[global]\nserver role = standalone server\ninterfaces = lo\n"
                       "bind interfaces only = yes\nsmb ports = 445\nmap to guest = Bad User\n"
                       "guest account = root\ndisable netbios = yes\nload printers = no\n"
                       f"log file = {state}/journal\n")
            for key in ("pid", "lock", "state", "cache"):
                file.write(f"{key} directory = {state}\n")
            file.write(f"private dir = {state}\nncalrpc dir = {state}/nc\n"
                       f"[partage]\npath = {share}\nguest ok = yes\nread only = no\n"
                       "force user = root\n")
        for name, text in (("smbnetfs.auth", 'auth "guest" ""\n'),
                           ("smbnetfs.host", 'host 127.0.0.1 parent="GROUPE" visible=true\n'),
                           ("smbnetfs.conf", 'show_hidden_hosts "true"\n'
                            'include "smbnetfs.auth"\ninclude "smbnetfs.host"\n')):
            path = os.path.join(state, name)
            with open(path, "w", encoding="ascii") as file:
                file.write(text)
            os.chmod(path, 0o600)
        self.serve("smbd", "-F", "--no-process-group", "-s", f"{state}/reglages", port=445)

    def mount(self):
        command("smbnetfs", self.point, "-o", f"config={self.base}/samba/smbnetfs.conf")
        self.is_mounted()
        until(lambda: os.path.isdir(self.root), "le partage ne se montre pas")


class Rclone(Volume):
    name, what = "rclone mount", "répertoire, par rclone"
    cache = ()

    def remote(self):
        return self.directory("serveur")

    process = None

    def mount(self):
        self.control = free_port()
        self.serve("rclone", "mount", "--config", "/dev/null", "--rc", "--rc-addr",
                   f"127.0.0.1:{self.control}", *self.cache, self.remote(), self.point,
                   port=self.control,
                   env={**os.environ, "XDG_CACHE_HOME": self.directory("cache")})
        self.process = self.servers[-1]
        self.is_mounted()

    def unmount(self):
        """When all is sent: taken off before, it keeps the rest for the next time."""
        try:
            self.sends()
        finally:
            super().unmount()
            if self.process is not None:
                self.process.wait(PATIENCE)  # the next one must not meet it at the same cache
            self.process = None

    def sends(self):
        deadline = time.monotonic() + PATIENCE
        while self.process is not None and self.cache and self.waiting():
            if time.monotonic() > deadline:
                raise TimeoutError("rclone n'a pas fini d'envoyer")
            time.sleep(0.1)

    def waiting(self):
        """How many files it has still to send."""
        if self.process.poll() is not None:
            raise ConnectionError("rclone s'est arrêté")
        ask = urllib.request.Request(f"http://127.0.0.1:{self.control}/vfs/stats", method="POST")
        with urllib.request.urlopen(ask, timeout=PATIENCE) as answer:
            told = json.load(answer)["diskCache"]
        if told["erroredFiles"] or told["outOfSpace"]:
            raise OSError(f"rclone n'a pas pu envoyer : {told}")
        return told["uploadsInProgress"] + told["uploadsQueued"]


class Webdav(Rclone):
    """A server of objects: whole files are sent, and none bears a time of the sender's."""

    name, what = "rclone, WebDAV", "serveur d'objets sans dates"
    cache = ("--vfs-cache-mode", "writes")

    def make(self):
        self.port = free_port()
        self.serve("rclone", "serve", "webdav", "--config", "/dev/null", "--addr",
                   f"127.0.0.1:{self.port}", self.directory("serveur"), port=self.port)

    def remote(self):
        return f":webdav,url='http://127.0.0.1:{self.port}',vendor=other:"

    def kept(self, path):
        return os.path.join(self.directory("serveur"), os.path.relpath(path, self.root))


class Sftp(Webdav):
    """The same with times of one second."""

    name, what = "rclone, SFTP", "autre machine, par rclone"

    def make(self):
        self.port = free_port()
        self.serve("rclone", "serve", "sftp", "--config", "/dev/null", "--user", "essai", "--pass",
                   "essai", "--addr", f"127.0.0.1:{self.port}", self.directory("serveur"),
                   port=self.port)

    def remote(self):
        hidden = command("rclone", "obscure", "essai")
        return f":sftp,host=127.0.0.1,port={self.port},user=essai,pass={hidden},shell_type=none:"


KINDS = (Ext4, Ext4Small, Xfs, Btrfs, Tmpfs, Ntfs, Exfat, Fat, Bindfs, Sshfs, Smb, Rclone, Sftp, Webdav)


@contextlib.contextmanager
def mounted(kind, place):
    """The volume of a kind, mounted below `place` and gone at the end."""
    if os.geteuid() != 0:
        raise Refused("il faut root pour monter un volume")
    base = tempfile.mkdtemp(prefix="coffrelune-volume-", dir=place)
    try:
        with kind(base) as volume:
            yield volume
    finally:
        shutil.rmtree(base, ignore_errors=True)
