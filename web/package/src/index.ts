// Live video effects: a video track in, a video track with effects out.
import { effects, presets } from './generated/list.js';
import type { EffectInfo, PresetInfo } from './types.js';

export { toEffectText } from './effectText.js';
export { createProcessor, isSupported } from './processor.js';
export * from './types.js';

/** All effects, in a constant order. Nothing is loaded for it. */
export const listEffects = (): readonly EffectInfo[] => effects;

/** All presets. */
export const listPresets = (): readonly PresetInfo[] => presets;
