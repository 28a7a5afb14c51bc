// Every effect's frames in WebAssembly, with and without vectors, against the checksums that the native build has.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { root, start } from './module.mjs';

const checksums = new Map();
for (const line of readFileSync(join(root, 'tests/golden/checksums.txt'), 'utf8').split('\n')) {
  const [row, size, checksum] = line.split(' ');
  if (checksum && row !== '#') checksums.set(`${row} ${size}`, checksum);
}

for (const build of ['wasm', 'wasm-baseline']) {
  test(`the frames of ${build} are those on record`, async (t) => {
    const module = start(join(root, 'build', build, 'golden.wasm'));
    const rows = module.exports.golden_rows();
    const sizes = module.exports.golden_sizes();
    assert.equal(rows * sizes, checksums.size);
    for (let row = 1; row <= rows; ++row) {
      await t.test(`row ${row}`, () => {
        for (let size = 0; size < sizes; ++size) {
          const key = module.text(module.exports.golden_key(row, size));
          const checksum = BigInt.asUintN(64, module.exports.golden_run(row, size));
          assert.equal(checksum.toString(16).padStart(16, '0'), checksums.get(key), key);
        }
      });
    }
  });
}
