"""Runs trials: makes their volumes and trees, runs the programs in turn, checks the copies."""

import contextlib
import mmap
import os
import sys
import time

import costs
import disks
import programs as p
import trees

SOURCE_NAME = "Arbre"


def memory_at_hand(size):
    """A virtual machine gives its free memory back within seconds, and whoever copies next waits
    until it has it again. Here the system gets it before the clock starts."""
    size = min(size, os.sysconf("SC_AVPHYS_PAGES") * os.sysconf("SC_PAGE_SIZE") // 2)
    with mmap.mmap(-1, max(size, mmap.PAGESIZE), flags=mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS
                   | mmap.MAP_POPULATE):
        pass


class Contender:
    """One program on one tree."""

    def __init__(self, program, tree, source, destination):
        self.program = program
        self.tree = tree
        self.source = os.path.join(source, SOURCE_NAME)
        self.destination = destination
        self.target = os.path.join(destination, SOURCE_NAME)

    def make_room(self):
        os.makedirs(self.target if self.program.does(p.FIRST) else self.destination, exist_ok=True)
        if self.program.does(p.FIRST):
            os.rmdir(self.target)


class Runner:
    """Keeps what was measured, a record for each run, and what went wrong."""

    def __init__(self, setup, say=print):
        self.setup = setup
        self.say = say
        self.records = []
        self.calls = []
        self.faults = []
        self.left_out = []
        self.copies = 0  # that were looked at and equal

    def run(self, trial):
        begin = time.monotonic()
        self.say(f"--- {trial.name} ({trial.disk}, {trial.cores} cœur(s), "
                 f"{'froid' if trial.cold else 'chaud'}, {trial.rounds} tours)")
        made = [make() for make in trial.trees]
        contenders_of = [c for c in self.setup.programs(trial) if self.usable(trial, c)]
        if not contenders_of:
            return
        kind, reason = self.setup.volume(trial.disk)
        if reason:
            self.leave_out(f"un {trial.disk} à soi", f"{reason} ; un répertoire en tient lieu")
        copies = sum(program.does(p.FIRST) for program in contenders_of)
        room = sum(tree.room for tree in made)
        with kind(self.setup.base, "originaux", room * 9 // 8 + (256 << 20)) as source, \
                kind(self.setup.base, "copies", copies * room * 9 // 8 + (512 << 20)) as target:
            for tree in made:
                tree.make(os.path.join(source.point, tree.name, SOURCE_NAME))
            contenders = [Contender(program, tree, os.path.join(source.point, tree.name),
                                    os.path.join(target.point, tree.name, program.name))
                          for tree in made for program in contenders_of]
            try:
                Rounds(self, trial, source, target, contenders).run()
            finally:
                for program in contenders_of:
                    program.finish()
        self.say(f"    ({time.monotonic() - begin:.0f} s)")

    def usable(self, trial, program):
        reason = program.missing()
        if reason:
            self.leave_out(f"{trial.name}, {program.name}", reason)
        return not reason

    def leave_out(self, name, reason):
        if (name, reason) not in self.left_out:
            self.left_out.append((name, reason))
            self.say(f"laissé {name} : {reason}")

    def fault(self, text):
        self.faults.append(text)
        self.say(f"FAUTE {text}")


class Rounds:
    """The rounds of one trial."""

    def __init__(self, runner, trial, source, target, contenders):
        self.runner = runner
        self.trial = trial
        self.source = source
        self.target = target
        self.contenders = contenders
        self.version = 0

    def run(self):
        for number in range(self.trial.rounds):
            self.begin(number)
            for operation in self.trial.operations:
                if number == 0 and not self.trial.fresh and operation == p.FIRST:
                    continue
                self.operation(number, operation)

    def begin(self, number):
        """The volume as the round needs it, and the copies that it begins with."""
        if number > 0 and not self.trial.fresh:
            return
        if number > 0:
            self.target.empty()
        for contender in self.contenders:
            contender.make_room()
            contender.program.prepare(contender.source, contender.target)
        if p.FIRST not in self.trial.operations:
            for contender in self.contenders:
                if contender.program.does(p.FIRST):
                    self.once(contender, p.FIRST, self.trial.cores)
            self.follow()

    def follow(self):
        """Who makes no copy looks at that of another."""
        for contender in self.contenders:
            if contender.program.leads:
                contender.target = next(other.target for other in self.contenders if
                                        other.program.name == contender.program.leads
                                        and other.tree is contender.tree)

    def operation(self, number, operation):
        with self.prepared(operation):
            for contender in self.in_turn(number):
                if not contender.program.does(operation):
                    continue
                self.settle()
                if self.trial.calls:
                    self.count(contender, operation)
                else:
                    memory_at_hand(3 * contender.tree.bytes + (512 << 20))
                    self.measure(number, contender, operation)
        if operation in (p.FIRST, p.REPLACE):
            self.check(number, operation)

    @contextlib.contextmanager
    def prepared(self, operation):
        """The originals as an operation needs them."""
        originals = {contender.source: contender.tree for contender in self.contenders}
        if operation == p.REPLACE:
            self.version += 1
            for source, tree in originals.items():
                tree.renew(source, self.version)
        if operation == p.DIFFERING:
            for source, tree in originals.items():
                tree.age(source, self.version + 1)
        yield
        if operation == p.DIFFERING:
            for source, tree in originals.items():
                tree.age(source, self.version)

    def in_turn(self, number):
        """Everyone comes first, last, and after everyone else."""
        shift = number // 2 % len(self.contenders)
        turned = self.contenders[shift:] + self.contenders[:shift]
        return turned[::-1] if number % 2 else turned

    def settle(self):
        self.source.settle()
        self.target.settle()
        if self.trial.cold and not (self.source.cool() and self.target.cool()):
            self.runner.leave_out(f"{self.trial.name}, à froid", "ce cache ne se vide pas seul")

    def once(self, contender, operation, cores):
        words = contender.program.words(operation, contender.source, contender.target)
        environment = self.runner.setup.environment(contender.program)
        cost = self.runner.setup.meter.cost(words, cores, environment)
        if not contender.program.good(operation, cost.status):
            self.runner.fault(f"{self.trial.name} : {contender.program.name}, {operation}, état "
                              f"{cost.status} {cost.errors}")
        return cost

    def measure(self, number, contender, operation):
        cost = self.once(contender, operation, self.trial.cores)
        self.runner.records.append({
            **self.what(contender, operation), "tour": number, "secondes": cost.seconds,
            "utilisateur": cost.user, "système": cost.system, "pointe_kio": cost.peak})

    def count(self, contender, operation):
        reason = costs.why_no_calls()
        if reason:
            self.runner.leave_out(self.trial.name, reason)
            self.once(contender, operation, self.trial.cores)
            return
        words = contender.program.words(operation, contender.source, contender.target)
        environment = self.runner.setup.environment(contender.program)
        names, status = self.runner.setup.meter.calls(words, environment)
        if not contender.program.good(operation, status) or not names:
            self.runner.fault(f"{self.trial.name} : {contender.program.name}, {operation}, "
                              f"état {status} sous strace")
        self.runner.calls.append({
            **self.what(contender, operation), "appels": dict(sorted(
                names.items(), key=lambda item: -item[1]))})

    def what(self, contender, operation):
        return {"essai": self.trial.name, "disque": self.target.kind, "froid": self.trial.cold,
                "cœurs": self.trial.cores, "opération": operation,
                "programme": contender.program.name, "arbre": contender.tree.label,
                "fichiers": contender.tree.files, "octets": contender.tree.bytes}

    def check(self, number, operation):
        """Every copy is what the original is; its bytes are read once."""
        for contender in self.contenders:
            program = contender.program
            if program.leads or not program.copies or not program.does(operation):
                continue
            with_bytes = number == 0 and contender.tree.files <= 100_000
            wrong = trees.difference(contender.source, contender.target, with_bytes)
            if wrong:
                self.runner.fault(f"{self.trial.name} : {program.name}, tour {number + 1} : "
                                  f"{wrong}")
            else:
                self.runner.copies += 1
        sys.stdout.flush()
