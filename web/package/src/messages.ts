// What window and worker say to each other.
import type { MakeNoise } from './dataFiles.js';
import type { Size } from './engine.js';
import type { PostedFrame } from './frames.js';
import type { PipelineStats } from './pump.js';
import type { PipelineInit } from './pipeline.js';
import type { ErrorCode, PropertyValue } from './types.js';

/** Calls with an answer, and their parameters. */
export type Call =
  | { readonly name: 'create'; readonly init: PipelineInit }
  | { readonly name: 'setEffects'; readonly text: string; readonly size: Size | null }
  | { readonly name: 'setProperty'; readonly property: string; readonly value: PropertyValue }
  | { readonly name: 'setOutput'; readonly stream: WritableStream<VideoFrame> }
  | { readonly name: 'setInput'; readonly stream: ReadableStream<VideoFrame> }
  /** Answered by whether the worker has tracks; the others are for workers that do. */
  | { readonly name: 'hasStreams' }
  /** Answered by the output track. */
  | { readonly name: 'createTrack' }
  | { readonly name: 'setTrack'; readonly track: MediaStreamTrack }
  | { readonly name: 'stop' };

export type ToWorker =
  | MakeNoise
  | { readonly type: 'call'; readonly number: number; readonly call: Call }
  | { readonly type: 'setEnabled'; readonly isEnabled: boolean }
  | { readonly type: 'frame'; readonly frame: PostedFrame }
  /** Ask for a tick about this often, in milliseconds; 0: no more. */
  | { readonly type: 'setTicks'; readonly interval: number };

export type Answer = MediaStreamTrack | boolean | undefined;

/** An error as it travels; classes do not. */
export interface PostedError {
  readonly code: ErrorCode;
  readonly message: string;
}

export type FromWorker =
  | { readonly type: 'answer'; readonly number: number; readonly value: Answer }
  | { readonly type: 'failure'; readonly number: number; readonly error: PostedError }
  | { readonly type: 'stats'; readonly stats: PipelineStats }
  | { readonly type: 'error'; readonly error: PostedError }
  | { readonly type: 'frame'; readonly frame: PostedFrame }
  | { readonly type: 'tick' };
