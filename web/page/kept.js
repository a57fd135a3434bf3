// Choices that outlive a visit. They stay in this browser.

/** Other pages of the same address keep things as well. */
const mark = "corvana ";

/** @param {string} name @returns {string | null} null where nothing is kept */
export function kept(name) {
  try {
    return localStorage.getItem(mark + name);
  } catch {
    return null;
  }
}

/** @param {string} name @param {string} value */
export function keep(name, value) {
  try {
    localStorage.setItem(mark + name, value);
  } catch {
    // The browser keeps nothing: the choice holds until the page is closed.
  }
}
