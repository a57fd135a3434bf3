// Many outputs as one ZIP file. Their bytes stay where they are: the ZIP file refers to them.
import { makeZip } from "./client-zip.js";

/** @typedef {{ path: string, blob: Blob }} Item */

/**
 * @param {Item[]} items
 * @param {(fraction: number) => void} onProgress
 */
export async function zipOf(items, onProgress) {
  const all = items.reduce((sum, { blob }) => sum + blob.size, 0);
  /** @type {WeakMap<Uint8Array, Blob>} which chunks are an output's */
  const origins = new WeakMap();
  /** @param {Blob} blob */
  async function* contentOf(blob) {
    for await (const chunk of chunksOf(blob.stream())) {
      origins.set(chunk, blob);
      yield chunk;
    }
  }
  function* inputs() {
    const lastModified = new Date();
    for (const { path, blob } of items)
      yield { name: path, size: blob.size, lastModified, input: contentOf(blob) };
  }

  /** @type {BlobPart[]} */
  const parts = [];
  let done = 0;
  for await (const chunk of chunksOf(makeZip(inputs()))) {
    const origin = origins.get(chunk);
    if (!origin) parts.push(chunk);
    else if (parts.at(-1) !== origin) parts.push(origin);
    if (origin) onProgress((done += chunk.length) / all);
  }
  return new Blob(parts, { type: "application/zip" });
}

/** @param {ReadableStream<Uint8Array>} stream */
async function* chunksOf(stream) {
  const reader = stream.getReader();
  for (;;) {
    const { done, value } = await reader.read();
    if (done) return;
    yield /** @type {Uint8Array<ArrayBuffer>} */ (value);
  }
}
