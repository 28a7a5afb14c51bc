// What the types allow, and what they do not.
import { type EffectId, type Effects, createProcessor, listEffects } from 'specialeffects';
import { applyEffects } from 'specialeffects/image';
import { createEffect } from 'specialeffects/node';

export const good: Effects[] = [
  'sepia+rain:drop-size=9',
  [],
  ['sepia', 'preset:noir', { id: 'rain' }, { id: 'rain', properties: { 'drop-size': 9 } }],
  [{ id: 'fish-eye', properties: { 'effect-type': 'cosine', 'large-sphere': true } }],
  [{ id: 'line-art-1', properties: { 'background-color': '#ff0000' } }],
];

export const bad: Effects[] = [
  // @ts-expect-error: no such effect
  ['sepio'],
  // @ts-expect-error: no such preset
  ['preset:nothing'],
  // @ts-expect-error: no such property
  [{ id: 'rain', properties: { 'drop-colour': 9 } }],
  // @ts-expect-error: a value of another type
  [{ id: 'rain', properties: { 'drop-size': 'nine' } }],
  // @ts-expect-error: no such choice
  [{ id: 'fish-eye', properties: { 'effect-type': 'cube' } }],
  // @ts-expect-error: an effect without properties
  [{ id: 'sepia', properties: { amount: 1 } }],
];

export async function use(track: MediaStreamTrack, picture: ImageData): Promise<void> {
  const processor = createProcessor({
    effects: 'noir',
    maxFps: 24,
    onStats: ({ framesPerSecond, milliseconds, path }) => {
      console.log(framesPerSecond.toFixed(1), milliseconds, path === 'canvas');
    },
  });
  const output: MediaStreamTrack = await processor.start(track);
  output.stop();
  await processor.setProperty('drop-size', 3);
  const result: ImageData = await applyEffects(picture, 'sepia', { frames: 3 });
  const ids: EffectId[] = listEffects().map((effect) => effect.id);
  const effect = await createEffect('sepia');
  effect.process(new Uint8Array(6), { format: 'i420', width: 2, height: 2 }, 0n);
  // @ts-expect-error: no such format
  effect.process(new Uint8Array(6), { format: 'yuv', width: 2, height: 2 });
  console.log(result.width, ids.length);
}
