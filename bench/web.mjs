// Times every effect in WebAssembly, on the pictures that bench_effects has, beside native times:
//
//     node --no-liftoff bench/web.mjs [--csv NATIVE.csv] [--filter TEXT] [--module FILE]
//
// NATIVE.csv is what `bench_effects --csv --size 1280x720 --level baseline` prints. Times are processor time of the
// process, which other programs do not lengthen; --no-liftoff compiles with V8's optimizing compiler from the start.
import { existsSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { parseArgs } from 'node:util';
import { root, start } from '../tests/web/module.mjs';

const { values: options } = parseArgs({
  options: {
    csv: { type: 'string' },
    filter: { type: 'string', default: '' },
    module: { type: 'string', default: join(root, 'build/web/wasm/specialeffects.wasm') },
    seconds: { type: 'string', default: '0.3' },
  },
});
const [width, height] = [1280, 720];
const warmUp = 40;
const fewest = 40;

function drawClip() {
  const { exports, bytes } = start(join(root, 'build/wasm/bench.wasm'));
  const size = (width * height * 3) / 2;
  return Array.from({ length: exports.bench_draw(width, height) }, (_, i) => {
    const address = exports.bench_picture(i) >>> 0;
    return new Uint8Array(exports.memory.buffer).slice(address, address + size);
  });
}

function milliseconds() {
  const { user, system } = process.cpuUsage();
  return (user + system) / 1000;
}

function median(numbers) {
  return numbers.toSorted((a, b) => a - b)[numbers.length >> 1];
}

function measure(module, id, clip) {
  const { exports } = module;
  const result = exports.malloc(4);
  const check = (status) => {
    if (status < 0) throw new Error(module.text(exports.sfx_message()));
  };
  module.withTexts([id, '/data'], (text, folder) => {
    check(exports.sfx_create(text, result));
    check(exports.sfx_set_data_folder(module.word(result), folder));
  });
  const effect = module.word(result);
  const pixels = exports.malloc(clip[0].length) >>> 0;
  const picture = exports.malloc(256);
  exports.sfx_picture_layout(picture, 0, width, height, pixels);
  check(exports.sfx_prepare(effect, width, height));
  const times = [];
  let total = 0;
  for (let i = 0; i < warmUp + fewest || total < Number(options.seconds) * 1000; ++i) {
    module.bytes.set(clip[i % clip.length], pixels);
    const before = milliseconds();
    check(exports.sfx_process(effect, picture, BigInt(i) * 33_333_333n));
    const time = milliseconds() - before;
    if (i < warmUp) continue;
    times.push(time);
    total += time;
  }
  exports.sfx_destroy(effect);
  for (const address of [pixels, picture, result]) exports.free(address);
  return median(times);
}

const native = options.csv
  ? readFileSync(options.csv, 'utf8').trim().split('\n').slice(1).map((line) => Number(line.split(',')[2]))
  : [];
const clip = drawClip();
const module = start(options.module);
const cascade = join(root, 'build/release/share/specialeffects/haar.txt');
if (existsSync(cascade)) module.wasi.writeFile('/data/haar.txt', readFileSync(cascade));

const layout = module.layout();
let logarithms = 0;
let count = 0;
for (let i = 0; i < module.exports.sfx_effect_count(); ++i) {
  const id = module.text(module.word(module.exports.sfx_effect_at(i) + layout.sfx_effect_info.id));
  if (!id.includes(options.filter)) continue;
  const time = measure(module, id, clip);
  const ratio = time / native[i];
  console.log(`${id.padEnd(24)} ${time.toFixed(2).padStart(8)} ms${native[i] ? `  native ${native[i].toFixed(2)}  x ${ratio.toFixed(2)}` : ''}`);
  logarithms += Math.log(native[i] ? ratio : time);
  ++count;
}
console.log(`geometric mean ${native.length ? 'of the ratios' : 'in ms'}: ${Math.exp(logarithms / count).toFixed(2)}`);
