#!/usr/bin/env python3
"""Makes one HTML page of the manual, with its pictures beside it: what F1 opens, without a network.
It knows the Markdown that the manual uses, and stops at anything else that it would show wrongly.

Usage: make-manual.py MANUAL DIRECTORY
"""

import html
import os
import re
import shutil
import sys

STYLE = """
:root { color-scheme: light dark; }
body { font: 16px/1.5 system-ui, sans-serif; max-width: 52rem; margin: 2rem auto; padding: 0 1rem; }
h1, h2, h3 { line-height: 1.2; margin-top: 2rem; }
img { max-width: 100%; border: 1px solid #8888; }
table { border-collapse: collapse; margin: 1rem 0; }
th, td { border: 1px solid #8888; padding: .3rem .6rem; text-align: left; vertical-align: top; }
pre { overflow-x: auto; padding: .6rem; border: 1px solid #8888; }
code { font-family: ui-monospace, monospace; font-size: .92em; }
"""


def anchor(title):
    """The name of a heading, as the sites that show Markdown make it."""
    text = re.sub(r"[^\w\- ]", "", re.sub(r"[`*]", "", title).lower())
    return text.replace(" ", "-")


def inline(text):
    """The marks within a line; what stands between backquotes stays as it is."""
    parts = re.split(r"(`[^`]+`)", text)
    for index, part in enumerate(parts):
        if part.startswith("`") and part.endswith("`") and len(part) > 2:
            parts[index] = f"<code>{html.escape(part[1:-1], quote=False)}</code>"
            continue
        part = html.escape(part, quote=False)
        part = re.sub(r"!\[([^]]*)\]\(([^)]+)\)", r'<img src="\2" alt="\1">', part)
        part = re.sub(r"\[([^]]+)\]\(([^)]+)\)", r'<a href="\2">\1</a>', part)
        parts[index] = re.sub(r"\*\*([^*]+)\*\*", r"<strong>\1</strong>", part)
    return "".join(parts)


def table(lines):
    rows = [[cell.strip() for cell in line.strip().strip("|").split("|")] for line in lines]
    made = []
    for index, row in enumerate(rows):
        if index == 1:
            continue  # the line of dashes
        tag = "th" if index == 0 else "td"
        made.append("<tr>" + "".join(f"<{tag}>{inline(cell)}</{tag}>" for cell in row) + "</tr>")
    return "<table>\n" + "\n".join(made) + "\n</table>"


def items(lines, marker, tag):
    """A list; a line without its mark goes on with the one before."""
    found = []
    for line in lines:
        if re.match(marker, line):
            found.append(re.sub(marker, "", line))
        else:
            found[-1] += " " + line.strip()
    return f"<{tag}>\n" + "\n".join(f"<li>{inline(item)}</li>" for item in found) + f"\n</{tag}>"


def block(lines):
    """What stands between two empty lines."""
    first = lines[0]
    heading = re.match(r"(#{1,4}) (.*)", first)
    if heading:
        if len(lines) > 1:
            sys.exit(f"make-manual.py : une ligne vide manque après « {first} »")
        level = len(heading[1])
        return f'<h{level} id="{anchor(heading[2])}">{inline(heading[2])}</h{level}>'
    if first.startswith("|"):
        return table(lines)
    if all(line.startswith("    ") for line in lines):
        return "<pre>" + html.escape("\n".join(line[4:] for line in lines), quote=False) + "</pre>"
    if re.match(r"- ", first):
        return items(lines, r"- ", "ul")
    if re.match(r"\d+\. ", first):
        return items(lines, r"\d+\. ", "ol")
    if re.match(r"(>|```|\* )", first):
        sys.exit(f"make-manual.py : forme inconnue : « {first} »")
    return f"<p>{inline(' '.join(line.strip() for line in lines))}</p>"


def check(page, directory):
    """Every picture is there, and every link within the page leads somewhere."""
    names = set(re.findall(r' id="([^"]+)"', page))
    for target in re.findall(r'(?:href|src)="([^"]+)"', page):
        if target.startswith("#"):
            found = target[1:] in names
        else:
            found = target.startswith("https://") or os.path.isfile(os.path.join(directory, target))
        if not found:
            sys.exit(f"make-manual.py : « {target} » ne mène nulle part")


def main():
    manual, directory = sys.argv[1:]
    with open(manual, encoding="utf-8") as file:
        text = file.read()
    blocks = [part.split("\n") for part in re.split(r"\n\s*\n", text.strip("\n"))]
    title = re.match(r"# (.*)", text)[1]
    body = "\n".join(block(lines) for lines in blocks)
    os.makedirs(directory, exist_ok=True)
    source = os.path.dirname(manual)
    for picture in sorted(set(re.findall(r'<img src="([^"]+)"', body))):
        target = os.path.join(directory, picture)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copyfile(os.path.join(source, picture), target)
    check(body, directory)
    page = (f'<!DOCTYPE html>\n<html lang="fr">\n<head>\n<meta charset="utf-8">\n'
            f'<meta name="viewport" content="width=device-width">\n<title>{html.escape(title)}</title>\n'
            f"<style>{STYLE}</style>\n</head>\n<body>\n{body}\n</body>\n</html>\n")
    with open(os.path.join(directory, "manuel.html"), "w", encoding="utf-8", newline="\n") as file:
        file.write(page)


if __name__ == "__main__":
    main()
