// SPDX-License-Identifier: BSD-3-Clause
// The page of `vireloce-kit view`. Everything it shows is in the page: it loads nothing.
//
// Lengths are DBU of the design, y upwards, unless a name ends in Px (pixels of the window, y downwards).
"use strict";
(() => {

// ---- Data ----------------------------------------------------------------------------------------------

const NONE = 65535; // no kind, no colour solution

const byId = (id) => document.getElementById(id);

/** The bytes of a base64 text. */
function bytesOf(text) {
  if (Uint8Array.fromBase64) {
    return Uint8Array.fromBase64(text);
  }
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; ++i) {
    bytes[i] = binary.charCodeAt(i);
  }
  return bytes;
}

/** The bytes of a data element, which is then dropped, since its text is large. */
function take(id) {
  const element = byId(id);
  const bytes = bytesOf(element.textContent);
  element.remove();
  return bytes;
}

const integers = (id) => new Int32Array(take(id).buffer);
const shorts = (id) => new Uint16Array(take(id).buffer);

const design = JSON.parse(byId("design").textContent);
const DBU_PER_MICRON = design.dbuPerMicron;
const kinds = design.kinds;
const cells = {
  x: integers("x"), y: integers("y"), kind: shorts("kind"), colouring: shorts("colouring"), turns: take("turns"),
};
const count = cells.x.length;
const nets = {begin: integers("netBegin"), members: integers("members")};
const conflicts = integers("conflictList");
const CONFLICT_SIZE = 6; // numbers per conflict

/** A placement of the cells: where they stand, and their index by rows. */
const after = {x: cells.x, y: cells.y, turnShift: 0, stripes: integers("stripes"), order: null, coloured: design.coloured,
  density: design.density};
const before = {x: integers("beforeX"), y: integers("beforeY"), turnShift: 2, stripes: integers("beforeStripes"),
  order: integers("beforeOrder"), coloured: false, density: design.densityBefore};

const names = new TextDecoder().decode(take("names"));
const nameBegin = new Int32Array(count + 1); // first character of each cell's name; a line end follows the name
for (let i = 0, at = 0; i < count; ++i) {
  at = names.indexOf("\n", at) + 1;
  nameBegin[i + 1] = at;
}
const nameOf = (cell) => names.slice(nameBegin[cell], nameBegin[cell + 1] - 1);

const kindWidth = Int32Array.from(kinds, (kind) => kind.width);
const widthOf = (cell) => cells.kind[cell] === NONE ? design.siteWidth : kindWidth[cells.kind[cell]];
const greatestWidth = kinds.reduce((most, kind) => Math.max(most, kind.width), design.siteWidth);
const kindName = (cell) => cells.kind[cell] === NONE ? "unknown cell" : kinds[cells.kind[cell]].name;

/** Stitches of a cell as its colour file counts them, 0 if its solution is unknown. */
function stitchesOf(cell) {
  return cells.colouring[cell] === NONE ? 0 : kinds[cells.kind[cell]].stitches[cells.colouring[cell]];
}

/** The nets of each cell: those of cell i are netsOf[netsBegin[i]] up to netsBegin[i + 1]. */
const netsBegin = new Int32Array(count + 1);
const netsOf = (() => {
  for (const member of nets.members) {
    if (member >= 0) {
      ++netsBegin[member + 1];
    }
  }
  for (let i = 0; i < count; ++i) {
    netsBegin[i + 1] += netsBegin[i];
  }
  const list = new Int32Array(netsBegin[count]);
  const next = netsBegin.slice();
  for (let net = 0; net + 1 < nets.begin.length; ++net) {
    for (let i = nets.begin[net]; i < nets.begin[net + 1]; ++i) {
      if (nets.members[i] >= 0) {
        list[next[nets.members[i]]++] = net;
      }
    }
  }
  return list;
})();

/** The nets of a cell, each once. */
const netsOfCell = (cell) => [...new Set(netsOf.subarray(netsBegin[cell], netsBegin[cell + 1]))];

const moved = (cell) => before.x[cell] !== after.x[cell] || before.y[cell] !== after.y[cell];

// ---- Finding cells by place ----------------------------------------------------------------------------

const [boundsXl, boundsYl, boundsXh, boundsYh] = design.bounds;
const numStripes = after.stripes.length - 1;
const stripeOf = (y) => Math.min(Math.max(Math.floor((y - boundsYl) / design.rowHeight), 0), numStripes - 1);
const cellAt = (placement, i) => placement.order ? placement.order[i] : i;

/** First index in a stripe, from begin to end, whose cell is not left of x. */
function lowerBound(placement, begin, end, x) {
  while (begin < end) {
    const middle = (begin + end) >> 1;
    if (placement.x[cellAt(placement, middle)] < x) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return begin;
}

/** Calls visit(begin, end) with the indices of the cells that may overlap a window, stripe by stripe. */
function visitStripes(placement, window, visit) {
  const last = stripeOf(window.yh);
  for (let stripe = stripeOf(window.yl - design.rowHeight); stripe <= last; ++stripe) {
    const end = placement.stripes[stripe + 1];
    const from = lowerBound(placement, placement.stripes[stripe], end, window.xl - greatestWidth);
    const to = lowerBound(placement, from, end, window.xh);
    if (from < to) {
      visit(from, to);
    }
  }
}

/** The cells that overlap a window, or null if there may be more than `most`. */
function cellsIn(placement, window, most) {
  let size = 0;
  visitStripes(placement, window, (from, to) => { size += to - from; });
  if (size > most) {
    return null;
  }
  const found = new Int32Array(size);
  size = 0;
  visitStripes(placement, window, (from, to) => {
    for (let i = from; i < to; ++i) {
      const cell = cellAt(placement, i);
      if (placement.x[cell] + widthOf(cell) > window.xl) {
        found[size++] = cell;
      }
    }
  });
  return found.subarray(0, size);
}

/** The cell at a point, -1 if there is none. */
function pick(x, y) {
  for (const cell of cellsIn(shown, {xl: x, xh: x + 1, yl: y, yh: y + 1}, count)) {
    if (shown.x[cell] <= x && shown.y[cell] <= y && y < shown.y[cell] + design.rowHeight) {
      return cell;
    }
  }
  return -1;
}

// ---- Colours and layers --------------------------------------------------------------------------------

// Masks, nets and marks: Okabe and Ito, "Color Universal Design", 2008.
const COLOUR = {
  masks: ["#0072B2", "#D55E00", "#009E73"], metal: "#7f858c", stitch: "#F0E442", conflict: "#000000", move: "#CC79A7",
  net: "#E69F00", cell: "#fdfdfb", cellBox: "#aeb8c2", cellEdge: "#6b7682", row: "#e6eaee", rowEdge: "#cfd5db",
  segment: "#8a97a5", ink: "#1f2933",
};
const RAMP = [[255, 255, 255], [140, 205, 240], [0, 114, 178], [0, 44, 77]]; // density 0 to 100 per cent

/** Red, green and blue of a density in per cent. */
function rampColour(share) {
  const place = Math.min(share, 100) / 100 * (RAMP.length - 1);
  const below = Math.min(Math.floor(place), RAMP.length - 2);
  return RAMP[below].map((low, i) => Math.round(low + (RAMP[below + 1][i] - low) * (place - below)));
}

const square = (style) => `<rect x="1" y="1" width="20" height="14" rx="2" ${style}/>`;

/** Layers in the order of the legend: symbol is drawn 22 by 16, absent says that there is nothing to show. */
const LAYERS = [
  {id: "rows", label: "Rows", on: true, symbol: square(`fill="${COLOUR.row}" stroke="${COLOUR.rowEdge}"`), size: design.rows.length},
  {id: "segments", label: "Segments", on: true, size: design.stretches.length / 4,
    symbol: `<path d="M5 2H1v12h4M17 2h4v12h-4" fill="none" stroke="${COLOUR.segment}" stroke-width="2"/>`},
  {id: "macros", label: "Macros", on: true, size: design.macros.length, absent: design.macros.length === 0,
    symbol: square('fill="#d3d8dd" stroke="#555"') + '<path d="M3 15L17 1M10 15L21 4M1 10L10 1" stroke="#8a929b"/>'},
  {id: "cells", label: "Cells", on: true, size: count, symbol: square(`fill="${COLOUR.cell}" stroke="${COLOUR.cellEdge}"`)},
  {id: "names", label: "Names", on: true, symbol: '<text x="3" y="13" font-size="13" font-weight="bold">Ab</text>'},
  {id: "mask0", label: "Mask 0", on: true, absent: !design.coloured, symbol: square(`fill="${COLOUR.masks[0]}"`)},
  {id: "mask1", label: "Mask 1", on: true, absent: !design.coloured, symbol: square(`fill="${COLOUR.masks[1]}"`)},
  {id: "mask2", label: "Mask 2", on: true, absent: !design.coloured, symbol: square(`fill="${COLOUR.masks[2]}"`)},
  {id: "metal", label: design.coloured ? "Metal without mask" : "Metal 1", on: true, absent: kinds.length === 0,
    symbol: square(`fill="${COLOUR.metal}"`)},
  {id: "stitches", label: "Stitches", on: true, absent: !design.coloured,
    symbol: `<path d="M11 2l6 6l-6 6l-6-6z" fill="${COLOUR.stitch}" stroke="#000"/>`},
  {id: "conflicts", label: "Conflicts", on: true, absent: !design.coloured, size: conflicts.length / CONFLICT_SIZE,
    symbol: '<circle cx="11" cy="8" r="6" fill="none" stroke="#000" stroke-width="2.4"/>'},
  {id: "displacement", label: "Displacement", on: true, absent: !design.moved,
    symbol: `<path d="M2 8h18m-6-5l6 5l-6 5" fill="none" stroke="${COLOUR.move}" stroke-width="2"/>`},
  {id: "pins", label: "Pins", on: true, size: design.pins.length, absent: design.pins.length === 0,
    symbol: '<path d="M11 3l5 9h-10z" fill="#1f2933"/>'},
  {id: "density", label: "Density", on: false, symbol: square('fill="#0072B2"')},
];
const on = Object.fromEntries(LAYERS.map((layer) => [layer.id, layer.on && !layer.absent]));

// ---- State ---------------------------------------------------------------------------------------------

let shown = after;     // the placement that is drawn
let selected = -1;     // cell
let hovered = -1;      // cell
const view = {x: 0, y: 0, scale: 1}; // the middle of the window, and pixels per DBU
const canvas = byId("base");
const overlay = byId("overlay");
const base = canvas.getContext("2d", {alpha: false});
const marks = overlay.getContext("2d");
let widthPx = 1;
let heightPx = 1;
let ratio = 1;         // pixels of the screen per pixel of the window

const toPxX = (x) => (x - view.x) * view.scale + widthPx / 2;
const toPxY = (y) => heightPx / 2 - (y - view.y) * view.scale;
const fromPxX = (px) => (px - widthPx / 2) / view.scale + view.x;
const fromPxY = (px) => (heightPx / 2 - px) / view.scale + view.y;
const windowOf = (left, top, width, height) =>
  ({xl: fromPxX(left), xh: fromPxX(left + width), yl: fromPxY(top + height), yh: fromPxY(top)});
const overlaps = (window, xl, yl, xh, yh) => xl < window.xh && xh > window.xl && yl < window.yh && yh > window.yl;

// ---- Drawing -------------------------------------------------------------------------------------------

const LEAST_ROW_PX = 2.2;    // height of a row from which cells are drawn
const OUTLINE_ROW_PX = 10;   // from which they have outlines
const METAL_ROW_PX = 20;     // from which their metal is drawn
const ARROW_ROW_PX = 14;     // from which displacements are drawn
const NAME_ROW_PX = 56;      // from which their names are drawn
const MOST_BOXES = 60000;    // cells drawn at a time
const MOST_METAL = 45000;    // rectangles of metal drawn at a time
const SQUARE_PX = 44;        // from afar, conflicts in a square of that side have one mark

const drawTimes = []; // of the last draws, milliseconds

// While the plan is moved, what was drawn is moved along, and only what comes into the window is drawn; when it
// rests, everything is drawn anew, for marks that cross the border.
let drawn = null;     // the view that the canvas shows, null if it has to be drawn as a whole
let restTimer = 0;
let pending = false;
const REST_MS = 150;
const MARK_PX = 40;   // reach of marks beyond the cells that they belong to

/** Draws before the window is shown next; all of it unless it has only been moved. */
function redraw(whole = true) {
  if (whole) {
    drawn = null;
  }
  if (!pending) {
    pending = true;
    requestAnimationFrame(() => { pending = false; draw(); });
  }
}

function draw() {
  const start = performance.now();
  base.setTransform(ratio, 0, 0, ratio, 0, 0);
  if (drawn === null || drawn.scale !== view.scale || !shift()) {
    drawPart(0, 0, widthPx, heightPx);
  } else {
    clearTimeout(restTimer);
    restTimer = setTimeout(() => { restTimer = 0; redraw(); }, REST_MS);
  }
  drawn = {...view};
  drawMarks();
  drawTimes.push(performance.now() - start);
  if (drawTimes.length > 500) {
    drawTimes.shift();
  }
}

/** Moves what is drawn to the view and draws the borders that have come in. @return false if that is no use */
function shift() {
  const dx = Math.round((drawn.x - view.x) * view.scale * ratio) / ratio;
  const dy = Math.round((view.y - drawn.y) * view.scale * ratio) / ratio;
  if (Math.abs(dx) > widthPx / 2 || Math.abs(dy) > heightPx / 2) {
    return false;
  }
  view.x = drawn.x - dx / view.scale; // on whole pixels of the screen
  view.y = drawn.y + dy / view.scale;
  base.drawImage(canvas, dx, dy, widthPx, heightPx);
  if (dx !== 0) {
    drawPart(dx > 0 ? 0 : widthPx + dx, 0, Math.abs(dx), heightPx);
  }
  if (dy !== 0) {
    drawPart(0, dy > 0 ? 0 : heightPx + dy, widthPx, Math.abs(dy));
  }
  return true;
}

/** Draws a rectangle of the window. */
function drawPart(left, top, width, height) {
  const rowPx = design.rowHeight * view.scale;
  const detailed = rowPx >= LEAST_ROW_PX && cellsIn(shown, windowOf(0, 0, widthPx, heightPx), MOST_BOXES) !== null;
  const part = windowOf(left - MARK_PX, top - MARK_PX, width + 2 * MARK_PX, height + 2 * MARK_PX);
  base.save();
  base.beginPath();
  base.rect(left, top, width, height);
  base.clip();
  base.fillStyle = "#ffffff";
  base.fillRect(left, top, width, height);
  drawRows(part, rowPx);
  if (on.density || (!detailed && on.cells)) {
    drawDensity(detailed && rowPx >= OUTLINE_ROW_PX ? 0.6 : 1);
  }
  drawSegments(part, rowPx);
  drawMacros(part);
  if (detailed) {
    drawCells(cellsIn(shown, part, count), rowPx);
  }
  drawPins(part, rowPx);
  drawConflicts(part, rowPx);
  base.restore();
  showHint(!detailed);
}

function rectOnPlan(context, xl, yl, xh, yh) {
  context.rect(toPxX(xl), toPxY(yh), (xh - xl) * view.scale, (yh - yl) * view.scale);
}

function drawRows(window, rowPx) {
  if (!on.rows) {
    return;
  }
  base.beginPath();
  for (const {box: [xl, yl, xh, yh]} of design.rows) {
    if (overlaps(window, xl, yl, xh, yh)) {
      rectOnPlan(base, xl, yl, xh, yh);
    }
  }
  base.fillStyle = COLOUR.row;
  base.fill();
  if (rowPx >= 6) {
    base.strokeStyle = COLOUR.rowEdge;
    base.lineWidth = 1;
    base.stroke();
  }
}

/** Brackets around the free stretches. */
function drawSegments(window, rowPx) {
  if (!on.segments || rowPx < 4) {
    return;
  }
  const tip = Math.min(rowPx / 4, 6);
  base.beginPath();
  for (let i = 0; i < design.stretches.length; i += 4) {
    const [xl, yl, xh, yh] = design.stretches.slice(i, i + 4);
    if (overlaps(window, xl, yl, xh, yh)) {
      bracket(toPxX(xl), toPxY(yl) - 1, toPxY(yh) + 1, tip);
      bracket(toPxX(xh), toPxY(yl) - 1, toPxY(yh) + 1, -tip);
    }
  }
  base.strokeStyle = COLOUR.segment;
  base.lineWidth = rowPx > 12 ? 2 : 1;
  base.stroke();
}

function bracket(x, bottom, top, tip) {
  base.moveTo(x + tip, bottom);
  base.lineTo(x, bottom);
  base.lineTo(x, top);
  base.lineTo(x + tip, top);
}

const hatch = (() => {
  const tile = document.createElement("canvas");
  tile.width = tile.height = 8;
  const context = tile.getContext("2d");
  context.fillStyle = "#d9dde2";
  context.fillRect(0, 0, 8, 8);
  context.strokeStyle = "#b3bac2";
  context.lineWidth = 1.5;
  context.beginPath();
  for (const shift of [-8, 0, 8]) {
    context.moveTo(shift - 1, 9);
    context.lineTo(shift + 9, -1);
  }
  context.stroke();
  return base.createPattern(tile, "repeat");
})();

function drawMacros(window) {
  if (!on.macros) {
    return;
  }
  base.strokeStyle = "#59636e";
  base.lineWidth = 1;
  for (const {name, box: [xl, yl, xh, yh]} of design.macros) {
    if (overlaps(window, xl, yl, xh, yh)) {
      base.beginPath();
      rectOnPlan(base, xl, yl, xh, yh);
      base.fillStyle = hatch;
      base.fill();
      base.stroke();
      if (on.names) {
        label(base, name, toPxX((xl + xh) / 2), toPxY((yl + yh) / 2), (xh - xl) * view.scale - 8, (yh - yl) * view.scale);
      }
    }
  }
}

/** Writes a text on a light strip if it fits into a width, shortened where it nearly does. */
function label(context, text, x, y, mostPx, tallPx, size = 12) {
  if (mostPx < 24 || tallPx < size + 4) {
    return;
  }
  context.font = `${size}px system-ui, "DejaVu Sans", sans-serif`;
  let short = text;
  while (context.measureText(short).width > mostPx && short.length > 7) {
    short = short.slice(0, short.endsWith("\u2026") ? -2 : -1) + "\u2026";
  }
  const width = context.measureText(short).width;
  if (width > mostPx) {
    return;
  }
  context.fillStyle = "#ffffffd9";
  context.fillRect(x - width / 2 - 2, y - size / 2 - 2, width + 4, size + 4);
  context.fillStyle = COLOUR.ink;
  context.textAlign = "center";
  context.textBaseline = "middle";
  context.fillText(short, x, y + 0.5);
}

// The heat map is an image of one pixel per bin.
const heatMaps = new Map();

function heatMapOf(grid) {
  if (!heatMaps.has(grid)) {
    const image = document.createElement("canvas");
    image.width = grid.columns;
    image.height = grid.lines;
    const context = image.getContext("2d");
    const pixels = context.createImageData(grid.columns, grid.lines);
    bytesOf(grid.shares).forEach((share, i) => {
      const line = grid.lines - 1 - Math.floor(i / grid.columns);
      const colour = share === 255 ? [0, 0, 0, 0] : [...rampColour(share), 255];
      pixels.data.set(colour, 4 * (line * grid.columns + i % grid.columns));
    });
    context.putImageData(pixels, 0, 0);
    heatMaps.set(grid, image);
  }
  return heatMaps.get(grid);
}

function drawDensity(opacity) {
  const grid = shown.density;
  const side = grid.side * view.scale;
  base.save();
  base.beginPath(); // the last bins reach beyond the design
  rectOnPlan(base, boundsXl, boundsYl, boundsXh, boundsYh);
  base.clip();
  base.globalAlpha = opacity;
  base.imageSmoothingEnabled = false;
  base.drawImage(heatMapOf(grid), toPxX(grid.x), toPxY(grid.y + grid.lines * grid.side), grid.columns * side, grid.lines * side);
  base.restore();
}

function metalIn(visible) {
  let size = 0;
  for (const cell of visible) {
    size += cells.kind[cell] === NONE ? 0 : kinds[cells.kind[cell]].metal.length / 5;
  }
  return size;
}

/** Whether the metal of the whole window is drawn, so that its parts are alike. */
function metalShown(rowPx) {
  return rowPx >= METAL_ROW_PX && metalIn(cellsIn(shown, windowOf(0, 0, widthPx, heightPx), count)) <= MOST_METAL;
}

function drawCells(visible, rowPx) {
  const withMetal = metalShown(rowPx);
  if (on.cells) {
    drawBoxes(visible, rowPx, withMetal);
  }
  if (withMetal) {
    drawMetal(visible);
  }
  if (on.names && rowPx >= NAME_ROW_PX) {
    drawNames(visible, rowPx);
  }
  if (on.stitches && shown.coloured) {
    drawStitches(visible, rowPx, withMetal);
  }
  if (on.displacement && rowPx >= ARROW_ROW_PX) {
    drawMoves(visible, rowPx);
  }
}

/** Cells as filled boxes with an edge: two filled rectangles are faster than a filled and a stroked one. */
function drawBoxes(visible, rowPx, withMetal) {
  const edge = rowPx >= OUTLINE_ROW_PX ? (rowPx > 30 ? 1 : 0.6) : 0;
  const gap = rowPx >= 4 ? 0.6 : 0; // keeps neighbours apart
  base.globalAlpha = on.density ? 0.45 : 1;
  for (const [colour, inset] of edge > 0 ? [[COLOUR.cellEdge, 0], [withMetal ? COLOUR.cell : COLOUR.cellBox, edge]]
    : [[COLOUR.cellBox, gap / 2]]) {
    base.fillStyle = colour;
    for (const cell of visible) {
      const width = widthOf(cell) * view.scale;
      base.fillRect(toPxX(shown.x[cell]) + inset, toPxY(shown.y[cell]) - rowPx + inset, Math.max(width - 2 * inset, 0.5), rowPx - 2 * inset);
    }
  }
  base.globalAlpha = 1;
}

// The metal of a kind in a solution by masks, -1 as the last: flat lists of corners.
const sortedMetal = new Map();

function metalOf(kind, colouring) {
  const key = kind * 65536 + colouring;
  if (!sortedMetal.has(key)) {
    const lists = [[], [], [], []];
    const {metal, masks} = kinds[kind];
    for (let i = 0; i < metal.length; i += 5) {
      const mask = colouring === NONE ? "-" : masks[colouring][metal[i + 4]];
      lists[mask >= "0" && mask <= "2" ? Number(mask) : 3].push(...metal.slice(i, i + 4));
    }
    sortedMetal.set(key, lists);
  }
  return sortedMetal.get(key);
}

function drawMetal(visible) {
  for (let mask = 0; mask < 4; ++mask) {
    if (!on[mask < 3 ? "mask" + mask : "metal"]) {
      continue;
    }
    base.fillStyle = mask < 3 ? COLOUR.masks[mask] : COLOUR.metal;
    base.globalAlpha = 0.9;
    for (const cell of visible) {
      if (cells.kind[cell] !== NONE) {
        fillMetal(cell, metalOf(cells.kind[cell], shown.coloured ? cells.colouring[cell] : NONE)[mask]);
      }
    }
  }
  base.globalAlpha = 1;
}

function fillMetal(cell, corners) {
  const x = toPxX(shown.x[cell]);
  const y = toPxY(shown.y[cell]);
  const {mirrored, flipped} = turnOf(cell);
  const width = widthOf(cell);
  const scale = view.scale;
  for (let i = 0; i < corners.length; i += 4) {
    const left = mirrored ? width - corners[i + 2] : corners[i];
    const top = flipped ? design.rowHeight - corners[i + 1] : corners[i + 3];
    base.fillRect(x + left * scale, y - top * scale, (corners[i + 2] - corners[i]) * scale, (corners[i + 3] - corners[i + 1]) * scale);
  }
}

function turnOf(cell) {
  const bits = cells.turns[cell] >> shown.turnShift;
  return {mirrored: (bits & 1) !== 0, flipped: (bits & 2) !== 0};
}

function drawStitches(visible, rowPx, exact) {
  const radius = Math.min(Math.max(rowPx / 14, 1.2), 7);
  base.beginPath();
  for (const cell of visible) {
    if (stitchesOf(cell) === 0) {
      continue;
    }
    if (exact) {
      addStitches(cell, radius);
    } else if (rowPx >= 5) {
      addDiamond(toPxX(shown.x[cell] + widthOf(cell) / 2), toPxY(shown.y[cell] + design.rowHeight / 2), Math.max(radius, 2));
    }
  }
  base.fillStyle = COLOUR.stitch;
  base.fill();
  base.strokeStyle = "#000";
  base.lineWidth = Math.min(rowPx / 40, 1);
  base.stroke();
}

function addStitches(cell, radius) {
  const {joints, masks} = kinds[cells.kind[cell]];
  const digits = masks[cells.colouring[cell]];
  const {mirrored, flipped} = turnOf(cell);
  for (let i = 0; i < joints.length; i += 6) {
    if (digits[joints[i]] !== digits[joints[i + 1]]) {
      const x = (joints[i + 2] + joints[i + 4]) / 2;
      const y = (joints[i + 3] + joints[i + 5]) / 2;
      addDiamond(toPxX(shown.x[cell] + (mirrored ? widthOf(cell) - x : x)), toPxY(shown.y[cell] + (flipped ? design.rowHeight - y : y)), radius);
    }
  }
}

function addDiamond(x, y, radius) {
  base.moveTo(x, y - radius);
  base.lineTo(x + radius, y);
  base.lineTo(x, y + radius);
  base.lineTo(x - radius, y);
  base.closePath();
}

function drawMoves(visible, rowPx) {
  base.beginPath();
  for (const cell of visible) {
    if (moved(cell)) {
      const dx = widthOf(cell) / 2;
      const dy = design.rowHeight * 0.28; // below the names
      addArrow(toPxX(before.x[cell] + dx), toPxY(before.y[cell] + dy), toPxX(after.x[cell] + dx), toPxY(after.y[cell] + dy), rowPx / 5);
    }
  }
  base.lineJoin = base.lineCap = "round";
  if (rowPx >= 2 * METAL_ROW_PX) { // a light edge, since metal lies below
    base.strokeStyle = "#ffffffc0";
    base.lineWidth = Math.min(rowPx / 12, 5);
    base.stroke();
  }
  base.strokeStyle = COLOUR.move;
  base.lineWidth = Math.min(Math.max(rowPx / 25, 1.2), 3);
  base.stroke();
  base.lineJoin = "miter";
  base.lineCap = "butt";
}

function addArrow(x1, y1, x2, y2, most) {
  const length = Math.hypot(x2 - x1, y2 - y1);
  if (length < 1) {
    return;
  }
  const head = Math.min(length / 2, most, 9);
  const ux = (x2 - x1) / length * head;
  const uy = (y2 - y1) / length * head;
  base.moveTo(x1, y1);
  base.lineTo(x2, y2);
  base.moveTo(x2 - ux - uy * 0.6, y2 - uy + ux * 0.6);
  base.lineTo(x2, y2);
  base.lineTo(x2 - ux + uy * 0.6, y2 - uy - ux * 0.6);
}

function drawNames(visible, rowPx) {
  for (const cell of visible) {
    const x = toPxX(shown.x[cell] + widthOf(cell) / 2);
    const middle = toPxY(shown.y[cell] + design.rowHeight * 0.62);
    const room = widthOf(cell) * view.scale - 6;
    const size = rowPx >= 110 ? 13 : 10;
    label(base, nameOf(cell), x, middle - (rowPx >= 90 ? size * 0.7 : 0), room, rowPx, size);
    if (rowPx >= 90) {
      label(base, kindName(cell), x, middle + size * 0.9, room, rowPx, size - 2);
    }
  }
}

const conflictX = (i) => (conflicts[i + 2] + conflicts[i + 4]) / 2;
const conflictY = (i) => (conflicts[i + 3] + conflicts[i + 5]) / 2;

/** Circles; from afar one mark for those that are close together. */
function drawConflicts(window, rowPx) {
  if (!on.conflicts || shown !== after) {
    return;
  }
  if (rowPx < OUTLINE_ROW_PX) {
    for (const {x, y, size} of conflictMarks()) {
      if (overlaps(window, x, y, x, y)) {
        drawStamp(discOf(size), x, y);
      }
    }
    return;
  }
  const ring = ringOf(Math.round(Math.min(rowPx / 5, 16)), rowPx >= METAL_ROW_PX ? 2.5 : 1.5);
  for (let i = 0; i < conflicts.length; i += CONFLICT_SIZE) {
    const x = conflictX(i);
    const y = conflictY(i);
    if (overlaps(window, x, y, x, y)) {
      drawStamp(ring, x, y);
    }
  }
}

/** Draws a picture about a point, on whole pixels of the screen, where it stays sharp and is fast to draw. */
function drawStamp(stamp, x, y) {
  const size = stamp.width / ratio;
  const whole = (px) => Math.round((px - size / 2) * ratio) / ratio;
  base.drawImage(stamp, whole(toPxX(x)), whole(toPxY(y)), size, size);
}

// Squares lie fast on the plan, so that moving it neither shifts nor splits a mark.
let marksMade = {scale: 0, marks: []};

/** The marks from afar: a mean place and the number of conflicts for each square that has some. */
function conflictMarks() {
  if (marksMade.scale !== view.scale) {
    const side = SQUARE_PX / view.scale;
    const squares = new Map();
    for (let i = 0; i < conflicts.length; i += CONFLICT_SIZE) {
      const key = Math.floor((conflictY(i) - boundsYl) / side) * 2 ** 26 + Math.floor((conflictX(i) - boundsXl) / side);
      const mark = squares.get(key) ?? {x: 0, y: 0, size: 0};
      const size = mark.size + 1;
      squares.set(key, {x: mark.x + (conflictX(i) - mark.x) / size, y: mark.y + (conflictY(i) - mark.y) / size, size});
    }
    marksMade = {scale: view.scale, marks: [...squares.values()]};
  }
  return marksMade.marks;
}

const discs = new Map();

/** The picture of a disc with a light edge, and a number on it if that is more than one. */
function discOf(size) {
  const text = size === 1 ? "" : size < 1000 ? String(size) : `${Math.floor(size / 1000)}k`;
  const key = `${text} ${ratio}`;
  if (!discs.has(key)) {
    const radius = text === "" ? 4 : 5 + 3 * text.length;
    const image = document.createElement("canvas");
    image.width = image.height = Math.ceil(2 * (radius + 2) * ratio);
    const context = image.getContext("2d");
    const middle = image.width / ratio / 2;
    context.scale(ratio, ratio);
    for (const [colour, reach] of [["#fff", radius + 1.5], [COLOUR.conflict, radius]]) {
      context.fillStyle = colour;
      context.beginPath();
      context.arc(middle, middle, reach, 0, 2 * Math.PI);
      context.fill();
    }
    context.fillStyle = "#fff";
    context.font = "10px system-ui, \"DejaVu Sans\", sans-serif";
    context.textAlign = "center";
    context.textBaseline = "middle";
    context.fillText(text, middle, middle + 0.5);
    discs.set(key, image);
  }
  return discs.get(key);
}

const rings = new Map();

/** The picture of a ring with a light edge. */
function ringOf(radius, width) {
  const key = `${radius} ${width} ${ratio}`;
  if (!rings.has(key)) {
    const image = document.createElement("canvas");
    image.width = image.height = Math.ceil(2 * (radius + width + 2) * ratio);
    const context = image.getContext("2d");
    context.scale(ratio, ratio);
    context.arc(image.width / ratio / 2, image.width / ratio / 2, radius, 0, 2 * Math.PI);
    for (const [colour, line] of [["#fff", 2 * width], [COLOUR.conflict, width]]) {
      context.strokeStyle = colour;
      context.lineWidth = line;
      context.stroke();
    }
    rings.set(key, image);
  }
  return rings.get(key);
}

function drawPins(window, rowPx) {
  if (!on.pins) {
    return;
  }
  const radius = Math.min(Math.max(rowPx / 8, 1.5), 6);
  for (const {name, x, y} of design.pins) {
    if (overlaps(window, x, y, x, y)) {
      drawPin(name, toPxX(x), toPxY(y), radius, rowPx);
    }
  }
}

function drawPin(name, x, y, radius, rowPx) {
  base.fillStyle = COLOUR.ink;
  base.beginPath();
  base.moveTo(x, y - radius);
  base.lineTo(x + radius, y + radius * 0.8);
  base.lineTo(x - radius, y + radius * 0.8);
  base.fill();
  if (on.names && rowPx >= NAME_ROW_PX) {
    label(base, name, x, y + radius + 10, 140, 20, 10);
  }
}

function showHint(overview) {
  byId("hint").hidden = !(overview && on.cells && count > 0);
  byId("hint").textContent = "Overview by density: zoom in for the cells";
}

// ---- Overlay: scale bar, the cell of interest, its nets ------------------------------------------------

const MOST_LINES = 300; // of a net: a wider one shows its members only

function drawMarks() {
  marks.setTransform(ratio, 0, 0, ratio, 0, 0);
  marks.clearRect(0, 0, widthPx, heightPx);
  const cell = hovered >= 0 ? hovered : selected;
  if (cell >= 0) {
    drawNetsOf(cell);
  }
  for (const focus of new Set([selected, hovered])) {
    if (focus >= 0) {
      outline(focus, COLOUR.ink, 2.5);
    }
  }
  drawScaleBar();
}

function outline(cell, colour, width) {
  marks.strokeStyle = colour;
  marks.lineWidth = width;
  marks.strokeRect(toPxX(shown.x[cell]), toPxY(shown.y[cell] + design.rowHeight), Math.max(widthOf(cell) * view.scale, 2),
    Math.max(design.rowHeight * view.scale, 2));
}

/** The middle of a member of a net, in pixels. */
function middleOf(member) {
  if (member < 0) {
    const pin = design.pins[-1 - member];
    return [toPxX(pin.x), toPxY(pin.y)];
  }
  return [toPxX(shown.x[member] + widthOf(member) / 2), toPxY(shown.y[member] + design.rowHeight / 2)];
}

function drawNetsOf(cell) {
  const members = new Set();
  const [x, y] = middleOf(cell);
  marks.beginPath();
  for (const net of netsOfCell(cell)) {
    const list = nets.members.subarray(nets.begin[net], nets.begin[net + 1]);
    for (const member of list) {
      members.add(member);
      if (list.length <= MOST_LINES && member !== cell) {
        marks.moveTo(x, y);
        marks.lineTo(...middleOf(member));
      }
    }
  }
  for (const [colour, width] of [["#ffffffcc", 4], [COLOUR.net, 2]]) {
    marks.strokeStyle = colour;
    marks.lineWidth = width;
    marks.stroke();
  }
  for (const member of members) {
    if (member >= 0) {
      outline(member, COLOUR.net, 3);
    } else {
      marks.beginPath();
      marks.arc(...middleOf(member), 7, 0, 2 * Math.PI);
      marks.lineWidth = 3;
      marks.stroke();
    }
  }
}

function drawScaleBar() {
  const room = Math.min(160, widthPx / 3) / view.scale / DBU_PER_MICRON; // micrometres
  const power = 10 ** Math.floor(Math.log10(room));
  const microns = [5, 2, 1].map((factor) => factor * power).find((length) => length <= room) ?? power;
  const length = microns * DBU_PER_MICRON * view.scale;
  const text = `${Number(microns.toPrecision(3))} \u00b5m`;
  marks.fillStyle = "#ffffffe0";
  marks.fillRect(10, heightPx - 38, length + 16, 30);
  marks.fillStyle = COLOUR.ink;
  marks.fillRect(18, heightPx - 18, length, 4);
  marks.font = "12px system-ui, \"DejaVu Sans\", sans-serif";
  marks.textAlign = "left";
  marks.textBaseline = "alphabetic";
  marks.fillText(text, 18, heightPx - 23);
}

// ---- Moving about --------------------------------------------------------------------------------------

function limitView() {
  const least = 0.5 * Math.min(widthPx / (boundsXh - boundsXl), heightPx / (boundsYh - boundsYl));
  view.scale = Math.min(Math.max(view.scale, least), 2000 / design.rowHeight);
  view.x = Math.min(Math.max(view.x, boundsXl), boundsXh);
  view.y = Math.min(Math.max(view.y, boundsYl), boundsYh);
  byId("level").textContent = `row height ${(design.rowHeight * view.scale).toPrecision(3)} px`;
  redraw(/*whole=*/false);
}

function fit() {
  const MARGIN_PX = 24;
  view.x = (boundsXl + boundsXh) / 2;
  view.y = (boundsYl + boundsYh) / 2;
  view.scale = Math.min(Math.max(widthPx - 2 * MARGIN_PX, 50) / (boundsXh - boundsXl),
    Math.max(heightPx - 2 * MARGIN_PX, 50) / (boundsYh - boundsYl));
  limitView();
}

/** Zooms about a point of the window, which keeps its place. */
function zoom(factor, px = widthPx / 2, py = heightPx / 2) {
  const x = fromPxX(px);
  const y = fromPxY(py);
  view.scale *= factor;
  limitView();
  view.x += x - fromPxX(px);
  view.y += y - fromPxY(py);
  limitView();
}

function pan(dxPx, dyPx) {
  view.x -= dxPx / view.scale;
  view.y += dyPx / view.scale;
  limitView();
}

/** Brings a box into the middle, its row at least `leastPx` high. */
function show(x, y, leastPx = 90) {
  view.x = x;
  view.y = y;
  view.scale = Math.max(view.scale, leastPx / design.rowHeight);
  limitView();
}

function resize() {
  const plan = byId("plan");
  const first = widthPx === 1;
  widthPx = Math.max(plan.clientWidth, 1);
  heightPx = Math.max(plan.clientHeight, 1);
  ratio = Math.min(devicePixelRatio || 1, 2);
  for (const element of [canvas, overlay]) {
    element.width = Math.round(widthPx * ratio);
    element.height = Math.round(heightPx * ratio);
  }
  if (first) {
    fit();
  }
  drawn = null;
  draw(); // at once: a canvas of a new size is empty
}

const pointers = new Map(); // pressed pointers by id: where they are
let dragged = false;        // the press has moved the plan

function pointOf(event) {
  const box = canvas.getBoundingClientRect();
  return [event.clientX - box.left, event.clientY - box.top];
}

canvas.addEventListener("pointerdown", (event) => {
  canvas.setPointerCapture(event.pointerId);
  pointers.set(event.pointerId, pointOf(event));
  dragged = pointers.size > 1;
});

canvas.addEventListener("pointermove", (event) => {
  const [x, y] = pointOf(event);
  const from = pointers.get(event.pointerId);
  if (!from) {
    hover(x, y);
    return;
  }
  if (!dragged && Math.hypot(x - from[0], y - from[1]) < 4) {
    return;
  }
  dragged = true;
  canvas.classList.add("dragging");
  hover(-1, -1);
  if (pointers.size === 2) {
    pinch(event.pointerId, from, [x, y]);
  } else {
    pan(x - from[0], y - from[1]);
  }
  pointers.set(event.pointerId, [x, y]);
});

/** Zooms and moves by two fingers, of which one has moved. */
function pinch(id, from, to) {
  const [, other] = [...pointers].find(([key]) => key !== id);
  const distance = (point) => Math.max(Math.hypot(point[0] - other[0], point[1] - other[1]), 1);
  zoom(distance(to) / distance(from), other[0], other[1]);
}

function release(event) {
  if (pointers.delete(event.pointerId) && !dragged && event.type === "pointerup") {
    const [x, y] = pointOf(event);
    select(pick(fromPxX(x), fromPxY(y)));
  }
  if (pointers.size === 0) {
    canvas.classList.remove("dragging");
  }
}

canvas.addEventListener("pointerup", release);
canvas.addEventListener("pointercancel", release);
canvas.addEventListener("pointerleave", () => hover(-1, -1));
canvas.addEventListener("wheel", (event) => {
  event.preventDefault();
  const LINE_PX = 30;
  const px = event.deltaY * (event.deltaMode === 1 ? LINE_PX : 1);
  zoom(Math.exp(-Math.max(-200, Math.min(px, 200)) * 0.0022), ...pointOf(event));
}, {passive: false});
canvas.addEventListener("dblclick", (event) => zoom(2, ...pointOf(event)));

const KEYS = {
  ArrowLeft: () => pan(widthPx * 0.15, 0), ArrowRight: () => pan(-widthPx * 0.15, 0),
  ArrowUp: () => pan(0, heightPx * 0.15), ArrowDown: () => pan(0, -heightPx * 0.15),
  "+": () => zoom(1.5), "=": () => zoom(1.5), "-": () => zoom(1 / 1.5), 0: fit, b: toggleTime,
  "/": () => byId("search").focus(), Escape: () => select(-1),
};

document.addEventListener("keydown", (event) => {
  const typing = event.target.matches("input[type=search]");
  const choosing = event.target.matches("input, summary, button") && event.key.startsWith("Arrow");
  if (!typing && !choosing && !event.ctrlKey && !event.metaKey && !event.altKey && KEYS[event.key]) {
    event.preventDefault();
    KEYS[event.key]();
  }
});

// ---- Hovering and selecting ----------------------------------------------------------------------------

const number = (value) => value.toLocaleString("en-US").replaceAll(",", "\u2009");
const microns = (dbu) => (dbu / DBU_PER_MICRON).toFixed(3).replace(/\.?0+$/, "");

const rounded = (dbu) => String(Number((dbu / DBU_PER_MICRON).toPrecision(4)));

/** An element with a text, which is never taken for markup. */
function element(tag, text = "", properties = {}) {
  const made = Object.assign(document.createElement(tag), properties);
  made.textContent = text;
  return made;
}

/** What is known about a cell, as pairs of a word and a text. */
function factsOf(cell) {
  const facts = [["Cell type", kindName(cell)]];
  if (design.coloured) {
    const known = cells.colouring[cell] !== NONE;
    facts.push(["Solution", known ? `${cells.colouring[cell]} (of 0 to ${kinds[cells.kind[cell]].masks.length - 1})` : "unknown"]);
    facts.push(["Stitches", known ? String(stitchesOf(cell)) : "unknown"]);
  }
  facts.push(["Position", `${number(shown.x[cell])}, ${number(shown.y[cell])} DBU`],
    ["", `${microns(shown.x[cell])}, ${microns(shown.y[cell])} \u00b5m`],
    ["Width", `${number(widthOf(cell))} DBU`]);
  const {mirrored, flipped} = turnOf(cell);
  if (mirrored || flipped) {
    facts.push(["Orientation", mirrored && flipped ? "S" : mirrored ? "FN (mirrored)" : "FS (upside down)"]);
  }
  if (design.moved) {
    const dx = after.x[cell] - before.x[cell];
    const dy = after.y[cell] - before.y[cell];
    facts.push(["Moved by", dx || dy ? `${number(dx)}, ${number(dy)} DBU` : "0"]);
  }
  return facts;
}

function hover(x, y) {
  const inside = x >= 0 && y >= 0;
  byId("position").textContent = inside ? `x ${number(Math.round(fromPxX(x)))}  y ${number(Math.round(fromPxY(y)))} DBU   (` +
    `${microns(fromPxX(x))}, ${microns(fromPxY(y))} \u00b5m)` : "\u00a0";
  const cell = inside && on.cells ? pick(fromPxX(x), fromPxY(y)) : -1;
  if (cell !== hovered) {
    hovered = cell;
    drawMarks();
    fillTooltip();
  }
  if (hovered >= 0) {
    placeTooltip(x, y);
  }
}

function fillTooltip() {
  const tooltip = byId("tooltip");
  tooltip.hidden = hovered < 0;
  if (hovered < 0) {
    return;
  }
  tooltip.replaceChildren(element("b", nameOf(hovered)));
  for (const [word, text] of factsOf(hovered)) {
    tooltip.append(element("div", word ? `${word}: ${text}` : text));
  }
  const size = netsOfCell(hovered).length;
  tooltip.append(element("div", `${size} ${size === 1 ? "net" : "nets"}`));
}

function placeTooltip(x, y) {
  const tooltip = byId("tooltip");
  const left = x + 18 + tooltip.offsetWidth > widthPx ? x - 14 - tooltip.offsetWidth : x + 18;
  const top = Math.min(y + 16, heightPx - tooltip.offsetHeight - 6);
  tooltip.style.left = `${Math.max(left, 4)}px`;
  tooltip.style.top = `${Math.max(top, 4)}px`;
}

function select(cell) {
  selected = cell;
  const details = byId("details");
  details.hidden = cell < 0;
  if (cell >= 0) {
    const close = element("button", "\u00d7", {className: "close", type: "button", title: "Clear ( Esc )", onclick: () => select(-1)});
    close.setAttribute("aria-label", "Clear the selection");
    details.replaceChildren(close, element("h2", nameOf(cell)), listOf(factsOf(cell)), ...netsOfCell(cell).map(netEntry));
    byId("panel").scrollTop = 0;
  }
  drawMarks();
}

function listOf(facts) {
  const list = element("dl");
  for (const [word, text] of facts) {
    list.append(element("dt", word), element("dd", text));
  }
  return list;
}

/** A net with its members, which can be gone to; they are listed once it is opened. */
function netEntry(net) {
  const MOST = 200;
  const list = nets.members.subarray(nets.begin[net], nets.begin[net + 1]);
  const entry = element("details");
  entry.append(element("summary", `Net ${net + 1}: ${list.length} members`));
  const members = element("div", "", {className: "members"});
  entry.append(members);
  entry.addEventListener("toggle", () => {
    if (members.childElementCount === 0) {
      members.append(...Array.from(list.slice(0, MOST), memberButton));
      if (list.length > MOST) {
        members.append(element("span", `and ${list.length - MOST} more`));
      }
    }
  });
  return entry;
}

function memberButton(member) {
  const text = member >= 0 ? nameOf(member) : `pin ${design.pins[-1 - member].name}`;
  return element("button", text, {type: "button", onclick: () => goTo(member >= 0 ? {cell: member} : {pin: -1 - member})});
}

/** Shows a cell, a pin or a macro. */
function goTo({cell = -1, pin = -1, macro = -1}) {
  if (cell >= 0) {
    show(shown.x[cell] + widthOf(cell) / 2, shown.y[cell] + design.rowHeight / 2);
  } else if (pin >= 0) {
    show(design.pins[pin].x, design.pins[pin].y);
  } else {
    const [xl, yl, xh, yh] = design.macros[macro].box;
    view.scale = 0.4 * Math.min(widthPx / Math.max(xh - xl, 1), heightPx / Math.max(yh - yl, 1));
    show((xl + xh) / 2, (yl + yh) / 2, 0);
  }
  select(cell);
}

// ---- Search --------------------------------------------------------------------------------------------

const MOST_RESULTS = 12;
const lower = (text) => text.replace(/[A-Z]+/g, (letters) => letters.toLowerCase()); // keeps the length
const byName = new Intl.Collator("en", {numeric: true});
let lowerNames = null; // made when it is first needed
let results = [];
let chosen = 0;        // index in results
let searched = "";     // the text that they belong to

/** Index of the cell whose name has a character of `names`. */
function cellOfCharacter(at) {
  let low = 0;
  let high = count;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if (nameBegin[middle] <= at) {
      low = middle;
    } else {
      high = middle;
    }
  }
  return low;
}

function search(text) {
  lowerNames ??= "\n" + lower(names); // so that each name stands between line ends
  const word = lower(text);
  const found = new Set();
  for (const [pattern, skip] of [[`\n${word}\n`, 0], [`\n${word}`, 0], [word, -1]]) {
    for (let at = lowerNames.indexOf(pattern); at >= 0 && found.size < MOST_RESULTS; at = lowerNames.indexOf(pattern, at + 1)) {
      found.add(cellOfCharacter(at + skip));
    }
  }
  const matching = (list, key) => list.map((item, i) => ({[key]: i, name: item.name, type: key}))
    .filter((item) => lower(item.name).includes(word)).slice(0, MOST_RESULTS);
  const fixed = [...matching(design.pins, "pin"), ...matching(design.macros, "macro")];
  const cellItems = [...found].map((cell) => ({cell, name: nameOf(cell), type: kindName(cell)}));
  const rank = (item) => lower(item.name) === word ? 0 : lower(item.name).startsWith(word) ? 1 : 2;
  return [...cellItems, ...fixed].sort((a, b) => rank(a) - rank(b) || byName.compare(a.name, b.name)).slice(0, MOST_RESULTS);
}

function fillResults() {
  const text = byId("search").value.trim();
  searched = text;
  results = text ? search(text) : [];
  chosen = 0;
  const list = byId("results");
  list.replaceChildren(...results.map(resultEntry));
  if (text && results.length === 0) {
    list.append(element("li", "nothing of that name", {className: "none"}));
  }
  openResults(text !== "");
  markChosen();
}

function resultEntry(item, i) {
  const entry = element("li", "", {id: `result${i}`});
  entry.setAttribute("role", "option");
  entry.append(element("span", item.name), element("small", item.type));
  entry.addEventListener("pointerdown", (event) => {
    event.preventDefault(); // the field keeps the focus
    choose(i);
  });
  return entry;
}

function openResults(open) {
  byId("results").hidden = !open;
  byId("search").setAttribute("aria-expanded", String(open));
}

function markChosen() {
  const entries = byId("results").querySelectorAll("[role=option]");
  entries.forEach((entry, i) => entry.setAttribute("aria-selected", String(i === chosen)));
  byId("search").setAttribute("aria-activedescendant", results.length > 0 ? `result${chosen}` : "");
  entries[chosen]?.scrollIntoView({block: "nearest"});
}

function choose(i) {
  if (results[i]) {
    openResults(false);
    goTo(results[i]);
  }
}

let searchTimer = 0;
byId("search").addEventListener("input", () => {
  clearTimeout(searchTimer);
  searchTimer = setTimeout(fillResults, count > 100000 ? 200 : 50);
});
byId("search").addEventListener("keydown", (event) => {
  if (event.key === "Enter") {
    clearTimeout(searchTimer);
    if (event.target.value.trim() !== searched) {
      fillResults();
    }
    choose(chosen);
  } else if (event.key === "ArrowDown" || event.key === "ArrowUp") {
    event.preventDefault();
    const step = event.key === "ArrowDown" ? 1 : -1;
    chosen = results.length > 0 ? (chosen + step + results.length) % results.length : 0;
    markChosen();
  } else if (event.key === "Escape") {
    openResults(false);
    canvas.focus();
  }
});
byId("search").addEventListener("blur", () => openResults(false));

// ---- Panel ---------------------------------------------------------------------------------------------

function layerEntry(layer) {
  const entry = element("label", "", {className: "layer"});
  const box = element("input", "", {type: "checkbox", checked: on[layer.id], id: `layer-${layer.id}`});
  box.addEventListener("change", () => {
    on[layer.id] = box.checked;
    redraw();
  });
  entry.append(box);
  entry.insertAdjacentHTML("beforeend", `<svg width="22" height="16" aria-hidden="true">${layer.symbol}</svg>`);
  entry.append(element("span", layer.label));
  if (layer.size !== undefined) {
    entry.append(element("span", number(layer.size), {className: "count"}));
  }
  return entry;
}

function fillLayers() {
  const stops = [0, 20, 40, 60, 80, 100].map((share) => `rgb(${rampColour(share)}) ${share}%`);
  byId("layers").append(...LAYERS.filter((layer) => !layer.absent).map(layerEntry));
  const ramp = element("div", "", {className: "ramp"});
  const bar = element("i");
  bar.style.background = `linear-gradient(to right, ${stops})`;
  const ends = element("span");
  ends.append(element("span", "0 %"), element("span", "100 % full"));
  ramp.append(bar, ends);
  byId("layers").append(ramp);
}

function fillFacts() {
  const facts = [["Size", `${rounded(boundsXh - boundsXl)} \u00d7 ${rounded(boundsYh - boundsYl)} \u00b5m`], ["Cells", number(count)],
    ["Cell types", number(kinds.length)], ["Nets", number(Math.max(nets.begin.length - 1, 0))]];
  if (design.coloured) {
    let stitches = 0;
    for (let cell = 0; cell < count; ++cell) {
      stitches += stitchesOf(cell);
    }
    facts.push(["Stitches", number(stitches)], ["Conflicts", number(conflicts.length / CONFLICT_SIZE)],
      ["Least distance", design.minDist]);
  }
  if (design.pinLength !== "") {
    facts.push(["Wirelength from pin to pin", design.pinLength]);
  }
  if (design.pinLengthBefore !== "") {
    facts.push(["Before", design.pinLengthBefore]);
  }
  if (design.moved) {
    facts.push(...displacementFacts());
  }
  byId("facts").replaceChildren(...listOf(facts).children);
}

function displacementFacts() {
  let size = 0;
  let sum = 0;
  let most = 0;
  for (let cell = 0; cell < count; ++cell) {
    const distance = Math.abs(after.x[cell] - before.x[cell]) + Math.abs(after.y[cell] - before.y[cell]);
    size += distance > 0 ? 1 : 0;
    sum += distance;
    most = Math.max(most, distance);
  }
  return [["Moved cells", number(size)], ["Mean move", `${microns(sum / Math.max(size, 1))} \u00b5m`], ["Longest move", `${microns(most)} \u00b5m`]];
}

function setTime(name) {
  shown = name === "before" && design.moved ? before : after;
  byId(shown === before ? "before" : "after").checked = true;
  hovered = -1;
  fillTooltip();
  select(selected);
  redraw();
}

function toggleTime() {
  setTime(shown === after ? "before" : "after");
}

function showPanel(open) {
  document.body.classList.toggle("noPanel", !open);
  byId("panelButton").setAttribute("aria-expanded", String(open));
}

byId("title").textContent = design.title.split("/").pop();
byId("title").title = design.title;
byId("times").hidden = !design.moved;
byId("times").addEventListener("change", (event) => setTime(event.target.value));
byId("zoomIn").addEventListener("click", () => zoom(1.5));
byId("zoomOut").addEventListener("click", () => zoom(1 / 1.5));
byId("fit").addEventListener("click", fit);
byId("panelButton").addEventListener("click", () => showPanel(document.body.classList.contains("noPanel")));
showPanel(innerWidth > 760);
fillLayers();
fillFacts();
new ResizeObserver(resize).observe(byId("plan"));

/** For the tests of this page. */
window.viewer = {
  drawTimes, view, on, pan, conflictMarks, conflictColour: COLOUR.conflict,
  /** The middle of a conflict, DBU, by its number. */
  conflictPlace: (i) => [conflictX(i * CONFLICT_SIZE), conflictY(i * CONFLICT_SIZE)],
  draw() { drawn = null; draw(); },
  /** Whether all is drawn. */
  get rests() { return !pending && restTimer === 0; },
  get selected() { return selected < 0 ? "" : nameOf(selected); },
  get shown() { return shown === before ? "before" : "after"; },
  /** Pixels of the window of the middle of the cell of that name. */
  pixelsOf(name) {
    const box = canvas.getBoundingClientRect();
    for (let cell = 0; cell < count; ++cell) {
      if (nameOf(cell) === name) {
        const [x, y] = middleOf(cell);
        return [x + box.left, y + box.top];
      }
    }
    return null;
  },
};

})();
