// The files of the list and what becomes of them. Knows nothing of how they are shown.
import { freeOutputName, outputSubfolder } from "./corvana/index.js";
import { joined } from "./entries.js";
import { OutputNames, inMemory } from "./output_names.js";
import { Queue } from "./queue.js";
import { inEveryLanguage, localised } from "./texts.js";

/** @typedef {import("./corvana/index.js").Conversion} Conversion */
/** @typedef {import("./entries.js").Found} Found */
/** @typedef {import("./messages.js").Sound} Sound */
/** @typedef {import("./messages.js").Trouble} Trouble */
/** @typedef {import("./queue.js").Ending} Ending */
/** @typedef {import("./queue.js").Question} Question */
/** @typedef {import("./texts.js").Texts} Texts */

/** @typedef {"waiting" | "working" | "converted" | "warned" | "failed" | "stopped" | "left"} State */

/**
 * A file of the list.
 * @typedef {object} Row
 * @property {number} id
 * @property {string} directory
 * @property {string} name
 * @property {(() => Promise<File>) | null} open
 * @property {State} state
 * @property {number} fraction of the work at it
 * @property {Sound | null} sound
 * @property {Record<string, Conversion> | null} conversions by language
 * @property {Texts | null} failure why it is not converted, or its output not written
 * @property {Output | null} output
 */
/**
 * @typedef {object} Output
 * @property {string} directory
 * @property {string} name
 * @property {Blob | null} blob null where it is in the chosen folder
 */
/** @typedef {{ row: Row, kind: "convert" | "write", target: { directory: string, name: string } | null }} Job */

/**
 * @typedef {object} SessionListener
 * @property {(rows: Row[]) => void} added
 * @property {(row: Row) => void} changed
 * @property {() => void} progressed the status has changed
 * @property {() => void} started
 * @property {() => void} ended
 */

/** What the present or last run comes to. */
const emptyRun = () => ({
  number: 0,
  total: 0,
  finished: 0,
  fraction: 0,
  converted: 0,
  warned: 0,
  failed: 0,
  written: 0,
  stopped: 0,
  isRunning: false,
  /** @type {Job | null} */
  job: null,
});

export class Session {
  /** @type {Row[]} */
  rows = [];
  run = emptyRun();
  options = { subfolder: false, replace: false };
  /** @type {FileSystemDirectoryHandle | null} */
  folder = null;
  #names = new OutputNames(freeOutputName);
  /** @type {Queue<Job>} */
  #queue;

  /** @param {SessionListener} listener */
  constructor(listener) {
    this.listener = listener;
    this.#queue = new Queue({
      order: (job, id) => this.#orderOf(job, id),
      began: (job) => this.#began(job),
      progress: (job, fraction) => this.#progressed(job, fraction),
      name: (job, question) => this.#nameFor(job, question),
      ended: (job, ending) => this.#ended(job, ending),
      idle: () => this.#idle(),
    });
  }

  /** How many rows there are in each state. */
  counts() {
    const counts = { all: this.rows.length, warned: 0, failed: 0, kept: 0 };
    for (const { state, output } of this.rows) {
      if (state === "warned") ++counts.warned;
      if (state === "failed" || state === "left") ++counts.failed;
      if (output?.blob) ++counts.kept;
    }
    return counts;
  }

  get isBusy() {
    return this.#queue.isBusy;
  }

  /** Converts files at once. @param {Found} found */
  add({ files, leftOut }) {
    const first = this.rows.length;
    for (const { path, reason } of leftOut) {
      const failure = inEveryLanguage(() =>
        reason === null
          ? localised("Not a WAV or AIFF file by its extension")
          : localised("Cannot read '%1$@': %2$@", [path, reasonOf(reason)]),
      );
      const state = reason === null ? "left" : "failed";
      this.#addRow({ directory: "", name: path, open: null, state, failure });
    }
    /** @type {Job[]} */
    const jobs = [];
    for (const { directory, name, open } of files) {
      this.#names.addInput(joined(directory, name));
      const row = this.#addRow({ directory, name, open, state: "waiting", failure: null });
      jobs.push({ row, kind: "convert", target: null });
    }
    this.listener.added(this.rows.slice(first));
    this.#start(jobs);
  }

  /** @param {Pick<Row, "directory" | "name" | "open" | "state" | "failure">} parts */
  #addRow(parts) {
    const rest = { fraction: 0, sound: null, conversions: null, output: null };
    const row = { ...parts, ...rest, id: this.rows.length };
    this.rows.push(row);
    return row;
  }

  /** @param {Job[]} jobs @param {boolean} [first] */
  #start(jobs, first = false) {
    if (jobs.length === 0) return this.listener.progressed();
    if (!this.run.isRunning) {
      this.run = { ...emptyRun(), number: this.run.number + 1, isRunning: true };
      // What is in the folder may have changed since the last run.
      this.#names.forgetRefused();
    }
    this.run.total += jobs.length;
    this.#queue.add(jobs, first);
    if (this.run.finished === 0) this.listener.started();
    this.listener.progressed();
  }

  stop() {
    this.#queue.stop();
  }

  /** Only while nothing runs. */
  clear() {
    this.rows = [];
    this.#names.clear();
    this.run = { ...emptyRun(), number: this.run.number };
  }

  /** Outputs go there from now on, those in memory as well. @param {FileSystemDirectoryHandle} folder */
  writeInto(folder) {
    this.folder = folder;
    this.#names.forgetRefused();
    this.#start(this.#writings(this.rows), true);
  }

  /** @param {Row[]} rows @returns {Job[]} */
  #writings(rows) {
    return rows
      .filter((row) => row.output?.blob)
      .map((row) => ({ row, kind: "write", target: null }));
  }

  /** @param {boolean} subfolder */
  setSubfolder(subfolder) {
    this.options.subfolder = subfolder;
    const kept = this.rows.filter(({ output }) => output?.blob);
    for (const { output } of kept) if (output) this.#release(output);
    for (const row of kept) this.#keep(row);
    for (const row of kept) this.listener.changed(row);
  }

  /** The outputs in memory, as a tree. */
  kept() {
    return this.rows.flatMap(({ output }) =>
      output?.blob ? [{ path: joined(output.directory, output.name), blob: output.blob }] : [],
    );
  }

  /** @param {Job} job @param {number} id @returns {Promise<import("./messages.js").Order>} */
  async #orderOf({ row, kind }, id) {
    const { folder } = this;
    const target = folder && {
      folder,
      directory: row.directory,
      subfolder: this.options.subfolder,
    };
    if (kind === "convert") {
      const file = await /** @type {() => Promise<File>} */ (row.open)();
      return { type: "convert", id, file, target };
    }
    const blob = /** @type {Blob} */ (row.output?.blob);
    const format = /** @type {Conversion} */ (row.conversions?.en).format;
    return {
      type: "write",
      id,
      blob,
      format,
      target: /** @type {NonNullable<typeof target>} */ (target),
    };
  }

  /** @param {Job} job */
  #began(job) {
    this.run.job = job;
    this.run.fraction = 0;
    if (job.kind === "convert") job.row.state = "working";
    this.#changed(job.row);
  }

  /** @param {Job} job @param {number} fraction */
  #progressed(job, fraction) {
    job.row.fraction = fraction;
    this.run.fraction = fraction;
    this.#changed(job.row);
  }

  /** @param {Job} job @param {Question} question */
  #nameFor(job, { directory, refused, format }) {
    if (refused) this.#names.refuse(joined(directory, refused));
    else if (job.row.output) this.#release(job.row.output);
    const { replace } = this.options;
    const how = { replace, run: this.run.number };
    const name = this.#names.take(directory, job.row.name, format, how);
    job.target = { directory, name };
    return { name, mayReplace: replace && this.#names.mayReplace(name) };
  }

  /** @param {{ directory: string, name: string }} output */
  #release({ directory, name }) {
    this.#names.release(joined(directory, name));
  }

  /** Gives an output in memory its place in the tree. @param {Row} row */
  #keep(row) {
    const { conversions, output } = row;
    if (!conversions || !output) return;
    const { format } = conversions.en;
    output.directory = this.options.subfolder
      ? joined(row.directory, outputSubfolder(format))
      : row.directory;
    const how = { replace: false, run: inMemory };
    output.name = this.#names.take(output.directory, row.name, format, how);
  }

  /** @param {Job} job @param {Ending} ending */
  #ended(job, ending) {
    const { row, kind, target } = job;
    const { run } = this;
    if (run.job === job) run.job = null;
    run.fraction = 0;
    if (ending.type === "stopped") ++run.stopped;
    else ++run.finished;
    if (ending.type === "converted") {
      row.sound = ending.sound;
      row.conversions = ending.conversions;
      row.state = ending.conversions.en.warnings.length > 0 ? "warned" : "converted";
      row.output = { ...(target ?? { directory: "", name: "" }), blob: ending.blob };
      if (ending.blob) this.#keep(row);
      ++run.converted;
      if (row.state === "warned") ++run.warned;
      if (ending.blob && this.folder) this.#start(this.#writings([row]), true);
    } else if (ending.type === "written") {
      row.output = { .../** @type {NonNullable<typeof target>} */ (target), blob: null };
      row.state = row.conversions?.en.warnings.length ? "warned" : "converted";
      row.failure = null;
      ++run.written;
    } else {
      if (target) this.#release(target);
      if (target && row.output) this.#keep(row);
      if (ending.type === "failed") {
        row.sound ??= ending.sound;
        row.state = "failed";
        row.failure = failureTexts(job, ending.trouble);
        ++run.failed;
      } else if (kind === "convert") {
        row.state = "stopped";
      }
    }
    row.fraction = 0;
    this.#changed(row);
  }

  /** @param {Row} row */
  #changed(row) {
    this.listener.changed(row);
    this.listener.progressed();
  }

  #idle() {
    this.run.isRunning = false;
    this.run.job = null;
    this.listener.progressed();
    this.listener.ended();
  }
}

/** @param {unknown} reason */
const reasonOf = (reason) =>
  reason instanceof Error ? reason.message || reason.name : String(reason);

/** @param {Job} job @param {Trouble} trouble @returns {Texts} */
function failureTexts({ row, target }, trouble) {
  if ("texts" in trouble) return trouble.texts;
  const { action, reason } = trouble;
  const input = joined(row.directory, row.name);
  const output = target ? joined(target.directory, target.name) : input;
  return inEveryLanguage(() => {
    if (action === "create") return localised("Cannot create '%1$@': %2$@", [output, reason]);
    if (action === "write") return localised("Cannot write '%1$@': %2$@", [output, reason]);
    if (action === "read") return localised("Cannot read '%1$@': %2$@", [input, reason]);
    return localised("The conversion has broken off: %@", [reason]);
  });
}
