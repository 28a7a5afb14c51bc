// Effects on pictures in Buffers, for Node.
import { readFile } from 'node:fs/promises';

import { hasSimd } from './assets.js';
import { CASCADE } from './dataFiles.js';
import { toEffectText } from './effectText.js';
import { asError } from './errors.js';
import { type Chain, Library, type Picture, type PictureFormat, isTrap } from './library.js';
import { type Effects, type PropertyValue, SpecialEffectsError } from './types.js';

export type * from './types.js';
export { SpecialEffectsError, toEffectText };
export type { PictureFormat };

/** A picture as bytes: tight planes, one after the other. */
export interface Shape {
  readonly format: PictureFormat;
  /** Pixels, 1 to 16384. */
  readonly width: number;
  readonly height: number;
}

export interface NodeEffectOptions {
  /** Start of the random generators. Default: 1. */
  readonly seed?: number;
  /**
   * Data files by name, in place of those of the package: `{ 'haar.txt': bytes }`. The effect then has a WebAssembly
   * instance of its own; all others share one.
   */
  readonly dataFiles?: Readonly<Record<string, Uint8Array>>;
}

/** One effect, or several in a row. */
export interface NodeEffect {
  /** The text that creates the same effects with the same settings. */
  readonly text: string;
  /**
   * Changes a picture in place. `time` is its time stamp in nanoseconds, of which only differences count; without one
   * the picture comes 1/30 s after the one before.
   */
  process(bytes: Uint8Array, shape: Shape, time?: bigint): void;
  /** Sets a property: `"drop-size"`, `"2.drop-size"` of link 2. */
  setProperty(property: string, value: PropertyValue): void;
  /** The present value of a property as text. */
  getProperty(property: string): string;
  /** Gets ready for pictures of a size, so that the first takes no longer than the others. */
  prepare(width: number, height: number): void;
  /** Forgets earlier pictures. */
  reset(): void;
  /** A data file that an effect has made (`perlin.dat`), to be handed to another process; null if it does not exist. */
  dataFile(name: string): Uint8Array | null;
  /** Frees its memory. It must not be used afterwards. */
  destroy(): void;
}

let compiled: Promise<WebAssembly.Module> | null = null;
let shared: Promise<Library> | null = null; // the instance of effects without data files of their own

const asset = (name: string) => readFile(new URL(`./${name}`, import.meta.url));

async function compile(): Promise<WebAssembly.Module> {
  return WebAssembly.compile(await asset(hasSimd() ? 'specialeffects.wasm' : 'specialeffects-baseline.wasm'));
}

async function instantiate(): Promise<Library> {
  compiled ??= compile();
  return Library.instantiate(await compiled);
}

/** Creates effects from a text or a list: `createEffect('sepia+rain:drop-size=9')`. */
export async function createEffect(effects: Effects, options: NodeEffectOptions = {}): Promise<NodeEffect> {
  const library = await (options.dataFiles ? instantiate() : (shared ??= instantiate()));
  for (const [name, bytes] of Object.entries(options.dataFiles ?? {})) library.writeDataFile(name, bytes);
  const chain = guarded(library, () => library.create(toEffectText(effects), options.seed));
  if (chain.dataFiles.includes(CASCADE) && library.readDataFile(CASCADE) === null) {
    library.writeDataFile(CASCADE, await asset(CASCADE));
  }
  return new LibraryEffect(library, chain);
}

/** A trap breaks the instance and all effects in it: the next ones get another. */
function guarded<T>(library: Library, use: () => T): T {
  try {
    return use();
  } catch (error) {
    if (isTrap(error)) {
      void shared?.then((present) => {
        if (present === library) shared = null;
      });
    }
    throw asError(error);
  }
}

class LibraryEffect implements NodeEffect {
  readonly #library: Library;
  readonly #chain: Chain;
  readonly #picture: Picture;

  constructor(library: Library, chain: Chain) {
    this.#library = library;
    this.#chain = chain;
    this.#picture = library.createPicture();
  }

  get text(): string {
    return this.#guarded(() => this.#chain.text);
  }

  process(bytes: Uint8Array, { format, width, height }: Shape, time?: bigint): void {
    this.#guarded(() => {
      this.#picture.shape(format, width, height);
      if (bytes.length !== this.#picture.size) {
        throw new SpecialEffectsError(
          'picture',
          `the picture has ${String(bytes.length)} bytes instead of ${String(this.#picture.size)}`,
        );
      }
      this.#picture.bytes.set(bytes);
      this.#chain.process(this.#picture, time ?? null);
      bytes.set(this.#picture.bytes);
    });
  }

  setProperty(property: string, value: PropertyValue): void {
    this.#guarded(() => {
      this.#chain.set(property, value);
    });
  }

  getProperty(property: string): string {
    return this.#guarded(() => this.#chain.get(property));
  }

  prepare(width: number, height: number): void {
    this.#guarded(() => {
      this.#chain.prepare(width, height);
    });
  }

  reset(): void {
    this.#guarded(() => {
      this.#chain.reset();
    });
  }

  dataFile(name: string): Uint8Array | null {
    return this.#library.readDataFile(name);
  }

  destroy(): void {
    this.#guarded(() => {
      this.#chain.destroy();
      this.#picture.destroy();
    });
  }

  #guarded<T>(use: () => T): T {
    return guarded(this.#library, use);
  }
}
