// The worker of the package in a browser whose workers have tracks. Streams of frames stand in for the tracks themselves,
// which Chromium cannot transfer.
self.MediaStreamTrackProcessor = class {
  constructor({ track }) {
    this.readable = track;
  }
};
self.VideoTrackGenerator = class {
  constructor() {
    const { readable, writable } = new TransformStream();
    this.writable = writable;
    this.track = readable;
  }
};
ReadableStream.prototype.stop = () => undefined;

const early = [];
self.onmessage = (event) => early.push(event);
import('/dist/worker.js').then(() => {
  for (const event of early) self.onmessage(event);
});
