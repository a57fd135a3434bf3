// The build makes wasm.js and version.js.

/** The module, in base 64: whatever loads the package needs no further file. */
export const wasm: string;
