// Keeps the page in the browser. A new version is fetched as a whole, in the background, and takes
// over at the next visit. These are the only requests there are.

// The build puts these in place.
const version = "VERSION";
const files = ["FILES"];
const policy = "POLICY";

const scope = /** @type {any} */ (self);
// All pages of a host share their caches: another copy may lie beside this one.
const prefix = `corvana ${scope.registration.scope} `;
const cacheName = prefix + version;

scope.addEventListener("install", (/** @type {any} */ event) => event.waitUntil(fetchAll()));
scope.addEventListener("activate", (/** @type {any} */ event) => event.waitUntil(removeOld()));
scope.addEventListener("fetch", (/** @type {any} */ event) => {
  if (event.request.method === "GET") event.respondWith(answer(event.request));
});

async function fetchAll() {
  const cache = await caches.open(cacheName);
  await cache.addAll(files.map((file) => new Request(file, { cache: "no-cache" })));
}

async function removeOld() {
  const names = await caches.keys();
  const old = names.filter((name) => name.startsWith(prefix) && name !== cacheName);
  await Promise.all(old.map((name) => caches.delete(name)));
}

/** @param {Request} request */
async function answer(request) {
  const cache = await caches.open(cacheName);
  const address = request.url.replace(/\/index\.html(?=[?#]|$)/, "/");
  const kept = await cache.match(address, { ignoreSearch: true });
  if (!kept) return fetch(request);
  // The page's own policy, for its workers as well.
  const headers = new Headers(kept.headers);
  headers.set("Content-Security-Policy", policy);
  return new Response(kept.body, { status: kept.status, headers });
}
