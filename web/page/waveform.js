// Where things lie in the picture of a waveform. Frames and pixels, no drawing.

/** @typedef {{ first: number, count: number }} View  the frames that are shown */
/**
 * The lowest and the highest value of each column, two numbers a column; `scale` times them is
 * -1 to 1. The columns share the frames from `first` on evenly.
 * @typedef {object} Columns
 * @property {number} first
 * @property {number} count in frames
 * @property {Int8Array | Float32Array} values
 * @property {number} scale
 */
/** @typedef {{ start: number, end: number, label: string, short: string, lane: number, kind: number }}
 *   LoopMark end: behind the last frame; kind: 0 is the first or sustain loop, 1 the second */
/** @typedef {{ position: number, label: string }} MarkerMark */

/** Fewest frames that fill the picture. */
const fewestFrames = 16;

/** Columns of the picture that is kept of a file. Of longer ones it is finer, so that the bytes
 * behind a picture's width are few enough to be read for an exact one. @param {number} frames */
export function overviewColumns(frames) {
  return Math.min(frames, Math.max(2048, Math.min(Math.ceil(frames / 1024), 65536)));
}

/** The view within a file. @param {View} view @param {number} frames @returns {View} */
export function limited({ first, count }, frames) {
  const shown = Math.min(Math.max(count, Math.min(fewestFrames, frames)), frames);
  return { first: Math.min(Math.max(first, 0), frames - shown), count: shown };
}

/**
 * Changes how much is shown; what lies at `at` (0: left edge, 1: right edge) stays there.
 * @param {View} view @param {number} factor of the frames shown @param {number} at
 * @param {number} frames
 */
export function zoomed(view, factor, at, frames) {
  const { count } = limited({ first: 0, count: view.count * factor }, frames);
  return limited({ first: view.first + at * (view.count - count), count }, frames);
}

/** @param {View} view @param {number} by in widths of the picture @param {number} frames */
export const moved = (view, by, frames) =>
  limited({ first: view.first + by * view.count, count: view.count }, frames);

/** Some frames with room on both sides. @param {number} start @param {number} end @param {number} frames */
export function around(start, end, frames) {
  const room = Math.max((end - start) / 4, fewestFrames);
  return limited({ first: start - room, count: end - start + 2 * room }, frames);
}

/** @param {number} frame @param {View} view @param {number} width in pixels */
export const xOf = (frame, view, width) => ((frame - view.first) / view.count) * width;

/**
 * What each pixel of a picture shows: lowest and highest value, -1 to 1, of the columns below it;
 * not a number where there are none.
 * @param {Columns} columns @param {View} view @param {number} width in pixels
 */
export function extents(columns, view, width) {
  const { first, count, values, scale } = columns;
  const number = values.length / 2;
  const result = new Float32Array(2 * width).fill(NaN);
  for (let x = 0; x < width; ++x) {
    const from = ((view.first + (x / width) * view.count - first) / count) * number;
    const to = ((view.first + ((x + 1) / width) * view.count - first) / count) * number;
    const begin = Math.max(Math.floor(from), 0);
    const end = Math.min(Math.max(Math.ceil(to - 1e-6), begin + 1), number);
    if (begin >= end || to <= 0) continue;
    let [lowest, highest] = [values[2 * begin], values[2 * begin + 1]];
    for (let column = begin + 1; column < end; ++column) {
      if (values[2 * column] < lowest) lowest = values[2 * column];
      if (values[2 * column + 1] > highest) highest = values[2 * column + 1];
    }
    result[2 * x] = lowest * scale;
    result[2 * x + 1] = highest * scale;
  }
  return result;
}

/** As many bits as a picture needs. @param {Float32Array} values -1 to 1 */
export function coarse(values) {
  return Int8Array.from(values, (value, at) => {
    const whole = at % 2 === 0 ? Math.floor(value * 127) : Math.ceil(value * 127);
    return Math.min(Math.max(whole, -127), 127);
  });
}

/**
 * Puts loops that overlap below each other.
 * @param {Omit<LoopMark, "lane">[]} loops @param {number} lanes how many there are at most
 * @returns {LoopMark[]}
 */
export function inLanes(loops, lanes) {
  /** @type {number[]} */
  const ends = [];
  return loops.map((loop) => {
    let lane = ends.findIndex((end) => end <= loop.start);
    if (lane < 0) lane = Math.min(ends.length, lanes - 1);
    ends[lane] = Math.max(loop.end, ends[lane] ?? 0);
    return { ...loop, lane };
  });
}

/**
 * The labels that find room on a line, from left to right.
 * @template {{ x: number, width: number }} Label
 * @param {Label[]} labels in order of x @param {number} gap
 */
export function withoutOverlap(labels, gap) {
  let free = -Infinity;
  return labels.filter(({ x, width }) => {
    if (x < free) return false;
    free = x + width + gap;
    return true;
  });
}
