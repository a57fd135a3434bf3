// A file of the list on the screen.
import { element, foreign, icon, setText } from "./elements.js";
import { figure, languageCode, localised, localisedCount } from "./texts.js";

/** @typedef {import("./session.js").Row} Row */

/** Warnings that are shown without being asked for, and those that come with each time. */
const firstWarnings = 4;
const moreWarnings = 500;

/** @param {Row} row */
export function stateText({ state, fraction, output }) {
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
      return output?.blob ? localised("Not written") : localised("Failed");
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
  #name;
  #warnings = element("div", { class: "warnings" });
  #more = element("button", { type: "button", class: "more", "data-action": "warnings" });
  #bar = element("span", { class: "fraction" });
  #actions = element("div", { class: "actions" });
  /** Its buttons stay the same: one of them may have the focus. */
  #save = element("button", { type: "button", "data-action": "save" }, icon("save"), "");
  #retry = element("button", { type: "button", "data-action": "retry" });
  #written = element("span", { class: "written" });
  #shown = "";
  #mostWarnings = firstWarnings;
  /** @type {HTMLCanvasElement | null} */
  canvas = null;
  /** @type {HTMLButtonElement | null} */
  opener = null;

  /** @param {Row} row */
  constructor(row) {
    this.row = row;
    this.#name = element("h3", { tabindex: "-1" }, foreign(row.name));
    this.element = element(
      "li",
      { class: "row", id: `row-${row.id}`, "data-row": `${row.id}` },
      this.#icon,
      element(
        "div",
        { class: "what" },
        this.#name,
        element("p", { class: "about" }, this.#state, this.#facts),
        this.#result,
        this.#warnings,
        this.#more,
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
      row.retry,
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
        element("strong", { title: path }, foreign(path)),
        ` ${conversions[languageCode()].summary}`,
      );
    }
    if (failure) parts.push(element("span", { class: "failure" }, failure[languageCode()]));
    this.#result.replaceChildren(...parts);
  }

  #showWarnings() {
    const warnings = this.row.conversions?.[languageCode()].warnings ?? [];
    const shown = warnings.slice(0, this.#mostWarnings);
    this.#warnings.replaceChildren(...shown.map(({ text }) => element("p", {}, text)));
    const count = warnings.length - shown.length;
    this.#more.textContent = localisedCount("%ld further warning.", "%ld further warnings.", count);
    this.#offer(this.#more, count > 0);
  }

  showMoreWarnings() {
    const shown = this.#warnings.children.length;
    this.#mostWarnings += moreWarnings;
    this.update();
    const next = /** @type {HTMLElement | undefined} */ (this.#warnings.children[shown]);
    next?.setAttribute("tabindex", "-1");
    next?.focus();
  }

  /** Before it goes, the focus goes to the row's name. @param {HTMLElement} button @param {boolean} isShown */
  #offer(button, isShown) {
    if (!isShown && document.activeElement === button) this.#name.focus();
    button.hidden = !isShown;
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
    const { output, retry } = this.row;
    if (!output && !retry && !this.#actions.hasChildNodes()) return;
    if (output?.blob) {
      this.#save.setAttribute("aria-label", localised("Save %@", [output.name]));
      this.#save.lastChild?.replaceWith(localised("Save"));
    }
    this.#retry.textContent = localised("Try Again");
    this.#retry.setAttribute("aria-label", localised("Try Again: %@", [this.row.name]));
    this.#written.textContent = localised("Written");
    this.#offer(this.#save, !!output?.blob);
    this.#offer(this.#retry, retry !== null);
    this.#written.hidden = !output || !!output.blob;
    if (!this.#actions.hasChildNodes())
      this.#actions.append(this.#save, this.#retry, this.#written);
  }
}
