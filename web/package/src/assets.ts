// The files of the package: where they are, and the module compiled from them.
import { type Assets, SpecialEffectsError } from './types.js';

// Bundlers look for exactly this form: new URL(text, import.meta.url).

/** Where the cascade is, its content, or null. */
export type Cascade = string | Uint8Array | null;

export const cascadeOf = ({ cascade }: Assets): Cascade =>
  cascade === null || cascade instanceof Uint8Array
    ? cascade
    : absolute(cascade ?? new URL('./haar.txt', import.meta.url));

export function createWorker({ worker }: Assets): Worker {
  return worker === undefined
    ? new Worker(new URL('./worker.js', import.meta.url), { type: 'module', name: 'specialeffects' })
    : new Worker(absolute(worker), { type: 'module', name: 'specialeffects' });
}

/** Relative to the page, not to a worker that was loaded from elsewhere. */
function absolute(url: string | URL): string {
  const base = (globalThis as { document?: { baseURI: string } }).document?.baseURI ?? location.href;
  return new URL(url, base).href;
}

const modules = new Map<string, Promise<WebAssembly.Module>>();

/** The compiled module; compiled once in a page. */
export function compile(assets: Assets): Promise<WebAssembly.Module> {
  if (assets.wasm instanceof WebAssembly.Module) return Promise.resolve(assets.wasm);
  const url = hasSimd()
    ? absolute(assets.wasm ?? new URL('./specialeffects.wasm', import.meta.url))
    : absolute(assets.baselineWasm ?? new URL('./specialeffects-baseline.wasm', import.meta.url));
  let module = modules.get(url);
  if (module === undefined) {
    module = load(url).catch((error: unknown) => {
      modules.delete(url); // the network may come back
      throw new SpecialEffectsError('load', `${url} cannot be loaded: ${String(error)}`, { cause: error });
    });
    modules.set(url, module);
  }
  return module;
}

async function load(url: string): Promise<WebAssembly.Module> {
  const response = await fetch(url);
  if (!response.ok) throw new Error(`status ${String(response.status)}`);
  // Servers that do not know the type of .wasm files rule streaming out.
  const isStreamable = response.headers.get('Content-Type')?.startsWith('application/wasm') === true;
  return isStreamable ? WebAssembly.compileStreaming(response) : WebAssembly.compile(await response.arrayBuffer());
}

/** Whether this machine has WebAssembly SIMD: by a module of one function, `i8x16.splat` of 0. */
export function hasSimd(): boolean {
  return WebAssembly.validate(
    Uint8Array.from([
      0, 97, 115, 109, 1, 0, 0, 0, 1, 5, 1, 96, 0, 1, 123, 3, 2, 1, 0, 10, 8, 1, 6, 0, 65, 0, 253, 15, 11,
    ]),
  );
}
