// The records of the engine, as `corvana-cli --json` writes them.

/** Something that the output cannot keep exactly. */
export interface Warning {
  /** Short, and never changes: "loop-backward" for example. */
  code: string;
  /** What stands in the text. */
  values: (number | string)[];
  /** What a person reads. */
  text: string;
}

export type OutputFormat = "aiff" | "aiff-c" | "wav";

/** What a conversion comes to. The figures are those of the output. */
export interface Conversion {
  direction: "wav-to-aiff" | "aiff-to-wav";
  format: OutputFormat;
  /** Of samples that are not integers (anyEncoding). */
  encoding?: "float" | "a-law" | "mu-law";
  /** "16-bit, stereo, 44100 Hz, root key 60 (+12 ct), 2 loops" */
  summary: string;
  /** Per sample. */
  bits: number;
  channels: number;
  /** Hz */
  sampleRate: number;
  /** MIDI note; absent without instrument data, as is fineTune. */
  rootKey?: number;
  /** Cents. */
  fineTune?: number;
  loopCount: number;
  markerCount: number;
  cuePointCount: number;
  /** The output is what the file was made of, to the last byte (reversible). */
  restored?: true;
  frames: number;
  /** Bytes. */
  outputSize: number;
  warnings: Warning[];
  /** Chunks that the output has nothing of: their IDs, each once; "LIST INFO" for a list. */
  leftOut: string[];
}

/** A loop that is not switched off. */
export interface Loop {
  /** WAV: counted from 1. */
  number?: number;
  /** AIFF */
  role?: "sustain" | "release";
  type: "forward" | "alternating" | "backward" | "unknown";
  /** As it is stored. */
  typeCode: number;
  /** First frame; null where the marker is missing. */
  start: number | null;
  /** Last frame, part of the loop; null likewise. */
  end: number | null;
  /** Frames. */
  length?: number;
  /** WAV: 0 is without end. */
  playCount?: number;
  /** WAV */
  cueId?: number;
  /** WAV: of a frame; 2^32 are a whole one. */
  fraction?: number;
  /** AIFF */
  beginMarker?: number;
  /** AIFF */
  endMarker?: number;
}

/** A marker of an AIFF file, a cue point of a WAV file. */
export interface Marker {
  /** Not always unique. */
  id: number;
  /** The frame that follows it. */
  position: number;
  name: string;
  /** A comment. */
  note?: string;
  /** Of the stretch that it begins, in frames. */
  length?: number;
}

/** What a file holds. Lists are cut at 65,536 entries, texts at 1,000; counts speak of all. */
export interface FileInfo {
  bytes: number;
  format: "wav" | "rifx" | "rf64" | "riff" | "aiff" | "aiff-c" | "form" | "unknown";
  /** This and the next four are absent without a usable fmt or COMM chunk. */
  encoding?: "pcm" | "float" | "a-law" | "mu-law" | "compressed" | "unknown";
  formatTag?: number;
  bits?: number;
  channels?: number;
  /** Hz; null where it is no number. */
  sampleRate?: number | null;
  /** AIFF-C: four characters. */
  compressionType?: string;
  compressionName?: string;
  /** That are there. */
  frames?: number;
  declaredFrames?: number;
  /** Seconds. */
  duration?: number;
  /** MIDI note that is nearest to the recording. */
  rootKey?: number;
  /** "C#4" */
  rootKeyName?: string;
  /** Cents, the correction to apply on playback. */
  fineTune?: number;
  /** The smpl chunk; 2^32 of its fraction are a semitone, cents are those above the note. */
  sampler?: { unityNote: number; pitchFraction: number; cents: number };
  /** The inst or INST chunk; gain in dB. */
  instrument?: {
    baseNote: number;
    fineTune: number;
    gain: number;
    lowNote: number;
    highNote: number;
    lowVelocity: number;
    highVelocity: number;
  };
  /** smpl and inst, where both are there. */
  tuningsDisagree?: boolean;
  loopCount: number;
  loops: Loop[];
  /** AIFF */
  markerCount?: number;
  markers?: Marker[];
  /** WAV */
  cuePointCount?: number;
  cuePoints?: Marker[];
  textCount: number;
  texts: { chunk: string; text: string }[];
  chunkCount: number;
  /** Offset of the header in the file; size as declared, and what is there of it. */
  chunks: {
    id: string;
    offset: number;
    size: number;
    present: number;
    padding: "none" | "zero" | "not-zero" | "missing";
  }[];
  /** What a conversion would say. */
  conversion:
    | Pick<Conversion, "direction" | "summary" | "warnings" | "leftOut" | "restored">
    | { error: { code: string; values: (number | string)[]; text: string } };
}

/** Where samples lie in a file and how they are stored. */
export interface SampleLayout {
  /** Of the first sample byte. */
  dataOffset: number;
  /** Bytes. */
  dataSize: number;
  frameBytes: number;
  /** Samples in a frame. */
  channels: number;
  sampleBytes: number;
  isFloatingPoint: boolean;
  isBigEndian: boolean;
  /** The middle of the range is silence. */
  isUnsigned: boolean;
}
