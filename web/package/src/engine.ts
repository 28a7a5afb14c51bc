// The effects of one processor: which run, which are being made ready, and what becomes of them when the instance breaks.
import { asError } from './errors.js';
import type { RuntimeClient, Runtime } from './runtime.js';
import { type Chain, type PictureFormat, isTrap } from './library.js';
import { type PropertyValue, SpecialEffectsError } from './types.js';

/** After more than this many traps, with fewer good frames than this between them, the effects are taken off. */
const MOST_TRAPS = 3;
const GOOD_FRAMES = 100;

export interface EngineOptions {
  /** Where it runs. Engines that process VideoFrames do not share one. */
  readonly runtime: Runtime;
  readonly seed: number;
  /** Called for errors that no caller gets: on frames, and in data files. */
  readonly onError: (error: SpecialEffectsError) => void;
}

export interface Size {
  readonly width: number;
  readonly height: number;
}

/** A picture of RGBA pixels, such as an ImageData. */
export interface Pixels extends Size {
  readonly data: Uint8Array | Uint8ClampedArray;
}

export class Engine implements RuntimeClient {
  readonly #runtime: Runtime;
  readonly #seed: number;
  readonly #onError: (error: SpecialEffectsError) => void;
  #chain: Chain | null = null;
  #text = ''; // of #chain, with what has been set: for a new instance
  #size: Size | null = null;
  #request = 0; // number of the last setEffects
  #pending: Promise<unknown> = Promise.resolve(); // its end
  #lock: Promise<unknown> = Promise.resolve();
  #trapsInRow = 0;
  #goodFrames = 0;
  #reported = ''; // the last error of a frame; reported once until a frame succeeds

  constructor({ runtime, seed, onError }: EngineOptions) {
    this.#runtime = runtime;
    this.#seed = seed;
    this.#onError = onError;
    runtime.add(this);
  }

  /** Whether frames would change now. */
  get isActive(): boolean {
    return this.#chain !== null;
  }

  /** How often the instance broke and was replaced. */
  get restarts(): number {
    return this.#runtime.restarts;
  }

  /** Bytes of WebAssembly memory; 0 while there is no instance. */
  get memory(): number {
    return this.#runtime.instance?.library.memorySize ?? 0;
  }

  /**
   * Makes these effects ready beside the running ones, for frames of this size or of the size of the last frame, and
   * puts them in their place. "" means none. A later call replaces one that still waits for data files.
   */
  setEffects(text: string, size: Size | null = null): Promise<void> {
    const done = this.#setEffects(text, size);
    this.#pending = done.catch(() => undefined);
    return done;
  }

  async #setEffects(text: string, size: Size | null): Promise<void> {
    const request = ++this.#request;
    this.#size = size ?? this.#size;
    this.#trapsInRow = 0;
    await this.#runtime.ready();
    const isEmpty = text.trim() === '';
    if (!isEmpty) {
      const names = await this.#locked(() => this.#dataFiles(text));
      await this.#runtime.provide(names, this.#onError);
    }
    await this.#locked(() => {
      if (request === this.#request) this.#replace(isEmpty ? null : this.#ready(text));
    });
  }

  /** Sets a property of the effects last asked for. */
  async setProperty(property: string, value: PropertyValue): Promise<void> {
    await this.#pending;
    await this.#locked(() => {
      this.setPropertyNow(property, value);
    });
  }

  /** The same at once: not while a VideoFrame is being processed. */
  setPropertyNow(property: string, value: PropertyValue): void {
    const chain = this.#chain;
    if (chain === null) throw new SpecialEffectsError('unknown', `no effect has the property "${property}"`);
    this.#guarded(() => {
      chain.set(property, value);
      this.#text = chain.text;
    });
  }

  /** Forgets earlier frames: not while a VideoFrame is being processed. */
  reset(): void {
    const chain = this.#chain;
    if (chain !== null) {
      this.#guarded(() => {
        chain.reset();
      });
    }
  }

  /**
   * The frame with the effects applied, as a new frame; null when it is to be passed as it is: without effects, where
   * they fail, and for a frame that is too small. The caller closes both.
   */
  applyToFrame(frame: VideoFrame): Promise<VideoFrame | null> {
    return this.#locked(async () => {
      const shape = shapeOf(frame);
      const [chain, instance] = [this.#chain, this.#runtime.instance];
      if (shape === null || chain === null || instance === null) return null;
      const { picture } = instance;
      const { format, pixelFormat, width, height } = shape;
      this.#size = { width, height };
      try {
        this.#guarded(() => {
          picture.shape(format, width, height);
        });
        await frame.copyTo(picture.bytes, {
          rect: shape.rect,
          layout: [...picture.layout],
          ...(shape.isConverted ? { format: pixelFormat } : {}),
        });
        this.#guarded(() => {
          chain.process(picture, BigInt(Math.round(frame.timestamp)) * 1000n);
        });
        this.#countGoodFrame();
        return new VideoFrame(picture.bytes, {
          ...orientationOf(frame),
          format: pixelFormat,
          codedWidth: width,
          codedHeight: height,
          displayWidth: shape.displayWidth,
          displayHeight: shape.displayHeight,
          layout: [...picture.layout],
          timestamp: frame.timestamp,
          ...(frame.duration === null ? {} : { duration: frame.duration }),
          ...(shape.isConverted ? {} : { colorSpace: frame.colorSpace.toJSON() }),
        });
      } catch (error) {
        this.#report(error);
        return null;
      }
    });
  }

  /**
   * Applies the effects to RGBA pixels in place: not while a VideoFrame is being processed. The time is in
   * nanoseconds; null: 1/30 s after the picture before. Throws where they fail; the pixels are then as they were.
   */
  applyToPixels({ data, width, height }: Pixels, time: bigint | null): void {
    const [chain, instance] = [this.#chain, this.#runtime.instance];
    if (instance === null) throw new SpecialEffectsError('trap', 'the WebAssembly instance is being replaced');
    if (chain === null) return;
    this.#size = { width, height };
    this.#guarded(() => {
      const { picture } = instance;
      picture.shape('rgba', width, height);
      picture.bytes.set(data);
      chain.process(picture, time);
      data.set(picture.bytes);
    });
    this.#countGoodFrame();
  }

  /** The same for a frame of a video: where they fail, reports the error and returns false. */
  tryPixels(pixels: Pixels, time: bigint): boolean {
    try {
      this.applyToPixels(pixels, time);
      return true;
    } catch (error) {
      this.#report(error);
      return false;
    }
  }

  /** Frees the memory of its effects, once no frame is in the works. */
  destroy(): void {
    ++this.#request;
    this.#runtime.remove(this);
    this.#locked(() => {
      this.#replace(null);
    }).catch(() => undefined); // an instance that broke is gone anyway
  }

  // ---- one thing at a time: while a frame is copied nothing may make the memory grow ----

  #locked<T>(use: () => T | Promise<T>): Promise<T> {
    const result = this.#lock.then(use);
    this.#lock = result.catch(() => undefined);
    return result;
  }

  // ---- effects ----

  #create(text: string): Chain {
    const { instance } = this.#runtime;
    if (instance === null) throw new SpecialEffectsError('trap', 'the WebAssembly instance is being replaced');
    return instance.library.create(text, this.#seed);
  }

  #dataFiles(text: string): string[] {
    return this.#guarded(() => {
      const chain = this.#create(text);
      const names = chain.dataFiles;
      chain.destroy();
      return names;
    });
  }

  #ready(text: string): Chain {
    return this.#guarded(() => {
      const chain = this.#create(text);
      try {
        if (this.#size !== null) chain.prepare(this.#size.width, this.#size.height);
      } catch (error) {
        if (!isTrap(error)) chain.destroy();
        throw error;
      }
      return chain;
    });
  }

  #replace(chain: Chain | null): void {
    const old = this.#chain;
    this.#chain = chain;
    this.#text = chain?.text ?? '';
    if (old !== null) {
      this.#guarded(() => {
        old.destroy();
      });
    }
  }

  // ---- when the instance breaks ----

  onBroken(): void {
    this.#chain = null;
    this.#goodFrames = 0;
  }

  onReplaced(): void {
    const request = this.#request;
    this.#locked(() => {
      if (request === this.#request && this.#text !== '') this.#replace(this.#ready(this.#text));
    }).catch((error: unknown) => {
      this.#onError(asError(error));
    });
  }

  onError(error: SpecialEffectsError): void {
    this.#onError(error);
  }

  #guarded<T>(use: () => T): T {
    try {
      return this.#runtime.guarded(use);
    } catch (error) {
      if (error instanceof SpecialEffectsError && error.code === 'trap' && ++this.#trapsInRow > MOST_TRAPS) {
        this.#text = '';
        throw new SpecialEffectsError('trap', 'the effects broke again and again, and are taken off', { cause: error });
      }
      throw error;
    }
  }

  #countGoodFrame(): void {
    this.#reported = '';
    if (++this.#goodFrames >= GOOD_FRAMES) this.#trapsInRow = 0;
  }

  #report(error: unknown): void {
    const known = asError(error);
    if (known.message !== this.#reported) this.#onError(known);
    this.#reported = known.message;
  }
}

// ---- frames -----------------------------------------------------------------------------------------------------

/** Formats that the library takes as they are. */
const DIRECT_FORMATS: Readonly<Record<string, PictureFormat>> = {
  I420: 'i420',
  NV12: 'nv12',
  I422: 'i422',
  I444: 'i444',
  RGBA: 'rgba',
  RGBX: 'rgba',
  BGRA: 'bgra',
  BGRX: 'bgra',
};

interface Shape extends Size {
  readonly format: PictureFormat;
  readonly pixelFormat: VideoPixelFormat;
  readonly isConverted: boolean;
  readonly rect: DOMRectInit;
  readonly displayWidth: number;
  readonly displayHeight: number;
}

/**
 * How a frame is copied. Its visible part is cut to even position and size, so that luma and chroma fit: a plane of
 * chroma is then half as wide and high, and the library works on it without a copy. Other formats, and frames whose
 * pixels are only on the graphics processor, are converted to RGB. Null: a frame without pixels.
 */
function shapeOf(frame: VideoFrame): Shape | null {
  const visible = frame.visibleRect;
  if (visible === null) return null; // closed
  const [x, y] = [(visible.x + 1) & ~1, (visible.y + 1) & ~1];
  const width = (visible.x + visible.width - x) & ~1;
  const height = (visible.y + visible.height - y) & ~1;
  if (width < 2 || height < 2) return null;
  const direct = frame.format === null ? undefined : DIRECT_FORMATS[frame.format];
  return {
    width,
    height,
    format: direct ?? 'rgba',
    pixelFormat: direct !== undefined && frame.format !== null ? frame.format : 'RGBX',
    isConverted: direct === undefined,
    rect: { x, y, width, height },
    displayWidth: Math.max(1, Math.round((frame.displayWidth * width) / visible.width)),
    displayHeight: Math.max(1, Math.round((frame.displayHeight * height) / visible.height)),
  };
}

/** How the frame is turned for display, in browsers where frames know it. */
function orientationOf(frame: VideoFrame): object {
  const { rotation, flip } = frame as VideoFrame & { rotation?: number; flip?: boolean };
  return rotation === undefined ? {} : { rotation, flip };
}
