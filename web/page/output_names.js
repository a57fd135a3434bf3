// Which names outputs get: never one of an input of the list, nor of another output.
import { joined } from "./entries.js";

/** Names that a disk could take for the same. @param {string} path */
const folded = (path) => path.normalize("NFC").toLowerCase();

/** @typedef {import("./corvana/index.js").OutputFormat} Format */

/** The run of an output that is in no folder so far. Nothing takes its name from it. */
export const inMemory = 0;

export class OutputNames {
  #inputs = new Set();
  /** Names of inputs, wherever they lie: of a chosen folder nobody tells whether it is theirs. */
  #inputNames = new Set();
  /** @type {Map<string, number>} the run of each output, `inMemory` of those that are kept */
  #outputs = new Map();
  /** What the chosen folder holds already, as far as it is known. */
  #refused = new Set();

  /**
   * @param {(name: string, format: Format, mayTake: (name: string) => boolean) => string} freeName
   *   the engine's freeOutputName
   */
  constructor(freeName) {
    this.freeName = freeName;
  }

  /** @param {string} path */
  addInput(path) {
    const parts = folded(path).split("/");
    this.#inputNames.add(parts.at(-1));
    // The folders it lies in are taken as well.
    for (let length = parts.length; length > 0; --length)
      this.#inputs.add(parts.slice(0, length).join("/"));
  }

  /** Whether an output may replace a file of this name. @param {string} name */
  mayReplace(name) {
    return !this.#inputNames.has(folded(name));
  }

  /** The chosen folder has something of this name that stays. @param {string} path */
  refuse(path) {
    this.#outputs.delete(folded(path));
    this.#refused.add(folded(path));
  }

  /** Another folder is chosen, or what is in it may have changed. */
  forgetRefused() {
    this.#refused.clear();
  }

  /**
   * Chooses the name of an output and keeps it for it.
   * @param {string} directory where it goes
   * @param {string} inputName
   * @param {Format} format
   * @param {{ replace: boolean, run: number }} how with `replace`, outputs of earlier runs do not
   *   count
   */
  take(directory, inputName, format, { replace, run }) {
    const name = this.freeName(inputName, format, (wanted) => {
      const path = folded(joined(directory, wanted));
      if (this.#inputs.has(path) || this.#refused.has(path)) return false;
      const holder = this.#outputs.get(path);
      return holder === undefined || (replace && holder !== inMemory && holder !== run);
    });
    this.#outputs.set(folded(joined(directory, name)), run);
    return name;
  }

  /** The output is not there after all. @param {string} path */
  release(path) {
    this.#outputs.delete(folded(path));
  }

  clear() {
    this.#inputs.clear();
    this.#inputNames.clear();
    this.#outputs.clear();
    this.#refused.clear();
  }
}
