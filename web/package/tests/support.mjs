// What the tests share: the program to compare with, clips, a web server and Chromium.
import { execFileSync } from 'node:child_process';
import { createReadStream, existsSync, mkdtempSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { extname, join, normalize } from 'node:path';
import { fileURLToPath } from 'node:url';

import { build } from 'esbuild';
import { chromium } from 'playwright-core';

export const root = fileURLToPath(new URL('..', import.meta.url));
export const program = process.env.SPECIALEFFECTS ?? join(root, '../../build/release/host/specialeffects');

/** A folder that is removed when the tests end. */
export function temporaryFolder() {
  const folder = mkdtempSync(join(tmpdir(), 'specialeffects-'));
  process.on('exit', () => rmSync(folder, { recursive: true, force: true }));
  return folder;
}

/** The modules of src, as JavaScript: for tests of what the package does not export. */
export async function internals() {
  const folder = temporaryFolder();
  await build({
    entryPoints: [join(root, 'src/*.ts'), join(root, 'src/generated/*.ts')],
    outbase: join(root, 'src'),
    outdir: folder,
    format: 'esm',
    logLevel: 'warning',
  });
  writeFileSync(join(folder, 'package.json'), '{"type":"module"}');
  return (name) => import(join(folder, `${name}.js`));
}

// ---- clips ----

/** A textured I420 picture with motion: different in each frame. */
export function scene(width, height, frame) {
  const luma = Buffer.alloc(width * height);
  for (let y = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) {
      const wave = 60 * Math.sin((x + 5 * frame) / 17) + 40 * Math.cos((y - 3 * frame) / 11);
      luma[y * width + x] = Math.round(126 + wave + (((x >> 4) + (y >> 4)) % 2) * 18);
    }
  }
  const [halfWidth, halfHeight] = [(width + 1) >> 1, (height + 1) >> 1];
  const chroma = (phase) => {
    const plane = Buffer.alloc(halfWidth * halfHeight);
    for (let y = 0; y < halfHeight; ++y) {
      for (let x = 0; x < halfWidth; ++x) {
        plane[y * halfWidth + x] = Math.round(128 + 70 * Math.sin((x + phase * y + frame) / 23 + phase));
      }
    }
    return plane;
  };
  return Buffer.concat([luma, chroma(1), chroma(2)]);
}

/** Writes a Y4M file of these I420 pictures. */
export function writeY4m(path, width, height, pictures) {
  const parts = [Buffer.from(`YUV4MPEG2 W${width} H${height} F30:1 Ip A1:1 C420jpeg\n`)];
  for (const picture of pictures) parts.push(Buffer.from('FRAME\n'), picture);
  writeFileSync(path, Buffer.concat(parts));
}

/** The pictures of a Y4M stream. */
export function parseY4m(bytes, width, height) {
  const size = width * height + 2 * ((width + 1) >> 1) * ((height + 1) >> 1);
  const pictures = [];
  const frame = Buffer.from('FRAME\n');
  for (let at = bytes.indexOf(frame); at >= 0; at = bytes.indexOf(frame, at + size)) {
    at += frame.length;
    pictures.push(bytes.subarray(at, at + size));
  }
  return pictures;
}

/** What the program makes of a Y4M file. */
export function applyProgram(effects, path, width, height, ...options) {
  const arguments_ = ['apply', '--quiet', '--seed', '1', '-e', effects, ...options, path, '-'];
  return parseY4m(execFileSync(program, arguments_, { maxBuffer: 1 << 28 }), width, height);
}

// ---- server and browser ----

const TYPES = {
  '.html': 'text/html',
  '.js': 'text/javascript',
  '.wasm': 'application/wasm',
  '.css': 'text/css',
  '.txt': 'text/plain',
};

// What a careful page sets: nothing from elsewhere, WebAssembly but no eval, no cross-origin isolation.
const POLICY =
  "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; worker-src 'self'; connect-src 'self'; style-src 'self'";

/** Serves folders: { '/dist/': path }. Resolves with its address. */
export function serve(folders, { policy = POLICY } = {}) {
  const requests = [];
  const server = createServer((request, response) => {
    const { pathname } = new URL(request.url, 'http://localhost');
    requests.push(pathname);
    const prefix = Object.keys(folders).find((candidate) => pathname.startsWith(candidate));
    const path = prefix && join(folders[prefix], normalize(`/${pathname.slice(prefix.length) || 'index.html'}`));
    if (!path || !existsSync(path) || !statSync(path).isFile()) {
      response.writeHead(404).end();
      return;
    }
    const type = TYPES[extname(path)] ?? 'application/octet-stream';
    response.writeHead(200, { 'Content-Type': type, 'Content-Security-Policy': policy });
    createReadStream(path).pipe(response);
  });
  return new Promise((resolve) => {
    server.listen(0, '127.0.0.1', () => {
      const url = `http://localhost:${server.address().port}/`;
      resolve({ url, requests, close: () => server.close() });
    });
  });
}

/** Chromium, with a Y4M file as its camera. */
export function launch(clip, ...options) {
  return chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: [
      '--no-sandbox',
      '--use-fake-ui-for-media-stream',
      '--use-fake-device-for-media-stream',
      ...(clip ? [`--use-file-for-fake-video-capture=${clip}`] : []),
      '--disable-gpu',
      ...options,
    ],
  });
}

/** A page that collects what goes wrong in it. */
export async function openPage(browser, url, isReady = () => window.ready === true) {
  const context = await browser.newContext({ permissions: ['camera'] });
  const page = await context.newPage();
  const complaints = [];
  page.on('console', (message) => {
    if (['error', 'warning'].includes(message.type())) complaints.push(message.text());
  });
  page.on('pageerror', (error) => complaints.push(String(error)));
  await page.goto(url);
  await page.waitForFunction(isReady);
  return { page, complaints, close: () => context.close() };
}
