"""Nothing is lost between lines, configurations, kinds of files and owners."""

import os
import shutil
import stat
import threading
import time

from harness import read, write
from loss_harness import (BACKUP, KEPT, OLDER, Halted, back_up, backed_up, check, elsewhere, holds,
                          killed, marks, needs, plant, restore, settle, tree, why_no_root,
                          why_no_trace)

FILES = {"a.txt": "a", "sous/b.txt": "b"}
LINES = 300
SECONDS_A_LINE = 0.01
GENEROUS = 20  # times that figure: a busy machine must not fail the test


def other_configurations(place, report):
    """Les copies d'autres réglages dans la même racine, au-dessous, au-dessus : rien d'effacé"""
    first, second = f"{place.root}/Un/Données", f"{place.root}/Deux/Données"
    inside = f"{place.root}/Trois"
    for number, source in enumerate((first, second, inside)):
        plant(source, {f"{number}.txt": str(number), "commun.txt": f"de {number}"}, OLDER)
    settle(place, (first, place.destination))
    check(report, "une copie", back_up(place), 0)
    home = place.home
    elsewhere(place)
    settle(place, (second, place.destination))
    check(report, "une autre au même endroit", back_up(place), 1, KEPT, "au même endroit")
    report.equal("le fichier de la première y est", tree(place.copy).get("0.txt"), "0")
    settle(place, (inside, place.copy))
    check(report, "une troisième au-dessous", back_up(place), (0, 1))
    holds(report, "elle est entière", f"{place.copy}/Trois", tree(inside))
    write(f"{place.copy}/Trois/en trop.txt", "x")
    check(report, "elle garde, au-dessous d'une autre", back_up(place), 1, KEPT,
          "est la copie d'une autre sauvegarde")
    settle(place, (f"{place.root}/Un", f"{place.root}/vide"), (inside, place.destination))
    place.home = home
    for path in marks(place.copy):
        if os.path.dirname(path) == place.copy and b"Deux" in read(path):
            os.remove(path)
    check(report, "la première, au-dessus", back_up(place), 0, "Effacé : ",
          "c'est la copie d'une autre sauvegarde")
    copy = tree(f"{place.copy}/Trois")
    report.equal("celle du dessous reste entière", {**copy, **tree(inside), "en trop.txt": "x"},
                 copy)


@needs(why_no_trace)
def interrupted_chain(place, report):
    """A vers F, F vers G : F inachevé n'efface rien de G, même dans la même opération"""
    disk_g = f"{place.root}/G"
    os.mkdir(disk_g)
    chain = (place.copy, disk_g)
    for together in (False, True):
        for directory in (place.copy, f"{disk_g}/Données", place.source):
            shutil.rmtree(directory, ignore_errors=True)
        settle(place)
        backed_up(place, report, {**FILES, "c.txt": "c"})
        settle(place, chain)
        check(report, "F vers G", back_up(place), 0)
        os.rename(f"{place.source}/a.txt", f"{place.source}/un autre nom.txt")
        settle(place)
        report.check("A vers F est tuée", killed(place, "renameat2", 1, BACKUP))
        report.check("F a perdu l'ancien nom", "a.txt" not in tree(place.copy))
        if together:
            settle(place, (place.source, place.destination), chain)
            check(report, "toutes deux", back_up(place), 1, KEPT, "copie inachevée")
        else:
            settle(place, chain)
            check(report, "F vers G", back_up(place), 1, KEPT, "copie inachevée")
        report.equal("G garde tout", tree(f"{disk_g}/Données").get("a.txt"), "a")
        settle(place, (place.source, place.destination), chain)
        check(report, "la chaîne reprend", [back_up(place), back_up(place)][-1], 0)
        holds(report, "G suit", f"{disk_g}/Données", tree(place.source))


def two_lines_one_copy(place, report):
    """Deux lignes dans une seule copie : rien d'effacé, et c'est dit"""
    first, second = f"{place.root}/Un/DCIM", f"{place.root}/Deux/DCIM"
    plant(first, {"1.jpg": "1"})
    plant(second, {"2.jpg": "2"})
    settle(place, (first, place.destination), (second, place.destination))
    for attempt in (1, 2):
        check(report, f"fois {attempt}", back_up(place), (0, 1), "ont la même copie",
              "une autre ligne y est copiée aussi")
        holds(report, f"fois {attempt} : les deux y sont", f"{place.destination}/DCIM",
              {"1.jpg": "1", "2.jpg": "2"})


def shared_copy_restored(place, report):
    """Deux originaux dans une seule copie : la restauration ne remplace pas l'un par l'autre"""
    first, second = f"{place.root}/Un/DCIM", f"{place.root}/Deux/DCIM"
    plant(first, {"1.jpg": "de un", "seul de un.jpg": "u"}, OLDER)
    plant(second, {"1.jpg": "de deux"}, 2 * OLDER)
    settle(place, (first, place.destination), (second, place.destination))
    check(report, "sauvegarde", back_up(place), (0, 1), "un seul y est gardé")
    os.remove(f"{first}/seul de un.jpg")
    check(report, "restauration", restore(place), 1, "1.jpg est conservé")
    report.equal("chacun garde le sien", (tree(first)["1.jpg"], tree(second)["1.jpg"]),
                 ("de un", "de deux"))
    report.equal("ce qui manque revient", tree(first).get("seul de un.jpg"), "u")


def copy_inside_its_source(place, report):
    """La copie dans la source : ni copiée dans elle-même, ni effacée par la restauration"""
    place.destination = f"{place.source}/sauvegardes"
    os.mkdir(place.destination)
    place.copy = f"{place.destination}/Données"
    settle(place)
    plant(place.source, FILES, OLDER)
    check(report, "sauvegarde", back_up(place), 0)
    check(report, "deuxième", back_up(place), 0)
    for home in (place.home, None):
        if home is None:
            elsewhere(place)
            settle(place)
        write(f"{place.source}/en trop.txt", "x")
        check(report, "restauration", restore(place), 0, "Effacé : ")
        holds(report, "la copie est entière", place.copy, {**FILES, **{
            name: "" for name in tree(place.copy) if name.endswith("/")}})
        copy = tree(place.source)
        report.equal("l'original aussi", {**copy, **FILES}, copy)


def settings_inside_the_copy(place, report):
    """Les réglages rangés dans la copie : ils y restent, et servent encore"""
    settle(place)
    backed_up(place, report, FILES)
    inside = f"{place.copy}/Coffrelune"
    shutil.move(place.home, inside)
    place.home = inside
    write(f"{place.copy}/en trop.txt", "x")
    for attempt in (1, 2):
        check(report, f"sauvegarde {attempt}", back_up(place), 0)
        report.check(f"{attempt} : les réglages sont là", os.path.exists(place.settings))
    report.check("ce qui est en trop est effacé", "en trop.txt" not in tree(place.copy))


def settings_inside_the_original(place, report):
    """Les réglages rangés dans l'original : la restauration ne les efface pas"""
    shutil.rmtree(place.home)
    settle_files = {**FILES}
    plant(place.source, settle_files, OLDER)
    place.home = f"{place.root}/dehors"
    os.mkdir(place.home)
    settle(place)
    check(report, "sauvegarde", back_up(place), 0)
    shutil.move(place.home, f"{place.source}/Coffrelune")
    place.home = f"{place.source}/Coffrelune"
    write(f"{place.source}/en trop.txt", "x")
    check(report, "restauration", restore(place), 0)
    report.check("les réglages sont là", os.path.exists(place.settings))
    report.check("ce qui est en trop est effacé", "en trop.txt" not in tree(place.source))


def file_and_directory_change_places(place, report):
    """Un fichier devient répertoire et l'inverse : SynchroCopie seul fait place, des deux côtés"""
    before = {"x": "fichier", "y/f.txt": "dans y", "y/z/g.txt": "plus bas"}
    after = {"x/f.txt": "dans x", "y": "fichier"}
    by_source = ("--source", place.source, "--destination", place.destination, "--ecraser")
    for first, second in ((before, after), (after, before)):
        shutil.rmtree(place.copy, ignore_errors=True)
        shutil.rmtree(place.source)
        settle(place)
        backed_up(place, report, first)
        shutil.rmtree(place.source)
        plant(place.source, second)
        check(report, "sans SynchroCopie", back_up(place, *by_source), 1, "est un fichier",
              "est un répertoire")
        holds(report, "la copie garde l'ancien", place.copy, first)
        holds(report, "l'original est intact", place.source, second)
        check(report, "restauration sans preuve", restore(place), 1, KEPT)
        holds(report, "l'original reste", place.source, second)
        check(report, "avec SynchroCopie, la marque retient", back_up(place), 1, KEPT)
        holds(report, "la copie garde encore l'ancien", place.copy, first)
        check(report, "source confirmée", back_up(place, "--confirmer-source"), 0)
        report.equal("la copie suit", {name: text for name, text in tree(place.copy).items()
                                       if not name.endswith("/")}, second)
        shutil.rmtree(place.source)
        plant(place.source, first)
        check(report, "restauration", restore(place), 0)
        report.equal("l'original revient", {name: text for name, text in tree(place.source).items()
                                            if not name.endswith("/")}, second)


@needs(why_no_trace)
def file_that_shrinks(place, report):
    """Un fichier qui raccourcit pendant sa lecture : jamais de copie à moitié"""
    settle(place)
    backed_up(place, report, {"gros.bin": "v" * 1000})
    old, shorter = b"v" * 1000, b"n" * (5 << 20)
    big = f"{place.source}/gros.bin"
    write(big, b"n" * (9 << 20))
    with Halted(place, report, "read", 17, *BACKUP, path=big) as running:
        os.truncate(big, len(shorter))
        outcome = running.finish()
    # Read again at once, it has its new length; else it is an error.
    found = read(f"{place.copy}/gros.bin")
    report.check("la copie est entière, l'ancienne ou la nouvelle",
                 found == (shorter if outcome.status == 0 else old), f"{len(found)} {outcome}")
    check(report, "la suivante", back_up(place), 0)
    report.check("elle copie tout", read(f"{place.copy}/gros.bin") == shorter)


def names_that_differ_in_case(place, report):
    """Des noms qui ne diffèrent que par la casse : gardés, effacés et restaurés un à un"""
    files = {"a.txt": "petit", "A.TXT": "grand", "Sous/x": "S", "sous/x": "s"}
    settle(place)
    backed_up(place, report, files)
    os.remove(f"{place.source}/A.TXT")
    shutil.rmtree(f"{place.source}/Sous")
    check(report, "restauration", restore(place), 0)
    holds(report, "tout est revenu", place.source, files)
    os.remove(f"{place.source}/A.TXT")
    check(report, "sauvegarde", back_up(place), 0)
    report.equal("l'autre garde son contenu", tree(place.copy).get("a.txt"), "petit")
    report.check("seul le disparu est effacé", "A.TXT" not in tree(place.copy))


def unreadable_directory(place, report):
    """Un répertoire illisible : il garde sa copie, il est nommé, et rien n'est prouvé"""
    settle(place)
    place.become_nobody()
    backed_up(place, report, FILES)
    os.chmod(f"{place.source}/sous", 0)
    check(report, "sauvegarde", back_up(place), 1, "sous")
    holds(report, "la copie a tout", place.copy, FILES)
    os.chmod(f"{place.source}/sous", 0o755)
    write(f"{place.source}/seul.txt", "seul")
    check(report, "restauration", restore(place), 1, KEPT, "n'a pas tout copié")
    report.equal("le fichier vivant reste", tree(place.source).get("seul.txt"), "seul")
    os.chmod(f"{place.copy}/sous", 0)
    check(report, "restauration d'une copie illisible", restore(place), 1, "sous")
    report.equal("l'original garde tout", {**tree(place.source), **FILES}, tree(place.source))
    os.chmod(f"{place.copy}/sous", 0o755)


def fifo_in_place_of_a_file(place, report):
    """Un FIFO à la place d'un fichier : le programme ne s'y arrête pas et ne le remplace pas"""
    settle(place)
    backed_up(place, report, FILES)
    os.remove(f"{place.source}/a.txt")
    os.mkfifo(f"{place.source}/a.txt")
    check(report, "restauration", restore(place), 1, "a.txt")
    report.check("le FIFO est là", stat.S_ISFIFO(os.lstat(f"{place.source}/a.txt").st_mode))
    outcome = back_up(place)
    check(report, "sauvegarde", outcome, (0, 1))
    report.check("la copie du fichier reste, ou son effacement est dit",
                 tree(place.copy).get("a.txt") == "a" or "Effacé : " in outcome.all, outcome)
    os.mkfifo(f"{place.copy}/tube")
    write(f"{place.source}/tube", "un fichier")
    check(report, "un FIFO dans la copie", back_up(place), 1, "tube")
    report.check("il y reste", stat.S_ISFIFO(os.lstat(f"{place.copy}/tube").st_mode))


def private_directories_stay_private(place, report):
    """Un répertoire privé : il l'est aussi dans la copie, à chaque instant"""
    for number in range(300):
        write(f"{place.source}/privé/d{number % 10}/f{number}.txt", "secret " * 200)
    for directory, _, _ in os.walk(f"{place.source}/privé"):
        os.chmod(directory, 0o700)
    os.chmod(place.source, 0o750)
    settle(place)
    open_ones, done = set(), threading.Event()

    def watch():
        while not done.is_set():
            for directory, _, _ in os.walk(place.copy):
                private = directory.startswith(f"{place.copy}/privé")
                try:
                    mode = os.stat(directory).st_mode & 0o777
                except OSError:
                    continue
                if mode & (0o077 if private else 0o007):
                    open_ones.add((directory, oct(mode)))

    watcher = threading.Thread(target=watch)
    watcher.start()
    for _ in range(3):
        shutil.rmtree(place.copy, ignore_errors=True)
        check(report, "sauvegarde", back_up(place), 0)
    done.set()
    watcher.join()
    report.equal("aucun n'a été ouvert aux autres", open_ones, set())
    report.equal("les droits sont ceux de l'original",
                 [oct(os.stat(path).st_mode & 0o777) for path in
                  (place.copy, f"{place.copy}/privé", f"{place.copy}/privé/d3")],
                 ["0o750", "0o700", "0o700"])


def write_protected_directories(place, report):
    """Des répertoires 0555, sans root : sauvegardés, tenus à jour et restaurés avec leurs droits"""
    settle(place)
    plant(place.source, {"figé/a.txt": "a", "figé/b.txt": "b", "figé/c/d.txt": "d"}, OLDER)
    place.become_nobody()
    frozen = ("figé/c", "figé")
    for name in frozen:
        os.chmod(f"{place.source}/{name}", 0o555)
    check(report, "sauvegarde", back_up(place), 0)
    modes = lambda root: [oct(os.stat(f"{root}/{name}").st_mode & 0o777) for name in frozen]
    report.equal("la copie a les droits", modes(place.copy), ["0o555", "0o555"])
    os.chmod(f"{place.source}/figé", 0o755)
    os.remove(f"{place.source}/figé/b.txt")
    write(f"{place.source}/figé/a.txt", "a nouveau")
    os.chmod(f"{place.source}/figé", 0o555)
    check(report, "la suivante", back_up(place), 0)
    holds(report, "la copie suit", place.copy, {"figé/a.txt": "a nouveau", "figé/c/d.txt": "d"})
    os.chmod(f"{place.source}/figé", 0o755)
    write(f"{place.source}/figé/en trop.txt", "x")
    os.remove(f"{place.source}/figé/a.txt")
    os.chmod(f"{place.source}/figé", 0o555)
    check(report, "restauration", restore(place), 0)
    holds(report, "tout est revenu", place.source, tree(place.copy))
    report.equal("avec ses droits", (modes(place.source), modes(place.copy)),
                 (["0o555", "0o555"], ["0o555", "0o555"]))


@needs(why_no_root)
def owners_come_back(place, report):
    """Une opération par root : les propriétaires et les droits vont et reviennent"""
    settle(place)
    plant(place.source, {"de lui/a.txt": "a", "de lui/b/c.txt": "c"}, OLDER)
    os.chmod(f"{place.source}/de lui/a.txt", 0o640)
    os.chmod(f"{place.source}/de lui/b", 0o2750)
    owned = ("de lui", "de lui/a.txt", "de lui/b", "de lui/b/c.txt")
    for name in owned:
        os.chown(f"{place.source}/{name}", 65534, 65534)
    os.chmod(f"{place.source}/de lui/b", 0o2750)
    rights = lambda root: [(one.st_uid, one.st_gid, oct(one.st_mode)) for one in
                           (os.stat(f"{root}/{name}") for name in owned)]
    expected = rights(place.source)
    check(report, "sauvegarde", back_up(place), 0)
    report.equal("la copie les a", rights(place.copy), expected)
    shutil.rmtree(f"{place.source}/de lui")
    check(report, "restauration", restore(place), 0)
    report.equal("l'original les retrouve", rights(place.source), expected)


def read_only_excess_is_told(place, report):
    """Un fichier excédentaire qui ne se laisse pas effacer : il reste, et c'est dit"""
    settle(place)
    backed_up(place, report, FILES)
    os.chmod(f"{place.copy}/a.txt", 0o444)
    os.remove(f"{place.source}/a.txt")
    outcome = back_up(place)
    check(report, "sauvegarde", outcome, (0, 1), "Non effacé : ")
    report.equal("il est là", tree(place.copy).get("a.txt"), "a")


def three_hundred_lines(place, report):
    """300 lignes : un centième de seconde chacune"""
    pairs = []
    for number in range(LINES):
        source = f"{place.root}/sources/s{number}"
        plant(source, {"a.txt": str(number)})
        pairs.append((source, place.destination))
    settle(place, *pairs, options=f"RepertMax={LINES}\n")
    figures = []
    for name in ("première", "deuxième"):
        start = time.monotonic()
        outcome = back_up(place)
        figures.append((time.monotonic() - start) / LINES)
        check(report, f"{name} : sauvegarde", outcome, 0)
        print(f"    {name} : {figures[-1] * 1000:.2f} ms la ligne")
    report.equal("chaque ligne a sa copie", len(os.listdir(place.destination)), LINES)
    report.check("moins d'un centième de seconde, largement compté",
                 max(figures) < SECONDS_A_LINE * GENEROUS, figures)


SCENARIOS = (other_configurations, interrupted_chain, two_lines_one_copy, shared_copy_restored,
             copy_inside_its_source, settings_inside_the_copy, settings_inside_the_original,
             file_and_directory_change_places, file_that_shrinks, names_that_differ_in_case,
             unreadable_directory, fifo_in_place_of_a_file, private_directories_stay_private,
             write_protected_directories, owners_come_back, read_only_excess_is_told,
             three_hundred_lines)
