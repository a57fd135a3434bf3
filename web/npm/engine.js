// The engine as a module of WebAssembly: loading, memory, and texts that cross the border.

import { wasm } from "./wasm.js";
import { english, localised, localisedCount } from "./language.js";

/** @typedef {import("./language.js").Language} Language */

/** Why a file could not be converted, with the command line's codes and texts. */
export class ConversionError extends Error {
  /**
   * @param {string} code short and never changes: "format-tag", "out-of-memory" and so on
   * @param {string} text what a person reads
   * @param {(number | string)[]} [values] what stands in the text
   */
  constructor(code, text, values = []) {
    super(text);
    this.name = "ConversionError";
    this.code = code;
    this.values = values;
  }
}

/** @param {Language} language */
export function outOfMemory(language) {
  return new ConversionError("out-of-memory", localised("Not enough memory.", language));
}

/** @type {WebAssembly.Module | undefined} */
let module;

/** Compiled when it is first needed; every instance is of the same one. */
function theModule() {
  module ??= new WebAssembly.Module(Uint8Array.from(atob(wasm), (c) => c.charCodeAt(0)));
  return module;
}

const encoder = new TextEncoder();
const decoder = new TextDecoder("utf-8", { ignoreBOM: true });

/**
 * The functions of the module. Those that give `boolean` have put down a text, or had no memory.
 * @typedef {object} Exports
 * @property {WebAssembly.Memory} memory
 * @property {() => void} _initialize
 * @property {(size: number) => number} makeText
 * @property {() => number} textAt
 * @property {() => number} textSize
 * @property {(size: number) => number} reserve
 * @property {() => void} release
 * @property {(middleC: number, asked: number, rootKey: number) => boolean} info
 * @property {() => boolean} describe
 * @property {() => boolean} layout
 * @property {(asked: number, rootKey: number) => boolean} plan
 * @property {() => number} nextBlock
 * @property {() => number} blockSize
 * @property {(...numbers: number[]) => number} waveform
 * @property {() => number} hasAudioExtension
 * @property {() => number} isOutputFolder
 * @property {() => number} isPackageName
 * @property {(middleC: number) => boolean} rootKeyInName
 * @property {(isAIFF: number) => boolean} outputSubfolder
 * @property {(isAIFF: number) => boolean} freeOutputName
 * @property {() => boolean} convertedLines
 * @property {() => boolean} failureLine
 * @property {() => boolean} fillText
 */

/** One instance of the module, with a memory of its own that holds one file. */
export class Engine {
  constructor() {
    /** @type {Language} */
    this.language = english;
    /** @type {(name: string) => boolean} */
    this.mayTake = () => true;
    /** Whether a call has ended otherwise than it should, so that its memory may be in disorder. */
    this.isBroken = false;
    const instance = new WebAssembly.Instance(theModule(), {
      corvana: {
        localised: (/** @type {number} */ key) =>
          this.putText(localised(this.#textOf(key), this.language)),
        localisedCount: (
          /** @type {number} */ singular,
          /** @type {number} */ plural,
          /** @type {number} */ count,
        ) =>
          this.putText(
            localisedCount(this.#textOf(singular), this.#textOf(plural), count, this.language),
          ),
        mayTake: () => this.mayTake(this.text()),
      },
      env: { emscripten_notify_memory_growth() {} },
      wasi_snapshot_preview1: {
        proc_exit() {
          throw new Error("The engine has ended.");
        },
      },
    });
    this.exports = /** @type {Exports} */ (/** @type {unknown} */ (instance.exports));
    this.exports._initialize();
  }

  /** Bytes of the module's memory, until it grows. */
  bytes(/** @type {number} */ at, /** @type {number} */ size) {
    return new Uint8Array(this.exports.memory.buffer, at >>> 0, size >>> 0);
  }

  /** What is between a position and the next zero. */
  #textOf(/** @type {number} */ at) {
    const memory = new Uint8Array(this.exports.memory.buffer);
    return decoder.decode(memory.subarray(at >>> 0, memory.indexOf(0, at >>> 0)));
  }

  /** Puts down texts for the next call, between them a byte that UTF-8 does not have. */
  putText(/** @type {string[]} */ ...texts) {
    const parts = texts.map((text) => encoder.encode(text));
    const size = parts.reduce((sum, part) => sum + part.length, parts.length - 1);
    const at = this.exports.makeText(size);
    if (at === 0) throw outOfMemory(this.language);
    const bytes = this.bytes(at, size).fill(0xff);
    let position = 0;
    for (const part of parts) {
      bytes.set(part, position);
      position += part.length + 1;
    }
  }

  /** What the last call has put down. */
  text() {
    return decoder.decode(this.bytes(this.exports.textAt(), this.exports.textSize()));
  }

  /**
   * The text that a call puts down, of texts that go in.
   * @param {() => boolean} call
   * @param {...string} texts
   */
  answer(call, ...texts) {
    if (texts.length > 0) this.putText(...texts);
    if (!this.call(call)) throw outOfMemory(this.language);
    return this.text();
  }

  /**
   * What a function of the module gives.
   * @template Value
   * @param {() => Value} call
   */
  call(call) {
    try {
      return call();
    } catch (error) {
      this.isBroken = true;
      throw error;
    }
  }

  /** Whether it can hold another file: its memory never shrinks. */
  isReusable() {
    return !this.isBroken && this.exports.memory.buffer.byteLength <= 64 * 2 ** 20;
  }
}
