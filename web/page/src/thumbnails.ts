// The live pictures of the gallery. A worker applies one effect after the other to small frames, for the canvases that
// can be seen, in turns. It gets less time when the main picture falls behind.

import { reducedMotion } from './dom';
import { type Reply, type Request, type Setup, kHeight, kWidth } from './thumbnail-frames';

const kFastest = 90,
  kSlowest = 600; // milliseconds from one frame to the next
const kBudget = 8; // milliseconds of work for each
const kStillPictures = 10; // with reduced motion a canvas gets so many, enough for effects with a memory

interface Shown {
  canvas: HTMLCanvasElement;
  text: string;
  visible: boolean;
  pictures: number;
  last: number;
}

export class Thumbnails {
  #worker: Worker | undefined;
  readonly #video: HTMLVideoElement;
  readonly #shown = new Map<Element, Shown>();
  readonly #seen: IntersectionObserver;
  #busy = false;
  #interval = kFastest;
  #lively: Element | null = null;

  constructor(video: HTMLVideoElement) {
    this.#video = video;
    this.#seen = new IntersectionObserver((entries) => {
      for (const { target, isIntersecting } of entries) {
        const shown = this.#shown.get(target);
        if (shown) shown.visible = isIntersecting;
      }
    });
    for (const kind of ['pointerover', 'focusin']) {
      document.addEventListener(kind, ({ target }) => {
        this.#lively = target instanceof Element ? (target.closest('li')?.querySelector('canvas') ?? null) : null;
      });
    }
  }

  /** Begins, unless it has begun. The main picture comes first: nothing is loaded for the gallery before this. */
  start(setup: Setup): void {
    if (this.#worker) return;
    this.#worker = new Worker(new URL('./thumbnails-worker.js', import.meta.url), { type: 'module' });
    this.#worker.addEventListener('message', ({ data }: MessageEvent<Reply>) => {
      this.#draw(data);
    });
    this.#worker.postMessage(setup);
    void this.#run(this.#worker);
  }

  /** Keeps this canvas up to date while it can be seen. */
  show(canvas: HTMLCanvasElement, text: string): void {
    canvas.width = kWidth;
    canvas.height = kHeight;
    this.#shown.set(canvas, { canvas, text, visible: false, pictures: 0, last: 0 });
    this.#seen.observe(canvas);
  }

  forget(canvas: Element): void {
    this.#shown.delete(canvas);
    this.#seen.unobserve(canvas);
  }

  /** All canvases want new pictures: the source has changed. */
  renew(): void {
    for (const shown of this.#shown.values()) shown.pictures = 0;
  }

  /** How the main picture does: the part of the source's frames that come out in time. */
  yieldTo(part: number): void {
    this.#interval = part < 0.85 ? Math.min(this.#interval * 2, kSlowest) : Math.max(this.#interval * 0.8, kFastest);
  }

  async #run(worker: Worker): Promise<void> {
    for (;;) {
      const isEmpty = [...this.#shown.values()].some(({ visible, pictures }) => visible && !pictures);
      await new Promise((resolve) => setTimeout(resolve, isEmpty ? kFastest : this.#interval));
      if (this.#busy || document.hidden || this.#video.readyState < HTMLMediaElement.HAVE_CURRENT_DATA) continue;
      const wanted = [...this.#shown.values()].filter((shown) => shown.visible && this.#wants(shown));
      if (!wanted.length) continue;
      wanted.sort((a, b) => a.last - b.last);
      this.#busy = true;
      const frame = await this.#frame();
      if (!frame) {
        this.#busy = false;
        continue;
      }
      const request: Request = {
        frame,
        time: performance.now(),
        budget: kBudget,
        texts: [...new Set(wanted.map(({ text }) => text))],
      };
      worker.postMessage(request, [frame]);
    }
  }

  #wants(shown: Shown): boolean {
    return !reducedMotion.matches || shown.pictures < kStillPictures || shown.canvas === this.#lively;
  }

  /** The middle of the present picture, in the thumbnails' proportions. */
  async #frame(): Promise<ImageBitmap | undefined> {
    const { videoWidth, videoHeight } = this.#video;
    const scale = Math.min(videoWidth / kWidth, videoHeight / kHeight);
    const width = kWidth * scale,
      height = kHeight * scale;
    try {
      return await createImageBitmap(this.#video, (videoWidth - width) / 2, (videoHeight - height) / 2, width, height, {
        resizeWidth: kWidth,
        resizeHeight: kHeight,
        resizeQuality: 'medium',
      });
    } catch {
      return undefined; // the source has just ended
    }
  }

  #draw({ pictures }: Reply): void {
    this.#busy = false;
    const now = performance.now();
    for (const { text, data } of pictures) {
      for (const shown of this.#shown.values()) {
        if (shown.text !== text) continue;
        shown.last = now;
        ++shown.pictures;
        shown.canvas.getContext('2d')?.putImageData(data, 0, 0);
        shown.canvas.dataset.live = String(shown.pictures);
      }
    }
  }
}
