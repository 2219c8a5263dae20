# SPDX-License-Identifier: BSD-3-Clause
"""The kit's files, read anew: nothing here is shared with the programs under test."""

import os
import re

SITE = 190  # width of a site in the colour files


def text_of(path):
    with open(path, newline="") as file:
        return file.read()


def read_color(path):
    """A colour file as (width, height, shapes, solutions); headers are passed over."""
    numbers = iter(int(word) for word in text_of(path).split())

    def take(count):
        return [next(numbers) for _ in range(count)]

    def rects(count):
        return [tuple(take(4)) for _ in range(count)]

    width, height = take(2)
    rects(next(numbers))
    shapes = [rects(next(numbers)) for _ in range(next(numbers))]
    solutions = []
    for _ in range(next(numbers)):
        next(numbers)  # stitches
        solutions.append(take(len(shapes)))
    return width, height, shapes, solutions


def read_colors(path):
    """Chosen colours by component: (cell, solution)."""
    lines = text_of(path).split("\n")
    words = [line.split() for line in lines[2 : lines.index("END")]]
    return {word[0]: (word[1], int(word[2])) for word in words}


def read_fixed(path):
    """Chosen colours of the cells that stay where they are, by component: (cell, solution)."""
    if not os.path.exists(path):
        return {}
    lines = text_of(path).split("\n")
    words = [line.split(" ", 5) for line in lines[2 : 2 + int(lines[1].split()[1])]]
    return {word[5]: (word[0], int(word[4])) for word in words}


COMPONENT = re.compile(
    r"^ *- (\S+) (\S+) .*?\+ (PLACED|FIXED) \( (-?\d+) (-?\d+) \) (\w+)", re.MULTILINE
)
ROW = re.compile(r"^ROW \S+ \S+ (-?\d+) (-?\d+) (\w+) DO (\d+) BY 1 STEP (\d+)", re.MULTILINE)


def components_of(text):
    """Components of a DEF file or a placement by name: (cell, status, x, y, orientation)."""
    section = text[text.index("\nCOMPONENTS") : text.index("END COMPONENTS")]
    return {
        name: (cell, status, int(x), int(y), orient)
        for name, cell, status, x, y, orient in COMPONENT.findall(section)
    }


def rows_of(text):
    """Rows of a DEF file or a placement: (x, y, orientation, sites, step)."""
    return [
        (int(x), int(y), orient, int(sites), int(step)) for x, y, orient, sites, step in ROW.findall(text)
    ]


def with_places(text, places):
    """A placement's text with some components somewhere else: name to (x, y, orientation)."""

    def moved(match):
        if match[1] not in places:
            return match[0]
        x, y, orient = places[match[1]]
        head = match[0][: match.start(4) - match.start()]
        return f"{head}{x} {y} ) {orient}"

    return COMPONENT.sub(moved, text)


def turned(rect, orient, width, height):
    """A rectangle of a cell that lies in an upright orientation."""
    x1, y1, x2, y2 = rect
    if orient in ("FN", "S"):
        x1, x2 = width - x2, width - x1
    if orient in ("FS", "S"):
        y1, y2 = height - y2, height - y1
    return x1, y1, x2, y2


def is_rail(cell, shape, mask):
    """Whether a shape is a power rail on its mask."""
    _, height, shapes, _ = cell
    # The cell's bottom is that of its lowest shape, as the placer moves it.
    return mask == 0 and any(rect[1] <= 0 or rect[3] >= height for rect in shapes[shape])
