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
