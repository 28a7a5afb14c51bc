// Short forms for building and finding elements.

type Attributes = Record<string, string | number | boolean | undefined>;

/** The element with this id, which the page has for certain. */
// eslint-disable-next-line @typescript-eslint/no-unnecessary-type-parameters -- the caller knows the kind of element
export function byId<T extends HTMLElement = HTMLElement>(id: string): T {
  const found = document.getElementById(id);
  if (!found) throw new Error(`no element #${id}`);
  return found as T;
}

/** A new element. An attribute that is false or undefined is left out; true gives an empty one, and both a word in ARIA's. */
export function make<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Attributes = {},
  ...children: (Node | string)[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith('aria-')) element.setAttribute(name, String(value));
    else if (value !== false && value !== undefined) element.setAttribute(name, value === true ? '' : String(value));
  }
  element.append(...children);
  return element;
}

const kSvg = 'http://www.w3.org/2000/svg';

/** One of the page's icons. */
export function icon(name: string): SVGSVGElement {
  const svg = document.createElementNS(kSvg, 'svg');
  svg.setAttribute('aria-hidden', 'true');
  const use = document.createElementNS(kSvg, 'use');
  use.setAttribute('href', `#i-${name}`);
  svg.append(use);
  return svg;
}

export function button(attributes: Attributes, ...children: (Node | string)[]): HTMLButtonElement {
  return make('button', { type: 'button', ...attributes }, ...children);
}

export function press(element: Element, pressed: boolean): void {
  element.setAttribute('aria-pressed', String(pressed));
}

/** Makes screen readers say what happened. */
export function announce(text: string): void {
  byId('announcer').textContent = text;
}

/** Shows a message for some seconds, with one action where there is one. */
export function toast(text: string, action?: { label: string; run: () => void }): void {
  const note = make('div', { class: 'toast' }, make('span', {}, text));
  if (action) {
    const go = button({ class: 'quiet' }, action.label);
    go.addEventListener('click', () => {
      action.run();
      note.remove();
    });
    note.append(go);
  }
  byId('toasts').replaceChildren(note);
  setTimeout(() => {
    note.remove();
  }, 6000);
}

export const reducedMotion = matchMedia('(prefers-reduced-motion: reduce)');
