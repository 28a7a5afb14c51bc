// Effects as a processor of LiveKit's video tracks: await localVideoTrack.setProcessor(new SpecialEffects({ effects })).
import { createProcessor, hasFastPath, isSupported } from './processor.js';
import type { Effects, Processor, ProcessorOptions, PropertyValue } from './types.js';

export type * from './types.js';
export { SpecialEffectsError } from './types.js';

/** What LiveKit starts a processor with; the part that is used here. */
export interface TrackOptions {
  readonly track: MediaStreamTrack;
}

/** Fulfils LiveKit's `TrackProcessor<Track.Kind.Video>`, without depending on it. */
export class SpecialEffects {
  readonly name = 'specialeffects';
  /** The track with effects, between `init` and `destroy`. */
  processedTrack?: MediaStreamTrack;
  readonly #processor: Processor;

  constructor(options: ProcessorOptions = {}) {
    this.#processor = createProcessor(options);
  }

  /** Whether this browser can run it. */
  static get isSupported(): boolean {
    return isSupported();
  }

  /** Whether this browser has streams of frames, the fastest way. */
  static get hasModernApiSupport(): boolean {
    return hasFastPath();
  }

  async init({ track }: TrackOptions): Promise<void> {
    this.processedTrack = await this.#processor.start(track);
  }

  async restart({ track }: TrackOptions): Promise<void> {
    this.processedTrack = await this.#processor.start(track);
  }

  async destroy(): Promise<void> {
    await this.#processor.stop();
    delete this.processedTrack;
  }

  /** As in `Processor`. */
  setEffects(effects: Effects): Promise<void> {
    return this.#processor.setEffects(effects);
  }

  /** As in `Processor`. */
  setProperty(property: string, value: PropertyValue): Promise<void> {
    return this.#processor.setProperty(property, value);
  }

  /** As in `Processor`. */
  setEnabled(enabled: boolean): void {
    this.#processor.setEnabled(enabled);
  }
}
