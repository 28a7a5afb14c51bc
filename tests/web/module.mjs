// Starts a module in Node and reads its memory.
import { readFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { WASI } from 'node:wasi';

export const root = dirname(dirname(dirname(fileURLToPath(import.meta.url))));

export class Module {
  constructor(exports) {
    this.exports = exports;
  }

  /** The memory as it is now; growth of the memory detaches it. */
  get bytes() {
    return new Uint8Array(this.exports.memory.buffer);
  }

  /** The 32-bit word at an address. */
  word(address) {
    return new DataView(this.exports.memory.buffer).getUint32(address, true);
  }

  /** The text at an address; null for a null pointer. */
  text(address) {
    if (address === 0) return null;
    const start = address >>> 0;
    return new TextDecoder().decode(this.bytes.slice(start, this.bytes.indexOf(0, start)));
  }

  /** Calls `body` with the addresses of texts. */
  withTexts(texts, body) {
    const addresses = texts.map((text) => {
      const encoded = new TextEncoder().encode(`${text}\0`);
      const address = this.exports.malloc(encoded.length) >>> 0;
      this.bytes.set(encoded, address);
      return address;
    });
    try {
      return body(...addresses);
    } finally {
      addresses.forEach((address) => this.exports.free(address));
    }
  }
}

const compiled = new Map();

/** A new instance of the module in a file. `folder` is its only folder, and its current one. */
export function start(path, { folder } = {}) {
  if (!compiled.has(path)) compiled.set(path, new WebAssembly.Module(readFileSync(path)));
  const wasi = new WASI({ version: 'preview1', env: {}, preopens: folder ? { '/': folder, '.': folder } : {} });
  const instance = new WebAssembly.Instance(compiled.get(path), wasi.getImportObject());
  wasi.initialize(instance);
  return new Module(instance.exports);
}
