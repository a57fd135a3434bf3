// The list of files on the screen. Rows are made and changed in slices, so that the page never
// stalls; pictures are drawn when they come into view.
import { drawSmall, onColours } from "./drawing.js";
import { byId } from "./elements.js";
import { onLanguage } from "./language.js";
import { pictureOf } from "./marks.js";
import { RowView } from "./row.js";
import { Viewer } from "./viewer.js";

/** @typedef {import("./session.js").Row} Row */

/** What the list may take of a frame, in milliseconds. */
const slice = 8;
/** Rows that come and go with the filter in one frame: laying them out takes the time. */
const mostFiltered = 200;

export class List {
  #list = byId("list");
  /** @type {Map<number, RowView>} */
  #views = new Map();
  /** @type {Map<number, Viewer>} */
  #viewers = new Map();
  /** @type {Row[]} */
  #new = [];
  /** @type {Set<Row>} */
  #changed = new Set();
  /** @type {Set<RowView>} whose pictures are in view */
  #visible = new Set();
  /** @type {Set<RowView>} */
  #undrawn = new Set();
  #filter = "all";
  /** @type {Set<RowView>} which the filter has not reached */
  #unfiltered = new Set();
  #frame = 0;
  #observer = new IntersectionObserver((entries) => this.#see(entries), { rootMargin: "200px" });
  #sizes = new ResizeObserver(() => this.#redraw());

  /** @param {Record<"save" | "retry", (row: Row) => void>} actions
   * @param {import("./queue.js").Helper} helper */
  constructor(actions, helper) {
    this.actions = actions;
    this.helper = helper;
    this.#list.addEventListener("click", (event) => this.#click(event));
    this.#sizes.observe(this.#list);
    onColours(() => this.#redraw());
    onLanguage(() => {
      for (const viewer of this.#viewers.values()) viewer.showTexts();
      // The next frame has enough to do with laying out the page in another language.
      cancelAnimationFrame(this.#frame);
      this.#frame = requestAnimationFrame(() => {
        for (const { row } of this.#views.values()) this.#changed.add(row);
        this.#frame = 0;
        this.#next();
      });
    });
  }

  /** @param {Row[]} rows */
  add(rows) {
    this.#new = this.#new.concat(rows);
    this.#next();
  }

  /** @param {Row} row */
  change(row) {
    this.#changed.add(row);
    this.#next();
  }

  clear() {
    for (const viewer of this.#viewers.values()) viewer.close();
    this.#observer.disconnect();
    for (const collection of [this.#views, this.#viewers, this.#changed, this.#visible])
      collection.clear();
    for (const views of [this.#undrawn, this.#unfiltered]) views.clear();
    this.#new = [];
    this.#list.replaceChildren();
    this.filter("all");
  }

  /** @param {string} kept "all", "warned" or "failed" */
  filter(kept) {
    this.#filter = kept;
    this.#unfiltered = new Set(this.#views.values());
    this.#next();
  }

  /** @param {RowView} view */
  #sift({ row, element: item }) {
    item.hidden = this.#filter !== "all" && row.state !== this.#filter;
  }

  #next() {
    this.#frame ||= requestAnimationFrame(() => this.#work());
  }

  #work() {
    this.#frame = 0;
    const end = performance.now() + slice;
    const added = document.createDocumentFragment();
    let made = 0;
    for (; made < this.#new.length && performance.now() < end; ++made)
      added.append(this.#make(this.#new[made]));
    this.#new.splice(0, made);
    this.#list.append(added);
    for (const row of this.#changed) {
      if (performance.now() >= end) break;
      this.#changed.delete(row);
      this.#update(row);
    }
    let left = mostFiltered;
    for (const view of this.#unfiltered) {
      if (left-- === 0) break;
      this.#unfiltered.delete(view);
      this.#sift(view);
    }
    for (const view of this.#undrawn) {
      if (performance.now() >= end) break;
      this.#undrawn.delete(view);
      this.#draw(view);
    }
    const all = [this.#changed, this.#unfiltered, this.#undrawn];
    if (this.#new.length > 0 || all.some(({ size }) => size > 0)) this.#next();
  }

  /** @param {Row} row */
  #make(row) {
    const view = new RowView(row);
    this.#sift(view);
    this.#views.set(row.id, view);
    this.#observer.observe(view.element);
    return view.element;
  }

  /** @param {Row} row */
  #update(row) {
    const view = this.#views.get(row.id);
    if (!view) return;
    const hadPicture = view.canvas !== null;
    view.update();
    this.#sift(view);
    if (!hadPicture && view.canvas && this.#visible.has(view)) this.#undrawn.add(view);
  }

  /** @param {IntersectionObserverEntry[]} entries */
  #see(entries) {
    for (const { target, isIntersecting } of entries) {
      const view = this.#views.get(Number(/** @type {HTMLElement} */ (target).dataset.row));
      if (!view) continue;
      if (isIntersecting) {
        this.#visible.add(view);
        if (view.canvas) this.#undrawn.add(view);
      } else {
        this.#visible.delete(view);
        this.#undrawn.delete(view);
        if (view.canvas) view.canvas.width = 0;
      }
    }
    this.#next();
  }

  #redraw() {
    for (const view of this.#visible) if (view.canvas) this.#undrawn.add(view);
    this.#next();
  }

  /** @param {RowView} view */
  #draw({ canvas, row }) {
    if (!canvas || !row.sound) return;
    const { clientWidth, clientHeight } = canvas;
    if (clientWidth > 0) drawSmall(canvas, pictureOf(row.sound), clientWidth, clientHeight);
  }

  /** @param {Event} event */
  #click({ target }) {
    const button = target instanceof Element ? target.closest("[data-action]") : null;
    const item = button?.closest("li.row");
    const view = this.#views.get(Number(/** @type {HTMLElement} */ (item)?.dataset.row));
    if (!button || !view) return;
    const action = button.getAttribute("data-action");
    if (action === "save" || action === "retry") this.actions[action](view.row);
    if (action === "warnings") view.showMoreWarnings();
    if (action === "open") this.#toggle(view);
  }

  /** @param {RowView} view */
  #toggle({ row, element: item, opener }) {
    const viewer = this.#viewers.get(row.id);
    opener?.setAttribute("aria-expanded", String(!viewer));
    item.classList.toggle("is-open", !viewer);
    if (viewer) {
      viewer.close();
      this.#viewers.delete(row.id);
    } else {
      const opened = new Viewer(row, this.helper);
      this.#viewers.set(row.id, opened);
      item.append(opened.element);
      opened.show();
    }
  }
}
