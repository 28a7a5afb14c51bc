// Frames for browsers without VideoFrame.

/** A frame as a picture: an ImageBitmap as it came, or an ImageData with effects applied. */
export class StillFrame {
  constructor(
    readonly image: ImageBitmap | ImageData,
    /** Microseconds. */
    readonly timestamp: number,
  ) {}

  get displayWidth(): number {
    return this.image.width;
  }

  get displayHeight(): number {
    return this.image.height;
  }

  close(): void {
    if ('close' in this.image) this.image.close();
  }
}

export type Frame = VideoFrame | StillFrame;

/** A frame as it travels between window and worker. */
export interface PostedFrame {
  readonly image: VideoFrame | ImageBitmap | ImageData;
  readonly timestamp: number;
}

export const hasVideoFrame = (): boolean => typeof VideoFrame !== 'undefined';

/** Hands a frame over: it must not be used, nor closed, afterwards. */
export function toPosted(frame: Frame): { message: PostedFrame; transfer: Transferable[] } {
  const image = frame instanceof StillFrame ? frame.image : frame;
  const transfer = 'data' in image ? [image.data.buffer] : [image];
  return { message: { image, timestamp: frame.timestamp }, transfer };
}

export function fromPosted({ image, timestamp }: PostedFrame): Frame {
  return hasVideoFrame() && image instanceof VideoFrame ? image : new StillFrame(image as ImageBitmap, timestamp);
}

export type Context = CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D;

/** A canvas outside the page, for drawing and reading. */
export function createContext(width: number, height: number): Context {
  const options: CanvasRenderingContext2DSettings = { willReadFrequently: true };
  let context: Context | null;
  if (typeof OffscreenCanvas !== 'undefined') {
    context = new OffscreenCanvas(width, height).getContext('2d', options);
  } else {
    const canvas = document.createElement('canvas');
    canvas.width = width;
    canvas.height = height;
    context = canvas.getContext('2d', options);
  }
  if (context === null) throw new Error('no 2D canvas');
  return context;
}

/** The pixels of anything that can be drawn, at this size. The canvas of the context takes that size. */
export function pixelsOf(source: CanvasImageSource, width: number, height: number, context: Context): ImageData {
  if (context.canvas.width !== width || context.canvas.height !== height) {
    context.canvas.width = width;
    context.canvas.height = height;
  }
  context.drawImage(source, 0, 0, width, height);
  return context.getImageData(0, 0, width, height);
}
