// The system calls of a WASI module (wasi_snapshot_preview1) over files in memory: one folder, "/", opened beforehand.
// Nothing here reaches a network, a disk or the console; what the module writes to its standard streams goes to `onText`.

const SUCCESS = 0;
const EBADF = 8;
const EEXIST = 20;
const EINVAL = 28;
const EISDIR = 31;
const ENOENT = 44;
const ENOSYS = 52;
const ENOTDIR = 54;

const TYPE_CHARACTER = 2;
const TYPE_FOLDER = 3;
const TYPE_FILE = 4;

const OPEN_CREATE = 1;
const OPEN_FOLDER = 2;
const OPEN_EXCLUSIVE = 4;
const OPEN_TRUNCATE = 8;
const FLAG_APPEND = 1;
const ALL_RIGHTS = 0xffff_ffffn;

const STANDARD_ERROR = 2;
const ROOT = 3;
const FIRST_FREE = 4;

/** The module ended itself: `abort` or `exit`. */
export class Exit extends Error {
  constructor(readonly status: number) {
    super(`the module ended with status ${String(status)}`);
  }
}

/** A file of the memory; `bytes` has room beyond `size`. */
interface File {
  bytes: Uint8Array;
  size: number;
}

interface Descriptor {
  readonly file: File | null; // null: a folder
  position: number;
  readonly append: boolean;
}

type Call = (...parameters: never[]) => number;

export class Wasi {
  /** Gets each line that the module writes to its standard output and error streams. */
  onText: (line: string) => void = () => undefined;

  readonly #files = new Map<string, File>();
  readonly #folders = new Set<string>(['']);
  readonly #open = new Map<number, Descriptor>();
  #memory: WebAssembly.Memory | null = null;
  #line = '';

  /** Connects the memory of the instance. Before this no call works. */
  connect(memory: WebAssembly.Memory): void {
    this.#memory = memory;
  }

  /** Stores a file, and the folders above it. The path starts with "/". */
  writeFile(path: string, bytes: Uint8Array): void {
    const key = normalize(path);
    for (let slash = key.indexOf('/'); slash > 0; slash = key.indexOf('/', slash + 1)) {
      this.#folders.add(key.slice(0, slash));
    }
    this.#files.set(key, { bytes, size: bytes.length });
  }

  /** The content of a file, or null. */
  readFile(path: string): Uint8Array<ArrayBuffer> | null {
    const file = this.#files.get(normalize(path));
    return file === undefined ? null : file.bytes.slice(0, file.size);
  }

  /** The import object of a module: functions that this class does not have report that. */
  importsOf(module: WebAssembly.Module): WebAssembly.Imports {
    const imports: Record<string, Record<string, Call>> = {};
    for (const { module: from, name, kind } of WebAssembly.Module.imports(module)) {
      if (kind !== 'function') continue;
      (imports[from] ??= {})[name] = this.#calls[name] ?? (() => ENOSYS);
    }
    return imports;
  }

  readonly #calls: Readonly<Record<string, Call>> = {
    args_sizes_get: (count: number, size: number) => this.#putSizes(count, size),
    args_get: () => SUCCESS,
    environ_sizes_get: (count: number, size: number) => this.#putSizes(count, size),
    environ_get: () => SUCCESS,
    clock_res_get: (_clock: number, result: number) => this.#put64(result, 1_000_000n),
    clock_time_get: (clock: number, _precision: bigint, result: number) => {
      const milliseconds = clock === 0 ? Date.now() : performance.now();
      return this.#put64(result, BigInt(Math.round(milliseconds * 1000)) * 1000n);
    },
    random_get: (address: number, size: number) => {
      const largest = 65536;
      for (let done = 0; done < size; done += largest) {
        // In a copy: some browsers refuse views of WebAssembly memory here.
        const random = crypto.getRandomValues(new Uint8Array(Math.min(largest, size - done)));
        this.#bytes(address + done, random.length).set(random);
      }
      return SUCCESS;
    },
    sched_yield: () => SUCCESS,
    proc_exit: (status: number) => {
      throw new Exit(status);
    },

    fd_prestat_get: (descriptor: number, result: number) => {
      if (descriptor !== ROOT) return EBADF;
      const view = this.#view();
      view.setUint32(result, 0, true);
      view.setUint32(result + 4, 1, true);
      return SUCCESS;
    },
    fd_prestat_dir_name: (descriptor: number, address: number, size: number) => {
      if (descriptor !== ROOT) return EBADF;
      if (size < 1) return EINVAL;
      this.#bytes(address, 1)[0] = '/'.charCodeAt(0);
      return SUCCESS;
    },
    fd_fdstat_get: (descriptor: number, result: number) => {
      const type = this.#typeOf(descriptor);
      if (type === null) return EBADF;
      const view = this.#view();
      view.setUint8(result, type);
      view.setUint16(result + 2, this.#open.get(descriptor)?.append === true ? FLAG_APPEND : 0, true);
      view.setBigUint64(result + 8, ALL_RIGHTS, true);
      view.setBigUint64(result + 16, ALL_RIGHTS, true);
      return SUCCESS;
    },
    fd_fdstat_set_flags: (descriptor: number) => (this.#typeOf(descriptor) === null ? EBADF : SUCCESS),
    fd_filestat_get: (descriptor: number, result: number) => {
      const type = this.#typeOf(descriptor);
      if (type === null) return EBADF;
      return this.#putStatus(result, type, this.#open.get(descriptor)?.file?.size ?? 0);
    },
    fd_filestat_set_size: (descriptor: number, size: bigint) => {
      const file = this.#open.get(descriptor)?.file;
      if (!file) return EBADF;
      resize(file, Number(size));
      return SUCCESS;
    },
    fd_close: (descriptor: number) => {
      if (this.#typeOf(descriptor) === null) return EBADF;
      this.#open.delete(descriptor);
      return SUCCESS;
    },
    fd_sync: () => SUCCESS,
    fd_datasync: () => SUCCESS,
    fd_advise: () => SUCCESS,
    fd_tell: (descriptor: number, result: number) => {
      const open = this.#open.get(descriptor);
      return open ? this.#put64(result, BigInt(open.position)) : EBADF;
    },
    fd_seek: (descriptor: number, offset: bigint, whence: number, result: number) => {
      const open = this.#open.get(descriptor);
      if (!open?.file) return EBADF;
      const base = [0, open.position, open.file.size][whence];
      if (base === undefined || base + Number(offset) < 0) return EINVAL;
      open.position = base + Number(offset);
      return this.#put64(result, BigInt(open.position));
    },
    fd_read: (descriptor: number, vectors: number, count: number, result: number) => {
      if (descriptor === 0) return this.#put32(result, 0);
      const open = this.#open.get(descriptor);
      if (!open) return EBADF;
      if (!open.file) return EISDIR;
      let total = 0;
      for (const target of this.#vectors(vectors, count)) {
        const part = open.file.bytes.subarray(open.position, Math.min(open.file.size, open.position + target.length));
        target.set(part);
        open.position += part.length;
        total += part.length;
      }
      return this.#put32(result, total);
    },
    fd_write: (descriptor: number, vectors: number, count: number, result: number) => {
      const parts = this.#vectors(vectors, count);
      if (descriptor > 0 && descriptor <= STANDARD_ERROR) {
        for (const part of parts) this.#say(part);
      } else {
        const open = this.#open.get(descriptor);
        if (!open?.file) return EBADF;
        for (const part of parts) {
          if (open.append) open.position = open.file.size;
          const end = open.position + part.length;
          if (end > open.file.size) resize(open.file, end);
          open.file.bytes.set(part, open.position);
          open.position = end;
        }
      }
      return this.#put32(
        result,
        parts.reduce((total, part) => total + part.length, 0),
      );
    },

    path_open: (
      _folder: number,
      _follow: number,
      path: number,
      length: number,
      flags: number,
      _rights: bigint,
      _inherited: bigint,
      descriptorFlags: number,
      result: number,
    ) => {
      const key = this.#path(path, length);
      let file = this.#files.get(key) ?? null;
      if (this.#folders.has(key)) {
        if ((flags & (OPEN_CREATE | OPEN_TRUNCATE)) !== 0) return EISDIR;
      } else if (file === null) {
        if ((flags & OPEN_CREATE) === 0 || !this.#folders.has(folderOf(key))) return ENOENT;
        file = { bytes: new Uint8Array(0), size: 0 };
        this.#files.set(key, file);
      } else {
        if ((flags & OPEN_FOLDER) !== 0) return ENOTDIR;
        if ((flags & OPEN_CREATE) !== 0 && (flags & OPEN_EXCLUSIVE) !== 0) return EEXIST;
        if ((flags & OPEN_TRUNCATE) !== 0) file.size = 0;
      }
      let descriptor = FIRST_FREE;
      while (this.#open.has(descriptor)) ++descriptor;
      this.#open.set(descriptor, { file, position: 0, append: (descriptorFlags & FLAG_APPEND) !== 0 });
      return this.#put32(result, descriptor);
    },
    path_filestat_get: (_folder: number, _follow: number, path: number, length: number, result: number) => {
      const key = this.#path(path, length);
      if (this.#folders.has(key)) return this.#putStatus(result, TYPE_FOLDER, 0);
      const file = this.#files.get(key);
      return file ? this.#putStatus(result, TYPE_FILE, file.size) : ENOENT;
    },
    path_create_directory: (_folder: number, path: number, length: number) => {
      const key = this.#path(path, length);
      if (this.#folders.has(key) || this.#files.has(key)) return EEXIST;
      if (!this.#folders.has(folderOf(key))) return ENOENT;
      this.#folders.add(key);
      return SUCCESS;
    },
    path_rename: (
      _folder: number,
      path: number,
      length: number,
      _newFolder: number,
      newPath: number,
      newLength: number,
    ) => {
      const [from, to] = [this.#path(path, length), this.#path(newPath, newLength)];
      const file = this.#files.get(from);
      if (!file) return ENOENT;
      if (this.#folders.has(to)) return EISDIR;
      this.#files.delete(from);
      this.#files.set(to, file);
      return SUCCESS;
    },
    path_unlink_file: (_folder: number, path: number, length: number) => {
      return this.#files.delete(this.#path(path, length)) ? SUCCESS : ENOENT;
    },
  };

  // The memory may have grown since the last call: views are made anew each time.
  #view(): DataView {
    if (this.#memory === null) throw new Error('the memory is not connected');
    return new DataView(this.#memory.buffer);
  }

  #bytes(address: number, size: number): Uint8Array {
    return new Uint8Array(this.#view().buffer, address >>> 0, size >>> 0);
  }

  #vectors(address: number, count: number): Uint8Array[] {
    const view = this.#view();
    return Array.from({ length: count }, (_, i) =>
      this.#bytes(view.getUint32(address + 8 * i, true), view.getUint32(address + 8 * i + 4, true)),
    );
  }

  #path(address: number, length: number): string {
    return normalize(new TextDecoder().decode(this.#bytes(address, length)));
  }

  #put32(address: number, value: number): number {
    this.#view().setUint32(address, value, true);
    return SUCCESS;
  }

  #put64(address: number, value: bigint): number {
    this.#view().setBigUint64(address, value, true);
    return SUCCESS;
  }

  #putSizes(count: number, size: number): number {
    this.#put32(count, 0);
    return this.#put32(size, 0);
  }

  #putStatus(address: number, type: number, size: number): number {
    this.#bytes(address, 64).fill(0);
    const view = this.#view();
    view.setUint8(address + 16, type);
    view.setBigUint64(address + 24, 1n, true);
    view.setBigUint64(address + 32, BigInt(size), true);
    return SUCCESS;
  }

  #typeOf(descriptor: number): number | null {
    if (descriptor >= 0 && descriptor <= STANDARD_ERROR) return TYPE_CHARACTER;
    if (descriptor === ROOT) return TYPE_FOLDER;
    const open = this.#open.get(descriptor);
    if (!open) return null;
    return open.file === null ? TYPE_FOLDER : TYPE_FILE;
  }

  #say(bytes: Uint8Array): void {
    // TextDecoder refuses views of memory that can be resized.
    const lines = (this.#line + new TextDecoder().decode(bytes.slice())).split('\n');
    this.#line = lines.pop() ?? '';
    for (const line of lines) this.onText(line);
  }
}

/** "/a//b/./c/" and "a/b/c" both become "a/b/c". */
function normalize(path: string): string {
  const parts: string[] = [];
  for (const part of path.split('/')) {
    if (part === '..') parts.pop();
    else if (part !== '' && part !== '.') parts.push(part);
  }
  return parts.join('/');
}

function folderOf(key: string): string {
  return key.slice(0, Math.max(0, key.lastIndexOf('/')));
}

function resize(file: File, size: number): void {
  if (size > file.bytes.length) {
    const bytes = new Uint8Array(Math.max(size, 2 * file.bytes.length));
    bytes.set(file.bytes.subarray(0, file.size));
    file.bytes = bytes;
  } else if (size > file.size) {
    file.bytes.fill(0, file.size, size);
  }
  file.size = size;
}
