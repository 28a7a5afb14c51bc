// The worker of the package in which the 10th call of sfx_process traps, once.
const bytes = [
  0, 97, 115, 109, 1, 0, 0, 0, 1, 4, 1, 96, 0, 0, 3, 2, 1, 0, 7, 5, 1, 1, 102, 0, 0, 10, 5, 1, 3, 0, 0, 11,
];
const trap = new WebAssembly.Instance(new WebAssembly.Module(Uint8Array.from(bytes))).exports.f;
const { instantiate } = WebAssembly;
let calls = 0;

WebAssembly.instantiate = async (...parameters) => {
  const { exports } = await instantiate(...parameters);
  const process = (...values) => (++calls === 10 ? trap() : exports.sfx_process(...values));
  // The new instance takes a while, so that frames pass meanwhile.
  if (calls > 0) await new Promise((resolve) => setTimeout(resolve, 200));
  return { exports: { ...exports, sfx_process: process } };
};

// Messages that come before the package's worker listens.
const early = [];
self.onmessage = (event) => early.push(event);
import('/dist/worker.js').then(() => {
  for (const event of early) self.onmessage(event);
});
