// Builds dist: node scripts/build.mjs WASM_FOLDER CASCADE_FOLDER. The folders hold specialeffects.wasm and
// specialeffects-baseline.wasm, and haar.txt and haar.license.txt.
import { execFileSync } from 'node:child_process';
import { copyFileSync, mkdirSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

import { build } from 'esbuild';

const [wasmFolder, cascadeFolder] = process.argv.slice(2);
if (cascadeFolder === undefined) throw new Error('usage: node scripts/build.mjs WASM_FOLDER CASCADE_FOLDER');
const root = fileURLToPath(new URL('..', import.meta.url));
const dist = join(root, 'dist');

rmSync(dist, { recursive: true, force: true });
mkdirSync(dist);
for (const name of ['specialeffects.wasm', 'specialeffects-baseline.wasm']) {
  copyFileSync(join(wasmFolder, name), join(dist, name));
}
for (const name of ['haar.txt', 'haar.license.txt']) copyFileSync(join(cascadeFolder, name), join(dist, name));
copyFileSync(join(root, '../../effects/animated/GlyphTable.license.txt'), join(dist, 'GlyphTable.license.txt'));
copyFileSync(join(root, '../../LICENSE'), join(root, 'LICENSE'));

const source = (name) => join(root, 'src', `${name}.ts`);
const options = {
  absWorkingDir: root,
  bundle: true,
  format: 'esm',
  target: 'es2022',
  outdir: dist,
  logLevel: 'warning',
  legalComments: 'none',
};
await build({
  ...options,
  entryPoints: ['index', 'image', 'livekit', 'node'].map(source),
  splitting: true,
  chunkNames: 'shared-[hash]',
  external: ['node:*'],
});
// One file, so that it can be served alone.
await build({ ...options, entryPoints: [source('worker')] });

execFileSync(process.execPath, [join(root, 'node_modules/typescript/bin/tsc'), '-p', root], { stdio: 'inherit' });
