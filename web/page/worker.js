// Where files are read, converted and written: the page itself only shows what comes of it. One
// order after another; a stop ends the present one after its block.
import { ConversionError, open, outputSubfolder, waveformOf } from "./corvana/index.js";
import { joined } from "./entries.js";
import { OutputFile } from "./output_file.js";
import { catalogue, inEveryLanguage, localised } from "./texts.js";
import { coarse, overviewColumns } from "./waveform.js";
import { zipOf } from "./zip.js";

/** @typedef {import("./corvana/index.js").OutputFormat} OutputFormat */
/** @typedef {import("./messages.js").Order} Order */
/** @typedef {import("./messages.js").Report} Report */
/** @typedef {import("./messages.js").Sound} Sound */
/** @typedef {import("./messages.js").Target} Target */
/** @typedef {import("./messages.js").Trouble} Trouble */
/** @typedef {import("./corvana/index.js").Conversion} Conversion */
/** @typedef {import("./corvana/index.js").SampledFile} SampledFile */

/** Loops and markers of which a file's record keeps more than their number. */
const mostMarks = 1000;
/** What is read of a file takes this part of its progress, what is written up to that one. */
const [readPart, writtenPart] = [0.4, 0.9];

let stopping = new AbortController();
/** @type {Promise<void>} */
let last = Promise.resolve();
/** @type {Map<number, (answer: { name: string, mayReplace: boolean }) => void>} */
const questions = new Map();

/** @param {Report} report @param {Transferable[]} [handedOver] */
const tell = (report, handedOver = []) => postMessage(report, { transfer: handedOver });

self.onmessage = ({ data }) => take(data);
tell({ type: "ready" });

/** @param {Order} order */
function take(order) {
  if (order.type === "name") {
    questions.get(order.id)?.(order);
    questions.delete(order.id);
  } else if (order.type === "stop") {
    stopping.abort();
    for (const answer of questions.values()) answer({ name: "", mayReplace: false });
    questions.clear();
    stopping = new AbortController();
  } else {
    const { signal } = stopping;
    last = last.then(() => carryOut(order, signal));
  }
}

/** @param {Exclude<Order, { type: "name" | "stop" }>} order @param {AbortSignal} signal */
async function carryOut(order, signal) {
  const { id } = order;
  try {
    if (order.type === "zip") await zip(id, order.items);
    else if (order.type === "stretch") await drawStretch(order);
    else if (signal.aborted) tell({ type: "stopped", id });
    else if (order.type === "write") await write(order, signal);
    else await convert(order.id, order.file, order.target, signal);
  } catch (error) {
    if (error === signal.reason) return tell({ type: "stopped", id });
    tell({ type: "failed", id, trouble: troubleOf(error), sound: null, isBroken: isBroken(error) });
  }
}

/** Where an error of the browser, or of what lies below, becomes texts. */
class Failure extends Error {
  /** @param {Trouble} trouble */
  constructor(trouble) {
    super();
    this.trouble = trouble;
  }
}

/** The engine, or its memory, has come to an end that it does not know. @param {unknown} error */
const isBroken = (error) =>
  error instanceof WebAssembly.RuntimeError || error instanceof RangeError;

/** @param {unknown} error */
const reasonOf = (error) => (error instanceof Error ? error.message || error.name : String(error));

/** @param {unknown} error @returns {Trouble} */
function troubleOf(error) {
  if (error instanceof Failure) return error.trouble;
  // Without values, its text is one that the catalogue knows.
  if (error instanceof ConversionError)
    return { texts: inEveryLanguage(() => localised(error.message)) };
  return { action: isBroken(error) ? "convert" : "read", reason: reasonOf(error) };
}

/** Tells how far a file is, a few times a second. @param {number} id */
function progressOf(id) {
  let next = performance.now() + 60;
  return (/** @type {number} */ fraction) => {
    const now = performance.now();
    if (now < next) return;
    next = now + 60;
    tell({ type: "progress", id, fraction });
  };
}

/** @param {number} id @param {File} file @param {Target | null} target @param {AbortSignal} signal */
async function convert(id, file, target, signal) {
  tell({ type: "begun", id });
  const progress = progressOf(id);
  const onProgress = (/** @type {number} */ fraction) => progress(readPart * fraction);
  const sampled = await open(file, { signal, onProgress });
  try {
    const sound = soundOf(sampled);
    const { conversions, failure } = planned(sampled);
    if (!conversions) {
      sound.overview = await overviewOf(sampled, sound.frames, signal, progress);
      tellSound({ type: "failed", id, trouble: { texts: failure }, sound, isBroken: false });
      return;
    }
    const { format, outputSize } = conversions.en;
    const output = target ? await openOutput(id, format, target, signal) : new KeptOutput();
    await copy(sampled.blocks(), output, signal, (size) =>
      progress(readPart + ((writtenPart - readPart) * size) / outputSize),
    );
    const blob = output instanceof KeptOutput ? output.blob() : null;
    let isEngineBroken = false;
    try {
      sound.overview = await overviewOf(sampled, sound.frames, signal, (fraction) =>
        progress(writtenPart + (1 - writtenPart) * fraction),
      );
    } catch (error) {
      // The output is there all the same.
      isEngineBroken = isBroken(error);
    }
    tellSound({ type: "converted", id, sound, conversions, blob, isBroken: isEngineBroken });
  } finally {
    sampled.close();
  }
}

/** What the conversion comes to in each language, or why there is none. @param {SampledFile} sampled */
function planned(sampled) {
  /** @type {Record<string, Conversion>} */
  const conversions = {};
  const failure = inEveryLanguage((code) => {
    try {
      conversions[code] = sampled.plan({ language: catalogue() });
      return "";
    } catch (error) {
      if (error instanceof ConversionError) return error.message;
      throw error;
    }
  });
  return failure.en ? { conversions: null, failure } : { conversions, failure };
}

/** @param {Extract<Report, { sound: Sound | null }>} report */
function tellSound(report) {
  const { overview = null } = report.sound ?? {};
  tell(report, overview ? [overview.buffer] : []);
}

/** @param {SampledFile} sampled @returns {Sound} */
function soundOf(sampled) {
  const info = sampled.info();
  const markers = info.markers ?? info.cuePoints ?? [];
  return {
    description: inEveryLanguage(() => sampled.describe({ language: catalogue() })),
    frames: info.frames ?? 0,
    sampleRate: info.sampleRate ?? 0,
    loops: info.loops.slice(0, mostMarks),
    loopCount: info.loopCount,
    markers: markers.slice(0, mostMarks).map(({ id, position, name }) => ({ id, position, name })),
    markerCount: info.markerCount ?? info.cuePointCount ?? 0,
    isAIFF: info.markers !== undefined,
    layout: sampled.layout(),
    overview: null,
  };
}

/** Drawn in several steps, so that a stop is heard between them; then there is none.
 * @param {SampledFile} sampled @param {number} frames @param {AbortSignal} signal
 * @param {(fraction: number) => void} onProgress
 */
async function overviewOf(sampled, frames, signal, onProgress) {
  const columns = overviewColumns(frames);
  const columnsAtOnce = Math.max(Math.floor(columns / Math.ceil(frames / 2 ** 22)), 1);
  const overview = new Int8Array(2 * columns);
  for (let begin = 0; begin < columns; begin += columnsAtOnce) {
    const end = Math.min(begin + columnsAtOnce, columns);
    const first = Math.floor((begin / columns) * frames);
    const behind = Math.floor((end / columns) * frames);
    const part = sampled.waveform(first, behind - first, end - begin);
    if (!part) return null;
    overview.set(coarse(part), 2 * begin);
    onProgress(end / columns);
    if (end < columns) await breath();
    if (signal.aborted) return null;
  }
  return columns > 0 ? overview : null;
}

/** An output in memory. Each block goes to the browser, which may put it on the disk. */
class KeptOutput {
  /** @type {Blob[]} */
  #parts = [];

  /** @param {Uint8Array<ArrayBuffer>} block */
  async write(block) {
    this.#parts.push(new Blob([block]));
  }
  async close() {}
  async abort() {}
  blob() {
    return new Blob(this.#parts, { type: "application/octet-stream" });
  }
}

/** @param {{ id: number, blob: Blob, format: OutputFormat, target: Target }} order
 * @param {AbortSignal} signal */
async function write({ id, blob, format, target }, signal) {
  tell({ type: "begun", id });
  const progress = progressOf(id);
  const output = await openOutput(id, format, target, signal);
  await copy(blocksOf(blob), output, signal, (size) => progress(size / blob.size));
  tell({ type: "written", id });
}

/** @param {Blob} blob */
async function* blocksOf(blob) {
  const blockSize = 2 ** 20;
  for (let at = 0; at < blob.size; at += blockSize)
    yield new Uint8Array(await blob.slice(at, at + blockSize).arrayBuffer());
}

/** Nothing of an output stays that is not complete.
 * @param {Iterable<Uint8Array<ArrayBuffer>> | AsyncIterable<Uint8Array<ArrayBuffer>>} blocks
 * @param {KeptOutput | OutputFile} output @param {AbortSignal} signal
 * @param {(size: number) => void} onProgress told how much is written
 */
async function copy(blocks, output, signal, onProgress) {
  let size = 0;
  let pause = performance.now() + 20;
  try {
    for await (const block of blocks) {
      await orFailure("write", output.write(block));
      onProgress((size += block.length));
      if (performance.now() < pause) continue;
      await breath();
      signal.throwIfAborted();
      pause = performance.now() + 20;
    }
    await orFailure("write", output.close());
  } catch (error) {
    await output.abort();
    throw error;
  }
}

/** The page chooses the name: it knows all inputs and outputs.
 * @param {number} id @param {OutputFormat} format @param {Target} target
 * @param {AbortSignal} signal
 */
async function openOutput(id, format, target, signal) {
  const { folder, subfolder } = target;
  const directory = subfolder
    ? joined(target.directory, outputSubfolder(format))
    : target.directory;
  /** @type {string | null} */
  let refused = null;
  for (;;) {
    /** @type {{ name: string, mayReplace: boolean }} */
    const { name, mayReplace } = await new Promise((resolve) => {
      questions.set(id, resolve);
      tell({ type: "question", id, format, directory, refused });
    });
    signal.throwIfAborted();
    const creation = OutputFile.create(folder, directory, name, mayReplace);
    const output = await orFailure("create", creation);
    if (output) return output;
    refused = name;
  }
}

/** @template Value @param {"create" | "write"} action @param {Promise<Value>} work */
const orFailure = (action, work) =>
  work.catch((error) => {
    throw new Failure({ action, reason: reasonOf(error) });
  });

/** Hears what has come in meanwhile. */
async function breath() {
  const { port1, port2 } = new MessageChannel();
  await new Promise((resolve) => {
    port1.onmessage = resolve;
    port2.postMessage(null);
  });
  port1.close();
}

/** @param {Extract<Order, { type: "stretch" }>} order */
async function drawStretch({ id, file, layout, first, count, columns }) {
  const begin = layout.dataOffset + first * layout.frameBytes;
  const slice = file.slice(begin, begin + count * layout.frameBytes);
  const values = waveformOf(new Uint8Array(await slice.arrayBuffer()), layout, columns);
  tell({ type: "drawn", id, values }, values ? [values.buffer] : []);
}

/** @param {number} id @param {import("./zip.js").Item[]} items */
async function zip(id, items) {
  tell({ type: "begun", id });
  tell({ type: "zipped", id, blob: await zipOf(items, progressOf(id)) });
}
