// What the gallery and its worker send each other.

export const kWidth = 240;
export const kHeight = 150;

/** First of all: the compiled module, and Picture Me's cascade, if it can be had. */
export interface Setup {
  module: WebAssembly.Module;
  cascade: Uint8Array | null;
}
/** A frame, the effect texts that should see it, the longest waiting first, and milliseconds for all of them. */
export interface Request {
  frame: ImageBitmap;
  time: number;
  texts: readonly string[];
  budget: number;
}
/** The pictures that there was time for. */
export interface Reply {
  pictures: readonly { text: string; data: ImageData }[];
}
