// Brings the parts of the page together.
import { hasAudioExtension, isOutputFolder, isPackageName } from "./corvana/index.js";
import { byId, element, setText, withNames } from "./elements.js";
import { keep, kept } from "./kept.js";
import { showLabels } from "./labels.js";
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
  started: () =>
    announce(localisedCount("Converting %ld file.", "Converting %ld files.", session.run.total)),
  ended: () => announce(endText()),
});
const list = new List(({ output }) => {
  if (output?.blob) download(output.blob, output.name);
}, helper);

/** How many folders are being searched. */
let searches = 0;
/** Whether the last search has found nothing. */
let foundNothing = false;
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
  return [run.isRunning || run.number === 0 ? localised("Ready.") : runText()];
}

/** What the last run has come to. */
function runText() {
  const { run } = session;
  const { finished, stopped, written, converted, failed } = run;
  if (stopped > 0)
    return localisedCount(
      "Stopped – %@ of %ld file processed.",
      "Stopped – %@ of %ld files processed.",
      run.total,
    ).replace("%@", figure(finished));
  if (written > 0 && converted + failed === 0)
    return localisedCount("Done – %ld file written.", "Done – %ld files written.", written);
  return localisedCount(
    "Done – %ld file processed.",
    "Done – %ld files processed.",
    converted + failed,
  );
}

function endText() {
  const { warned, failed } = session.run;
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
  return parts.join(" ");
}

function showStatus() {
  const { run } = session;
  document.body.dataset.view = session.rows.length > 0 ? "list" : "empty";
  const invitation = foundNothing
    ? localised("No WAV or AIFF files found.")
    : localised("They are converted at once: WAV to AIFF and AIFF to WAV.");
  setText(byId("invitation-text"), searches > 0 ? localised("Searching …") : invitation);
  const parts = statusParts();
  const text = parts.map((part) => (typeof part === "string" ? part : part.textContent)).join("");
  if (byId("status").textContent !== text) byId("status").replaceChildren(...parts);
  const isRunning = run.isRunning || searches > 0;
  const count = localisedCount("%@ of %ld file", "%@ of %ld files", run.total);
  setText(byId("count"), run.isRunning ? count.replace("%@", figure(run.finished)) : "");
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
  const note = byId("outputs-note");
  if (trouble !== null) {
    setText(note, localised("Writing failed: %@", [trouble]));
    note.dataset.shown = "";
  } else if (folder) {
    const parts = withNames(localised("Outputs are written into “%@”."), [folder.name]);
    if (note.dataset.shown !== languageCode() + folder.name) note.replaceChildren(...parts);
    note.dataset.shown = languageCode() + folder.name;
  } else {
    setText(
      note,
      kept > 0 ? localised("Until they are saved, outputs are kept in this page.") : "",
    );
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

/** Read aloud by screen readers. @param {string} text */
function announce(text) {
  byId("announcer").textContent = text;
}

/** Converts what is found. @param {import("./entries.js").Search} search */
export async function take(search) {
  ++searches;
  show();
  const found = await search({ hasAudioExtension, isOutputFolder, isPackageName });
  --searches;
  foundNothing = found.files.length + found.leftOut.length === 0;
  if (foundNothing) announce(localised("No WAV or AIFF files found."));
  session.add(found);
}

button("stop").addEventListener("click", () => session.stop());

button("clear").addEventListener("click", () => {
  session.clear();
  list.clear();
  choose("all");
  show();
  /** @type {HTMLElement | null} */ (document.querySelector(".invitation button"))?.focus();
});

button("save-all").addEventListener("click", async () => {
  zipping = 0;
  trouble = null;
  show();
  try {
    const answer = await helper.ask(
      (id) => ({ type: "zip", id, items: session.kept() }),
      (fraction) => {
        zipping = fraction;
        show();
      },
    );
    if (answer.type === "zipped") download(answer.blob, "Corvana.zip");
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
  trouble = error instanceof Error ? error.message || error.name : String(error);
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

button("copy-log").addEventListener("click", async () => {
  try {
    await navigator.clipboard.writeText(logText(session.rows));
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
  if (session.isBusy || zipping !== null) event.preventDefault();
});

onLanguage(() => {
  language.value = languageCode();
  showLabels();
  show();
});
// After the workers, so that it does not slow them down.
helper.ready.then(workOffline, workOffline);
