// libsfx as a WebAssembly module: its interface, its list, errors, memory, traps and size.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { brotliCompressSync } from 'node:zlib';
import { root, start } from './module.mjs';

const pathOf = (build) => join(root, 'build/web/wasm', `${build}.wasm`);
const vectors = pathOf('specialeffects');
const baseline = pathOf('specialeffects-baseline');

const OK = 0;
const CLAMPED = 1;
const ERROR_UNKNOWN = -2;
const ERROR_VALUE = -3;
const ERROR_PICTURE = -4;
const ERROR_FILE = -5;
const ERROR_MEMORY = -6;
const FORMATS = 14;
const I420 = 0;

/** An effect and a picture in a module, as a caller has them. */
class Caller {
  constructor(module) {
    this.module = module;
    this.layout = module.layout();
    this.slot = module.exports.malloc(8) >>> 0;
  }

  /** The status, and the effect in `effect`. */
  create(text) {
    const status = this.module.withTexts([text], (address) => this.module.exports.sfx_create(address, this.slot));
    this.effect = this.module.word(this.slot);
    return status;
  }

  message() {
    return this.module.text(this.module.exports.sfx_message());
  }

  /** Lays out a picture of tight planes, and fills it with a pattern. */
  picture(format, width, height) {
    const { exports } = this.module;
    this.record = exports.malloc(this.layout.sfx_picture.sizeof) >>> 0;
    this.size = exports.sfx_picture_layout(this.record, format, width, height, 0);
    this.pixels = exports.malloc(this.size) >>> 0;
    exports.sfx_picture_layout(this.record, format, width, height, this.pixels);
    this.refill();
  }

  refill() {
    const bytes = this.bytes();
    for (let i = 0; i < bytes.length; ++i) bytes[i] = (i * 37 + (i >> 7) * 11) & 0xff;
  }

  bytes() {
    return this.module.bytes.subarray(this.pixels, this.pixels + this.size);
  }

  process(frame = 0) {
    return this.module.exports.sfx_process(this.effect, this.record, BigInt(frame) * 33_333_333n);
  }
}

const begin = (path) => new Caller(start(path));

/** The bytes of a picture after some frames of an effect. */
function framesOf(caller, text, format, [width, height], count = 2) {
  assert.equal(caller.create(text), OK, text);
  caller.picture(format, width, height);
  for (let frame = 0; frame < count; ++frame) {
    if (frame > 0) caller.refill();
    assert.equal(caller.process(frame), OK, text);
  }
  return caller.bytes().slice();
}

for (const path of [vectors, baseline]) {
  const name = path.split('/').at(-1);

  test(`${name} exports what the header declares, and needs nothing but WASI`, () => {
    const module = new WebAssembly.Module(readFileSync(path));
    const header = readFileSync(join(root, 'sfx/sfx.h'), 'utf8');
    const declared = [...header.matchAll(/SFX_API [^;]*?\b(sfx_[a-z_]+)\(/g)].map((match) => match[1]);
    assert.ok(declared.length > 30);
    const exported = WebAssembly.Module.exports(module).map((entry) => entry.name);
    assert.deepEqual(
      exported.toSorted(),
      [...declared, 'memory', '_initialize', 'malloc', 'free', 'sfx_web_layout'].toSorted(),
    );
    for (const entry of WebAssembly.Module.imports(module)) assert.equal(entry.module, 'wasi_snapshot_preview1');
  });

  test(`${name} is small`, () => {
    const bytes = readFileSync(path);
    assert.ok(bytes.length <= 600 * 1024, `${bytes.length} bytes`);
    const compressed = brotliCompressSync(bytes).length;
    assert.ok(compressed <= 180 * 1024, `${compressed} bytes compressed`);
  });
}

test('the list can be read by the layout', () => {
  const { module, layout } = begin(vectors);
  const { exports } = module;
  const ids = new Set();
  for (let i = 0; i < exports.sfx_effect_count(); ++i) {
    const info = exports.sfx_effect_at(i);
    assert.equal(module.word(info), layout.sfx_effect_info.sizeof);
    const id = module.text(module.word(info + layout.sfx_effect_info.id));
    assert.match(id, /^[a-z0-9-]+$/);
    ids.add(id);
    const properties = module.word(info + layout.sfx_effect_info.properties);
    for (let p = 0; p < module.word(info + layout.sfx_effect_info.property_count); ++p) {
      const property = module.word(properties + 4 * p);
      assert.equal(module.word(property), layout.sfx_property_info.sizeof);
      assert.match(module.text(module.word(property + layout.sfx_property_info.id)), /^[a-z0-9-]+$/);
    }
  }
  assert.equal(ids.size, 63);
  const noir = exports.sfx_preset_at(0);
  assert.equal(module.word(noir), layout.sfx_preset_info.sizeof);
});

test('errors are statuses with messages', () => {
  const caller = begin(vectors);
  assert.equal(caller.create('sepia+rain:drop-size=9'), OK);
  assert.equal(caller.create('speia'), ERROR_UNKNOWN);
  assert.match(caller.message(), /sepia/);
  assert.equal(caller.create('rain:drop-size=x'), ERROR_VALUE);
  assert.equal(caller.create('rain:drop-size=1000'), CLAMPED);
  caller.picture(I420, 64, 48);
  caller.module.bytes[caller.record + caller.layout.sfx_picture.format] = 99;
  assert.equal(caller.process(), ERROR_PICTURE);
  const load = caller.module.exports.sfx_load_presets;
  assert.equal(caller.module.withTexts(['/missing.ini'], load), ERROR_FILE);
  caller.module.wasi.writeFile('/wrong.ini', new TextEncoder().encode('[ok]\neffect = sepia\n[bad]\neffect = nix\n'));
  assert.equal(caller.module.withTexts(['/wrong.ini'], load), ERROR_VALUE);
  assert.match(caller.message(), /line 4/);
  // Each error frees what it took.
  const size = caller.module.bytes.length;
  for (let i = 0; i < 20_000; ++i) caller.create('sepia+rain:drop-size=x');
  assert.equal(caller.module.bytes.length, size);
});

test('both modules give the same frames in every format', () => {
  for (let format = 0; format < FORMATS; ++format) {
    const [a, b] = [vectors, baseline].map((path) => framesOf(begin(path), 'sepia+chrome-1', format, [131, 77]));
    assert.deepEqual(a, b, `format ${format}`);
  }
});

test('a picture beyond 2 GB is like any other', () => {
  const expected = framesOf(begin(vectors), 'sepia+fish-eye+line-art-1', I420, [320, 240]);
  const caller = begin(vectors);
  for (let i = 0; i < 3; ++i) caller.module.exports.malloc(0x3000_0000);
  assert.deepEqual(framesOf(caller, 'sepia+fish-eye+line-art-1', I420, [320, 240]), expected);
  assert.ok(caller.pixels > 2 ** 31);
});

test('without memory a frame is refused, and the effect goes on when there is some', () => {
  const caller = begin(vectors);
  assert.equal(caller.create('fish-eye'), OK);
  caller.picture(I420, 1280, 720);
  const { malloc, free } = caller.module.exports;
  const blocks = [];
  for (let size = 0x4000_0000; size >= 0x1000; size /= 2) {
    for (let block = malloc(size); block !== 0; block = malloc(size)) blocks.push(block);
  }
  assert.equal(caller.process(0), ERROR_MEMORY);
  assert.equal(caller.message(), 'out of memory');
  assert.equal(
    caller.module.withTexts([], () => caller.process(1)),
    ERROR_MEMORY,
  );
  blocks.forEach((block) => free(block));
  assert.equal(caller.process(2), OK);
});

test('a trap is an exception of WebAssembly, and a new instance goes on', () => {
  const expected = framesOf(begin(vectors), 'sepia', I420, [64, 48]);
  const broken = begin(vectors);
  assert.equal(broken.create('sepia'), OK);
  broken.picture(I420, 64, 48);
  const planes = broken.record + broken.layout.sfx_picture.planes;
  new DataView(broken.module.exports.memory.buffer).setUint32(planes, 0xffff_0000, true);
  assert.throws(() => broken.process(), WebAssembly.RuntimeError);
  assert.deepEqual(framesOf(begin(vectors), 'sepia', I420, [64, 48]), expected);
});
