// Which language the page is shown in: the one chosen here, else that of the browser.
import { keep, kept } from "./kept.js";
import { languageCode, languages, setLanguage } from "./texts.js";

/** @type {(() => void)[]} */
const listeners = [];

/** Calls `show` now and at every change. @param {() => void} show */
export function onLanguage(show) {
  listeners.push(show);
  show();
}

/** @param {string} code */
export function chooseLanguage(code) {
  keep("language", code);
  show(code);
}

export function startLanguage() {
  const wished = [kept("language"), ...navigator.languages.map((tag) => tag.split("-")[0])];
  show(wished.find((code) => languages.some((language) => language.code === code)) ?? "en");
}

/** @param {string} code */
function show(code) {
  setLanguage(code);
  document.documentElement.lang = languageCode();
  for (const listener of listeners) listener();
}
