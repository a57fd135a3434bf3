// A file of the list on the screen.
import { element, foreign, icon, setText } from "./elements.js";
import { figure, languageCode, localised, localisedCount } from "./texts.js";

/** @typedef {import("./session.js").Row} Row */

/** Warnings that are shown without being asked for, and those that come with each time. */
const firstWarnings = 4;
const moreWarnings = 500;

/** @param {Row} row */
export function stateText({ state, fraction }) {
  switch (state) {
    case "waiting":
      return localised("Waiting");
    case "working":
      return `${localised("Converting")} ${figure(fraction, { style: "percent" })}`;
    case "converted":
      return localised("Converted");
    case "warned":
      return localised("Converted, with warnings");
    case "failed":
      return localised("Failed");
    case "stopped":
      return localised("Stopped");
    default:
      return localised("Left out");
  }
}

/** The parts of a row that change. */
export class RowView {
  #icon = icon("waiting");
  #state = element("span", { class: "state" });
  #facts = element("span", { class: "facts" });
  #result = element("p", { class: "result" });
  #warnings = element("div", { class: "warnings" });
  #bar = element("span", { class: "fraction" });
  #actions = element("div", { class: "actions" });
  #shown = "";
  #mostWarnings = firstWarnings;
  /** @type {HTMLCanvasElement | null} */
  canvas = null;
  /** @type {HTMLButtonElement | null} */
  opener = null;

  /** @param {Row} row */
  constructor(row) {
    this.row = row;
    this.element = element(
      "li",
      { class: "row", id: `row-${row.id}`, "data-row": `${row.id}` },
      this.#icon,
      element(
        "div",
        { class: "what" },
        element("h3", {}, foreign(row.name)),
        element("p", { class: "about" }, this.#state, this.#facts),
        this.#result,
        this.#warnings,
      ),
      this.#actions,
      this.#bar,
    );
    this.update();
  }

  /** Shows what has become of the row, and all of it where the language is another. */
  update() {
    const { row } = this;
    const { state, fraction, output, failure } = row;
    setText(this.#state, stateText(row));
    const isAtWork = fraction > 0;
    this.element.classList.toggle("at-work", isAtWork);
    if (isAtWork) this.#bar.style.transform = `scaleX(${fraction})`;
    const path = output && `${output.directory}/${output.name}`;
    const shown = [
      state,
      languageCode(),
      path,
      !!output?.blob,
      failure?.en,
      this.#mostWarnings,
    ].join();
    if (shown === this.#shown) return;
    this.#shown = shown;
    if (this.element.dataset.state !== state) {
      this.element.dataset.state = state;
      const newIcon = icon(state);
      this.#icon.replaceWith(newIcon);
      this.#icon = newIcon;
    }
    this.#showFacts();
    this.#showResult();
    this.#showWarnings();
    this.#showPicture();
    this.#showActions();
  }

  #showFacts() {
    const { directory, sound } = this.row;
    const parts = [];
    if (directory) parts.push(" · ", foreign(directory));
    if (sound) parts.push(` · ${sound.description[languageCode()]}`);
    this.#facts.replaceChildren(...parts);
  }

  #showResult() {
    const { output, conversions, failure, directory } = this.row;
    const parts = [];
    if (output && conversions) {
      const below = output.directory.slice(directory ? directory.length + 1 : 0);
      const path = below ? `${below}/${output.name}` : output.name;
      parts.push(
        element("span", { class: "arrow", "aria-hidden": "true" }, "→ "),
        element("span", { class: "spoken" }, `${localised("Output:")} `),
        element("strong", {}, foreign(path)),
        ` ${conversions[languageCode()].summary}`,
      );
    }
    if (failure) parts.push(element("span", { class: "failure" }, failure[languageCode()]));
    this.#result.replaceChildren(...parts);
  }

  #showWarnings() {
    const warnings = this.row.conversions?.[languageCode()].warnings ?? [];
    const shown = warnings.slice(0, this.#mostWarnings);
    /** @type {HTMLElement[]} */
    const items = shown.map(({ text }) => element("p", {}, text));
    if (shown.length < warnings.length) {
      const count = warnings.length - shown.length;
      const more = element("button", { type: "button", class: "more", "data-action": "warnings" });
      more.textContent = localisedCount("%ld further warning.", "%ld further warnings.", count);
      items.push(more);
    }
    this.#warnings.replaceChildren(...items);
  }

  showMoreWarnings() {
    this.#mostWarnings += moreWarnings;
    this.update();
  }

  #showPicture() {
    const { sound, name } = this.row;
    if (!sound?.overview && !sound?.loopCount && !sound?.markerCount) return;
    if (!this.opener) {
      this.canvas = element("canvas", { width: "0", height: "0" });
      this.opener = element(
        "button",
        {
          type: "button",
          class: "picture",
          "data-action": "open",
          "aria-expanded": "false",
          "aria-controls": `details-${this.row.id}`,
        },
        this.canvas,
        icon("down"),
      );
      this.#actions.before(this.opener);
    }
    this.opener.setAttribute("aria-label", localised("Waveform of %@", [name]));
  }

  #showActions() {
    const { output } = this.row;
    const parts = [];
    if (output?.blob) {
      const label = localised("Save %@", [output.name]);
      const save = element("button", {
        type: "button",
        "data-action": "save",
        "aria-label": label,
      });
      save.append(icon("save"), localised("Save"));
      parts.push(save);
    } else if (output) {
      parts.push(element("span", { class: "written" }, localised("Written")));
    }
    this.#actions.replaceChildren(...parts);
  }
}
