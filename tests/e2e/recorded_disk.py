"""A disk that is recorded (recorder.py), and the images that a power cut may leave of it: what had
been flushed is there, and of what had not, any part."""

import contextlib
import ctypes
import fcntl
import os
import random
import shutil
import subprocess
import sys

import recorder
from cut_disk import command, wait_until_free

SIZES = {"ext4": 128 << 20, "xfs": 320 << 20, "btrfs": 256 << 20}
# The file systems themselves ask for no less than a block to be written as a whole.
BLOCK = 4096
ALL, NONE, SOME = "tout", "rien", "une partie"
LOOP_CTL_ADD, LOOP_CTL_REMOVE = 0x4C80, 0x4C81
CLONE_NEWNS, MS_REC, MS_PRIVATE = 0x20000, 0x4000, 1 << 18


def live_apart():
    """Mounts of this process are seen by nobody else, and end with it."""
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(CLONE_NEWNS) or libc.mount(None, b"/", None, MS_REC | MS_PRIVATE, None):
        raise OSError(ctypes.get_errno(), "unshare")


def why_not(kind):
    """Empty where this machine can make such a disk."""
    if os.geteuid() != 0:
        return "il faut root pour monter un disque"
    missing = [tool for tool in ("losetup", f"mkfs.{kind}") if not shutil.which(tool)]
    if missing:
        return f"il manque {', '.join(missing)}"
    if not os.path.exists("/dev/fuse"):
        return "le système n'a pas FUSE"
    with open("/proc/filesystems", encoding="ascii") as file:
        if kind not in file.read().split():
            return f"le système ne connaît pas {kind}"
    return ""


def copied(path, to):
    """Copies a file with its holes."""
    with open(path, "rb") as source, open(to, "wb") as target:
        size = os.fstat(source.fileno()).st_size
        target.truncate(size)
        at = 0
        while at < size:
            try:
                at = os.lseek(source.fileno(), at, os.SEEK_DATA)
            except OSError:  # nothing but a hole to the end
                return
            end = os.lseek(source.fileno(), at, os.SEEK_HOLE)
            while at < end:
                data = os.pread(source.fileno(), min(end - at, 1 << 20), at)
                os.pwrite(target.fileno(), data, at)
                at += len(data)


class RecordedDisk:
    """A file system on a loop device, mounted at `point`, whose writes can be recorded."""

    def __init__(self, base, kind, point):
        self.base = base
        self.kind = kind
        self.point = point
        self.shown = os.path.join(base, "montré")
        self.device = None
        self.process = None
        # Always the same one: without udev, it is what some file systems are known by.
        self.number = 1000 + os.getpid() % 30_000
        os.makedirs(self.shown)
        self.fare(recorder.GOOD)

    def file(self, name):
        return os.path.join(self.base, name)

    def make(self):
        """A new, empty one."""
        with open(self.file("brut"), "wb") as file:
            file.truncate(SIZES[self.kind])
        command(f"mkfs.{self.kind}", "-F" if self.kind == "ext4" else "-f", "-q",
                self.file("brut"))
        command("cp", "--sparse=always", self.file("brut"), self.file("disque"))
        os.remove(self.file("brut"))

    def put_on(self, name="disque"):
        """Mounts an image, as the system does when it starts again."""
        self.mount(self.file(name))

    def mount(self, path):
        with open("/dev/loop-control", "rb") as control, contextlib.suppress(FileExistsError):
            fcntl.ioctl(control, LOOP_CTL_ADD, self.number)
        device = f"/dev/loop{self.number}"
        command("losetup", device, path)
        self.device = device
        # A larger one reaches the recorder in two, and when the second is refused the loop device
        # takes what was written of it for all.
        with open(f"/sys/block/loop{self.number}/queue/max_sectors_kb", "w",
                  encoding="ascii") as limit:
            limit.write(str(recorder.LARGEST >> 10))
        try:
            command("mount", "-t", self.kind, self.device, self.point)
        except OSError:
            self.take_off()
            raise

    def take_off(self):
        """What was given to the disk and not yet written is written."""
        # Of a file system that has shut itself down nothing can be asked, not even what it is.
        if subprocess.run(["umount", self.point], capture_output=True,
                          check=False).returncode != 0:
            subprocess.run(["umount", "-l", self.point], capture_output=True, check=False)
        if self.device:
            device, self.device = self.device, None
            wait_until_free(device)
            command("losetup", "-d", device)
            with open("/dev/loop-control", "rb") as control, contextlib.suppress(OSError):
                fcntl.ioctl(control, LOOP_CTL_REMOVE, self.number)

    # ---- recorded ----------------------------------------------------------------------------
    def put_on_recorded(self):
        """Mounted through the recorder; what the disk holds now stays as "départ"."""
        copied(self.file("disque"), self.file("départ"))
        with open(self.file("écrits"), "wb"):
            pass
        program = os.path.join(os.path.dirname(os.path.abspath(__file__)), "recorder.py")
        self.process = subprocess.Popen(
            [sys.executable, program, self.file("disque"), self.file("écrits"),
             self.file("contrôle"), self.shown], stdout=subprocess.PIPE)
        if self.process.stdout.readline().strip() != "prêt".encode():
            raise OSError("recorder.py ne part pas")
        self.mount(os.path.join(self.shown, recorder.NAME))

    def take_off_recorded(self):
        self.take_off()
        if self.process:
            subprocess.run(["umount", "-l", self.shown], check=False)
            process, self.process = self.process, None
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(20)
            process.kill()
            process.wait()
            process.stdout.close()

    def fare(self, how, first=0, end=(1 << 64) - 1):
        """GOOD, or what the disk refuses from one number of records on until another."""
        name = self.file("contrôle")
        with open(name, "r+b" if os.path.exists(name) else "wb") as control:
            control.write(recorder.CONTROL.pack(how, first, end))

    def log_size(self):
        return os.stat(self.file("écrits")).st_size


class Log:
    """What a recorded disk was given."""

    def __init__(self, disk):
        self.disk = disk
        self.records = []  # (offset on the disk, length, place of the bytes); None for a flush
        self.refused = 0
        with open(disk.file("écrits"), "rb") as file:
            while head := file.read(recorder.RECORD.size):
                kind, offset, length = recorder.RECORD.unpack(head)
                if kind == recorder.REFUSED:
                    self.refused += 1
                    continue
                self.records.append((offset, length, file.tell()) if kind == recorder.WRITE
                                    else None)
                file.seek(length, os.SEEK_CUR)

    @property
    def flushes(self):
        return self.records.count(None)

    def number_at(self, size):
        """How many records there were when the log had that size."""
        return sum(1 for record in self.records if record is not None
                   and record[2] + record[1] <= size)

    def images(self, cuts, chance):
        """For each cut (number of records, what of the unflushed arrived, name), in rising order,
        makes the image and gives the cut with how many writes were not flushed."""
        base = self.disk.file("sûr")
        copied(self.disk.file("départ"), base)
        done = 0
        with open(self.disk.file("écrits"), "rb") as data:
            for number, how, name in sorted(cuts, key=lambda cut: cut[0]):
                last = max((at for at in range(done, number) if self.records[at] is None),
                           default=done)
                with open(base, "r+b") as image:
                    for record in filter(None, self.records[done:last]):
                        self.put(image, data, record)
                done = last
                loose = [record for record in self.records[last:number] if record]
                copied(base, self.disk.file(name))
                with open(self.disk.file(name), "r+b") as image:
                    for record in chosen(loose, how, chance):
                        self.put(image, data, record)
                yield number, how, name, len(loose)
        os.remove(base)

    @staticmethod
    def put(image, data, record):
        offset, length, place = record
        os.pwrite(image.fileno(), os.pread(data.fileno(), length, place), offset)


def chosen(loose, how, chance: random.Random):
    """What of the writes arrives. A disk that orders them as it likes may lose any of them, and
    leave one half done."""
    if how != SOME:
        return loose if how == ALL else []
    share = chance.choice((0.1, 0.5, 0.9))
    parts = []
    for offset, length, place in loose:
        if chance.random() >= share:
            continue
        if length > BLOCK and chance.random() < 0.2:
            start = chance.randrange(0, length // BLOCK) * BLOCK
            end = chance.randrange(start + BLOCK, length + 1, BLOCK)
            offset, length, place = offset + start, end - start, place + start
        parts.append((offset, length, place))
    return parts
