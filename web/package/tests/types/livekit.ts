// The processor for LiveKit is one of LiveKit's.
import type { LocalVideoTrack, Track, TrackProcessor, VideoProcessorOptions } from 'livekit-client';

import { SpecialEffects } from 'specialeffects/livekit';

const processor: TrackProcessor<Track.Kind.Video, VideoProcessorOptions> = new SpecialEffects({ effects: 'noir' });

export async function use(track: LocalVideoTrack): Promise<boolean> {
  await track.setProcessor(new SpecialEffects({ effects: ['sepia'] }));
  return SpecialEffects.isSupported && SpecialEffects.hasModernApiSupport && processor.name !== '';
}
