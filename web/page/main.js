// Brings the parts of the page together.
import { hasAudioExtension, isOutputFolder, isPackageName } from "./corvana/index.js";
import { byId, element, setText } from "./elements.js";
import { keep, kept } from "./kept.js";
import { showLabels, withNames } from "./labels.js";
import { chooseLanguage, onLanguage, startLanguage } from "./language.js";
import { List } from "./list.js";
import { logText } from "./log.js";
import { workOffline } from "./offline.js";
import { Helper } from "./queue.js";
import { canWriteFolders, chooseFolder, download } from "./saving.js";
import { Session } from "./session.js";
import { figure, languageCode, languages, localised, localisedCount } from "./texts.js";

startLanguage();

const helper = new Helper();
const session = new Session({
  added: (rows) => list.add(rows),
  changed: (row) => list.change(row),
  progressed: () => show(),
  started(kind) {
    const { total } = session.run;
    notice = null;
    announce(
      kind === "convert"
        ? localisedCount("Converting %ld file.", "Converting %ld files.", total)
        : localisedCount("Writing %ld file.", "Writing %ld files.", total),
    );
  },
  ended: () => announce(endText()),
});
const list = new List(
  {
    save({ output }) {
      if (!output?.blob) return;
      download(output.blob, output.name);
      output.isSaved = true;
    },
    retry: (row) => session.retry(row),
  },
  helper,
);

/** How many folders are being searched. */
let searches = 0;
/** What the last search has come to, until something runs. @type {(() => string) | null} */
let notice = null;
/** How far the ZIP file is; null where none is made. @type {number | null} */
let zipping = null;
/** What has gone wrong with no file in particular, until the next attempt. @type {string | null} */
let trouble = null;
let frame = 0;

/** Shows status and counts at the next frame. */
function show() {
  frame ||= requestAnimationFrame(() => {
    frame = 0;
    showStatus();
    showOutputs();
    showFilter();
  });
}

const button = (/** @type {string} */ id) => /** @type {HTMLButtonElement} */ (byId(id));
const checkbox = (/** @type {string} */ id) => /** @type {HTMLInputElement} */ (byId(id));

function statusParts() {
  const { run } = session;
  if (run.job) {
    const text =
      run.job.kind === "convert" ? localised("Converting %@ …") : localised("Writing %@ …");
    const { row } = run.job;
    return withNames(text, [row.output?.name ?? row.name]);
  }
  if (searches > 0) return [localised("Searching …")];
  if (notice && !run.isRunning) return [notice()];
  return [run.isRunning || run.number === 0 ? localised("Ready.") : runText()];
}

/** What the last run has come to. */
function runText() {
  const { run } = session;
  const { finished, stopped, written, processed } = run;
  if (stopped > 0)
    return localisedCount(
      "Stopped – %@ of %ld file processed.",
      "Stopped – %@ of %ld files processed.",
      run.total,
      [figure(finished)],
    );
  if (processed === 0)
    return localisedCount("Done – %ld file written.", "Done – %ld files written.", written);
  return localisedCount("Done – %ld file processed.", "Done – %ld files processed.", processed);
}

function endText() {
  const { warned, failed, unwritten } = session.run;
  const parts = [runText()];
  if (warned > 0)
    parts.push(localisedCount("%ld file has warnings.", "%ld files have warnings.", warned));
  if (failed > 0)
    parts.push(
      localisedCount(
        "%ld file could not be converted.",
        "%ld files could not be converted.",
        failed,
      ),
    );
  if (unwritten > 0)
    parts.push(
      localisedCount(
        "%ld file could not be written.",
        "%ld files could not be written.",
        unwritten,
      ),
    );
  return parts.join(" ");
}

function showStatus() {
  const { run } = session;
  document.body.dataset.view = session.rows.length > 0 ? "list" : "empty";
  const invitation =
    notice?.() ?? localised("They are converted at once: WAV to AIFF and AIFF to WAV.");
  setText(byId("invitation-text"), searches > 0 ? localised("Searching …") : invitation);
  const parts = statusParts();
  const text = parts.map((part) => (typeof part === "string" ? part : part.textContent)).join("");
  if (byId("status").textContent !== text) byId("status").replaceChildren(...parts);
  const isRunning = run.isRunning || searches > 0;
  const finished = [figure(run.finished)];
  const count = localisedCount("%@ of %ld file", "%@ of %ld files", run.total, finished);
  setText(byId("count"), run.isRunning ? count : "");
  const progress = /** @type {HTMLProgressElement} */ (byId("progress"));
  progress.value = run.total > 0 ? (run.finished + run.stopped + run.fraction) / run.total : 0;
  document.body.classList.toggle("is-running", isRunning);
  button("stop").hidden = !run.isRunning;
  button("clear").disabled = session.isBusy || zipping !== null;
}

function showOutputs() {
  const { kept } = session.counts();
  const saveAll = button("save-all");
  saveAll.disabled = kept === 0 || session.isBusy || zipping !== null;
  const percent = zipping !== null ? ` ${figure(zipping, { style: "percent" })}` : "";
  setText(saveAll, localised("Save All as ZIP") + percent);
  const { folder } = session;
  button("choose-output").hidden = !canWriteFolders;
  setText(
    button("choose-output"),
    folder ? localised("Write into Another Folder…") : localised("Write into Folder…"),
  );
  byId("replace-option").hidden = !folder;
  checkbox("subfolder").disabled = session.isWriting;
  const note = byId("outputs-note");
  if (trouble !== null) {
    setText(note, localised("Writing failed: %@", [trouble]));
    note.dataset.shown = "";
  } else if (folder) {
    const parts = withNames(localised("Outputs are written into “%@”."), [folder.name]);
    if (note.dataset.shown !== languageCode() + folder.name) note.replaceChildren(...parts);
    note.dataset.shown = languageCode() + folder.name;
  } else {
    setText(note, localised("Outputs are kept in this page until they are saved."));
    delete note.dataset.shown;
  }
}

function showFilter() {
  const { all, warned, failed } = session.counts();
  /** @type {[string, string, number][]} */
  const parts = [
    ["all", localised("All"), all],
    ["warned", localised("With warnings"), warned],
    ["failed", localised("Failed"), failed],
  ];
  for (const [filter, text, count] of parts) {
    const part = /** @type {HTMLButtonElement} */ (
      document.querySelector(`button[data-filter="${filter}"]`)
    );
    const shown = `${text} ${figure(count)}`;
    if (part.textContent !== shown)
      part.replaceChildren(`${text} `, element("span", { class: "figures" }, figure(count)));
    part.disabled = count === 0 && filter !== "all";
  }
}

/** @param {string} filter */
function choose(filter) {
  list.filter(filter);
  for (const part of document.querySelectorAll("button[data-filter]"))
    part.setAttribute("aria-pressed", String(part.getAttribute("data-filter") === filter));
}

/** What is to be read aloud by screen readers. @type {string[]} */
const announcements = [];

/** Together with what comes with it. @param {string} text */
function announce(text) {
  if (announcements.push(text) > 1) return;
  queueMicrotask(() => (byId("announcer").textContent = announcements.splice(0).join(" ")));
}

/** Converts what is found. @param {import("./entries.js").Search} search */
export async function take(search) {
  ++searches;
  show();
  try {
    const found = await search({ hasAudioExtension, isOutputFolder, isPackageName });
    session.add(found);
    const text = () => searchText(found);
    if (found.files.length === 0) notice = text;
    if (text()) announce(text());
  } catch (error) {
    notice = () => localised("The search has broken off: %@", [reasonOf(error)]);
    announce(notice());
  } finally {
    --searches;
    show();
  }
}

/** What is not converted of what was found. @param {import("./entries.js").Found} found */
function searchText({ files, leftOut }) {
  if (files.length + leftOut.length === 0) return localised("No WAV or AIFF files found.");
  const others = leftOut.filter(({ reason }) => reason === null).length;
  const unread = leftOut.length - others;
  const parts = [];
  if (others > 0)
    parts.push(
      localisedCount(
        "%ld file left out: not a WAV or AIFF file by its extension.",
        "%ld files left out: not WAV or AIFF files by their extensions.",
        others,
      ),
    );
  if (unread > 0)
    parts.push(
      localisedCount("%ld folder could not be read.", "%ld folders could not be read.", unread),
    );
  return parts.join(" ");
}

/** @param {unknown} error */
const reasonOf = (error) => (error instanceof Error ? error.message || error.name : String(error));

button("stop").addEventListener("click", () => session.stop());

const clearing = /** @type {HTMLDialogElement} */ (byId("clearing"));

button("clear").addEventListener("click", () => {
  const count = session.unsaved.length;
  if (count === 0) return clear();
  byId("clearing-text").textContent = localisedCount(
    "%ld output has not been saved. It is lost when the list is cleared.",
    "%ld outputs have not been saved. They are lost when the list is cleared.",
    count,
  );
  clearing.showModal();
});
button("clearing-cancel").addEventListener("click", () => clearing.close());
button("clearing-go").addEventListener("click", () => {
  clearing.close();
  if (!session.isBusy && zipping === null) clear();
});

function clear() {
  session.clear();
  list.clear();
  notice = null;
  choose("all");
  show();
  /** @type {HTMLElement | null} */ (document.querySelector(".invitation button"))?.focus();
}

button("save-all").addEventListener("click", async () => {
  zipping = 0;
  trouble = null;
  show();
  const items = session.kept();
  try {
    const answer = await helper.ask(
      (id) => ({ type: "zip", id, items }),
      (fraction) => {
        zipping = fraction;
        show();
      },
    );
    if (answer.type !== "zipped") return;
    download(answer.blob, "Corvana.zip");
    session.saved(items);
  } catch (error) {
    report(error);
  } finally {
    zipping = null;
    show();
  }
});

button("choose-output").addEventListener("click", async () => {
  trouble = null;
  try {
    const folder = await chooseFolder();
    if (folder) session.writeInto(folder);
  } catch (error) {
    report(error);
  }
  show();
});

/** What concerns no file in particular. @param {unknown} error */
function report(error) {
  trouble = reasonOf(error);
  announce(localised("Writing failed: %@", [trouble]));
  show();
}

for (const option of /** @type {const} */ (["subfolder", "replace"])) {
  const box = checkbox(option);
  box.checked = session.options[option] = kept(option) === "yes";
  box.addEventListener("change", () => {
    keep(option, box.checked ? "yes" : "no");
    if (option === "subfolder") session.setSubfolder(box.checked);
    else session.options.replace = box.checked;
  });
}

for (const part of document.querySelectorAll("button[data-filter]"))
  part.addEventListener("click", () => choose(part.getAttribute("data-filter") ?? "all"));

/** While the text is made, the browser keeps in mind that it was asked for by a click.
 * @param {Promise<string>} text */
function copy(text) {
  if (!("ClipboardItem" in window)) return text.then((all) => navigator.clipboard.writeText(all));
  const blob = text.then((all) => new Blob([all], { type: "text/plain" }));
  return navigator.clipboard.write([new ClipboardItem({ "text/plain": blob })]);
}

button("copy-log").addEventListener("click", async () => {
  try {
    await copy(logText(session.rows));
  } catch (error) {
    return report(error);
  }
  setText(button("copy-log"), localised("Copied"));
  announce(localised("Copied"));
  setTimeout(() => setText(button("copy-log"), localised("Copy Log")), 2000);
});

const language = /** @type {HTMLSelectElement} */ (byId("language"));
for (const { code, name } of languages)
  language.append(element("option", { value: code, lang: code }, name));
language.addEventListener("change", () => chooseLanguage(language.value));

addEventListener("beforeunload", (event) => {
  if (session.isBusy || zipping !== null || session.unsaved.length > 0) event.preventDefault();
});

onLanguage(() => {
  language.value = languageCode();
  showLabels();
  show();
});
// After the workers, so that it does not slow them down.
helper.ready.then(workOffline, workOffline);
