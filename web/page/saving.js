// Outputs leave the page as downloads.

/** Hands a file to the browser's downloads. @param {Blob} blob @param {string} name */
export function download(blob, name) {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  // The browser says nothing when it has got it all.
  setTimeout(() => URL.revokeObjectURL(link.href), 10 * 60 * 1000);
}

/** Whether this browser can write into a folder of the user's choice. */
export const canWriteFolders = "showDirectoryPicker" in window;

/** Null where nothing is chosen. @returns {Promise<FileSystemDirectoryHandle | null>} */
export async function chooseFolder() {
  try {
    // @ts-expect-error Not every browser has it.
    return await window.showDirectoryPicker({ id: "outputs", mode: "readwrite" });
  } catch (error) {
    if (error instanceof DOMException && error.name === "AbortError") return null;
    throw error;
  }
}
