// The parts that need no browser.
import assert from 'node:assert/strict';
import test from 'node:test';

import { internals } from './support.mjs';

const load = await internals();
const { toEffectText } = await load('effectText');
const { FrameRate } = await load('frameRate');
const { Pump } = await load('pump');
const { hasSimd } = await load('assets');

test('effects become text', () => {
  assert.equal(toEffectText('sepia+rain:drop-size=9'), 'sepia+rain:drop-size=9');
  assert.equal(toEffectText([]), '');
  assert.equal(
    toEffectText([
      { id: 'rain', properties: { 'drop-size': 9, 'drop-period': 2 } },
      'sepia',
      'preset:noir',
      { id: 'line-art-1', properties: { 'background-color': '#ff0000' } },
      { id: 'fish-eye', properties: { 'large-sphere': true, 'effect-type': undefined } },
    ]),
    'rain:drop-size=9,drop-period=2+sepia+preset:noir+line-art-1:background-color=#ff0000+fish-eye:large-sphere=true',
  );
});

test('values that would be read as more than one are refused', () => {
  for (const value of ['1+sepia', 'a=b', Number.NaN, null]) {
    assert.throws(() => toEffectText([{ id: 'rain', properties: { 'drop-size': value } }]), { code: 'value' });
  }
});

test('a frame rate keeps to its bound, evenly', () => {
  const kept = (maximum, times) => {
    const rate = new FrameRate(maximum);
    return times.filter((time) => rate.accepts(time));
  };
  const times = Array.from({ length: 300 }, (_, i) => (i * 1000) / 30);
  assert.equal(kept(undefined, times).length, 300);
  assert.equal(kept(30, times).length, 300);
  assert.equal(kept(15, times).length, 150);
  assert.equal(kept(60, times).length, 300);
  const twenty = kept(20, times);
  assert.ok(twenty.length >= 198 && twenty.length <= 201, String(twenty.length));
  // Jitter does not cost frames, a pause is not made up for, and a clock that starts again is followed.
  assert.equal(
    kept(
      30,
      times.map((time, i) => time + (i % 2) * 3),
    ).length,
    300,
  );
  assert.deepEqual(kept(10, [0, 1000, 1010, 1020, 1100]), [0, 1000, 1100]);
  assert.deepEqual(kept(10, [5000, 0, 50, 100]), [5000, 0, 100]);
});

/** A frame that counts how often it is closed. */
const fakeFrame = (number) => ({
  timestamp: number * 33_333,
  displayWidth: 4,
  displayHeight: 2,
  closed: 0,
  close() {
    ++this.closed;
  },
});

function fakePump(options = {}) {
  const shown = [];
  const pump = new Pump({
    engine: { isActive: true, restarts: 0, memory: 0 },
    maxFps: undefined,
    isEnabled: true,
    onStats: () => undefined,
    apply: async () => fakeFrame(1000),
    show: async (frame) => {
      shown.push(frame);
      frame.close();
    },
    ...options,
  });
  return { pump, shown };
}

const until = async (condition) => {
  for (let i = 0; i < 10_000 && !condition(); ++i) await new Promise((resolve) => setTimeout(resolve, 1));
  assert.ok(condition());
};

test('behind schedule the newest frame is taken, and every frame is closed once', async () => {
  let finish = null;
  const applied = [];
  const { pump, shown } = fakePump({
    apply: (frame) => {
      applied.push(frame.timestamp / 33_333);
      return new Promise((resolve) => {
        finish = () => resolve(fakeFrame(1000));
      });
    },
  });
  const frames = [0, 1, 2, 3, 4].map(fakeFrame);
  pump.push(frames[0]);
  await until(() => finish !== null);
  for (const frame of frames.slice(1)) pump.push(frame);
  finish();
  finish = null;
  await until(() => finish !== null);
  assert.deepEqual(applied, [0, 4]);
  finish();
  await until(() => shown.length === 2);
  assert.deepEqual(
    frames.map((frame) => frame.closed),
    [1, 1, 1, 1, 1],
  );
  assert.deepEqual(
    shown.map((frame) => frame.closed),
    [1, 1],
  );
});

test('disabled, the frames themselves are shown', async () => {
  let calls = 0;
  const { pump, shown } = fakePump({
    isEnabled: false,
    apply: async () => {
      ++calls;
      return null;
    },
  });
  const frame = fakeFrame(0);
  pump.push(frame);
  await until(() => shown.length === 1);
  assert.equal(shown[0], frame);
  assert.equal(calls, 0);
  assert.equal(frame.closed, 1);
});

test('after stop frames are only closed', async () => {
  const { pump, shown } = fakePump();
  pump.stop();
  const frame = fakeFrame(0);
  pump.push(frame);
  assert.equal(frame.closed, 1);
  assert.equal(shown.length, 0);
});

test('this machine has WebAssembly SIMD', () => {
  assert.equal(hasSimd(), true);
});
