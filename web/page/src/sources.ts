// Where the picture comes from: a camera, a built-in scene, a file. Each is a video track.

import { type Scene, balloons, handHeld } from './scenes';
import { reducedMotion } from './dom';

export type SourceName = 'camera' | 'portrait' | 'balloons' | 'file';

export interface Source {
  readonly name: SourceName;
  readonly track: MediaStreamTrack;
  /** Whether it shows its user, who expects a mirror. */
  readonly facing: boolean;
  stop(): void;
}

/** Asks for permission where it has not been given. Rejects as getUserMedia does. */
export async function openCamera(deviceId?: string): Promise<Source> {
  if (!isSecureContext) throw new Error('Browsers allow a camera only to pages served over https.');
  const stream = await navigator.mediaDevices.getUserMedia({
    audio: false,
    video: {
      width: { ideal: 1280 },
      height: { ideal: 720 },
      frameRate: { ideal: 30 },
      ...(deviceId ? { deviceId: { exact: deviceId } } : { facingMode: 'user' }),
    },
  });
  const track = stream.getVideoTracks()[0]!;
  return {
    name: 'camera',
    track,
    facing: track.getSettings().facingMode !== 'environment',
    stop: () => {
      track.stop();
    },
  };
}

export async function listCameras(): Promise<MediaDeviceInfo[]> {
  const devices = await navigator.mediaDevices.enumerateDevices();
  return devices.filter((device) => device.kind === 'videoinput' && device.deviceId);
}

const kFramesPerSecond = 30;

/** A canvas whose pictures are a track. `draw` gets the seconds since the start. */
function drawn(name: SourceName, width: number, height: number, draw: Scene, free?: () => void): Source {
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  const context = canvas.getContext('2d', { alpha: false })!;
  const begin = performance.now();
  const paint = () => {
    draw(context, width, height, (performance.now() - begin) / 1000);
  };
  paint();
  const timer = setInterval(paint, 1000 / kFramesPerSecond);
  const track = canvas.captureStream(kFramesPerSecond).getVideoTracks()[0]!;
  return {
    name,
    track,
    facing: false,
    stop: () => {
      clearInterval(timer);
      track.stop();
      free?.();
    },
  };
}

export function openBalloons(): Source {
  return drawn('balloons', 1280, 720, balloons(reducedMotion.matches));
}

export async function openPortrait(): Promise<Source> {
  const picture = await decode('portrait.jpg');
  return drawn('portrait', 960, 540, handHeld(picture, reducedMotion.matches));
}

/** A video, which plays over and over, or a picture. Rejects with a sentence if the browser cannot show it. */
export async function openFile(file: File): Promise<Source> {
  const url = URL.createObjectURL(file);
  const free = () => {
    URL.revokeObjectURL(url);
  };
  try {
    return file.type.startsWith('image/') ? await openPicture(url, free) : await openVideo(url, free);
  } catch {
    free();
    throw new Error(`“${file.name}” is not a video or picture that this browser can show.`);
  }
}

const kMostPixels = 1280 * 720;

/** The size for a picture so that it has about as many pixels as a camera's; even, as video is. */
function sizeFor(width: number, height: number): [number, number] {
  const scale = Math.min(1, Math.sqrt(kMostPixels / (width * height)));
  const even = (side: number) => Math.max(16, Math.round((side * scale) / 2) * 2);
  return [even(width), even(height)];
}

async function openPicture(url: string, free: () => void): Promise<Source> {
  const picture = await decode(url);
  const [width, height] = sizeFor(picture.naturalWidth, picture.naturalHeight);
  return drawn(
    'file',
    width,
    height,
    (context) => {
      context.drawImage(picture, 0, 0, width, height);
    },
    free,
  );
}

async function openVideo(url: string, free: () => void): Promise<Source> {
  const video = document.createElement('video');
  Object.assign(video, { muted: true, loop: true, playsInline: true, src: url });
  await video.play();
  const [width, height] = sizeFor(video.videoWidth, video.videoHeight);
  return drawn(
    'file',
    width,
    height,
    (context) => {
      context.drawImage(video, 0, 0, width, height);
    },
    () => {
      video.pause();
      video.removeAttribute('src');
      video.load();
      free();
    },
  );
}

async function decode(url: string): Promise<HTMLImageElement> {
  const picture = new Image();
  picture.src = url;
  await picture.decode();
  return picture;
}
