// heron report: turns each chart's static picture into an interactive plot
// (hover readout, drag to zoom the frequency axis, double-click to reset,
// legend entries toggle curves) from the data embedded in the page.
(function () {
  "use strict";
  const data = JSON.parse(document.getElementById("report-data").textContent);
  const charts = {};
  for (const c of data.charts) charts[c.id] = c;
  const quantities = {
    m: { label: "Magnitude (dB)", unit: " dB" },
    p: { label: "Phase (degrees)", unit: "\u00b0" },
    g: { label: "Group delay (ms)", unit: " ms" },
  };
  const fmtHz = (v) => (v == null ? "" : v >= 1000 ? (v / 1000).toPrecision(4) + " kHz" : v.toPrecision(4) + " Hz");

  function seriesOf(chart, overlay) {
    const list = chart.curves.map((c) => ({ c: c, suffix: overlay ? " @ " + chart.rate : "" }));
    if (overlay) {
      for (const other of data.charts) {
        if (other.filter !== chart.filter || other.id === chart.id) continue;
        for (const c of other.curves) list.push({ c: c, suffix: " @ " + other.rate, other: true });
      }
    }
    return list;
  }

  function draw(el) {
    const chart = charts[el.id];
    const q = el.dataset.view || "m";
    const overlay = el.closest(".filter").querySelector(".overlay input").checked;
    const list = seriesOf(chart, overlay);
    const plot = el.querySelector(".plot");
    if (!plot) return;  // a filter not loaded at this rate
    if (el._plot) el._plot.destroy();
    plot.textContent = "";
    if (list.length === 0) return;
    const series = [{ label: "Frequency", value: (u, v) => fmtHz(v) }];
    const columns = [data.grid];
    for (const s of list) {
      series.push({
        label: s.c.label + s.suffix,
        stroke: s.c.colour,
        width: s.other ? 1 : 1.6,
        dash: s.c.dashed ? [6, 4] : s.other ? [2, 3] : undefined,
        value: (u, v) => (v == null ? "" : v.toFixed(2) + quantities[q].unit),
      });
      columns.push(s.c[q]);
    }
    const width = Math.max(320, plot.clientWidth || el.clientWidth - 24);
    el._plot = new uPlot({
      width: width,
      height: 300,
      series: series,
      scales: { x: { time: false, distr: 3, range: () => [data.grid[0], data.grid[data.grid.length - 1]] } },
      axes: [
        { label: "Frequency (Hz)", values: (u, ticks) => ticks.map((v) => (v >= 1000 ? v / 1000 + "k" : v)) },
        { label: quantities[q].label, size: 60 },
      ],
      cursor: { drag: { x: true, y: false } },
      legend: { live: true },
    }, columns, plot);
  }

  document.documentElement.classList.add("interactive");
  for (const el of document.querySelectorAll(".chart")) {
    if (!charts[el.id]) continue;
    for (const b of el.querySelectorAll(".views button")) {
      b.addEventListener("click", () => {
        el.dataset.view = b.dataset.q;
        for (const o of el.querySelectorAll(".views button")) o.classList.toggle("on", o === b);
        draw(el);
      });
    }
    draw(el);
  }
  for (const box of document.querySelectorAll(".overlay input")) {
    box.addEventListener("change", () => {
      for (const el of box.closest(".filter").querySelectorAll(".chart")) if (charts[el.id]) draw(el);
    });
  }
})();
