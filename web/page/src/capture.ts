// Pictures and recordings of what the screen shows, as files.

/** Hands a file to the browser's downloads. */
function download(blob: Blob, extension: string): void {
  const url = URL.createObjectURL(blob);
  const link = document.createElement('a');
  link.href = url;
  link.download = `special-effects-${new Date().toISOString().slice(0, 19).replaceAll(':', '-')}.${extension}`;
  link.click();
  setTimeout(() => {
    URL.revokeObjectURL(url);
  }, 60_000);
}

function paint(context: CanvasRenderingContext2D, video: HTMLVideoElement, mirrored: boolean): void {
  const { width, height } = context.canvas;
  context.setTransform(mirrored ? -1 : 1, 0, 0, 1, mirrored ? width : 0, 0);
  context.drawImage(video, 0, 0, width, height);
}

function canvasFor(video: HTMLVideoElement): CanvasRenderingContext2D {
  const canvas = document.createElement('canvas');
  canvas.width = video.videoWidth;
  canvas.height = video.videoHeight;
  return canvas.getContext('2d', { alpha: false })!;
}

/** Saves the video's present picture as PNG. False if there is no picture yet. */
export async function savePicture(video: HTMLVideoElement, mirrored: boolean): Promise<boolean> {
  if (!video.videoWidth) return false;
  const context = canvasFor(video);
  paint(context, video, mirrored);
  const blob = await new Promise<Blob | null>((resolve) => {
    context.canvas.toBlob(resolve, 'image/png');
  });
  if (blob) download(blob, 'png');
  return blob !== null;
}

/** The first that the browser can write: one that every player knows, then the one that every browser knows. */
const kTypes = ['video/mp4;codecs=avc1.42E01F', 'video/webm;codecs=vp8', 'video/webm'];

/** A running recording. */
export class Recording {
  readonly #recorder: MediaRecorder;
  readonly #begin = performance.now();
  readonly #done: Promise<void>;

  /** Records the video, or `track`, what it shows, where it is not mirrored. Throws if the browser cannot. */
  constructor(video: HTMLVideoElement, track: MediaStreamTrack, mirrored: boolean) {
    const mimeType = kTypes.find((type) => MediaRecorder.isTypeSupported(type));
    const ending = new AbortController();
    const recorded = mirrored ? mirroredTrack(video, ending.signal) : track.clone();
    const recorder = new MediaRecorder(new MediaStream([recorded]), {
      ...(mimeType ? { mimeType } : {}),
      videoBitsPerSecond: 6_000_000,
    });
    const parts: Blob[] = [];
    this.#recorder = recorder;
    this.#done = new Promise((resolve) => {
      recorder.addEventListener('dataavailable', ({ data }) => {
        parts.push(data);
      });
      recorder.addEventListener('stop', () => {
        ending.abort();
        recorded.stop();
        const type = recorder.mimeType;
        download(new Blob(parts, { type }), type.includes('mp4') ? 'mp4' : 'webm');
        resolve();
      });
    });
    recorder.start(1000);
  }

  get seconds(): number {
    return (performance.now() - this.#begin) / 1000;
  }

  /** Ends it and saves the file. */
  async stop(): Promise<void> {
    if (this.#recorder.state !== 'inactive') this.#recorder.stop();
    await this.#done;
  }
}

/** What the video shows, as in a mirror. */
function mirroredTrack(video: HTMLVideoElement, ending: AbortSignal): MediaStreamTrack {
  const context = canvasFor(video);
  const next = () => {
    if (ending.aborted) return;
    paint(context, video, true);
    video.requestVideoFrameCallback(next);
  };
  next();
  return context.canvas.captureStream().getVideoTracks()[0]!;
}
