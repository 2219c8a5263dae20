# SPDX-License-Identifier: BSD-3-Clause
"""A placed design, exported, with what its files say."""

import json
import math
import os
import subprocess

import kitfiles
from kitfiles import text_of
from layout import Layout

KIT = os.path.join(os.environ["VIRELOCE_BIN"], "vireloce-kit")
EXAMPLES = os.environ["VIRELOCE_EXAMPLES"]
LIBRARY = os.path.join(EXAMPLES, "nangate45_color")
DEF = os.path.join(EXAMPLES, "raw", "gcd_nangate45.def")
LEF = os.path.join(EXAMPLES, "raw", "Nangate45_stdcell.lef")
MINDP = 185


def run(*words, statuses=(0,)):
    done = subprocess.run([KIT, *words], capture_output=True, text=True)
    assert done.returncode in statuses, f"{words}: status {done.returncode}\n{done.stderr}"
    return done.stdout


def write(path, text):
    with open(path, "w", newline="") as file:
        file.write(text)
    return path


def imported(folder, original, lef):
    """Imports a design. Returns the base of its files."""
    os.makedirs(folder, exist_ok=True)
    base = os.path.join(folder, "in")
    run("import", "--def", original, "--lef", lef, "--layer", "metal1", "-o", base, "--force")
    return base


class Case:
    """Places a design in a folder of its own; plant() may then change the result before export()."""

    def __init__(self, folder, base, cells, original):
        os.makedirs(folder, exist_ok=True)
        self.folder, self.cells, self.original = folder, cells, original
        run("place", base, "--cell-path", cells, "-o", self.path("out"), "--rescue", "--quiet", "--force",
            statuses=(0, 1))
        self.library = {}

    def path(self, name):
        return os.path.join(self.folder, name)

    def cell(self, name):
        if name not in self.library:
            self.library[name] = kitfiles.read_color(os.path.join(self.cells, name + ".color"))
        return self.library[name]

    def export(self, *more):
        run("export", self.path("out.json"), "--def", self.original, "-o", self.path("new.def"),
            "--gds", self.path("new.gds"), "--force", *more)
        self.placed = kitfiles.components_of(text_of(self.path("out.place")))
        self.fixed = kitfiles.read_fixed(self.path("out.fixed"))
        self.colors = kitfiles.read_colors(self.path("out.colors")) | self.fixed
        self.components = kitfiles.components_of(text_of(self.path("new.def")))
        self.layout = Layout(self.path("new.gds"))
        step = kitfiles.rows_of(text_of(self.path("out.place")))[0][4]
        per_dbu = kitfiles.SITE // math.gcd(kitfiles.SITE, step)
        self.per_dbu = per_dbu
        self.per_library = step * per_dbu // kitfiles.SITE

    def name_in_def(self, name):
        return name

    def metal(self, only_rails=False):
        """Metal of all placed components in units of the layout, by their colours: (name in the DEF file, mask,
        box)."""
        found = []
        for name, (cell_name, solution) in self.colors.items():
            cell = width, height, shapes, solutions = self.cell(cell_name)
            _, _, x, y, orient = self.components[self.name_in_def(name)]
            for shape, mask in enumerate(solutions[solution]):
                if only_rails and not kitfiles.is_rail(cell, shape, mask):
                    continue
                for rect in shapes[shape]:
                    box = kitfiles.turned(rect, orient, width, height)
                    scaled = [value * self.per_library for value in box]
                    found.append((self.name_in_def(name), mask, (
                        scaled[0] + x * self.per_dbu, scaled[1] + y * self.per_dbu,
                        scaled[2] + x * self.per_dbu, scaled[3] + y * self.per_dbu)))
        return found

    def verified_pairs(self):
        """Pairs of components that verify has something against, with the flips of the exported file."""
        places = {}
        for name in self.colors:
            _, _, x, y, orient = self.components[self.name_in_def(name)]
            places[name] = (x, y, orient)
        text = kitfiles.with_places(text_of(self.path("out.place")), places)
        if self.fixed:
            write(self.path("true.fixed"), text_of(self.path("out.fixed")))
        report = json.loads(run(
            "verify", write(self.path("true.place"), text), "--colors", self.path("out.colors"),
            "--cell-path", self.cells, "--mindp", str(MINDP), "--json", statuses=(0, 1)))
        return {
            tuple(sorted((self.name_in_def(finding["component"]), self.name_in_def(finding["other"]))))
            for finding in report["findings"]
            if finding["code"] in ("conflict", "row-conflict")
        }

    def markers(self):
        """The report database that verify makes of the result. Returns its path."""
        path = self.path("out.lyrdb")
        run("verify", self.path("out.place"), "--colors", self.path("out.colors"), "--cell-path", self.cells,
            "--mindp", str(MINDP), "--lyrdb", path, statuses=(0, 1))
        return path

    def recolor(self, every):
        """Gives some components the next solution of their cells. Returns how many."""
        lines = text_of(self.path("out.colors")).split("\n")
        changed = 0
        for index in range(2, lines.index("END"), every):
            name, cell, solution = lines[index].split()[:3]
            words = text_of(os.path.join(self.cells, cell + ".color")).split()
            _, _, shapes, solutions = self.cell(cell)
            following = (int(solution) + 1) % len(solutions)
            per_solution = 1 + len(shapes)
            behind = words[len(words) - per_solution * (len(solutions) - following) :]
            lines[index] = " ".join([name, cell, str(following), *behind[:per_solution]])
            changed += following != int(solution)
        write(self.path("out.colors"), "\n".join(lines))
        return changed

    def shift(self, every, sites):
        """Moves some components to the left. Returns how many."""
        text = text_of(self.path("out.place"))
        components, rows = kitfiles.components_of(text), kitfiles.rows_of(text)
        left, step = rows[0][0], rows[0][4]
        places = {}
        for name in sorted(kitfiles.read_colors(self.path("out.colors")))[::every]:
            _, _, x, y, orient = components[name]
            if x - sites * step >= left:
                places[name] = (x - sites * step, y, orient)
        write(self.path("out.place"), kitfiles.with_places(text, places))
        return len(places)
