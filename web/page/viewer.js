// The large picture of a file: zoomed and scrolled with wheel, fingers, buttons and keys; what it
// shows is listed below in words.
import { drawLarge, onColours } from "./drawing.js";
import { element, foreign } from "./elements.js";
import { loopName, loopType, markerName, pictureOf, placeText } from "./marks.js";
import { figure, localised } from "./texts.js";
import { around, limited, moved, zoomed } from "./waveform.js";

/** @typedef {import("./session.js").Row} Row */
/** @typedef {import("./messages.js").Sound} Sound */
/** @typedef {import("./waveform.js").Columns} Columns */
/** @typedef {import("./waveform.js").View} View */

/** What is read of a file for one exact picture, in bytes. */
const mostBytes = 16 * 2 ** 20;
/** Entries of a list. */
const mostEntries = 200;
/** Steps of the slider. */
const steps = 1000;

/** @type {Set<Viewer>} */
const open = new Set();
onColours(() => open.forEach((viewer) => viewer.draw()));

export class Viewer {
  #canvas = element("canvas");
  #stage = element("div", { class: "stage", tabindex: "0", role: "group" }, this.#canvas);
  #slider = element("input", { type: "range", min: "0", max: `${steps}`, step: "any" });
  #zoomIn = button("", () => this.#zoom(0.5));
  #zoomOut = button("", () => this.#zoom(2));
  #showAll = button("", () => this.#go({ first: 0, count: this.frames }));
  #tools = element(
    "div",
    { class: "viewer-tools" },
    ...[this.#zoomIn, this.#zoomOut, this.#showAll],
  );
  #places = element("p", { class: "places figures" });
  #lists = element("div", { class: "marks" });
  #hint = element("p", { class: "hint" });
  /** @type {import("./drawing.js").Picture} all of the file */
  #whole;
  /** @type {Columns | null} the exact picture of a stretch */
  #exact = null;
  #isReading = false;
  #frame = 0;
  /** @type {Map<number, number>} x of each finger or button that is down */
  #pointers = new Map();
  #resized = new ResizeObserver(() => this.draw());

  /** @param {Row} row with a sound @param {import("./queue.js").Helper} helper */
  constructor(row, helper) {
    this.row = row;
    this.sound = /** @type {Sound} */ (row.sound);
    this.frames = Math.max(this.sound.frames, 1);
    this.helper = helper;
    /** @type {View} */
    this.view = { first: 0, count: this.frames };
    this.#whole = pictureOf(this.sound);
    this.#hint.id = `hint-${row.id}`;
    this.#stage.setAttribute("aria-describedby", this.#hint.id);
    this.element = element(
      "div",
      { class: "viewer", id: `details-${row.id}` },
      this.#tools,
      this.#stage,
      this.#slider,
      this.#places,
      this.#hint,
      this.#lists,
    );
    this.#listen();
    this.showTexts();
  }

  show() {
    open.add(this);
    this.#resized.observe(this.#stage);
  }

  close() {
    open.delete(this);
    this.#resized.disconnect();
    cancelAnimationFrame(this.#frame);
    this.element.remove();
  }

  showTexts() {
    const { name } = this.row;
    this.#whole = pictureOf(this.sound);
    this.#stage.setAttribute("aria-label", localised("Waveform of %@", [name]));
    this.#slider.setAttribute("aria-label", localised("Part that is shown"));
    this.#hint.textContent = localised(
      "Keys: + and − zoom, arrows scroll, Home and End go to the ends. The mouse wheel zooms when the waveform is selected, or with Ctrl.",
    );
    this.#zoomIn.textContent = localised("Zoom In");
    this.#zoomOut.textContent = localised("Zoom Out");
    this.#showAll.textContent = localised("Show All");
    this.#showLists();
    this.draw();
  }

  #showLists() {
    const { sound } = this;
    const lists = [];
    if (sound.loopCount > 0) {
      const rows = sound.loops.slice(0, mostEntries).map((loop) => this.#loopRow(loop));
      const heads = [
        localised("Loop"),
        localised("Type"),
        localised("Frames"),
        localised("Length"),
      ];
      lists.push(table(localised("Loops"), heads, rows, sound.loopCount));
    }
    if (sound.markerCount > 0) {
      const rows = sound.markers.slice(0, mostEntries).map((marker) => this.#markerRow(marker));
      const title = sound.isAIFF ? localised("Markers") : localised("Cue points");
      lists.push(table(title, [localised("Name"), localised("Position")], rows, sound.markerCount));
    }
    this.#lists.replaceChildren(...lists);
  }

  /** @param {Sound["loops"][0]} loop */
  #loopRow(loop) {
    const { start, end } = loop;
    if (start === null || end === null)
      return element("tr", {}, cell(loopName(loop)), cell(loopType(loop)), cell("–"), cell("–"));
    const frames = `${figure(start)} – ${figure(end)}`;
    if (end < start)
      return element("tr", {}, cell(loopName(loop)), cell(loopType(loop)), cell(frames), cell("–"));
    const show = button(loopName(loop), () => this.#go(around(start, end + 1, this.frames)));
    show.className = "more";
    const length = placeText(this.sound, end - start + 1);
    return element("tr", {}, cell(show), cell(loopType(loop)), cell(frames), cell(length));
  }

  /** @param {Sound["markers"][0]} marker */
  #markerRow(marker) {
    const { position } = marker;
    const count = Math.max(this.frames / 50, 64);
    const show = button("", () => this.#go({ first: position - count / 2, count }));
    show.append(foreign(markerName(this.sound, marker)));
    show.className = "more";
    return element("tr", {}, cell(show), cell(placeText(this.sound, position)));
  }

  #listen() {
    const stage = this.#stage;
    stage.addEventListener("wheel", (event) => this.#turn(event), { passive: false });
    stage.addEventListener("keydown", (event) => this.#press(event));
    stage.addEventListener("pointerdown", (event) => {
      this.#pointers.set(event.pointerId, event.clientX);
      stage.setPointerCapture(event.pointerId);
      stage.classList.add("is-held");
    });
    stage.addEventListener("pointermove", (event) => this.#drag(event));
    for (const type of ["pointerup", "pointercancel"])
      stage.addEventListener(type, (event) => {
        this.#pointers.delete(/** @type {PointerEvent} */ (event).pointerId);
        stage.classList.toggle("is-held", this.#pointers.size > 0);
      });
    this.#slider.addEventListener("input", () => {
      const first = (Number(this.#slider.value) / steps) * (this.frames - this.view.count);
      this.#go({ first, count: this.view.count });
    });
  }

  /** @param {WheelEvent} event */
  #turn(event) {
    const isSideways = event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY);
    const isChosen = document.activeElement === this.#stage || event.ctrlKey || event.metaKey;
    if (!isSideways && !isChosen) return;
    event.preventDefault();
    const turned = (isSideways && event.deltaX) || event.deltaY;
    const pixels = event.deltaMode === 0 ? turned : turned * 30;
    if (isSideways)
      return this.#go(moved(this.view, pixels / this.#stage.clientWidth, this.frames));
    const factor = Math.exp(Math.max(-1, Math.min(pixels * (event.ctrlKey ? 0.01 : 0.003), 1)));
    this.#zoom(factor, this.#placeOf(event.clientX));
  }

  /** @param {number} clientX */
  #placeOf(clientX) {
    const { left, width } = this.#stage.getBoundingClientRect();
    return Math.min(Math.max((clientX - left) / width, 0), 1);
  }

  /** One finger scrolls, two zoom. @param {PointerEvent} event */
  #drag({ pointerId, clientX }) {
    const before = this.#pointers.get(pointerId);
    if (before === undefined) return;
    this.#pointers.set(pointerId, clientX);
    const other = [...this.#pointers].find(([id]) => id !== pointerId)?.[1];
    if (other === undefined) {
      this.#go(moved(this.view, (before - clientX) / this.#stage.clientWidth, this.frames));
    } else {
      const [was, is] = [Math.abs(before - other), Math.abs(clientX - other)];
      this.#zoom(Math.max(was, 8) / Math.max(is, 8), this.#placeOf((clientX + other) / 2));
    }
  }

  /** @param {KeyboardEvent} event */
  #press(event) {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const { count } = this.view;
    /** @type {Record<string, () => void>} */
    const actions = {
      "+": () => this.#zoom(0.5),
      "=": () => this.#zoom(0.5),
      "-": () => this.#zoom(2),
      "−": () => this.#zoom(2),
      ArrowUp: () => this.#zoom(0.5),
      ArrowDown: () => this.#zoom(2),
      ArrowLeft: () => this.#go(moved(this.view, -0.1, this.frames)),
      ArrowRight: () => this.#go(moved(this.view, 0.1, this.frames)),
      PageUp: () => this.#go(moved(this.view, -0.9, this.frames)),
      PageDown: () => this.#go(moved(this.view, 0.9, this.frames)),
      Home: () => this.#go({ first: 0, count }),
      End: () => this.#go({ first: this.frames - count, count }),
    };
    if (!Object.hasOwn(actions, event.key)) return;
    event.preventDefault();
    actions[event.key]();
  }

  /** @param {number} factor @param {number} [at] */
  #zoom(factor, at = 0.5) {
    this.#go(zoomed(this.view, factor, at, this.frames));
  }

  /** @param {View} view */
  #go(view) {
    this.view = limited(view, this.frames);
    this.draw();
  }

  draw() {
    this.#frame ||= requestAnimationFrame(() => {
      this.#frame = 0;
      this.#drawNow();
    });
  }

  #drawNow() {
    const { sound, view, frames } = this;
    const { clientWidth: width, clientHeight: height } = this.#stage;
    if (width === 0) return;
    const { first, count } = view;
    const last = first + count;
    const whole = this.#whole.columns;
    const exact = this.#exact;
    const isCovered = exact && exact.first <= first && exact.first + exact.count >= last;
    const columns = isCovered && this.#isFiner(exact, whole) ? exact : whole;
    drawLarge(this.#canvas, { ...this.#whole, columns, view }, width, height);

    const room = frames - count;
    this.#slider.disabled = room <= 0;
    this.#slider.value = `${room > 0 ? (first / room) * steps : 0}`;
    const places = [placeText(sound, first), placeText(sound, last)].map((text) =>
      element("span", {}, text),
    );
    this.#places.replaceChildren(...places);
    this.#slider.setAttribute("aria-valuetext", places.map((part) => part.textContent).join(" – "));
    this.#readExact(width);
  }

  /** @param {Columns} a @param {Columns | null} b */
  #isFiner(a, b) {
    return !b || a.values.length / a.count > b.values.length / b.count;
  }

  /** Reads what is shown and as much on both sides, where the picture at hand is too coarse.
   * @param {number} width of the picture */
  async #readExact(width) {
    const { layout, overview } = this.sound;
    if (!layout || !overview || !this.row.open || this.#isReading) return;
    const { first, count } = this.view;
    const wanted = (width * (window.devicePixelRatio || 1)) / count;
    const isFine = (/** @type {{ values: ArrayLike<number>, count: number }} */ columns) =>
      columns.values.length / 2 / columns.count >= Math.min(wanted, 1) * 0.99;
    const exact = this.#exact;
    if (isFine({ values: overview, count: this.frames })) return;
    if (exact && exact.first <= first && exact.first + exact.count >= first + count)
      if (isFine(exact)) return;
    const from = Math.max(Math.floor(first - count / 2), 0);
    const to = Math.min(Math.ceil(first + 1.5 * count), this.frames);
    if ((to - from) * layout.frameBytes > mostBytes) return;
    const columns = Math.max(Math.min(to - from, Math.ceil((to - from) * wanted)), 1);
    this.#isReading = true;
    try {
      const file = await this.row.open();
      const answer = await this.helper.ask((id) => ({
        type: "stretch",
        ...{ id, file, layout, first: from, count: to - from, columns },
      }));
      if (answer.type === "drawn" && answer.values)
        this.#exact = { first: from, count: to - from, values: answer.values, scale: 1 };
    } catch {
      // The file is no longer there: the coarse picture stays.
      this.sound.layout = null;
    } finally {
      this.#isReading = false;
    }
    this.draw();
  }
}

/** @param {string} text @param {() => void} action */
function button(text, action) {
  const made = element("button", { type: "button" }, text);
  made.addEventListener("click", action);
  return made;
}

/** @param {string | Node} content */
const cell = (content) => element("td", {}, content);

/** @param {string} title @param {string[]} heads @param {HTMLTableRowElement[]} rows
 * @param {number} count of all there are */
function table(title, heads, rows, count) {
  const made = element(
    "table",
    {},
    element("caption", {}, title),
    element(
      "thead",
      {},
      element("tr", {}, ...heads.map((head) => element("th", { scope: "col" }, head))),
    ),
    element("tbody", {}, ...rows),
  );
  if (count > rows.length) {
    const text = localised("… and %@ more", [figure(count - rows.length)]);
    const rest = element("td", { colspan: `${heads.length}` }, text);
    made.append(element("tfoot", {}, element("tr", {}, rest)));
  }
  return made;
}
