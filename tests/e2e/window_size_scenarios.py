"""How the main window fits the screen: small screens, large texts, many lines, the user's own size."""

from harness import drive_path, write
from window_harness import comes

LONG = "une description qui ne finit jamais de dire ce que cette configuration contient " * 3

# Size of the screen in pixels, what the desktop makes larger, and pixels to one of the toolkit's.
SCREENS = (
    ("1024 x 768", (1024, 768), {}, 1),
    ("1366 x 768, texte à 150 %", (1366, 768), {"GDK_DPI_SCALE": "1.5"}, 1),
    ("1920 x 1080, densité de 200 %", (1920, 1080), {"GDK_SCALE": "2"}, 2),
)


def settings(place, rows):
    """A configuration with many lines, a long description and results."""
    lines = "".join(f"""Source{i}="{drive_path(place.source)}"
Destination{i}="{drive_path(place.destination)}"
Select{i}={int(i == 0)}
""" for i in range(rows))
    place.write_settings(f"""[Position]
RepertMax={rows}
[General]
Description="{LONG}"
LastSave=10/11/2026 20:12:01
LastSaveErr=12/11/2026 20:12:01
LastSaveNbErr=12
{lines}""")


def cut(program, width):
    """The controls that the right edge of the window cuts."""
    controls = [control for kind in ("button", "checkbox", "field", "link", "label")
                for control in program.main.find_all(kind)]
    return [(control.name, control.extents) for control in controls
            if control.extents[2] > 0 and control.extents[0] + control.extents[2] > width]


def fits(place, report):
    """La fenêtre tient dans l'écran ; les lignes défilent, les chemins et les textes rétrécissent"""
    write(f"{place.source}/a.txt", "a")
    for name, size, larger, scale in SCREENS:
        settings(place, 12)
        width, height = (edge // scale for edge in size)
        with place.screen.other(*size) as display:
            program = place.open(more={**larger, "DISPLAY": display})
            launch = program.main.find("button", "Lancer la Sauvegarde")
            comes(lambda: launch.extents[1] > 0)
            x, y, wide, high = program.main.children[0].extents
            report.check(f"{name} : elle tient", x >= 0 and x + wide <= width and
                         y >= 0 and y + high <= height, (x, y, wide, high))
            report.equal(f"{name} : rien n'est coupé à droite", cut(program, x + wide), [])
            bottom = launch.extents[1] + launch.extents[3]
            report.check(f"{name} : le bouton se voit", bottom <= y + high, launch.extents)
            seen = [number for number in range(1, 13)
                    if program.label("Source", number).extents[1] < launch.extents[1] - 10]
            report.check(f"{name} : trois lignes se voient, toutes défilent",
                         3 <= len(seen) < 12, seen)
            last = program.label("Source", 12)
            last.focus()
            report.check(f"{name} : la dernière vient sous les yeux", comes(
                lambda: y < last.extents[1] < launch.extents[1]), last.extents)
            report.check(f"{name} : la description se lit dans l'infobulle", any(
                LONG.strip() in label.description or LONG.strip() in label.name
                for label in program.main.find_all("label")))
            program.kill()


def empty_height(place, report):
    """Vide, la fenêtre n'est pas plus haute que remplie : les premiers pas prennent une place libre"""
    place.write_line()
    program = place.open()
    report.check("elle est là", comes(lambda: program.main.active))
    filled = program.main.children[0].extents[3]
    program.kill()
    place.write_settings("[General]\nModifie=1\n")
    program = place.open()
    report.check("vide, elle aussi", comes(lambda: program.main.active))
    report.check("les pas se lisent", "Première sauvegarde :" in program.main.labels())
    report.equal("et ne l'ont pas agrandie", program.main.children[0].extents[3], filled)


def size_kept(place, report):
    """Fermée et rouverte, la fenêtre a la taille que l'utilisateur lui a donnée"""
    place.write_line()
    program = place.open()
    report.equal("elle se ferme", program.close().status, 0)
    report.equal("sans lui, aucune taille n'est écrite", place.key("Width", "Position"), "")
    program = place.open()
    comes(lambda: program.main.active)
    before = program.main.extents
    place.screen.resize(program.window_id(), 1100, 780)
    report.check("elle a changé", comes(lambda: program.main.extents[2] > before[2] and
                                        program.main.extents[3] > before[3]),
                 program.main.extents)
    after = program.main.extents[2:]
    report.equal("elle se ferme encore", program.close().status, 0)
    report.equal("sa taille est écrite", [place.key(name, "Position")
                                          for name in ("Width", "Height")], ["16500", "11700"])
    program = place.open()
    report.check("elle revient aussi grande", comes(
        lambda: program.main.extents[2:] == after), program.main.extents)


SCENARIOS = (fits, empty_height, size_kept)
