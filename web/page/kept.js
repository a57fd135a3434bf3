// Choices that outlive a visit. They stay in this browser.

/** @param {string} name @returns {string | null} null where nothing is kept */
export function kept(name) {
  try {
    return localStorage.getItem(name);
  } catch {
    return null;
  }
}

/** @param {string} name @param {string} value */
export function keep(name, value) {
  try {
    localStorage.setItem(name, value);
  } catch {
    // The browser keeps nothing: the choice holds until the page is closed.
  }
}
