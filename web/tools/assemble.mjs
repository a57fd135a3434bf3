// node assemble.mjs FOLDER: of what scripts/web has built in FOLDER and the sources beside, makes
//   FOLDER/npm, FOLDER/corvana-VERSION.tgz   the npm package
//   FOLDER/page                              the page with the package's modules in page/corvana
// and says how large they are.
import { execFileSync } from "node:child_process";
import { createHash } from "node:crypto";
import * as fs from "node:fs";
import * as path from "node:path";
import { fileURLToPath } from "node:url";
import { brotliCompressSync, gzipSync } from "node:zlib";

const root = fileURLToPath(new URL("../..", import.meta.url));
const web = path.join(root, "web");
const built = path.resolve(process.argv[2]);
const tools = path.join(web, "node_modules/.bin");

/** @param {string} folder @returns {string[]} paths of files below it, "a/b", sorted */
function filesIn(folder) {
  const found = fs.readdirSync(folder, { withFileTypes: true }).flatMap((entry) => {
    if (!entry.isDirectory()) return [entry.name];
    return filesIn(path.join(folder, entry.name)).map((below) => `${entry.name}/${below}`);
  });
  return found.sort();
}

/** @param {string} name of a folder that takes the place of the one of the last build */
function newFolder(name) {
  const folder = path.join(built, name);
  fs.rmSync(folder, { recursive: true, force: true });
  fs.mkdirSync(folder, { recursive: true });
  return folder;
}

/** @param {string} from @param {string} to @param {(name: string) => boolean} isWanted */
function copyFiles(from, to, isWanted = () => true) {
  for (const name of filesIn(from).filter(isWanted))
    fs.cpSync(path.join(from, name), path.join(to, name));
}

/** @param {string} tool @param {string[]} parameters */
function run(tool, ...parameters) {
  return execFileSync(tool, parameters, { encoding: "utf8", stdio: ["ignore", "pipe", 2] });
}

/** The licences of what is linked into the module. */
function notices() {
  const parts = [
    "/usr/share/doc/nlohmann-json3-dev/copyright",
    "/usr/share/emscripten/system/lib/libc/musl/COPYRIGHT",
  ];
  const texts = parts.map((file) => fs.readFileSync(file, "utf8"));
  return `corvana.wasm contains JSON for Modern C++ and the C library musl.\n\n${texts.join("\n\n")}`;
}

function packageModules(/** @type {string} */ version) {
  const npm = newFolder("npm");
  copyFiles(path.join(web, "npm"), npm);
  fs.copyFileSync(path.join(root, "LICENSE"), path.join(npm, "LICENSE"));
  fs.writeFileSync(path.join(npm, "NOTICES"), notices());
  const description = JSON.parse(fs.readFileSync(path.join(npm, "package.json"), "utf8"));
  const json = JSON.stringify({ ...description, version }, null, 2);
  fs.writeFileSync(path.join(npm, "package.json"), `${json}\n`);
  fs.writeFileSync(path.join(npm, "version.js"), `export const version = "${version}";\n`);
  const wasm = fs.readFileSync(path.join(built, "wasm/web/binding/corvana.wasm"));
  fs.writeFileSync(
    path.join(npm, "wasm.js"),
    `/** The module of WebAssembly in base64. */\nexport const wasm = "${wasm.toString("base64")}";\n`,
  );
  run(process.execPath, path.join(web, "tools/catalogues.mjs"), path.join(npm, "languages"));
  return npm;
}

/** Declarations of the package's modules, and of what the page has from others. */
function declare(/** @type {string} */ npm) {
  const types = newFolder("types");
  const corvana = path.join(types, "corvana");
  const files = filesIn(npm);
  /** Languages have one declaration for all. @param {string} name */
  const isDeclared = (name) =>
    name.startsWith("languages/") || files.includes(name.replace(/js$/, "d.ts"));
  run(
    path.join(tools, "tsc"),
    ..."--ignoreConfig --allowJs --declaration --emitDeclarationOnly --skipLibCheck".split(" "),
    ..."--strict --target es2022 --module nodenext".split(" "),
    ...["--rootDir", npm, "--outDir", corvana],
    ...files
      .filter((name) => name.endsWith(".js") && !isDeclared(name))
      .map((name) => path.join(npm, name)),
  );
  copyFiles(corvana, npm);
  copyFiles(npm, corvana, (name) => name.endsWith(".d.ts"));
  for (const name of files.filter((name) => /^languages\/.*\.js$/.test(name)))
    fs.copyFileSync(
      path.join(npm, "languages/language.d.ts"),
      path.join(corvana, name.replace(/js$/, "d.ts")),
    );
  fs.writeFileSync(path.join(types, "package.json"), '{ "type": "module" }\n');
  const zip = path.join(web, "node_modules/client-zip/index.d.ts");
  fs.copyFileSync(zip, path.join(types, "client-zip.d.ts"));
}

function assemblePage(/** @type {string} */ npm) {
  const page = newFolder("page");
  copyFiles(path.join(web, "page"), page);
  copyFiles(npm, path.join(page, "corvana"), (name) => name.endsWith(".js"));
  for (const name of ["LICENSE", "NOTICES"])
    fs.copyFileSync(path.join(npm, name), path.join(page, "corvana", name));
  const zip = path.join(web, "node_modules/client-zip");
  const licence = fs.readFileSync(path.join(zip, "LICENSE.txt"), "utf8");
  const code = fs.readFileSync(path.join(zip, "index.js"), "utf8");
  fs.writeFileSync(path.join(page, "client-zip.js"), `/*!\n${licence}\n*/\n${code}`);
  fs.copyFileSync(path.join(root, "packaging/corvana.svg"), path.join(page, "icon.svg"));
  copyFiles(path.join(built, "icons"), page);
  fillServiceWorker(page);
  return page;
}

/** The service worker keeps all files under a name that changes with any of them. @param {string} page */
function fillServiceWorker(page) {
  const file = path.join(page, "service-worker.js");
  const code = fs.readFileSync(file, "utf8");
  const hash = createHash("sha256").update(code);
  const kept = filesIn(page).filter((name) => !/LICENSE|NOTICES|service-worker/.test(name));
  for (const name of kept) hash.update(name).update(fs.readFileSync(path.join(page, name)));
  const files = ["./", ...kept.filter((name) => name !== "index.html")];
  const filled = code
    .replace('"VERSION"', JSON.stringify(hash.digest("hex").slice(0, 16)))
    .replace('["FILES"]', JSON.stringify(files))
    .replace('"POLICY"', JSON.stringify(policyOf(page)));
  if (!filled.includes("client-zip.js")) throw Error("The service worker has no list of files.");
  fs.writeFileSync(file, filled);
}

/** What the page says of connections. @param {string} page */
function policyOf(page) {
  const html = fs.readFileSync(path.join(page, "index.html"), "utf8");
  const policy = /"Content-Security-Policy"\s+content="([^"]+)"/.exec(html)?.[1];
  if (!policy) throw Error("The page has no policy.");
  return policy;
}

/** @param {number} size in bytes */
const kilobytes = (size) => `${(size / 1000).toFixed(1)} kB`;

/** @param {string} name @param {Buffer[]} files each is packed for itself, as servers do */
function sizes(name, files) {
  /** @param {(file: Buffer) => Buffer} pack */
  const sum = (pack) => kilobytes(files.reduce((all, file) => all + pack(file).length, 0));
  const packed = `${sum((file) => gzipSync(file, { level: 9 }))} with gzip`;
  return `${name}: ${sum((file) => file)}, ${packed}, ${sum(brotliCompressSync)} with Brotli`;
}

const description = fs.readFileSync(path.join(built, "wasm/CMakeCache.txt"), "utf8");
const version = /^CMAKE_PROJECT_VERSION:STATIC=(.*)$/m.exec(description)?.[1];
if (!version) throw Error("CMake's cache has no version.");
const npm = packageModules(version);
declare(npm);
const archive = path.join(built, `corvana-${version}.tgz`);
run("npm", "pack", npm, "--silent", "--pack-destination", built);
const page = assemblePage(npm);

const pageFiles = filesIn(page).filter((name) => !/LICENSE|NOTICES/.test(name));
const contents = pageFiles.map((name) => fs.readFileSync(path.join(page, name)));
console.log(`${path.relative(root, archive)}: ${kilobytes(fs.statSync(archive).size)}`);
console.log(sizes(`${path.relative(root, page)} (${pageFiles.length} files)`, contents));
