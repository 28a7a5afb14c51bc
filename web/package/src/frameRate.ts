/** Chooses frames so that no more than `maximum` a second remain, evenly spread. Times are in milliseconds. */
export class FrameRate {
  readonly #interval: number;
  #due = -Infinity;

  constructor(maximum: number | undefined) {
    this.#interval = maximum !== undefined && maximum > 0 ? 1000 / maximum : 0;
  }

  /** Whether the frame of this time is to be shown. */
  accepts(time: number): boolean {
    // A frame that is a little early counts as on time: cameras jitter.
    const slack = this.#interval / 8;
    const isAfterJump = time < this.#due - 2 * this.#interval;
    if (time < this.#due - slack && !isAfterJump) return false;
    // Keep the beat, but do not make up for frames that did not come.
    this.#due = isAfterJump || time > this.#due + this.#interval ? time + this.#interval : this.#due + this.#interval;
    return true;
  }
}
