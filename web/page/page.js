// Starts the page, or says why that cannot be. What is dropped before it stands is not lost.
import { takeFiles } from "./dropping.js";

const main = import("./main.js");
takeFiles(async (search) => (await main).take(search));

main.catch((error) => {
  const notice = document.getElementById("trouble");
  if (!notice) return;
  notice.textContent = `Corvana cannot start in this browser: ${error.message}`;
  notice.hidden = false;
});
