"""What a screen reader is told of every window: each control has a name of its own, and a label
stands for what it stands beside."""

import os

from harness import drive_path, write
from window_elements import atspi, forgiving
from window_harness import comes

# What a user works or reads; the inner parts of a control speak through it.
NAMED = ("push button", "toggle button", "check box", "radio button", "text", "entry", "combo box",
         "page tab", "table", "tree table", "list box", "progress bar", "link", "panel")


@forgiving(())
def targets(element):
    """What a label stands for."""
    found = []
    for relation in element.node.get_relation_set():
        if relation.get_relation_type() == atspi().RelationType.LABEL_FOR:
            found += [relation.get_target(i) for i in range(relation.get_n_targets())]
    return tuple(found)


def controls(window):
    """The controls that show, without the parts that those are made of and the panels, which have
    a name only when they are groups."""
    found = []
    pending = [child for child in window.children if child.showing]
    while pending:
        element = pending.pop(0)
        if element.role in NAMED and element.role != "panel":
            found.append(element)
        if element.role not in ("combo box", "table", "tree table", "list box", "link"):
            pending = [child for child in element.children if child.showing] + pending
    return found


def faults(window):
    """What is wrong with the names of a window."""
    shown = controls(window)
    wrong = [f"sans nom : {element} {element.extents}" for element in shown
             if not element.name.strip() and element.extents[2] > 1]
    names = [element.name for element in shown if element.name]
    wrong += [f"deux fois : {name}" for name in sorted(set(names)) if names.count(name) > 1]
    for label in window.find_all("label"):
        caption = label.text.rstrip(" :")
        for node in targets(label):
            x, y, wide, high = label.extents
            box = node.get_component_iface().get_extents(atspi().CoordType.SCREEN)
            beside = box.x >= x + wide and box.y < y + high and y < box.y + box.height
            if not beside or caption not in (node.get_name() or caption):
                wrong.append(f"l'étiquette {label.text!r} est celle de {node.get_name()!r}")
    return wrong


def plenty(place):
    """Settings with which every window has something to show."""
    write(f"{place.source}/a.txt", "neuf")
    write(f"{place.copy}/a.txt", "vieux")
    os.makedirs(f"{place.source}/Tmp")
    place.write_line(more=f"""Source1="{drive_path(place.root)}\\absent"
Destination1="{drive_path(place.destination)}"
RepExclu0_Mode=2
RepExclu0_Rep1=\\Tmp
AutoSave=1
AutoTime=19:30
LastSaveErr=12/11/2026 20:12:01
LastSaveNbErr=12
""")
    write(f"{place.home}/S_General.err", f"Erreur: 5 - Fichier: {drive_path(place.source)}\\a.txt\r\n")
    for sound in ("Ok", "Erreur"):
        write(f"{place.home}/{sound}.wav", "")


def visit(program, window, look):
    """Looks at a window and closes it."""
    look(window)
    title = window.name
    window.keys("Escape")
    # A tool tip that stands over the window may take the first one.
    if not comes(lambda: not window.showing, 10):
        window.keys("Escape")
    program.gone(title)


def dialogs(program, look):
    """Looks at every window that the main one opens."""
    program.label("Source", 1).press()
    for command, title in (("Description de la configuration", "Configuration : General"),
                           ("Éditer le chemin", "Répertoire source"),
                           ("Modification de toutes les destinations",
                            "Choisissez un lecteur pour toutes les destinations"),
                           ("Modifier le répertoire ou le fichier source",
                            "Sélectionnez le répertoire (ou le fichier) source:"),
                           ("Renommer la configuration", "Renommer la configuration"),
                           ("Dupliquer la configuration", "Dupliquer la configuration"),
                           ("Voir les erreurs", "Liste des dernières erreurs de sauvegarde"),
                           ("À propos de Coffrelune", "À propos de Coffrelune")):
        program.command(command)
        visit(program, program.window(title), look)
    program.command("Configurations et options")
    window = program.window("Configurations et options")
    window.find("button", "Ajouter").press()
    visit(program, program.window("Nouvelle configuration"), look)
    visit(program, window, look)
    program.exclusions(1).press()
    visit(program, program.window("Sous-répertoires à exclure"), look)
    program.command("Remise à zéro de la ligne")
    look(program.message().element)
    program.answer("Annuler")


def run_windows(program, look):
    """Looks at the windows of a backup that asks, and at what the main window says after it."""
    program.main.find("checkbox", "Ecrasement sans confirmation").press()
    program.launch("Sauvegarde")
    window = program.window("Confirmation du remplacement du fichier")
    look(window)
    look(program.window("Sauvegarde ..."))
    window.find("button", "Oui").press()
    look(program.message().element)
    program.answer("OK")
    program.wait(lambda: len(program.windows) == 1, "la fin")
    program.main.find("button", "Masquer")
    look(program.main)


def names(place, report):
    """Chaque fenêtre : chaque commande a un nom à elle, chaque étiquette est celle de son champ"""
    def check(window):
        report.equal(f"les noms de « {window.name} »", faults(window), [])

    program = place.open()
    check(program.main)  # with the first steps
    program.kill()
    plenty(place)
    program = place.open()
    for name in ("Restauration", "Comparaison", "Sauvegarde"):
        program.show_tab(name)
        check(program.main)
    dialogs(program, check)
    run_windows(program, check)


@forgiving(None)
def last_letter(label):
    """Where the text of a label ends on the screen."""
    face = label.node.get_text_iface()
    if face is None:
        return None
    count = atspi().Text.get_character_count(face)
    box = atspi().Text.get_range_extents(face, max(count - 1, 0), count, atspi().CoordType.SCREEN)
    return box.x + box.width


def cut(window):
    """What the edges of a dialog, or its own, cut."""
    frame = next((part for part in window.children if part.extents[2] > 0), window)
    left, top, wide, high = frame.extents
    beyond = [f"dépasse : {element} {element.extents}" for element in controls(window)
              if element.extents[2] > 1 and element.role not in ("link", "table", "tree table") and
              (element.extents[0] < left or element.extents[1] < top or
               element.extents[0] + element.extents[2] > left + wide or
               element.extents[1] + element.extents[3] > top + high)]
    return beyond + [f"coupée : {label.text!r}" for label in window.find_all("label")
                     if label.text and label.extents[2] > 1 and
                     (last_letter(label) or 0) > label.extents[0] + label.extents[2] + 1]


def large_text(place, report):
    """Texte à 150 % : aucune fenêtre ne coupe ce qu'elle montre"""
    def check(window):
        report.equal(f"« {window.name} » montre tout", cut(window), [])

    plenty(place)
    program = place.open(more={"GDK_DPI_SCALE": "1.5"})
    dialogs(program, check)
    run_windows(program, lambda window: window.role == "frame" or check(window))


SCENARIOS = (names, large_text)
