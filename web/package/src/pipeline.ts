// One running processor: effects, and frames through them. Lives in the worker, or in the
// window of a page without workers.
import type { Cascade } from './assets.js';
import type { DataFiles } from './dataFiles.js';
import { Engine, type Size } from './engine.js';
import { type Context, type Frame, StillFrame, createContext, pixelsOf } from './frames.js';
import { Runtime } from './runtime.js';
import { Pump, type PipelineStats } from './pump.js';
import type { PropertyValue, SpecialEffectsError } from './types.js';

/** What a pipeline starts with; goes to the worker as a message. */
export interface PipelineInit {
  readonly module: WebAssembly.Module;
  readonly effects: string;
  /** What has been set since. */
  readonly properties: readonly (readonly [property: string, value: PropertyValue])[];
  readonly size: Size | null;
  readonly seed: number;
  readonly maxFps: number | undefined;
  readonly isEnabled: boolean;
  readonly cascade: Cascade;
}

export interface PipelineEvents {
  onStats(stats: PipelineStats): void;
  onError(error: SpecialEffectsError): void;
  /** Shows a frame and closes it. For pipelines without an output stream. */
  onFrame(frame: Frame): void;
}

export class Pipeline {
  readonly #engine: Engine;
  readonly #pump: Pump;
  readonly #events: PipelineEvents;
  #reader: ReadableStreamDefaultReader<VideoFrame> | null = null;
  #writer: WritableStreamDefaultWriter<VideoFrame> | null = null;
  #context: Context | null = null;

  private constructor(engine: Engine, init: PipelineInit, events: PipelineEvents) {
    this.#engine = engine;
    this.#events = events;
    this.#pump = new Pump({
      engine,
      maxFps: init.maxFps,
      isEnabled: init.isEnabled,
      onStats: (stats) => {
        events.onStats(stats);
      },
      apply: (frame) => this.#apply(frame),
      show: (frame) => this.#show(frame),
    });
  }

  /** Resolves when the effects are ready; rejects where they are not valid. */
  static async create(init: PipelineInit, dataFiles: DataFiles, events: PipelineEvents): Promise<Pipeline> {
    const engine = new Engine({
      runtime: new Runtime(init.module, dataFiles),
      seed: init.seed,
      onError: (error) => {
        events.onError(error);
      },
    });
    await engine.setEffects(init.effects, init.size);
    for (const [property, value] of init.properties) await engine.setProperty(property, value);
    return new Pipeline(engine, init, events);
  }

  /** Writes frames there from now on. */
  setOutput(stream: WritableStream<VideoFrame>): void {
    this.#writer = stream.getWriter();
  }

  /** Reads frames from there from now on, and no longer from the stream before. */
  setInput(stream: ReadableStream<VideoFrame>): void {
    this.#cancelInput();
    const reader = stream.getReader();
    this.#reader = reader;
    void this.#read(reader);
  }

  /** Takes over a frame. */
  push(frame: Frame): void {
    this.#pump.push(frame);
  }

  setEffects(text: string, size: Size | null): Promise<void> {
    return this.#engine.setEffects(text, size);
  }

  setProperty(property: string, value: PropertyValue): Promise<void> {
    return this.#engine.setProperty(property, value);
  }

  setEnabled(isEnabled: boolean): void {
    this.#pump.isEnabled = isEnabled;
  }

  async stop(): Promise<void> {
    this.#cancelInput();
    this.#pump.stop();
    this.#engine.destroy();
    await this.#writer?.close().catch(() => undefined); // it may have ended already
  }

  async #read(reader: ReadableStreamDefaultReader<VideoFrame>): Promise<void> {
    try {
      for (;;) {
        const { value, done } = await reader.read();
        if (done) return;
        if (reader === this.#reader) this.#pump.push(value);
        else value.close();
      }
    } catch {
      // The track has ended.
    }
  }

  #cancelInput(): void {
    this.#reader?.cancel().catch(() => undefined);
    this.#reader = null;
  }

  async #apply(frame: Frame): Promise<Frame | null> {
    return frame instanceof StillFrame ? this.#applyToStill(frame) : this.#engine.applyToFrame(frame);
  }

  #applyToStill({ image, timestamp }: StillFrame): StillFrame | null {
    this.#context ??= createContext(image.width, image.height);
    const pixels = 'data' in image ? image : pixelsOf(image, image.width, image.height, this.#context);
    const isDone = this.#engine.tryPixels(pixels, BigInt(Math.round(timestamp)) * 1000n);
    return isDone ? new StillFrame(pixels, timestamp) : null;
  }

  async #show(frame: Frame): Promise<void> {
    if (this.#writer === null || frame instanceof StillFrame) {
      this.#events.onFrame(frame);
      return;
    }
    try {
      await this.#writer.write(frame);
    } catch {
      // Somebody has ended the output track.
      frame.close();
      this.#cancelInput();
      this.#pump.stop();
    }
  }
}
