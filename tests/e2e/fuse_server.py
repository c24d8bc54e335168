"""A file system that a test serves itself, in the kernel's own protocol (FUSE): it is mounted, and
each question of the kernel's gets its answer, one after the other."""

import contextlib
import ctypes
import errno
import os
import struct

UNANSWERED = (2, 36, 42)  # who forgets an entry or gives up a call waits for no answer
QUESTION = struct.Struct("<IIQQ")  # its length, the call, its number, the node that it is about
HEADER = 40  # of a question


class Server:
    """Mounts `directory`. `largest`: bytes that one question may bear."""

    def __init__(self, name, directory, largest):
        self.largest = largest
        self.kernel = os.open("/dev/fuse", os.O_RDWR)
        options = f"fd={self.kernel},rootmode=40000,user_id=0,group_id=0,max_read={largest}"
        libc = ctypes.CDLL(None, use_errno=True)
        if libc.mount(name.encode(), os.fsencode(directory), b"fuse", 0, options.encode()):
            raise OSError(ctypes.get_errno(), f"mount {os.fsdecode(directory)}")

    def serve(self, answer, refusal=OSError):
        """Until it is unmounted. `answer` takes a call, a node and what is asked of it, and gives
        bytes, or raises `refusal` (an OSError) with the number that is the answer."""
        while True:
            try:
                question = os.read(self.kernel, self.largest + 8192)
            except OSError as error:
                if error.errno == errno.ENODEV:  # unmounted
                    return
                if error.errno in (errno.EINTR, errno.ENOENT, errno.EAGAIN):
                    continue
                raise
            _, call, unique, node = QUESTION.unpack_from(question)
            if call in UNANSWERED:
                continue
            try:
                number, told = 0, answer(call, node, memoryview(question)[HEADER:])
            except refusal as error:
                number, told = error.errno, b""
            with contextlib.suppress(FileNotFoundError):  # nobody waits for it any more
                os.write(self.kernel, struct.pack("<IiQ", 16 + len(told), -number, unique) + told)
