// What TypeScript's types for windows leave out: tracks as streams of frames, and back.

interface TrackProcessor {
  readonly readable: ReadableStream<VideoFrame>;
}

/** A track that is fed by a stream: MediaStreamTrackGenerator. */
export interface TrackGenerator extends MediaStreamTrack {
  readonly writable: WritableStream<VideoFrame>;
}

/** The same in a worker: VideoTrackGenerator. */
interface WorkerTrackGenerator {
  readonly writable: WritableStream<VideoFrame>;
  readonly track: MediaStreamTrack;
}

interface BreakoutBox {
  readonly MediaStreamTrackProcessor?: new (init: {
    track: MediaStreamTrack;
    maxBufferSize?: number;
  }) => TrackProcessor;
  readonly MediaStreamTrackGenerator?: new (init: { kind: 'video' }) => TrackGenerator;
  readonly VideoTrackGenerator?: new () => WorkerTrackGenerator;
}

const scope = globalThis as BreakoutBox;

/** Whether this window or worker has both directions. */
export const hasStreams = (): boolean =>
  scope.MediaStreamTrackProcessor !== undefined &&
  (scope.MediaStreamTrackGenerator !== undefined || scope.VideoTrackGenerator !== undefined);

/** Whether tracks can be made in this window. */
export const hasWindowStreams = (): boolean => hasStreams() && scope.MediaStreamTrackGenerator !== undefined;

/** The frames of a track. One is kept for the reader: the newest. */
export function framesOf(track: MediaStreamTrack): ReadableStream<VideoFrame> {
  if (!scope.MediaStreamTrackProcessor) throw new Error('no MediaStreamTrackProcessor');
  return new scope.MediaStreamTrackProcessor({ track, maxBufferSize: 1 }).readable;
}

/** A new track of the frames that are written. */
export function createGenerator(): TrackGenerator {
  if (!scope.MediaStreamTrackGenerator) throw new Error('no MediaStreamTrackGenerator');
  return new scope.MediaStreamTrackGenerator({ kind: 'video' });
}

/** The same in a worker. */
export function createWorkerGenerator(): WorkerTrackGenerator {
  if (!scope.VideoTrackGenerator) throw new Error('no VideoTrackGenerator');
  return new scope.VideoTrackGenerator();
}
