"""The trees that are copied, always the same for the same name, and whether a copy equals one."""

import os
import random
import re
import stat

OWN = re.compile(r"\.~coffrelune-[0-9a-f]{16}\.[a-z]+")
MIB = 1 << 20
BEGINNING = 1_600_000_000  # seconds; the files are from then on


class Tree:
    """Files named by their paths below a root, with their sizes."""

    def __init__(self, name, label, sizes, holes=False):
        self.name = name
        self.label = label
        self.sizes = sizes
        self.holes = holes  # most of each file is none of its data
        self.pool = random.Random(0).randbytes(4 * MIB)

    @property
    def files(self):
        return len(self.sizes)

    @property
    def bytes(self):
        return sum(self.sizes.values())

    @property
    def room(self):
        """What it takes on a disk, in whole blocks, with its names."""
        data = 64 * MIB if self.holes else sum(-(-size // 4096) * 4096
                                               for size in self.sizes.values())
        return data + 1024 * self.files

    def make(self, root):
        os.makedirs(root)
        with Root(root) as below:
            for directory in sorted({os.path.dirname(path) for path in self.sizes}):
                below.make_directories(directory)
        self.renew(root, 0)

    def renew(self, root, version):
        """Gives every file other bytes of the same number, and a later time."""
        with Root(root) as below:
            for number, (path, size) in enumerate(self.sizes.items()):
                below.write(path, self.pieces(number, version, size), size)
                below.stamp(path, time_of(number, version))

    def age(self, root, version):
        """Gives every file the time of a version, and leaves its bytes."""
        with Root(root) as below:
            for number, path in enumerate(self.sizes):
                below.stamp(path, time_of(number, version))

    def pieces(self, number, version, size):
        """Offsets and bytes, different for each file and version."""
        mark = b"%d %d\n" % (number, version)
        step = 64 * MIB if self.holes else MIB
        for offset in range(0, max(size, 1), step):
            length = min(65536 if self.holes else MIB, size - offset)
            start = (number * 7919 + version * 104729 + offset // step) % (len(self.pool) - MIB)
            yield offset, (mark + self.pool[start:start + length])[:length]


def time_of(number, version):
    return (BEGINNING + version * 3600 + number % 3600) * 1_000_000_000 + 123_456_700


class Root:
    """A directory below which every path is reached, however long its own path is."""

    def __init__(self, path):
        self.path = path

    def __enter__(self):
        self.fd = os.open(self.path, os.O_RDONLY | os.O_DIRECTORY)
        return self

    def __exit__(self, *_):
        os.close(self.fd)

    def make_directories(self, path):
        if not path:
            return
        missing = []
        while path:
            try:
                os.mkdir(path, dir_fd=self.fd)
                break
            except FileExistsError:
                break
            except FileNotFoundError:
                missing.append(path)
                path = os.path.dirname(path)
        for directory in reversed(missing):
            os.mkdir(directory, dir_fd=self.fd)

    def write(self, path, pieces, size):
        fd = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o644, dir_fd=self.fd)
        try:
            for offset, data in pieces:
                os.pwrite(fd, data, offset)
            os.ftruncate(fd, size)
        finally:
            os.close(fd)

    def stamp(self, path, nanoseconds):
        os.utime(path, ns=(nanoseconds, nanoseconds), dir_fd=self.fd)

    def open(self, path):
        return open(os.open(path, os.O_RDONLY | os.O_NOFOLLOW, dir_fd=self.fd), "rb", buffering=0)

    def entries(self):
        """Every path below with what lstat tells, but for the program's own files."""
        waiting = [""]
        while waiting:
            directory = waiting.pop()
            fd = os.open(directory or ".", os.O_RDONLY | os.O_DIRECTORY, dir_fd=self.fd)
            try:
                for name in os.listdir(fd):
                    if OWN.fullmatch(name):
                        continue
                    path = f"{directory}/{name}" if directory else name
                    known = os.lstat(name, dir_fd=fd)
                    if stat.S_ISDIR(known.st_mode):
                        waiting.append(path)
                    yield path, known
            finally:
                os.close(fd)


def difference(original, copy, with_bytes=True):
    """Empty when a copy holds the same names, sizes, times (to 100 ns) and bytes."""
    with Root(original) as left, Root(copy) as right:
        rest = dict(right.entries())
        for path, known in left.entries():
            other = rest.pop(path, None)
            if other is None:
                return f"{path} manque"
            if stat.S_ISDIR(known.st_mode):
                continue
            if known.st_size != other.st_size:
                return f"{path} : {other.st_size} octets, et non {known.st_size}"
            if known.st_mtime_ns // 100 != other.st_mtime_ns // 100:
                return f"{path} n'a pas la date de l'original"
            if with_bytes and not same_bytes(left, right, path):
                return f"{path} n'a pas le contenu de l'original"
        return f"{next(iter(rest))} est en trop" if rest else ""


def same_bytes(left, right, path):
    """Of two files of one length; what is a hole in both need not be read."""
    with left.open(path) as one, right.open(path) as other:
        for file in (one, other):
            for begin, end in data_of(file):
                for offset in range(begin, end, 4 * MIB):
                    length = min(4 * MIB, end - offset)
                    if os.pread(one.fileno(), length, offset) != os.pread(
                            other.fileno(), length, offset):
                        return False
            if os.fstat(one.fileno()).st_blocks * 512 >= os.fstat(one.fileno()).st_size:
                return True  # all of it has been read
    return True


def data_of(file):
    """Where a file is no hole: begin and end of each part."""
    end = 0
    while True:
        try:
            begin = os.lseek(file.fileno(), end, os.SEEK_DATA)
        except OSError:  # nothing but holes from there on
            return
        end = os.lseek(file.fileno(), begin, os.SEEK_HOLE)
        yield begin, end


# ---- the trees themselves --------------------------------------------------------------------
def small(name, files, most=16384):
    draw = random.Random(files)
    per_directory = 100
    sizes = {f"répertoire {n // per_directory:05d}/fichier {n:07d}.txt": draw.randint(100, most)
             for n in range(files)}
    return Tree(name, f"{spaced(files)} petits fichiers", sizes)


def tiny(name, files):
    sizes = {f"d{n // 100:05d}/f{n:07d}": 1 + n % 100 for n in range(files)}
    return Tree(name, f"{spaced(files)} fichiers en {spaced(files // 100)} répertoires", sizes)


def mixed(name, scale=1):
    draw = random.Random(7)
    sizes = {}
    for n in range(3000 // scale):
        sizes[f"textes/{n % 30}/{n % 7}/note {n}.txt"] = draw.randint(100, 16384)
    for n in range(200 // scale):
        sizes[f"photos/{n % 10}/image {n}.jpg"] = draw.randint(1, 3 * MIB)
    for n in range(max(1, 4 // scale)):
        sizes[f"films/film {n}.mp4"] = 50 * MIB // scale
    return Tree(name, f"{spaced(len(sizes))} fichiers de toutes tailles", sizes)


def large(name, files, size):
    return Tree(name, f"{files} fichiers de {size // MIB} Mio",
                {f"grand {n}.iso": size for n in range(files)})


def deep(name, levels, chains):
    """The same number of entries whatever the depth: one chain, or several side by side. Names of
    one letter: a path of 2,000 levels stays below what a call takes."""
    sizes = {}
    for chain in range(chains):
        path = f"c{chain:03d}"
        for _ in range(levels):
            path += "/n"
            for n in range(5):
                sizes[f"{path}/{n}"] = 100
    return Tree(name, f"{spaced(levels)} niveaux", sizes)


def one_directory(name, files):
    return Tree(name, f"un répertoire de {spaced(files)} fichiers",
                {f"fichier {n:07d}": 100 for n in range(files)})


def sparse(name, files, size):
    return Tree(name, f"{files} fichiers creux de {size // MIB} Mio",
                {f"creux {n}.img": size for n in range(files)}, holes=True)


def spaced(number):
    return f"{number:,}".replace(",", " ")
