// Texts of the page and the engine, in the language that is chosen.
import * as engine from "./corvana/index.js";
import german from "./corvana/languages/de.js";

/** @typedef {Record<string, string>} Texts  one text in every language, by code */

/** English is what the texts are written in. */
export const languages = [
  { code: "en", name: "English", catalogue: undefined },
  { code: "de", name: "Deutsch", catalogue: german },
];

/** The engine groups the digits of counts in every language but its own English. */
const grouping = { ...engine.english };

let current = languages[0];

/** @param {string} code English where there is no such language */
export function setLanguage(code) {
  current = languages.find((language) => language.code === code) ?? languages[0];
}

export const languageCode = () => current.code;

/** The language for functions of the engine. */
export const catalogue = () => current.catalogue;

/** @param {string} text @param {(number | string)[]} [values] for its places */
export function localised(text, values) {
  const found = engine.localised(text, current.catalogue);
  return values ? engine.fillText(found, values.map(String)) : found;
}

/** @param {string} singular @param {string} plural @param {number} count
 * @param {string[]} [values] for its places besides the count */
export function localisedCount(singular, plural, count, values) {
  const found = engine.localisedCount(singular, plural, count, current.catalogue ?? grouping);
  return values ? engine.fillText(found, values) : found;
}

/**
 * What `make` gives in each language.
 * @template Value
 * @param {(code: string) => Value} make
 * @returns {Record<string, Value>}
 */
export function inEveryLanguage(make) {
  const shown = current;
  try {
    return Object.fromEntries(
      languages.map((language) => {
        current = language;
        return [language.code, make(language.code)];
      }),
    );
  } finally {
    current = shown;
  }
}

/** A text of the window without the mark of its key. @param {string} text */
export const plain = (text) => text.replace(/&(.)/g, "$1");

/** @param {number} number @param {Intl.NumberFormatOptions} [options] */
export const figure = (number, options) => number.toLocaleString(current.code, options);
