// How fast the engine is as WebAssembly: files of 100 MB with the package in Node and in Chromium,
// beside corvana-cli, in turns. Needs scripts/web, scripts/build and Chromium; takes half a minute.
//   node bench/web.mjs
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { convert } from "../build-web/npm/index.js";
import { addressOf, serve } from "../web/tools/serve.mjs";

const root = fileURLToPath(new URL("..", import.meta.url));
const { chromium } = await import(join(root, "web/node_modules/playwright-core/index.mjs"));
const folder = mkdtempSync(join(tmpdir(), "corvana-bench-"));
const runs = 7;

/** A WAV file of about 100 MB. */
function makeWav(bits) {
  const frameBytes = (2 * bits) / 8;
  const bytes = Buffer.alloc(44 + Math.floor(1e8 / frameBytes) * frameBytes);
  for (let i = 44; i + 4 <= bytes.length; i += 4)
    bytes.writeInt32LE(Math.imul(i, 2654435761) | 0, i);
  bytes.write("RIFF", 0, "latin1");
  bytes.writeUInt32LE(bytes.length - 8, 4);
  bytes.write("WAVEfmt ", 8, "latin1");
  bytes.writeUInt32LE(16, 16);
  bytes.writeUInt16LE(1, 20);
  bytes.writeUInt16LE(2, 22);
  bytes.writeUInt32LE(48000, 24);
  bytes.writeUInt32LE(48000 * frameBytes, 28);
  bytes.writeUInt16LE(frameBytes, 32);
  bytes.writeUInt16LE(bits, 34);
  bytes.write("data", 36, "latin1");
  bytes.writeUInt32LE(bytes.length - 44, 40);
  return bytes;
}

/** What the page does with a file, from the file to a Blob of its output. */
async function convertInPage(input) {
  const { open } = await import("/corvana/index.js");
  const begun = performance.now();
  const file = await open(input.files[0]);
  file.plan();
  const parts = [];
  for (const block of file.blocks()) parts.push(new Blob([block]));
  const { size } = new Blob(parts);
  file.close();
  return { milliseconds: performance.now() - begun, size };
}

async function timeOf(action) {
  const begun = performance.now();
  await action();
  return performance.now() - begun;
}

const median = (times) => Math.round(times.sort((a, b) => a - b)[times.length >> 1]);

const server = await serve(join(root, "build-web/page"), 0);
const browser = await chromium.launch({
  executablePath: "/usr/bin/chromium",
  args: ["--no-sandbox", "--disable-gpu", "--disable-background-networking"],
});
const page = await browser.newPage();
await page.goto(addressOf(server) + "page.css");
await page.evaluate(() => document.body.append(document.createElement("input")));
await page.evaluate(() => (document.querySelector("input").type = "file"));

console.log("| 100 MB, stereo | corvana-cli | Node | Chromium |\n|---|---|---|---|");
for (const bits of [16, 24]) {
  for (const direction of ["WAV to AIFF", "AIFF to WAV"]) {
    const input = join(folder, "input");
    const wav = makeWav(bits);
    writeFileSync(input, direction === "WAV to AIFF" ? wav : convert(wav).bytes);
    const named = `${input}.${direction === "WAV to AIFF" ? "wav" : "aif"}`;
    writeFileSync(named, readFileSync(input));
    const times = { program: [], node: [], page: [] };
    for (let run = 0; run < runs; run++) {
      const options = ["--quiet", "--overwrite", "--output", join(folder, "outputs"), named];
      times.program.push(
        await timeOf(() => execFileSync(join(root, "build/corvana-cli"), options)),
      );
      times.node.push(
        await timeOf(() => writeFileSync(join(folder, "node"), convert(readFileSync(named)).bytes)),
      );
      await page.setInputFiles("input", named);
      const { milliseconds, size } = await page.evaluate(convertInPage, await page.$("input"));
      if (size !== readFileSync(join(folder, "node")).length) throw new Error("not the same size");
      times.page.push(milliseconds);
    }
    const cells = [times.program, times.node, times.page].map((list) => `${median(list)} ms`);
    console.log(`| ${bits} bits, ${direction} | ${cells.join(" | ")} |`);
  }
}
await browser.close();
server.close();
rmSync(folder, { recursive: true });
