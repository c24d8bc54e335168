"""Nothing is lost by faults, full disks, signals and runs that meet."""

import os
import shutil

from harness import read, write
from loss_harness import (BACKUP, KEPT, OLDER, RESTORE, Halted, back_up, backed_up, certificate,
                          check, disk, elsewhere, faulty, holds, killed, marks, mounted, needs,
                          plant, restore, settle, silent, tree, why_no_mount, why_no_trace,
                          write_of_data)

OLD = {"a.txt": "ancien a", "sous/b.txt": "ancien b", "sous/parti.txt": "parti"}
NEW = {"a.txt": "nouveau a", "sous/b.txt": "nouveau b"}
MERGED = {**OLD, **NEW}


def changed(place, report, **settings):
    """A complete copy of OLD, and an original that has become NEW since."""
    settle(place, **settings)
    backed_up(place, report, OLD)
    os.remove(f"{place.source}/sous/parti.txt")
    plant(place.source, NEW)


def whole(report, what, root, *versions):
    """Every file of a tree has one of its contents, whole, and none of another's."""
    wrong = [name for name, content in tree(root).items()
             if not name.endswith("/") and content not in [one.get(name) for one in versions]]
    report.equal(what, wrong, [])


@needs(why_no_trace)
def read_errors_leave_the_old_copy(place, report):
    """Un fichier qui ne se lit plus : il garde son ancienne copie, et il est nommé"""
    for go_on, statuses in ((-1, 1), (0, (1, 3))):
        shutil.rmtree(place.copy, ignore_errors=True)
        changed(place, report, go_on=go_on)
        outcome = faulty(place, ["read:error=EIO"], *BACKUP, path=f"{place.source}/a.txt")
        check(report, f"ContinueOnError={go_on}", outcome, statuses, "a.txt")
        report.equal("l'ancienne copie est là", read(f"{place.copy}/a.txt"), b"ancien a")
        write(f"{place.source}/seul.txt", "seul exemplaire")
        check(report, "restauration", restore(place), 1, KEPT, "n'a pas tout copié")
        report.equal("rien d'effacé", read(f"{place.source}/seul.txt"), b"seul exemplaire")
        os.remove(f"{place.source}/seul.txt")


@needs(why_no_trace)
def write_errors_leave_the_old_copy(place, report):
    """Une copie qui ne s'écrit pas : l'ancienne reste entière"""
    big = {"gros.bin": "v" * 300_000}

    def changed_since():
        shutil.rmtree(place.copy, ignore_errors=True)
        settle(place)
        backed_up(place, report, big)
        write(f"{place.source}/gros.bin", "n" * 400_000)
    changed_since()
    data = write_of_data(place, *BACKUP)
    # Each file is tried twice: its first write fails both times, or its second.
    first, second = f"{data}..{data + 1}", f"{data + 1}..{data + 3}+2"
    for call, error, when in (("write", "EIO", first), ("write", "ENOSPC", first),
                              ("write", "EIO", second), ("write", "ENOSPC", second),
                              ("utimensat", "EIO", "1+"), ("renameat", "EIO", "1+")):
        changed_since()
        outcome = faulty(place, [f"{call}:error={error}:when={when}"], *BACKUP)
        check(report, f"{call} {error}", outcome, (1, 3), "gros.bin" if call != "renameat" else "")
        holds(report, f"{call} {error} : l'ancienne copie est entière, rien ne traîne", place.copy,
              big)
        report.equal("aucun fichier temporaire", marks(place.copy, "tmp"), [])
        check(report, "la suivante", back_up(place), 0)
        holds(report, "la suivante copie tout", place.copy, {"gros.bin": "n" * 400_000})


@needs(why_no_trace)
def an_unflushed_copy_proves_nothing(place, report):
    """Un volume qui ne se vide pas : une erreur, et aucune preuve pour une restauration"""
    changed(place, report)
    outcome = faulty(place, ["syncfs:error=EIO"], *BACKUP)
    check(report, "syncfs EIO", outcome, 1)
    write(f"{place.source}/seul.txt", "seul exemplaire")
    check(report, "restauration", restore(place), 1, KEPT)
    holds(report, "rien d'effacé", place.source,
          {**{name: OLD[name] for name in NEW}, "seul.txt": "seul exemplaire"})


@needs(why_no_trace)
def an_unwritten_certificate_changes_nothing(place, report):
    """Un certificat qui ne peut être ni rouvert ni retiré : ni effacement ni copie"""
    changed(place, report)
    outcome = faulty(place, ["fsync:error=EIO", "unlinkat:error=EIO"], *BACKUP)
    check(report, "ni l'un ni l'autre", outcome, 1, "Erreur: 1117")
    holds(report, "la copie est comme avant", place.copy, OLD)
    outcome = faulty(place, ["fsync:error=EIO", "renameat:signal=SIGKILL:when=2"], *BACKUP)
    report.equal("retiré : il n'y a plus de preuve", marks(place.copy), [])
    write(f"{place.source}/seul.txt", "seul exemplaire")
    check(report, "restauration", restore(place), 1, KEPT, "rien ne dit que")
    report.equal("rien d'effacé", read(f"{place.source}/seul.txt"), b"seul exemplaire")


@needs(why_no_mount)
def a_full_disk_leaves_every_copy(place, report):
    """Un disque plein : chaque ancienne copie est entière, la cause est dite"""
    for go_on, statuses in ((-1, 1), (0, 3)):
        with mounted(place.destination, "-t", "tmpfs", "-o", "size=1m"):
            settle(place, go_on=go_on)
            files = {"a.bin": "a" * 300_000, "b.txt": "b"}
            shutil.rmtree(place.source)
            backed_up(place, report, files)
            write(f"{place.source}/a.bin", "n" * 900_000)
            check(report, f"ContinueOnError={go_on}", back_up(place), statuses)
            holds(report, "l'ancienne copie est entière", place.copy, files)
            write(f"{place.source}/seul.txt", "seul")
            check(report, "restauration", restore(place), 1, KEPT)
            report.equal("rien d'effacé", read(f"{place.source}/seul.txt"), b"seul")


@needs(why_no_mount)
def a_full_original_keeps_its_files(place, report):
    """Une restauration sur un disque plein : les fichiers vivants restent, la copie aussi"""
    with mounted(place.source, "-t", "tmpfs", "-o", "size=1m"):
        settle(place)
        files = {"a.bin": "a" * 600_000, "b.bin": "b" * 100_000}
        backed_up(place, report, files)
        os.remove(f"{place.source}/b.bin")
        write(f"{place.source}/a.bin", "n" * 500_000)
        check(report, "restauration", restore(place), 1, "112")
        report.check("a.bin est l'ancien ou le nouveau, entier", tree(place.source)["a.bin"] in
                     ("n" * 500_000, "a" * 600_000))
        check(report, "sauvegarde", back_up(place), (0, 1))
        report.check("b.bin a encore sa copie", tree(place.copy).get("b.bin") == files["b.bin"])


@needs(why_no_trace)
def a_stop_proves_nothing(place, report):
    """Ctrl-C pendant l'effacement, l'analyse ou la copie : rien de plus n'est effacé ensuite"""
    # The first two dates are those of the directories, before anything is deleted.
    for call, number in (("unlinkat", 1), ("utimensat", 3), ("utimensat", 4)):
        shutil.rmtree(place.copy, ignore_errors=True)
        changed(place, report)
        fault = f"{call}:signal=SIGINT:when={number}:delay_exit=200000"
        check(report, f"Ctrl-C au {call} {number}", faulty(place, [fault], *BACKUP), 3)
        whole(report, "la copie ne contient que des fichiers entiers", place.copy, OLD, NEW)
        write(f"{place.source}/seul.txt", "seul")
        check(report, "restauration", restore(place), 1, KEPT, "n'a pas tout copié")
        report.equal("rien d'effacé", read(f"{place.source}/seul.txt"), b"seul")
        os.remove(f"{place.source}/seul.txt")


@needs(why_no_trace)
def a_backup_killed_anywhere(place, report):
    """Une sauvegarde tuée à chaque appel qui change le disque : rien n'est perdu"""
    kills = 0
    for call in ("renameat", "renameat2", "unlinkat", "mkdirat", "fsync", "syncfs", "utimensat", "fchmod"):
        for number in range(1, 12):
            shutil.rmtree(place.copy, ignore_errors=True)
            shutil.rmtree(place.source)
            plant(place.source, OLD, OLDER)
            settle(place)
            back_up(place)
            os.remove(f"{place.source}/sous/parti.txt")
            plant(place.source, {**NEW, "neuf/c.txt": "c"})
            if not killed(place, call, number, BACKUP):
                break
            kills += 1
            copy = tree(place.copy)
            bad = [name for name in NEW if copy.get(name) not in (OLD[name], NEW[name])]
            # A certificate that still says "complete" stands for a copy that nothing has changed,
            # or for one that has everything.
            proven = b"etat=complete" in read(certificate(place.copy))
            good = copy in (OLD, tree(place.source)) if proven else not bad
            write(f"{place.source}/seul.txt", "seul")
            kept = restore(place)
            alone = os.path.exists(f"{place.source}/seul.txt")
            if not good or (not proven and (not alone or KEPT not in kept.all)):
                report.check(f"tuée au {call} {number}", False, f"{bad} {alone}\n{kept}")
            back_up(place)
            if marks(place.copy, "tmp") or tree(place.copy) != tree(place.source):
                report.check(f"reprise après {call} {number}", False, tree(place.copy))
    report.check(f"{kills} arrêts, rien de perdu", kills > 12, kills)


@needs(why_no_trace)
def a_restore_killed_anywhere(place, report):
    """Une restauration tuée à chaque appel qui change le disque : la sauvegarde n'y perd rien"""
    kills = 0
    for call in ("renameat", "renameat2", "unlinkat", "mkdirat", "fsync", "syncfs", "utimensat", "fchmod"):
        for number in range(1, 12):
            shutil.rmtree(place.copy, ignore_errors=True)
            shutil.rmtree(place.source)
            plant(place.source, OLD, OLDER)
            settle(place)
            back_up(place)
            shutil.rmtree(f"{place.source}/sous")
            plant(place.source, {"a.txt": "nouveau a", "en trop.txt": "x"})
            if not killed(place, call, number, RESTORE):
                break
            kills += 1
            whole(report, f"tuée au {call} {number} : fichiers entiers", place.source, OLD,
                  {"a.txt": "nouveau a", "en trop.txt": "x"})
            after = back_up(place)
            lost = [name for name in OLD if name not in tree(place.copy)]
            done = tree(place.source) == OLD
            # Killed before its first change, a restore has left what was there.
            untouched = "sous/b.txt" not in tree(place.source) and not marks(
                place.source, "restauration")
            if lost and not untouched:
                report.check(f"tuée au {call} {number} : la copie garde tout", done,
                             f"{lost} {after}")
    report.check(f"{kills} arrêts, rien de perdu", kills > 8, kills)


@needs(why_no_trace)
def killed_between_deletion_and_copy(place, report):
    """Tuée entre l'effacement et la copie : l'original reste la seule vérité"""
    settle(place)
    backed_up(place, report, {"vieux nom.txt": "précieux"})
    os.rename(f"{place.source}/vieux nom.txt", f"{place.source}/nouveau nom.txt")
    report.check("tuée après l'effacement", killed(place, "renameat2", 1, BACKUP))
    check(report, "restauration", restore(place), (0, 1), KEPT)
    report.equal("le fichier vit", read(f"{place.source}/nouveau nom.txt"), "précieux".encode())
    check(report, "sauvegarde", back_up(place), 0)
    holds(report, "elle rattrape tout", place.copy, tree(place.source))


@needs(why_no_trace)
def one_run_per_tree(place, report):
    """Sauvegarde et restauration en même temps : la seconde est refusée et le dit"""
    second = f"{place.root}/Deuxième disque"
    os.mkdir(second)
    busy = "une autre opération est en cours"
    for first, call, others in ((BACKUP, "renameat", (back_up, restore)),
                                (RESTORE, "renameat", (back_up, restore))):
        for other in others:
            shutil.rmtree(place.copy, ignore_errors=True)
            changed(place, report)
            if first is RESTORE:
                os.remove(f"{place.source}/sous/b.txt")
            before = tree(place.source), tree(place.copy)
            with Halted(place, report, call, 1, *first) as running:
                home = place.home
                elsewhere(place)
                settle(place)
                check(report, f"{first[0]} puis {other.__name__}", other(place), 1, busy)
                report.equal("rien n'a bougé", (tree(place.source), tree(place.copy)), before)
                place.home = home
                check(report, "la première finit", running.finish(), 0)


@needs(why_no_mount, why_no_trace)
def a_backup_onto_g_during_a_restore(place, report):
    """Une sauvegarde vers G: pendant une restauration depuis F: dans le même original : refusée"""
    with disk(place, "f") as f, disk(place, "g") as g:
        for point in (f, g):
            settle(place, (place.source, point))
            plant(place.source, OLD, OLDER)
            check(report, f"sauvegarde vers {point[-1]}", back_up(place), 0)
        shutil.rmtree(f"{place.source}/sous")
        write(f"{place.source}/a.txt", "nouveau a")
        settle(place, (place.source, f))
        with Halted(place, report, "renameat2", 1, *RESTORE) as running:
            home = place.home
            elsewhere(place)
            settle(place, (place.source, g))
            check(report, "vers G:", back_up(place), 1, "une autre opération est en cours")
            place.home = home
            running.kill()
        elsewhere(place)
        settle(place, (place.source, g))
        check(report, "vers G: après l'arrêt", back_up(place), 1, KEPT, "n'a pas tout remis")
        report.equal("G: a tout gardé", sorted(tree(f"{g}/Données")), sorted(OLD))
        settle(place, (place.source, f))
        check(report, "la restauration reprend", restore(place), 0)
        holds(report, "tout est revenu", place.source, OLD)
        settle(place, (place.source, g))
        outcome = back_up(place)
        check(report, "vers G: ensuite", outcome, 0)
        silent(report, "vers G: ensuite", outcome)


@needs(why_no_trace)
def two_backups_on_one_copy(place, report):
    """Deux ordinateurs sauvegardent vers une copie : le second attend son tour"""
    changed(place, report)
    with Halted(place, report, "unlinkat", 1, *BACKUP) as running:
        elsewhere(place)
        settle(place)
        before = tree(place.copy)
        check(report, "le second", back_up(place), 1, "une autre opération est en cours")
        holds(report, "il n'a rien changé", place.copy, before)
        check(report, "le premier", running.finish(), 0)
    holds(report, "la copie est celle du premier", place.copy, NEW)


@needs(why_no_trace)
def a_mark_that_cannot_be_written(place, report):
    """Une restauration qui ne peut rien noter : elle le dit, et restaure"""
    changed(place, report)
    outcome = faulty(place, ["fsync:error=EIO"], *RESTORE)
    check(report, "restauration", outcome, (0, 1), "Ne lancez aucune sauvegarde")
    whole(report, "fichiers entiers", place.source, OLD, NEW)


def a_differing_file_is_counted_not_deleted(place, report):
    """Ce qui diffère est remplacé, jamais effacé d'abord ; ce qui est parti est compté"""
    changed(place, report)
    outcome = back_up(place)
    check(report, "sauvegarde", outcome, 0, "La sauvegarde a effacé de la copie 1 fichier",
          "Effacé : ")
    report.check("un seul effacement est dit", outcome.all.count("Effacé : ") == 1, outcome)
    holds(report, "la copie suit", place.copy, NEW)
    report.check("le certificat est complet", b"etat=complete" in read(certificate(place.copy)))


SCENARIOS = (read_errors_leave_the_old_copy, write_errors_leave_the_old_copy,
             an_unflushed_copy_proves_nothing, an_unwritten_certificate_changes_nothing,
             a_full_disk_leaves_every_copy, a_full_original_keeps_its_files, a_stop_proves_nothing,
             a_backup_killed_anywhere, a_restore_killed_anywhere, killed_between_deletion_and_copy,
             one_run_per_tree, a_backup_onto_g_during_a_restore, two_backups_on_one_copy,
             a_mark_that_cannot_be_written, a_differing_file_is_counted_not_deleted)
