// What the page and its worker say to each other. Types only.

/** @typedef {import("./corvana/index.js").Conversion} Conversion */
/** @typedef {import("./corvana/index.js").FileInfo} FileInfo */
/** @typedef {import("./corvana/index.js").OutputFormat} OutputFormat */
/** @typedef {import("./corvana/index.js").SampleLayout} SampleLayout */
/** @typedef {import("./texts.js").Texts} Texts */

/**
 * What a file holds, as far as a row shows it.
 * @typedef {object} Sound
 * @property {Texts} description
 * @property {number} frames
 * @property {number} sampleRate 0: unknown
 * @property {FileInfo["loops"]} loops the first of them
 * @property {number} loopCount
 * @property {Marker[]} markers the first of them
 * @property {number} markerCount
 * @property {boolean} isAIFF
 * @property {SampleLayout | null} layout
 * @property {Int8Array | null} overview lowest and highest value of each column, 127 is full scale
 */
/** @typedef {{ id: number, position: number, name: string }} Marker */

/** Where an output goes: a folder the user has chosen, and a path below it.
 * @typedef {object} Target
 * @property {FileSystemDirectoryHandle} folder
 * @property {string} directory that of the input
 * @property {boolean} subfolder
 */

/**
 * To the worker. "name" answers a question.
 * @typedef {{ type: "convert", id: number, file: File, target: Target | null }
 *   | { type: "write", id: number, blob: Blob, format: OutputFormat, target: Target }
 *   | { type: "zip", id: number, items: import("./zip.js").Item[] }
 *   | { type: "stretch", id: number, file: File, layout: SampleLayout, first: number,
 *       count: number, columns: number }
 *   | { type: "name", id: number, name: string, mayReplace: boolean }
 *   | { type: "stop" }} Order
 */

/** An error of the browser, or texts of the engine.
 * @typedef {{ texts: Texts } | { action: "read" | "convert" | "create" | "write", reason: string }} Trouble */

/**
 * From the worker. `refused`: the last answer, where it is taken in the folder. `isBroken`: the
 * engine can do no more.
 * @typedef {{ type: "ready" }
 *   | { type: "begun", id: number }
 *   | { type: "progress", id: number, fraction: number }
 *   | { type: "question", id: number, format: OutputFormat, directory: string,
 *       refused: string | null }
 *   | { type: "converted", id: number, sound: Sound, conversions: Record<string, Conversion>,
 *       blob: Blob | null, isBroken: boolean }
 *   | { type: "written", id: number }
 *   | { type: "failed", id: number, trouble: Trouble, sound: Sound | null, isBroken: boolean }
 *   | { type: "stopped", id: number }
 *   | { type: "zipped", id: number, blob: Blob }
 *   | { type: "drawn", id: number, values: Float32Array | null }} Report
 */

export {};
