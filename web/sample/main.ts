import { type Stats, createProcessor, listEffects } from 'specialeffects';

const find = <E extends Element>(id: string) => document.querySelector(`#${id}`) as E;
const button = find<HTMLButtonElement>('start');
const select = find<HTMLSelectElement>('effect');
const video = find<HTMLVideoElement>('video');
const output = find<HTMLOutputElement>('stats');

const byTitle = [...listEffects()].sort((a, b) => a.title.localeCompare(b.title));
for (const { id, title } of byTitle) select.add(new Option(title, id, false, id === 'sepia'));

const processor = createProcessor({
  effects: select.value,
  onStats: ({ framesPerSecond, milliseconds }: Stats) => {
    output.value = `${framesPerSecond.toFixed(0)} frames/s, ${milliseconds.toFixed(1)} ms each`;
  },
});

select.onchange = () => processor.setEffects(select.value);
button.onclick = async () => {
  const camera = await navigator.mediaDevices.getUserMedia({ video: { width: 1280, height: 720 } });
  video.srcObject = new MediaStream([await processor.start(camera.getVideoTracks()[0])]);
};
