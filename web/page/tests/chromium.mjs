// What the tests share: the page's server, Chromium with a camera that shows a clip, and looks at pictures.

import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

import { chromium } from 'playwright-core';

import { serve } from '../serve.mjs';

const root = fileURLToPath(new URL('../../..', import.meta.url));
export const built = process.env.PAGE ?? join(root, 'build/web/page');
export const portrait = join(root, 'demo/portrait.jpg');
export const scratch = mkdtempSync(join(tmpdir(), 'page-tests-'));
process.on('exit', () => {
  rmSync(scratch, { recursive: true, force: true });
});

/** A portrait, as a camera that is held by hand sees it, in 1280x720. */
function makeClip() {
  const clip = join(scratch, 'camera.mjpeg');
  execFileSync('ffmpeg', [
    '-v',
    'error',
    '-loop',
    '1',
    '-i',
    portrait,
    '-vf',
    'scale=1408:-2,crop=1280:720:64+50*sin(n*2*PI/60):40+26*cos(n*2*PI/30)',
    '-frames:v',
    '60',
    '-pix_fmt',
    'yuvj420p',
    '-q:v',
    '4',
    clip,
  ]);
  return clip;
}

/** Chromium, with a camera that shows the clip, or so many that show a test pattern. */
function chromiumWith(cameras) {
  return chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: [
      '--no-sandbox',
      '--use-fake-ui-for-media-stream',
      ...(cameras
        ? [`--use-fake-device-for-media-stream=device-count=${cameras}`]
        : ['--use-fake-device-for-media-stream', `--use-file-for-fake-video-capture=${makeClip()}`]),
    ],
  });
}

export async function launch(cameras = 0) {
  const requests = [];
  const server = await serve(built, 0, (path, bytes) => {
    requests.push({ path, bytes });
  });
  const browser = await chromiumWith(cameras);
  const close = async () => {
    await browser.close();
    await server.close();
  };
  return { browser, server, requests, url: server.url, close };
}

/** Opens the page in a context of its own and waits for its first picture. `page.trouble` collects what goes wrong. */
export async function open({ browser, url }, { hash = '', init, wait = true, ...options } = {}) {
  const context = await browser.newContext({
    viewport: { width: 1400, height: 900 },
    serviceWorkers: 'block',
    ...options,
  });
  await context.grantPermissions(['camera', 'clipboard-read', 'clipboard-write'], { origin: new URL(url).origin });
  const page = await context.newPage();
  page.setDefaultTimeout(30_000);
  page.trouble = [];
  page.on('pageerror', (error) => page.trouble.push(error.stack));
  // Frames that the browser drops when a page falls far behind are not the page's fault.
  page.on('console', (message) => {
    if (message.type() === 'error' && !message.text().startsWith('A VideoFrame was garbage collected'))
      page.trouble.push(message.text());
  });
  if (init) await page.addInitScript(init);
  await page.goto(url + hash);
  if (wait) await firstPicture(page);
  return page;
}

/** Waits until the effects have given a picture. */
export async function firstPicture(page) {
  await page.waitForFunction(() => {
    const after = document.getElementById('after');
    return after.readyState >= 2 && after.videoWidth > 0 && after.getVideoPlaybackQuality().totalVideoFrames > 1;
  });
}

/** What is in a video or canvas: size, mean red, green and blue, and how far from grey the pixels are. */
export function look(page, selector) {
  return page.evaluate((selector) => {
    const element = document.querySelector(selector);
    const width = element.videoWidth ?? element.width,
      height = element.videoHeight ?? element.height;
    const context = new OffscreenCanvas(64, 36).getContext('2d');
    context.drawImage(element, 0, 0, 64, 36);
    const { data } = context.getImageData(0, 0, 64, 36);
    const mean = [0, 0, 0];
    let colour = 0;
    for (let i = 0; i < data.length; i += 4) {
      for (let c = 0; c < 3; ++c) mean[c] += (data[i + c] * 4) / data.length;
      colour +=
        ((Math.max(data[i], data[i + 1], data[i + 2]) - Math.min(data[i], data[i + 1], data[i + 2])) * 4) / data.length;
    }
    return { width, height, mean, colour };
  }, selector);
}

/** Waits until `look` at the picture with effects satisfies a condition, and returns it. */
export async function until(page, condition, selector = '#after') {
  let seen;
  for (let tries = 0; tries < 400; ++tries) {
    seen = await look(page, selector);
    if (condition(seen)) return seen;
    await page.waitForTimeout(50);
  }
  throw new Error(`the picture did not come to what is expected: ${JSON.stringify(seen)} ${condition}`);
}
