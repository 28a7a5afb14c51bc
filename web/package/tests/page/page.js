// What the tests call in the browser, by page.evaluate.
import * as image from '../dist/image.js';
import * as main from '../dist/index.js';
import * as livekit from '../dist/livekit.js';

const errors = [];
let stats = [];

/** The track of the fake camera. */
async function camera(constraints = {}) {
  const stream = await navigator.mediaDevices.getUserMedia({ video: { ...constraints } });
  return stream.getVideoTracks()[0];
}

/** A processor that notes its errors and reports. */
function processor(options = {}) {
  return main.createProcessor({
    onError: (error) => errors.push(`${error.code}: ${error.message}`),
    onStats: (report) => stats.push(report),
    ...options,
  });
}

const bytesOf = async (frame, options) => {
  const bytes = new Uint8Array(frame.allocationSize(options));
  await frame.copyTo(bytes, options);
  return bytes;
};

const toHex = (bytes) => Array.from(bytes, (byte) => byte.toString(16).padStart(2, '0')).join('');

async function hash(bytes) {
  return toHex(new Uint8Array(await crypto.subtle.digest('SHA-256', bytes)));
}

const describe = (frame) => ({
  format: frame.format,
  width: frame.codedWidth,
  height: frame.codedHeight,
  displayWidth: frame.displayWidth,
  displayHeight: frame.displayHeight,
  timestamp: frame.timestamp,
});

/** Reads frames of a track until `use` returns something else than undefined. */
async function eachFrame(track, use) {
  const reader = new MediaStreamTrackProcessor({ track }).readable.getReader();
  try {
    for (;;) {
      const { value: frame, done } = await reader.read();
      if (done) throw new Error('the track has ended');
      let result;
      try {
        result = await use(frame);
      } finally {
        frame.close();
      }
      if (result !== undefined) return result;
    }
  } finally {
    await reader.cancel();
  }
}

/** Frames of a track, with hashes of their bytes. */
async function hashes(track, count) {
  const found = [];
  return eachFrame(track, async (frame) => {
    found.push({ ...describe(frame), hash: await hash(await bytesOf(frame)) });
    return found.length === count ? found : undefined;
  });
}

/** The next frame of a track for which this holds, within some seconds. */
async function waitForFrame(track, isRight, seconds = 10) {
  const until = performance.now() + seconds * 1000;
  return eachFrame(track, async (frame) => {
    const found = { ...describe(frame), hash: await hash(await bytesOf(frame)) };
    if (await isRight(found, frame)) return found;
    if (performance.now() > until) throw new Error(`no such frame; the last: ${JSON.stringify(found)}`);
    return undefined;
  });
}

/** The first frame of a track with these bytes; others may still be on their way before it. */
const waitForHash = (track, hash) => waitForFrame(track, (found) => found.hash === hash);

/** A track of frames that the test writes. */
function handMadeTrack() {
  const track = new MediaStreamTrackGenerator({ kind: 'video' });
  const writer = track.writable.getWriter();
  return { track, write: (frame) => writer.write(frame) };
}

/** Writes frames again and again until stopped. */
function feed(writeFrame, interval = 33) {
  let timestamp = 0;
  const timer = setInterval(() => {
    timestamp += interval * 1000;
    writeFrame(timestamp);
  }, interval);
  return () => clearInterval(timer);
}

/** Frames per second of a track over some seconds. */
async function rate(track, seconds) {
  let [count, start] = [0, 0];
  return eachFrame(track, () => {
    if (count++ === 0) start = performance.now();
    const elapsed = (performance.now() - start) / 1000;
    return elapsed < seconds ? undefined : (count - 1) / elapsed;
  });
}

/** Mean red, green and blue of a frame, for comparisons after lossy steps. */
async function means(frame) {
  const options = { format: 'RGBA' };
  const bytes = await bytesOf(frame, options);
  const sums = [0, 0, 0];
  for (let i = 0; i < bytes.length; i += 4) for (let c = 0; c < 3; ++c) sums[c] += bytes[i + c];
  return sums.map((sum) => (sum * 4) / bytes.length);
}

Object.assign(window, {
  ...main,
  image,
  livekit,
  errors,
  takeStats: () => stats.splice(0),
  camera,
  processor,
  bytesOf,
  hash,
  eachFrame,
  hashes,
  waitForFrame,
  waitForHash,
  handMadeTrack,
  feed,
  rate,
  means,
  sleep: (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds)),
  ready: true,
});
