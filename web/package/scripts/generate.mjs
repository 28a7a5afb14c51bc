// Writes src/generated from the lists of the program: node scripts/generate.mjs PROGRAM [FOLDER]
import { execFileSync } from 'node:child_process';
import { mkdirSync, writeFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { join } from 'node:path';

const [program, folder = fileURLToPath(new URL('../src/generated', import.meta.url))] = process.argv.slice(2);
if (program === undefined) throw new Error('usage: node scripts/generate.mjs PROGRAM [FOLDER]');

// Without the presets of the user.
const environment = { ...process.env, XDG_CONFIG_HOME: '/nonexistent' };
const ask = (...options) =>
  JSON.parse(execFileSync(program, ['list', '--json', ...options], { env: environment, encoding: 'utf8' }));

const quote = (text) => `'${text.replaceAll('\\', '\\\\').replaceAll("'", "\\'")}'`;
const union = (ids) => ids.map((id) => `\n  | ${quote(id)}`).join('');

// The start value in the form that PropertyValue has.
function start({ type, start }) {
  if (type === 'integer') return Number(start);
  if (type === 'boolean' && (start === 'true' || start === 'false')) return start === 'true';
  return start;
}

function typeOf(property) {
  if (property.choices.length > 0) {
    const names = property.choices.map((choice) => quote(choice.id)).join(' | ');
    return property.type === 'boolean' ? `boolean | ${names}` : `${names} | number`;
  }
  return { integer: 'number', boolean: 'boolean', color: 'string' }[property.type];
}

function rangeOf(property) {
  const values = property.choices.map((choice) => `\`${choice.id}\` (${choice.value}): ${choice.description}`);
  if (values.length > 0) return `${values.join('; ')}.`;
  if (property.type === 'integer') return `${property.minimum} to ${property.maximum}.`;
  return property.type === 'color' ? '`"#rrggbb"`.' : '';
}

function member(property) {
  const lines = [property.description, rangeOf(property), `Default: \`${JSON.stringify(start(property))}\`.`];
  const comment = lines.filter((line) => line !== '').map((line) => `     * ${line}\n`);
  return `    /**\n${comment.join('')}     */\n    ${quote(property.id)}?: ${typeOf(property)};\n`;
}

function effectMember(effect) {
  const members = effect.properties.map(member).join('');
  const type = members === '' ? 'NoProperties' : `{\n${members}  }`;
  return `  /** ${effect.title}: ${effect.description} */\n  ${quote(effect.id)}: ${type};\n`;
}

const effects = ask('--all').filter((effect) => 'properties' in effect);
const presets = ask('--presets').map((preset) => ({ ...preset, id: preset.id.replace('preset:', '') }));
const head = '// Written by scripts/generate.mjs from the list of effects.\n';

const types = `${head}
/** The ids of the effects. */
export type EffectId =${union(effects.map((effect) => effect.id))};

/** The ids of the presets. */
export type PresetId =${union(presets.map((preset) => preset.id))};

/** The properties of an effect that has none. */
export type NoProperties = Record<string, never>;

/** The properties of each effect. */
export interface EffectProperties {
${effects.map(effectMember).join('')}}
`;

const list = `${head}import type { EffectInfo, PresetInfo } from '../types.js';

export const effects: readonly EffectInfo[] = ${JSON.stringify(
  effects.map((effect) => ({
    id: effect.id,
    guid: effect.guid,
    name: effect.name,
    title: effect.title,
    kind: effect.kind,
    description: effect.description,
    variant: effect.variant,
    hasMemory: effect.hasMemory,
    moves: effect.moves,
    usesChance: effect.usesChance,
    usesTime: effect.usesTime,
    dataFile: effect.dataFile,
    properties: effect.properties.map((property) => ({
      id: property.id,
      name: property.name,
      description: property.description,
      type: property.type,
      minimum: property.minimum,
      maximum: property.maximum,
      start: start(property),
      choices: property.choices,
    })),
  })),
  null,
  1,
)};

export const presets: readonly PresetInfo[] = ${JSON.stringify(
  presets.map(({ id, title, description, effect }) => ({ id, title, description, effects: effect })),
  null,
  1,
)};
`;

mkdirSync(folder, { recursive: true });
writeFileSync(join(folder, 'effects.ts'), types);
writeFileSync(join(folder, 'list.ts'), list);
