// The published types: against LiveKit's, and with what they must refuse.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { join } from 'node:path';
import test from 'node:test';

import { root } from './support.mjs';

test('the types fit', () => {
  const { stdout, status } = spawnSync(
    process.execPath,
    [join(root, 'node_modules/typescript/bin/tsc'), '-p', join(root, 'tests/types')],
    { encoding: 'utf8' },
  );
  assert.equal(stdout, '');
  assert.equal(status, 0);
});
