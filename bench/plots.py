"""Plots as SVG, written by hand: bars with their spread, and lines over a scale of powers of ten."""

import math
from xml.sax.saxutils import escape

from tables import french

COLOURS = ("#1f5fa8", "#c2571a", "#3c8a4e", "#8a4ea0", "#777777")
LETTER = 7  # width of one, about


class Picture:
    def __init__(self, width, height, title):
        self.width = width
        self.height = height
        self.parts = [f'<rect width="{width}" height="{height}" fill="white"/>']
        self.text(12, 22, title, weight="bold")

    def text(self, x, y, words, anchor="start", weight="normal", colour="#222222"):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" '
                          f'font-weight="{weight}" fill="{colour}">{escape(words)}</text>')

    def line(self, x1, y1, x2, y2, colour="#222222", width=1.0):
        self.parts.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" '
                          f'stroke="{colour}" stroke-width="{width}"/>')

    def bar(self, x, y, width, height, colour):
        self.parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{max(width, 0.5):.1f}" '
                          f'height="{height:.1f}" fill="{colour}"/>')

    def dot(self, x, y, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.5" fill="{colour}"/>')

    def svg(self):
        return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {self.width} {self.height}" '
                f'width="{self.width}" height="{self.height}" font-family="sans-serif" '
                f'font-size="12">\n' + "\n".join(self.parts) + "\n</svg>\n")


def round_step(top):
    """A step of the scale that gives four to nine lines."""
    power = 10 ** math.floor(math.log10(top))
    return next(step for step in (power / 5, power / 2, power, power * 2) if top / step <= 9)


def bars(title, rows, mark=None):
    """`rows`: label, value, lowest, highest. `mark`: where a line stands across all of them."""
    left = 20 + LETTER * max(len(row[0]) for row in rows)
    width, room = left + 480, 400
    top = max([row[3] for row in rows] + [mark or 0]) * 1.05
    picture = Picture(width, 64 + 24 * len(rows), title)
    bottom = 40 + 24 * len(rows)
    step = round_step(top)
    for number in range(int(top / step) + 1):
        x = left + number * step / top * room
        picture.line(x, 34, x, bottom, "#dddddd")
        picture.text(x, bottom + 16, french(number * step, 0 if step >= 1 else 1), "middle")
    for number, (label, value, low, high) in enumerate(rows):
        y = 40 + 24 * number
        picture.text(left - 8, y + 12, label, "end")
        picture.bar(left, y, value / top * room, 16, COLOURS[0])
        if high > low:
            picture.line(left + low / top * room, y + 8, left + high / top * room, y + 8,
                         COLOURS[1], 2.0)
        picture.text(left + max(value, high) / top * room + 6, y + 12, french(value))
    if mark is not None:
        picture.line(left + mark / top * room, 34, left + mark / top * room, bottom, COLOURS[1])
    return picture.svg()


def growth(title, unit, lines):
    """`lines`: name to pairs of a number of files and a value."""
    points = [point for line in lines.values() for point in line]
    top = max(value for _, value in points) * 1.1
    low, high = (math.log10(pick(number for number, _ in points)) for pick in (min, max))
    span = max(high - low, 0.1)
    place = lambda number, value: (70 + (math.log10(number) - low) / span * 400,
                                   240 - value / top * 190)
    picture = Picture(720, 280, f"{title} ({unit})")
    step = round_step(top)
    for number in range(int(top / step) + 1):
        y = 240 - number * step / top * 190
        picture.line(70, y, 480, y, "#dddddd")
        picture.text(62, y + 4, french(number * step, 0 if step >= 1 else 1), "end")
    for number in sorted({number for number, _ in points}):
        picture.text(place(number, 0)[0], 258, f"{number:,}".replace(",", " "), "middle")
    for index, (name, line) in enumerate(lines.items()):
        colour = COLOURS[index % len(COLOURS)]
        line = [place(*point) for point in sorted(line)]
        for (x1, y1), (x2, y2) in zip(line, line[1:]):
            picture.line(x1, y1, x2, y2, colour, 2.0)
        for x, y in line:
            picture.dot(x, y, colour)
        picture.bar(500, 52 + 20 * index, 12, 12, colour)
        picture.text(518, 62 + 20 * index, name)
    return picture.svg()
