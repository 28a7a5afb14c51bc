// Keeps the page's files, so that it opens without a network after one visit.

declare const self: ServiceWorkerGlobalScope;
/** Written by the build: the files, and a name that changes with any of them. */
declare const FILES: string[];
declare const VERSION: string;

const kCache = `page-${VERSION}`;

self.addEventListener('install', (event) => {
  event.waitUntil(caches.open(kCache).then((cache) => cache.addAll(FILES)));
});

self.addEventListener('activate', (event) => {
  event.waitUntil(
    caches
      .keys()
      .then((names) =>
        Promise.all(
          names.filter((name) => name.startsWith('page-') && name !== kCache).map((name) => caches.delete(name)),
        ),
      )
      .then(() => self.clients.claim()),
  );
});

async function answer(request: Request): Promise<Response> {
  const cache = await caches.open(kCache);
  const kept = await cache.match(request, { ignoreSearch: true });
  if (kept) return kept;
  const response = await fetch(request);
  if (response.ok) await cache.put(request, response.clone());
  return response;
}

self.addEventListener('fetch', (event) => {
  const { request } = event;
  if (request.method === 'GET' && new URL(request.url).origin === self.location.origin) {
    event.respondWith(answer(request));
  }
});

export {};
