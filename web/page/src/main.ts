// Puts the page together.

import { compile } from 'specialeffects/assets';

import { makeCatalogue } from './catalogue';
import { Recording, savePicture } from './capture';
import { loadCascade } from './cascade';
import { Chain, parse, print } from './chain';
import { ChainView } from './chain-view';
import { announce, byId, make, press, reducedMotion, toast } from './dom';
import { Engine } from './engine';
import { Gallery } from './gallery';
import { saveLook } from './looks';
import { PropertiesView } from './properties-view';
import { type Source, type SourceName, listCameras, openBalloons, openCamera, openFile, openPortrait } from './sources';
import { Stage } from './stage';
import { setUpTheme } from './theme';
import { Thumbnails } from './thumbnails';

const kFirstLook = 'sketch-2';

const compiled = compile({});
const loaded = loadCascade();
setUpTheme();
const catalogue = makeCatalogue();
const chain = new Chain();
const stage = new Stage();
const module = await compiled;
const cascade = await loaded;
const engine = new Engine(stage.before, stage.after, { wasm: module, cascade });
const thumbnails = new Thumbnails(stage.before);
const chainView = new ChainView(chain, thumbnails);
new PropertiesView(catalogue, chain);
const gallery = new Gallery(catalogue, chain, thumbnails, chainView.target);

// ---- the picture ------------------------------------------------------------------------------------------------

let reopen: () => Promise<Source> = openPortrait;
let opening = 0;
let recording: Recording | undefined;

/** Shows another source. On an error the present one goes on, and a message says why. */
async function show(open: () => Promise<Source>): Promise<boolean> {
  const mine = ++opening;
  try {
    const source = await open();
    if (mine !== opening) {
      source.stop();
      return false;
    }
    reopen = open;
    await engine.play(source);
    return true;
  } catch (error) {
    if (mine === opening) toast(explain(error));
    return false;
  }
}

function explain(error: unknown): string {
  if (!(error instanceof Error)) return 'That did not work.';
  switch (error.name) {
    case 'NotAllowedError':
      return 'The camera is blocked. Allow it in the browser’s address bar, then try again.';
    case 'NotFoundError':
    case 'OverconstrainedError':
      return 'No camera was found.';
    case 'NotReadableError':
      return 'Another program uses the camera.';
    default:
      return error.message;
  }
}

async function showCamera(deviceId?: string): Promise<void> {
  if (!(await show(() => openCamera(deviceId)))) return;
  stage.mirror(engine.source?.facing ?? false);
  await showCameras();
}

async function showCameras(): Promise<void> {
  const cameras = await listCameras();
  const choice = byId<HTMLSelectElement>('camera-choice');
  const now = engine.source?.track.getSettings().deviceId;
  choice.replaceChildren(
    ...cameras.map(({ deviceId, label }, at) =>
      make('option', { value: deviceId, selected: deviceId === now }, label || `Camera ${at + 1}`),
    ),
  );
  choice.hidden = engine.source?.name !== 'camera' || cameras.length < 2;
}

async function showOther(open: () => Promise<Source>): Promise<void> {
  if (await show(open)) stage.mirror(false);
}

engine.addEventListener('source', () => {
  const name = engine.source?.name;
  const buttons: Record<SourceName, string> = {
    camera: 'use-camera',
    portrait: 'use-portrait',
    balloons: 'use-balloons',
    file: 'use-file',
  };
  for (const [source, id] of Object.entries(buttons)) press(byId(id), source === name);
  byId('start-camera').hidden = name === 'camera';
  if (name !== 'camera') byId('camera-choice').hidden = true;
  thumbnails.start({ module, cascade });
  thumbnails.renew();
});

engine.addEventListener('stats', () => {
  const { framesPerSecond, milliseconds } = engine.stats!;
  byId('fps').textContent = framesPerSecond.toFixed(0);
  byId('ms').textContent = milliseconds.toFixed(1);
  thumbnails.yieldTo(framesPerSecond / (engine.source?.track.getSettings().frameRate ?? 30));
});

engine.addEventListener('lost', () => {
  toast('The camera is gone.');
  void showOther(openPortrait);
});

engine.addEventListener('trouble', (event) => {
  toast((event as CustomEvent<string>).detail);
});

for (const id of ['use-camera', 'start-camera']) {
  byId(id).addEventListener('click', () => {
    void showCamera();
  });
}
byId('use-portrait').addEventListener('click', () => {
  void showOther(openPortrait);
});
byId('use-balloons').addEventListener('click', () => {
  void showOther(() => Promise.resolve(openBalloons()));
});
byId('camera-choice').addEventListener('change', ({ target }) => {
  void showCamera((target as HTMLSelectElement).value);
});
if (isSecureContext) {
  navigator.mediaDevices.addEventListener('devicechange', () => {
    if (engine.source?.name === 'camera') void showCameras();
  });
}

const fileInput = byId<HTMLInputElement>('file');
byId('use-file').addEventListener('click', () => {
  fileInput.click();
});
fileInput.addEventListener('change', () => {
  const file = fileInput.files?.[0];
  fileInput.value = '';
  if (file) void showOther(() => openFile(file));
});
for (const kind of ['dragenter', 'dragover'] as const) {
  addEventListener(kind, (event) => {
    if (!event.dataTransfer?.types.includes('Files')) return;
    event.preventDefault();
    byId('drop-hint').hidden = false;
  });
}
addEventListener('dragleave', ({ relatedTarget }) => {
  if (!relatedTarget) byId('drop-hint').hidden = true;
});
addEventListener('drop', (event) => {
  event.preventDefault();
  byId('drop-hint').hidden = true;
  const file = event.dataTransfer?.files[0];
  if (file) void showOther(() => openFile(file));
});

// Hidden, the page does no work and the camera is off, unless it records.
document.addEventListener('visibilitychange', () => {
  if (recording) return;
  if (document.hidden) {
    ++opening;
    engine.pause();
  } else void show(reopen);
});

// ---- controls ---------------------------------------------------------------------------------------------------

byId('compare').addEventListener('click', () => {
  stage.compare(!stage.comparing);
});
byId('mirror').addEventListener('click', () => {
  stage.mirror(!stage.mirrored);
});
byId('full').addEventListener('click', () => {
  void stage.toggleFullScreen().catch(() => {
    toast('This browser allows no full screen here.');
  });
});
byId('snapshot').addEventListener('click', () => {
  void savePicture(stage.after, stage.mirrored).then((saved) => {
    if (!saved) return;
    if (!reducedMotion.matches) {
      byId('screen').animate({ opacity: [0.9, 0] }, { duration: 400, pseudoElement: '::after' });
    }
    announce('Picture saved');
  });
});

byId('record').addEventListener('click', () => {
  void toggleRecording();
});

async function toggleRecording(): Promise<void> {
  const note = byId('recording');
  if (recording) {
    const ended = recording;
    recording = undefined;
    press(byId('record'), false);
    note.hidden = true;
    await ended.stop();
    announce('Recording saved');
    return;
  }
  if (!engine.output) return;
  try {
    recording = new Recording(stage.after, engine.output, stage.mirrored);
  } catch {
    toast('This browser cannot record.');
    return;
  }
  press(byId('record'), true);
  note.hidden = false;
  announce('Recording');
  const count = () => {
    if (!recording) return;
    const seconds = Math.floor(recording.seconds);
    note.textContent = `${Math.floor(seconds / 60)}:${String(seconds % 60).padStart(2, '0')}`;
    setTimeout(count, 250);
  };
  count();
}

const kKeys: Record<string, string> = { c: 'compare', m: 'mirror', s: 'snapshot', r: 'record', f: 'full' };

addEventListener('keydown', (event) => {
  const target = event.target instanceof Element ? event.target : undefined;
  if (document.querySelector('dialog[open]') || target?.matches('input[type=search], input[type=text], select')) return;
  const key = event.key.toLowerCase();
  if ((event.ctrlKey || event.metaKey) && key === 'z') chain.undo();
  else if (event.ctrlKey || event.metaKey || event.altKey) return;
  else if (key === '/') byId('search').focus();
  else if (kKeys[key]) byId(kKeys[key]).click();
  else return;
  event.preventDefault();
});

// ---- the chain --------------------------------------------------------------------------------------------------

byId('undo').addEventListener('click', () => {
  chain.undo();
});
byId('stack').addEventListener('click', () => {
  byId('gallery').scrollIntoView({ behavior: reducedMotion.matches ? 'instant' : 'smooth' });
  byId('search').focus({ preventScroll: true });
});
byId('clear').addEventListener('click', () => {
  chain.replace([]);
});

const saveDialog = byId<HTMLDialogElement>('save-dialog');
const saveName = byId<HTMLInputElement>('save-name');
byId('save').addEventListener('click', () => {
  saveName.value = chain.links
    .map(({ effect }) => effect.name)
    .join(' + ')
    .slice(0, saveName.maxLength);
  saveDialog.showModal();
  saveName.select();
});
byId('save-cancel').addEventListener('click', () => {
  saveDialog.close();
});
byId('save-form').addEventListener('submit', () => {
  const name = saveName.value.trim();
  if (!name) return;
  toast(
    saveLook({ name, text: print(chain.links) })
      ? `“${name}” is among your looks.`
      : 'This browser keeps nothing here.',
  );
  gallery.showOwn();
});

const aboutDialog = byId<HTMLDialogElement>('about');
byId('help').addEventListener('click', () => {
  aboutDialog.showModal();
});

/** The chain of the page's address: "#fx=sepia+rain:drop-size=9". */
function chainOfAddress(): string | undefined {
  const found = /^#fx=(.*)$/.exec(location.hash)?.[1];
  try {
    return found === undefined ? undefined : decodeURIComponent(found);
  } catch {
    return undefined;
  }
}

function addressOfChain(): string {
  return `#fx=${encodeURIComponent(print(chain.links)).replace(/%(2B|3A|3D|2C)/g, decodeURIComponent)}`;
}

chain.addEventListener('change', () => {
  byId<HTMLButtonElement>('undo').disabled = !chain.canUndo;
  for (const id of ['save', 'clear']) byId<HTMLButtonElement>(id).disabled = chain.links.length === 0;
  history.replaceState(null, '', chain.links.length ? addressOfChain() : location.pathname + location.search);
  engine.follow(chain).catch((error: unknown) => {
    toast(explain(error));
  });
});

addEventListener('hashchange', () => {
  const text = chainOfAddress();
  if (text !== undefined && text !== print(chain.links)) chain.replace(parse(text, catalogue));
});

byId('share').addEventListener('click', () => {
  const url = new URL(addressOfChain(), location.href).href;
  navigator.clipboard.writeText(url).then(
    () => {
      toast('Link copied. It holds the effects and their settings, no picture.');
    },
    () => {
      toast(url);
    },
  );
});

// ---- start ------------------------------------------------------------------------------------------------------

chain.begin(parse(chainOfAddress() ?? kFirstLook, catalogue));
void show(openPortrait).then(() => {
  if ('serviceWorker' in navigator) {
    void navigator.serviceWorker.register('service-worker.js').catch(() => {
      /* it works without */
    });
  }
});
