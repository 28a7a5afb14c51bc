// The public interface of the package. index.ts, image.ts, node.ts and livekit.ts export it with its implementation.
import type { EffectId, EffectProperties, PresetId } from './generated/effects.js';

export type { EffectId, EffectProperties, PresetId };

// ---- effects ----------------------------------------------------------------------------------------------------

/** A value of a property: a number, a boolean, `"#rrggbb"`, or the id of a choice. */
export type PropertyValue = number | boolean | string;

/**
 * One effect with settings. The ids and the properties are typed:
 *
 * ```ts
 * { id: 'rain', properties: { 'drop-size': 9 } }
 * ```
 */
export type EffectWithProperties = {
  [Id in EffectId]: { readonly id: Id; readonly properties?: Readonly<EffectProperties[Id]> };
}[EffectId];

/** One link of a row: an effect by its id, a preset, or an effect with settings. */
export type Link = EffectId | `preset:${PresetId}` | EffectWithProperties;

/**
 * What is applied to frames, from left to right. A text has the form that the library and the command line take:
 * `"sepia+rain:drop-size=9,drop-period=2"`, `"preset:noir"`. An empty text or array means no effect: frames pass
 * through untouched. At most 64 links.
 */
export type Effects = string | readonly Link[];

/** A named value of a property. */
export interface ChoiceInfo {
  readonly value: number;
  /** Lower case, dashed: `"regular-stars"`. */
  readonly id: string;
  /** A few words, for people. */
  readonly description: string;
}

/** What there is to know about a property of an effect. */
export interface PropertyInfo {
  /** Lower case, dashed: `"drop-size"`. */
  readonly id: string;
  /** For people: `"Drop size"`. */
  readonly name: string;
  /** One sentence. */
  readonly description: string;
  readonly type: 'integer' | 'boolean' | 'color' | 'choice';
  /** The bounds as numbers, both included; a colour is 0xRRGGBB. */
  readonly minimum: number;
  readonly maximum: number;
  /** The value of a new effect: a number, a boolean, `"#rrggbb"`, or the id of a choice. */
  readonly start: PropertyValue;
  /** The values with names; empty for types without. */
  readonly choices: readonly ChoiceInfo[];
}

/** The six kinds that effects are grouped by. */
export type Kind = 'tone' | 'distortion' | 'drawing' | 'time' | 'animated' | 'faces';

/** What there is to know about an effect. */
export interface EffectInfo {
  readonly id: EffectId;
  readonly guid: string;
  /** For people; the variants of an effect share it: `"Sketch"`. */
  readonly name: string;
  /** For people, unique: `"Sketch 2"`. */
  readonly title: string;
  readonly kind: Kind;
  /** One sentence. */
  readonly description: string;
  /** Number of the variant; null where there is only one. */
  readonly variant: number | null;
  /** A frame depends on earlier frames; a still picture shows less. */
  readonly hasMemory: boolean;
  /** A still picture gives a different frame each time. */
  readonly moves: boolean;
  /** Depends on the seed. */
  readonly usesChance: boolean;
  /** Depends on the time stamps of frames. */
  readonly usesTime: boolean;
  /** The name of the data file that it reads, or null. The package takes care of it. */
  readonly dataFile: string | null;
  readonly properties: readonly PropertyInfo[];
}

/** Effects with settings that have a name; `"preset:" + id` is an effect text. */
export interface PresetInfo {
  readonly id: PresetId;
  readonly title: string;
  readonly description: string;
  /** The effect text that it stands for. */
  readonly effects: string;
}

// ---- errors -----------------------------------------------------------------------------------------------------

/**
 * Why something failed.
 *
 * - `argument`: an argument that has no meaning
 * - `unknown`: no such effect, preset, property or choice
 * - `value`: a text that does not have the required form
 * - `picture`: a format or size that is refused
 * - `file`: a data file that cannot be read
 * - `memory`: out of memory
 * - `failed`: an effect failed on a frame
 * - `load`: the WebAssembly module or the worker cannot be loaded
 * - `trap`: the WebAssembly instance broke; a new one takes over
 * - `unsupported`: the browser lacks what is needed
 */
export type ErrorCode =
  'argument' | 'unknown' | 'value' | 'picture' | 'file' | 'memory' | 'failed' | 'load' | 'trap' | 'unsupported';

/** What the package throws and what its promises reject with. The message is a sentence for people. */
export class SpecialEffectsError extends Error {
  override readonly name = 'SpecialEffectsError';
  readonly code: ErrorCode;

  constructor(code: ErrorCode, message: string, options?: ErrorOptions) {
    super(message, options);
    this.code = code;
  }
}

// ---- assets -----------------------------------------------------------------------------------------------------

/**
 * Where the files of the package are. The defaults are the files beside its scripts (`new URL('...',
 * import.meta.url)`, which bundlers understand).
 */
export interface Assets {
  /** `specialeffects.wasm`, or the module compiled from it. */
  readonly wasm?: string | URL | WebAssembly.Module;
  /** `specialeffects-baseline.wasm`, for machines without WebAssembly SIMD. */
  readonly baselineWasm?: string | URL;
  /** `worker.js`. Must be of the page's own origin, or a `blob:` address. */
  readonly worker?: string | URL;
  /**
   * `haar.txt`, the face cascade of Picture Me: its address, from where it is loaded when an effect first needs it, or
   * its content. `null`: none; the effect then finds no face.
   */
  readonly cascade?: string | URL | Uint8Array | null;
}

// ---- live video -------------------------------------------------------------------------------------------------

/**
 * How frames get from the input track to the output track.
 *
 * - `window-streams`: MediaStreamTrackProcessor and MediaStreamTrackGenerator in the window, their streams in the
 *   worker (Chromium)
 * - `worker-streams`: MediaStreamTrackProcessor and VideoTrackGenerator in the worker, to which the track is
 *   transferred (Safari)
 * - `worker-canvas`: frames of a video element, processed and drawn in the worker (others with OffscreenCanvas)
 * - `canvas`: the same without a worker (all others)
 */
export type Path = 'window-streams' | 'worker-streams' | 'worker-canvas' | 'canvas';

/** What `onStats` gets, about once a second while frames flow. */
export interface Stats {
  /** Frames that went out per second, since the last report. */
  readonly framesPerSecond: number;
  /** Mean milliseconds that a frame took from read to written, since the last report; 0 where frames passed through. */
  readonly milliseconds: number;
  /**
   * Frames since `start`: processed, passed through untouched, and dropped to keep up or to keep `maxFps`. Frames that
   * the browser drops before anybody sees them are not counted.
   */
  readonly processed: number;
  readonly passed: number;
  readonly dropped: number;
  /** Size of the last frame in pixels. */
  readonly width: number;
  readonly height: number;
  readonly path: Path;
  /** How often the WebAssembly instance broke and was replaced. */
  readonly restarts: number;
  /** Bytes of WebAssembly memory. */
  readonly memory: number;
}

export interface ProcessorOptions {
  /** Default: none, frames pass through. */
  readonly effects?: Effects;
  /** Frames beyond this rate are dropped. Default: no bound. */
  readonly maxFps?: number;
  /** Whether effects are applied from the start. Default: true. */
  readonly enabled?: boolean;
  /** Start of the random generators, a 32-bit number: the same frames give the same results. Default: 1. */
  readonly seed?: number;
  /** Default: the first path that the browser has, in the order of `Path`. For tests. */
  readonly path?: Path;
  readonly assets?: Assets;
  readonly onStats?: (stats: Stats) => void;
  /** Errors while frames flow. Frames pass through untouched until the processor has recovered. */
  readonly onError?: (error: SpecialEffectsError) => void;
}

/** Applies effects to a video track. Each has a worker and a WebAssembly instance of its own. */
export interface Processor {
  /**
   * Processes this track. Resolves with the output track when the effects are ready; frames follow.
   *
   * The caller keeps the input track, and stops it. The output track lives until `stop`. When called again while
   * running (another camera), the new track takes the place of the old one, and the output track stays the same.
   */
  start(track: MediaStreamTrack): Promise<MediaStreamTrack>;
  /**
   * Changes the effects. The new ones are made ready beside the running ones and take over between two frames;
   * resolves then. Rejects with `unknown` or `value` where they are not valid; the old ones go on. Of several calls
   * in a row the last one wins.
   */
  setEffects(effects: Effects): Promise<void>;
  /**
   * Sets a property from the next frame on: `"drop-size"` of the first effect that has it, `"2.drop-size"` of link
   * 2, counted from 0. Out of range, the nearest bound is set. Rejects with `unknown` or `value`. Lasts until
   * `setEffects`.
   */
  setProperty(property: string, value: PropertyValue): Promise<void>;
  /** Disabled, frames pass through without a copy. */
  setEnabled(enabled: boolean): void;
  /** Ends the output track and the worker. The processor can be started again. */
  stop(): Promise<void>;
  /** The output track while running, else null. */
  readonly track: MediaStreamTrack | null;
  /** The path in use while running, else null. */
  readonly path: Path | null;
}

// ---- pictures ---------------------------------------------------------------------------------------------------

/** What pictures are read from. */
export type ImageSource =
  ImageData | ImageBitmap | HTMLVideoElement | HTMLImageElement | HTMLCanvasElement | OffscreenCanvas | VideoFrame;

export interface ImageOptions {
  /** How often the picture is fed to the effects, 1/30 s apart; effects with a memory show more. Default: 1. */
  readonly frames?: number;
  /** Start of the random generators. Default: 1. */
  readonly seed?: number;
  readonly assets?: Assets;
}

export interface ImageProcessorOptions {
  readonly effects?: Effects;
  readonly seed?: number;
  readonly assets?: Assets;
}

/** Applies effects to one picture after another, on the thread that calls it: a window's or a worker's. */
export interface ImageProcessor {
  /**
   * A new picture with the effects applied. The source is left as it is. `time` is the time stamp in milliseconds;
   * without one the picture comes 1/30 s after the one before.
   */
  apply(source: ImageSource, time?: number): ImageData;
  /** Throws `unknown` or `value` where they are not valid; the old ones stay. Loads data files when needed. */
  setEffects(effects: Effects): Promise<void>;
  /** As in `Processor`, at once. */
  setProperty(property: string, value: PropertyValue): void;
  /** Forgets the pictures so far. */
  reset(): void;
  /** Frees the memory. */
  destroy(): void;
}
