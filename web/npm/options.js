// What a conversion does beyond the ordinary rules.

/**
 * As the command line's options of these names. Each is off unless it is given; a wrong value throws
 * a TypeError or a RangeError.
 * @typedef {object} ConversionOptions
 * @property {boolean} [anyEncoding] floating point, A-law and µ-law are converted as they are, into
 *   AIFF-C or WAV; RIFX is read as well
 * @property {"all" | "first" | "none"} [loops] that the output gets: all that it can hold; the first
 *   one that can be used; none
 * @property {number} [rootKey] MIDI note, 0 to 127, for a file without a key: neither smpl nor inst
 *   chunk, no INST chunk. `rootKeyInName` finds it in a name; the warning `root-from-name` says so
 * @property {boolean} [reversible] the output carries what it takes to make the file again, to the
 *   last byte; a file that does so is made again, unless it has been edited since
 * @property {readonly ("names" | "texts")[]} [keep] the names of markers, cue points and loops, with
 *   the notes on these; the texts of the file as a whole, ID3 tags included
 */

/** Bits of what is asked for, as the engine knows them. */
const loopChoices = new Map(Object.entries({ all: 0, first: 4, none: 8 }));
const keepable = new Map(Object.entries({ names: 16, texts: 32 }));

/**
 * @param {string} option
 * @param {boolean} value
 * @param {number} bit
 */
function bitIf(option, value, bit) {
  if (typeof value !== "boolean") throw new TypeError(`${option} is true or false.`);
  return value ? bit : 0;
}

/**
 * @param {string} option
 * @param {string} choice
 * @param {Map<string, number>} choices
 */
function bitOf(option, choice, choices) {
  const bit = choices.get(choice);
  if (bit !== undefined) return bit;
  const names = [...choices.keys()].map((name) => `"${name}"`).join(", ");
  throw new RangeError(`${option} knows ${names}, but not "${String(choice)}".`);
}

/** The same, an octave. @param {number} middleC */
export function octaveOf(middleC) {
  if (typeof middleC !== "number") throw new TypeError("middleC is a number.");
  if (Number.isInteger(middleC) && Math.abs(middleC) <= 10) return middleC;
  throw new RangeError(`middleC is an octave, -10 to 10, and not ${middleC}.`);
}

/** The same, or -1 for none. @param {number | undefined} note */
function keyOf(note) {
  if (note === undefined) return -1;
  if (typeof note !== "number") throw new TypeError("rootKey is a number.");
  if (Number.isInteger(note) && note >= 0 && note <= 127) return note;
  throw new RangeError(`rootKey is a MIDI note, 0 to 127, and not ${note}.`);
}

/**
 * The numbers that the engine takes: bits of what is asked for, and the key or -1.
 * @param {ConversionOptions} options
 * @returns {[number, number]}
 */
export function numbersOf({
  anyEncoding = false,
  loops = "all",
  rootKey,
  reversible = false,
  keep = [],
}) {
  if (!Array.isArray(keep)) throw new TypeError('keep is a list: ["names", "texts"].');
  let asked = bitIf("anyEncoding", anyEncoding, 1) | bitIf("reversible", reversible, 2);
  asked |= bitOf("loops", loops, loopChoices);
  for (const kind of keep) asked |= bitOf("keep", kind, keepable);
  return [asked, keyOf(rootKey)];
}
