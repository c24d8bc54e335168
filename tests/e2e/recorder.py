#!/usr/bin/env python3
"""A file that remembers what it was given: a small FUSE file system, in the kernel's own protocol,
that shows one file, passes everything on to another, and logs each write and each flush. A loop
device on it is a disk whose every state can be made again.

Usage: recorder.py BACKING LOG CONTROL DIRECTORY    shows BACKING as DIRECTORY/disque
CONTROL says how the disk fares: from one written record to another it refuses some things.
A record of LOG is (kind, offset, length), and the bytes that were written.
"""

import errno
import mmap
import os
import stat
import struct
import sys

import fuse_server

GOOD, NO_FLUSH, NO_WRITE, GONE, FULL = range(5)
WRITE, FLUSH, REFUSED = 1, 2, 3
CONTROL = struct.Struct("<BQQ")  # how it fares, from which number of records on, until which
RECORD = struct.Struct("<BQQ")
NAME = "disque"

LOOKUP, GETATTR, SETATTR, OPEN, READ, WRITE_CALL, STATFS = 1, 3, 4, 14, 15, 16, 17
RELEASE, FSYNC, FLUSH_CALL, INIT, OPENDIR, READDIR, RELEASEDIR = 18, 20, 25, 26, 27, 28, 29
DESTROY = 38
ROOT, FILE = 1, 2
LARGEST = 1 << 20
ASYNC_READ, BIG_WRITES, MAX_PAGES = 1, 1 << 5, 1 << 22
DIRECT_IO = 1  # each write comes at once, as it was made


class Refused(OSError):
    """What a call is answered with instead."""

    def __init__(self, number):
        super().__init__(number, "as told")


class Recorder:
    """Answers the kernel: the log has the requests in the order of their answers."""

    def __init__(self, backing, log, control):
        self.backing = os.open(backing, os.O_RDWR)
        self.log = os.open(log, os.O_WRONLY | os.O_APPEND)
        with open(control, "r+b") as file:
            self.control = mmap.mmap(file.fileno(), CONTROL.size)
        self.records = 0

    def answer(self, code, node, body):
        calls = {INIT: self.init, LOOKUP: self.lookup, READ: self.read, WRITE_CALL: self.write,
                 FSYNC: self.flush}
        if code in calls:
            return calls[code](body)
        if code in (GETATTR, SETATTR):
            return struct.pack("<QII", 3600, 0, 0) + self.attributes(node)
        if code in (OPEN, OPENDIR):
            return struct.pack("<QIi", 0, DIRECT_IO, 0)
        if code in (RELEASE, RELEASEDIR, FLUSH_CALL, DESTROY, READDIR):
            return b""
        if code == STATFS:
            return struct.pack("<5Q10I", 0, 0, 0, 1, 0, 4096, 255, 4096, *[0] * 7)
        raise Refused(errno.ENOSYS)

    @staticmethod
    def init(_):
        flags = ASYNC_READ | BIG_WRITES | MAX_PAGES
        return struct.pack("<IIIIHHIIHH8I", 7, 31, LARGEST, flags, 64, 48, LARGEST, 1,
                           LARGEST // 4096, 0, *[0] * 8)

    def attributes(self, node):
        size = os.fstat(self.backing).st_size if node == FILE else 0
        mode = stat.S_IFREG | 0o600 if node == FILE else stat.S_IFDIR | 0o700
        return struct.pack("<6Q10I", node, size, size // 512, 0, 0, 0, 0, 0, 0, mode, 1, 0, 0, 0,
                           4096, 0)

    def lookup(self, body):
        if bytes(body).rstrip(b"\0") != NAME.encode():
            raise Refused(errno.ENOENT)
        return struct.pack("<QQQQII", FILE, 0, 3600, 3600, 0, 0) + self.attributes(FILE)

    def read(self, body):
        self.refuse(GONE)
        _, offset, size = struct.unpack_from("<QQI", body)
        return os.pread(self.backing, size, offset)

    def write(self, body):
        self.refuse(NO_WRITE, GONE, FULL)
        _, offset, size = struct.unpack_from("<QQI", body)
        data = body[40:40 + size]
        os.pwrite(self.backing, data, offset)
        os.writev(self.log, [RECORD.pack(WRITE, offset, size), data])
        self.records += 1
        return struct.pack("<II", size, 0)

    def flush(self, _):
        self.refuse(NO_FLUSH, GONE)
        os.write(self.log, RECORD.pack(FLUSH, 0, 0))
        self.records += 1
        return b""

    def refuse(self, *states):
        state, first, end = CONTROL.unpack(self.control[:])
        if state in states and first <= self.records < end:
            os.write(self.log, RECORD.pack(REFUSED, 0, 0))
            self.records += 1
            raise Refused(errno.ENOSPC if state == FULL else errno.EIO)


def main():
    backing, log, control, directory = sys.argv[1:5]
    recorder = Recorder(backing, log, control)
    server = fuse_server.Server("enregistreur", directory, LARGEST)
    print("prêt", flush=True)
    server.serve(recorder.answer, Refused)


if __name__ == "__main__":
    main()
