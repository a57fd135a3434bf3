// Outputs in a folder that the user has chosen. Nothing stays of one that does not get complete.
/** @param {FileSystemDirectoryHandle} folder @param {string} path */
async function folderAt(folder, path) {
  for (const name of path.split("/"))
    if (name) folder = await folder.getDirectoryHandle(name, { create: true });
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

  /**
   * Null where the name is taken: the folder itself is asked at the last moment, since others may
   * write into it as well.
   * @param {FileSystemDirectoryHandle} root @param {string} directory @param {string} name
   * @param {boolean} mayReplace
   */
  static async create(root, directory, name, mayReplace) {
    const folder = await folderAt(root, directory);
    const there = await folder.getFileHandle(name).catch(nameOf);
    if (there === "TypeMismatchError") return null; // a folder
    const isNew = there === "NotFoundError";
    if (!isNew && !mayReplace) return null;
    const file = await folder.getFileHandle(name, { create: true });
    try {
      return new OutputFile(folder, name, await file.createWritable(), isNew);
    } catch (error) {
      if (isNew) await folder.removeEntry(name).catch(() => {});
      throw error;
    }
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
