// The npm package against the command line, and as people install it.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import * as fs from "node:fs";
import * as path from "node:path";
import { test } from "node:test";
import * as corvana from "../../build-web/npm/index.js";
import german from "../../build-web/npm/languages/de.js";
import * as commandLine from "./support/command_line.js";

const folder = commandLine.temporaryFolder("package");
const library = path.join(folder, "library");
commandLine.makeLibrary(library, 3000);
const given = process.env.CORVANA_WEB_TEST_FOLDERS?.split("\n").filter(Boolean) ?? [];
const languages = { en: undefined, de: german };

/** What the package holds, and nothing else. */
const packageFiles = [
  ..."LICENSE NOTICES README.md engine.d.ts engine.js index.d.ts index.js".split(" "),
  ..."language.d.ts language.js languages/de.js languages/language.d.ts".split(" "),
  ..."names.d.ts names.js options.d.ts options.js package.json".split(" "),
  ..."records.d.ts sampled_file.d.ts sampled_file.js".split(" "),
  ..."version.d.ts version.js wasm.d.ts wasm.js".split(" "),
];

/** @param {number} size of the sound, 16 bits and mono */
function wavHeader(size) {
  const header = Buffer.from("RIFF____WAVEfmt ____________________data____", "latin1");
  header.writeUInt32LE(size + 36, 4);
  header.set([16, 0, 0, 0, 1, 0, 1, 0, 0x44, 0xac, 0, 0, 0x88, 0x58, 1, 0, 2, 0, 16, 0], 16);
  header.writeUInt32LE(size, 40);
  return header;
}

/** @param {string} file @param {corvana.PlanOptions} [options] what the command line would say of it */
function outcome(file, options) {
  try {
    const content = fs.readFileSync(file);
    const { bytes, outputSize, summary, ...conversion } = corvana.convert(content, options);
    assert.equal(bytes.length, outputSize);
    return { bytes, summary, conversion, record: { ...conversion, bytes: outputSize } };
  } catch (error) {
    if (!(error instanceof corvana.ConversionError)) throw error;
    const { code, values, message: text } = error;
    return { record: { error: { code, values, text }, warnings: [] } };
  }
}

/** @param {string} text @param {string[]} lines */
function firstDifference(text, lines) {
  const expected = text.split("\n");
  const at = expected.findIndex((line, index) => line !== lines[index]);
  return `line ${at + 1} is not ${JSON.stringify(expected[at])} but ${JSON.stringify(lines[at])}`;
}

for (const place of [library, ...given]) {
  const files = commandLine.filesIn(place).filter((file) => {
    const [name, ...folders] = path.relative(place, file).split(path.sep).reverse();
    return corvana.hasAudioExtension(name) && !folders.some(corvana.isOutputFolder);
  });

  for (const [code, language] of Object.entries(languages)) {
    test(`${path.basename(place)}: records, names and log of a conversion (${code})`, () => {
      const taken = new Set(commandLine.filesIn(place));
      const lines = commandLine.records(code, "--dry-run", "--json", place);
      assert.deepEqual(lines.map((line) => line.input).sort(), files);
      const log = [];
      for (const { schema, seconds, direction, input, output, ...expected } of lines) {
        const { record, summary, conversion } = outcome(input, { language });
        const name = path.basename(input);
        if (conversion === undefined) {
          assert.deepEqual(record, expected, input);
          log.push(corvana.failureLine(name, record.error.text));
          continue;
        }
        assert.deepEqual(record, { direction, ...expected }, input);
        const free = corvana.freeOutputName(name, conversion.format, (candidate) => {
          return !taken.has(path.join(path.dirname(input), candidate));
        });
        assert.equal(path.join(path.dirname(input), free), output);
        taken.add(output);
        const whole = { ...conversion, summary, outputSize: expected.bytes };
        log.push(...corvana.convertedLines(name, free, whole));
      }
      // A rehearsal also names the chunks that are left out.
      const plain = commandLine.say(code, "--dry-run", place).replace(/^ {3}(?!⚠).*\n/gm, "");
      assert.ok(plain === log.map((line) => `${line}\n`).join(""), firstDifference(plain, log));
    });

    test(`${path.basename(place)}: what is in the files (${code})`, () => {
      const lines = commandLine.records(code, "info", "--json", "--middle-c", "C3", place);
      for (const { schema, input, ...expected } of lines) {
        const found = corvana.info(fs.readFileSync(input), { language, middleC: 3 });
        assert.deepEqual(found, expected, input);
      }
    });
  }

  test(`${path.basename(place)}: bytes, also in blocks`, async () => {
    const output = path.join(folder, "output");
    for (const line of commandLine.records("en", "--json", "--output", output, place)) {
      if (line.error) continue;
      const written = fs.readFileSync(line.output);
      const { bytes } = outcome(line.input);
      assert.ok(bytes && written.equals(bytes), line.input);
      const file = await corvana.open(new Blob([fs.readFileSync(line.input)]));
      file.plan();
      assert.ok(written.equals(Buffer.concat([...file.blocks()])), `blocks of ${line.input}`);
      file.close();
    }
    fs.rmSync(output, { recursive: true });
  });
}

test("options, as the command line has them, and back again", () => {
  const place = path.join(folder, "given");
  commandLine.makeLibrary(place, 300);
  for (const [tag, bits] of [
    [3, 32],
    [3, 64],
    [6, 8],
    [7, 8],
  ]) {
    // prettier-ignore
    const file = Buffer.concat([wavHeader(800), Buffer.alloc(800, "sound")]);
    [tag, bits / 8, bits].forEach((field, i) => file.writeUInt16LE(field, [20, 32, 34][i]));
    fs.writeFileSync(path.join(place, `${tag}-${bits} F#2.wav`), file);
  }
  const reversible = () => ({ reversible: true, anyEncoding: true });
  const keyIn = (/** @type {string} */ name) => ({
    rootKey: corvana.rootKeyInName(name, { middleC: 3 }),
  });
  /** @type {[string, string, (name: string) => corvana.ConversionOptions][]} */
  const cases = [
    ["given", "--any-encoding", () => ({ anyEncoding: true, loops: "all", keep: [] })],
    ["given", "--first-loop-only --keep texts", () => ({ loops: "first", keep: ["texts"] })],
    ["given", "--no-loops --keep texts,names", () => ({ loops: "none", keep: ["names", "texts"] })],
    ["given", "--root-from-name --middle-c C3", keyIn],
    ["given", "--reversible --any-encoding", reversible],
    ["output", "--reversible --any-encoding", reversible],
  ];
  for (const [from, parameters, optionsOf] of cases) {
    const to = path.join(folder, from === "output" ? "back" : "output");
    fs.rmSync(to, { recursive: true, force: true });
    const written = ["--json", "--output", to, ...parameters.split(" "), path.join(folder, from)];
    let changed = 0;
    for (const line of commandLine.records("en", ...written)) {
      const { schema, seconds, direction, input, output, ...expected } = line;
      const options = optionsOf(path.basename(input));
      const { bytes, record } = outcome(input, options);
      const { conversion } = corvana.info(fs.readFileSync(input), options);
      assert.deepEqual(record, { ...(output && { direction }), ...expected }, input);
      assert.deepEqual("error" in conversion || conversion.leftOut, expected.leftOut ?? true);
      if (!bytes) continue;
      assert.ok(fs.readFileSync(output).equals(bytes), `${parameters}: ${input}`);
      if (!outcome(input).bytes?.every((byte, i) => byte === bytes[i])) ++changed;
    }
    assert.ok(changed > 3, `${parameters} changed ${changed} files`);
  }

  /** @type {[any, string, RegExp][]} */
  const wrong = [
    [{ loops: "some" }, "RangeError", /loops knows "all", "first", "none", but not "some"/],
    [{ keep: ["name"] }, "RangeError", /keep knows .* not "name"/],
    [{ keep: "names" }, "TypeError", /list/],
    [{ anyEncoding: 1 }, "TypeError", /anyEncoding/],
    [{ rootKey: "60" }, "TypeError", /rootKey/],
    [{ rootKey: 128 }, "RangeError", /rootKey .* not 128/],
    [{ rootKey: 1.5 }, "RangeError", /1\.5/],
  ];
  for (const [options, name, message] of wrong)
    for (const call of [corvana.convert, corvana.info])
      assert.throws(() => call(wavHeader(0), options), { name, message });
});

test("a large file is read and written in pieces, and can be given up", async () => {
  const original = fs.readFileSync(commandLine.filesIn(library)[0]);
  const content = Buffer.concat([wavHeader(20e6), Buffer.alloc(20e6, original)]);
  /** @type {number[]} */
  const heard = [];
  const onProgress = (/** @type {number} */ fraction) => heard.push(fraction);
  const file = await corvana.open(new Blob([content]), { onProgress });
  assert.ok(heard.length >= 3 && heard.at(-1) === 1, "progress");
  assert.deepEqual(
    heard,
    [...heard].sort((a, b) => a - b),
  );
  const { outputSize } = file.plan();
  const blocks = [...file.blocks()];
  assert.ok(blocks.every((block) => block.length <= 2 ** 20));
  assert.equal(new Set(blocks.map((block) => block.buffer)).size, blocks.length, "fresh arrays");
  assert.ok(Buffer.concat(blocks).equals(corvana.convert(content).bytes));
  assert.equal(outputSize, corvana.convert(content).bytes.length);
  file.close();

  for (const giveUpAt of [0, 0.3]) {
    const controller = new AbortController();
    if (giveUpAt === 0) controller.abort();
    const opening = corvana.open(new Blob([content]), {
      signal: controller.signal,
      onProgress: (fraction) => fraction >= giveUpAt && controller.abort(),
    });
    await assert.rejects(opening, { name: "AbortError" });
  }
  assert.equal(corvana.convert(original).format, "aiff", "works on");
});

test("what the memory has no room for is refused unread", async () => {
  class Enormous extends Blob {
    /** @override */
    get size() {
      return 2 ** 33;
    }
    /** @override @returns {Blob} */
    slice() {
      throw Error("was read");
    }
  }
  await assert.rejects(corvana.open(new Enormous()), (error) => {
    assert.ok(error instanceof corvana.ConversionError);
    assert.equal(error.code, "out-of-memory");
    return true;
  });
});

test("the package installs, runs and has types, and holds what it should", () => {
  const archive = path.join(commandLine.built, `corvana-${corvana.version}.tgz`);
  const empty = path.join(folder, "installed");
  fs.mkdirSync(empty);
  execFileSync("npm", ["install", "--offline", "--no-audit", "--no-fund", archive], { cwd: empty });
  assert.deepEqual(
    commandLine.filesIn(path.join(empty, "node_modules/corvana")).map((file) => {
      return path.relative(path.join(empty, "node_modules/corvana"), file);
    }),
    packageFiles,
  );
  fs.cpSync(
    path.join(commandLine.root, "web/tests/support/program.mts"),
    path.join(empty, "program.mts"),
  );
  execFileSync(
    path.join(commandLine.root, "web/node_modules/.bin/tsc"),
    [
      ..."--strict --module nodenext --target es2022 --types node --typeRoots".split(" "),
      path.join(commandLine.root, "web/node_modules/@types"),
      "program.mts",
    ],
    { cwd: empty, stdio: "inherit" },
  );
  const input = commandLine.filesIn(library).find((file) => file.includes("Bells")) ?? "";
  const said = execFileSync("node", ["program.mjs", input], { cwd: empty, encoding: "utf8" });
  const [line] = commandLine.records("de", "--dry-run", "--json", input);
  assert.equal(
    said,
    line.warnings.map((/** @type {any} */ warning) => `${warning.text}\n`).join(""),
  );
});
