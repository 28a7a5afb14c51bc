// The user's own presets, kept in this browser.

export interface Look {
  readonly name: string;
  readonly text: string;
}

const kKey = 'looks';

export function ownLooks(): Look[] {
  try {
    const stored: unknown = JSON.parse(localStorage.getItem(kKey) ?? '[]');
    if (!Array.isArray(stored)) return [];
    return stored.filter(
      (look: unknown): look is Look =>
        typeof look === 'object' &&
        look !== null &&
        'name' in look &&
        typeof look.name === 'string' &&
        'text' in look &&
        typeof look.text === 'string',
    );
  } catch {
    return []; // storage is switched off, or holds something else
  }
}

/** Adds a look, in place of one of the same name. False if the browser keeps nothing. */
export function saveLook(look: Look): boolean {
  return store([...ownLooks().filter(({ name }) => name !== look.name), look]);
}

export function deleteLook(name: string): boolean {
  return store(ownLooks().filter((look) => look.name !== name));
}

function store(looks: readonly Look[]): boolean {
  try {
    localStorage.setItem(kKey, JSON.stringify(looks));
    return true;
  } catch {
    return false;
  }
}
