"""A disk whose power can be cut: at any moment, what it had been given by then is kept aside."""

import contextlib
import errno
import fcntl
import os
import shutil
import subprocess
import tempfile
import time

CLONE = 0x40049409  # FICLONE
START_COMMIT, WAIT_FOR_COMMIT = 0x80089418, 0x40089416  # BTRFS_IOC_START_SYNC, ..._WAIT_SYNC
SIZE = 1 << 30
MEMORY = "/dev/shm"


def command(*words):
    """Runs a tool that must succeed; gives what it printed."""
    answer = subprocess.run(words, capture_output=True, text=True, check=False)
    if answer.returncode != 0:
        raise OSError(f"{' '.join(words)} : {answer.stderr.strip()}")
    return answer.stdout.strip()


def why_not(base, kind):
    """Empty where this machine can make such a disk."""
    if os.geteuid() != 0:
        return "il faut root pour monter un disque"
    tools = ("losetup", "mkfs.xfs", f"mkfs.{kind}", "chattr")
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        return f"il manque {', '.join(missing)}"
    with tempfile.TemporaryDirectory(prefix="coffrelune-coupure-", dir=base) as place:
        point = os.path.join(place, "point")
        os.mkdir(point)
        try:
            with CutDisk(place, kind, point) as disk:
                disk.make()
                disk.cut("essai")
                return ""
        except OSError as error:
            return str(error)


def attached(image):
    return command("losetup", "--find", "--show", image)


def wait_until_free(device, patience=120):
    """Others on this machine may hold a mount a little longer, in a name space of theirs; meanwhile
    no twin of it can be mounted."""
    for _ in range(patience * 10):
        try:
            os.close(os.open(device, os.O_RDONLY | os.O_EXCL))
            return
        except OSError as error:
            if error.errno != errno.EBUSY:
                raise
        time.sleep(0.1)
    raise OSError(errno.EBUSY, f"{device} reste monté ailleurs")


class CutDisk:
    """A file system of a kind on a loop device, mounted at `point`. Its image lies on a file system
    that clones files: a clone holds exactly what the device had been given at one moment, while
    the copy of a file that is being written would mix several."""

    def __init__(self, base, kind, point):
        self.kind = kind
        self.point = point
        self.shelf = os.path.join(base, "images")
        self.device = None
        self.below = None
        self.base = base

    def __enter__(self):
        os.makedirs(self.shelf)
        whole = os.path.join(self.base, "images.img")
        try:
            with open(whole, "wb") as file:
                file.truncate(16 << 30)
            command("mkfs.xfs", "-q", "-m", "reflink=1", whole)
            self.below = attached(whole)
            command("mount", self.below, self.shelf)
        except OSError:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        try:
            self.take_off()
        finally:
            self.remove()

    def remove(self):
        if os.path.ismount(self.shelf) and subprocess.run(
                ["umount", self.shelf], capture_output=True, check=False).returncode != 0:
            subprocess.run(["umount", "-l", self.shelf], check=False)
        if self.below:
            subprocess.run(["losetup", "-d", self.below], check=False)
        with contextlib.suppress(OSError):
            os.remove(os.path.join(self.base, "images.img"))
            os.rmdir(self.shelf)

    def image(self, name):
        return os.path.join(self.shelf, name)

    def make(self):
        """A new, empty one."""
        with open(self.image("disque"), "wb") as file:
            file.truncate(SIZE)
        command(f"mkfs.{self.kind}", *(["-F"] if self.kind == "ext4" else ["-f"]), "-q",
                self.image("disque"))
        self.put_on("disque")

    def put_on(self, name):
        """Mounts an image, as the system does when it starts again."""
        self.device = attached(self.image(name))
        command("mount", "-t", self.kind, self.device, self.point)

    def take_off(self):
        if os.path.ismount(self.point):
            subprocess.run(["umount", self.point], capture_output=True, check=False)
        if os.path.ismount(self.point):
            subprocess.run(["umount", "-l", self.point], check=False)
        if self.device:
            device, self.device = self.device, None
            wait_until_free(device)
            command("losetup", "-d", device)

    def cut(self, name):
        """Keeps what the disk holds now under a name."""
        with open(self.image("disque"), "rb") as now, open(self.image(name), "wb") as then:
            fcntl.ioctl(then.fileno(), CLONE, now.fileno())

    def write_journal(self):
        """What btrfs does every 30 s; on the others the flush of one file is enough."""
        if self.kind == "btrfs":
            fd = os.open(self.point, os.O_RDONLY)
            try:
                number = bytearray(8)
                fcntl.ioctl(fd, START_COMMIT, number)
                fcntl.ioctl(fd, WAIT_FOR_COMMIT, bytes(number))
            finally:
                os.close(fd)

    def forget(self, name):
        os.remove(self.image(name))
