// What the gallery and its worker send each other.

export const kWidth = 192;
export const kHeight = 120;

/** First of all: the compiled module, and where Picture Me's cascade is, if it can be had. */
export interface Setup { module: WebAssembly.Module; cascade: string | null }
/** A frame, the effect texts that should see it, the longest waiting first, and milliseconds for all of them. */
export interface Request { frame: ImageBitmap; time: number; texts: readonly string[]; budget: number }
/** The pictures that there was time for. */
export interface Reply { pictures: readonly { text: string; data: ImageData }[] }
