// What the command line makes of files, to compare with, and files for that.
import { execFileSync, spawnSync } from "node:child_process";
import * as fs from "node:fs";
import * as os from "node:os";
import * as path from "node:path";
import { fileURLToPath } from "node:url";
import { variants } from "./variants.js";

export const root = fileURLToPath(new URL("../../..", import.meta.url));
export const built = path.join(root, "build-web");

/**
 * @typedef {object} Line of `corvana-cli --json`, as docs/schemas/conversion.schema.json has it
 * @property {string} input
 * @property {string} [output]
 * @property {string} [format]
 * @property {number} [bytes]
 * @property {{ code: string, values: (number | string)[], text: string }[]} warnings
 * @property {{ code: string, values: (number | string)[], text: string }} [error]
 */

/** @param {string} language @param {string[]} parameters @returns {string} */
export function say(language, ...parameters) {
  const run = spawnSync(path.join(root, "build/corvana-cli"), parameters, {
    // Of German also the point in 1.234.
    env: {
      ...process.env,
      LOCPATH: path.join(built, "locales"),
      LC_ALL: language === "de" ? "de_DE.UTF-8" : "C.UTF-8",
      LANGUAGE: language,
      NO_COLOR: "1",
    },
    encoding: "utf8",
    maxBuffer: 2 ** 30,
  });
  if (run.error || run.status === null || run.status > 1) throw run.error ?? Error(run.stderr);
  return run.stdout;
}

/** @param {string} language @param {string[]} parameters @returns {any[]} a record for each file */
export function records(language, ...parameters) {
  const lines = say(language, ...parameters).split("\n");
  return lines.filter(Boolean).map((line) => JSON.parse(line));
}

/** @param {string} folder @returns {string[]} paths of files below it */
export function filesIn(folder) {
  const found = fs.readdirSync(folder, { withFileTypes: true }).flatMap((entry) => {
    const file = path.join(folder, entry.name);
    return entry.isDirectory() ? filesIn(file) : [file];
  });
  return found.sort();
}

/** @param {string} name @returns {string} a new folder, gone when the tests end */
export function temporaryFolder(name) {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), `corvana-${name}-`));
  process.on("exit", () => fs.rmSync(folder, { recursive: true, force: true }));
  return folder;
}

/** @param {string} folder gets the example instruments */
export function makeExamples(folder) {
  execFileSync(path.join(root, "build/tools/make_example_instruments"), [folder]);
}

/**
 * The example instruments and faulty ones made of them, under names that clash, that are not
 * English, that a search leaves out.
 * @param {string} folder
 * @param {number} count of faulty ones
 */
export function makeLibrary(folder, count) {
  makeExamples(folder);
  const examples = filesIn(folder);
  const contents = examples.map((file) => fs.readFileSync(file));
  const endings = [".wav", ".aif", ".aiff", ".WAVE", ".aifc", ".AIFC", ".v2.wav"];
  const places = ["Kit", "Kit/Tiefe Töne", "Kit/高い 🎹", "a.wav"];
  let index = 0;
  for (const content of variants(contents, count)) {
    const place = path.join(folder, places[index % places.length]);
    fs.mkdirSync(place, { recursive: true });
    // Some have a neighbour whose output would have the same name, whatever they themselves are.
    const stem = `${Math.floor(index / 8)} ${index % 3 ? "Ton" : "é"}`;
    fs.writeFileSync(path.join(place, stem + endings[index++ % endings.length]), content);
  }
  for (const name of ["AIFF/out.aif", "wav/in.wav", "no audio.txt", "aif", "x.wav.bak", "y.mp3"]) {
    fs.mkdirSync(path.dirname(path.join(folder, "Kit", name)), { recursive: true });
    fs.writeFileSync(path.join(folder, "Kit", name), contents[0]);
  }
}
