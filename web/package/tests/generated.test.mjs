// The generated types and lists are those of the library.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';

import { program, root, temporaryFolder } from './support.mjs';

test('src/generated is up to date', () => {
  const folder = temporaryFolder();
  execFileSync(process.execPath, [join(root, 'scripts/generate.mjs'), program, folder]);
  for (const name of ['effects.ts', 'list.ts']) {
    assert.equal(
      readFileSync(join(root, 'src/generated', name), 'utf8'),
      readFileSync(join(folder, name), 'utf8'),
      `run: node scripts/generate.mjs ${program}`,
    );
  }
});

test('the list has what the program lists', async () => {
  const { listEffects, listPresets } = await import('../dist/index.js');
  const effects = JSON.parse(execFileSync(program, ['list', '--json'], { encoding: 'utf8' }));
  assert.deepEqual(
    listEffects().map((effect) => effect.id),
    effects.map((effect) => effect.id),
  );
  assert.ok(listPresets().some((preset) => preset.id === 'noir'));
});
