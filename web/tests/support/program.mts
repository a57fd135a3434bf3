// A program of somebody who has installed the package. It prints a file's warnings in German.
import { readFileSync } from "node:fs";
import { convert, info, open, type Conversion, type FileInfo, type SampledFile } from "corvana";
import german from "corvana/languages/de.js";

const content: Uint8Array = readFileSync(process.argv[2] ?? "");
const conversion: Conversion & { bytes: Uint8Array } = convert(content, { language: german });
for (const warning of conversion.warnings) console.log(warning.text);

const found: FileInfo = info(content);
const starts: (number | null)[] = found.loops.map((loop) => loop.start);
const file: SampledFile = await open(new Blob([readFileSync(process.argv[2] ?? "")]));
let size = 0;
file.plan();
for (const block of file.blocks()) size += block.length;
file.close();
if (size !== conversion.outputSize || starts.length !== found.loopCount) process.exit(1);
// @ts-expect-error: no such format
if (conversion.format === "mp3") process.exit(1);
