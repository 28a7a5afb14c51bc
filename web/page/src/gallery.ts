// The gallery: all effects and presets as live pictures, by kind, with search.

import { type Catalogue, type Effect, type Family, kKinds, matches, wordsOf } from './catalogue';
import { type Chain, type Link, applied, parse, print } from './chain';
import { announce, button, byId, icon, make, press, toast } from './dom';
import { startDrag } from './drag';
import { type Look, deleteLook, ownLooks } from './looks';
import type { Thumbnails } from './thumbnails';

interface Card {
  readonly item: HTMLLIElement;
  readonly face: HTMLButtonElement;
  /** What is searched. */
  readonly texts: readonly string[];
  readonly effect?: Effect;
  /** The text of a preset's chain, as it would print. */
  readonly look?: string;
  readonly family?: Family;
}

interface Shelf {
  readonly kind: string;
  readonly section: HTMLElement;
  readonly list: HTMLUListElement;
  cards: Card[];
}

export class Gallery {
  readonly #catalogue: Catalogue;
  readonly #chain: Chain;
  readonly #thumbnails: Thumbnails;
  readonly #dropList: HTMLElement;
  readonly #shelves: Shelf[] = [];
  readonly #open = new Set<Family>();
  readonly #search = byId<HTMLInputElement>('search');
  #kind = '';

  constructor(catalogue: Catalogue, chain: Chain, thumbnails: Thumbnails, dropList: HTMLElement) {
    this.#catalogue = catalogue;
    this.#chain = chain;
    this.#thumbnails = thumbnails;
    this.#dropList = dropList;
    this.#addKinds();
    for (const [kind, title] of [['own', 'Your looks'], ['looks', 'Looks'], ...kKinds] as const) {
      this.#addShelf(kind, title);
    }
    this.#search.addEventListener('input', () => {
      this.#filter();
    });
    this.#search.addEventListener('keydown', (event) => {
      if (event.key === 'ArrowDown' || event.key === 'Enter') {
        byId('shelves').querySelector<HTMLElement>('li:not([hidden]) > .face')?.focus();
        event.preventDefault();
      }
    });
    byId('shelves').addEventListener('keydown', (event) => {
      this.#walk(event);
    });
    chain.addEventListener('change', () => {
      this.#mark();
    });
    this.showOwn();
    this.#filter();
  }

  /** Shows the user's own looks anew. */
  showOwn(): void {
    const shelf = this.#shelves.find(({ kind }) => kind === 'own')!;
    for (const { item } of shelf.cards) this.#thumbnails.forget(item.querySelector('canvas')!);
    shelf.cards = ownLooks().map((look) => this.#lookCard(look.name, '', look.text, look));
    shelf.list.replaceChildren(...shelf.cards.map(({ item }) => item));
    this.#filter();
    this.#mark();
  }

  #addKinds(): void {
    const kinds = [['', 'All'], ['looks', 'Looks'], ...kKinds] as const;
    for (const [kind, title] of kinds) {
      const choose = button({ 'aria-pressed': kind === '', 'data-kind': kind }, title);
      choose.addEventListener('click', () => {
        this.#kind = kind;
        for (const each of byId('kinds').children) press(each, each === choose);
        this.#filter();
      });
      byId('kinds').append(choose);
    }
  }

  #addShelf(kind: string, title: string): void {
    const list = make('ul', { class: 'cards' });
    const section = make(
      'section',
      { class: 'shelf', 'aria-label': title, 'data-kind': kind },
      make('h2', {}, title),
      list,
    );
    const shelf: Shelf = { kind, section, list, cards: [] };
    if (kind === 'looks') {
      shelf.cards = this.#catalogue.presets.map((preset) =>
        this.#lookCard(preset.title, preset.description, preset.effects),
      );
    } else {
      shelf.cards = this.#catalogue.families
        .filter((family) => family.kind === kind)
        .flatMap((family) => family.effects.map((effect) => this.#effectCard(family, effect)));
    }
    list.append(...shelf.cards.map(({ item }) => item));
    this.#shelves.push(shelf);
    byId('shelves').append(section);
  }

  #card(title: string, description: string, text: string): { item: HTMLLIElement; face: HTMLButtonElement } {
    const canvas = make('canvas', { 'aria-hidden': 'true' });
    const face = button(
      { class: 'face', 'aria-pressed': 'false', title: description || undefined },
      canvas,
      make('span', { class: 'title' }, title),
    );
    const item = make('li', { class: 'card', 'data-text': text }, face);
    this.#thumbnails.show(canvas, text);
    return { item, face };
  }

  #lookCard(title: string, description: string, text: string, own?: Look): Card {
    const links = parse(text, this.#catalogue);
    const { item, face } = this.#card(title, description, applied(links));
    face.addEventListener('click', () => {
      this.#take(links, title, print(links) === print(this.#chain.links));
    });
    if (own) {
      const remove = button({ class: 'corner', 'aria-label': `Delete the look ${title}` }, icon('close'));
      remove.addEventListener('click', () => {
        deleteLook(own.name);
        this.showOwn();
        announce(`${title} deleted`);
      });
      item.append(remove);
    }
    return { item, face, texts: [title, description, text, 'look preset'], look: print(links) };
  }

  #effectCard(family: Family, effect: Effect): Card {
    const { item, face } = this.#card(effect.title, effect.description, effect.id);
    const link: Link = { effect, values: {}, on: true };
    face.addEventListener('click', (event) => {
      if (event.shiftKey) this.#stack(link);
      else this.#take([link], effect.title, this.#isAlone(effect));
    });
    face.addEventListener('keydown', (event) => {
      if (event.key !== 'Enter' || !event.shiftKey) return;
      event.preventDefault();
      this.#stack(link);
    });
    face.addEventListener('pointerdown', (event) => {
      startDrag(event, face, {
        list: this.#dropList,
        done: (at) => {
          this.#chain.add(link, at);
        },
      });
    });
    const add = button(
      { class: 'corner add', 'aria-label': `Add ${effect.title} to your effects`, title: 'Add to your effects' },
      icon('plus'),
    );
    add.addEventListener('click', () => {
      this.#stack(link);
    });
    item.append(add);
    if (family.effects.length > 1 && effect === family.effects[0]) {
      const more = button(
        { class: 'more', 'aria-expanded': 'false', 'aria-label': `All ${family.effects.length} of ${family.name}` },
        make('span', {}, String(family.effects.length)),
        icon('down'),
      );
      more.addEventListener('click', () => {
        if (!this.#open.delete(family)) this.#open.add(family);
        more.setAttribute('aria-expanded', String(this.#open.has(family)));
        this.#filter();
      });
      item.append(more);
      item.classList.add('stacked');
    }
    return {
      item,
      face,
      effect,
      family,
      texts: [effect.title, effect.id, effect.description, effect.kind, ...effect.properties.map(({ name }) => name)],
    };
  }

  #isAlone(effect: Effect): boolean {
    return this.#chain.links.length === 1 && this.#chain.links[0]?.effect === effect;
  }

  /** Puts these in place of what there is; pressed again, takes them away. */
  #take(links: Link[], title: string, again: boolean): void {
    const lost = this.#chain.links.length;
    this.#chain.replace(again ? [] : links);
    announce(again ? `${title} removed` : `${title} applied`);
    if (!again && lost > 1) {
      toast(`${title} took the place of ${lost} effects.`, {
        label: 'Undo',
        run: () => {
          this.#chain.undo();
        },
      });
    }
  }

  #stack(link: Link): void {
    if (this.#chain.add(link)) announce(`${link.effect.title} added, ${this.#chain.links.length} effects`);
    else toast('That is as many effects as fit.');
  }

  /** Shows which effects are in use. */
  #mark(): void {
    const used = new Set(this.#chain.links.map((link) => link.effect));
    const now = print(this.#chain.links);
    for (const { cards } of this.#shelves) {
      for (const { face, effect, look } of cards) press(face, effect ? used.has(effect) : now !== '' && look === now);
    }
  }

  #filter(): void {
    const words = wordsOf(this.#search.value);
    let found = 0;
    for (const { kind, section, cards } of this.#shelves) {
      const here = !this.#kind || this.#kind === kind || (this.#kind === 'looks' && kind === 'own');
      let shown = 0;
      for (const { item, texts, effect, family } of cards) {
        const unfolded = !family || family.effects.length === 1 || this.#open.has(family);
        const first = effect === family?.effects[0];
        const visible = here && matches(words, ...texts) && (words.length > 0 || unfolded || first);
        item.hidden = !visible;
        item.classList.toggle('folded', !unfolded && !words.length);
        const title = item.querySelector('.title')!;
        if (effect) title.textContent = !unfolded && !words.length ? effect.name : effect.title;
        if (visible) ++shown;
      }
      section.hidden = shown === 0;
      found += shown;
    }
    const nothing = byId('nothing');
    nothing.hidden = found > 0;
    nothing.textContent = found ? '' : `No effect matches “${this.#search.value}”.`;
  }

  /** Arrow keys go from card to card, as they lie on the page. */
  #walk(event: KeyboardEvent): void {
    const face = event.target instanceof Element ? event.target.closest<HTMLElement>('.face') : null;
    const step = { ArrowLeft: -1, ArrowRight: 1, ArrowUp: 0, ArrowDown: 0, Home: -Infinity, End: Infinity }[event.key];
    if (!face || step === undefined || event.altKey || event.ctrlKey || event.metaKey) return;
    const faces = [...byId('shelves').querySelectorAll<HTMLElement>('li:not([hidden]) > .face')].filter(
      (each) => each.offsetParent,
    );
    event.preventDefault();
    (step ? along(faces, face, step) : across(faces, face, event.key === 'ArrowUp' ? -1 : 1))?.focus();
  }
}

function along(faces: HTMLElement[], from: HTMLElement, step: number): HTMLElement | undefined {
  return faces[Math.max(0, Math.min(faces.indexOf(from) + step, faces.length - 1))];
}

/** The nearest face in the row above or below. */
function across(faces: HTMLElement[], from: HTMLElement, direction: number): HTMLElement | undefined {
  const place = (face: HTMLElement) => face.getBoundingClientRect();
  const here = place(from);
  const beyond = faces.filter((face) => (place(face).top - here.top) * direction > 8);
  const cost = (face: HTMLElement) =>
    Math.abs(place(face).top - here.top) * 1000 + Math.abs(place(face).left - here.left);
  return beyond.sort((a, b) => cost(a) - cost(b))[0];
}
