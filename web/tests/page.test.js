// The page in Chromium, found and used as by somebody who has a screen reader.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import * as fs from "node:fs";
import { createServer } from "node:http";
import * as path from "node:path";
import { after, test } from "node:test";
import axe from "axe-core";
import { version } from "../../build-web/npm/index.js";
import german from "../../build-web/npm/languages/de.js";
import { drop, launch, servePage } from "./support/browser.js";
import * as commandLine from "./support/command_line.js";

/** @typedef {import("playwright-core").Page} Page */
/** @typedef {import("playwright-core").BrowserContextOptions} Options */

const folder = commandLine.temporaryFolder("page");
const kit = path.join(folder, "Kit");
commandLine.makeLibrary(kit, 200);
const examples = path.join(folder, "Examples");
commandLine.makeExamples(examples);
const broken = path.join(folder, "Broken.wav");
fs.writeFileSync(broken, "RIFF");
const empty = path.join(folder, "Empty");
fs.mkdirSync(empty);
fs.writeFileSync(path.join(folder, "page.txt"), "");
const long = path.join(folder, "Long.wav");
fs.writeFileSync(long, "RIFF");
fs.truncateSync(long, 2 * 2 ** 30);
const many = path.join(folder, "Many");
commandLine.makeLibrary(many, 1991);
const screenshots = path.join(commandLine.built, "screenshots");

const site = await servePage();
const browser = await launch();
after(async () => {
  await browser.close();
  await site.stop();
});

/** @param {Options} [options] @param {(page: Page) => Promise<unknown>} [prepare] */
async function visit(options, prepare) {
  const context = await browser.newContext({ locale: "en-GB", ...options });
  const page = await context.newPage();
  page.on("pageerror", (error) => assert.fail(error));
  await prepare?.(page);
  await page.goto(site.address);
  await page.getByText(`Corvana ${version}`).waitFor();
  return page;
}

/** @param {Page} page @param {string} name */
const button = (page, name) => page.getByRole("button", { name, exact: true });

/** Asks in a way that costs the page nothing, however long its list is. @param {Page} page */
function ended(page) {
  return page.waitForFunction(
    () => /^(Done|Fertig)/.test(document.querySelector("[role=status]")?.textContent ?? ""),
    null,
    { polling: 100, timeout: 120_000 },
  );
}

/** Waits until the page is kept in the browser. @param {Page} page */
function canBeOffline(page) {
  return page.evaluate(() => {
    const tooLong = new Promise((_, reject) =>
      setTimeout(reject, 30_000, Error("It is not kept.")),
    );
    return Promise.race([navigator.serviceWorker.ready.then(() => null), tooLong]);
  });
}

/** The texts of all files once each of them has come to its end. @param {Page} page @param {number} count */
async function rows(page, count) {
  const list = page.getByRole("region", { name: /^(Files|Dateien)$/ }).getByRole("listitem");
  await ended(page);
  await list.nth(count - 1).waitFor();
  await list
    .filter({ hasText: /Waiting|Converting|Wartet|Wird/ })
    .first()
    .waitFor({ state: "detached" });
  const texts = await list.allTextContents();
  assert.equal(texts.length, count);
  return texts;
}

/** What a folder holds, in a form that can be compared. @param {string} place */
function tree(place) {
  return Object.fromEntries(
    commandLine.filesIn(place).map((file) => {
      return [path.relative(place, file), fs.readFileSync(file).toString("base64")];
    }),
  );
}

/** What the command line adds to a folder. @param {string} place @param {string[][]} runs options of each */
function addedByCommandLine(place, ...runs) {
  const copy = fs.mkdtempSync(path.join(folder, "copy-"));
  fs.cpSync(place, path.join(copy, path.basename(place)), { recursive: true });
  const before = new Set(commandLine.filesIn(copy));
  const logs = runs.map((options) => {
    return commandLine.say("en", ...options, path.join(copy, path.basename(place)));
  });
  for (const file of before) fs.rmSync(file);
  return { logs, files: tree(copy) };
}

test("a dropped folder: its log, its rows, its ZIP", async () => {
  const page = await visit({ permissions: ["clipboard-read", "clipboard-write"] });
  await drop(page, [kit]);
  const expected = addedByCommandLine(kit, []);
  const records = commandLine.records("en", "info", "--json", kit);
  const texts = await rows(page, records.length);

  await button(page, "Copy Log").click();
  await button(page, "Copied").waitFor();
  const log = await page.evaluate(() => navigator.clipboard.readText());
  assert.equal(log.trimEnd(), expected.logs[0].trimEnd());

  for (const [index, { input, conversion }] of records.entries()) {
    const notes = conversion.error ? [conversion.error] : conversion.warnings.slice(0, 4);
    const parts = [path.basename(input), ...notes.map((/** @type {any} */ { text }) => text)];
    if (conversion.summary) parts.push(conversion.summary);
    for (const part of parts) assert.ok(texts[index].includes(part), `${part}: ${texts[index]}`);
  }

  const [download] = await Promise.all([
    page.waitForEvent("download"),
    button(page, "Save All as ZIP").click(),
  ]);
  const unpacked = path.join(folder, "unpacked");
  execFileSync("unzip", ["-q", await download.path(), "-d", unpacked]);
  assert.deepEqual(tree(unpacked), expected.files);
  await page.context().close();
});

/** The outputs in the folder that the browser keeps for a page, as `tree` has them. @param {Page} page */
function writtenFiles(page) {
  return page.evaluate(async () => {
    /** @type {Record<string, string>} */
    const files = {};
    /** @param {FileSystemDirectoryHandle} folder @param {string} path */
    async function look(folder, path) {
      for await (const [name, handle] of folder.entries()) {
        if (handle instanceof FileSystemDirectoryHandle) await look(handle, `${path}${name}/`);
        else {
          const bytes = new Uint8Array(await (await handle.getFile()).arrayBuffer());
          const letters = Array.from(bytes, (byte) => String.fromCharCode(byte));
          files[path + name] = btoa(letters.join(""));
        }
      }
    }
    await look(await navigator.storage.getDirectory(), "");
    return files;
  });
}

test("a chosen folder gets the same files, in subfolders, replaced or under other names", async () => {
  // Nobody can answer the system's own dialogue here: the folder is one that pages always have.
  const page = await visit({}, (page) =>
    page.addInitScript(() => {
      Object.assign(window, { showDirectoryPicker: () => navigator.storage.getDirectory() });
    }),
  );
  await page.getByRole("checkbox", { name: "subfolder" }).check();
  await drop(page, [examples]);
  await rows(page, 8);
  await button(page, "Write into Folder…").click();
  await page.getByText("Done – 8 files written.").first().waitFor();
  const runs = [["--subfolder"]];
  assert.deepEqual(await writtenFiles(page), addedByCommandLine(examples, ...runs).files);

  for (const replaces of [false, true]) {
    await button(page, "Clear List").click();
    await page.getByRole("checkbox", { name: "Replace" }).setChecked(replaces);
    await drop(page, [examples]);
    await rows(page, 8);
    runs.push(replaces ? ["--overwrite", "--subfolder"] : ["--subfolder"]);
    assert.deepEqual(await writtenFiles(page), addedByCommandLine(examples, ...runs).files);
  }
  await page.context().close();
});

test("2,000 files never keep the page from answering; leaving asks until they are saved", async () => {
  const page = await visit();
  /** @type {string[]} */
  const dialogs = [];
  page.on("dialog", (dialog) => {
    dialogs.push(dialog.type());
    dialog.dismiss();
  });
  await page.getByRole("heading", { name: "Corvana" }).click();
  await browser.startTracing(page, { categories: ["toplevel"] });
  await drop(page, [many]);
  await page.waitForFunction(() => !document.getElementById("stop")?.hidden, null, { polling: 20 });
  await page.close({ runBeforeUnload: true });
  await ended(page);
  for (const code of ["de", "en"]) {
    await page.locator("select").selectOption(code);
    await page.waitForTimeout(2000);
  }
  const { traceEvents } = JSON.parse((await browser.stopTracing()).toString());
  await rows(page, 2000);
  await page.close({ runBeforeUnload: true });
  await page.waitForTimeout(200);
  assert.deepEqual(dialogs, ["beforeunload", "beforeunload"]);
  await Promise.all([page.waitForEvent("download"), button(page, "Save All as ZIP").click()]);
  await page.waitForFunction(
    () => !(/** @type {any} */ (document.getElementById("save-all")).disabled),
  );
  await Promise.all([page.waitForEvent("close"), page.close({ runBeforeUnload: true })]);
  assert.equal(dialogs.length, 2, "leaving afterwards does not ask");

  // What is asserted is the processor's time of each task: how long it takes by the clock depends on
  // what else runs on this machine's processors, with other people's builds half a second.
  /** @type {{ name: string, pid: number, tid: number, args: { name: string }, dur: number, tdur: number }[]} */
  const events = traceEvents;
  const threads = events.filter(({ args }) => args.name === "CrRendererMain");
  const tasks = events.filter(({ name, pid, tid, tdur }) => {
    const isMain = threads.some((thread) => thread.pid === pid && thread.tid === tid);
    return isMain && name.endsWith("RunTask") && tdur !== undefined;
  });
  const longest = Math.max(...tasks.map(({ tdur }) => tdur)) / 1000;
  const byClock = Math.max(...tasks.map(({ dur }) => dur)) / 1000;
  console.log(`2,000 files: longest task ${longest} ms, ${byClock} ms by the clock`);
  assert.ok(tasks.length > 2000 && longest < 50, `${longest} ms`);
  await page.context().close();
});

test("works offline after the first visit, by the keyboard", async () => {
  const own = await servePage();
  const context = await browser.newContext();
  const page = await context.newPage();
  await page.goto(own.address);
  await canBeOffline(page);
  await own.stop();
  await context.setOffline(true);
  await page.reload();
  await page.getByText(`Corvana ${version}`).waitFor();
  const opening = page.waitForEvent("filechooser");
  await button(page, "Choose Files…").press("Enter");
  await (await opening).setFiles(path.join(examples, "Bass/Round Bass A1.wav"));
  await rows(page, 1);
  const saving = page.waitForEvent("download");
  await button(page, "Save Round Bass A1.aif").press("Enter");
  const saved = fs.readFileSync(await (await saving).path());
  const { files } = addedByCommandLine(examples, []);
  assert.equal(saved.toString("base64"), files["Examples/Bass/Round Bass A1.aif"]);
  await context.close();
});

test("nothing leaves the page, whatever it does", async () => {
  /** @type {(string | undefined)[]} */
  const heard = [];
  const elsewhere = createServer(({ url }, answer) => {
    heard.push(url);
    answer.end();
  });
  await new Promise((resolve) => elsewhere.unref().listen(0, () => resolve(null)));
  const { port } = /** @type {import("node:net").AddressInfo} */ (elsewhere.address());
  const page = await visit();
  await canBeOffline(page);
  let loaded = 0;
  while (loaded !== site.requests.length) {
    loaded = site.requests.length;
    await page.waitForTimeout(500);
  }
  await drop(page, [examples]);
  await rows(page, 8);
  await page.getByRole("button", { name: "Waveform" }).first().click();
  await button(page, "Zoom In").click();
  await Promise.all([page.waitForEvent("download"), button(page, "Save All as ZIP").click()]);
  /** @param {string} address */
  const send = async (address) => {
    const results = [
      await fetch(`${address}fetch`).catch(() => "refused"),
      await fetch(`${address}plain`, { mode: "no-cors", method: "POST" }).catch(() => "refused"),
    ];
    try {
      new WebSocket(`${address.replace("http", "ws")}socket`);
    } catch {
      // Some browsers refuse it at once.
    }
    return results;
  };
  for (const address of [`http://localhost:${port}/`, site.address]) {
    for (const place of [page, ...page.workers()])
      assert.deepEqual(await place.evaluate(send, address), ["refused", "refused"]);
    await page.evaluate((address) => {
      navigator.sendBeacon(`${address}beacon`, "content");
      const form = document.createElement("form");
      form.action = `${address}form`;
      document.body.append(form);
      form.submit();
    }, address);
  }
  await page.evaluate((address) => {
    for (const [name, property] of Object.entries({ img: "src", iframe: "src", video: "src" }))
      document.body.append(Object.assign(document.createElement(name), { [property]: address }));
  }, `http://localhost:${port}/element`);
  assert.ok(page.workers().length > 0);
  assert.deepEqual(heard, []);
  assert.deepEqual(site.requests.slice(loaded), []);
  assert.deepEqual(await page.context().cookies(), []);
  await page.context().close();
});

test("what is not written can be tried again; what is left out is said", async () => {
  const page = await visit({}, (page) =>
    page.addInitScript(() => {
      Object.assign(window, { showDirectoryPicker: () => navigator.storage.getDirectory() });
      // One text for screen readers replaces another within moments.
      addEventListener("DOMContentLoaded", () => {
        const announcer = /** @type {HTMLElement} */ (document.getElementById("announcer"));
        const said = [""];
        const note = () => said.push(announcer.textContent ?? "");
        new MutationObserver(note).observe(announcer, { childList: true });
        Object.assign(window, {
          isSaid: (/** @type {string} */ text) => said.join().includes(text),
        });
      });
    }),
  );
  const said = (/** @type {string} */ text) =>
    page.waitForFunction((text) => /** @type {any} */ (window).isSaid(text), text);
  const status = page.getByRole("region", { name: "Progress" }).getByRole("paragraph").first();
  await drop(page, [path.join(folder, "page.txt"), path.join(examples, "Bass/Round Bass A1.wav")]);
  await said("1 file left out");
  await rows(page, 2);
  await drop(page, [empty]);
  await status.getByText("No WAV or AIFF files found.").waitFor();
  // A file where a folder is to be.
  await page.evaluate(async () => {
    await (await navigator.storage.getDirectory()).getFileHandle("AIFF", { create: true });
  });
  await page.getByRole("checkbox", { name: "subfolder" }).check();
  await button(page, "Write into Folder…").click();
  await said("1 file could not be written.");
  await page.evaluate(async () => (await navigator.storage.getDirectory()).removeEntry("AIFF"));
  await button(page, "Try Again: Round Bass A1.wav").press("Enter");
  await page.getByText("Done – 1 file written.").first().waitFor();
  assert.deepEqual(Object.keys(await writtenFiles(page)), ["AIFF/Round Bass A1.aif"]);
  assert.equal(await page.locator("h3:focus").textContent(), "Round Bass A1.wav");
  await button(page, "Clear List").click();
  await page.getByRole("heading", { name: "Drop WAV" }).waitFor();
  await page.context().close();
});

test("a file larger than the memory is refused by name", async () => {
  const large = path.join(folder, "Large.wav");
  fs.writeFileSync(large, "");
  fs.truncateSync(large, 5 * 2 ** 30);
  const page = await visit();
  await drop(page, [large, path.join(examples, "Keys")]);
  const [text] = await rows(page, 3);
  assert.match(text, /^Large\.wav.*Not enough memory/s);
  await page.context().close();
});

const devices = {
  desktop: { code: "en", locale: "en-GB", viewport: { width: 1280, height: 800 } },
  phone: { code: "de", locale: "de-DE", viewport: { width: 390, height: 844 }, hasTouch: true },
};

for (const [device, { code, ...options }] of Object.entries(devices))
  for (const colorScheme of /** @type {const} */ (["light", "dark"]))
    test(`pictures and accessibility of every state: ${device}, ${colorScheme}`, async () => {
      const texts = code === "de" ? german.texts : {};
      /** @param {string} text */
      const named = (text) =>
        button(page, String(texts[text] ?? texts[`&${text}`] ?? text).replace("&", ""));
      const page = await visit({ ...options, colorScheme });
      await page.evaluate(axe.source);
      /** @param {string} state */
      const look = async (state) => {
        const picture = `${state}-${device}-${colorScheme}.png`;
        await page.screenshot({ path: path.join(screenshots, picture), animations: "disabled" });
        const found = await page.evaluate(async () => {
          const { violations } = await /** @type {any} */ (window).axe.run();
          return violations.map((/** @type {import("axe-core").Result} */ { id, nodes }) => {
            return `${id}: ${nodes.map((node) => node.html).join()}`;
          });
        });
        assert.deepEqual(found, [], state);
      };

      await look("empty");
      const privacy = page.locator("details.privacy");
      await privacy.click();
      await look("privacy");
      await privacy.locator("summary").click();
      await drop(page, [examples, long], ["dragEnter", "dragOver"]);
      await look("dropping");
      await drop(page, [examples, long], ["drop"]);
      await named("Stop").waitFor();
      await look("running");
      await named("Stop").click();
      await named("Clear List").click();
      await look("clearing");
      await named("Cancel").press("Escape");
      await named("Clear List").click();
      await named("Discard").click();
      await drop(page, [examples, broken]);
      const shown = await rows(page, 9);
      for (const [index, record] of commandLine.records(code, "info", "--json", examples).entries())
        for (const { text } of record.conversion.warnings) assert.ok(shown[index].includes(text));
      await look("done");
      await page.getByRole("button", { name: "Backward Bells A4.wav" }).first().click();
      await look("open");
      for (let times = 0; times < 4; ++times) await named("Zoom In").click();
      await look("zoomed");
      await page.getByRole("button", { name: texts.Failed ? "Fehlgeschlagen" : "Failed" }).click();
      await look("failed");
      await page.context().close();
    });
