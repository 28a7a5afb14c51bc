// What effects there are, as the gallery shows them: by kind, the variants of one effect together.

import { type EffectInfo, type PresetInfo, type PropertyInfo, listEffects, listPresets } from 'specialeffects';

export type Effect = EffectInfo;
export type Property = PropertyInfo;

/** An effect and its variants, which share a name. */
export interface Family {
  readonly name: string;
  readonly kind: string;
  readonly effects: readonly Effect[];
}

export interface Catalogue {
  readonly effects: readonly Effect[];
  readonly byId: ReadonlyMap<string, Effect>;
  readonly families: readonly Family[];
  readonly presets: readonly PresetInfo[];
}

/** The kinds in the order of the gallery, and what people call them. */
export const kKinds: readonly (readonly [string, string])[] = [
  ['drawing', 'Drawing'],
  ['tone', 'Tone'],
  ['animated', 'Animated'],
  ['distortion', 'Distortion'],
  ['time', 'Time'],
  ['faces', 'Faces'],
];

export function makeCatalogue(): Catalogue {
  const effects = listEffects();
  const names = new Map<string, Effect[]>();
  for (const effect of effects) {
    const key = `${effect.kind} ${effect.name}`;
    names.set(key, [...(names.get(key) ?? []), effect]);
  }
  const families = [...names.values()]
    .map((members): Family => {
      const sorted = members.toSorted((a, b) => (a.variant ?? 0) - (b.variant ?? 0));
      return { name: members[0]!.name, kind: members[0]!.kind, effects: sorted };
    })
    .sort((a, b) => a.name.localeCompare(b.name));
  return { effects, byId: new Map(effects.map((effect) => [effect.id, effect])), families, presets: listPresets() };
}

/** Whether all words are in what is known of an effect or a preset. */
export function matches(words: readonly string[], ...texts: string[]): boolean {
  const text = texts.join(' ').toLowerCase();
  return words.every((word) => text.includes(word));
}

export function wordsOf(query: string): string[] {
  return query.toLowerCase().split(/\s+/).filter(Boolean);
}

/** A value in the form that libsfx writes, or undefined if the text is not a value of the property. Clamps numbers. */
export function valueOf(property: Property, text: string): string | undefined {
  const word = text.toLowerCase();
  switch (property.type) {
    case 'integer':
      return /^-?\d{1,9}$/.test(word) ? String(clamped(property, Number(word))) : undefined;
    case 'boolean': {
      const named = property.choices.find(({ id }) => id === word);
      return named ? String(named.value !== 0) : /^(true|false)$/.test(word) ? word : undefined;
    }
    case 'color':
      return /^#[0-9a-f]{6}$/.test(word) ? word : undefined;
    case 'choice': {
      if (property.choices.some(({ id }) => id === word)) return word;
      return /^\d{1,4}$/.test(word) ? String(clamped(property, Number(word))) : undefined;
    }
  }
}

export function startOf(property: Property): string {
  const text = String(property.start);
  return valueOf(property, text) ?? text;
}

function clamped({ minimum, maximum }: Property, value: number): number {
  return Math.max(minimum, Math.min(maximum, value));
}
