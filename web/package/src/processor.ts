import { cascadeOf, compile, createWorker } from './assets.js';
import { createGenerator, framesOf, hasWindowStreams } from './breakoutBox.js';
import { dataFilesFrom } from './dataFiles.js';
import { toEffectText } from './effectText.js';
import type { Size } from './engine.js';
import { asError } from './errors.js';
import type { Frame } from './frames.js';
import { RemoteSession } from './remoteSession.js';
import { Session, type SessionEvents, type SessionInit } from './session.js';
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

/** While a page is hidden the browser does not tell of new frames. */
const HIDDEN_INTERVAL = 33;

/** What runs between `start` and `stop`. */
interface Running {
  readonly path: Path;
  readonly session: Session | RemoteSession;
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
      this.#running.session.setEnabled(this.#isEnabled);
      return this.#running.track;
    });
  }

  async setEffects(effects: Effects): Promise<void> {
    const text = toEffectText(effects);
    await this.#lock;
    await this.#running?.session.setEffects(text, sizeOf(this.#input));
    this.#effects = text;
    this.#properties.clear();
  }

  async setProperty(property: string, value: PropertyValue): Promise<void> {
    await this.#lock;
    await this.#running?.session.setProperty(property, value);
    this.#properties.set(property, value);
  }

  setEnabled(enabled: boolean): void {
    this.#isEnabled = enabled;
    this.#running?.session.setEnabled(enabled);
  }

  stop(): Promise<void> {
    return this.#locked(() => this.#end());
  }

  async #end(): Promise<void> {
    const running = this.#running;
    this.#running = null;
    this.#input = null;
    running?.end();
    await running?.session.stop();
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
    const init: SessionInit = {
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
    const session = await RemoteSession.create(
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
      if (wanted === 'window-streams') return await runWindowStreams(session, track);
      if (wanted === 'worker-streams' && (await session.hasStreams())) {
        const running = await runWorkerStreams(session, track).catch(() => null); // tracks cannot be transferred
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
      return runWorkerCanvas(session, track, output);
    } catch (error) {
      await session.stop();
      throw error;
    }
  }

  async #runInWindow(track: MediaStreamTrack, init: SessionInit, assets: Assets): Promise<Running> {
    const output = outputFor(track);
    const events = this.#events(
      () => 'canvas',
      (frame) => {
        output.show(frame);
      },
    );
    const session = await Session.create(init, dataFilesFrom(init.cascade, () => createWorker(assets)), events);
    const source = new VideoSource(false, (frame) => {
      session.push(frame);
    });
    source.setTrack(track);
    return {
      path: 'canvas',
      session,
      track: output.track,
      setInput: (next) => {
        source.setTrack(next);
      },
      end: () => {
        source.stop();
      },
    };
  }

  #events(path: () => Path, show: (frame: Frame) => void): SessionEvents {
    return {
      onStats: (stats) => this.#options.onStats?.({ ...stats, path: path() }),
      onError: (error) => this.#options.onError?.(error),
      onFrame: show,
    };
  }
}

async function runWindowStreams(session: RemoteSession, track: MediaStreamTrack): Promise<Running> {
  const generator = createGenerator();
  await session.setOutput(generator.writable);
  await session.setInput(framesOf(track));
  return {
    path: 'window-streams',
    session,
    track: generator,
    setInput: (next) => session.setInput(framesOf(next)),
    end: () => undefined,
  };
}

async function runWorkerStreams(session: RemoteSession, track: MediaStreamTrack): Promise<Running> {
  // The caller keeps the track, so the worker gets a clone, and stops it.
  await session.setTrack(track.clone());
  return {
    path: 'worker-streams',
    session,
    track: await session.createTrack(),
    setInput: (next) => session.setTrack(next.clone()),
    end: () => undefined,
  };
}

function runWorkerCanvas(session: RemoteSession, track: MediaStreamTrack, output: CanvasOutput): Running {
  const source = new VideoSource(true, (frame) => {
    session.push(frame);
  });
  session.onTick = () => {
    source.poll();
  };
  const onVisibility = () => {
    session.setTicks(document.hidden ? HIDDEN_INTERVAL : 0);
  };
  document.addEventListener('visibilitychange', onVisibility);
  onVisibility();
  source.setTrack(track);
  return {
    path: 'worker-canvas',
    session,
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
