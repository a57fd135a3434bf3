// Texts in the language of the user. The English text is the key.

/**
 * A language other than English, as the modules in languages/ export it.
 * @typedef {object} Language
 * @property {string} code as in HTML: "de"
 * @property {Readonly<Record<string, string | readonly string[]>>} texts by the English text, the
 *   singular where there is a plural; then all forms
 * @property {(count: number) => number} plural which of the forms is for a number
 */

/** @type {Language} */
export const english = { code: "en", texts: {}, plural: (count) => (count === 1 ? 0 : 1) };

/** The text of a language for an English one. */
export function localised(/** @type {string} */ key, language = english) {
  const text = language.texts[key];
  return typeof text === "string" ? text : key;
}

/**
 * A text that depends on a number, which takes the place of "%ld". Only English, whose texts are
 * also those of programs, leaves its digits ungrouped.
 * @param {string} singular
 * @param {string} plural
 * @param {number} count
 */
export function localisedCount(singular, plural, count, language = english) {
  const forms = language.texts[singular] ?? [singular, plural];
  const text = typeof forms === "string" ? forms : forms[language.plural(count)];
  const isEnglish = language === english;
  return text.replace("%ld", () => (isEnglish ? `${count}` : count.toLocaleString(language.code)));
}
