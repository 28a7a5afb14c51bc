// The worker of a processor.
import { createWorkerGenerator, framesOf, hasStreams } from './breakoutBox.js';
import { dataFilesFrom, makeNoise } from './dataFiles.js';
import { asError } from './errors.js';
import { fromPosted, toPosted } from './frames.js';
import type { Answer, Call, FromWorker, PostedError, ToWorker } from './messages.js';
import { Pipeline, type PipelineInit } from './pipeline.js';

/** The part of a worker's scope that TypeScript's types for windows lack. */
interface WorkerScope {
  postMessage(message: unknown, transfer?: Transferable[]): void;
  onmessage: ((event: MessageEvent<ToWorker>) => void) | null;
  readonly location: { readonly href: string };
}
const scope = globalThis as unknown as WorkerScope;

let pipeline: Pipeline | null = null;
let track: MediaStreamTrack | null = null;
let ticks: ReturnType<typeof setInterval> | undefined;

function post(message: FromWorker, transfer: Transferable[] = []): void {
  scope.postMessage(message, transfer);
}

function posted(error: unknown): PostedError {
  const { code, message } = asError(error);
  return { code, message };
}

function createPipeline(init: PipelineInit): Promise<Pipeline> {
  // A second worker of this script makes the noise of Clouds.
  const createWorker = () => new Worker(scope.location.href, { type: 'module', name: 'specialeffects-noise' });
  return Pipeline.create(init, dataFilesFrom(init.cascade, createWorker), {
    onStats: (stats) => {
      post({ type: 'stats', stats });
    },
    onError: (error) => {
      post({ type: 'error', error: posted(error) });
    },
    onFrame: (frame) => {
      const { message, transfer } = toPosted(frame);
      post({ type: 'frame', frame: message }, transfer);
    },
  });
}

/** Carries out a call. */
async function run(call: Call): Promise<Answer> {
  if (call.name === 'create') {
    pipeline = await createPipeline(call.init);
    return undefined;
  }
  if (pipeline === null) throw new Error('there is no pipeline');
  switch (call.name) {
    case 'hasStreams':
      return hasStreams();
    case 'setEffects':
      await pipeline.setEffects(call.text, call.size);
      break;
    case 'setProperty':
      await pipeline.setProperty(call.property, call.value);
      break;
    case 'setOutput':
      pipeline.setOutput(call.stream);
      break;
    case 'setInput':
      pipeline.setInput(call.stream);
      break;
    case 'createTrack': {
      const generator = createWorkerGenerator();
      pipeline.setOutput(generator.writable);
      return generator.track;
    }
    case 'setTrack':
      pipeline.setInput(framesOf(call.track));
      track?.stop();
      track = call.track;
      break;
    case 'stop':
      await pipeline.stop();
      pipeline = null;
      track?.stop();
      track = null;
      break;
  }
  return undefined;
}

async function answer(number: number, call: Call): Promise<void> {
  try {
    const value = await run(call);
    post({ type: 'answer', number, value }, typeof value === 'object' ? [value] : []);
  } catch (error) {
    post({ type: 'failure', number, error: posted(error) });
  }
}

scope.onmessage = ({ data }) => {
  switch (data.type) {
    case 'makeNoise':
      makeNoise(data.module).then(
        (noise) => {
          scope.postMessage(noise, noise === null ? [] : [noise.buffer]);
        },
        () => {
          scope.postMessage(null);
        },
      );
      break;
    case 'call':
      void answer(data.number, data.call);
      break;
    case 'setEnabled':
      pipeline?.setEnabled(data.isEnabled);
      break;
    case 'frame': {
      const frame = fromPosted(data.frame);
      if (pipeline === null) frame.close();
      else pipeline.push(frame);
      break;
    }
    case 'setTicks':
      clearInterval(ticks);
      if (data.interval > 0) {
        ticks = setInterval(() => {
          post({ type: 'tick' });
        }, data.interval);
      }
      break;
  }
};
