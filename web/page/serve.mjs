// A small web server for the page: node serve.mjs [FOLDER [PORT]]. It answers this machine only. Port 0: any free one.

import { createReadStream } from 'node:fs';
import { readFile, stat } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname, join, normalize, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const kTypes = {
  '.html': 'text/html; charset=utf-8',
  '.js': 'text/javascript; charset=utf-8',
  '.css': 'text/css; charset=utf-8',
  '.wasm': 'application/wasm',
  '.svg': 'image/svg+xml',
  '.png': 'image/png',
  '.jpg': 'image/jpeg',
  '.webmanifest': 'application/manifest+json',
  '.txt': 'text/plain; charset=utf-8',
};

/** Serves a folder. Calls `seen` with the path of each request and the number of bytes of the answer. */
export async function serve(folder, port = 0, seen = () => {}) {
  const root = resolve(folder);
  // The page names its policy itself; as a header it holds for the workers, too.
  const policy = /Content-Security-Policy" content="([^"]*)"/.exec(
    await readFile(join(root, 'index.html'), 'utf8'),
  )?.[1];
  const server = createServer(async (request, response) => {
    try {
      const path = normalize(decodeURIComponent(new URL(request.url, 'http://localhost').pathname));
      const file = join(root, path.endsWith('/') ? `${path}index.html` : path);
      const { size, mtime } = await stat(file);
      const tag = `"${size}-${mtime.getTime()}"`;
      const headers = {
        'Content-Type': kTypes[extname(file)] ?? 'application/octet-stream',
        ETag: tag,
        'Cache-Control': 'no-cache',
        'X-Content-Type-Options': 'nosniff',
        ...(policy ? { 'Content-Security-Policy': policy } : {}),
      };
      if (request.headers['if-none-match'] === tag) {
        seen(path, 0);
        response.writeHead(304, headers).end();
        return;
      }
      seen(path, size);
      response.writeHead(200, { ...headers, 'Content-Length': size });
      if (request.method === 'HEAD') response.end();
      else createReadStream(file).pipe(response);
    } catch {
      response.writeHead(404, { 'Content-Type': 'text/plain' }).end('There is no such file.\n');
    }
  });
  await new Promise((done, failed) => {
    server.on('error', failed).listen(port, '127.0.0.1', done);
  });
  return {
    url: `http://127.0.0.1:${server.address().port}/`,
    close: () =>
      new Promise((done) => {
        server.close(done);
        server.closeAllConnections();
      }),
  };
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const [folder = '.', port = '8000'] = process.argv.slice(2);
  const { url } = await serve(folder, Number(port));
  console.log(`The page is at ${url} (Ctrl-C ends this).`);
}
