// Debian's Chromium with the page in it.
import * as path from "node:path";
import { chromium } from "playwright-core";
import { addressOf, serve } from "../../tools/serve.mjs";
import { built } from "./command_line.js";

/** @typedef {import("playwright-core").Page} Page */
/** @typedef {import("playwright-core").BrowserContext} Context */

/** Without what Chromium asks of the network by itself. */
export function launch() {
  return chromium.launch({
    executablePath: "/usr/bin/chromium",
    args: [
      ..."--no-sandbox --disable-gpu --disable-quic --no-first-run".split(" "),
      ..."--disable-background-networking --disable-component-update --disable-sync".split(" "),
    ],
  });
}

/** The page's server, and what it was asked for. */
export async function servePage() {
  /** @type {string[]} */
  const requests = [];
  const server = await serve(path.join(built, "page"), 0, (request) => {
    requests.push(`${request.method} ${request.url}`);
  });
  return {
    address: addressOf(server),
    requests,
    stop() {
      server.closeAllConnections();
      return new Promise((resolve) => server.close(resolve));
    },
  };
}

/**
 * Drops files and folders of this machine onto the middle of the page, as the system would.
 * @param {Page} page
 * @param {string[]} files paths
 * @param {("dragEnter" | "dragOver" | "drop")[]} steps
 */
export async function drop(page, files, steps = ["dragEnter", "dragOver", "drop"]) {
  const session = await page.context().newCDPSession(page);
  const { width, height } = page.viewportSize() ?? { width: 0, height: 0 };
  const data = { items: [], files, dragOperationsMask: 1 };
  for (const type of steps)
    await session.send("Input.dispatchDragEvent", { type, x: width / 2, y: height / 2, data });
  await session.detach();
}
