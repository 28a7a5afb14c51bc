import { cascadeOf, compile, createWorker } from './assets.js';
import { createGenerator, framesOf, hasWindowStreams } from './breakoutBox.js';
import { dataFilesFrom } from './dataFiles.js';
import { toEffectText } from './effectText.js';
import type { Size } from './engine.js';
import { asError } from './errors.js';
import type { Frame } from './frames.js';
import { RemotePipeline } from './remotePipeline.js';
import { Pipeline, type PipelineEvents, type PipelineInit } from './pipeline.js';
import {
  type Assets,
  type Effects,
  type Path,
  type Processor,
  type ProcessorOptions,
  type PropertyValue,
  SpecialEffectsError,
} from './types.js';
import { CanvasOutput, VideoSource } from './videoSource.js';

/** Applies effects to a video track; see Processor. Nothing is loaded before its `start`. */
export function createProcessor(options: ProcessorOptions = {}): Processor {
  return new TrackProcessor(options);
}

/** Whether this browser has what a processor needs. */
export function isSupported(): boolean {
  return (
    typeof WebAssembly !== 'undefined' &&
    typeof HTMLCanvasElement !== 'undefined' &&
    (hasWindowStreams() || 'captureStream' in HTMLCanvasElement.prototype)
  );
}

/** Whether it has streams of frames in the window: the fastest path. */
export const hasFastPath = (): boolean => hasWindowStreams() && typeof Worker !== 'undefined';

/** Milliseconds from one poll to the next while the page is hidden, when the browser does not announce new frames. */
const HIDDEN_INTERVAL = 33;

/** What runs between `start` and `stop`. */
interface Running {
  readonly path: Path;
  readonly pipeline: Pipeline | RemotePipeline;
  readonly track: MediaStreamTrack;
  setInput(track: MediaStreamTrack): Promise<void> | void;
  end(): void;
}

class TrackProcessor implements Processor {
  readonly #options: ProcessorOptions;
  #effects: string;
  #properties = new Map<string, PropertyValue>(); // what has been set since setEffects
  #isEnabled: boolean;
  #running: Running | null = null;
  #input: MediaStreamTrack | null = null;
  #lock: Promise<unknown> = Promise.resolve(); // start and stop follow each other

  constructor(options: ProcessorOptions) {
    this.#options = options;
    this.#effects = toEffectText(options.effects ?? '');
    this.#isEnabled = options.enabled ?? true;
  }

  get track(): MediaStreamTrack | null {
    return this.#running?.track ?? null;
  }

  get path(): Path | null {
    return this.#running?.path ?? null;
  }

  start(track: MediaStreamTrack): Promise<MediaStreamTrack> {
    return this.#locked(async () => {
      if (track.kind !== 'video') throw new SpecialEffectsError('argument', 'the track is not a video track');
      this.#input = track;
      try {
        if (this.#running?.track.readyState === 'ended') await this.#end(); // somebody has stopped the output track
        if (this.#running === null) this.#running = await this.#run(track);
        else await this.#running.setInput(track);
      } catch (error) {
        throw asError(error);
      }
      this.#running.pipeline.setEnabled(this.#isEnabled);
      return this.#running.track;
    });
  }

  async setEffects(effects: Effects): Promise<void> {
    const text = toEffectText(effects);
    await this.#lock;
    await this.#running?.pipeline.setEffects(text, sizeOf(this.#input));
    this.#effects = text;
    this.#properties.clear();
  }

  async setProperty(property: string, value: PropertyValue): Promise<void> {
    await this.#lock;
    await this.#running?.pipeline.setProperty(property, value);
    this.#properties.set(property, value);
  }

  setEnabled(enabled: boolean): void {
    this.#isEnabled = enabled;
    this.#running?.pipeline.setEnabled(enabled);
  }

  stop(): Promise<void> {
    return this.#locked(() => this.#end());
  }

  async #end(): Promise<void> {
    const running = this.#running;
    this.#running = null;
    this.#input = null;
    running?.end();
    await running?.pipeline.stop();
    running?.track.stop();
  }

  #locked<T>(use: () => Promise<T>): Promise<T> {
    const result = this.#lock.then(use);
    this.#lock = result.catch(() => undefined);
    return result;
  }

  async #run(track: MediaStreamTrack): Promise<Running> {
    if (!isSupported()) throw new SpecialEffectsError('unsupported', 'this browser has no streams of frames');
    const { assets = {}, seed = 1, maxFps } = this.#options;
    const init: PipelineInit = {
      module: await compile(assets),
      effects: this.#effects,
      properties: [...this.#properties],
      size: sizeOf(track),
      seed,
      maxFps,
      isEnabled: this.#isEnabled,
      cascade: cascadeOf(assets),
    };
    const wanted = this.#options.path ?? (hasFastPath() ? 'window-streams' : 'worker-streams');
    if (wanted === 'canvas' || typeof Worker === 'undefined') return this.#runInWindow(track, init, assets);

    let show: (frame: Frame) => void = (frame) => {
      frame.close();
    };
    let path = wanted;
    const pipeline = await RemotePipeline.create(
      init,
      this.#events(
        () => path,
        (frame) => {
          show(frame);
        },
      ),
      assets,
    );
    try {
      if (wanted === 'window-streams') return await runWindowStreams(pipeline, track);
      if (wanted === 'worker-streams' && (await pipeline.hasStreams())) {
        const running = await runWorkerStreams(pipeline, track).catch(() => null); // tracks cannot be transferred
        if (running !== null) return running;
      }
      if (this.#options.path === 'worker-streams') {
        throw new SpecialEffectsError('unsupported', 'workers of this browser have no tracks');
      }
      path = 'worker-canvas';
      const output = outputFor(track);
      show = (frame) => {
        output.show(frame);
      };
      return runWorkerCanvas(pipeline, track, output);
    } catch (error) {
      await pipeline.stop();
      throw error;
    }
  }

  async #runInWindow(track: MediaStreamTrack, init: PipelineInit, assets: Assets): Promise<Running> {
    const output = outputFor(track);
    const events = this.#events(
      () => 'canvas',
      (frame) => {
        output.show(frame);
      },
    );
    const pipeline = await Pipeline.create(
      init,
      dataFilesFrom(init.cascade, () => createWorker(assets)),
      events,
    );
    const source = new VideoSource(false, (frame) => {
      pipeline.push(frame);
    });
    source.setTrack(track);
    return {
      path: 'canvas',
      pipeline,
      track: output.track,
      setInput: (next) => {
        source.setTrack(next);
      },
      end: () => {
        source.stop();
      },
    };
  }

  #events(path: () => Path, show: (frame: Frame) => void): PipelineEvents {
    return {
      onStats: (stats) => this.#options.onStats?.({ ...stats, path: path() }),
      onError: (error) => this.#options.onError?.(error),
      onFrame: show,
    };
  }
}

async function runWindowStreams(pipeline: RemotePipeline, track: MediaStreamTrack): Promise<Running> {
  const generator = createGenerator();
  await pipeline.setOutput(generator.writable);
  await pipeline.setInput(framesOf(track));
  return {
    path: 'window-streams',
    pipeline,
    track: generator,
    setInput: (next) => pipeline.setInput(framesOf(next)),
    end: () => undefined,
  };
}

async function runWorkerStreams(pipeline: RemotePipeline, track: MediaStreamTrack): Promise<Running> {
  // The caller keeps the track, so the worker gets a clone, and stops it.
  await pipeline.setTrack(track.clone());
  return {
    path: 'worker-streams',
    pipeline,
    track: await pipeline.createTrack(),
    setInput: (next) => pipeline.setTrack(next.clone()),
    end: () => undefined,
  };
}

function runWorkerCanvas(pipeline: RemotePipeline, track: MediaStreamTrack, output: CanvasOutput): Running {
  const source = new VideoSource(true, (frame) => {
    pipeline.push(frame);
  });
  pipeline.onTick = () => {
    source.poll();
  };
  const onVisibility = () => {
    pipeline.setTicks(document.hidden ? HIDDEN_INTERVAL : 0);
  };
  document.addEventListener('visibilitychange', onVisibility);
  onVisibility();
  source.setTrack(track);
  return {
    path: 'worker-canvas',
    pipeline,
    track: output.track,
    setInput: (next) => {
      source.setTrack(next);
    },
    end: () => {
      document.removeEventListener('visibilitychange', onVisibility);
      source.stop();
    },
  };
}

/** The size that frames of a track will have, cut to even numbers as frames are; null where it is not known. */
function sizeOf(track: MediaStreamTrack | null): Size | null {
  const { width, height } = track?.getSettings() ?? {};
  return width === undefined || height === undefined || width < 2 || height < 2
    ? null
    : { width: width & ~1, height: height & ~1 };
}

function outputFor(track: MediaStreamTrack): CanvasOutput {
  const { width, height } = sizeOf(track) ?? { width: 640, height: 480 };
  return new CanvasOutput(width, height);
}
