// Each feature of the page, in Chromium.

import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { after, before, describe, it } from 'node:test';

import { built, firstPicture, launch, look, open, portrait, scratch, until } from './chromium.mjs';

let world;
before(async () => {
  world = await launch();
});
after(async () => {
  await world.close();
});

/** A test with a page of its own, on which nothing may go wrong. */
function on(name, options, run) {
  it(name, async () => {
    const page = await open(world, options);
    try {
      await run(page);
      assert.deepEqual(page.trouble, []);
    } finally {
      await page.context().close();
    }
  });
}

const isGrey = ({ colour }) => colour < 3;
const isColoured = ({ colour }) => colour > 15;
/** Waits until the service worker has all files and answers for the network. */
const isKept = (page) => page.waitForFunction(() => navigator.serviceWorker.controller !== null);
/** Browsers look for a newer service worker on their own. */
const isPagesOwn = ({ path }) => path !== '/service-worker.js';
const titles = (page) => page.locator('#links .title').allTextContents();
const address = (page) => page.evaluate(() => decodeURIComponent(location.hash));
const card = (page, text) => page.locator(`#shelves [data-text="${text}"]:visible`).first();

describe('loading', () => {
  it('shows a picture, in under a megabyte, from one place', async () => {
    world.requests.length = 0;
    const begin = performance.now();
    const page = await open(world);
    const milliseconds = performance.now() - begin;
    const origins = await page.evaluate(() =>
      performance.getEntriesByType('resource').map(({ name }) => new URL(name).origin),
    );
    await page.waitForSelector('#shelves canvas[data-live]');
    const bytes = world.requests.reduce((sum, request) => sum + request.bytes, 0);
    console.log(`first picture after ${milliseconds.toFixed(0)} ms, ${bytes} bytes`);
    assert.deepEqual([...new Set(origins)], [new URL(world.url).origin]);
    assert.ok(bytes < 1_000_000, `${bytes} bytes`);
    assert.deepEqual(page.trouble, []);
    await page.context().close();
  });

  on('has a policy that keeps everything else out', {}, async (page) => {
    const policy = await page.getAttribute('meta[http-equiv]', 'content');
    assert.match(policy, /default-src 'none'; script-src 'self' 'wasm-unsafe-eval';/);
    assert.doesNotMatch(policy, /unsafe-inline|'unsafe-eval'|\*|https?:/);
    const stopped = await page.evaluate(
      () =>
        new Promise((resolve) => {
          addEventListener('securitypolicyviolation', ({ effectiveDirective }) => {
            resolve(effectiveDirective);
          });
          fetch('https://example.com/').catch(() => {});
        }),
    );
    assert.equal(stopped, 'connect-src');
    page.trouble.length = 0;
  });
});

describe('sources', () => {
  const spy = () => {
    window.asked = [];
    const ask = navigator.mediaDevices.getUserMedia.bind(navigator.mediaDevices);
    navigator.mediaDevices.getUserMedia = (wish) => {
      window.asked.push(wish);
      return ask(wish);
    };
  };

  on('asks for the camera at a press only, and mirrors it', { init: spy }, async (page) => {
    assert.equal(await page.evaluate(() => window.asked.length), 0);
    await page.click('#start-camera');
    await until(page, ({ width, mean }) => width === 1280 && mean[0] > mean[1], '#before');
    await until(page, ({ width }) => width === 1280);
    assert.equal(await page.evaluate(() => window.asked.length), 1);
    assert.equal(await page.evaluate(() => window.asked[0].audio), false);
    assert.equal(await page.getAttribute('#use-camera', 'aria-pressed'), 'true');
    assert.equal(await page.getAttribute('#mirror', 'aria-pressed'), 'true');
    assert.equal(await page.isVisible('#start-camera'), false);
    assert.equal(await page.isVisible('#camera-choice'), false);
  });

  it('lets one choose between cameras', async () => {
    const two = await launch(2);
    try {
      const page = await open(two);
      await page.click('#use-camera');
      const cameras = page.locator('#camera-choice option');
      await cameras.nth(1).waitFor({ state: 'attached' });
      const second = await cameras.nth(1).getAttribute('value');
      await page.selectOption('#camera-choice', second);
      await page.waitForFunction(
        (id) => document.getElementById('before').srcObject.getVideoTracks()[0].getSettings().deviceId === id,
        second,
      );
      await firstPicture(page);
      assert.equal(await page.inputValue('#camera-choice'), second);
      assert.deepEqual(page.trouble, []);
    } finally {
      await two.close();
    }
  });

  on(
    'says what to do where the camera is refused, and goes on',
    {
      init: () => {
        navigator.mediaDevices.getUserMedia = () => Promise.reject(new DOMException('', 'NotAllowedError'));
      },
    },
    async (page) => {
      await page.click('#use-camera');
      await page.waitForSelector(".toast:has-text('camera is blocked')");
      assert.equal(await page.getAttribute('#use-portrait', 'aria-pressed'), 'true');
      assert.equal(
        await page.evaluate(() => document.getElementById('before').srcObject.getVideoTracks()[0].readyState),
        'live',
      );
    },
  );

  on('shows a scene when the camera goes away', {}, async (page) => {
    await page.click('#use-camera');
    await until(page, ({ width }) => width === 1280);
    await page.evaluate(() => {
      document.getElementById('before').srcObject.getVideoTracks()[0].dispatchEvent(new Event('ended'));
    });
    await until(page, ({ width }) => width === 960);
    assert.equal(await page.getAttribute('#use-portrait', 'aria-pressed'), 'true');
    assert.equal(await page.getAttribute('#mirror', 'aria-pressed'), 'false');
  });

  on('has a scene that moves', { hash: '#fx=gray-scale' }, async (page) => {
    await page.click('#use-balloons');
    const one = await until(page, ({ width, colour }) => width === 1280 && colour < 3);
    await page.waitForFunction(() => document.getElementById('after').getVideoPlaybackQuality().totalVideoFrames > 5);
    await until(page, ({ mean }) => Math.abs(mean[0] - one.mean[0]) > 0.02);
  });

  on('opens a picture, and a video that it has recorded', { hash: '#fx=sepia' }, async (page) => {
    await page.setInputFiles('#file', portrait);
    await until(page, ({ width, height }) => width === 640 && height === 480);
    assert.equal(await page.getAttribute('#use-file', 'aria-pressed'), 'true');
    const download = page.waitForEvent('download');
    await page.click('#record');
    await page.waitForSelector("#recording:has-text('0:01')");
    await page.click('#record');
    const file = join(scratch, (await download).suggestedFilename());
    await (await download).saveAs(file);
    await page.click('#use-balloons');
    await until(page, ({ width }) => width === 1280);
    await page.setInputFiles('#file', file);
    await until(page, ({ width, height, mean }) => width === 640 && height === 480 && mean[0] > mean[2] + 20);
  });

  on('takes a dropped picture, and explains what it cannot show', {}, async (page) => {
    const drop = (bytes, name, type) =>
      page.evaluate(
        ([base64, name, type]) => {
          const dataTransfer = new DataTransfer();
          dataTransfer.items.add(new File([Uint8Array.from(atob(base64), (c) => c.charCodeAt(0))], name, { type }));
          for (const kind of ['dragenter', 'dragover', 'drop'])
            document.body.dispatchEvent(new DragEvent(kind, { dataTransfer, bubbles: true, cancelable: true }));
        },
        [bytes.toString('base64'), name, type],
      );
    await drop(await readFile(portrait), 'me.jpg', 'image/jpeg');
    await until(page, ({ width, height }) => width === 640 && height === 480);
    await drop(Buffer.from('notes'), 'notes.mp4', 'video/mp4');
    await page.waitForSelector(".toast:has-text('notes.mp4')");
    assert.equal(await page.getAttribute('#use-file', 'aria-pressed'), 'true');
  });
});

describe('gallery', () => {
  on('has a live picture of every effect and every preset', {}, async (page) => {
    assert.equal(await page.locator('#shelves [data-kind=looks] .card').count(), 16);
    for (const more of await page.locator('.more').all()) await more.click();
    const cards = page.locator('#shelves .card:not([data-kind=looks])');
    assert.equal(
      await page.locator('#shelves .shelf:not([data-kind=looks]):not([data-kind=own]) .card:visible').count(),
      63,
    );
    for (const item of await cards.all()) {
      if (!(await item.isVisible())) continue;
      await item.scrollIntoViewIfNeeded();
      await item.locator('canvas[data-live]').waitFor();
    }
    const grey = await look(page, '[data-text=gray-scale] canvas');
    assert.ok(isGrey(grey) && grey.mean[0] > 20, JSON.stringify(grey));
    const sepia = await look(page, '[data-text=sepia] canvas');
    assert.ok(sepia.mean[0] > sepia.mean[2] + 20, JSON.stringify(sepia));
  });

  for (const [width, height] of [
    [1400, 900],
    [390, 844],
  ]) {
    on(
      `shows whole titles, also those of variants, ${width} pixels wide`,
      { viewport: { width, height } },
      async (page) => {
        for (const more of await page.locator('.more').all()) await more.click();
        const cut = await page
          .locator('#shelves .card:visible .title')
          .evaluateAll((all) =>
            all
              .filter((title) => title.scrollWidth > title.clientWidth || title.scrollHeight > title.clientHeight)
              .map((title) => title.textContent),
          );
        assert.deepEqual(cut, []);
      },
    );
  }

  on('finds effects by words, and by kind', {}, async (page) => {
    const visible = () => page.locator('#shelves .card:visible .title').allTextContents();
    await page.keyboard.press('/');
    await page.keyboard.type('pencil stroke');
    assert.deepEqual(await visible(), ['Sketch 1', 'Sketch 2', 'Sketch 3']);
    await page.fill('#search', 'xyzzy');
    assert.deepEqual(await visible(), []);
    await page.waitForSelector("#nothing:has-text('xyzzy')");
    await page.fill('#search', '');
    await page.click('#kinds [data-kind=time]');
    assert.deepEqual(await visible(), [
      'Four Square',
      'Motion Blur - Ghost',
      'Motion Detector',
      'Tiled Up',
      'Time Distortion',
    ]);
    await page.click('#shelves .more:visible');
    assert.deepEqual((await visible()).length, 6);
    await page.click('#shelves .more:visible');
    assert.deepEqual((await visible()).length, 5);
  });

  on('is walked with arrow keys', {}, async (page) => {
    const focused = () => page.evaluate(() => document.activeElement.closest('li')?.dataset.text);
    await page.focus('[data-kind=tone] [data-text=neonize] .face');
    const { x, y } = await page.locator('[data-kind=tone] [data-text=neonize]').boundingBox();
    await page.keyboard.press('ArrowDown');
    const below = await page.locator(`[data-kind=tone] [data-text="${await focused()}"]`).boundingBox();
    assert.ok(below.y > y && Math.abs(below.x - x) < 2);
    await page.keyboard.press('ArrowUp');
    assert.equal(await focused(), 'neonize');
    await page.keyboard.press('Home');
    await page.keyboard.press('ArrowRight');
    assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Old photograph');
  });
});

describe('chain', () => {
  on('is what one presses, and changes the picture', { hash: '#fx=' }, async (page) => {
    await until(page, isColoured);
    await card(page, 'gray-scale').locator('.face').click();
    await until(page, isGrey);
    assert.deepEqual(await titles(page), ['Gray Scale']);
    assert.equal(await card(page, 'gray-scale').locator('.face').getAttribute('aria-pressed'), 'true');
    await card(page, 'sepia').locator('.add').click();
    await until(page, ({ mean }) => mean[0] > mean[2] + 20);
    assert.deepEqual(await titles(page), ['Gray Scale', 'Sepia']);
    await card(page, 'neonize').locator('.face').click();
    await page.click('.toast >> text=Undo');
    assert.deepEqual(await titles(page), ['Gray Scale', 'Sepia']);
    await page.click('#clear');
    await until(page, isColoured);
    await page.keyboard.press('Control+z');
    assert.deepEqual(await titles(page), ['Gray Scale', 'Sepia']);
  });

  on('is built, switched, ordered and emptied with keys', { hash: '#fx=' }, async (page) => {
    for (const id of ['sepia', 'gray-scale', 'rain']) {
      await page.focus(`[data-text="${id}"] .face`);
      await page.keyboard.press('Shift+Enter');
    }
    assert.deepEqual(await titles(page), ['Sepia', 'Gray Scale', 'Rain']);
    await page.focus('#links li:first-child .pick');
    await page.keyboard.press('Alt+ArrowRight');
    assert.deepEqual(await titles(page), ['Gray Scale', 'Sepia', 'Rain']);
    assert.match(await page.textContent('#announcer'), /Sepia is now number 2 of 3/);
    await until(page, ({ mean }) => mean[0] > mean[2] + 20);
    await page.keyboard.press('Tab');
    await page.keyboard.press('Space');
    assert.equal(await address(page), '#fx=gray-scale+!sepia+rain');
    await until(page, isGrey);
    await page.keyboard.press('ArrowRight');
    await page.keyboard.press('Delete');
    assert.deepEqual(await titles(page), ['Gray Scale', 'Sepia']);
    await page.keyboard.press('Delete');
    await page.keyboard.press('Delete');
    assert.deepEqual(await titles(page), []);
    assert.ok(await page.isVisible('#chain-empty'));
  });

  on('is built and ordered by dragging', { hash: '#fx=rain' }, async (page) => {
    const drag = async (from, to, dx) => {
      const a = await from.boundingBox(),
        b = await to.boundingBox();
      await page.mouse.move(a.x + a.width / 2, a.y + a.height / 3);
      await page.mouse.down();
      await page.mouse.move(a.x + a.width / 2 + 20, a.y + a.height / 3, { steps: 3 });
      await page.mouse.move(b.x + b.width * dx, b.y + b.height / 2, { steps: 6 });
      await page.mouse.up();
    };
    await card(page, 'sepia').scrollIntoViewIfNeeded();
    await drag(card(page, 'sepia').locator('.face'), page.locator('#links li'), 0.1);
    assert.deepEqual(await titles(page), ['Sepia', 'Rain']);
    await drag(page.locator('#links li:first-child .grip'), page.locator('#links li:nth-child(2)'), 0.9);
    assert.deepEqual(await titles(page), ['Rain', 'Sepia']);
    assert.equal(await page.locator('.ghost, .marker').count(), 0);
    await drag(card(page, 'sepia').locator('.face'), page.locator('#viewer'), 0.5);
    assert.deepEqual(await titles(page), ['Rain', 'Sepia']);
  });
});

describe('properties', () => {
  const set = (page, id, value, kind = 'input') =>
    page.locator(`#property-${id}`).evaluate(
      (input, [value, kind]) => {
        input.value = value;
        input.dispatchEvent(new Event(kind, { bubbles: true }));
      },
      [value, kind],
    );

  on('are sliders, switches, colours and names, with descriptions', { hash: '#fx=logo-animation' }, async (page) => {
    assert.equal(await page.locator('#properties .field').count(), 10);
    assert.equal(await page.locator('#properties .field p:not(:empty)').count(), 10);
    await page.focus('#property-objects-number');
    await page.keyboard.press('ArrowRight');
    await page.keyboard.press('ArrowRight');
    assert.equal(await page.textContent('#properties output'), '12');
    await page.check('#property-moving-animation');
    await page.selectOption('#property-type', { label: 'Picture' });
    await set(page, 'color-2', '#12ab34');
    assert.equal(
      await address(page),
      '#fx=logo-animation:objects-number=12,moving-animation=true,type=picture,color-2=#12ab34',
    );
    assert.match(await page.textContent('#property-type-hint'), /\w\. \w.*\./);
    await page.click('.reset');
    assert.equal(await address(page), '#fx=logo-animation');
    assert.equal(await page.inputValue('#property-objects-number'), '10');
    await page.keyboard.press('Control+z');
    assert.equal(await page.inputValue('#property-objects-number'), '12');
  });

  on('change the running picture', { hash: '#fx=line-art-1' }, async (page) => {
    await until(page, ({ mean }) => mean[2] > mean[0] + 40);
    await set(page, 'background-color', '#ff0000');
    await until(page, ({ mean }) => mean[0] > mean[2] + 40);
  });

  on(
    'of variants are kept from one to the next',
    { hash: '#fx=sketch-1+graphic-pen-1:colored=false' },
    async (page) => {
      await until(page, isGrey);
      await page.click('.variants >> text=3');
      assert.equal(await address(page), '#fx=sketch-1+graphic-pen-3:colored=false');
      await page.click('#links li:first-child .pick');
      assert.equal(await page.textContent('#properties h3'), 'Sketch 1');
    },
  );
});

describe('screen', () => {
  on(
    'compares before and after at a border that is dragged or moved with keys',
    { hash: '#fx=gray-scale' },
    async (page) => {
      await until(page, isGrey);
      await page.keyboard.press('c');
      const colourAt = async (part) => {
        const { x, y, width, height } = await page.locator('#screen').boundingBox();
        const png = await page.screenshot({
          clip: { x: x + width * part - 20, y: y + height * 0.8, width: 40, height: 60 },
        });
        await page.evaluate(
          async (bytes) => {
            const bitmap = await createImageBitmap(new Blob([new Uint8Array(bytes)]));
            const canvas =
              document.getElementById('seen') ?? document.body.appendChild(document.createElement('canvas'));
            canvas.id = 'seen';
            [canvas.width, canvas.height] = [bitmap.width, bitmap.height];
            canvas.getContext('2d').drawImage(bitmap, 0, 0);
          },
          [...png],
        );
        const { colour } = await look(page, '#seen');
        await page.evaluate(() => {
          document.getElementById('seen').remove();
        });
        return colour;
      };
      assert.ok((await colourAt(0.2)) > 10);
      assert.ok((await colourAt(0.65)) < 3);
      const split = await page.locator('#split').boundingBox(),
        screen = await page.locator('#screen').boundingBox();
      await page.mouse.move(split.x + split.width / 2, split.y + split.height / 2);
      await page.mouse.down();
      await page.mouse.move(screen.x + screen.width * 0.1, split.y + 50, { steps: 4 });
      await page.mouse.up();
      assert.equal(await page.getAttribute('#split', 'aria-valuenow'), '10');
      assert.ok((await colourAt(0.2)) < 3);
      await page.focus('#split');
      await page.keyboard.press('End');
      assert.equal(await page.getAttribute('#split', 'aria-valuenow'), '100');
      await page.keyboard.press('ArrowLeft');
      assert.equal(await page.getAttribute('#split', 'aria-valuenow'), '98');
      await page.keyboard.press('c');
      assert.equal(await page.isVisible('#split'), false);
    },
  );

  on('is mirrored, also in the picture that it saves', { hash: '#fx=sepia' }, async (page) => {
    await page.setInputFiles('#file', portrait);
    await until(page, ({ width, height, mean }) => width === 640 && height === 480 && mean[0] > mean[2] + 20);
    const take = async () => {
      const download = page.waitForEvent('download');
      await page.keyboard.press('s');
      assert.match((await download).suggestedFilename(), /^special-effects-.*\.png$/);
      const bytes = await readFile(await (await download).path());
      return page.evaluate(async (base64) => {
        const bitmap = await createImageBitmap(new Blob([Uint8Array.from(atob(base64), (c) => c.charCodeAt(0))]));
        const context = new OffscreenCanvas(2, 1).getContext('2d');
        context.imageSmoothingQuality = 'high';
        context.drawImage(bitmap, 0, 0, bitmap.width, bitmap.height, 0, 0, 2, 1);
        const { data } = context.getImageData(0, 0, 2, 1);
        return { width: bitmap.width, height: bitmap.height, left: data[0], right: data[4] };
      }, bytes.toString('base64'));
    };
    const plain = await take();
    await page.keyboard.press('m');
    assert.equal(
      await page.evaluate(() => getComputedStyle(document.getElementById('after')).transform),
      'matrix(-1, 0, 0, 1, 0, 0)',
    );
    const mirrored = await take();
    assert.deepEqual([plain.width, plain.height], [640, 480]);
    assert.ok(Math.abs(plain.left - plain.right) > 5, JSON.stringify(plain));
    assert.ok(
      Math.abs(plain.left - mirrored.right) < 4 && Math.abs(plain.right - mirrored.left) < 4,
      JSON.stringify([plain, mirrored]),
    );
  });

  on('is recorded to a file that plays, mirrored as it is shown', { hash: '#fx=gray-scale' }, async (page) => {
    await page.setInputFiles('#file', portrait);
    await until(page, ({ width, height, colour }) => width === 640 && height === 480 && colour < 3);
    await page.keyboard.press('m');
    const download = page.waitForEvent('download');
    await page.keyboard.press('r');
    await page.waitForSelector("#recording:has-text('0:01')");
    assert.equal(await page.getAttribute('#record', 'aria-pressed'), 'true');
    await page.keyboard.press('r');
    assert.match((await download).suggestedFilename(), /^special-effects-.*\.(webm|mp4)$/);
    const bytes = await readFile(await (await download).path());
    const type = (await download).suggestedFilename().endsWith('mp4') ? 'video/mp4' : 'video/webm';
    const seen = await page.evaluate(
      async ([base64, type]) => {
        const halves = (video) => {
          const context = new OffscreenCanvas(2, 1).getContext('2d');
          context.imageSmoothingQuality = 'high';
          context.drawImage(video, 0, 0, 2, 1);
          const { data } = context.getImageData(0, 0, 2, 1);
          return [data[0], data[4]];
        };
        const blob = new Blob([Uint8Array.from(atob(base64), (c) => c.charCodeAt(0))], { type });
        const video = Object.assign(document.createElement('video'), { muted: true, src: URL.createObjectURL(blob) });
        await video.play();
        await new Promise((resolve) => {
          video.onended = resolve;
        });
        const frames = video.getVideoPlaybackQuality().totalVideoFrames;
        return {
          width: video.videoWidth,
          height: video.videoHeight,
          frames,
          recorded: halves(video),
          shown: halves(document.getElementById('after')),
        };
      },
      [bytes.toString('base64'), type],
    );
    const what = JSON.stringify(seen);
    assert.deepEqual([seen.width, seen.height], [640, 480]);
    assert.ok(seen.frames > 1, what);
    const [left, right] = seen.shown;
    assert.ok(Math.abs(left - right) > 5, what);
    assert.ok(Math.abs(seen.recorded[0] - right) < 5 && Math.abs(seen.recorded[1] - left) < 5, what);
    assert.equal(await page.isVisible('#recording'), false);
  });

  on('fills the whole screen and comes back', {}, async (page) => {
    await page.keyboard.press('f');
    await page.waitForFunction(() => document.fullscreenElement?.id === 'viewer');
    assert.equal(await page.getAttribute('#full', 'aria-pressed'), 'true');
    await page.click('#full');
    await page.waitForFunction(() => document.fullscreenElement === null);
    assert.equal(await page.getAttribute('#full', 'aria-pressed'), 'false');
  });

  on('shows frames per second and milliseconds', {}, async (page) => {
    await page.waitForFunction(() => Number(document.getElementById('fps').textContent) > 0);
    await page.waitForFunction(() => Number(document.getElementById('ms').textContent) > 0);
  });

  on('pauses when the page is hidden: the camera goes off, and on again', {}, async (page) => {
    await page.click('#use-camera');
    await until(page, ({ width }) => width === 1280);
    const hide = (hidden) =>
      page.evaluate((hidden) => {
        Object.defineProperty(document, 'hidden', { value: hidden, configurable: true });
        document.dispatchEvent(new Event('visibilitychange'));
      }, hidden);
    const state = () => page.evaluate(() => document.getElementById('before').srcObject.getVideoTracks()[0].readyState);
    const frames = () =>
      page.evaluate(() => document.getElementById('after').getVideoPlaybackQuality().totalVideoFrames);
    await hide(true);
    assert.equal(await state(), 'ended');
    // Frames that were on their way may still arrive.
    let still = -1;
    for (let tries = 0; tries < 20 && still !== (await frames()); ++tries) {
      still = await frames();
      await page.waitForTimeout(500);
    }
    assert.equal(await frames(), still);
    await hide(false);
    await page.waitForFunction(
      (still) => document.getElementById('after').getVideoPlaybackQuality().totalVideoFrames > still + 3,
      still,
    );
    assert.equal(await state(), 'live');
    assert.equal(await page.getAttribute('#use-camera', 'aria-pressed'), 'true');
  });
});

describe('looks and links', () => {
  on('applies a preset that ships', {}, async (page) => {
    await page.click("[data-kind=looks] .face:has-text('Noir')");
    assert.equal(await address(page), '#fx=spot-light-2+gray-scale');
    await until(page, isGrey);
    assert.equal(await page.getAttribute("[data-kind=looks] .face:has-text('Noir')", 'aria-pressed'), 'true');
  });

  on("keeps the user's own", { hash: '#fx=sepia+rain:drop-size=9' }, async (page) => {
    await page.click('#save');
    await page.fill('#save-name', 'Wet <b>& brown');
    await page.keyboard.press('Enter');
    const own = page.locator('[data-kind=own] .card');
    await own.locator('canvas[data-live]').waitFor();
    await page.goto(`${world.url}#fx=`);
    await page.reload();
    assert.equal(await own.locator('.title').textContent(), 'Wet <b>& brown');
    await own.locator('.face').click();
    assert.equal(await address(page), '#fx=sepia+rain:drop-size=9');
    await own.hover();
    await own.locator('.corner').click();
    assert.equal(await own.count(), 0);
    assert.equal(await page.evaluate(() => localStorage.getItem('looks')), '[]');
  });

  on(
    'shares effects and settings as a link',
    { hash: '#fx=line-art-1:background-color=%230b3d91+!rain:drop-size=9' },
    async (page) => {
      assert.deepEqual(await titles(page), ['Line Art 1', 'Rain']);
      assert.equal(await page.inputValue('#property-drop-size'), '9');
      await page.click('#share');
      await page.waitForSelector(".toast:has-text('Link copied')");
      assert.equal(
        await page.evaluate(() => navigator.clipboard.readText()),
        `${world.url}#fx=line-art-1:background-color=%230b3d91+!rain:drop-size=9`,
      );
      await page.evaluate(() => {
        location.hash = '#fx=sepia';
      });
      await page.waitForFunction(() => document.querySelector('#links .title')?.textContent === 'Sepia');
    },
  );

  on(
    'takes only what it knows from a link',
    {
      hash: '#fx=nonsense+rain:drop-size=999,drop-period=x,<img>=1+sepia:a=b+%3Cscript%3E+'.concat('sepia+'.repeat(40)),
    },
    async (page) => {
      assert.equal((await titles(page)).length, 16);
      assert.equal(await page.evaluate(() => document.querySelector('#links .title').textContent), 'Rain');
      await page.click('#links li:first-child .pick');
      assert.equal(await page.inputValue('#property-drop-size'), '16');
      assert.equal(await page.inputValue('#property-drop-period'), '1');
    },
  );
});

describe('privacy', () => {
  it('makes no request after loading, in any of its features, and sets no cookie', async () => {
    const page = await open(world, { serviceWorkers: 'allow' });
    const outside = [];
    page.context().on('request', (request) => {
      if (!request.url().startsWith(world.url) && !/^(blob|data):/.test(request.url())) outside.push(request.url());
    });
    await page.waitForSelector('#shelves canvas[data-live]');
    await isKept(page);
    world.requests.length = 0;
    await page.click('#use-camera');
    await until(page, ({ width }) => width === 1280);
    for (const kind of ['faces', 'animated', 'drawing', 'tone', 'distortion', 'time']) {
      await page.click(`#kinds [data-kind=${kind}]`);
      await page.locator('#shelves .face:visible').first().click();
      await page.waitForTimeout(150);
    }
    await page.goto(`${world.url}#fx=picture-me+clouds+logo-animation`);
    await page.waitForTimeout(500);
    const picture = page.waitForEvent('download');
    await page.click('#snapshot');
    await picture;
    const film = page.waitForEvent('download');
    await page.click('#record');
    await page.waitForTimeout(400);
    await page.click('#record');
    await film;
    for (const id of ['#share', '#theme', '#compare', '#use-balloons', '#use-camera']) await page.click(id);
    await until(page, ({ width }) => width === 1280);
    assert.deepEqual(outside, []);
    assert.deepEqual(world.requests.filter(isPagesOwn), []);
    assert.deepEqual(await page.context().cookies(), []);
    assert.deepEqual(page.trouble, []);
    await page.context().close();
  });
});

describe('installed', () => {
  it('opens without a network after one visit', async () => {
    const page = await open(world, { serviceWorkers: 'allow', hash: '#fx=gray-scale' });
    await isKept(page);
    await page.context().setOffline(true);
    world.requests.length = 0;
    await page.reload();
    await firstPicture(page);
    await until(page, isGrey);
    await page.waitForSelector('#shelves canvas[data-live]');
    assert.deepEqual(world.requests.filter(isPagesOwn), []);
    assert.deepEqual(page.trouble, []);
    await page.context().close();
  });

  it('has all that a browser asks of an app', async () => {
    const page = await open(world, { serviceWorkers: 'allow' });
    const protocol = await page.context().newCDPSession(page);
    const { installabilityErrors } = await protocol.send('Page.getInstallabilityErrors');
    assert.deepEqual(
      installabilityErrors.map(({ errorId }) => errorId).filter((id) => id !== 'in-incognito'),
      [],
    );
    const manifest = JSON.parse(await readFile(join(built, 'manifest.webmanifest'), 'utf8'));
    for (const { src, sizes, type } of manifest.icons) {
      const bytes = await readFile(join(built, src));
      if (type !== 'image/png') continue;
      assert.equal(`${bytes.readUInt32BE(16)}x${bytes.readUInt32BE(20)}`, sizes);
    }
    await page.context().close();
  });
});

describe('for everyone', () => {
  const axe = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
  const violations = (page, where = 'html') =>
    page.evaluate(async (where) => {
      const found = await window.axe.run(where, { resultTypes: ['violations'] });
      return found.violations.map(({ id, nodes }) => `${id} ${nodes[0].html}`);
    }, where);
  // A hidden page leaves the processor to axe.
  const pause = (page) =>
    page.evaluate(() => {
      Object.defineProperty(document, 'hidden', { value: true, configurable: true });
      document.dispatchEvent(new Event('visibilitychange'));
    });

  for (const [width, height] of [
    [1400, 900],
    [800, 1100],
    [390, 844],
  ])
    for (const colorScheme of ['dark', 'light'])
      on(
        `has no violation that axe finds at ${width} pixels, ${colorScheme}`,
        { viewport: { width, height }, colorScheme, hash: '#fx=sketch-2+logo-animation', bypassCSP: true },
        async (page) => {
          await page.addScriptTag({ path: axe });
          await pause(page);
          await page.click('#compare');
          await page.locator('.more').first().click();
          assert.deepEqual(await violations(page), []);
          assert.ok(
            await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth),
            'it scrolls sideways',
          );
        },
      );

  on('has no violation that axe finds in its dialogs', { hash: '#fx=sepia', bypassCSP: true }, async (page) => {
    await page.addScriptTag({ path: axe });
    await pause(page);
    for (const id of ['help', 'save']) {
      await page.click(`#${id}`);
      assert.deepEqual(await violations(page, 'dialog[open]'), []);
      await page.keyboard.press('Escape');
    }
  });

  on('is reached with the tab key, the effects at once', {}, async (page) => {
    await page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Skip to the effects');
    await page.keyboard.press('Enter');
    await page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.id), 'search');
    await page.keyboard.type('sepia');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowRight');
    await page.keyboard.press('Enter');
    await page.waitForFunction(() => location.hash !== '');
  });

  on('is dark or light as the system says, or as one chooses', { colorScheme: 'dark' }, async (page) => {
    const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    const dark = await ground();
    await page.emulateMedia({ colorScheme: 'light' });
    const light = await ground();
    assert.notEqual(dark, light);
    await page.click('#theme');
    await page.click('#theme');
    assert.equal(await ground(), dark);
    await page.reload();
    assert.equal(await ground(), dark);
  });

  on('keeps still where less motion is wished', { reducedMotion: 'reduce' }, async (page) => {
    const live = page.locator('[data-kind=looks] canvas').first();
    await page.waitForFunction(() => Number(document.querySelector('[data-kind=looks] canvas').dataset.live) >= 10);
    await page.waitForTimeout(600);
    assert.equal(await live.getAttribute('data-live'), '10');
    await live.hover();
    await page.waitForFunction(() => Number(document.querySelector('[data-kind=looks] canvas').dataset.live) > 12);
    const [one, two] = [await look(page, '#before'), (await page.waitForTimeout(500), await look(page, '#before'))];
    assert.deepEqual(one, two);
  });
});
