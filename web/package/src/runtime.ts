// An instance of the module that engines run in, its data files, and a new one when it breaks.
import type { DataFiles } from './dataFiles.js';
import { asError } from './errors.js';
import { Library, type Picture, isTrap } from './library.js';
import { SpecialEffectsError } from './types.js';

export interface Instance {
  readonly library: Library;
  /** The frame that is worked on. */
  readonly picture: Picture;
}

/** An engine, as its runtime sees it. */
export interface RuntimeClient {
  /** All that the instance held is gone. */
  onBroken(): void;
  /** There is a new one. */
  onReplaced(): void;
  /** There will be none until `ready` is called. */
  onError(error: SpecialEffectsError): void;
}

export class Runtime {
  /** How often the instance broke and was replaced. */
  restarts = 0;

  readonly #module: WebAssembly.Module;
  readonly #dataFiles: DataFiles;
  readonly #clients = new Set<RuntimeClient>();
  readonly #files = new Map<string, Promise<Uint8Array | null>>();
  #instance: Instance | null = null;
  #starting: Promise<void> | null = null;

  constructor(module: WebAssembly.Module, dataFiles: DataFiles) {
    this.#module = module;
    this.#dataFiles = dataFiles;
  }

  /** The instance; null before the first start and after a trap. */
  get instance(): Instance | null {
    return this.#instance;
  }

  add(client: RuntimeClient): void {
    this.#clients.add(client);
  }

  remove(client: RuntimeClient): void {
    this.#clients.delete(client);
  }

  /** Resolves when there is an instance. */
  ready(): Promise<void> {
    if (this.#instance !== null) return Promise.resolve();
    this.#starting ??= this.#start().finally(() => {
      this.#starting = null;
    });
    return this.#starting;
  }

  /** Puts these data files into the instance. Calls `onError` for one that cannot be had, and tries it again next time. */
  async provide(names: readonly string[], onError: (error: SpecialEffectsError) => void): Promise<void> {
    for (const name of names) {
      const known = this.#files.get(name);
      const promise = known ?? this.#dataFiles(name, this.#module);
      this.#files.set(name, promise);
      try {
        const bytes = await promise;
        if (known === undefined && bytes !== null) this.#instance?.library.writeDataFile(name, bytes);
      } catch (error) {
        this.#files.delete(name);
        onError(asError(error));
      }
    }
  }

  /** Calls into the instance. A trap breaks it for good: another is made. Throws errors of the package. */
  guarded<T>(use: () => T): T {
    try {
      return use();
    } catch (error) {
      if (isTrap(error)) this.#replace();
      throw asError(error);
    }
  }

  #replace(): void {
    if (this.#instance === null) return; // already on its way
    this.#instance = null;
    for (const client of this.#clients) client.onBroken();
    this.ready().then(
      () => {
        ++this.restarts;
        for (const client of this.#clients) client.onReplaced();
      },
      (error: unknown) => {
        for (const client of this.#clients) client.onError(asError(error));
      },
    );
  }

  async #start(): Promise<void> {
    const library = await Library.instantiate(this.#module);
    for (const [name, file] of this.#files) {
      const bytes = await file.catch(() => null);
      if (bytes !== null) library.writeDataFile(name, bytes);
    }
    this.#instance = { library, picture: library.createPicture() };
  }
}
