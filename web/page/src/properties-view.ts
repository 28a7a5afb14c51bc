// The properties of the selected effect.

import { type Catalogue, type Effect, type Property, startOf } from './catalogue';
import type { Chain, Link } from './chain';
import { button, byId, icon, make } from './dom';

interface Control {
  readonly element: HTMLElement;
  show(value: string): void;
}

export class PropertiesView {
  readonly #catalogue: Catalogue;
  readonly #chain: Chain;
  readonly #panel = byId('properties');
  readonly #controls = new Map<string, Control>();
  #shown: Effect | undefined;
  #at = -1;

  constructor(catalogue: Catalogue, chain: Chain) {
    this.#catalogue = catalogue;
    this.#chain = chain;
    chain.addEventListener('change', () => {
      this.#show();
    });
    chain.addEventListener('select', () => {
      this.#show();
    });
    this.#show();
  }

  #show(): void {
    const link = this.#chain.links[this.#chain.selected];
    if (link?.effect !== this.#shown || this.#chain.selected !== this.#at) this.#build(link);
    this.#shown = link?.effect;
    this.#at = this.#chain.selected;
    if (!link) return;
    for (const property of link.effect.properties) {
      this.#controls.get(property.id)?.show(link.values[property.id] ?? startOf(property));
    }
    const reset = this.#panel.querySelector<HTMLButtonElement>('.reset');
    if (reset) reset.disabled = Object.keys(link.values).length === 0;
  }

  #build(link: Link | undefined): void {
    this.#controls.clear();
    this.#panel.replaceChildren();
    this.#panel.hidden = !link;
    if (!link) return;
    const { effect } = link;
    const head = make(
      'div',
      { class: 'properties-head' },
      make('h3', {}, effect.title),
      make('p', {}, effect.description),
    );
    const family = this.#catalogue.families.find(({ effects }) => effects.includes(effect));
    if (family && family.effects.length > 1) head.append(this.#variants(family.effects, effect));
    this.#panel.append(head);
    const fields = make('div', { class: 'fields' });
    for (const property of effect.properties) {
      const control = this.#control(property);
      this.#controls.set(property.id, control);
      fields.append(control.element);
    }
    if (!effect.properties.length) return;
    const reset = button({ class: 'quiet reset' }, icon('undo'), 'Reset');
    reset.addEventListener('click', () => {
      this.#chain.reset(this.#at);
    });
    head.append(reset);
    this.#panel.append(fields);
  }

  #variants(effects: readonly Effect[], now: Effect): HTMLElement {
    const group = make('div', { class: 'variants', role: 'group', 'aria-label': 'Variant' });
    for (const effect of effects) {
      const choose = button(
        { 'aria-pressed': effect === now, 'aria-label': effect.title, title: effect.description },
        String(effect.variant ?? 0),
      );
      choose.addEventListener('click', () => {
        this.#chain.setEffect(this.#at, effect);
        this.#panel.querySelector<HTMLElement>(`.variants [aria-label="${effect.title}"]`)?.focus();
      });
      group.append(choose);
    }
    return group;
  }

  #control(property: Property): Control {
    switch (property.type) {
      case 'integer':
        return this.#slider(property);
      case 'boolean':
        return property.choices.length ? this.#choice(property) : this.#toggle(property);
      case 'color':
        return this.#color(property);
      case 'choice':
        return this.#choice(property);
    }
  }

  #set(property: Property, value: string): void {
    this.#chain.set(this.#at, property.id, value);
  }

  #slider(property: Property): Control {
    const { minimum, maximum } = property;
    const id = `property-${property.id}`;
    const input = make('input', { type: 'range', id, min: minimum, max: maximum, 'aria-describedby': `${id}-hint` });
    const output = make('output', { for: id });
    input.addEventListener('input', () => {
      this.#set(property, input.value);
    });
    return {
      element: field(property, id, input, output),
      show: (value) => {
        input.value = value;
        output.value = value;
        input.style.setProperty('--part', String((Number(value) - minimum) / (maximum - minimum || 1)));
      },
    };
  }

  #toggle(property: Property): Control {
    const id = `property-${property.id}`;
    const input = make('input', { type: 'checkbox', role: 'switch', id, 'aria-describedby': `${id}-hint` });
    input.addEventListener('change', () => {
      this.#set(property, String(input.checked));
    });
    return {
      element: field(property, id, input),
      show: (value) => {
        input.checked = value === 'true';
      },
    };
  }

  #color(property: Property): Control {
    const id = `property-${property.id}`;
    const input = make('input', { type: 'color', id, 'aria-describedby': `${id}-hint` });
    const output = make('output', { for: id });
    input.addEventListener('input', () => {
      this.#set(property, input.value);
    });
    return {
      element: field(property, id, input, output),
      show: (value) => {
        input.value = value;
        output.value = value;
      },
    };
  }

  #choice(property: Property): Control {
    const id = `property-${property.id}`;
    const select = make('select', { id, 'aria-describedby': `${id}-hint` });
    const isBoolean = property.type === 'boolean';
    for (const choice of property.choices) {
      select.append(
        make(
          'option',
          { value: isBoolean ? String(choice.value !== 0) : choice.id, title: choice.description },
          capitalized(choice.id.replaceAll('-', ' ')),
        ),
      );
    }
    const named = select.options.length;
    const element = field(property, id, select);
    const hint = element.querySelector('.small')!;
    select.addEventListener('change', () => {
      this.#set(property, select.value);
    });
    return {
      element,
      show: (value) => {
        while (select.options.length > named) select.options[named]!.remove();
        select.value = value;
        if (select.value !== value) select.append(make('option', { value, selected: true }, value));
        const chosen = property.choices[select.selectedIndex];
        hint.textContent = chosen
          ? `${property.description} ${capitalized(chosen.description)}.`
          : property.description;
      },
    };
  }
}

function field(property: Property, id: string, input: HTMLElement, output?: HTMLElement): HTMLElement {
  const row = make('div', { class: 'row' }, make('label', { for: id }, property.name), ...(output ? [output] : []));
  return make(
    'div',
    { class: `field ${property.type}` },
    row,
    input,
    make('p', { class: 'small', id: `${id}-hint` }, property.description),
  );
}

function capitalized(words: string): string {
  return words.charAt(0).toUpperCase() + words.slice(1);
}
