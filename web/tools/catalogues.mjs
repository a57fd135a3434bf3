// node catalogues.mjs FOLDER: makes a module FOLDER/LANGUAGE.js of each catalogue
// po/Corvana/LANGUAGE.po, with the texts of the library and of the web front ends.
import * as fs from "node:fs";
import * as path from "node:path";
import { fileURLToPath } from "node:url";
import { po } from "gettext-parser";

const catalogues = fileURLToPath(new URL("../../po/Corvana", import.meta.url));
const folder = process.argv[2];

/** Where texts come from that these front ends can show. */
const sources = /(^|\s)(src\/(vocabulary|wav|aiff|convert|inspect|check|verify)|web)\//;

/** @param {string} header "nplurals=2; plural=(n != 1);" */
function pluralCode(header) {
  const expression = /plural=([n\d\s()?:!=<>&|%+-]+);?\s*$/.exec(header)?.[1];
  if (!expression) throw Error(`Unknown plural forms: ${header}`);
  return `(n) => Number(${expression.trim()})`;
}

/** @param {string} file a catalogue */
function moduleOf(file) {
  const { headers, translations } = po.parse(fs.readFileSync(file));
  const texts = Object.values(translations[""])
    .filter(({ msgid, msgstr, comments }) => {
      const isFuzzy = comments?.flag?.split(/,\s*/).includes("fuzzy");
      return msgid && msgstr.every(Boolean) && !isFuzzy && sources.test(comments?.reference ?? "");
    })
    .map(({ msgid, msgid_plural, msgstr }) => [msgid, msgid_plural ? msgstr : msgstr[0]]);
  return `/** @type {import("../language.js").Language} */
export default {
  code: ${JSON.stringify(path.basename(file, ".po"))},
  plural: ${pluralCode(headers["Plural-Forms"])},
  texts: ${JSON.stringify(Object.fromEntries(texts), null, 1)},
};
`;
}

fs.mkdirSync(folder, { recursive: true });
for (const name of fs.readdirSync(catalogues).sort())
  if (name.endsWith(".po"))
    fs.writeFileSync(
      path.join(folder, `${path.basename(name, ".po")}.js`),
      moduleOf(path.join(catalogues, name)),
    );
