// Dragging an effect into the chain, or to another place in it, with a mouse, a pen or a finger.

import { make } from './dom';

export interface Drag {
  /** The list that is dragged into. */
  readonly list: HTMLElement;
  /** Called when it was dropped on the list; the index is that of the item before which it goes. */
  readonly done: (at: number) => void;
}

const kThreshold = 6; // pixels before a press becomes a drag

/** The place in the list for something dropped at a point. */
function placeAt(list: HTMLElement, x: number, y: number): number {
  const items = [...list.children];
  const at = items.findIndex((item) => {
    const box = item.getBoundingClientRect();
    return y < box.bottom && x < box.left + box.width / 2;
  });
  return at < 0 ? items.length : at;
}

function isOver(list: HTMLElement, x: number, y: number): boolean {
  const box = (list.closest('.chain') ?? list).getBoundingClientRect();
  return x >= box.left && x <= box.right && y >= box.top && y <= box.bottom;
}

/**
 * Begins with this press of `handle`. A finger drags only what the style sheet takes from scrolling (touch-action). The
 * click that ends a drag is swallowed.
 */
export function startDrag(down: PointerEvent, handle: HTMLElement, { list, done }: Drag): void {
  if (down.button !== 0 || (down.pointerType === 'touch' && getComputedStyle(handle).touchAction !== 'none')) return;
  const { pointerId, clientX, clientY } = down;
  const marker = make('li', { class: 'marker', 'aria-hidden': 'true' });
  let ghost: HTMLElement | undefined;
  const ending = new AbortController();
  const { signal } = ending;

  const begin = () => {
    const subject = handle.closest('li') ?? handle;
    ghost = subject.cloneNode(true) as HTMLElement;
    ghost.className += ' ghost';
    ghost.inert = true;
    ghost.style.width = `${subject.clientWidth}px`;
    const picture = subject.querySelector('canvas');
    if (picture?.width) ghost.querySelector('canvas')?.getContext('2d')?.drawImage(picture, 0, 0);
    document.body.append(ghost);
    document.body.classList.add('dragging');
  };
  const end = () => {
    ending.abort();
    ghost?.remove();
    marker.remove();
    list.classList.remove('target');
    document.body.classList.remove('dragging');
  };

  const move = (event: PointerEvent) => {
    if (event.pointerId !== pointerId) return;
    if (!ghost && Math.hypot(event.clientX - clientX, event.clientY - clientY) < kThreshold) return;
    if (!ghost) begin();
    event.preventDefault();
    ghost!.style.translate = `${event.clientX}px ${event.clientY}px`;
    const over = isOver(list, event.clientX, event.clientY);
    list.classList.toggle('target', over);
    marker.remove();
    if (over) list.insertBefore(marker, list.children[placeAt(list, event.clientX, event.clientY)] ?? null);
  };
  const up = (event: PointerEvent) => {
    if (event.pointerId !== pointerId) return;
    const dragged = ghost !== undefined;
    end();
    if (!dragged) return;
    addEventListener('click', swallow, { capture: true, once: true });
    setTimeout(() => {
      removeEventListener('click', swallow, { capture: true });
    });
    if (isOver(list, event.clientX, event.clientY)) done(placeAt(list, event.clientX, event.clientY));
  };
  addEventListener('pointermove', move, { signal, passive: false });
  addEventListener('pointerup', up, { signal });
  addEventListener('pointercancel', end, { signal });
  addEventListener(
    'keydown',
    ({ key }) => {
      if (key === 'Escape') end();
    },
    { signal },
  );
}

function swallow(event: Event): void {
  event.stopPropagation();
  event.preventDefault();
}
