// Outputs in a folder that the user has chosen. Nothing stays of one that does not get complete.
import { outputSubfolder } from "./corvana/index.js";
import { joined } from "./entries.js";

/** @typedef {import("./messages.js").Target} Target */

/** What has been listed, and for which number of Target. */
const known = { listing: -1, directories: new Set() };

/**
 * Where an output goes below the chosen folder, and the names there; null where they have been
 * listed before.
 * @param {Target} target @param {"aiff" | "wav"} format
 */
export async function listed({ folder, directory, subfolder, listing }, format) {
  const path = subfolder ? joined(directory, outputSubfolder(format)) : directory;
  if (known.listing !== listing) {
    known.listing = listing;
    known.directories.clear();
  }
  if (known.directories.has(path)) return { directory: path, existing: null };
  known.directories.add(path);
  /** @type {string[]} */
  const existing = [];
  try {
    for await (const name of (await folderAt(folder, path, false)).keys()) existing.push(name);
  } catch (error) {
    if (nameOf(error) !== "NotFoundError") throw error;
  }
  return { directory: path, existing };
}

/** @param {FileSystemDirectoryHandle} folder @param {string} path @param {boolean} create */
async function folderAt(folder, path, create) {
  for (const name of path.split("/"))
    if (name) folder = await folder.getDirectoryHandle(name, { create });
  return folder;
}

/** @param {unknown} error */
const nameOf = (error) => (error instanceof DOMException ? error.name : "");

/** An output on its way to the disk. The browser writes beside it and puts it in place at the end. */
export class OutputFile {
  /**
   * @param {FileSystemDirectoryHandle} folder @param {string} name
   * @param {FileSystemWritableFileStream} stream @param {boolean} isNew
   */
  constructor(folder, name, stream, isNew) {
    this.folder = folder;
    this.name = name;
    this.stream = stream;
    this.isNew = isNew;
  }

  /** @param {FileSystemDirectoryHandle} root @param {string} directory @param {string} name */
  static async create(root, directory, name) {
    const folder = await folderAt(root, directory, true);
    const isNew = await folder.getFileHandle(name).then(
      () => false,
      (error) => {
        if (nameOf(error) !== "NotFoundError") throw error;
        return true;
      },
    );
    const file = await folder.getFileHandle(name, { create: true });
    return new OutputFile(folder, name, await file.createWritable(), isNew);
  }

  /** @param {Uint8Array<ArrayBuffer>} block */
  write(block) {
    return this.stream.write(block);
  }
  close() {
    return this.stream.close();
  }
  async abort() {
    await this.stream.abort().catch(() => {});
    if (this.isNew) await this.folder.removeEntry(this.name).catch(() => {});
  }
}
