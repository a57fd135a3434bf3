// Starts the page, or says why that cannot be.
import("./main.js").catch((error) => {
  const notice = document.getElementById("trouble");
  if (!notice) return;
  notice.textContent = `Corvana cannot start in this browser: ${error.message}`;
  notice.hidden = false;
});
