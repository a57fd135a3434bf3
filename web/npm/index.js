// Reads sampler metadata from WAV and AIFF files and converts one into the other, without losing
// loops, markers, key, tuning, gain and ranges. Works in browsers, in workers and in Node; nothing
// leaves the machine.

import { openBytes } from "./sampled_file.js";

export { ConversionError } from "./engine.js";
export { english, localised, localisedCount } from "./language.js";
export {
  convertedLines,
  failureLine,
  fillText,
  freeOutputName,
  hasAudioExtension,
  isOutputFolder,
  isPackageName,
  outputName,
  outputSubfolder,
  rootKeyInName,
} from "./names.js";
export { open, SampledFile } from "./sampled_file.js";
export { version } from "./version.js";

/** @typedef {import("./language.js").Language} Language */
/** @typedef {import("./options.js").ConversionOptions} ConversionOptions */
/** @typedef {import("./records.js").Conversion} Conversion */
/** @typedef {import("./records.js").FileInfo} FileInfo */
/** @typedef {import("./records.js").OutputFormat} OutputFormat */
/** @typedef {import("./records.js").SampleLayout} SampleLayout */
/** @typedef {import("./sampled_file.js").InfoOptions} InfoOptions */
/** @typedef {import("./sampled_file.js").PlanOptions} PlanOptions */

/**
 * What a WAV or AIFF file holds, whether it can be converted or not, and what a conversion with
 * these options would say. Never fails but for memory.
 * @param {Uint8Array | ArrayBuffer} bytes the whole file
 * @param {InfoOptions} [options]
 * @returns {FileInfo}
 */
export function info(bytes, options) {
  const file = openBytes(bytes, options?.language);
  try {
    return file.info(options);
  } finally {
    file.close();
  }
}

/**
 * Converts a WAV file into an AIFF file, or an AIFF file into a WAV file. Throws a ConversionError
 * where that cannot be done. For files that should not be in memory twice there is `open`.
 * @param {Uint8Array | ArrayBuffer} bytes the whole file
 * @param {PlanOptions} [options]
 * @returns {Conversion & { bytes: Uint8Array<ArrayBuffer> }}
 */
export function convert(bytes, options) {
  const file = openBytes(bytes, options?.language);
  try {
    const conversion = file.plan(options);
    const output = new Uint8Array(conversion.outputSize);
    let at = 0;
    for (const block of file.blocks()) {
      output.set(block, at);
      at += block.length;
    }
    return { ...conversion, bytes: output };
  } finally {
    file.close();
  }
}

/**
 * The picture of a stretch of whole frames that was cut out of a file, for zooming: the lowest and
 * the highest value of each of `columns` parts, in parts of full scale. Null where there is none.
 * @param {Uint8Array} frames
 * @param {SampleLayout} layout
 * @param {number} columns
 */
export function waveformOf(frames, layout, columns) {
  const file = openBytes(frames);
  try {
    return file.waveformAt(0, frames.length, layout, columns);
  } finally {
    file.close();
  }
}
