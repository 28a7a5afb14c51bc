// libsfx in one WebAssembly instance: its functions with JavaScript's types, and what they need of its memory.
import { type ErrorCode, type PropertyValue, SpecialEffectsError } from './types.js';
import { Exit, Wasi } from './wasi.js';

/** The functions of sfx.h that are used here, as the instance exports them: addresses and sizes are numbers. */
interface Exports {
  readonly memory: WebAssembly.Memory;
  _initialize?(): void;
  malloc(size: number): number;
  free(address: number): void;
  sfx_version_text(): number;
  sfx_message(): number;
  sfx_create(text: number, result: number): number;
  sfx_destroy(effect: number): void;
  sfx_link_count(effect: number): number;
  sfx_link_info(effect: number, link: number): number;
  sfx_print(effect: number, buffer: number, size: number): number;
  sfx_set(effect: number, property: number, value: number): number;
  sfx_set_int(effect: number, property: number, value: number): number;
  sfx_get(effect: number, property: number, buffer: number, size: number): number;
  sfx_set_seed(effect: number, seed: number): number;
  sfx_set_data_folder(effect: number, folder: number): number;
  sfx_process(effect: number, picture: number, time: bigint): number;
  sfx_prepare(effect: number, width: number, height: number): number;
  sfx_reset(effect: number): number;
}

/** The formats of pictures, in the order of `sfx_format`. */
export const FORMATS = [
  'i420',
  'yv12',
  'nv12',
  'nv21',
  'i422',
  'i444',
  'yuy2',
  'uyvy',
  'rgb24',
  'bgr24',
  'rgba',
  'bgra',
  'argb',
  'abgr',
] as const;
export type PictureFormat = (typeof FORMATS)[number];

const ERROR_CODES: Readonly<Record<number, ErrorCode>> = {
  [-1]: 'argument',
  [-2]: 'unknown',
  [-3]: 'value',
  [-4]: 'picture',
  [-5]: 'file',
  [-6]: 'memory',
  [-7]: 'failed',
};

const DATA_FOLDER = '/data';
const VALUE_SIZE = 64;
const NO_TIME = -(2n ** 63n);

/** Sizes and offsets of the structures, where addresses and sizes have 4 bytes. */
export const LAYOUT = {
  'sfx_effect_info.id': 4,
  'sfx_effect_info.data_file': 36,
  'sfx_picture.sizeof': 72,
  'sfx_picture.struct_size': 0,
  'sfx_picture.format': 4,
  'sfx_picture.width': 8,
  'sfx_picture.height': 12,
  'sfx_picture.planes': 24,
  'sfx_picture.strides': 40,
  'sfx_picture.sizes': 56,
} as const;
const PICTURE_SIZE = LAYOUT['sfx_picture.sizeof'];

/** Whether an error means that the instance broke: a trap, a stack that ran over, an end of the program. */
export function isTrap(error: unknown): boolean {
  return error instanceof WebAssembly.RuntimeError || error instanceof Exit || error instanceof RangeError;
}

export class Library {
  readonly #wasi: Wasi;
  readonly #exports: Exports;
  readonly #decoder = new TextDecoder();
  readonly #encoder = new TextEncoder();

  private constructor(wasi: Wasi, exports: Exports) {
    this.#wasi = wasi;
    this.#exports = exports;
  }

  /** A new instance of the compiled module. `onText` gets each line that it writes to its standard streams. */
  static async instantiate(module: WebAssembly.Module, onText?: (line: string) => void): Promise<Library> {
    const wasi = new Wasi();
    if (onText) wasi.onText = onText;
    const instance = await WebAssembly.instantiate(module, wasi.importsOf(module));
    const exports = instance.exports as unknown as Exports;
    wasi.connect(exports.memory);
    exports._initialize?.();
    return new Library(wasi, exports);
  }

  /** The version of the library: `"1.0.0"`. */
  get version(): string {
    return this.#read(this.#exports.sfx_version_text()) ?? '';
  }

  /** Bytes of memory that the instance has taken. */
  get memorySize(): number {
    return this.#exports.memory.buffer.byteLength;
  }

  /** Stores a data file, such as haar.txt, for the effects that read it. */
  writeDataFile(name: string, bytes: Uint8Array): void {
    this.#wasi.writeFile(`${DATA_FOLDER}/${name}`, bytes);
  }

  /** The content of a data file, stored or made by an effect; null if the file does not exist. */
  readDataFile(name: string): Uint8Array<ArrayBuffer> | null {
    return this.#wasi.readFile(`${DATA_FOLDER}/${name}`);
  }

  /** Creates what an effect text describes. Throws SpecialEffectsError where it is not valid. */
  create(text: string, seed = 1): Chain {
    const result = this.allocate(4);
    try {
      this.withTexts([text], (address) => {
        this.check(this.#exports.sfx_create(address, result));
      });
      const chain = new Chain(this, this.#exports, this.view().getUint32(result, true));
      this.check(this.#exports.sfx_set_seed(chain.address, seed | 0));
      this.withTexts([DATA_FOLDER], (folder) => {
        this.check(this.#exports.sfx_set_data_folder(chain.address, folder));
      });
      return chain;
    } finally {
      this.#exports.free(result);
    }
  }

  /** Memory for a picture; see Picture. */
  createPicture(): Picture {
    return new Picture(this);
  }

  // ---- for Chain and Picture ----

  /** The memory as it is now. Growth of the memory detaches it: never keep it over a call. */
  view(): DataView {
    return new DataView(this.#exports.memory.buffer);
  }

  bytes(address: number, size: number): Uint8Array<ArrayBuffer> {
    return new Uint8Array(this.#exports.memory.buffer, address, size);
  }

  allocate(size: number): number {
    const address = this.#exports.malloc(size) >>> 0;
    if (address === 0) throw new SpecialEffectsError('memory', 'out of memory');
    return address;
  }

  free(address: number): void {
    this.#exports.free(address);
  }

  /** Throws where the status is an error. Statuses above 0 are not errors. */
  check(status: number): void {
    if (status >= 0) return;
    throw new SpecialEffectsError(
      ERROR_CODES[status] ?? 'failed',
      this.#read(this.#exports.sfx_message()) ?? 'the effect failed',
    );
  }

  readInfo(info: number, member: 'id' | 'data_file'): string | null {
    return this.#read(this.view().getUint32(info + LAYOUT[`sfx_effect_info.${member}`], true));
  }

  /** Calls with the addresses of copies of these texts. */
  withTexts(texts: readonly string[], use: (...addresses: number[]) => void): void {
    const addresses: number[] = [];
    try {
      for (const text of texts) {
        const encoded = this.#encoder.encode(`${text}\0`);
        const address = this.allocate(encoded.length);
        addresses.push(address);
        this.bytes(address, encoded.length).set(encoded);
      }
      use(...addresses);
    } finally {
      for (const address of addresses) this.#exports.free(address);
    }
  }

  /** The text that a call writes to a buffer. */
  writtenText(size: number, write: (buffer: number) => void): string {
    const buffer = this.allocate(size);
    try {
      write(buffer);
      return this.#read(buffer) ?? '';
    } finally {
      this.#exports.free(buffer);
    }
  }

  #read(address: number): string | null {
    const start = address >>> 0;
    if (start === 0) return null;
    const memory = new Uint8Array(this.#exports.memory.buffer);
    // A copy: some browsers refuse to decode views of WebAssembly memory.
    return this.#decoder.decode(memory.slice(start, memory.indexOf(0, start)));
  }
}

/** One effect, or several that are applied in a row. */
export class Chain {
  readonly #library: Library;
  readonly #exports: Exports;
  readonly address: number;

  constructor(library: Library, exports: Exports, address: number) {
    this.#library = library;
    this.#exports = exports;
    this.address = address;
  }

  /** The text that creates the same effects with the same settings. */
  get text(): string {
    const length = this.#exports.sfx_print(this.address, 0, 0);
    this.#library.check(length);
    return this.#library.writtenText(length + 1, (buffer) => {
      this.#library.check(this.#exports.sfx_print(this.address, buffer, length + 1));
    });
  }

  /** The ids of its effects, from left to right. */
  get ids(): string[] {
    return this.#infos().map((info) => this.#library.readInfo(info, 'id') ?? '');
  }

  /** The names of the data files that its effects read. */
  get dataFiles(): string[] {
    const names = this.#infos().map((info) => this.#library.readInfo(info, 'data_file'));
    return [...new Set(names.filter((name) => name !== null))];
  }

  /** Sets a property from the next frame on. */
  set(property: string, value: PropertyValue): void {
    if (typeof value === 'string') {
      this.#library.withTexts([property, value], (name, text) => {
        this.#library.check(this.#exports.sfx_set(this.address, name, text));
      });
      return;
    }
    if (!Number.isFinite(Number(value))) {
      throw new SpecialEffectsError('value', `not a value of a property: ${String(value)}`);
    }
    const bound = 2 ** 31;
    const number = Math.max(-bound, Math.min(bound - 1, Math.trunc(Number(value))));
    this.#library.withTexts([property], (name) => {
      this.#library.check(this.#exports.sfx_set_int(this.address, name, number));
    });
  }

  /** The present value as text: `"9"`, `"true"`, `"#0000c0"` or the id of a choice. */
  get(property: string): string {
    return this.#library.writtenText(VALUE_SIZE, (buffer) => {
      this.#library.withTexts([property], (name) => {
        this.#library.check(this.#exports.sfx_get(this.address, name, buffer, VALUE_SIZE));
      });
    });
  }

  /** Gets ready for pictures of a size, so that the first of them takes no longer than the others. */
  prepare(width: number, height: number): void {
    this.#library.check(this.#exports.sfx_prepare(this.address, width, height));
  }

  /** Forgets earlier frames. */
  reset(): void {
    this.#library.check(this.#exports.sfx_reset(this.address));
  }

  /** Changes a picture in place. The time stamp is in nanoseconds; null: 1/30 s after the one before. */
  process(picture: Picture, time: bigint | null): void {
    this.#library.check(this.#exports.sfx_process(this.address, picture.address, time ?? NO_TIME));
  }

  destroy(): void {
    this.#exports.sfx_destroy(this.address);
  }

  #infos(): number[] {
    const count = this.#exports.sfx_link_count(this.address);
    return Array.from({ length: count }, (_, link) => this.#exports.sfx_link_info(this.address, link) >>> 0);
  }
}

/** Where a plane of a picture lies: offset of its top row in the bytes of the picture, bytes from row to row. */
export interface PlaneLayout {
  readonly offset: number;
  readonly stride: number;
}

/** Rows of a plane, and bytes in one of them. */
function planesOf(format: PictureFormat, width: number, height: number): { bytes: number; rows: number }[] {
  const halfWidth = (width + 1) >> 1;
  const luma = { bytes: width, rows: height };
  const chroma = { bytes: halfWidth, rows: (height + 1) >> 1 };
  switch (format) {
    case 'i420':
    case 'yv12':
      return [luma, chroma, chroma];
    case 'nv12':
    case 'nv21':
      return [luma, { ...chroma, bytes: 2 * halfWidth }];
    case 'i422':
      return [luma, { bytes: halfWidth, rows: height }, { bytes: halfWidth, rows: height }];
    case 'i444':
      return [luma, luma, luma];
    case 'yuy2':
    case 'uyvy':
      return [{ bytes: 4 * halfWidth, rows: height }];
    case 'rgb24':
    case 'bgr24':
      return [{ bytes: 3 * width, rows: height }];
    default:
      return [{ bytes: 4 * width, rows: height }];
  }
}

/** A picture of tight planes, one after the other, in the memory of an instance. Keeps its memory over changes of size. */
export class Picture {
  readonly #library: Library;
  readonly address: number;
  #pixels = 0;
  #capacity = 0;
  #shape = '';
  #size = 0;
  #layout: PlaneLayout[] = [];

  constructor(library: Library) {
    this.#library = library;
    this.address = library.allocate(PICTURE_SIZE);
  }

  /** Bytes of its planes. */
  get size(): number {
    return this.#size;
  }

  get layout(): readonly PlaneLayout[] {
    return this.#layout;
  }

  /** Sets format and size in pixels. What its bytes are then is undefined. */
  shape(format: PictureFormat, width: number, height: number): void {
    const shape = `${format} ${String(width)}x${String(height)}`;
    if (shape === this.#shape) return;
    this.#shape = '';
    const planes = planesOf(format, width, height);
    this.#size = 0;
    this.#layout = planes.map(({ bytes, rows }) => {
      const plane = { offset: this.#size, stride: bytes };
      this.#size += bytes * rows;
      return plane;
    });
    if (this.#size > this.#capacity) {
      if (this.#pixels !== 0) this.#library.free(this.#pixels);
      this.#pixels = this.#capacity = 0;
      this.#pixels = this.#library.allocate(this.#size);
      this.#capacity = this.#size;
    }
    this.#library.bytes(this.address, PICTURE_SIZE).fill(0);
    const view = this.#library.view();
    const put = (member: keyof typeof LAYOUT, value: number, index = 0): void => {
      view.setUint32(this.address + LAYOUT[member] + 4 * index, value, true);
    };
    put('sfx_picture.struct_size', PICTURE_SIZE);
    put('sfx_picture.format', FORMATS.indexOf(format));
    put('sfx_picture.width', width);
    put('sfx_picture.height', height);
    planes.forEach(({ bytes, rows }, i) => {
      put('sfx_picture.planes', this.#pixels + (this.#layout[i]?.offset ?? 0), i);
      put('sfx_picture.strides', bytes, i);
      put('sfx_picture.sizes', bytes * rows, i);
    });
    this.#shape = shape;
  }

  /** Its bytes in the memory of the instance: good until the next call into the library, which may grow the memory. */
  get bytes(): Uint8Array<ArrayBuffer> {
    return this.#library.bytes(this.#pixels, this.#size);
  }

  destroy(): void {
    if (this.#pixels !== 0) this.#library.free(this.#pixels);
    this.#library.free(this.address);
  }
}
