// The log of the list as text, line by line as corvana-cli writes it.
import { convertedLines, failureLine } from "./corvana/index.js";
import { languageCode } from "./texts.js";

/** @typedef {import("./session.js").Row} Row */

/** What is done at once, in milliseconds. */
const slice = 8;

/** Made bit by bit, so that the page never stalls. @param {Row[]} rows */
export async function logText(rows) {
  let text = "";
  let end = performance.now() + slice;
  for (const row of [...rows]) {
    for (const line of linesOf(row)) text += `${line}\n`;
    if (performance.now() < end) continue;
    await new Promise((resolve) => setTimeout(resolve));
    end = performance.now() + slice;
  }
  return text;
}

/** @param {Row} row */
function linesOf({ name, state, output, conversions, failure }) {
  const code = languageCode();
  if (failure)
    return state === "left" ? [`${name}: ${failure[code]}`] : [failureLine(name, failure[code])];
  if (output && conversions) return convertedLines(name, output.name, conversions[code]);
  return [];
}
