// The effects that are applied, one after the other, and their history.
//
// As a text a chain looks like libsfx's, "sepia+rain:drop-size=9"; an effect that is switched off has "!" before it.

import { type Catalogue, type Effect, valueOf } from './catalogue';

export const kMostLinks = 16;

export interface Link {
  readonly effect: Effect;
  /** What has been set, as libsfx writes it: "9", "true", "#0b3d91", "patches". */
  readonly values: Readonly<Record<string, string>>;
  readonly on: boolean;
}

export type Links = readonly Link[];

/** A link without its switch. */
export function settingsText(link: Link): string {
  const settings = Object.entries(link.values).map(([id, value]) => `${id}=${value}`);
  return settings.length ? `${link.effect.id}:${settings.join(',')}` : link.effect.id;
}

export function print(links: Links): string {
  return links.map((link) => (link.on ? '' : '!') + settingsText(link)).join('+');
}

/** The part of a chain that is applied, as libsfx takes it; "" when that is nothing. */
export function applied(links: Links): string {
  return links
    .filter((link) => link.on)
    .map(settingsText)
    .join('+');
}

/** Reads a chain. What is unknown or malformed is left out: a text may come from a link that someone sent. */
export function parse(text: string, catalogue: Catalogue): Link[] {
  const links: Link[] = [];
  for (const part of text.split('+')) {
    const [, off, id, settings = ''] = /^\s*(!?)([^:]*)(?::(.*))?$/s.exec(part) ?? [];
    const effect = catalogue.byId.get(id?.trim() ?? '');
    if (!effect || links.length === kMostLinks) continue;
    const values: Record<string, string> = {};
    for (const setting of settings.split(',')) {
      const [name, value] = setting.split('=', 2).map((word) => word.trim());
      const property = effect.properties.find((each) => each.id === name);
      const valid = property && value !== undefined ? valueOf(property, value) : undefined;
      if (property && valid !== undefined) values[property.id] = valid;
    }
    links.push({ effect, values, on: !off });
  }
  return links;
}

const kMostSteps = 100;

/** The page's chain. Every change is one step of the history, except that a slider's many changes are one. */
export class Chain extends EventTarget {
  #links: Links = [];
  #selected = -1;
  #past: Links[] = [];
  #merging = '';

  get links(): Links {
    return this.#links;
  }
  /** Index of the link whose properties are shown, or -1. */
  get selected(): number {
    return this.#selected;
  }
  get canUndo(): boolean {
    return this.#past.length > 0;
  }

  /** Starts with these; the history is empty. */
  begin(links: Links): void {
    this.#links = links;
    this.#selected = links.length - 1;
    this.dispatchEvent(new Event('change'));
  }

  replace(links: Links, selected = links.length - 1): void {
    this.#change(links, selected);
  }

  add(link: Link, at = this.#links.length): boolean {
    if (this.#links.length >= kMostLinks) return false;
    this.#change(this.#links.toSpliced(at, 0, link), at);
    return true;
  }

  remove(at: number): void {
    const links = this.#links.toSpliced(at, 1);
    const selected = at < this.#selected ? this.#selected - 1 : this.#selected;
    this.#change(links, Math.min(selected, links.length - 1));
  }

  move(from: number, to: number): void {
    const link = this.#links[from];
    const goal = Math.max(0, Math.min(to, this.#links.length - 1));
    if (!link || goal === from) return;
    this.#change(this.#links.toSpliced(from, 1).toSpliced(goal, 0, link), goal);
  }

  setOn(at: number, on: boolean): void {
    this.#edit(at, { on });
  }

  setEffect(at: number, effect: Effect): void {
    const old = this.#links[at]?.values ?? {};
    const values = Object.fromEntries(
      effect.properties.flatMap(({ id }) => {
        const value = old[id];
        return value === undefined ? [] : [[id, value]];
      }),
    );
    this.#edit(at, { effect, values });
  }

  set(at: number, property: string, value: string): void {
    const link = this.#links[at];
    if (link) this.#edit(at, { values: { ...link.values, [property]: value } }, `${at} ${property}`);
  }

  reset(at: number): void {
    this.#edit(at, { values: {} });
  }

  select(at: number): void {
    if (at === this.#selected) return;
    this.#selected = at;
    this.#merging = '';
    this.dispatchEvent(new Event('select'));
  }

  undo(): void {
    const links = this.#past.pop();
    if (!links) return;
    this.#links = links;
    this.#selected = Math.min(Math.max(this.#selected, 0), links.length - 1);
    this.#merging = '';
    this.dispatchEvent(new Event('change'));
  }

  #edit(at: number, part: Partial<Link>, merging = ''): void {
    const link = this.#links[at];
    if (link) this.#change(this.#links.with(at, { ...link, ...part }), this.#selected, merging);
  }

  #change(links: Links, selected: number, merging = ''): void {
    if (!merging || merging !== this.#merging) {
      this.#past.push(this.#links);
      if (this.#past.length > kMostSteps) this.#past.shift();
    }
    this.#merging = merging;
    this.#links = links;
    this.#selected = selected;
    this.dispatchEvent(new Event('change'));
  }
}
