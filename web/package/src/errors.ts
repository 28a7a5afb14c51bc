import { isTrap } from './library.js';
import { SpecialEffectsError } from './types.js';

/** Any error as one of the package's. */
export function asError(error: unknown): SpecialEffectsError {
  if (error instanceof SpecialEffectsError) return error;
  const message = error instanceof Error ? error.message : String(error);
  return isTrap(error)
    ? new SpecialEffectsError('trap', `the WebAssembly instance broke: ${message}`, { cause: error })
    : new SpecialEffectsError('failed', message, { cause: error });
}
