// Names of inputs and outputs, and the lines of the log: the rules of the command line.

import { octaveOf } from "./options.js";
import { anyEngine } from "./sampled_file.js";

/** @typedef {import("./records.js").OutputFormat} OutputFormat */

/** Whether a file of this name is one to convert. */
export function hasAudioExtension(/** @type {string} */ name) {
  const engine = anyEngine();
  engine.putText(name);
  return Boolean(engine.exports.hasAudioExtension());
}

/** Whether outputs are written into a folder of this name; a search does not look there. */
export function isOutputFolder(/** @type {string} */ name) {
  const engine = anyEngine();
  engine.putText(name);
  return Boolean(engine.exports.isOutputFolder());
}

/** Whether a folder of this name is one document or program; a search does not look there either. */
export function isPackageName(/** @type {string} */ name) {
  const engine = anyEngine();
  engine.putText(name);
  return Boolean(engine.exports.isPackageName());
}

/**
 * The MIDI note that a name tells, "Piano C#3.wav", "bass_a2" or "60_Pad", for a conversion's
 * `rootKey`; undefined where it tells none.
 * @param {string} name
 * @param {{ middleC?: number }} [options] octave of note 60, 4
 */
export function rootKeyInName(name, { middleC = 4 } = {}) {
  const octave = octaveOf(middleC);
  const engine = anyEngine();
  const key = engine.answer(() => engine.exports.rootKeyInName(octave), name);
  return key === "" ? undefined : Number(key);
}

/** The subfolder for outputs of a format: "AIFF" or "WAV". */
export function outputSubfolder(/** @type {OutputFormat} */ format) {
  const engine = anyEngine();
  return engine.answer(() => engine.exports.outputSubfolder(Number(format === "wav")));
}

/**
 * The name of an output without a number.
 * @param {string} inputName
 * @param {OutputFormat} format
 */
export function outputName(inputName, format) {
  return freeOutputName(inputName, format, () => true);
}

/**
 * The first of "a.aif", "a (1).aif", "a (2).aif" … that `mayTake` agrees to.
 * @param {string} inputName
 * @param {OutputFormat} format
 * @param {(name: string) => boolean} mayTake
 */
export function freeOutputName(inputName, format, mayTake) {
  const engine = anyEngine();
  // It may itself ask for names.
  const outer = engine.mayTake;
  engine.mayTake = mayTake;
  try {
    return engine.answer(() => engine.exports.freeOutputName(Number(format === "wav")), inputName);
  } finally {
    engine.mayTake = outer;
  }
}

/**
 * What the log says of a converted file: one line, then one for each warning.
 * @param {string} inputName
 * @param {string} outputName
 * @param {import("./records.js").Conversion} conversion
 */
export function convertedLines(inputName, outputName, { summary, warnings }) {
  const engine = anyEngine();
  const texts = [inputName, outputName, summary, ...warnings.map((warning) => warning.text)];
  return JSON.parse(engine.answer(engine.exports.convertedLines, ...texts));
}

/** What it says of a file that could not be converted. */
export function failureLine(/** @type {string} */ inputName, /** @type {string} */ reason) {
  const engine = anyEngine();
  return engine.answer(engine.exports.failureLine, inputName, reason);
}

/**
 * Puts texts in place of "%@" (one after another) and "%1$@", "%2$@" … (by number).
 * @param {string} format
 * @param {string[]} texts
 */
export function fillText(format, texts) {
  const engine = anyEngine();
  return engine.answer(engine.exports.fillText, format, ...texts);
}
