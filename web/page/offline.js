// After the first visit the page is there without a network, too.

export function workOffline() {
  if (!("serviceWorker" in navigator) || !isSecureContext) return;
  // Where the browser does not allow it, the page needs its server the next time: no more than that.
  navigator.serviceWorker.register("service-worker.js").catch(() => {});
}
