// The package in Node: the same bytes as the program's, and what happens when something fails.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';

import { createEffect } from '../dist/node.js';
import { listEffects, listPresets } from '../dist/index.js';
import { applyProgram, internals, root, scene, temporaryFolder, writeY4m } from './support.mjs';

const FRAMES = 12;
const folder = temporaryFolder();
const load = await internals();
const module = await WebAssembly.compile(readFileSync(join(root, 'dist/specialeffects.wasm')));

function clipOf(width, height) {
  const pictures = Array.from({ length: FRAMES }, (_, frame) => scene(width, height, frame));
  const path = join(folder, `${width}x${height}.y4m`);
  writeY4m(path, width, height, pictures);
  return { width, height, pictures, path };
}

/** Applies effects to copies of the pictures of a clip. */
async function apply(effects, { pictures, width, height }, options) {
  const effect = await createEffect(effects, options);
  const results = pictures.map((picture) => {
    const result = Buffer.from(picture);
    effect.process(result, { format: 'i420', width, height });
    return result;
  });
  effect.destroy();
  return results;
}

function assertSame(actual, expected, what) {
  assert.equal(actual.length, expected.length, what);
  for (const [i, picture] of actual.entries()) assert.ok(picture.equals(expected[i]), `${what}: frame ${i} differs`);
}

const clip = clipOf(320, 240);

// With and without memory, chance, time and data files; one that takes settings; a row.
for (const effects of [
  'sepia',
  'sketch-2',
  'rain:drop-size=9',
  'time-distortion',
  'clouds',
  'picture-me',
  'fish-eye:effect-type=cosine+antiquated-movie',
  'preset:noir',
]) {
  test(`${effects} gives the bytes of the program`, async () => {
    const actual = await apply(effects, clip);
    assertSame(actual, applyProgram(effects, clip.path, clip.width, clip.height), effects);
    // Picture Me finds no face; Time Distortion shows the past after some seconds.
    const shows = !['picture-me', 'time-distortion'].includes(effects);
    assert.ok(!shows || !actual.at(-1).equals(clip.pictures.at(-1)), 'nothing was changed');
  });
}

test('at odd sizes effects see the last column and row twice', async () => {
  const [odd, even] = [Buffer.alloc(161 * 121 + 2 * 81 * 61, 90), Buffer.alloc(162 * 122 + 2 * 81 * 61, 90)];
  for (let y = 0; y < 122; ++y) {
    for (let x = 0; x < 162; ++x) {
      const value = 30 + ((Math.min(x, 160) * 3 + Math.min(y, 120) * 5) % 180);
      even[y * 162 + x] = value;
      if (x < 161 && y < 121) odd[y * 161 + x] = value;
    }
  }
  const effect = await createEffect('sketch-2');
  effect.process(odd, { format: 'i420', width: 161, height: 121 });
  effect.process(even, { format: 'i420', width: 162, height: 122 });
  for (let y = 0; y < 121; ++y) {
    assert.ok(odd.subarray(y * 161, y * 161 + 161).equals(even.subarray(y * 162, y * 162 + 161)), `row ${y}`);
  }
});

test('seeds matter, and repeat', async () => {
  const [first, again, other] = await Promise.all([7, 7, 8].map((seed) => apply('rain', clip, { seed })));
  assertSame(again, first, 'seed 7');
  assert.ok(!other.at(-1).equals(first.at(-1)));
});

test('the noise of Clouds can be handed on', async () => {
  const first = await createEffect('clouds');
  first.prepare(64, 48); // made before, or made here
  const noise = first.dataFile('perlin.dat');
  assert.ok(noise.length > 1_000_000);
  assertSame(
    await apply('clouds', clip, { dataFiles: { 'perlin.dat': noise } }),
    await apply('clouds', clip),
    'clouds',
  );
});

test('every format is taken; NV12 gives the pixels of I420', async () => {
  const { width, height } = clip;
  const i420 = Buffer.from(clip.pictures[0]);
  const luma = width * height;
  const nv12 = Buffer.from(i420);
  for (let i = 0; i < luma / 4; ++i) {
    nv12[luma + 2 * i] = i420[luma + i];
    nv12[luma + 2 * i + 1] = i420[luma + luma / 4 + i];
  }
  const effect = await createEffect('sepia');
  effect.process(i420, { format: 'i420', width, height });
  effect.process(nv12, { format: 'nv12', width, height });
  assert.ok(i420.subarray(0, luma).equals(nv12.subarray(0, luma)));
  for (let i = 0; i < luma / 4; ++i) {
    assert.equal(nv12[luma + 2 * i], i420[luma + i]);
    assert.equal(nv12[luma + 2 * i + 1], i420[luma + luma / 4 + i]);
  }

  const { FORMATS } = await load('library');
  const bytesPerPixel = { i422: 2, i444: 3, yuy2: 2, uyvy: 2, rgb24: 3, bgr24: 3, rgba: 4, bgra: 4, argb: 4, abgr: 4 };
  for (const format of FORMATS) {
    const bytes = Buffer.alloc(64 * 48 * (bytesPerPixel[format] ?? 1.5), 200);
    effect.process(bytes, { format, width: 64, height: 48 });
    assert.ok(
      bytes.some((byte) => byte !== 200),
      format,
    );
  }
});

test('every effect and preset of the list exists', async () => {
  for (const { id } of listEffects()) assert.equal((await createEffect(id)).text, id);
  for (const { id, effects } of listPresets()) {
    assert.equal((await createEffect(`preset:${id}`)).text, (await createEffect(effects)).text);
  }
});

test('properties are set and read', async () => {
  const effect = await createEffect([{ id: 'rain', properties: { 'drop-size': 9 } }, 'fish-eye', 'line-art-1']);
  effect.setProperty('drop-size', 5);
  effect.setProperty('drop-period', 1000); // clamped
  effect.setProperty('effect-type', 'cosine');
  effect.setProperty('large-sphere', true);
  effect.setProperty('2.background-color', '#ff0000');
  assert.equal(effect.getProperty('drop-size'), '5');
  assert.equal(effect.getProperty('drop-period'), '20');
  assert.equal(effect.getProperty('effect-type'), 'cosine');
  assert.equal(effect.getProperty('large-sphere'), 'true');
  assert.equal(effect.getProperty('background-color'), '#ff0000');
  assert.match(effect.text, /^rain:.*\+fish-eye:.*\+line-art-1:background-color=#ff0000$/);
});

test('errors have a code and a sentence', async () => {
  await assert.rejects(createEffect('sepio'), (error) => error.code === 'unknown' && /sepia/.test(error.message));
  await assert.rejects(createEffect('rain:drop-size=x'), { code: 'value' });
  const effect = await createEffect('rain');
  assert.throws(() => effect.setProperty('drop', 1), { code: 'unknown' });
  assert.throws(() => effect.setProperty('drop-size', 'x'), { code: 'value' });
  assert.throws(() => effect.setProperty('drop-size', Number.NaN), { code: 'value' });
  const picture = Buffer.alloc(64 * 48 * 1.5);
  assert.throws(() => effect.process(picture, { format: 'rgba', width: 64, height: 48 }), { code: 'picture' });
  assert.throws(() => effect.process(Buffer.alloc(0), { format: 'i420', width: 0, height: 0 }), { code: 'picture' });
  effect.process(picture, { format: 'i420', width: 64, height: 48 });
});

test('the layout of structures is that of the module', async () => {
  const { LAYOUT } = await load('library');
  const { Wasi } = await load('wasi');
  const wasi = new Wasi();
  const { exports } = await WebAssembly.instantiate(module, wasi.importsOf(module));
  wasi.connect(exports.memory);
  exports._initialize();
  const memory = Buffer.from(exports.memory.buffer);
  const text = (address) => memory.toString('utf8', address, memory.indexOf(0, address));
  const offsets = {};
  for (let row = exports.sfx_web_layout(); memory.readUInt32LE(row) !== 0; row += 12) {
    const [structure, member] = [memory.readUInt32LE(row), memory.readUInt32LE(row + 4)].map(text);
    offsets[`${structure}.${member}`] = memory.readUInt32LE(row + 8);
  }
  for (const [name, offset] of Object.entries(LAYOUT)) assert.equal(offsets[name], offset, name);
});

// ---- the engine of processors -----------------------------------------------------------------------------------

const { Engine } = await load('engine');
const { Runtime } = await load('runtime');
const WIDTH = 64;
const HEIGHT = 48;
const pixels = (value) => ({
  width: WIDTH,
  height: HEIGHT,
  data: Uint8ClampedArray.from({ length: WIDTH * HEIGHT * 4 }, (_, i) => (i % 4 === 3 ? 255 : (i * value) & 255)),
});

async function createEngine({ dataFiles = async () => null } = {}) {
  const errors = [];
  const engine = new Engine({
    runtime: new Runtime(module, dataFiles),
    seed: 1,
    onError: (error) => errors.push(error),
  });
  return { engine, errors };
}

/** A function that traps: (module (func (export "f") unreachable)). */
const trap = new WebAssembly.Instance(
  new WebAssembly.Module(
    Uint8Array.from([
      0, 97, 115, 109, 1, 0, 0, 0, 1, 4, 1, 96, 0, 0, 3, 2, 1, 0, 7, 5, 1, 1, 102, 0, 0, 10, 5, 1, 3, 0, 0, 11,
    ]),
  ),
).exports.f;

/** Makes new instances trap in sfx_process whenever `isDue` returns true. */
async function withTraps(isDue, use) {
  const { instantiate } = WebAssembly;
  WebAssembly.instantiate = async (...parameters) => {
    const { exports } = await instantiate(...parameters);
    const process = (...values) => (isDue() ? trap() : exports.sfx_process(...values));
    return { exports: { ...exports, sfx_process: process } };
  };
  try {
    await use();
  } finally {
    WebAssembly.instantiate = instantiate;
  }
}

test('a trap leaves the picture as it was, and a new instance goes on with the same settings', async () => {
  let frames = 0;
  await withTraps(
    () => ++frames === 3,
    async () => {
      const { engine, errors } = await createEngine();
      await engine.setEffects('sepia+line-art-1');
      await engine.setProperty('background-color', '#00ff00');
      const good = pixels(3);
      engine.applyToPixels(good, null);
      engine.applyToPixels(pixels(3), null);
      const untouched = pixels(3);
      assert.equal(engine.tryPixels(untouched, 0n), false);
      assert.deepEqual(untouched.data, pixels(3).data);
      assert.equal(errors[0].code, 'trap');
      assert.equal(engine.isActive, false);
      while (!engine.isActive) await new Promise((resolve) => setTimeout(resolve, 5));
      assert.equal(engine.restarts, 1);
      const again = pixels(3);
      engine.applyToPixels(again, null);
      assert.deepEqual(again.data, good.data);
      assert.equal(errors.length, 1);
    },
  );
});

test('effects that trap again and again are taken off until others are set', async () => {
  let isBroken = true;
  await withTraps(
    () => isBroken,
    async () => {
      const { engine, errors } = await createEngine();
      await engine.setEffects('sepia');
      const isOff = () => /again and again/.test(errors.at(-1)?.message);
      // The last frames come after the engine has given up.
      for (let frame = 0, left = 10; left > 0 && frame < 2000; ++frame, left -= isOff() ? 1 : 0) {
        engine.tryPixels(pixels(5), BigInt(frame));
        await new Promise((resolve) => setTimeout(resolve, 5));
      }
      assert.ok(isOff(), JSON.stringify(errors));
      assert.equal(engine.restarts, 4);
      assert.equal(engine.isActive, false);
      isBroken = false;
      await engine.setEffects('gray-scale');
      const changed = pixels(5);
      assert.equal(engine.tryPixels(changed, 9999n), true);
      assert.notDeepEqual(changed.data, pixels(5).data);
    },
  );
});

test('effects that are not valid leave the running ones', async () => {
  const { engine } = await createEngine();
  await engine.setEffects('sepia');
  const expected = pixels(7);
  engine.applyToPixels(expected, null);
  await assert.rejects(engine.setEffects('sepia+nonsense'), { code: 'unknown' });
  const actual = pixels(7);
  engine.applyToPixels(actual, null);
  assert.deepEqual(actual.data, expected.data);
});

test('of several requests the last wins, however long data files take', async () => {
  let deliver;
  const { engine } = await createEngine({
    dataFiles: () =>
      new Promise((resolve) => {
        deliver = () => resolve(null);
      }),
  });
  const slow = engine.setEffects('picture-me');
  while (!deliver) await new Promise((resolve) => setTimeout(resolve, 1));
  await engine.setEffects('gray-scale');
  deliver();
  await slow;
  const changed = pixels(9);
  engine.applyToPixels(changed, null);
  for (let i = 0; i < changed.data.length; i += 4) assert.ok(Math.abs(changed.data[i] - changed.data[i + 1]) < 3);
});

test('a data file that cannot be loaded is reported, and the effect runs without', async () => {
  const { engine, errors } = await createEngine({
    dataFiles: async () => {
      throw new Error('no network');
    },
  });
  await engine.setEffects('picture-me');
  assert.equal(errors.length, 1);
  assert.equal(engine.tryPixels(pixels(2), 0n), true);
});

test('an engine that ends while a frame is copied finishes the frame', async () => {
  const { engine } = await createEngine();
  await engine.setEffects('gray-scale');
  globalThis.VideoFrame = class {
    constructor(bytes, init) {
      Object.assign(this, init, { bytes: bytes.slice() });
    }
  };
  let copied;
  const frame = {
    format: 'RGBX',
    timestamp: 0,
    duration: null,
    colorSpace: { toJSON: () => ({}) },
    visibleRect: { x: 0, y: 0, width: WIDTH, height: HEIGHT },
    displayWidth: WIDTH,
    displayHeight: HEIGHT,
    copyTo: (bytes) =>
      new Promise((resolve) => {
        copied = () => {
          bytes.set(pixels(3).data);
          resolve();
        };
      }),
  };
  const result = engine.applyToFrame(frame);
  while (!copied) await new Promise((resolve) => setTimeout(resolve, 1));
  engine.destroy();
  const later = engine.setEffects('sepia'); // would use the freed memory
  await new Promise((resolve) => setTimeout(resolve, 5));
  copied();
  const { bytes } = await result;
  await later;
  delete globalThis.VideoFrame;
  const { engine: other } = await createEngine();
  await other.setEffects('gray-scale');
  const expected = pixels(3);
  other.applyToPixels(expected, 0n);
  assert.ok(Buffer.from(bytes).equals(Buffer.from(expected.data)));
});

test('changing effects and sizes does not make the memory grow', async () => {
  const noise = (await createEffect('clouds')).dataFile('perlin.dat');
  const { engine } = await createEngine({ dataFiles: async (name) => (name === 'perlin.dat' ? noise : null) });
  const round = async () => {
    for (const effects of ['sketch-2', 'rain', 'time-distortion+sepia', 'clouds', 'picture-me']) {
      await engine.setEffects(effects, { width: 320, height: 240 });
      for (const [width, height] of [
        [320, 240],
        [160, 120],
      ]) {
        engine.applyToPixels({ width, height, data: new Uint8ClampedArray(width * height * 4) }, null);
      }
    }
  };
  for (let i = 0; i < 3; ++i) await round();
  const before = engine.memory;
  for (let i = 0; i < 10; ++i) await round();
  assert.equal(engine.memory, before);
});
