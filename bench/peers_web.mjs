// Runs the filters of pixi-filters and glfx in Chromium at odd and tiny sizes, and prints a table:
//
//     npm install --prefix build/peers pixi.js@8.22.0 pixi-filters@6.1.5 glfx@0.0.4 playwright-core esbuild
//     node bench/peers_web.mjs build/peers
//
// A filter works at a size if it draws a picture of noise without an exception and without an error of WebGL, and the
// pixels that are read back are not all zero. Each runs with its default settings, or with those below where it has none.
// CHROMIUM names another browser. Without a graphics processor WebGL is drawn by software.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { resolve } from 'node:path';

const folder = resolve(process.argv[2] ?? 'build/peers');
const require = createRequire(`${folder}/`);
const { build } = require('esbuild');
const { chromium } = require('playwright-core');
const sizes = [[176, 144], [177, 143], [3, 5], [1, 1]];

const page = `
import { Container, Sprite, Texture, autoDetectRenderer } from 'pixi.js';
import * as filters from 'pixi-filters';

function noise(width, height) {
  const canvas = Object.assign(document.createElement('canvas'), { width, height });
  const context = canvas.getContext('2d');
  const picture = context.createImageData(width, height);
  picture.data.forEach((_, i, data) => { data[i] = i % 4 === 3 ? 255 : Math.random() * 256; });
  context.putImageData(picture, 0, 0);
  return canvas;
}

function outcome(draw) {
  try {
    const { error, pixels } = draw();
    if (error) return 'error ' + error;
    return pixels.some((value) => value > 0) ? 'works' : 'draws nothing';
  } catch (error) {
    return error.message;
  }
}

window.runPixi = async (width, height) => {
  const renderer = await autoDetectRenderer({ width, height, preference: 'webgl', preserveDrawingBuffer: true });
  const results = Object.keys(filters).filter((name) => name.endsWith('Filter')).map((name) => [name, outcome(() => {
    const sprite = new Sprite(Texture.from(noise(width, height)));
    sprite.filters = [new filters[name](name === 'SimpleLightmapFilter' ? { lightMap: Texture.WHITE } : undefined)];
    const root = new Container();
    root.addChild(sprite);
    renderer.render(root);
    const { gl } = renderer;
    const pixels = new Uint8Array(width * height * 4);
    gl.readPixels(0, 0, width, height, gl.RGBA, gl.UNSIGNED_BYTE, pixels);
    return { error: gl.getError(), pixels };
  })]);
  renderer.destroy();
  return results;
};

window.runGlfx = (width, height) => {
  const [x, y] = [width / 2, height / 2];
  const corners = [0, 0, width, 0, 0, height, width, height];
  const settings = {
    brightnessContrast: [.1, .1], bulgePinch: [x, y, x, .75], colorHalftone: [x, y, .25, 4], curves: [[[0, 1], [1, 0]]],
    denoise: [50], dotScreen: [x, y, 1.1, 3], edgeWork: [10], hexagonalPixelate: [x, y, 20], hueSaturation: [.5, 0],
    ink: [.25], lensBlur: [10, .75, 0], noise: [.5], perspective: [corners, corners], sepia: [1], swirl: [x, y, x, 3],
    tiltShift: [0, 0, width, height, 15, 200], triangleBlur: [20], unsharpMask: [20, 2], vibrance: [1],
    vignette: [.5, .5], zoomBlur: [x, y, .3],
  };
  const canvas = fx.canvas();
  const texture = canvas.texture(noise(width, height));
  return Object.entries(settings).map(([name, values]) => [name, outcome(() => {
    canvas.draw(texture)[name](...values).update();
    const seen = Object.assign(document.createElement('canvas'), { width, height }).getContext('2d');
    seen.drawImage(canvas, 0, 0);
    const whole = canvas.width === width && canvas.height === height;
    return { error: whole ? 0 : 'size', pixels: seen.getImageData(0, 0, width, height).data };
  })]);
};
`;

const bundle = await build({
  stdin: { contents: page, resolveDir: folder }, bundle: true, format: 'iife', write: false, logLevel: 'error',
});
const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader'],
});
try {
  const tab = await browser.newPage();
  await tab.addScriptTag({ content: readFileSync(`${folder}/node_modules/glfx/glfx.js`, 'utf8') });
  await tab.addScriptTag({ content: bundle.outputFiles[0].text });
  console.log(`Chromium ${browser.version()}\n`);
  console.log(`| package | filters | ${sizes.map((size) => size.join('x')).join(' | ')} |\n|${'---|'.repeat(2 + sizes.length)}`);
  for (const [title, run] of [['pixi-filters', 'runPixi'], ['glfx', 'runGlfx']]) {
    const cells = [];
    let count = 0;
    for (const [width, height] of sizes) {
      const results = await tab.evaluate(([name, w, h]) => window[name](w, h), [run, width, height]);
      const working = results.filter(([, result]) => result === 'works');
      for (const [name, result] of results) {
        if (result !== 'works') console.error(`${title} ${name} at ${width}x${height}: ${result}`);
      }
      count = results.length;
      cells.push(`${working.length} works`);
    }
    console.log(`| ${title} | ${count} | ${cells.join(' | ')} |`);
  }
} finally {
  await browser.close();
}
