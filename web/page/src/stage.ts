// The picture and what is laid over it: the border between before and after, the mirror, full screen.

import { byId, press } from './dom';

const kStep = 2,
  kLeap = 10; // percent

export class Stage {
  readonly before = byId<HTMLVideoElement>('before');
  readonly after = byId<HTMLVideoElement>('after');
  readonly #screen = byId('screen');
  readonly #split = byId('split');
  #at = 50;

  constructor() {
    for (const video of [this.before, this.after]) {
      video.addEventListener('resize', () => {
        this.#fit(video);
      });
    }
    this.before.addEventListener('playing', () => {
      byId('waiting').hidden = true;
    });
    this.#split.addEventListener('pointerdown', (event) => {
      this.#drag(event);
    });
    this.#split.addEventListener('keydown', (event) => {
      this.#key(event);
    });
    document.addEventListener('fullscreenchange', () => {
      press(byId('full'), document.fullscreenElement !== null);
    });
    this.#place(this.#at);
    this.compare(false);
  }

  get mirrored(): boolean {
    return this.#screen.classList.contains('mirrored');
  }

  mirror(on: boolean): void {
    this.#screen.classList.toggle('mirrored', on);
    document.body.classList.toggle('mirrored', on);
    press(byId('mirror'), on);
  }

  get comparing(): boolean {
    return !this.#split.hidden;
  }

  compare(on: boolean): void {
    for (const id of ['split', 'before-tag', 'after-tag']) byId(id).hidden = !on;
    this.#screen.classList.toggle('comparing', on);
    press(byId('compare'), on);
  }

  async toggleFullScreen(): Promise<void> {
    if (document.fullscreenElement) await document.exitFullscreen();
    else await byId('viewer').requestFullscreen();
  }

  #fit({ videoWidth, videoHeight }: HTMLVideoElement): void {
    if (videoWidth && videoHeight) byId('viewer').style.setProperty('--aspect', String(videoWidth / videoHeight));
  }

  #place(percent: number): void {
    this.#at = Math.max(0, Math.min(percent, 100));
    this.#screen.style.setProperty('--split', `${this.#at}%`);
    this.#split.setAttribute('aria-valuenow', String(Math.round(this.#at)));
    this.#split.setAttribute('aria-valuetext', `${Math.round(this.#at)} percent before`);
  }

  #drag(down: PointerEvent): void {
    const { left, width } = this.#screen.getBoundingClientRect();
    this.#split.setPointerCapture(down.pointerId);
    const move = (event: PointerEvent) => {
      this.#place(((event.clientX - left) / width) * 100);
    };
    this.#split.addEventListener('pointermove', move);
    this.#split.addEventListener(
      'lostpointercapture',
      () => {
        this.#split.removeEventListener('pointermove', move);
      },
      { once: true },
    );
  }

  #key(event: KeyboardEvent): void {
    const to = {
      ArrowLeft: this.#at - kStep,
      ArrowDown: this.#at - kStep,
      ArrowRight: this.#at + kStep,
      ArrowUp: this.#at + kStep,
      PageDown: this.#at - kLeap,
      PageUp: this.#at + kLeap,
      Home: 0,
      End: 100,
    }[event.key];
    if (to === undefined) return;
    event.preventDefault();
    this.#place(to);
  }
}
