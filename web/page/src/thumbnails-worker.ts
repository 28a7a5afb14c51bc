// Applies effects to small frames, each with its own history, as far as the time goes.

import { type ImageProcessor, createImageProcessor } from 'specialeffects/image';

import { type Reply, type Request, type Setup, kHeight, kWidth } from './thumbnail-frames';

const kMostKept = 96;
const kPatience = 20; // milliseconds

const context = new OffscreenCanvas(kWidth, kHeight).getContext('2d', { willReadFrequently: true })!;
const processors = new Map<string, ImageProcessor | null>();
let setup: Setup;

/**
 * The processor for a text, made when first asked for; null if it cannot be made, or is not ready: data
 * files may take seconds, and the other processors do not wait for them. The least recently used one is removed first.
 */
async function processorFor(text: string): Promise<ImageProcessor | null> {
  if (!processors.has(text)) {
    const assets = { wasm: setup.module, cascade: setup.cascade };
    const making = createImageProcessor({ effects: text, assets }).then(
      (made) => {
        processors.set(text, made);
      },
      () => {
        /* it stays null */
      },
    );
    processors.set(text, null);
    await Promise.race([making, new Promise((resolve) => setTimeout(resolve, kPatience))]);
  }
  const processor = processors.get(text) ?? null;
  processors.delete(text);
  processors.set(text, processor);
  for (const [oldest, unused] of processors) {
    if (processors.size <= kMostKept) break;
    unused?.destroy();
    processors.delete(oldest);
  }
  return processor;
}

async function answer({ frame, time, texts, budget }: Request): Promise<Reply> {
  context.drawImage(frame, 0, 0);
  frame.close();
  const source = context.getImageData(0, 0, kWidth, kHeight);
  const pictures: { text: string; data: ImageData }[] = [];
  const end = performance.now() + budget;
  for (const text of texts) {
    const processor = await processorFor(text);
    try {
      if (processor) pictures.push({ text, data: processor.apply(source, time) });
    } catch {
      // It failed on this frame; the next may do.
    }
    if (performance.now() > end) break;
  }
  return { pictures };
}

addEventListener('message', ({ data }: MessageEvent<Setup | Request>) => {
  if ('module' in data) {
    setup = data;
    return;
  }
  void answer(data).then((reply) => {
    postMessage(reply, { transfer: reply.pictures.map((picture) => picture.data.data.buffer) });
  });
});
