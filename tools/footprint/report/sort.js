"use strict";
// Tables sort by a click on a column's head: up, down, and back to the order of the file. Long ones can be searched.
(function () {
  var collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });

  // A whole number, perhaps with its digits in groups, or a text. "1.12" is a text: a version above "1.6".
  function keyOf(row, column) {
    var text = row.cells[column].textContent.trim();
    var digits = text.replace(/\u00a0/g, "").replace("\u2212", "-");
    return /^-?\d{1,15}$/.test(digits) ? Number(digits) : text;
  }

  function compare(left, right) {
    return typeof left === "number" && typeof right === "number"
      ? left - right
      : collator.compare(String(left), String(right));
  }

  function makeSortable(table) {
    var heads = Array.from(table.tHead.rows[0].cells);
    var body = table.tBodies[0];
    var original = Array.from(body.rows);

    heads.forEach(function (head, column) {
      var button = document.createElement("button");
      button.type = "button";
      button.textContent = head.textContent;
      head.textContent = "";
      head.appendChild(button);
      head.setAttribute("aria-sort", "none");
      button.addEventListener("click", function () {
        var next = { none: "ascending", ascending: "descending", descending: "none" }[head.getAttribute("aria-sort")];
        heads.forEach(function (other) {
          other.setAttribute("aria-sort", other === head ? next : "none");
        });
        table.classList.toggle("sorted", next !== "none");
        var rows = original;
        if (next !== "none") {
          var sign = next === "ascending" ? 1 : -1;
          rows = original
            .map(function (row) {
              return { row: row, key: keyOf(row, column) };
            })
            .sort(function (left, right) {
              if (left.key === "" || right.key === "") {
                return (left.key === "" ? 1 : 0) - (right.key === "" ? 1 : 0); // empty ones last in both orders
              }
              return sign * compare(left.key, right.key);
            })
            .map(function (entry) {
              return entry.row;
            });
        }
        var all = document.createDocumentFragment();
        rows.forEach(function (row) {
          all.appendChild(row);
        });
        body.appendChild(all);
      });
    });

    if (original.length >= 12) {
      addSearch(table, original);
    }
  }

  function addSearch(table, rows) {
    var line = document.createElement("p");
    var label = document.createElement("label");
    var field = document.createElement("input");
    var count = document.createElement("output");
    line.className = "search";
    field.type = "search";
    label.append("Search ", field);
    line.append(label, " ", count);
    table.parentNode.before(line);
    field.addEventListener("input", function () {
      var words = field.value.toLowerCase();
      var found = 0;
      rows.forEach(function (row) {
        row.hidden = words !== "" && !row.textContent.toLowerCase().includes(words);
        found += row.hidden ? 0 : 1;
      });
      count.textContent = words === "" ? "" : found + " of " + rows.length + " rows";
    });
  }

  document.querySelectorAll("table.sortable").forEach(makeSortable);

  // On paper nothing can be unfolded; long tables stay folded.
  var unfolded = [];
  window.addEventListener("beforeprint", function () {
    unfolded = Array.from(document.querySelectorAll("details:not(.long):not([open])"));
    unfolded.forEach(function (part) {
      part.open = true;
    });
  });
  window.addEventListener("afterprint", function () {
    unfolded.forEach(function (part) {
      part.open = false;
    });
  });
})();
