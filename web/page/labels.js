// The texts of the page that do not change but with the language.
import { fillText, version } from "./corvana/index.js";
import { byId, element, foreign } from "./elements.js";
import { localised, plain } from "./texts.js";

/** @type {Record<string, () => string>} by id */
const texts = {
  "invitation-title": () =>
    matchMedia("(hover: none)").matches
      ? localised("Choose WAV or AIFF Files")
      : localised("Drop WAV or AIFF files or folders here"),
  purpose: () =>
    localised(
      "Converts sampled instruments between WAV and AIFF and keeps their loops, markers, cue points, root key, tuning, gain and ranges.",
    ),
  "run-title": () => localised("Progress"),
  "outputs-title": () => localised("Outputs"),
  "files-title": () => localised("Files"),
  stop: () => plain(localised("&Stop")),
  "subfolder-label": () => plain(localised("Write into a &subfolder named AIFF or WAV")),
  "replace-label": () => plain(localised("&Replace existing files")),
  "copy-log": () => localised("Copy Log"),
  clear: () => localised("Clear List"),
  "drop-text": () => localised("Drop to convert"),
  "clearing-cancel": () => plain(localised("&Cancel")),
  "clearing-go": () => localised("Discard"),
  "privacy-title": () => localised("Files stay on this machine. How to check"),
  "language-label": () => localised("Language"),
  version: () => localised("Corvana %@", [version]),
};

/** @type {Record<string, () => string>} names for screen readers, by id */
const names = {
  filter: () => localised("Files that are shown"),
  progress: () => localised("Progress"),
};

export function showLabels() {
  for (const [id, text] of Object.entries(texts)) byId(id).textContent = text();
  for (const [id, text] of Object.entries(names)) byId(id).setAttribute("aria-label", text());
  for (const button of document.querySelectorAll("[data-choose]"))
    button.textContent =
      button.getAttribute("data-choose") === "files"
        ? localised("Choose Files…")
        : localised("Choose Folder…");
  byId("privacy-list").replaceChildren(...proofs().map((text) => element("li", {}, text)));
}

const proofs = () => [
  localised(
    "Everything happens in this browser. Cut the connection and try: after the first visit the page works without a network, too.",
  ),
  localised(
    "A Content-Security-Policy at the start of the page's source forbids it every connection (connect-src 'none').",
  ),
  localised(
    "In the browser's developer tools, the list of network requests stays empty while files are converted.",
  ),
  localised(
    "No cookies, no third parties. The language and the options are remembered, in this browser only.",
  ),
];

/** Text with names in its places. @param {string} text @param {string[]} names */
export function withNames(text, names) {
  const marks = names.map((_, at) => `\0${at}\0`);
  return fillText(text, marks)
    .split("\0")
    .map((part, at) => (at % 2 === 0 ? part : foreign(names[Number(part)])));
}
