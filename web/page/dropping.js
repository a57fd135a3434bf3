// Files and folders that come onto the page: dropped anywhere, pasted, or chosen.
import { byId } from "./elements.js";
import { filesChosen, filesOfDrop } from "./entries.js";

/** @param {(search: import("./entries.js").Search) => void} take */
export function takeFiles(take) {
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
    take(filesOfDrop(event.dataTransfer));
  });
  addEventListener("paste", (event) => {
    if (event.clipboardData?.types.includes("Files")) take(filesOfDrop(event.clipboardData));
  });

  for (const kind of ["file", "folder"]) {
    const input = /** @type {HTMLInputElement} */ (byId(`${kind}-input`));
    input.addEventListener("change", () => {
      const chosen = [...(input.files ?? [])];
      input.value = "";
      take((rules) => filesChosen(chosen, rules));
    });
  }
  const choosesFolders = "webkitdirectory" in HTMLInputElement.prototype;
  for (const button of document.querySelectorAll("[data-choose]")) {
    if (button.getAttribute("data-choose") === "folder")
      /** @type {HTMLElement} */ (button).hidden = !choosesFolders;
    button.addEventListener("click", () => {
      const kind = button.getAttribute("data-choose") === "files" ? "file" : "folder";
      byId(`${kind}-input`).click();
    });
  }
}
