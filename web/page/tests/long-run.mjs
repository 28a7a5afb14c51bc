// The page with another effect every second, and Chromium's memory: node tests/long-run.mjs [SECONDS]

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { argv } from 'node:process';

import { launch, open, portrait, scratch } from './chromium.mjs';

const kJsLimit = 4,
  kProcessLimit = 40; // MB that each may grow by after the second round

const seconds = Number(argv[2] ?? 300);
const world = await launch();
// Small, and without moving thumbnails: what is watched is the memory.
const page = await open(world, { reducedMotion: 'reduce' });
const small = join(scratch, 'small.jpg');
execFileSync('ffmpeg', ['-v', 'error', '-i', portrait, '-vf', 'scale=176:132', small]);
await page.setInputFiles('#file', small);
await page.waitForFunction(() => document.getElementById('after').videoWidth === 176);

const protocol = await page.context().newCDPSession(page);
const system = await world.browser.newBrowserCDPSession();

/** In MB: JavaScript's heap after a collection, and the resident memory of the page's process. */
async function memory() {
  await protocol.send('HeapProfiler.collectGarbage');
  const { usedSize } = await protocol.send('Runtime.getHeapUsage');
  const { processInfo } = await system.send('SystemInfo.getProcessInfo');
  const pages = processInfo.filter(({ type }) => type === 'renderer');
  const sizes = await Promise.all(
    pages.map(async ({ id }) => {
      const [, kilobytes] = /VmRSS:\s+(\d+) kB/.exec(await readFile(`/proc/${id}/status`, 'utf8')) ?? [];
      return Number(kilobytes) / 1024;
    }),
  );
  return { js: usedSize / 1048576, process: Math.max(...sizes) };
}

const frames = () => page.evaluate(() => document.getElementById('after').getVideoPlaybackQuality().totalVideoFrames);

const effects = await page.evaluate(() => [
  ...new Set(
    [...document.querySelectorAll('#shelves .shelf:not([data-kind=looks]) [data-text]')].map(
      (card) => card.dataset.text,
    ),
  ),
]);
const start = performance.now();
let settled;
let now = await memory();
for (let second = 0; second < seconds; ++second) {
  await page.evaluate(
    (text) => {
      location.hash = `#fx=${text}`;
    },
    effects[second % effects.length],
  );
  await page.waitForTimeout(Math.max(0, start + (second + 1) * 1000 - performance.now()));
  if ((second + 1) % effects.length !== 0) continue;
  now = await memory();
  if (second + 1 === 2 * effects.length) settled = now;
  console.log(
    `after ${second + 1} s: JavaScript ${now.js.toFixed(1)} MB, process ${now.process.toFixed(0)} MB, ${await frames()} frames`,
  );
}
assert.deepEqual(page.trouble, []);
assert.ok((await frames()) > seconds);
if (settled) {
  assert.ok(now.js < settled.js + kJsLimit, `JavaScript's heap grows from ${settled.js} to ${now.js} MB`);
  assert.ok(
    now.process < settled.process + kProcessLimit,
    `the page's process grows from ${settled.process} to ${now.process} MB`,
  );
}
console.log(`${effects.length} effects in turn, ${seconds} seconds`);
await world.close();
