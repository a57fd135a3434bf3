// Loops and markers of a file in words, and as marks of its picture.
import { mostLanes } from "./drawing.js";
import { figure, localised } from "./texts.js";
import { inLanes } from "./waveform.js";

/** @typedef {import("./messages.js").Sound} Sound */
/** @typedef {Sound["loops"][0]} Loop */

/** @param {Loop} loop */
export function loopName(loop) {
  if (loop.role === "sustain") return localised("Sustain loop");
  if (loop.role === "release") return localised("Release loop");
  return localised("Loop %@", [loop.number ?? ""]);
}

/** @param {Loop} loop */
export function loopType({ type, typeCode }) {
  switch (type) {
    case "forward":
      return localised("forward");
    case "alternating":
      return localised("alternating");
    case "backward":
      return localised("backward");
    default:
      return localised("unknown type %@", [typeCode]);
  }
}

/** @param {Sound} sound @param {Sound["markers"][0]} marker */
export function markerName({ isAIFF }, { id, name }) {
  if (name) return name;
  return isAIFF ? localised("marker %@", [id]) : localised("cue point %@", [id]);
}

/** The first or sustain loop is of kind 0, the second or release loop 1. @param {Sound} sound */
export function marksOf(sound) {
  const loops = sound.loops.flatMap((loop, at) => {
    const { start, end } = loop;
    if (start === null || end === null || end < start) return [];
    const kind = loop.role ? Number(loop.role === "release") : at;
    const short = loopName(loop);
    return [{ start, end: end + 1, kind, short, label: `${short} · ${loopType(loop)}` }];
  });
  const markers = sound.markers.map((marker) => ({
    position: marker.position,
    label: markerName(sound, marker),
  }));
  return {
    loops: inLanes(loops, mostLanes),
    markers: markers.sort((a, b) => a.position - b.position),
  };
}

/** @param {Sound} sound the whole of it, as it was converted */
export function pictureOf(sound) {
  const { frames, overview } = sound;
  const view = { first: 0, count: Math.max(frames, 1) };
  const columns = overview && { ...view, values: overview, scale: 1 / 127 };
  return { columns, view, ...marksOf(sound) };
}

/** @param {Sound} sound @param {number} frame "12,000 · 0.250 s" */
export function placeText({ sampleRate }, frame) {
  const digits = { minimumFractionDigits: 3, maximumFractionDigits: 3 };
  const seconds = sampleRate > 0 ? ` · ${figure(frame / sampleRate, digits)} s` : "";
  return `${figure(Math.round(frame))}${seconds}`;
}
