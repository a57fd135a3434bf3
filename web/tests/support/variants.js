// Files with faults: from a few sound ones, the same ones each time.

/** @typedef {{ id: string, body: Uint8Array, size?: number }} Chunk size: declared, if not true */

/**
 * Numbers that look like chance and are the same in each run (mulberry32).
 * @param {number} seed
 */
export function makeRandom(seed) {
  /** @param {number} end @returns {number} from 0 to below `end` */
  return (end) => {
    seed = (seed + 0x6d2b79f5) | 0;
    let mixed = Math.imul(seed ^ (seed >>> 15), 1 | seed);
    mixed = (mixed + Math.imul(mixed ^ (mixed >>> 7), 61 | mixed)) ^ mixed;
    return Math.floor((((mixed ^ (mixed >>> 14)) >>> 0) / 2 ** 32) * end);
  };
}

/** @param {Buffer} file */
function chunksOf(file) {
  const isWav = file.toString("latin1", 0, 4) === "RIFF";
  /** @type {Chunk[]} */
  const chunks = [];
  for (let at = 12; at + 8 <= file.length;) {
    const size = isWav ? file.readUInt32LE(at + 4) : file.readUInt32BE(at + 4);
    chunks.push({
      id: file.toString("latin1", at, at + 4),
      body: file.subarray(at + 8, at + 8 + size),
    });
    at += 8 + size + (size % 2);
  }
  return chunks;
}

/** @param {Buffer} original, whose form and type it has @param {Chunk[]} chunks */
function fileOf(original, chunks) {
  const isWav = original.toString("latin1", 0, 4) === "RIFF";
  /** @param {number} size */
  const bytesOf = (size) => {
    const bytes = Buffer.alloc(4);
    isWav ? bytes.writeUInt32LE(size >>> 0) : bytes.writeUInt32BE(size >>> 0);
    return bytes;
  };
  const parts = chunks.flatMap(({ id, body, size = body.length }) => [
    Buffer.from(id, "latin1"),
    bytesOf(size),
    body,
    Buffer.alloc(body.length % 2),
  ]);
  const content = Buffer.concat([original.subarray(8, 12), ...parts]);
  return Buffer.concat([original.subarray(0, 4), bytesOf(content.length), content]);
}

const isSound = (/** @type {Chunk} */ chunk) => chunk.id === "data" || chunk.id === "SSND";
const edges = [0, 1, 2, 3, 0x7f, 0x80, 0xff, 0x7fff, 0x8000, 0xffff, 0x10000];
const wideEdges = [0x7fffffff, 0x80000000, 0xfffffffe, 0xffffffff];

/** Each changes the chunks of one file. @type {((chunks: Chunk[], random: ReturnType<typeof makeRandom>) => void)[]} */
const changes = [
  (chunks, random) => {
    const [chunk] = chunks.splice(random(chunks.length), 1);
    chunks.splice(random(chunks.length + 1), 0, chunk);
  },
  (chunks, random) => {
    chunks.splice(random(chunks.length), 1);
  },
  (chunks, random) => {
    chunks.push(chunks[random(chunks.length)]);
  },
  (chunks, random) => {
    const chunk = chunks[random(chunks.length)];
    const sizes = [...edges, ...wideEdges, chunk.body.length - 1, chunk.body.length + 1];
    chunk.size = sizes[random(sizes.length)];
  },
  (chunks, random) => {
    const chunk = chunks[random(chunks.length)];
    chunk.body = chunk.body.subarray(0, random(chunk.body.length + 1));
  },
  (chunks, random) => {
    const chunk = chunks[random(chunks.length)];
    if (isSound(chunk) && random(4)) return; // few of its bytes mean anything
    chunk.body[random(chunk.body.length)] = random(256);
  },
  (chunks, random) => {
    const others = chunks.filter((chunk) => !isSound(chunk) && chunk.body.length >= 4);
    if (!others.length) return;
    const { body } = others[random(others.length)];
    const field = Buffer.from(body.buffer, body.byteOffset, body.length);
    const at = 2 * random(Math.floor(body.length / 2) - 1);
    if (random(2)) field.writeUInt16LE(edges[random(edges.length - 1)], at);
    else if (random(2)) field.writeUInt16BE(edges[random(edges.length - 1)], at);
    else field.fill(random(2) ? 0xff : 0, at, at + 4);
  },
];

/**
 * @param {Buffer[]} originals sound files
 * @param {number} count
 */
export function* variants(originals, count) {
  const random = makeRandom(15);
  for (let i = 0; i < count; ++i) {
    const original = originals[i % originals.length];
    const soundSize = [0, 60, 1500, 9000, 9000, Infinity][random(6)];
    const chunks = chunksOf(original).map((chunk) => ({
      ...chunk,
      body: Buffer.from(isSound(chunk) ? chunk.body.subarray(0, soundSize) : chunk.body),
    }));
    for (let times = random(4); times > 0 && chunks.length; --times)
      changes[random(changes.length)](chunks, random);
    const file = fileOf(original, chunks);
    const kind = random(20);
    if (kind === 0) file[random(Math.min(file.length, 12))] = random(256);
    yield kind === 1 ? file.subarray(0, random(file.length)) : file;
  }
}
