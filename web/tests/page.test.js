// The page in Chromium, found and used as by somebody who has a screen reader.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import * as fs from "node:fs";
import { createServer } from "node:http";
import * as path from "node:path";
import { after, test } from "node:test";
import axe from "axe-core";
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
const many = path.join(folder, "Many");
commandLine.makeLibrary(many, 1992);
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
  return page;
}

/** @param {Page} page @param {string} name */
const button = (page, name) => page.getByRole("button", { name, exact: true });

/** @param {Page} page until everything that it was given has ended */
const finished = (page) => button(page, "Save All as ZIP").click({ trial: true, timeout: 60_000 });

/** What a folder holds, in a form that can be compared. @param {string} place */
function tree(place) {
  return Object.fromEntries(
    commandLine.filesIn(place).map((file) => {
      return [path.relative(place, file), fs.readFileSync(file).toString("base64")];
    }),
  );
}

/** What the command line adds to a folder. @param {string} place @param {string[]} options */
function addedByCommandLine(place, ...options) {
  const copy = fs.mkdtempSync(path.join(folder, "copy-"));
  fs.cpSync(place, path.join(copy, path.basename(place)), { recursive: true });
  const before = new Set(commandLine.filesIn(copy));
  const log = commandLine.say("en", ...options, path.join(copy, path.basename(place)));
  for (const file of before) fs.rmSync(file);
  return { log, files: tree(copy) };
}

test("a dropped folder: its log, its rows, its ZIP", async () => {
  const page = await visit({ permissions: ["clipboard-read", "clipboard-write"] });
  await drop(page, [kit]);
  await finished(page);
  const expected = addedByCommandLine(kit);

  await button(page, "Copy Log").click();
  const log = await page.evaluate(() => navigator.clipboard.readText());
  assert.equal(log.trimEnd(), expected.log.trimEnd());

  const rows = await page.getByRole("listitem").allTextContents();
  const records = commandLine.records("en", "info", "--json", kit);
  assert.equal(rows.length, records.length);
  for (const [index, { input, conversion }] of records.entries()) {
    const texts = conversion.error ? [conversion.error] : conversion.warnings;
    const parts = [path.basename(input), ...texts.map((/** @type {any} */ { text }) => text)];
    if (conversion.summary) parts.push(conversion.summary);
    for (const part of parts) assert.ok(rows[index].includes(part), `${part}: ${rows[index]}`);
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
  await finished(page);
  const { files } = addedByCommandLine(examples, "--subfolder");
  await button(page, "Write into Folder…").click();
  await page.getByText("8 files").waitFor();
  assert.deepEqual(await writtenFiles(page), files);
  await page.context().close();
});

test("2,000 files never keep the page from answering; leaving asks while they run", async () => {
  const page = await visit({}, (page) =>
    page.addInitScript(() => {
      /** @type {number[]} */
      const tasks = [];
      new PerformanceObserver((list) => {
        tasks.push(...list.getEntries().map((entry) => entry.duration));
      }).observe({ type: "longtask", buffered: true });
      Object.assign(window, { tasks });
    }),
  );
  /** @type {string[]} */
  const dialogs = [];
  page.on("dialog", (dialog) => {
    dialogs.push(dialog.type());
    dialog.dismiss();
  });
  await page.getByRole("heading", { name: "Corvana" }).click();
  await drop(page, [many]);
  await button(page, "Stop").waitFor();
  await page.close({ runBeforeUnload: true });
  await finished(page);
  assert.deepEqual(dialogs, ["beforeunload"]);
  const tasks = await page.evaluate(() => /** @type {any} */ (window).tasks);
  console.log(`longest task with 2,000 files: ${Math.max(0, ...tasks)} ms`);
  await page.close({ runBeforeUnload: true });
  assert.ok(page.isClosed(), "leaving afterwards does not ask");
  await page.context().close();
});

test("works offline after the first visit", async () => {
  const own = await servePage();
  const context = await browser.newContext();
  const page = await context.newPage();
  await page.goto(own.address);
  await page.evaluate(() => navigator.serviceWorker.ready);
  await own.stop();
  await context.setOffline(true);
  await page.reload();
  await drop(page, [examples]);
  await finished(page);
  assert.equal(await page.getByRole("listitem").count(), 8);
  await context.close();
});

test("nothing leaves the page, whatever it does", async () => {
  /** @type {(string | undefined)[]} */
  const heard = [];
  const elsewhere = createServer(({ url }, answer) => {
    heard.push(url);
    answer.end();
  });
  await new Promise((resolve) => elsewhere.listen(0, () => resolve(null)));
  const { port } = /** @type {import("node:net").AddressInfo} */ (elsewhere.address());
  const page = await visit();
  await page.evaluate(() => navigator.serviceWorker.ready);
  const loaded = site.requests.length;
  await drop(page, [kit]);
  await finished(page);
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
  elsewhere.close();
  await page.context().close();
});

test("a file larger than the memory is refused by name", async () => {
  const large = path.join(folder, "Large.wav");
  fs.writeFileSync(large, "");
  fs.truncateSync(large, 5 * 2 ** 30);
  const page = await visit();
  await drop(page, [large, path.join(examples, "Keys")]);
  await finished(page);
  const rows = await page.getByRole("listitem").allTextContents();
  assert.match(rows[0], /Large\.wav.*Not enough memory/s);
  assert.equal(rows.length, 3);
  await page.context().close();
});
