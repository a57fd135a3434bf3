// A WAV or AIFF file in the engine's memory.

import { ConversionError, Engine, outOfMemory } from "./engine.js";
import { english } from "./language.js";
import { numbersOf, octaveOf } from "./options.js";

/** @typedef {import("./language.js").Language} Language */
/** @typedef {import("./options.js").ConversionOptions} ConversionOptions */
/** @typedef {import("./records.js").Conversion} Conversion */
/** @typedef {import("./records.js").FileInfo} FileInfo */
/** @typedef {import("./records.js").SampleLayout} SampleLayout */
/** @typedef {{ language?: Language }} LanguageOption */
/** @typedef {LanguageOption & ConversionOptions} PlanOptions */
/** @typedef {PlanOptions & { middleC?: number }} InfoOptions `middleC`: octave of note 60, 4 */

/**
 * Engines without a file, for the next ones. Memory of WebAssembly never shrinks: engines that have
 * held large files are left to the collector.
 * @type {Engine[]}
 */
const idle = [];

/** An engine for something short that needs no file. */
export function anyEngine(language = english) {
  if (idle[0]?.isBroken) idle.pop();
  const engine = idle[0] ?? new Engine();
  if (idle.length === 0) idle.push(engine);
  engine.language = language;
  return engine;
}

/** What a file holds and what becomes of it. Its memory is given back by `close`. */
export class SampledFile {
  /** @type {Engine | null} */
  #engine = idle.pop() ?? new Engine();
  #size;
  #isPlanned = false;

  /** Room for so many bytes. Use `open`. */
  constructor(/** @type {number} */ size, language = english) {
    this.#size = size;
    // Positions are numbers of 32 bits.
    const at = size < 2 ** 32 - 2 ** 16 ? this.#engine?.exports.reserve(size) : 0;
    if (!at) {
      this.close();
      throw outOfMemory(language);
    }
    this.at = at;
  }

  /** In bytes. */
  get size() {
    return this.#size;
  }

  #open(language = english) {
    if (!this.#engine) throw new TypeError("The file is closed.");
    this.#engine.language = language;
    return this.#engine;
  }

  /** Fills the room from a position on. Used by `open`. */
  put(/** @type {number} */ position, /** @type {Uint8Array} */ bytes) {
    this.#open()
      .bytes(this.at + position, bytes.length)
      .set(bytes);
  }

  /**
   * What the file holds, whether it can be converted or not, and what a conversion with these
   * options would say.
   * @param {InfoOptions} [options]
   * @returns {FileInfo}
   */
  info({ language, middleC = 4, ...options } = {}) {
    const numbers = /** @type {const} */ ([octaveOf(middleC), ...numbersOf(options)]);
    const engine = this.#open(language);
    return JSON.parse(engine.answer(() => engine.exports.info(...numbers)));
  }

  /**
   * Format and encoding in a few words.
   * @param {LanguageOption} [options]
   */
  describe({ language } = {}) {
    const engine = this.#open(language);
    return engine.answer(engine.exports.describe);
  }

  /**
   * Where the samples lie and how they are stored; null where no waveform can be drawn of them.
   * @returns {SampleLayout | null}
   */
  layout() {
    const engine = this.#open();
    return JSON.parse(engine.answer(engine.exports.layout));
  }

  /**
   * What a conversion comes to. Throws a ConversionError where there is none.
   * @param {PlanOptions} [options]
   * @returns {Conversion}
   */
  plan({ language, ...options } = {}) {
    const asked = numbersOf(options);
    const engine = this.#open(language);
    const answer = engine.answer(() => engine.exports.plan(...asked));
    const { error, bytes, ...plan } = JSON.parse(answer);
    this.#isPlanned = !error;
    if (error) throw new ConversionError(error.code, error.text, error.values);
    return { ...plan, outputSize: bytes };
  }

  /**
   * The output from start to end, in blocks of about 1 MiB. `plan` comes first.
   * @returns {Generator<Uint8Array<ArrayBuffer>, void>}
   */
  *blocks() {
    if (!this.#isPlanned) throw new TypeError("There is no plan.");
    this.#isPlanned = false;
    for (;;) {
      const engine = this.#open();
      const at = engine.call(engine.exports.nextBlock);
      const size = engine.exports.blockSize();
      if (size === 0) return;
      if (at === 0) throw outOfMemory(engine.language);
      yield engine.bytes(at, size).slice();
    }
  }

  /**
   * The picture of `count` frames from `first` on, all channels in one: the lowest and the highest
   * value of each of `columns` stretches, in parts of full scale. Null where no waveform can be
   * drawn.
   * @param {number} first
   * @param {number} count
   * @param {number} columns
   */
  waveform(first, count, columns) {
    if (![first, count, columns].every((number) => Number.isSafeInteger(number) && number >= 0))
      throw new RangeError("Frames and columns are whole numbers from 0 on.");
    const layout = this.layout();
    if (!layout) return null;
    const begin = Math.min(first * layout.frameBytes, layout.dataSize);
    const size = Math.min(count * layout.frameBytes, layout.dataSize - begin);
    return this.waveformAt(layout.dataOffset + begin, size, layout, columns);
  }

  /**
   * The same of whole frames at a position of the file, in bytes.
   * @param {number} offset
   * @param {number} size
   * @param {SampleLayout} layout
   * @param {number} columns
   */
  waveformAt(offset, size, layout, columns) {
    const engine = this.#open();
    const format = [layout.channels, layout.sampleBytes].concat(
      [layout.isFloatingPoint, layout.isBigEndian, layout.isUnsigned].map(Number),
    );
    const { waveform, memory } = engine.exports;
    const at = engine.call(() => waveform(offset, size, ...format, columns)) >>> 0;
    return at === 0 ? null : new Float32Array(memory.buffer, at, 2 * columns).slice();
  }

  /** Gives the memory back. Nothing else may be called then. */
  close() {
    const engine = this.#engine;
    this.#engine = null;
    if (!engine?.isReusable() || idle.length > 0) return;
    engine.exports.release();
    idle.push(engine);
  }
}

/**
 * Reads a file of a browser slice by slice, or bytes, into an engine. Rejects with a
 * ConversionError "out-of-memory" before it reads anything where the file finds no room, with
 * the signal's reason when that is given, and as the Blob does.
 * @param {Blob | Uint8Array | ArrayBuffer} content
 * @param {object} [options]
 * @param {(fraction: number) => void} [options.onProgress] told after each slice, 0 to 1
 * @param {AbortSignal} [options.signal]
 * @param {Language} [options.language] of the error
 */
export async function open(content, { onProgress, signal, language } = {}) {
  signal?.throwIfAborted();
  if (!(content instanceof Blob)) {
    const file = openBytes(content, language);
    onProgress?.(1);
    return file;
  }
  const file = new SampledFile(content.size, language);
  const sliceSize = 8 * 2 ** 20;
  try {
    for (let at = 0; at < content.size; at += sliceSize) {
      const slice = await content.slice(at, at + sliceSize).arrayBuffer();
      signal?.throwIfAborted();
      file.put(at, new Uint8Array(slice));
      if (at + sliceSize < content.size) onProgress?.((at + sliceSize) / content.size);
    }
    onProgress?.(1);
    return file;
  } catch (error) {
    file.close();
    throw error;
  }
}

/** @param {ArrayBufferView | ArrayBuffer} content */
function bytesOf(content) {
  if (ArrayBuffer.isView(content))
    return new Uint8Array(content.buffer, content.byteOffset, content.byteLength);
  // What is something else would be read as an empty file, or one of so many zeros.
  if (Object.prototype.toString.call(content) !== "[object ArrayBuffer]")
    throw new TypeError("Neither an ArrayBuffer nor a view of one.");
  return new Uint8Array(content);
}

/**
 * The same at once, of bytes.
 * @param {Uint8Array | ArrayBuffer} content
 * @param {Language} [language]
 */
export function openBytes(content, language) {
  const bytes = bytesOf(content);
  const file = new SampledFile(bytes.length, language);
  file.put(0, bytes);
  return file;
}
