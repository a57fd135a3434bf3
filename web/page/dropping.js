// Files and folders that come onto the page: dropped anywhere, pasted, or chosen.
import { byId } from "./elements.js";
import { filesChosen, filesOfDrop } from "./entries.js";

/** @typedef {import("./entries.js").Found} Found */

/**
 * @param {import("./entries.js").Rules} rules
 * @param {(found: Promise<Found>) => void} take
 */
export function takeFiles(rules, take) {
  let depth = 0;
  /** @param {boolean} isOver */
  const show = (isOver) => document.body.classList.toggle("is-dropping", isOver);
  /** @param {DragEvent} event */
  const hasFiles = (event) => event.dataTransfer?.types.includes("Files") ?? false;

  addEventListener("dragenter", (event) => {
    if (!hasFiles(event)) return;
    event.preventDefault();
    ++depth;
    show(true);
  });
  addEventListener("dragover", (event) => {
    if (!hasFiles(event) || !event.dataTransfer) return;
    event.preventDefault();
    event.dataTransfer.dropEffect = "copy";
  });
  addEventListener("dragleave", (event) => {
    if (hasFiles(event) && --depth <= 0) show(false);
  });
  addEventListener("drop", (event) => {
    depth = 0;
    show(false);
    if (!hasFiles(event) || !event.dataTransfer) return;
    event.preventDefault();
    take(filesOfDrop(event.dataTransfer, rules));
  });
  addEventListener("paste", (event) => {
    if (event.clipboardData?.types.includes("Files")) take(filesOfDrop(event.clipboardData, rules));
  });

  for (const kind of ["file", "folder"]) {
    const input = /** @type {HTMLInputElement} */ (byId(`${kind}-input`));
    input.addEventListener("change", () => {
      const chosen = [...(input.files ?? [])];
      input.value = "";
      take(Promise.resolve().then(() => filesChosen(chosen, rules)));
    });
  }
  for (const button of document.querySelectorAll("[data-choose]"))
    button.addEventListener("click", () => {
      const kind = button.getAttribute("data-choose") === "files" ? "file" : "folder";
      byId(`${kind}-input`).click();
    });
}
