// Pictures of sounds on a canvas.
import { extents, withoutOverlap, xOf } from "./waveform.js";

/** @typedef {import("./waveform.js").Columns} Columns */
/** @typedef {import("./waveform.js").LoopMark} LoopMark */
/** @typedef {import("./waveform.js").MarkerMark} MarkerMark */
/** @typedef {import("./waveform.js").View} View */
/** @typedef {{ columns: Columns | null, view: View, loops: LoopMark[], markers: MarkerMark[] }} Picture */

const names = ["wave", "axis", "loop-1", "loop-2", "loop-3", "marker", "raised", "text"];
/** @type {Record<string, string> | null} */
let colours = null;
let font = "";

/** The colours of the style sheet. */
function palette() {
  if (colours) return colours;
  const style = getComputedStyle(document.documentElement);
  font = `12px ${getComputedStyle(document.body).fontFamily}`;
  colours = Object.fromEntries(names.map((name) => [name, style.getPropertyValue(`--${name}`)]));
  return colours;
}

/** Calls `redraw` when the colours change. @param {() => void} redraw */
export function onColours(redraw) {
  const queries = ["(prefers-color-scheme: dark)", "(forced-colors: active)"];
  for (const query of queries)
    matchMedia(query).addEventListener("change", () => {
      colours = null;
      redraw();
    });
}

/** Height of a lane of loops above the waveform, and of the line of markers below it. */
const laneHeight = 20;
export const mostLanes = 3;

/** @param {HTMLCanvasElement} canvas @param {number} width @param {number} height of its place */
function prepared(canvas, width, height) {
  const ratio = window.devicePixelRatio || 1;
  canvas.width = Math.round(width * ratio);
  canvas.height = Math.round(height * ratio);
  const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext("2d"));
  context.scale(ratio, ratio);
  return context;
}

/** A small picture: loops shaded, markers as ticks.
 * @param {HTMLCanvasElement} canvas @param {Picture} picture
 * @param {number} width @param {number} height
 */
export function drawSmall(canvas, { columns, view, loops, markers }, width, height) {
  const context = prepared(canvas, width, height);
  const colour = palette();
  // The first loops come last, on top.
  for (const loop of [...loops].reverse()) {
    const x = xOf(loop.start, view, width);
    const wide = Math.max(xOf(loop.end, view, width) - x, 1.5);
    shade(context, loop.kind, { x, y: 0, width: wide, height });
    context.fillStyle = colourOf(loop.kind);
    context.fillRect(x, 0, wide, 2);
  }
  drawWave(context, columns, view, { x: 0, y: 3, width, height: height - 6 });
  context.fillStyle = colour.marker;
  for (const { position } of markers)
    context.fillRect(Math.round(xOf(position, view, width)), height - 7, 1, 7);
}

/** A picture with names for everything.
 * @param {HTMLCanvasElement} canvas @param {Picture} picture
 * @param {number} width @param {number} height
 */
export function drawLarge(canvas, { columns, view, loops, markers }, width, height) {
  const context = prepared(canvas, width, height);
  const colour = palette();
  context.font = font;
  context.textBaseline = "middle";
  const lanes = loops.reduce((most, { lane }) => Math.max(most, lane + 1), 0);
  const top = lanes * laneHeight + 2;
  const bottom = markers.length > 0 ? laneHeight : 2;
  const area = { x: 0, y: top, width, height: height - top - bottom };
  for (const loop of [...loops].reverse()) {
    const x = xOf(loop.start, view, width);
    const box = {
      x,
      y: top,
      width: Math.max(xOf(loop.end, view, width) - x, 1),
      height: area.height,
    };
    if (x > width || x + box.width < 0) continue;
    shade(context, loop.kind, box);
    drawBracket(context, loop, box);
  }
  nameLoops(context, loops, view, width);
  drawWave(context, columns, view, area);

  const placed = [];
  context.strokeStyle = colour.marker;
  const visible = markers
    .map(({ position, label }) => ({ x: xOf(position, view, width), label }))
    .filter(({ x }) => x >= 0 && x <= width);
  for (const [at, { x, label }] of visible.entries()) {
    // Among many, its line would be one of a wall before the wave.
    const room = Math.max(x - (visible[at - 1]?.x ?? -4), (visible[at + 1]?.x ?? width + 4) - x);
    context.beginPath();
    context.setLineDash(room < 4 ? [] : [3, 3]);
    context.moveTo(x, room < 4 ? height - bottom : top);
    context.lineTo(x, height - bottom + 6);
    context.stroke();
    placed.push({ x, label, width: context.measureText(label).width + 6 });
  }
  context.setLineDash([]);
  for (const { x, label, width: wide } of withoutOverlap(placed, 4)) {
    const left = Math.min(x, width - wide);
    context.fillStyle = colour.marker;
    context.fillText(label, left + 3, height - bottom / 2 + 2);
  }
}

/** @typedef {{ x: number, y: number, width: number, height: number }} Box */

/** @param {number} kind */
const colourOf = (kind) => palette()[`loop-${Math.min(kind, 2) + 1}`];

/** The second loop is told from the first by its hatching, too.
 * @param {CanvasRenderingContext2D} context @param {number} kind @param {Box} box */
function shade(context, kind, { x, y, width, height }) {
  const left = Math.max(x, 0);
  const right = Math.min(x + width, context.canvas.width / context.getTransform().a);
  context.fillStyle = colourOf(kind);
  context.globalAlpha = kind > 1 ? 0.08 : 0.16;
  context.fillRect(left, y, right - left, height);
  if (kind === 1) {
    context.save();
    context.beginPath();
    context.rect(left, y, right - left, height);
    context.clip();
    context.globalAlpha = 0.3;
    context.strokeStyle = colourOf(kind);
    context.lineWidth = 1;
    context.beginPath();
    for (let at = Math.floor((left - height) / 7) * 7; at < right; at += 7) {
      context.moveTo(at, y + height);
      context.lineTo(at + height, y);
    }
    context.stroke();
    context.restore();
  }
  context.globalAlpha = 1;
}

/** @param {CanvasRenderingContext2D} context @param {LoopMark} loop @param {Box} box its shade */
function drawBracket(context, { kind, lane }, { x, y, width }) {
  const top = (lane + 1) * laneHeight - 2;
  context.strokeStyle = colourOf(kind);
  context.lineWidth = 2;
  context.beginPath();
  context.moveTo(x, y);
  context.lineTo(x, top);
  context.lineTo(x + width, top);
  context.lineTo(x + width, y);
  context.stroke();
  context.lineWidth = 1;
}

/**
 * In each lane, as far as there is room: in full where it reaches to the next loop.
 * @param {CanvasRenderingContext2D} context @param {LoopMark[]} loops @param {View} view
 * @param {number} width of the picture
 */
function nameLoops(context, loops, view, width) {
  const visible = loops
    .filter(({ start, end }) => end > view.first && start < view.first + view.count)
    .map((loop) => ({ ...loop, x: Math.max(xOf(loop.start, view, width), 0) + 2 }))
    .sort((a, b) => a.x - b.x);
  for (let lane = 0; lane < mostLanes; ++lane) {
    const inLane = visible.filter((loop) => loop.lane === lane);
    const labels = inLane.map(({ label, short, x }, at) => {
      const room = (inLane[at + 1]?.x ?? Infinity) - x - 8;
      const text = context.measureText(label).width <= room ? label : short;
      const wide = context.measureText(text).width;
      return { text, width: wide, x: Math.min(x, width - wide - 2) };
    });
    const y = (lane + 0.5) * laneHeight - 1;
    for (const { text, x, width: wide } of withoutOverlap(labels, 8)) {
      context.fillStyle = palette().raised;
      context.fillRect(x - 1, y - 7, wide + 2, 14);
      context.fillStyle = palette().text;
      context.fillText(text, x, y);
    }
  }
}

/** @param {CanvasRenderingContext2D} context @param {Columns | null} columns @param {View} view
 * @param {Box} box */
function drawWave(context, columns, view, { x, y, width, height }) {
  const colour = palette();
  const middle = y + height / 2;
  context.fillStyle = colour.axis;
  context.fillRect(x, Math.round(middle), width, 1);
  if (!columns) return;
  context.fillStyle = colour.wave;
  context.strokeStyle = colour.wave;
  const scale = -height / 2;
  const perPixel = (columns.values.length / 2 / columns.count) * (view.count / width);
  if (perPixel < 0.7) return drawPoints(context, columns, view, { x, y, width, height });
  const values = extents(columns, view, width);
  context.save();
  context.beginPath();
  context.rect(x, y, width, height);
  context.clip();
  context.beginPath();
  for (let at = 0; at < width; ++at) {
    let [foot, top] = [values[2 * at], values[2 * at + 1]];
    if (Number.isNaN(foot)) continue;
    // Each reaches to the one before it, so that there are no gaps.
    if (at > 0 && !Number.isNaN(values[2 * at - 2])) {
      top = Math.max(top, values[2 * at - 2]);
      foot = Math.min(foot, values[2 * at - 1]);
    }
    const high = middle + top * scale;
    context.rect(x + at, high, 1, Math.max(middle + foot * scale - high, 1));
  }
  context.fill();
  context.restore();
}

/** Fewer values than pixels: lines from one to the next, and points where there is room.
 * @param {CanvasRenderingContext2D} context @param {Columns} columns @param {View} view
 * @param {Box} box */
function drawPoints(context, { first, count, values, scale }, view, { y, width, height }) {
  const number = values.length / 2;
  const step = count / number;
  const begin = Math.max(Math.floor((view.first - first) / step) - 1, 0);
  const end = Math.min(Math.ceil((view.first + view.count - first) / step) + 1, number);
  const xAt = (/** @type {number} */ at) => xOf(first + (at + 0.5) * step, view, width);
  const yAt = (/** @type {number} */ value) => y + (height / 2) * (1 - value * scale);
  context.save();
  context.beginPath();
  context.rect(0, y, width, height);
  context.clip();
  context.lineJoin = "round";
  context.lineWidth = 1.5;
  context.beginPath();
  for (let at = begin; at < end; ++at) context.lineTo(xAt(at), yAt(values[2 * at + 1]));
  for (let at = end - 1; at >= begin; --at) context.lineTo(xAt(at), yAt(values[2 * at]));
  context.closePath();
  context.globalAlpha = 0.35;
  context.fill();
  context.globalAlpha = 1;
  context.stroke();
  const hasRoom = (step / view.count) * width >= 7;
  for (let at = begin; at < end && hasRoom; ++at)
    for (const value of [values[2 * at], values[2 * at + 1]]) {
      context.beginPath();
      context.arc(xAt(at), yAt(value), 2.5, 0, 7);
      context.fill();
    }
  context.restore();
}
