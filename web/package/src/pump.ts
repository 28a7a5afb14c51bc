// Frames from where they come to where they go: processed, passed, or dropped, and counted. Runs in the worker, or in the
// window of a page without workers.
import type { Engine } from './engine.js';
import { FrameRate } from './frameRate.js';
import type { Frame } from './frames.js';
import type { Stats } from './types.js';

/** All but the path, which only the window knows. */
export type PipelineStats = Omit<Stats, 'path'>;

export interface PumpOptions {
  readonly engine: Engine;
  /** The frame with the effects applied; null: it is to be shown as it is. Does not close it. */
  readonly apply: (frame: Frame) => Promise<Frame | null>;
  /** Shows a frame, and closes it. */
  readonly show: (frame: Frame) => Promise<void>;
  readonly maxFps: number | undefined;
  readonly isEnabled: boolean;
  readonly onStats: (stats: PipelineStats) => void;
}

const STATS_INTERVAL = 1000;

export class Pump {
  isEnabled: boolean;

  readonly #options: PumpOptions;
  readonly #rate: FrameRate;
  #waiting: Frame | null = null;
  #isBusy = false;
  #isStopped = false;
  #processed = 0;
  #passed = 0;
  #dropped = 0;
  #size = { width: 0, height: 0 };
  #since = { time: performance.now(), written: 0, processed: 0, milliseconds: 0 };

  constructor(options: PumpOptions) {
    this.#options = options;
    this.#rate = new FrameRate(options.maxFps);
    this.isEnabled = options.isEnabled;
  }

  /** Takes over a frame. While another is in the works it waits, and is dropped when a newer one comes. */
  push(frame: Frame): void {
    if (this.#isStopped || !this.#rate.accepts(frame.timestamp / 1000)) {
      this.#drop(frame);
      return;
    }
    if (this.#waiting !== null) this.#drop(this.#waiting);
    this.#waiting = frame;
    if (!this.#isBusy) void this.#work();
  }

  /** Drops what is waiting, and all that still comes. */
  stop(): void {
    this.#isStopped = true;
    this.#waiting?.close();
    this.#waiting = null;
  }

  #drop(frame: Frame): void {
    frame.close();
    ++this.#dropped;
  }

  async #work(): Promise<void> {
    this.#isBusy = true;
    try {
      for (let frame = this.#take(); frame !== null; frame = this.#take()) {
        await this.#process(frame);
        // Let frames that came meanwhile take the place of the one that waits.
        await nextTask();
      }
    } finally {
      this.#isBusy = false;
    }
  }

  #take(): Frame | null {
    const frame = this.#waiting;
    this.#waiting = null;
    return frame;
  }

  async #process(frame: Frame): Promise<void> {
    const { engine, apply, show } = this.#options;
    const start = performance.now();
    this.#size = { width: frame.displayWidth, height: frame.displayHeight };
    const changed = this.isEnabled && engine.isActive ? await apply(frame) : null;
    if (changed === null) {
      ++this.#passed;
    } else {
      frame.close();
      ++this.#processed;
      ++this.#since.processed;
      this.#since.milliseconds += performance.now() - start;
    }
    if (this.#isStopped) {
      (changed ?? frame).close();
      return;
    }
    await show(changed ?? frame);
    ++this.#since.written;
    this.#report();
  }

  #report(): void {
    const now = performance.now();
    const elapsed = now - this.#since.time;
    if (elapsed < STATS_INTERVAL) return;
    const { engine, onStats } = this.#options;
    const { written, processed, milliseconds } = this.#since;
    onStats({
      ...this.#size,
      framesPerSecond: (written * 1000) / elapsed,
      milliseconds: processed === 0 ? 0 : milliseconds / processed,
      processed: this.#processed,
      passed: this.#passed,
      dropped: this.#dropped,
      restarts: engine.restarts,
      memory: engine.memory,
    });
    this.#since = { time: now, written: 0, processed: 0, milliseconds: 0 };
  }
}

/** Waits until what already waits on this thread has run. Not throttled, unlike timers. */
function nextTask(): Promise<void> {
  const { port1, port2 } = new MessageChannel();
  return new Promise((resolve) => {
    port1.onmessage = () => {
      port1.close();
      resolve();
    };
    port2.postMessage(null);
  });
}
