// Starts a module in Node and reads its memory.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

export const root = dirname(dirname(dirname(fileURLToPath(import.meta.url))));

// The package's files in memory. Node 20's own WASI crashes after many calls.
const { transformSync } = createRequire(join(root, 'web/package/package.json'))('esbuild');
const source = readFileSync(join(root, 'web/package/src/wasi.ts'), 'utf8');
const { Wasi } = await import(
  `data:text/javascript,${encodeURIComponent(transformSync(source, { loader: 'ts' }).code)}`
);

export class Module {
  constructor(exports, wasi) {
    this.exports = exports;
    this.wasi = wasi;
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

  /** Offsets of the members of libsfx's structures: `layout().sfx_picture.width`. */
  layout() {
    const layout = {};
    for (let row = this.exports.sfx_web_layout(); this.word(row) !== 0; row += 12) {
      const structure = (layout[this.text(this.word(row))] ??= {});
      structure[this.text(this.word(row + 4))] = this.word(row + 8);
    }
    return layout;
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

/** A new instance of the module in a file. */
export function start(path) {
  if (!compiled.has(path)) compiled.set(path, new WebAssembly.Module(readFileSync(path)));
  const wasi = new Wasi();
  const instance = new WebAssembly.Instance(compiled.get(path), wasi.importsOf(compiled.get(path)));
  wasi.connect(instance.exports.memory);
  instance.exports._initialize();
  return new Module(instance.exports, wasi);
}
