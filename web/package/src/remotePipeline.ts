// A pipeline in a worker, as the window sees it.
import { createWorker } from './assets.js';
import type { Size } from './engine.js';
import { type Frame, fromPosted, toPosted } from './frames.js';
import type { Answer, Call, FromWorker, PostedError, ToWorker } from './messages.js';
import type { PipelineEvents, PipelineInit } from './pipeline.js';
import { type Assets, type PropertyValue, SpecialEffectsError } from './types.js';

interface Waiting {
  readonly resolve: (value: Answer) => void;
  readonly reject: (error: SpecialEffectsError) => void;
}

export class RemotePipeline {
  readonly #worker: Worker;
  readonly #waiting = new Map<number, Waiting>();
  readonly #events: PipelineEvents;
  #number = 0;
  #failure: SpecialEffectsError | null = null; // the worker is gone

  /** Called about as often as `setTicks` asks for. */
  onTick: () => void = () => undefined;

  private constructor(worker: Worker, events: PipelineEvents) {
    this.#worker = worker;
    this.#events = events;
    worker.onmessage = ({ data }: MessageEvent<FromWorker>) => {
      this.#receive(data);
    };
    worker.onerror = (event) => {
      event.preventDefault();
      const error = new SpecialEffectsError('load', `the worker failed: ${event.message || 'it cannot be loaded'}`);
      this.#fail(error);
      events.onError(error);
    };
  }

  static async create(init: PipelineInit, events: PipelineEvents, assets: Assets): Promise<RemotePipeline> {
    const pipeline = new RemotePipeline(createWorker(assets), events);
    try {
      await pipeline.#call({ name: 'create', init });
    } catch (error) {
      pipeline.#worker.terminate();
      throw error;
    }
    return pipeline;
  }

  async setOutput(stream: WritableStream<VideoFrame>): Promise<void> {
    await this.#call({ name: 'setOutput', stream }, [stream]);
  }

  async setInput(stream: ReadableStream<VideoFrame>): Promise<void> {
    await this.#call({ name: 'setInput', stream }, [stream]);
  }

  /** Whether the worker has tracks: then `createTrack` and `setTrack` work. */
  async hasStreams(): Promise<boolean> {
    return (await this.#call({ name: 'hasStreams' })) === true;
  }

  async createTrack(): Promise<MediaStreamTrack> {
    return (await this.#call({ name: 'createTrack' })) as MediaStreamTrack;
  }

  /** The worker takes the track over. */
  async setTrack(track: MediaStreamTrack): Promise<void> {
    await this.#call({ name: 'setTrack', track }, [track]);
  }

  push(frame: Frame): void {
    const { message, transfer } = toPosted(frame);
    this.#post({ type: 'frame', frame: message }, transfer);
  }

  async setEffects(text: string, size: Size | null): Promise<void> {
    await this.#call({ name: 'setEffects', text, size });
  }

  async setProperty(property: string, value: PropertyValue): Promise<void> {
    await this.#call({ name: 'setProperty', property, value });
  }

  setEnabled(isEnabled: boolean): void {
    this.#post({ type: 'setEnabled', isEnabled });
  }

  setTicks(interval: number): void {
    this.#post({ type: 'setTicks', interval });
  }

  async stop(): Promise<void> {
    await this.#call({ name: 'stop' }).catch(() => undefined); // a worker that failed is ended too
    this.#fail(new SpecialEffectsError('argument', 'the processor was stopped'));
    this.#worker.terminate();
  }

  #post(message: ToWorker, transfer: Transferable[] = []): void {
    this.#worker.postMessage(message, transfer);
  }

  #call(call: Call, transfer: Transferable[] = []): Promise<Answer> {
    if (this.#failure !== null) return Promise.reject(this.#failure);
    const number = ++this.#number;
    return new Promise((resolve, reject) => {
      this.#waiting.set(number, { resolve, reject });
      this.#post({ type: 'call', number, call }, transfer);
    });
  }

  #receive(message: FromWorker): void {
    switch (message.type) {
      case 'answer':
        this.#waiting.get(message.number)?.resolve(message.value);
        this.#waiting.delete(message.number);
        break;
      case 'failure':
        this.#waiting.get(message.number)?.reject(received(message.error));
        this.#waiting.delete(message.number);
        break;
      case 'stats':
        this.#events.onStats(message.stats);
        break;
      case 'error':
        this.#events.onError(received(message.error));
        break;
      case 'frame':
        this.#events.onFrame(fromPosted(message.frame));
        break;
      case 'tick':
        this.onTick();
        break;
    }
  }

  #fail(error: SpecialEffectsError): void {
    this.#failure = error;
    const waiting = [...this.#waiting.values()];
    this.#waiting.clear();
    for (const { reject } of waiting) reject(error);
  }
}

function received({ code, message }: PostedError): SpecialEffectsError {
  return new SpecialEffectsError(code, message);
}
