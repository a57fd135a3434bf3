// The log of the list as text, line by line as corvana-cli writes it.
import { convertedLines, failureLine } from "./corvana/index.js";
import { languageCode } from "./texts.js";

/** @param {import("./session.js").Row[]} rows */
export function logText(rows) {
  const code = languageCode();
  return rows
    .flatMap(({ name, state, output, conversions, failure }) => {
      if (failure)
        return state === "left"
          ? [`${name}: ${failure[code]}`]
          : [failureLine(name, failure[code])];
      if (output && conversions) return convertedLines(name, output.name, conversions[code]);
      return [];
    })
    .map((line) => `${line}\n`)
    .join("");
}
