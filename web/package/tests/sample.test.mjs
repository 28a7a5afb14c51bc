// The sample app with the packed package, as `vite build` and `vite dev` serve it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { cpSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import test, { after, before } from 'node:test';

import { build, createServer, preview } from 'vite';

import { launch, openPage, root, temporaryFolder } from './support.mjs';

const folder = temporaryFolder();
const sample = join(folder, 'sample');
let browser;

before(async () => {
  execFileSync('npm', ['pack', '--silent', '--pack-destination', folder], { cwd: root });
  const [tarball] = readdirSync(folder).filter((name) => name.endsWith('.tgz'));
  cpSync(join(root, '../sample'), sample, { recursive: true });
  const options = ['--offline', '--omit=dev', '--no-save', '--no-package-lock', '--no-audit', '--silent'];
  execFileSync('npm', ['install', ...options, join(folder, tarball)], { cwd: sample });
  browser = await launch(null);
});
after(() => browser?.close());

async function assertRuns(url) {
  const { page, complaints, close } = await openPage(browser, url, () => document.querySelector('option') !== null);
  try {
    await page.click('#start');
    await page.waitForFunction(() => document.querySelector('#stats').value.startsWith('2'), null, { timeout: 60_000 });
    await page.selectOption('#effect', 'rain');
    await page.selectOption('#effect', 'picture-me');
    await page.waitForFunction(() => document.querySelector('video').videoWidth === 1280);
    assert.deepEqual(complaints, []);
  } finally {
    await close();
  }
}

test('vite build', { timeout: 120_000 }, async () => {
  await build({ root: sample, logLevel: 'warn', configFile: false });
  const files = readdirSync(join(sample, 'dist/assets'));
  for (const kind of [
    /^specialeffects-.*\.wasm$/,
    /^specialeffects-baseline-.*\.wasm$/,
    /^haar-.*\.txt$/,
    /^worker-.*\.js$/,
  ]) {
    assert.ok(
      files.some((file) => kind.test(file)),
      `${kind} is not among ${files.join(' ')}`,
    );
  }
  const server = await preview({ root: sample, logLevel: 'warn', configFile: false, preview: { port: 0 } });
  try {
    await assertRuns(server.resolvedUrls.local[0]);
  } finally {
    await server.close();
  }
});

test('vite dev', { timeout: 120_000 }, async () => {
  const server = await createServer({ root: sample, logLevel: 'warn', configFile: false, server: { port: 0 } });
  try {
    await server.listen();
    await assertRuns(server.resolvedUrls.local[0]);
  } finally {
    await server.close();
  }
});
