// Making elements. Texts go in as texts, never as markup.

/**
 * @template {keyof HTMLElementTagNameMap} Name
 * @param {Name} name
 * @param {Record<string, string>} [attributes]
 * @param {(Node | string)[]} content
 * @returns {HTMLElementTagNameMap[Name]}
 */
export function element(name, attributes = {}, ...content) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  made.append(...content);
  return made;
}

/** A name that is no text of the page: its direction of writing is its own. @param {string} name */
export const foreign = (name) => element("bdi", {}, name);

/** An element of the page. @param {string} id @returns {HTMLElement} */
export function byId(id) {
  const found = document.getElementById(id);
  if (!found) throw Error(`There is no ${id}.`);
  return found;
}

/** Sets a text only where it is another, which spares the layout. @param {Node} node @param {string} text */
export function setText(node, text) {
  if (node.textContent !== text) node.textContent = text;
}

const shapes = {
  waiting: "M10 4a6 6 0 1 0 0 12 6 6 0 0 0 0-12M10 7v3.2l2.2 1.5",
  working: "M10 3.5a6.5 6.5 0 1 1-6.5 6.5",
  converted: "M4 10.5l4 4 8-9",
  warned: "M10 3L18 17H2zM10 8.2v4M10 14.4v.4",
  failed: "M5 5l10 10M15 5L5 15",
  stopped: "M5 5h10v10H5z",
  left: "M10 3.5a6.5 6.5 0 1 0 0 13 6.5 6.5 0 0 0 0-13M6.8 10h6.4",
  down: "M5 7.5l5 5 5-5",
  save: "M10 3v9.5M6 9l4 4 4-4M4 16.5h12",
};

/** @param {keyof typeof shapes} name */
export function icon(name) {
  const drawn = document.createElementNS("http://www.w3.org/2000/svg", "svg");
  drawn.setAttribute("viewBox", "0 0 20 20");
  drawn.setAttribute("class", `icon ${name}`);
  drawn.setAttribute("aria-hidden", "true");
  drawn.append(document.createElementNS("http://www.w3.org/2000/svg", "path"));
  drawn.children[0].setAttribute("d", shapes[name]);
  return drawn;
}
