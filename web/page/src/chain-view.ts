// The chain under the picture: one item for each effect, to select, switch, move and remove.

import { type Chain, type Link } from './chain';
import { announce, button, byId, icon, make, press } from './dom';
import { type Drag, startDrag } from './drag';
import type { Thumbnails } from './thumbnails';

export class ChainView {
  readonly #chain: Chain;
  readonly #thumbnails: Thumbnails;
  readonly #list = byId('links');

  constructor(chain: Chain, thumbnails: Thumbnails) {
    this.#chain = chain;
    this.#thumbnails = thumbnails;
    chain.addEventListener('change', () => {
      this.#show();
    });
    chain.addEventListener('select', () => {
      this.#show();
    });
    this.#list.addEventListener('keydown', (event) => {
      this.#key(event);
    });
    this.#show();
  }

  /** Where effects are dropped. */
  get target(): HTMLElement {
    return this.#list;
  }

  #show(): void {
    const { links, selected } = this.#chain;
    const focused = [...this.#list.children].findIndex((item) => item.contains(document.activeElement));
    const part = document.activeElement?.className.split(' ')[0];
    while (this.#list.children.length > links.length) this.#drop(this.#list.lastElementChild!);
    links.forEach((link, at) => {
      const old = this.#list.children[at];
      if (old instanceof HTMLElement && old.dataset.effect === link.effect.id) return;
      const item = this.#item(link);
      if (old) {
        this.#thumbnails.forget(old.querySelector('canvas')!);
        old.replaceWith(item);
      } else this.#list.append(item);
    });
    links.forEach((link, at) => {
      const item = this.#list.children[at]!;
      item.classList.toggle('off', !link.on);
      item.querySelector('.pick')!.setAttribute('aria-expanded', String(at === selected));
      const toggle = item.querySelector('.toggle')!;
      press(toggle, link.on);
      toggle.querySelector('use')!.setAttribute('href', link.on ? '#i-eye' : '#i-eye-off');
    });
    if (focused >= 0 && !this.#list.contains(document.activeElement)) {
      const item = this.#list.children[Math.min(focused, links.length - 1)];
      (item?.querySelector<HTMLElement>(`.${part}`) ?? byId('search')).focus();
    }
    byId('chain-empty').hidden = links.length > 0;
  }

  #drop(item: Element): void {
    this.#thumbnails.forget(item.querySelector('canvas')!);
    item.remove();
  }

  #item({ effect }: Link): HTMLLIElement {
    const canvas = make('canvas', { 'aria-hidden': 'true' });
    const pick = button(
      { class: 'pick', 'aria-expanded': 'false', 'aria-controls': 'properties', title: effect.description },
      canvas,
      make('span', { class: 'title' }, effect.title),
    );
    const grip = make('span', { class: 'grip', 'aria-hidden': 'true', title: 'Drag to another place' }, icon('grip'));
    const toggle = button({ class: 'toggle', 'aria-label': `Apply ${effect.title}`, title: 'On or off' }, icon('eye'));
    const remove = button({ class: 'remove', 'aria-label': `Remove ${effect.title}`, title: 'Remove' }, icon('close'));
    const item = make(
      'li',
      { class: 'link', 'data-effect': effect.id },
      grip,
      pick,
      make('div', { class: 'buttons' }, toggle, remove),
    );
    const at = () => [...this.#list.children].indexOf(item);
    const drag: Drag = {
      list: this.#list,
      done: (to) => {
        const from = at();
        this.#chain.move(from, to > from ? to - 1 : to);
      },
    };
    pick.addEventListener('click', () => {
      this.#chain.select(at());
    });
    toggle.addEventListener('click', () => {
      this.#chain.setOn(at(), !this.#chain.links[at()]?.on);
    });
    remove.addEventListener('click', () => {
      this.#remove(at());
    });
    for (const handle of [grip, pick]) {
      handle.addEventListener('pointerdown', (event) => {
        startDrag(event, handle, drag);
      });
    }
    this.#thumbnails.show(canvas, effect.id);
    return item;
  }

  #remove(at: number): void {
    const link = this.#chain.links[at];
    this.#chain.remove(at);
    if (link) announce(`${link.effect.title} removed`);
  }

  #key(event: KeyboardEvent): void {
    const at = [...this.#list.children].findIndex((item) => item.contains(document.activeElement));
    if (at < 0) return;
    const step = { ArrowLeft: -1, ArrowUp: -1, ArrowRight: 1, ArrowDown: 1 }[event.key];
    if (step && event.altKey) {
      const to = Math.max(0, Math.min(at + step, this.#chain.links.length - 1));
      this.#chain.move(at, to);
      this.#focus(to);
      announce(`${this.#chain.links[to]?.effect.title ?? ''} is now number ${to + 1} of ${this.#chain.links.length}`);
    } else if (step) {
      this.#focus(at + step);
    } else if (event.key === 'Delete' || event.key === 'Backspace') {
      this.#remove(at);
    } else {
      return;
    }
    event.preventDefault();
  }

  #focus(at: number): void {
    this.#list.children[at]?.querySelector<HTMLElement>('.pick')?.focus();
  }
}
