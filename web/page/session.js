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
 * @property {Job["kind"] | null} retry what can be tried again
 */
/**
 * @typedef {object} Output
 * @property {string} directory
 * @property {string} name
 * @property {Blob | null} blob null where it is in the chosen folder
 * @property {boolean} isSaved it is no longer in this page alone
 */
/** @typedef {{ row: Row, kind: "convert" | "write", target: { directory: string, name: string } | null }} Job */

/**
 * @typedef {object} SessionListener
 * @property {(rows: Row[]) => void} added
 * @property {(row: Row) => void} changed
 * @property {() => void} progressed the status has changed
 * @property {(kind: Job["kind"]) => void} started
 * @property {() => void} ended
 */

/** What the present or last run comes to. */
const emptyRun = () => ({
  number: 0,
  total: 0,
  finished: 0,
  fraction: 0,
  /** Files that were to be converted, whatever came of them. */
  processed: 0,
  warned: 0,
  failed: 0,
  /** Outputs that were in memory. */
  written: 0,
  unwritten: 0,
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
  /** @type {Set<Row>} whose outputs are on their way from memory to the folder */
  #toWrite = new Set();
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
      if (state === "failed") ++counts.failed;
      if (output?.blob) ++counts.kept;
    }
    return counts;
  }

  get isBusy() {
    return this.#queue.isBusy;
  }

  /** The outputs that are in this page and nowhere else. */
  get unsaved() {
    return this.rows.flatMap(({ output }) => (output?.blob && !output.isSaved ? [output] : []));
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
    const rest = { fraction: 0, sound: null, conversions: null, output: null, retry: null };
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
    for (const { row, kind } of jobs) {
      row.retry = null;
      if (kind === "write") this.#toWrite.add(row);
    }
    this.#queue.add(jobs, first);
    if (this.run.finished === 0) this.listener.started(jobs[0].kind);
    this.listener.progressed();
  }

  stop() {
    this.#queue.stop();
  }

  /** Once more what has failed for a reason that may be gone, or was stopped. @param {Row} row */
  retry(row) {
    const kind = row.retry;
    if (!kind) return;
    row.failure = null;
    row.state = kind === "convert" ? "waiting" : convertedState(row);
    this.#start([{ row, kind, target: null }]);
    this.#changed(row);
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
      .filter((row) => row.output?.blob && !this.#toWrite.has(row))
      .map((row) => ({ row, kind: "write", target: null }));
  }

  /** Whether the tree cannot change, since outputs are being written. */
  get isWriting() {
    return this.folder !== null && this.isBusy;
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

  /** They are in the user's hands now. @param {{ blob: Blob }[]} items */
  saved(items) {
    const blobs = new Set(items.map(({ blob }) => blob));
    for (const { output } of this.rows)
      if (output?.blob && blobs.has(output.blob)) output.isSaved = true;
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
    if (ending.type !== "stopped" && kind === "convert") ++run.processed;
    this.#toWrite.delete(row);
    if (ending.type === "converted") {
      row.sound = ending.sound;
      row.conversions = ending.conversions;
      row.state = convertedState(row);
      row.output = {
        ...(target ?? { directory: "", name: "" }),
        blob: ending.blob,
        isSaved: false,
      };
      if (ending.blob) this.#keep(row);
      if (row.state === "warned") ++run.warned;
      if (ending.blob && this.folder) this.#start(this.#writings([row]), true);
    } else if (ending.type === "written") {
      const place = /** @type {NonNullable<typeof target>} */ (target);
      row.output = { ...place, blob: null, isSaved: true };
      row.state = convertedState(row);
      row.failure = null;
      ++run.written;
    } else {
      if (target) this.#release(target);
      if (target && row.output) this.#keep(row);
      if (ending.type === "failed") {
        row.sound ??= ending.sound;
        row.state = "failed";
        row.failure = failureTexts(job, ending.trouble);
        const { trouble } = ending;
        if ("action" in trouble && ["create", "write"].includes(trouble.action)) ++run.unwritten;
        else ++run.failed;
        // What the engine says of a file, it would say again.
        if ("action" in trouble) row.retry = kind;
      } else {
        row.retry = kind;
        if (kind === "convert") row.state = "stopped";
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

/** @param {Row} row @returns {State} */
const convertedState = ({ conversions }) =>
  conversions?.en.warnings.length ? "warned" : "converted";

/** @param {Job} job @param {Trouble} trouble @returns {Texts} */
function failureTexts({ row, target }, trouble) {
  if ("texts" in trouble) return trouble.texts;
  const { action, reason } = trouble;
  const input = joined(row.directory, row.name);
  const output = target && joined(target.directory, target.name);
  return inEveryLanguage(() => {
    if (action === "create" && output)
      return localised("Cannot create '%1$@': %2$@", [output, reason]);
    if (action === "write" && output)
      return localised("Cannot write '%1$@': %2$@", [output, reason]);
    if (action === "read") return localised("Cannot read '%1$@': %2$@", [input, reason]);
    return localised("The conversion has broken off: %@", [reason]);
  });
}
