#!/usr/bin/env python3
"""Writes the guide as a text for Windows' own editor: make_text.py GUIDE.md GUIDE.txt

It knows what the guide uses: headings, tables, blocks of commands, lists, links, emphasis. Quotation
marks of code stay, since a command without them would run into the sentence around it."""
import pathlib
import re
import sys
import textwrap

WIDTH = 100


def plain(line):
    line = re.sub(r"\[([^\]]+)\]\([^)]*\)", r'"\1"', line)
    return line.replace("**", "")


def heading(line):
    marks, text = line.split(" ", 1)
    return [text, ("=" if len(marks) == 1 else "-") * len(text)] if len(marks) < 3 else [text + ":"]


def table(rows):
    """Columns under each other; the last one is wrapped."""
    cells = [[plain(cell.strip()) for cell in row.strip().strip("|").split("|")]
             for row in rows if not re.fullmatch(r"[|\- ]+", row)]
    widths = [max(map(len, column)) for column in list(zip(*cells))[:-1]]
    for row in cells:
        start = "  " + "".join(f"{cell:<{width}}  " for cell, width in zip(row, widths))
        yield from textwrap.wrap(row[-1], WIDTH, initial_indent=start,
                                 subsequent_indent=" " * len(start))


def text_of(markdown):
    lines, block, rows = [], False, []
    for line in markdown.splitlines() + [""]:
        if rows and not line.startswith("|"):
            lines += table(rows)
            rows = []
        if line.startswith("```"):
            block = not block
        elif block:
            lines.append(("    " + line).rstrip())
        elif line.startswith("|"):
            rows.append(line)
        elif line.startswith("#"):
            lines += heading(line)
        elif not line.startswith(("![", "<!-- ")):
            lines.append(plain(line))
    return re.sub(r"\n{3,}", "\n\n", "\n".join(lines))


source, target = map(pathlib.Path, sys.argv[1:])
target.write_bytes(text_of(source.read_text("utf-8")).replace("\n", "\r\n").encode("utf-8"))
