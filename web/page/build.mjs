// Builds the page: node build.mjs WASM_FOLDER CASCADE_FOLDER PAGE_FOLDER. The first holds specialeffects.wasm and
// specialeffects-baseline.wasm, the second haar.txt. The last then holds all that a web server needs.

import { createHash } from 'node:crypto';
import { cp, mkdir, readFile, readdir, rm, writeFile } from 'node:fs/promises';
import { basename, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';

import { build } from 'esbuild';

const here = fileURLToPath(new URL('.', import.meta.url));
const [wasmFolder, cascadeFolder, pageFolder] = process.argv.slice(2);
if (!pageFolder) throw new Error('usage: node build.mjs WASM_FOLDER CASCADE_FOLDER PAGE_FOLDER');
const out = resolve(pageFolder);
const packageSource = join(here, '../package/src');

const options = {
  bundle: true,
  minify: true,
  format: 'esm',
  target: 'es2022',
  charset: 'utf8',
  outdir: out,
  logLevel: 'warning',
  alias: { specialeffects: packageSource },
};

await rm(out, { recursive: true, force: true });
await mkdir(out, { recursive: true });
await cp(join(here, 'static'), out, { recursive: true });
await cp(join(here, '../../demo/portrait.jpg'), join(out, 'portrait.jpg'));
for (const file of ['specialeffects.wasm', 'specialeffects-baseline.wasm'])
  await cp(join(wasmFolder, file), join(out, file));
await writeFile(join(out, 'cascade.bin'), gzipSync(await readFile(join(cascadeFolder, 'haar.txt')), { level: 9 }));
// Browsers load a page's icon anew when its address changes: it is a part of the page.
const page = join(out, 'index.html');
const icon = await readFile(join(out, 'icon.svg'), 'base64');
await writeFile(
  page,
  (await readFile(page, 'utf8')).replace(
    'rel="icon" href="icon.svg"',
    `rel="icon" href="data:image/svg+xml;base64,${icon}"`,
  ),
);
await build({
  ...options,
  entryPoints: [
    join(here, 'src/main.ts'),
    join(here, 'src/thumbnails-worker.ts'),
    join(packageSource, 'worker.ts'),
  ].map((file) => ({ in: file, out: basename(file, '.ts') })),
});
await build({ ...options, entryPoints: [join(here, 'static/style.css')], allowOverwrite: true });

// The service worker keeps all files but the module for old machines, which is kept when it is loaded.
const files = (await readdir(out)).filter((name) => name !== 'specialeffects-baseline.wasm').sort();
const hash = createHash('sha256');
for (const file of files) hash.update(file).update(await readFile(join(out, file)));
await build({
  ...options,
  format: 'iife',
  entryPoints: [join(here, 'src/service-worker.ts')],
  define: { FILES: JSON.stringify(['./', ...files]), VERSION: JSON.stringify(hash.digest('hex').slice(0, 12)) },
});
