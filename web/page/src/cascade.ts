// The face cascade that Picture Me needs.

/** Loads it with the page, so that nothing is requested later. Null where it cannot be loaded: no face is found then. */
export async function loadCascade(): Promise<Uint8Array | null> {
  try {
    const { ok, body } = await fetch(new URL('./cascade.bin', import.meta.url));
    if (!ok || !body) return null;
    return new Uint8Array(await new Response(body.pipeThrough(new DecompressionStream('gzip'))).arrayBuffer());
  } catch {
    return null;
  }
}
