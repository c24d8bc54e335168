#!/usr/bin/env python3
"""A volume that passes everything on to a directory and is odd where it is told to be: a small FUSE
file system, in the kernel's own protocol, that takes names for one as some disks and servers do,
makes up the numbers of its entries, and answers some calls with an error.

Usage: passing_volume.py BACKING CONTROL DIRECTORY NAMES NUMBERS    shows BACKING as DIRECTORY
NAMES: one of NAMES below. NUMBERS: "kept", those of BACKING; "by-name", one for each name that an
entry is asked by; "anew", another one at each question. CONTROL: see Faults.
"""

import contextlib
import errno
import mmap
import os
import struct
import sys
import time
import unicodedata

import fuse_server

LOOKUP, GETATTR, SETATTR, READLINK, SYMLINK, MKDIR, UNLINK, RMDIR = 1, 3, 4, 5, 6, 9, 10, 11
RENAME, OPEN, READ, WRITE, STATFS, RELEASE, FSYNC, FLUSH, INIT = 12, 14, 15, 16, 17, 18, 20, 25, 26
OPENDIR, READDIR, RELEASEDIR, FSYNCDIR, CREATE, DESTROY = 27, 28, 29, 30, 35, 38
RENAME2, SYNCFS = 45, 50
NOTHING_TO_DO = (FLUSH, FSYNC, FSYNCDIR, SYNCFS, RELEASEDIR, DESTROY)
ROOT = 1
LARGEST = 1 << 17
NO_REPLACE = 1  # of renameat2
# What an open file of the program's asks for that the one behind it need not be.
UNWANTED = os.O_CREAT | os.O_EXCL | os.O_NOFOLLOW | os.O_DIRECT | os.O_APPEND | os.O_TRUNC
OF_FILE, WITH_FILE = 1, 1 << 6  # GETATTR and SETATTR name an open file
SET_MODE, SET_OWNER, SET_GROUP, SET_SIZE, SET_ACCESS, SET_WRITE = 1, 2, 4, 8, 16, 32
ACCESS_NOW, WRITE_NOW = 1 << 7, 1 << 8
NANO = 10**9


def folded(text):
    """As disks do that know every letter in two cases, and accents however they are composed."""
    decompose = lambda letters: unicodedata.normalize("NFD", letters)
    return decompose(decompose(text).casefold())


# How a volume compares names, and how it keeps and shows one.
NAMES = {
    "exact": (lambda text: text, lambda text: text),
    "points": (lambda text: text.rstrip(".").lower(), lambda text: text.rstrip(".")),
    "accents": (lambda text: unicodedata.normalize("NFD", text),) * 2,
    "lettres": (folded, lambda text: text),
}


class Faults:
    """What the volume refuses, in a file that two processes share: a bit for each call, the error,
    how many such calls still go well, how many then do not, and how many have not."""

    SHAPE = struct.Struct("<QIIII")

    def __init__(self, path):
        with open(path, "r+b") as file:
            self.shared = mmap.mmap(file.fileno(), self.SHAPE.size)

    def set(self, calls=(), error=0, skip=0, times=0):
        self.shared[:] = self.SHAPE.pack(sum(1 << call for call in calls), error, skip, times, 0)

    @property
    def met(self):
        return self.SHAPE.unpack(self.shared[:])[4]

    def meet(self, call):
        calls, error, skip, times, met = self.SHAPE.unpack(self.shared[:])
        if not calls >> call & 1:
            return
        if skip:
            self.shared[:] = self.SHAPE.pack(calls, error, skip - 1, times, met)
        elif times:
            self.shared[:] = self.SHAPE.pack(calls, error, 0, times - 1, met + 1)
            raise OSError(error, "as told")


class Volume:
    """Answers the kernel."""

    def __init__(self, backing, faults, names, numbers):
        self.same, self.kept = NAMES[names]
        self.faults = faults
        self.numbers = numbers
        self.asked = 0
        self.paths = {ROOT: os.fsencode(backing)}  # of each node that the kernel has heard of
        self.nodes = {}  # by the path, or by the node of the directory and the name asked for
        self.open = {}  # descriptors, and the names of directories
        self.handles = 0
        self.calls = {
            INIT: self.init, LOOKUP: self.lookup, GETATTR: self.getattr, SETATTR: self.setattr,
            READLINK: lambda node, body: os.readlink(self.paths[node]), SYMLINK: self.symlink,
            MKDIR: self.mkdir, UNLINK: self.remove(os.unlink), RMDIR: self.remove(os.rmdir),
            RENAME: self.rename, RENAME2: self.rename2, OPEN: self.open_file, CREATE: self.create,
            READ: self.read, WRITE: self.write, RELEASE: self.release, OPENDIR: self.open_directory,
            READDIR: self.read_directory, STATFS: self.statfs}

    def answer(self, call, node, body):
        self.faults.meet(call)
        if call in self.calls:
            return self.calls[call](node, bytes(body))
        if call in NOTHING_TO_DO:
            return b""
        raise OSError(errno.ENOSYS, "")

    # ---- names and nodes
    def text(self, name, rule):
        return os.fsencode(rule(os.fsdecode(name)))

    def find(self, directory, name):
        """The path of what the volume finds by this name; None when there is none."""
        wanted = self.text(name, self.same)
        for listed in os.listdir(self.paths[directory]):
            if self.text(listed, self.same) == wanted:
                return os.path.join(self.paths[directory], listed)
        return None

    def found(self, directory, name):
        path = self.find(directory, name)
        if path is None:
            raise OSError(errno.ENOENT, "")
        return path

    def place(self, directory, name):
        """Where a new entry goes."""
        return os.path.join(self.paths[directory], self.text(name, self.kept))

    def key(self, directory, name, path):
        return (directory, name) if self.numbers == "by-name" else path

    def node(self, key, path):
        if key not in self.nodes:
            self.nodes[key] = len(self.paths) + 1
            self.paths[self.nodes[key]] = path
        return self.nodes[key]

    def moved(self, source, target, old, new):
        """Nodes follow what they stand for, with all below it. `old`, `new`: the keys of its own."""
        self.nodes.pop(new, None)
        if old in self.nodes:
            self.nodes[new] = self.nodes.pop(old)
        for key, number in list(self.nodes.items()):
            path = self.paths[number]
            if path == source or path.startswith(source + b"/"):
                self.paths[number] = target + path[len(source):]
                if key == path:
                    self.nodes[self.paths[number]] = self.nodes.pop(key)

    # ---- answers of the protocol
    def attributes(self, information, node):
        self.asked += 1
        number = {"kept": information.st_ino, "by-name": node, "anew": self.asked}[self.numbers]
        seconds, rest = zip(*(divmod(time_, NANO) for time_ in (
            information.st_atime_ns, information.st_mtime_ns, information.st_ctime_ns)))
        return struct.pack("<3Q3q10I", number, information.st_size, information.st_blocks, *seconds,
                           *rest, information.st_mode, information.st_nlink, information.st_uid,
                           information.st_gid, 0, 4096, 0)

    def entry(self, directory, name, path):
        node = self.node(self.key(directory, name, path), path)
        return struct.pack("<QQQQII", node, 0, 0, 0, 0, 0) + self.attributes(os.lstat(path), node)

    def state(self, information, node):
        return struct.pack("<QII", 0, 0, 0) + self.attributes(information, node)

    def handle(self, what):
        self.handles += 1
        self.open[self.handles] = what
        return struct.pack("<QIi", self.handles, 0, 0)

    @staticmethod
    def init(_, __):
        return struct.pack("<IIIIHHIIHH8I", 7, 31, LARGEST, 0, 16, 12, LARGEST, 1, 32, 0, *[0] * 8)

    def lookup(self, directory, body):
        name = body.split(b"\0")[0]
        return self.entry(directory, name, self.found(directory, name))

    def getattr(self, node, body):
        flags, _, handle = struct.unpack_from("<IIQ", body)
        of_file = flags & OF_FILE and isinstance(self.open.get(handle), int)
        return self.state(os.fstat(self.open[handle]) if of_file else os.lstat(self.paths[node]),
                          node)

    def setattr(self, node, body):
        (what, _, handle, size, _, access, write, _, access_rest, write_rest, _, mode, _, owner,
         group, _) = struct.unpack_from("<IIQQQqqqIIIIIIII", body)
        of_file = bool(what & WITH_FILE) and isinstance(self.open.get(handle), int)
        target = self.open[handle] if of_file else self.paths[node]
        linked = {} if of_file else {"follow_symlinks": False}
        if what & (SET_OWNER | SET_GROUP):
            os.chown(target, owner if what & SET_OWNER else -1, group if what & SET_GROUP else -1,
                     **linked)
        if what & SET_MODE:
            os.chmod(target, mode & 0o7777)
        if what & SET_SIZE:
            os.truncate(target, size)
        if what & (SET_ACCESS | SET_WRITE):
            old = os.stat(target, **linked)
            now = time.time_ns()
            os.utime(target, **linked, ns=(
                now if what & ACCESS_NOW else access * NANO + access_rest if what & SET_ACCESS
                else old.st_atime_ns,
                now if what & WRITE_NOW else write * NANO + write_rest if what & SET_WRITE
                else old.st_mtime_ns))
        return self.state(os.stat(target, **linked), node)

    def symlink(self, directory, body):
        name, target = body.split(b"\0")[:2]
        os.symlink(target, self.place(directory, name))
        return self.entry(directory, name, self.place(directory, name))

    def mkdir(self, directory, body):
        mode, = struct.unpack_from("<I", body)
        name = body[8:].split(b"\0")[0]
        if self.find(directory, name) is not None:
            raise OSError(errno.EEXIST, "")
        os.mkdir(self.place(directory, name))
        os.chmod(self.place(directory, name), mode & 0o7777)
        return self.entry(directory, name, self.place(directory, name))

    def remove(self, how):
        def act(directory, body):
            name = body.split(b"\0")[0]
            path = self.found(directory, name)
            how(path)
            self.nodes.pop(self.key(directory, name, path), None)
            return b""
        return act

    def rename(self, directory, body, flags=0, names_at=8):
        to, = struct.unpack_from("<Q", body)
        old, new = body[names_at:].split(b"\0")[:2]
        source = self.found(directory, old)
        target = self.find(to, new)
        if target is not None and flags & NO_REPLACE:
            raise OSError(errno.EEXIST, "")
        if target is None or target == source:  # in another case, it takes the new one
            target = self.place(to, new)
        os.rename(source, target)
        self.moved(source, target, self.key(directory, old, source), self.key(to, new, target))
        return b""

    def rename2(self, directory, body):
        _, flags = struct.unpack_from("<QI", body)
        if flags & ~NO_REPLACE:
            raise OSError(errno.EINVAL, "")
        return self.rename(directory, body, flags, 16)

    def open_file(self, node, body):
        flags, = struct.unpack_from("<I", body)
        return self.handle(os.open(self.paths[node], flags & ~UNWANTED))

    def create(self, directory, body):
        flags, mode = struct.unpack_from("<II", body)
        name = body[16:].split(b"\0")[0]
        path = self.find(directory, name)
        if path is not None and flags & os.O_EXCL:
            raise OSError(errno.EEXIST, "")
        path = path or self.place(directory, name)
        file = os.open(path, flags & os.O_ACCMODE | os.O_CREAT, 0o600)
        os.fchmod(file, mode & 0o7777)
        return self.entry(directory, name, path) + self.handle(file)

    def read(self, _, body):
        handle, offset, size = struct.unpack_from("<QQI", body)
        return os.pread(self.open[handle], size, offset)

    def write(self, _, body):
        handle, offset, size = struct.unpack_from("<QQI", body)
        os.pwrite(self.open[handle], body[40:40 + size], offset)
        return struct.pack("<II", size, 0)

    def release(self, _, body):
        os.close(self.open.pop(struct.unpack_from("<Q", body)[0]))
        return b""

    def open_directory(self, node, _):
        return self.handle([b".", b"..", *sorted(os.listdir(self.paths[node]))])

    def read_directory(self, node, body):
        handle, offset, size = struct.unpack_from("<QQI", body)
        answer = b""
        for index, name in list(enumerate(self.open[handle], 1))[offset:]:
            with contextlib.suppress(FileNotFoundError):  # removed since it was opened
                information = os.lstat(os.path.join(self.paths[node], name))
                record = struct.pack("<QQII", information.st_ino, index, len(name),
                                     information.st_mode >> 12) + name
                record += b"\0" * (-len(record) % 8)
                if len(answer) + len(record) > size:
                    break
                answer += record
        return answer

    @staticmethod
    def statfs(_, __):
        return struct.pack("<5Q10I", *[10**6] * 5, 4096, 255, 4096, *[0] * 7)


def main():
    backing, control, directory, names, numbers = sys.argv[1:]
    volume = Volume(backing, Faults(control), names, numbers)
    server = fuse_server.Server("essai", directory, LARGEST)
    print("prêt", flush=True)
    server.serve(volume.answer)


if __name__ == "__main__":
    main()
