#!/usr/bin/env python3
"""Has the copy's disk fail late: it takes what it is given, and refuses it when it is written or
flushed, for a while or for good; or it is pulled out or taken off during a run. What was said to be
safe is safe, each error is counted and named, and the next run on a sound disk makes all right.

Usage: late_errors.py [--court] [--trials N] [--seed N] [--programs DIRECTORY]
                      [--place DIRECTORY] [KIND]...
KIND: ext4, xfs, btrfs; all of them when none is named. --trials: of each kind (60). --court: 8 on
ext4.
"""

import os
import re
import shutil
import subprocess
import sys

import harness
import recorded_disk
import recorder
from cut_disk import command
from harness import wait
from power_cut import NEW
from power_images import CASES, Session, Tree, Trial
from recorded_disk import Log
from sweep_harness import error_lines

HOW = {"vidages refusés": recorder.NO_FLUSH, "écritures refusées": recorder.NO_WRITE,
       "disque plein dessous": recorder.FULL, "disque retiré": recorder.GONE}
TAKEN_OFF = "démonté pendant l'opération"
PLAYED = (CASES[0], CASES[3], CASES[5])
MENDED = (("ext4", "e2fsck", ("-f", "-y")), ("xfs", "xfs_repair", ("-L",)))


class LateTrial(Trial):
    """Runs of one case, each from the same start, with a disk that fails somewhere."""

    def run(self, images):
        self.record()  # how a sound disk fares
        self.copied_trees()
        self.fail("disque sain", 0, 1)
        most = self.written_by_the_end
        for _ in range(images):
            how = self.chance.choice((*HOW, TAKEN_OFF))
            first = self.chance.randrange(most)
            end = self.chance.choice((first + 1, first + 10, 1 << 62))
            self.fail(how, first, end)

    written_by_the_end = 0  # records of the log when the last run ended

    def copied_trees(self):
        """The start of every trial: "départ" for the disk, and the trees beside it."""
        os.replace(self.disk.file("départ"), self.disk.file("début"))

    def again_at_the_start(self):
        recorded_disk.copied(self.disk.file("début"), self.disk.file("disque"))
        self.lay(self.place.copy if self.case.restored else self.place.source, NEW)

    def fail(self, how, first, end):
        span = "pour toujours" if end == 1 << 62 else f"jusqu'à {end}"
        what = f"{self.disk.kind}, {self.case.what}, {how} dès {first} {span}"
        self.again_at_the_start()
        self.disk.fare(HOW.get(how, recorder.GOOD), first, end)
        try:
            self.disk.put_on_recorded()
        except OSError:
            self.count("déjà refusés au montage")
            self.disk.fare(recorder.GOOD)
            self.disk.take_off_recorded()
            return
        words = ("restaurer", "--confirmer") if self.case.restored else ("sauvegarder",)
        process = self.place.start("coffrelune-console", *words, "--ecraser")
        if how == TAKEN_OFF:
            harness.wait_until(lambda: Log(self.disk).records[first // 2:] != [], process)
            command("umount", "-l", self.disk.point)
        outcome = wait(process)
        self.written_by_the_end = len(Log(self.disk).records)
        self.disk.take_off_recorded()
        refused = Log(self.disk).refused
        self.disk.fare(recorder.GOOD)
        self.count(f"état {outcome.status}")
        self.count("refus vus" if refused else "refus restés à venir")
        self.told(outcome, what)
        if os.listdir(self.disk.point):
            self.never_there(outcome, what)
            return
        if not self.mounted(what):
            return
        try:
            self.safe(outcome, what)
        finally:
            self.disk.take_off()

    def never_there(self, outcome, what):
        """Taken off before the program looked: what it wrote lies beneath, all of it."""
        self.count("démontés avant")
        tree = Tree(self.files, self.written)
        self.verdict.expect(outcome.status != 0 or self.is_all(tree, NEW),
                            f"{what} : sans erreur, et pourtant", f"{tree}\n{outcome}")
        for name in os.listdir(self.disk.point):
            shutil.rmtree(os.path.join(self.disk.point, name))

    def told(self, outcome, what):
        named = error_lines(outcome.all)
        self.verdict.expect(outcome.status in (0, 1, 2, 3), f"{what} : état", outcome)
        self.verdict.expect(outcome.status == 0 or named or "Restauration" in outcome.err
                            or any(word in outcome.all for word in (
                                "n'existe", "ne peut", "introuvable", "conservés")),
                            f"{what} : une erreur sans nom", outcome)
        counted = re.findall(r"[Nn]ombre d'erreur\(s\): (\d+)\n", outcome.out)
        self.verdict.expect(counted == ([str(len(named))] if named else []),
                            f"{what} : {len(named)} erreurs, un autre compte", outcome)

    def mounted(self, what):
        """Mounts the sound disk, after a repair where the file system asks for one."""
        try:
            self.disk.put_on()
            return True
        except OSError:
            pass
        for kind, tool, words in MENDED:
            if kind == self.disk.kind and shutil.which(tool):
                subprocess.run([tool, *words, self.disk.file("disque")], capture_output=True,
                               check=False)
                self.count("réparés")
        try:
            self.disk.put_on()
            return True
        except OSError as error:
            # What a file system makes of a disk that lied is not the program's to save.
            self.count("disques perdus")
            print(f"    {what} : le disque ne revient pas : {error}")
            return False

    def safe(self, outcome, what):
        tree = Tree(self.files, self.written)
        if outcome.status == 0:
            self.verdict.expect(self.is_all(tree, NEW), f"{what} : sans erreur, et pourtant",
                                f"{tree}\n{outcome}")
        self.held(tree, what)
        again = self.restore() if self.case.restored else self.backup("--confirmer-source")
        after = Tree(self.files, self.written)
        self.verdict.expect(again.status == 0 and self.is_all(after, NEW)
                            and after.leftovers == 0, f"{what} : l'opération suivante",
                            f"{after}\n{again}\n{outcome}")


def main():
    session = Session("erreurs tardives", "--trials", 60)
    if session.asked.court:
        return session.play(LateTrial, PLAYED[1:2], 8, (1100, 2))
    return session.play(LateTrial, PLAYED, session.asked.count, (1100, 2))


if __name__ == "__main__":
    sys.exit(main())
