// Which names outputs get: never one of an input of the list, nor of another output.
import { joined } from "./entries.js";

/** Names that a disk could take for the same. @param {string} path */
const folded = (path) => path.normalize("NFC").toLowerCase();

/** @typedef {"aiff" | "wav"} Format */

export class OutputNames {
  #inputs = new Set();
  /** @type {Map<string, number>} the run of each output */
  #outputs = new Map();
  /** @type {Map<string, Set<string>>} what is there already, by folder */
  #existing = new Map();

  /**
   * @param {(name: string, format: Format, mayTake: (name: string) => boolean) => string} freeName
   *   the engine's freeOutputName
   */
  constructor(freeName) {
    this.freeName = freeName;
  }

  /** @param {string} path */
  addInput(path) {
    this.#inputs.add(folded(path));
  }

  /** What the chosen folder holds below `directory`. @param {string} directory @param {string[]} names */
  setExisting(directory, names) {
    this.#existing.set(folded(directory), new Set(names.map(folded)));
  }

  /** Another folder is chosen, or what is in it may have changed. */
  forgetExisting() {
    this.#existing.clear();
  }

  /**
   * Chooses the name of an output and keeps it for it.
   * @param {string} directory where it goes
   * @param {string} inputName
   * @param {Format} format
   * @param {{ replace: boolean, run: number }} how with `replace`, what is there already does not
   *   count, nor do outputs of earlier runs
   */
  take(directory, inputName, format, { replace, run }) {
    const existing = this.#existing.get(folded(directory));
    const name = this.freeName(inputName, format, (wanted) => {
      const path = folded(joined(directory, wanted));
      if (this.#inputs.has(path)) return false;
      if (replace) return this.#outputs.get(path) !== run;
      return !this.#outputs.has(path) && !existing?.has(folded(wanted));
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
    this.#outputs.clear();
    this.#existing.clear();
  }
}
