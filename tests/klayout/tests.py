# SPDX-License-Identifier: BSD-3-Clause
"""What `vireloce-kit export` writes, as KLayout sees it. Run by scripts/klayout-tests."""

import json
import os
import re
import sys
import unittest
from collections import Counter, defaultdict

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import pya

import kitfiles
from case import DEF, EXAMPLES, LEF, LIBRARY, MINDP, Case, imported, run, text_of, write
from layout import MASKS, METAL, NAME, OUTLINE, Layout, close_pairs, def_instances, def_metal, edges_of, read_def

WORK = os.environ["VIRELOCE_WORK"]
METAL_NAME = "metal1"
ANY_PIN = (".PIN", ".MASK1", ".MASK2", ".MASK3")


def union(boxes):
    return pya.Region([pya.Box(*box) for box in boxes]).merged()


class Checks:
    """What holds for every exported layout; the classes below say of which."""

    def test_every_component_is_an_instance_at_its_place(self):
        expected = {}
        for name in self.case.colors:
            _, _, x, y, _ = self.case.components[self.case.name_in_def(name)]
            expected[self.case.name_in_def(name)] = (x * self.case.per_dbu, y * self.case.per_dbu)
        found = {name: (x, y) for name, (_, x, y) in self.case.layout.instances().items() if name in expected}
        self.assertEqual(found, expected)

    def test_instances_of_a_structure_are_those_of_cell_solution_and_orientation(self):
        structures, users = {}, defaultdict(set)
        instances = self.case.layout.instances()
        for name, (cell, solution) in self.case.colors.items():
            original = self.case.name_in_def(name)
            key = (cell, solution, self.case.components[original][4])
            structure = instances[original][0].name
            self.assertEqual(structures.setdefault(key, structure), structure)
            users[structure].add(key)
            self.assertEqual(structure, f"{cell}_S{solution}_{key[2]}")
        self.assertTrue(all(len(keys) == 1 for keys in users.values()))

    def test_masks_have_the_metal_of_the_solutions(self):
        expected = defaultdict(Counter)
        for _, mask, box in self.case.metal():
            expected[mask][box] += 1
        for mask, layer in enumerate(MASKS):
            found = Counter(
                (p.bbox().left, p.bbox().bottom, p.bbox().right, p.bbox().top)
                for p in self.case.layout.region(layer).each()
                if p.is_box()
            )
            self.assertEqual(found, expected[mask])
            area = sum(
                (x2 - x1) * (y2 - y1) * count for (x1, y1, x2, y2), count in expected[mask].items()
            )
            self.assertEqual(self.case.layout.region(layer).area(), area)
            self.assertGreater(area, 0)

    def test_no_polygon_is_without_area(self):
        self.assertEqual(self.case.layout.polygons_without_area(), [])

    def test_markers_lie_on_the_metal_of_the_layout_under_its_name(self):
        database = pya.ReportDatabase("markers")
        database.load(self.case.markers())
        layout = self.case.layout
        self.assertEqual(database.top_cell_name, layout.top.name)
        sides = {str(edge) for _, _, box in layout.metal() for edge in edges_of(box)}
        pairs = 0
        for item in database.each_item():
            about_rails = database.category_by_id(item.category_id()).name() == "rail-conflict"  # a note
            for value in item.each_value():
                if value.is_edge_pair():
                    pairs += 0 if about_rails else 1
                    for edge in (value.edge_pair().first, value.edge_pair().second):
                        whole = edge.to_itype(layout.layout.dbu)
                        self.assertTrue({str(whole), str(whole.swapped_points())} & sides, str(edge))
        self.assertEqual(pairs > 0, self.planted)

    def test_spacing_errors_are_those_that_verify_lists(self):
        distance = MINDP * self.case.per_library
        metal = Counter(self.case.layout.metal()) - Counter(self.case.metal(only_rails=True))
        found = close_pairs(list(metal), distance)
        expected = self.case.verified_pairs()
        print(f"{self.id().split('.')[-2]}: {len(found)} pairs by the design rule check, {len(expected)} by verify")
        self.assertEqual(found, expected)
        self.assertEqual(bool(found), self.planted)


class PlacedGcd(Checks, unittest.TestCase):
    planted = False

    @classmethod
    def setUpClass(cls):
        folder = os.path.join(WORK, cls.__name__)
        cls.case = Case(folder, imported(folder, DEF, LEF), LIBRARY, DEF)
        cls.plant()
        cls.masks, cls.masked = cls.case.path("masks.lef"), cls.case.path("masked.def")
        cls.case.export("--lef", LEF, "--layer", METAL_NAME, "--lef-masks", cls.masks, "--def-masks", cls.masked)

    @classmethod
    def plant(cls):
        """Leaves the placement as it is."""

    def test_unit_is_that_of_the_def_file(self):
        self.assertAlmostEqual(self.case.layout.layout.dbu, 0.0005, places=12)

    def test_every_component_of_the_def_file_is_there_once(self):
        self.assertEqual(set(self.case.layout.instances()), set(self.case.components))

    def test_metal_is_that_of_the_exported_def_file_with_its_library(self):
        whole = read_def(self.case.path("new.def"), [LEF], self.case.layout.layout.dbu)
        self.assertEqual(
            len(def_instances(whole)), len(self.case.components)
        )
        difference = def_metal(whole, METAL_NAME, (".PIN", ".OBS")) ^ self.case.layout.region(METAL)
        self.assertEqual(difference.area(), 0)

    def test_masters_in_the_masked_def_file_are_those_of_the_solutions(self):
        whole = read_def(self.masked, [LEF, self.masks], self.case.layout.layout.dbu)
        found = Counter(inst.cell.name for inst in def_instances(whole))
        expected = Counter(f"{cell}_S{solution}" for cell, solution in self.case.colors.values())
        for name, (macro, *_) in self.case.components.items():
            if name not in self.case.colors:
                expected[macro] += 1
        self.assertEqual(found, expected)

    def test_masks_of_the_pins_in_the_masked_def_file_are_those_of_the_layout(self):
        whole = read_def(self.masked, [LEF, self.masks], self.case.layout.layout.dbu)
        for mask, layer in enumerate(MASKS):
            pins = def_metal(whole, METAL_NAME, (f".MASK{mask + 1}",))
            self.assertGreater(pins.area(), 0)
            self.assertEqual((pins - self.case.layout.region(layer)).area(), 0)
        difference = def_metal(whole, METAL_NAME, ANY_PIN + (".OBS",)) ^ self.case.layout.region(METAL)
        self.assertEqual(difference.area(), 0)

    def test_masters_have_the_metal_of_the_solutions(self):
        text = text_of(self.masks)
        macros = re.findall(r"^MACRO (\S+)$(.*?)^END \1$", text, re.MULTILINE | re.DOTALL)
        self.assertEqual(
            {name for name, _ in macros}, {f"{c}_S{s}" for c, s in self.case.colors.values()}
        )
        for name, body in macros:
            cell, solution = name.rsplit("_S", 1)
            _, _, shapes, solutions = self.case.cell(cell)
            found, expected = defaultdict(list), defaultdict(list)
            for mask, *corners in re.findall(r"RECT MASK (\d) (\S+) (\S+) (\S+) (\S+) ;", body):
                found[int(mask) - 1].append([round(float(value) * 1000) for value in corners])
            for shape, mask in enumerate(solutions[int(solution)]):
                expected[mask] += shapes[shape]
            self.assertNotIn("RECT 0", body)
            for mask in range(3):
                self.assertEqual((union(found[mask]) ^ union(expected[mask])).area(), 0, name)

    def test_layer_properties_name_the_layers_of_the_layout(self):
        view = pya.LayoutView()
        view.load_layer_props(self.case.path("new.lyp"))
        sources = {}
        iterator = view.begin_layers()
        while not iterator.at_end():
            sources[iterator.current().source] = iterator.current()
            iterator.next()
        self.assertEqual(
            set(sources), {f"{layer}/{kind}@1" for layer, kind in (METAL, OUTLINE, *MASKS)}
        )
        colours = {sources[f"{layer}/0@1"].fill_color & 0xFFFFFF for layer, _ in MASKS}
        self.assertEqual(colours, {0x0072B2, 0xD55E00, 0x009E73})


class GcdWithPlantedConflicts(PlacedGcd):
    planted = True

    @classmethod
    def plant(cls):
        assert cls.case.recolor(every=4) > 50
        assert cls.case.shift(every=9, sites=1) > 20


def scaled_def(text, units, site, height):
    """Rows, components and the members of nets of gcd, with other units of length and sizes of a site in DBU."""
    place = lambda x, y: f"{int(x) // 380 * site} {int(y) // 2800 * height}"
    rows = re.findall(r"^ROW .*$", text, re.MULTILINE)
    components = text[text.index("\nCOMPONENTS") + 1 : text.index("END COMPONENTS")]
    nets = re.findall(r"^    - \S+(?: \( \S+ \S+ \))+", text[text.index("\nNETS") :], re.MULTILINE)
    nets = [net for net in nets if "( PIN " not in net]
    lines = ["VERSION 5.8 ;", "DESIGN gcd ;", f"UNITS DISTANCE MICRONS {units} ;", "DIEAREA ( 0 0 ) ( 90000 90000 ) ;"]
    for row in rows:
        words = row.split()
        words[3:5] = place(*words[3:5]).split()
        words[-3] = str(site)
        lines.append(" ".join(words))
    lines.append(re.sub(r"\( (\d+) (\d+) \)", lambda m: f"( {place(m[1], m[2])} )", components) + "END COMPONENTS")
    lines += [f"NETS {len(nets)} ;", *(net + " ;" for net in nets), "END NETS", "END DESIGN", ""]
    return "\n".join(lines)


class UnitsOf100(Checks, unittest.TestCase):
    """gcd with other DBU."""

    planted = True
    UNITS = 100

    @classmethod
    def setUpClass(cls):
        folder = os.path.join(WORK, cls.__name__)
        os.makedirs(folder, exist_ok=True)
        text = scaled_def(text_of(DEF), cls.UNITS, 19 * cls.UNITS // 100, 14 * cls.UNITS // 10)
        original = write(os.path.join(folder, "units.def"), text)
        cls.case = Case(folder, imported(folder, original, LEF), LIBRARY, original)
        assert cls.case.recolor(every=4) > 50
        cls.case.export()

    def test_library_is_as_large_as_ever(self):
        box = self.case.layout.instances()["_345_"][0].dbbox(self.case.layout.layout.find_layer(*OUTLINE))
        cell = self.case.cell(self.case.colors["_345_"][0])
        self.assertAlmostEqual(box.width(), cell[0] / 1000)
        self.assertAlmostEqual(box.height(), cell[1] / 1000)


class UnitsOf1000(UnitsOf100):
    UNITS = 1000


class UnitsOf2000(UnitsOf100):
    UNITS = 2000


class UnitsOf4000(UnitsOf100):
    UNITS = 4000


class ScaledGcd(Checks, unittest.TestCase):
    """gcd at a site of 0.46 micrometres: no corner of the library is whole in the colour files' units. Nor is the
    metal of the LEF file there."""

    planted = True
    SITE, OLD_SITE = 460, 190

    @classmethod
    def files(cls, folder):
        """Writes the library and the design. Returns their paths."""
        os.makedirs(folder, exist_ok=True)
        return (write(os.path.join(folder, "scaled.lef"), cls.scaled_lef(text_of(LEF))),
                write(os.path.join(folder, "scaled.def"),
                      scaled_def(text_of(DEF), 1000, cls.SITE, cls.nanometres(1.4))))

    @classmethod
    def setUpClass(cls):
        folder = os.path.join(WORK, cls.__name__)
        cls.lef, original = cls.files(folder)
        colors = os.path.join(folder, "colors")
        run("color", "--lef", cls.lef, "--layer", METAL_NAME, "-o", colors, "--allow-conflicts",
            "--stitch-overlap", "20", "--force", statuses=(0, 1))
        for name in os.listdir(colors):
            if name.endswith(".metal"):
                os.remove(os.path.join(colors, name))
        cls.case = Case(folder, imported(folder, original, cls.lef), colors, original)
        assert cls.case.recolor(every=4) > 50
        cls.masks, cls.masked = cls.case.path("masks.lef"), cls.case.path("masked.def")
        cls.case.export(
            "--lef", cls.lef, "--layer", METAL_NAME, "--lef-masks", cls.masks, "--def-masks", cls.masked
        )

    @classmethod
    def nanometres(cls, micrometres):
        return round(float(micrometres) * 1000 * cls.SITE / cls.OLD_SITE)

    @classmethod
    def scaled_lef(cls, text):
        number = re.compile(r"-?\d+\.\d+|-?\b\d+\b(?= )")
        scale = lambda line: number.sub(lambda m: str(cls.nanometres(m[0]) / 1000), line)
        return "\n".join(
            scale(line) if line.split()[:1] in (["RECT"], ["SIZE"]) else line for line in text.split("\n")
        )

    def test_masters_keep_the_exact_metal_of_the_library(self):
        dbu = 0.001
        before = def_metal(read_def(self.case.path("new.def"), [self.lef], dbu), METAL_NAME, ANY_PIN + (".OBS",))
        whole = read_def(self.masked, [self.lef, self.masks], dbu)
        after = def_metal(whole, METAL_NAME, ANY_PIN + (".OBS",))
        self.assertGreater(before.area(), 0)
        self.assertEqual((before ^ after).area(), 0)

    def test_all_metal_of_the_masters_has_a_mask(self):
        self.assertEqual(re.findall(r"RECT [^M].*", text_of(self.masks)), [])


class ImportedCase(Case):
    """A generated design as an import would leave it: names of the DEF file that had to be changed, and
    components that lie the other way round than their rows."""

    def name_in_def(self, name):
        return f"blk/u[{name[1:]}]" if int(name[1:]) % 50 == 0 else name


class GeneratedWithSitesOf400(Checks, unittest.TestCase):
    """A site step that 190 does not divide, and mirrored cells, for which the placer does not provide."""

    planted = True
    flipped = ("u3", "u31", "u32", "u500")

    @classmethod
    def setUpClass(cls):
        folder = os.path.join(WORK, cls.__name__)
        os.makedirs(folder, exist_ok=True)
        base = os.path.join(folder, "in")
        run("gen", base, "--components", "1000", "--site-step", "400", "--force")
        original = os.path.join(folder, "in.def")
        cls.case = ImportedCase(folder, base, base + ".colors", original)
        text = re.sub(
            r"^- (u\d+) ", lambda m: f"- {cls.case.name_in_def(m[1])} ", text_of(base + ".place"), flags=re.MULTILINE
        )
        sections = re.compile(r"^(PROPERTYDEFINITIONS|BIGNODES).*?^END \1\n", re.MULTILINE | re.DOTALL)
        write(original, sections.sub("", text))
        renamed = [f"u{i} {cls.case.name_in_def(f'u{i}')}" for i in range(0, 1000, 50)]
        lines = ["VIRELOCE MAP 1", "DEF in.def", "HASH " + fnv(text_of(original)), "SITE 200000 1473500"]
        lines += [f"NAMES {len(renamed)}", *renamed, f"FLIPPED {len(cls.flipped)}", *cls.flipped, "END", ""]
        write(cls.case.path("out.map"), "\n".join(lines))
        cls.case.export()

    def test_flipped_components_lie_the_other_way_round_than_their_rows(self):
        rows = {y: orient for _, y, orient, _, _ in kitfiles.rows_of(text_of(self.case.original))}
        upside_down = 0
        for name, (_, _, _, y, orient) in self.case.placed.items():
            lies = self.case.components[self.case.name_in_def(name)][4] in ("FS", "S")
            self.assertEqual(lies, (rows[y] == "FS") != (name in self.flipped), name)
            mirrored = self.case.components[self.case.name_in_def(name)][4] in ("FN", "S")
            self.assertEqual(mirrored, orient == "FN", name)
            upside_down += lies
        self.assertGreater(upside_down, 0)

    def test_metal_is_in_whole_units(self):
        # A library unit is 400 / 190 DBU: 19 units to the DBU make it 40.
        self.assertAlmostEqual(self.case.layout.layout.dbu * 2000 * 19, 1, places=9)


def fnv(text):
    value = 0xCBF29CE484222325
    for byte in text.encode():
        value = (value ^ byte) * 0x100000001B3 % 2**64
    return f"{value:016x}"


class Orientations(unittest.TestCase):
    """Fixed components in all eight orientations, against KLayout's own reader of LEF and DEF."""

    def test_all_eight_are_those_of_the_def_file(self):
        folder = os.path.join(WORK, "orientations")
        os.makedirs(folder, exist_ok=True)
        path = lambda name: os.path.join(folder, name)
        lef = write(path("cells.lef"), """VERSION 5.8 ;
SITE core CLASS CORE ; SIZE 0.19 BY 1.4 ; END core
MACRO BLOCK
  CLASS BLOCK ; ORIGIN 0.1 0.2 ; SIZE 0.76 BY 1.4 ;
  PIN A DIRECTION INPUT ;
    PORT LAYER metal1 ; RECT -0.1 -0.2 0.2 0.0 ; POLYGON 0.3 0.3 0.3 1.0 0.5 1.0 0.5 0.6 0.4 0.3 ; END
  END A
  OBS LAYER metal1 ; RECT 0.5 0.9 0.6 1.1 ; END
END BLOCK
END LIBRARY
""")
        names = ["N", "S", "W", "E", "FN", "FS", "FW", "FE"]
        blocks = [f"- b{n} BLOCK + FIXED ( {5000 * i} 20000 ) {n} ;" for i, n in enumerate(names)]
        original = write(path("in.def"), "\n".join([
            "VERSION 5.8 ;", "DESIGN blocks ;", "UNITS DISTANCE MICRONS 2000 ;", "DIEAREA ( 0 0 ) ( 60000 60000 ) ;",
            "ROW r core 0 0 N DO 20 BY 1 STEP 380 0 ;", "COMPONENTS 9 ;", "- u INV_X1 + PLACED ( 0 0 ) N ;",
            *blocks, "END COMPONENTS", "END DESIGN", ""]))
        write(path("out.place"), "\n".join([
            "ROW r core 0 0 N DO 20 BY 1 STEP 380 0 ;", "COMPONENTS 1 ;", "- u INV_X1 + PLACED ( 0 0 ) N", " ;",
            "END COMPONENTS", ""]))
        write(path("out.json"), '{"schema":"vireloce-place","version":1,"placement":{},"options":{"cell_path":"%s"}}' % LIBRARY)
        masks = kitfiles.read_color(os.path.join(LIBRARY, "INV_X1.color"))[3][0]
        write(path("out.colors"), "\n".join([
            "VIRELOCE COLORS 1", "COMPONENTS 1", "u INV_X1 0 0 " + " ".join(map(str, masks)), "END", ""]))
        run("export", path("out.json"), "--def", original, "-o", path("new.def"), "--gds", path("new.gds"),
            "--lef", lef, "--lef", LEF, "--layer", "metal1", "--force")
        found = Layout(path("new.gds"))
        whole = read_def(original, [lef, LEF], found.layout.dbu)
        instances = found.instances()
        for inst in def_instances(whole):
            expected = def_metal(whole, "metal1", (".PIN", ".OBS"), inst.cell)
            expected.transform(inst.trans)
            cell, x, y = instances.pop(inst.property(NAME))
            drawn = found.region(METAL, cell).moved(x, y)
            self.assertGreater(drawn.area(), 0)
            self.assertEqual((drawn ^ expected).area(), 0, inst.property(NAME))
        self.assertEqual(instances, {})


class KitsOfRoundedLengths(unittest.TestCase):
    """Designs of libraries whose lengths are no whole units of the colour files: gcd, and others where they are."""

    DESIGNS = {
        "ihp130": (("tech.lef", "cells.lef"), "counter_board.def", "Metal1"),
        "sky130hd": (("tech.lef", "cells.lef"), "circuitops_riscv32i.def", "li1"),
        "asap7": (("tech.lef", "cells_28_R.lef", "cells_28_L.lef", "cells_28_SL.lef"),
                  "ispd26_aes_v2_blockages.def", "M1"),
    }

    def flow(self, kit):
        """Makes a design. Returns the base of its results, its LEF files and the layer."""
        if kit == "gcd":
            lef, original = ScaledGcd.files(os.path.join(WORK, "rounded"))
            return self.result(kit, [lef], original, METAL_NAME)
        lefs, original, layer = self.DESIGNS[kit]
        path = lambda name: os.path.join(EXAMPLES, "..", "..", "shared", "data", "designs", kit, name)
        if not os.path.exists(path(original)):
            self.skipTest("there is no ../shared/data/designs/" + kit)
        return self.result(kit, [path(lef) for lef in lefs], path(original), layer)

    def result(self, kit, lefs, original, layer):
        base = os.path.join(WORK, "rounded-" + kit)
        words = [word for lef in lefs for word in ("--lef", lef)]
        run("flow", *words, "--def", original, "--layer", layer, "--allow-conflicts", "--force", "-o", base,
            "--cache", os.path.join(WORK, "cache"))
        return base, lefs, layer

    def test_metal_is_that_of_the_exported_def_file_with_its_library(self):
        for kit in ("gcd", *self.DESIGNS):
            with self.subTest(kit):
                base, lefs, layer = self.flow(kit)
                layout = Layout(base + ".gds")
                whole = read_def(base + ".def", lefs, layout.layout.dbu)
                difference = def_metal(whole, layer, (".PIN", ".OBS")) ^ layout.region(METAL)
                self.assertEqual(difference.area(), 0)

    def test_spacing_errors_at_a_larger_distance_are_those_that_verify_lists(self):
        mindp = 260
        base, _, _ = self.flow("gcd")
        layout = Layout(base + ".gds")
        instances = layout.instances()
        rails = {}
        for cell in {cell.name: cell for cell, _, _ in instances.values()}.values():
            outline = layout.region(OUTLINE, cell).bbox()
            rails[cell.name] = pya.Region([
                polygon for polygon in layout.region(MASKS[0], cell).merged().each()
                if polygon.bbox().bottom <= outline.bottom or polygon.bbox().top >= outline.top])
        metal = []
        for name, mask, box in layout.metal():
            cell, x, y = instances[name]
            if mask or (pya.Region(pya.Box(*box)) & rails[cell.name].moved(x, y)).is_empty():
                metal.append((name, mask, box))
        text = text_of(base + ".place")
        unit = kitfiles.rows_of(text)[0][4] / int(re.search(r"MICRONS (\d+)", text)[1]) / layout.layout.dbu / kitfiles.SITE
        found = close_pairs(metal, round(mindp * unit))
        report = json.loads(run("verify", base + ".place", "--colors", base + ".colors", "--cell-path",
                                base + ".library", "--mindp", str(mindp), "--json", statuses=(0, 1)))
        expected = {
            tuple(sorted((finding["component"], finding["other"])))
            for finding in report["findings"]
            if finding["code"] in ("conflict", "row-conflict")
        }
        self.assertGreater(len(found), 0)
        self.assertEqual(found, expected)


if __name__ == "__main__":
    program = unittest.main(argv=["klayout-tests"], exit=False, verbosity=1)
    sys.exit(0 if program.result.wasSuccessful() else 1)
