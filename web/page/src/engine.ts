// The live picture: a source's track through the processor into the two video elements.

import { type Assets, type Processor, type Stats, createProcessor } from 'specialeffects';

import { type Chain, type Links, applied } from './chain';
import type { Source } from './sources';

/** Events: source, when another is shown; lost, when it ended by itself; stats; trouble, with a sentence. */
export class Engine extends EventTarget {
  readonly #processor: Processor;
  readonly #before: HTMLVideoElement;
  readonly #after: HTMLVideoElement;
  #source: Source | undefined;
  #text = '';
  #links: Links = [];
  stats: Stats | undefined;

  constructor(before: HTMLVideoElement, after: HTMLVideoElement, assets: Assets) {
    super();
    this.#before = before;
    this.#after = after;
    this.#processor = createProcessor({
      maxFps: 60,
      assets,
      onStats: (stats) => {
        this.stats = stats;
        this.dispatchEvent(new Event('stats'));
      },
      onError: (error) => {
        this.dispatchEvent(new CustomEvent('trouble', { detail: error.message }));
      },
    });
  }

  get source(): Source | undefined {
    return this.#source;
  }
  /** What the effects made of the source, to record. */
  get output(): MediaStreamTrack | null {
    return this.#processor.track;
  }

  /** Takes over the source; the one before it is stopped. */
  async play(source: Source): Promise<void> {
    this.#source?.stop();
    this.#source = source;
    this.#before.srcObject = new MediaStream([source.track]);
    source.track.addEventListener('ended', () => {
      if (this.#source === source) this.dispatchEvent(new Event('lost'));
    });
    const text = this.#text;
    const output = await this.#processor.start(source.track);
    if (this.#text !== text) await this.#processor.setEffects(this.#text); // changed while it was getting ready
    if (this.#source !== source) return;
    const shown = this.#after.srcObject;
    if (!(shown instanceof MediaStream) || shown.getVideoTracks()[0] !== output) {
      this.#after.srcObject = new MediaStream([output]);
    }
    this.dispatchEvent(new Event('source'));
  }

  /** Ends the source, so that nothing runs and a camera goes dark. The last picture stays. */
  pause(): void {
    this.#source?.stop();
  }

  /** Brings the processor to what the chain says: by one property where that is all that changed. */
  async follow(chain: Chain): Promise<void> {
    const before = this.#links.filter((link) => link.on);
    const now = chain.links.filter((link) => link.on);
    this.#links = chain.links;
    const text = applied(chain.links);
    if (text === this.#text) return;
    this.#text = text;
    const changed = now.flatMap((link, at) => (link === before[at] ? [] : [at]));
    const at = changed[0];
    if (
      now.length === before.length &&
      changed.length === 1 &&
      at !== undefined &&
      now[at]!.effect === before[at]!.effect
    ) {
      const values = Object.entries(now[at]!.values).filter(([id, value]) => before[at]!.values[id] !== value);
      const added = Object.keys(before[at]!.values).every((id) => id in now[at]!.values);
      if (added) {
        await Promise.all(values.map(([id, value]) => this.#processor.setProperty(`${at}.${id}`, value)));
        return;
      }
    }
    await this.#processor.setEffects(text);
  }
}
