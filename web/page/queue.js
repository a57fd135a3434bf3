// Hands jobs to a worker, one after another. A worker that dies costs the job it was at; another
// goes on.
import { languageCode } from "./texts.js";

/** @typedef {import("./messages.js").Order} Order */
/** @typedef {import("./messages.js").Report} Report */
/** @typedef {Extract<Report, { type: "question" }>} Question */
/** @typedef {Extract<Report, { type: "converted" | "written" | "failed" | "stopped" }>} Ending */

/**
 * @template Job
 * @typedef {object} QueueListener
 * @property {(job: Job, id: number) => Promise<Order>} order what to tell the worker; a rejection
 *   ends the job
 * @property {(job: Job) => void} began
 * @property {(job: Job, fraction: number) => void} progress
 * @property {(job: Job, question: Question) => { name: string, mayReplace: boolean }} name of the job's output
 * @property {(job: Job, ending: Ending) => void} ended
 * @property {() => void} idle after the last job
 */

/**
 * @template Job
 * @typedef {{ id: number, job: Job, isSent: boolean, hasBegun: boolean }} Taken
 */

/** Runs under the policy of this page, which forbids it every connection. The service worker sends
 * that along; without one, a worker inherits it only where its text is the page's own. */
export function startWorker() {
  const address = new URL("worker.js", import.meta.url).href;
  if (navigator.serviceWorker?.controller) return new Worker(address, { type: "module" });
  const text = new Blob([`import ${JSON.stringify(address)};`], { type: "text/javascript" });
  const copy = URL.createObjectURL(text);
  const worker = new Worker(copy, { type: "module" });
  for (const type of ["message", "error"])
    worker.addEventListener(type, () => URL.revokeObjectURL(copy), { once: true });
  return worker;
}

/** How many orders lie with the worker, so that it never waits for the page. */
const ahead = 4;

/** Its worker is there from the start, so that nothing is fetched later. @template Job */
export class Queue {
  /** @type {Job[]} */
  #waiting = [];
  /** @type {Taken<Job>[]} */
  #taken = [];
  /** @type {Worker | null} */
  #worker = null;
  #isReady = false;
  #nextId = 0;
  #sending = Promise.resolve();

  /** @param {QueueListener<Job>} listener */
  constructor(listener) {
    this.listener = listener;
    this.#start();
  }

  get isBusy() {
    return this.#taken.length + this.#waiting.length > 0;
  }

  /** @param {Job[]} jobs @param {boolean} [first] before all that wait */
  add(jobs, first = false) {
    this.#waiting = first ? [...jobs, ...this.#waiting] : [...this.#waiting, ...jobs];
    this.#takeMore();
  }

  /** Ends the present job after its block, and the others at once. */
  stop() {
    const unsent = this.#taken.filter((taken) => !taken.isSent);
    this.#taken = this.#taken.filter((taken) => taken.isSent);
    this.#worker?.postMessage({ type: "stop" });
    const jobs = [...unsent.map((taken) => taken.job), ...this.#waiting.splice(0)];
    for (const job of jobs) this.listener.ended(job, { type: "stopped", id: -1 });
    if (jobs.length > 0 && !this.isBusy) this.listener.idle();
  }

  #takeMore() {
    if (!this.#worker && this.#waiting.length > 0) this.#start();
    while (this.#isReady && this.#taken.length < ahead && this.#waiting.length > 0) {
      const job = /** @type {Job} */ (this.#waiting.shift());
      const taken = { id: this.#nextId++, job, isSent: false, hasBegun: false };
      this.#taken.push(taken);
      this.#sending = this.#sending.then(() => this.#send(taken));
    }
  }

  /** @param {Taken<Job>} taken */
  async #send(taken) {
    try {
      const order = await this.listener.order(taken.job, taken.id);
      if (!this.#taken.includes(taken)) return;
      taken.isSent = true;
      this.#worker?.postMessage(order);
    } catch (error) {
      const reason = error instanceof Error ? error.message || error.name : String(error);
      this.#fail(taken.id, { action: "read", reason });
    }
  }

  #start() {
    const worker = startWorker();
    this.#worker = worker;
    worker.onmessage = ({ data }) => this.#hear(data);
    worker.onerror = (event) => {
      event.preventDefault();
      if (worker === this.#worker) this.#replace(event.message || "worker");
    };
  }

  /** @param {Report} report */
  #hear(report) {
    if (report.type === "ready") {
      this.#isReady = true;
      return this.#takeMore();
    }
    const taken = this.#taken.find(({ id }) => id === report.id);
    if (!taken) return;
    if (report.type === "begun") {
      taken.hasBegun = true;
      this.listener.began(taken.job);
    } else if (report.type === "progress") {
      this.listener.progress(taken.job, report.fraction);
    } else if (report.type === "question") {
      const answer = this.listener.name(taken.job, report);
      this.#worker?.postMessage({ type: "name", id: report.id, ...answer });
    } else if (report.type !== "zipped" && report.type !== "drawn") {
      if ("isBroken" in report && report.isBroken) this.#restart();
      this.#end(report);
    }
  }

  /** @param {Ending} ending */
  #end(ending) {
    const at = this.#taken.findIndex(({ id }) => id === ending.id);
    if (at < 0) return;
    const [{ job }] = this.#taken.splice(at, 1);
    this.listener.ended(job, ending);
    this.#takeMore();
    if (!this.isBusy) this.listener.idle();
  }

  /** @param {number} id @param {import("./messages.js").Trouble} trouble */
  #fail(id, trouble) {
    this.#end({ type: "failed", id, trouble, sound: null, isBroken: false });
  }

  /** The worker has died. @param {string} reason */
  #replace(reason) {
    const present = this.#taken.find(({ hasBegun }) => hasBegun) ?? this.#taken[0];
    const couldNotStart = !this.#isReady;
    this.#restart();
    if (present) this.#fail(present.id, { action: "convert", reason });
    else if (couldNotStart && this.#waiting.length > 0) {
      // Without a worker nothing can be done: each job says so.
      const job = /** @type {Job} */ (this.#waiting.shift());
      this.#taken.unshift({ id: this.#nextId++, job, isSent: false, hasBegun: true });
      this.#fail(this.#taken[0].id, { action: "convert", reason });
    }
  }

  /** What lies with the worker goes back to the front, but for the job it was at. */
  #restart() {
    this.#worker?.terminate();
    this.#worker = null;
    this.#isReady = false;
    const present = this.#taken.find(({ hasBegun }) => hasBegun) ?? this.#taken[0];
    const others = this.#taken.filter((taken) => taken !== present);
    this.#taken = present ? [present] : [];
    this.#waiting.unshift(...others.map(({ job }) => job));
  }
}

/** A worker for single questions, there from the start as well. */
export class Helper {
  /** @type {Worker | null} */
  #worker = null;
  #nextId = 0;
  /** @type {Map<number, { resolve: (report: Report) => void, reject: (error: unknown) => void,
   *   onProgress: (fraction: number) => void }>} */
  #asked = new Map();
  /** @type {Promise<unknown>} */
  #ready = Promise.resolve();

  constructor() {
    this.#start();
  }

  /** Settles when the worker is loaded, or cannot be. */
  get ready() {
    return this.#ready;
  }

  /**
   * Rejects where it cannot be done.
   * @param {(id: number) => Order} orderOf
   * @param {(fraction: number) => void} [onProgress]
   * @returns {Promise<Report>}
   */
  ask(orderOf, onProgress = () => {}) {
    const worker = this.#worker ?? this.#start();
    const id = this.#nextId++;
    return new Promise((resolve, reject) => {
      // From now on the end of the worker settles it as well.
      this.#asked.set(id, { resolve, reject, onProgress });
      this.#ready.then(() => worker.postMessage(orderOf(id))).catch(reject);
    });
  }

  #start() {
    const worker = startWorker();
    this.#worker = worker;
    this.#ready = new Promise((resolve, reject) => {
      worker.onmessage = ({ data }) => {
        resolve(null);
        this.#hear(data);
      };
      worker.onerror = (event) => {
        event.preventDefault();
        worker.terminate();
        if (worker === this.#worker) this.#worker = null;
        const error = new Error(event.message || "worker");
        for (const asked of this.#asked.values()) asked.reject(error);
        this.#asked.clear();
        reject(error);
      };
    });
    this.#ready.catch(() => {});
    return worker;
  }

  /** @param {Report} report */
  #hear(report) {
    if (report.type === "ready") return;
    const asked = this.#asked.get(report.id);
    if (report.type === "progress") asked?.onProgress(report.fraction);
    if (!asked || report.type === "progress" || report.type === "begun") return;
    this.#asked.delete(report.id);
    if (report.type !== "failed") return asked.resolve(report);
    const { trouble } = report;
    asked.reject(new Error("texts" in trouble ? trouble.texts[languageCode()] : trouble.reason));
  }
}
