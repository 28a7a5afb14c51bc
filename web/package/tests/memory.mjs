// Runs a processor and watches its memory. By hand, for 10 minutes: node tests/memory.mjs 600
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { argv } from 'node:process';
import { pathToFileURL } from 'node:url';

import { launch, openPage, root, scene, serve, temporaryFolder, writeY4m } from './support.mjs';

/** Changes effects for some seconds. Throws where memory grows after the first round. */
export async function watchMemory(page, seconds) {
  const protocol = await page.context().newCDPSession(page);
  const heap = async () => {
    await protocol.send('HeapProfiler.collectGarbage');
    return (await protocol.send('Runtime.getHeapUsage')).usedSize;
  };
  await page.evaluate(async () => {
    window.watched = processor({ effects: 'sepia' });
    window.video = document.createElement('video');
    window.video.srcObject = new MediaStream([await watched.start(await camera())]);
    await window.video.play();
  });
  const rounds = Math.max(2, Math.round(seconds / 10));
  const samples = [];
  for (let round = 0; round < rounds; ++round) {
    const [report] = await page.evaluate(
      async (duration) => {
        const list = ['sketch-2', 'rain', 'time-distortion+sepia', 'fish-eye'];
        for (const effects of list) {
          await watched.setEffects(effects);
          await sleep(duration / list.length);
        }
        return takeStats().slice(-1);
      },
      (seconds * 1000) / rounds,
    );
    samples.push({
      wasm: report.memory,
      heap: await heap(),
      fps: Math.round(report.framesPerSecond),
      processed: report.processed,
    });
  }
  await page.evaluate(() => watched.stop());
  const [first, last] = [samples[0], samples.at(-1)];
  // Less than a frame for each change of effects: the heap of the module may need some more until it has holes enough.
  assert.ok(
    last.wasm < first.wasm + 1_500_000,
    `the WebAssembly memory grows from ${first.wasm} to ${last.wasm} bytes`,
  );
  assert.ok(last.heap < first.heap + 2_000_000, `the heap grows from ${first.heap} to ${last.heap} bytes`);
  assert.ok(last.processed > first.processed);
  return { first, last };
}

if (import.meta.url === pathToFileURL(argv[1]).href) {
  const clip = join(temporaryFolder(), 'clip.y4m');
  writeY4m(
    clip,
    1280,
    720,
    Array.from({ length: 30 }, (_, frame) => scene(1280, 720, frame)),
  );
  const server = await serve({ '/dist/': join(root, 'dist'), '/': join(root, 'tests/page') });
  const browser = await launch(clip);
  try {
    const { page, complaints } = await openPage(browser, server.url);
    console.log(JSON.stringify(await watchMemory(page, Number(argv[2] ?? 600))));
    assert.deepEqual(complaints, []);
  } finally {
    await browser.close();
    server.close();
  }
}
