// node serve.mjs FOLDER PORT: shows a folder on this machine, at a free port where it is 0, until
// it is told to stop. Tests import it.
import { createServer } from "node:http";
import { fileURLToPath } from "node:url";
import sirv from "sirv";

/**
 * @param {string} folder
 * @param {number} port
 * @param {(request: import("node:http").IncomingMessage) => void} [onRequest]
 * @returns {Promise<import("node:http").Server>} listens
 */
export function serve(folder, port, onRequest) {
  const answer = sirv(folder, { dev: true });
  const server = createServer((request, response) => {
    onRequest?.(request);
    answer(request, response);
  });
  return new Promise((resolve, reject) => {
    server.once("error", reject);
    server.listen(port, "127.0.0.1", () => resolve(server));
  });
}

/** @param {import("node:http").Server} server */
export function addressOf(server) {
  const address = /** @type {import("node:net").AddressInfo} */ (server.address());
  return `http://localhost:${address.port}/`;
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const server = await serve(process.argv[2], Number(process.argv[3]));
  console.log(`The page is at ${addressOf(server)} until Ctrl-C.`);
}
