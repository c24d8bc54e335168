"""Volumes of one's own to measure on: ext4 with a journal on a loop device, tmpfs, or, where no
volume can be mounted, a plain directory."""

import ctypes
import os
import shutil
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests/e2e"))
from cut_disk import attached, command, wait_until_free  # pylint: disable=wrong-import-position

LIBC = ctypes.CDLL(None, use_errno=True)


def flush(path):
    """Waits until the volume that holds a path has written everything."""
    fd = os.open(path, os.O_RDONLY)
    try:
        if LIBC.syncfs(fd) != 0:
            raise OSError(ctypes.get_errno(), f"syncfs {path}")
    finally:
        os.close(fd)


class Directory:
    """No volume of its own: what others do on the disk is measured with it."""

    kind = "répertoire"

    def __init__(self, base, name, size):
        self.point = os.path.join(base, name)
        self.size = size

    def __enter__(self):
        os.mkdir(self.point)
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.point, ignore_errors=True)
        subprocess.run(["rm", "-rf", self.point], check=False)  # deeper than Python goes

    def empty(self):
        subprocess.run(["rm", "-rf", self.point], check=True)
        os.mkdir(self.point)

    def settle(self):
        flush(self.point)

    def cool(self):
        """False: its cache cannot be dropped alone."""
        return False


class Tmpfs(Directory):
    kind = "tmpfs"

    def __enter__(self):
        os.mkdir(self.point)
        self.mount()
        return self

    def __exit__(self, *_):
        unmount(self.point)
        os.rmdir(self.point)

    def mount(self):
        command("mount", "-t", "tmpfs", "-o", f"size={self.size},nr_inodes=0", "bench", self.point)

    def empty(self):
        command("umount", self.point)
        self.mount()

    def settle(self):
        pass


class Loop(Directory):
    """A file system on a loop device. It is made again for each round: what a deleted tree leaves
    behind slows the files made after it."""

    kind = "ext4"
    # Nothing is left to be done in the background while something is measured.
    MAKE = ("mkfs.ext4", "-q", "-F", "-i", "4096", "-E",
            "nodiscard,lazy_itable_init=0,lazy_journal_init=0")

    def __init__(self, base, name, size):
        super().__init__(base, name, size)
        self.image = self.point + ".img"
        self.device = None

    def __enter__(self):
        os.mkdir(self.point)
        with open(self.image, "wb") as file:
            file.truncate(self.size)
        try:
            self.device = attached(self.image)
            self.make()
        except OSError:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        unmount(self.point)
        if self.device:
            subprocess.run(["losetup", "-d", self.device], check=False)
        for remove, path in ((os.rmdir, self.point), (os.remove, self.image)):
            try:
                remove(path)
            except OSError as error:
                print(f"reste {path} : {error.strerror}")

    def make(self):
        command(*self.MAKE, self.device)
        command("mount", self.device, self.point)

    def empty(self):
        command("umount", self.point)
        wait_until_free(self.device)
        self.make()

    def cool(self):
        """Drops what the system remembers of this volume, and of no other."""
        flush(self.point)
        command("umount", self.point)
        wait_until_free(self.device)
        with open(self.image, "rb") as file:
            os.fsync(file.fileno())
            os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)
        command("mount", self.device, self.point)
        return True


def unmount(point):
    if os.path.ismount(point):
        if subprocess.run(["umount", point], check=False).returncode != 0:
            subprocess.run(["umount", "-l", point], check=False)


KINDS = {volume.kind: volume for volume in (Loop, Tmpfs, Directory)}


def why_none(base):
    """Empty where volumes can be mounted."""
    if os.geteuid() != 0:
        return "il faut root pour monter un volume"
    missing = [tool for tool in ("losetup", "mkfs.ext4", "mount") if not shutil.which(tool)]
    if missing:
        return f"il manque {', '.join(missing)}"
    try:
        with Loop(base, "essai", 32 << 20), Tmpfs(base, "essai tmpfs", 1 << 20):
            return ""
    except OSError as error:
        return str(error)
