// The face cascade that Picture Me needs.

/**
 * Loads it with the page, so that nothing is requested later. The address is of a blob; null where it cannot be loaded:
 * the effect then finds no face.
 */
export async function loadCascade(): Promise<string | null> {
    try {
        const { ok, body } = await fetch(new URL("./cascade.bin", import.meta.url));
        if (!ok || !body) return null;
        return URL.createObjectURL(await new Response(body.pipeThrough(new DecompressionStream("gzip"))).blob());
    } catch {
        return null;
    }
}
