// Marks the page in the navigation; adds colours, search and sorting to the table of dyes.
"use strict";

const here = location.pathname.split("/").pop() || "index.html";
for (const link of document.querySelectorAll("nav a"))
  if (link.pathname.endsWith("/" + here)) link.setAttribute("aria-current", "page");

const heading = [...document.querySelectorAll("th")].find(cell => cell.textContent.trim() === "Dye");
if (heading) makeUsable(heading.closest("table"));

function makeUsable(table) {
  const text = (row, column) => row.cells[column].textContent.trim();
  const [head, ...rows] = table.rows;
  table.id = "dye-table";

  for (const row of rows) {
    const swatch = document.createElement("span");
    swatch.className = "swatch";
    swatch.style.background = text(row, 3);
    row.cells[3].prepend(swatch);
  }

  const search = document.createElement("input");
  search.type = "search";
  search.placeholder = "Name, wavelength or remark";
  search.setAttribute("aria-label", "Search the dyes");
  const count = document.createElement("output");
  search.oninput = () => {
    const words = search.value.toLowerCase().split(/\s+/);
    for (const row of rows) {
      const all = row.textContent.toLowerCase();
      row.hidden = !words.every(word => all.includes(word));
    }
    count.textContent = rows.filter(row => !row.hidden).length + " of " + rows.length;
  };
  const bar = document.createElement("div");
  bar.className = "search";
  bar.append(search, count);
  table.before(bar);
  search.oninput();

  // Colours sort by hue; grays come last.
  const hue = row => {
    const [r, g, b] = text(row, 3).match(/[0-9a-f]{2}/g).map(part => parseInt(part, 16));
    const most = Math.max(r, g, b), spread = most - Math.min(r, g, b);
    if (spread === 0) return 7 + most;
    return most === r ? ((g - b) / spread + 6) % 6
         : most === g ? (b - r) / spread + 2 : (r - g) / spread + 4;
  };
  const byText = column => (a, b) =>
    text(a, column).localeCompare(text(b, column), "en", { numeric: true });
  const byNumber = column => (a, b) => text(a, column) - text(b, column);
  const byRemark = (a, b) => !text(a, 4) - !text(b, 4) || byText(4)(a, b);
  const orders = [byText(0), byNumber(1), byNumber(2), (a, b) => hue(a) - hue(b), byRemark];

  [...head.cells].forEach((cell, column) => {
    const button = document.createElement("button");
    button.append(...cell.childNodes);
    button.onclick = () => {
      const direction = cell.ariaSort === "ascending" ? -1 : 1;
      for (const other of head.cells) other.ariaSort = "none";
      cell.ariaSort = direction === 1 ? "ascending" : "descending";
      rows.sort((a, b) => direction * orders[column](a, b));
      head.after(...rows);
    };
    cell.append(button);
  });
}
