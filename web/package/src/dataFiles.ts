// The data files of effects: Picture Me's face cascade is loaded, the noise of Clouds is made once and kept.
import type { Cascade } from './assets.js';
import { Library } from './library.js';
import { SpecialEffectsError } from './types.js';

export const CASCADE = 'haar.txt';
export const NOISE = 'perlin.dat';

/** Gives the content of a data file; null where the effect has to do without, or makes it itself. */
export type DataFiles = (name: string, module: WebAssembly.Module) => Promise<Uint8Array | null>;

/** The data files of a page. `createWorker` starts worker.js. */
export function dataFilesFrom(cascade: Cascade, createWorker: () => Worker): DataFiles {
  return async (name, module) => {
    if (name === CASCADE) return typeof cascade === 'string' ? load(cascade) : cascade;
    if (name === NOISE) return keptNoise(createWorker, module);
    return null;
  };
}

async function load(url: string): Promise<Uint8Array> {
  const response = await fetch(url).catch((error: unknown) => {
    throw new SpecialEffectsError('file', `${url} cannot be loaded`, { cause: error });
  });
  if (!response.ok) throw new SpecialEffectsError('file', `${url} cannot be loaded: ${String(response.status)}`);
  return new Uint8Array(await response.arrayBuffer());
}

// The key of the noise in the cache: nothing is ever requested from there.
const NOISE_KEY = 'https://specialeffects.invalid/1/perlin.dat';

/** The noise from the cache of the page's origin; else made in a worker, and stored there where that is possible. */
async function keptNoise(createWorker: () => Worker, module: WebAssembly.Module): Promise<Uint8Array | null> {
  const cache = await openCache();
  const kept = await cache?.match(NOISE_KEY).catch(() => undefined);
  if (kept) return new Uint8Array(await kept.arrayBuffer());
  const noise = await noiseOfWorker(createWorker, module);
  // A full disk or a private window is not a reason to fail.
  if (noise !== null) await cache?.put(NOISE_KEY, new Response(noise)).catch(() => undefined);
  return noise;
}

async function openCache(): Promise<Cache | null> {
  try {
    return await caches.open('specialeffects');
  } catch {
    return null; // not in this browser, or not in an insecure or private page
  }
}

/** The message that makes a new worker make the noise. */
export interface MakeNoise {
  readonly type: 'makeNoise';
  readonly module: WebAssembly.Module;
}

function noiseOfWorker(
  createWorker: () => Worker,
  module: WebAssembly.Module,
): Promise<Uint8Array<ArrayBuffer> | null> {
  let worker: Worker;
  try {
    worker = createWorker();
  } catch {
    return Promise.resolve(null); // the effect makes the noise itself, on its own thread
  }
  return new Promise<Uint8Array<ArrayBuffer> | null>((resolve) => {
    worker.onmessage = ({ data }: MessageEvent<Uint8Array<ArrayBuffer> | null>) => {
      resolve(data);
    };
    worker.onerror = () => {
      resolve(null);
    };
    worker.postMessage({ type: 'makeNoise', module } satisfies MakeNoise);
  }).finally(() => {
    worker.terminate();
  });
}

/** Makes the noise on this thread, in an instance of its own. Takes a second or two. */
export async function makeNoise(module: WebAssembly.Module): Promise<Uint8Array<ArrayBuffer> | null> {
  const library = await Library.instantiate(module);
  library.create('clouds').prepare(640, 480);
  return library.readDataFile(NOISE);
}
