import { type Effects, type Link, SpecialEffectsError } from './types.js';

/** The text that the library takes for these effects: `"rain:drop-size=9+sepia"`. Does not check names. */
export function toEffectText(effects: Effects): string {
  return typeof effects === 'string' ? effects : effects.map(linkText).join('+');
}

function linkText(link: Link): string {
  if (typeof link === 'string') return link;
  const settings = Object.entries<unknown>(link.properties ?? {})
    .filter(([, value]) => value !== undefined)
    .map(([property, value]) => `${property}=${valueText(value)}`);
  return settings.length === 0 ? link.id : `${link.id}:${settings.join(',')}`;
}

/** A value in the form that the library takes. */
export function valueText(value: unknown): string {
  if (typeof value === 'number' && Number.isFinite(value)) return String(Math.trunc(value));
  if (typeof value === 'boolean') return String(value);
  // Such a text would be read as more than one value.
  if (typeof value === 'string' && !/[+=]/.test(value)) return value;
  throw new SpecialEffectsError('value', `not a value of a property: ${String(value)}`);
}
