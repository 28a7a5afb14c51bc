// Frames of a track by a video element, and a track of a canvas: for browsers without streams of frames.
import { type Context, type Frame, StillFrame, createContext, hasVideoFrame, pixelsOf } from './frames.js';

/** Plays a track, and gives its frames. */
export class VideoSource {
  readonly #video = document.createElement('video');
  readonly #onFrame: (frame: Frame) => void;
  readonly #makesBitmaps: boolean;
  #context: Context | null = null;
  #callback = 0;
  #isStopped = false;
  #lastTime = -1;

  /** `makesBitmaps`: without VideoFrame, frames are ImageBitmaps, for a worker; else pixels. */
  constructor(makesBitmaps: boolean, onFrame: (frame: Frame) => void) {
    this.#makesBitmaps = makesBitmaps;
    this.#onFrame = onFrame;
    this.#video.muted = true;
    this.#video.playsInline = true;
  }

  setTrack(track: MediaStreamTrack): void {
    this.#video.srcObject = new MediaStream([track]);
    this.#video.play().catch(() => undefined); // another track took its place
    this.#cancel();
    this.#wait();
  }

  /** Gives the present frame, if it is a new one. For pages that are hidden, where the browser does not call. */
  poll(): void {
    if (this.#video.currentTime !== this.#lastTime) void this.#grab();
  }

  stop(): void {
    this.#isStopped = true;
    this.#cancel();
    this.#video.srcObject = null;
  }

  #wait(): void {
    const onFrame = () => {
      this.#wait();
      this.poll();
    };
    this.#callback =
      'requestVideoFrameCallback' in this.#video
        ? this.#video.requestVideoFrameCallback(onFrame)
        : requestAnimationFrame(onFrame);
  }

  #cancel(): void {
    if ('cancelVideoFrameCallback' in this.#video) this.#video.cancelVideoFrameCallback(this.#callback);
    else cancelAnimationFrame(this.#callback);
  }

  async #grab(): Promise<void> {
    const { videoWidth: width, videoHeight: height } = this.#video;
    if (width === 0 || height === 0) return;
    this.#lastTime = this.#video.currentTime;
    const timestamp = Math.round(performance.now() * 1000);
    try {
      const frame = hasVideoFrame()
        ? new VideoFrame(this.#video, { timestamp })
        : new StillFrame(await this.#still(width, height), timestamp);
      if (this.#isStopped) frame.close();
      else this.#onFrame(frame);
    } catch {
      // The element has no frame at this moment; the next one comes.
    }
  }

  #still(width: number, height: number): Promise<ImageBitmap | ImageData> {
    if (this.#makesBitmaps) return createImageBitmap(this.#video);
    this.#context ??= createContext(width, height);
    return Promise.resolve(pixelsOf(this.#video, width, height, this.#context));
  }
}

/** A canvas whose content is a track. */
export class CanvasOutput {
  readonly track: MediaStreamTrack;
  readonly #canvas = document.createElement('canvas');
  readonly #context: CanvasRenderingContext2D;

  constructor(width: number, height: number) {
    this.#canvas.width = width;
    this.#canvas.height = height;
    const context = this.#canvas.getContext('2d', { alpha: false });
    const [track] = this.#canvas.captureStream().getVideoTracks();
    if (context === null || track === undefined) throw new Error('no stream of a canvas');
    this.#context = context;
    this.track = track;
  }

  /** Shows a frame, and closes it. */
  show(frame: Frame): void {
    const { displayWidth: width, displayHeight: height } = frame;
    if (this.#canvas.width !== width || this.#canvas.height !== height) {
      this.#canvas.width = width;
      this.#canvas.height = height;
    }
    const image = frame instanceof StillFrame ? frame.image : frame;
    if ('data' in image) this.#context.putImageData(image, 0, 0);
    else this.#context.drawImage(image, 0, 0, width, height);
    frame.close();
  }
}
