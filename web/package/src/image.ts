// Effects on pictures, one by one.
import { cascadeOf, compile, createWorker } from './assets.js';
import { dataFilesFrom } from './dataFiles.js';
import { toEffectText } from './effectText.js';
import { Engine } from './engine.js';
import { type Context, createContext, pixelsOf } from './frames.js';
import { Runtime } from './runtime.js';
import type {
  Assets,
  Effects,
  ImageOptions,
  ImageProcessor,
  ImageProcessorOptions,
  ImageSource,
  PropertyValue,
} from './types.js';

export type * from './types.js';
export { SpecialEffectsError } from './types.js';

/** A new picture with the effects applied: `applyEffects(video, 'preset:noir')`. */
export async function applyEffects(
  source: ImageSource,
  effects: Effects,
  { frames = 1, ...options }: ImageOptions = {},
): Promise<ImageData> {
  const processor = await createImageProcessor({ ...options, effects });
  try {
    let result = processor.apply(source);
    for (let frame = 1; frame < frames; ++frame) result = processor.apply(source);
    return result;
  } finally {
    processor.destroy();
  }
}

/** Effects for one picture after another; see ImageProcessor. */
export async function createImageProcessor(options: ImageProcessorOptions = {}): Promise<ImageProcessor> {
  const { assets = {}, effects = '', seed = 1 } = options;
  const engine = new Engine({
    runtime: runtimeOf(await compile(assets), assets),
    seed,
    onError: () => undefined, // the effect runs without its data file
  });
  await engine.setEffects(toEffectText(effects));
  return new EngineProcessor(engine);
}

const runtimes = new WeakMap<WebAssembly.Module, Runtime>();

/** The instance of this module that all processors of this thread share. */
function runtimeOf(module: WebAssembly.Module, assets: Assets): Runtime {
  let runtime = runtimes.get(module);
  if (runtime === undefined) {
    runtime = new Runtime(
      module,
      dataFilesFrom(cascadeOf(assets), () => createWorker(assets)),
    );
    runtimes.set(module, runtime);
  }
  return runtime;
}

class EngineProcessor implements ImageProcessor {
  readonly #engine: Engine;
  #context: Context | null = null;

  constructor(engine: Engine) {
    this.#engine = engine;
  }

  apply(source: ImageSource, time?: number): ImageData {
    const pixels = this.#copy(source);
    this.#engine.applyToPixels(pixels, time === undefined ? null : BigInt(Math.round(time * 1e6)));
    return pixels;
  }

  setEffects(effects: Effects): Promise<void> {
    return this.#engine.setEffects(toEffectText(effects));
  }

  setProperty(property: string, value: PropertyValue): void {
    this.#engine.setPropertyNow(property, value);
  }

  reset(): void {
    this.#engine.reset();
  }

  destroy(): void {
    this.#engine.destroy();
    this.#context = null;
  }

  #copy(source: ImageSource): ImageData {
    if (source instanceof ImageData) {
      return new ImageData(new Uint8ClampedArray(source.data), source.width, source.height);
    }
    const { width, height } = sizeOf(source);
    this.#context ??= createContext(width, height);
    return pixelsOf(source, width, height, this.#context);
  }
}

function sizeOf(source: Exclude<ImageSource, ImageData>): { width: number; height: number } {
  if ('videoWidth' in source) return { width: source.videoWidth, height: source.videoHeight };
  if ('naturalWidth' in source) return { width: source.naturalWidth, height: source.naturalHeight };
  if ('displayWidth' in source) return { width: source.displayWidth, height: source.displayHeight };
  return { width: source.width, height: source.height };
}
