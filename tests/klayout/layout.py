# SPDX-License-Identifier: BSD-3-Clause
"""A layout as KLayout reads it, and what its design rule checks say about masks."""

from collections import defaultdict

import pya

METAL, OUTLINE = (1, 0), (99, 0)
MASKS = ((100, 0), (101, 0), (102, 0))
NAME = 1  # property of instances


class Layout:
    """A GDSII file."""

    def __init__(self, path):
        self.layout = pya.Layout()
        self.layout.read(path)
        self.top = self.layout.top_cell()

    def region(self, layer, cell=None):
        """All shapes of a layer, as they were drawn."""
        index = self.layout.find_layer(*layer)
        if index is None:
            return pya.Region()
        region = pya.Region((cell or self.top).begin_shapes_rec(index))
        region.merged_semantics = False
        return region

    def instances(self):
        """Instances of the top cell by name: (cell, x, y)."""
        found = {}
        for inst in self.top.each_inst():
            assert not inst.is_complex() and inst.trans.rot == 0, "cells lie as they are drawn"
            name = inst.property(NAME)
            assert name not in found, name
            found[name] = (inst.cell, inst.trans.disp.x, inst.trans.disp.y)
        return found

    def polygons_without_area(self):
        """Shapes of any layer and cell: (cell, layer, shape)."""
        return [
            (cell.name, index, str(shape))
            for cell in self.layout.each_cell()
            for index in self.layout.layer_indexes()
            for shape in cell.shapes(index).each()
            if shape.area() == 0
        ]

    def metal(self):
        """Metal of all instances: (name, mask, box)."""
        found = []
        for name, (cell, x, y) in self.instances().items():
            for mask, layer in enumerate(MASKS):
                for polygon in self.region(layer, cell).each():
                    box = polygon.bbox()
                    found.append((name, mask, (box.left + x, box.bottom + y, box.right + x, box.top + y)))
        return found


def edges_of(box):
    return [edge for edge in pya.Polygon(pya.Box(*box)).each_edge()]


def close_pairs(metal, distance):
    """Pairs of components with metal of one mask closer than a distance, by a design rule check.

    metal: a list of (component, mask, box). Metal that touches counts as close; metal of one component never.
    """
    pairs = set()
    for mask in {mask for _, mask, _ in metal}:
        boxes = [(component, box) for component, other, box in metal if other == mask]
        pairs |= spaced_pairs(boxes, distance) | touching_pairs(boxes)
    return pairs


def pair(a, b):
    return (a, b) if a < b else (b, a)


def spaced_pairs(boxes, distance):
    owners = defaultdict(set)
    region = pya.Region()
    region.merged_semantics = False  # else an edge could belong to many components
    for component, box in boxes:
        region.insert(pya.Box(*box))
        for edge in edges_of(box):
            owners[str(edge)].add(component)
    whole_edges, shielded = True, False
    violations = region.space_check(
        distance, whole_edges, pya.Region.Euclidian, None, None, None, shielded
    )
    return {
        pair(a, b)
        for violation in violations.each()
        for a in owners[str(violation.first)]
        for b in owners[str(violation.second)]
        if a != b
    }


def touching_pairs(boxes):
    pairs = set()
    boxes = sorted(boxes, key=lambda entry: entry[1][0])
    for i, (a, first) in enumerate(boxes):
        for b, second in boxes[i + 1 :]:
            if second[0] > first[2]:
                break
            if a != b and pya.Box(*first).touches(pya.Box(*second)):
                pairs.add(pair(a, b))
    return pairs


def read_def(path, lefs, dbu):
    """The cells of a DEF file with their LEF masters, without wires; masks of pins are layers .MASK1 to 3."""
    options = pya.LoadLayoutOptions()
    config = options.lefdef_config
    config.dbu = dbu
    config.lef_files = lefs
    config.read_lef_with_def = False
    config.macro_resolution_mode = 1  # the geometry of the LEF files, although they name foreign cells
    config.produce_routing = False
    config.produce_special_routing = False
    config.produce_via_geometry = False
    config.produce_pins = False
    for mask in (1, 2, 3):
        config.set_lef_pins_suffix_per_mask(mask, f".MASK{mask}")
        config.set_lef_pins_datatype_per_mask(mask, 10 + mask)
    layout = pya.Layout()
    layout.read(path, options)
    return layout


def def_instances(layout):
    """Instances of components in a layout of read_def()."""
    return [inst for inst in layout.top_cell().each_inst() if inst.property(NAME) is not None]


def def_metal(layout, layer, endings, cell=None):
    """Metal of a layer's purposes in a layout of read_def()."""
    region = pya.Region()
    for index in layout.layer_indexes():
        if layout.get_info(index).name in [layer + ending for ending in endings]:
            region += pya.Region((cell or layout.top_cell()).begin_shapes_rec(index))
    return region.merged()
