// What was dropped or chosen, as a list of files: folders are searched in depth, by the rules of
// the command line.

/**
 * A file that is to be converted, not read so far.
 * @typedef {object} FoundFile
 * @property {string} directory of the tree, "Samples/Strings"; empty for a file named by itself
 * @property {string} name
 * @property {() => Promise<File>} open
 */

/** @typedef {{ path: string, reason: unknown }} LeftOut  reason: null where the extension is another */
/** @typedef {{ files: FoundFile[], leftOut: LeftOut[] }} Found */
/** @typedef {(rules: Rules) => Found | Promise<Found>} Search */

/**
 * The rules of names, which are the engine's.
 * @typedef {object} Rules
 * @property {(name: string) => boolean} hasAudioExtension
 * @property {(name: string) => boolean} isOutputFolder
 * @property {(name: string) => boolean} isPackageName
 */

/** Orders names as their UTF-8 does. @param {string} a @param {string} b */
export function compareNames(a, b) {
  const length = Math.min(a.length, b.length);
  for (let at = 0; at < length; ++at) {
    const [x, y] = [a.charCodeAt(at), b.charCodeAt(at)];
    if (x !== y) {
      // Halves of a pair stand for what lies behind all others.
      const [isXHalf, isYHalf] = [x, y].map((code) => code >= 0xd800 && code < 0xe000);
      return isXHalf === isYHalf ? x - y : isXHalf ? 1 : -1;
    }
  }
  return a.length - b.length;
}

/** @param {string} directory @param {string} name */
export const joined = (directory, name) => (directory ? `${directory}/${name}` : name);

/** @param {string} name */
const isHidden = (name) => name.startsWith(".");

/** Whether a search looks into a folder. @param {string} name @param {Rules} rules */
const isSearched = (name, rules) =>
  !isHidden(name) && !rules.isOutputFolder(name) && !rules.isPackageName(name);

/**
 * What is in a drop. Must be called during its event; the search comes later.
 * @param {DataTransfer} transfer
 * @returns {Search}
 */
export function filesOfDrop(transfer) {
  /** @type {(FileSystemEntry | File)[]} */
  const dropped = [];
  for (const item of transfer.items) {
    if (item.kind !== "file") continue;
    const entry = item.webkitGetAsEntry?.() ?? item.getAsFile();
    if (entry) dropped.push(entry);
  }
  return (rules) => search(dropped, rules);
}

/** @param {(FileSystemEntry | File)[]} dropped @param {Rules} rules */
async function search(dropped, rules) {
  /** @type {Found} */
  const found = { files: [], leftOut: [] };
  for (const item of dropped) {
    if (item instanceof File) addNamed(found, rules, item.name, async () => item);
    else if (isFolder(item)) await searchFolder(item, item.name, rules, found);
    else addNamed(found, rules, item.name, () => fileOf(/** @type {FileSystemFileEntry} */ (item)));
  }
  return found;
}

/** @param {Found} found @param {Rules} rules @param {string} name @param {() => Promise<File>} open */
function addNamed(found, rules, name, open) {
  if (rules.hasAudioExtension(name)) found.files.push({ directory: "", name, open });
  else found.leftOut.push({ path: name, reason: null });
}

/** @param {FileSystemEntry} entry @returns {entry is FileSystemDirectoryEntry} */
const isFolder = (entry) => entry.isDirectory;

/** @param {FileSystemFileEntry} entry @returns {Promise<File>} */
const fileOf = (entry) => new Promise((resolve, reject) => entry.file(resolve, reject));

/**
 * @param {FileSystemDirectoryEntry} folder
 * @param {string} path
 * @param {Rules} rules
 * @param {Found} found
 */
async function searchFolder(folder, path, rules, found) {
  const { entries, error } = await entriesOf(folder);
  if (error) found.leftOut.push({ path, reason: error });
  for (const entry of entries.sort((a, b) => compareNames(a.name, b.name))) {
    if (isHidden(entry.name)) continue;
    if (isFolder(entry)) {
      if (isSearched(entry.name, rules))
        await searchFolder(entry, joined(path, entry.name), rules, found);
    } else if (rules.hasAudioExtension(entry.name)) {
      const open = () => fileOf(/** @type {FileSystemFileEntry} */ (entry));
      found.files.push({ directory: path, name: entry.name, open });
    }
  }
}

/** A browser lists a folder in several helpings, the last of which is empty. @param {FileSystemDirectoryEntry} folder */
async function entriesOf(folder) {
  const reader = folder.createReader();
  /** @type {FileSystemEntry[]} */
  const entries = [];
  try {
    for (;;) {
      /** @type {FileSystemEntry[]} */
      const some = await new Promise((resolve, reject) => reader.readEntries(resolve, reject));
      if (some.length === 0) return { entries, error: null };
      entries.push(...some);
    }
  } catch (error) {
    return { entries, error };
  }
}

/**
 * The files that were chosen: named one by one, or a folder with all that is in it.
 * @param {Iterable<File>} chosen
 * @param {Rules} rules
 * @returns {Found}
 */
export function filesChosen(chosen, rules) {
  /** @type {Found} */
  const found = { files: [], leftOut: [] };
  /** @type {{ parts: string[], file: File }[]} */
  const inFolders = [];
  for (const file of chosen) {
    const parts = file.webkitRelativePath ? file.webkitRelativePath.split("/") : [];
    if (parts.length < 2) addNamed(found, rules, file.name, async () => file);
    else if (isFound(parts, rules)) inFolders.push({ parts, file });
  }
  inFolders.sort((a, b) => comparePaths(a.parts, b.parts));
  for (const { parts, file } of inFolders)
    found.files.push({
      directory: parts.slice(0, -1).join("/"),
      name: file.name,
      open: async () => file,
    });
  return found;
}

/** @param {string[]} parts @param {Rules} rules */
function isFound(parts, rules) {
  const [folders, name] = [parts.slice(1, -1), parts[parts.length - 1]];
  if (isHidden(name) || !rules.hasAudioExtension(name)) return false;
  return folders.every((folder) => isSearched(folder, rules));
}

/** @param {string[]} a @param {string[]} b */
function comparePaths(a, b) {
  for (let at = 0; at < Math.min(a.length, b.length); ++at) {
    const order = compareNames(a[at], b[at]);
    if (order !== 0) return order;
  }
  return a.length - b.length;
}
