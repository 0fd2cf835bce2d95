#!/usr/bin/env python3
"""Opens a heron report from disk in headless Chromium, as a reviewer would.

Usage: report_browser_check.py HEADLESS_SHELL PAGE WORKDIR EXPECTED_CHARTS EXPECTED_FINDINGS
  EXPECTED_CHARTS: "filter@rate,filter@rate,..."; EXPECTED_FINDINGS: the number of findings.

Fails (exit 1) on a console message of any kind, on any request that leaves the
file, on a blank or wrongly sized screenshot, or when the page's charts or
findings are not the ones expected; in an interactive page every chart with
curves must have been drawn by the charting library.
"""
import html.parser
import json
import re
import struct
import subprocess
import sys
import zlib

WIDTH, HEIGHT = 1200, 1600


def chromium(binary, workdir, *args):
    cmd = [binary, "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--no-first-run",
           "--user-data-dir=" + workdir + "/profile", "--enable-logging=stderr", "--v=0",
           # No host name resolves: a request the page tries shows in the net
           # log and goes nowhere.
           "--host-resolver-rules=MAP * ~NOTFOUND",
           "--window-size=%d,%d" % (WIDTH, HEIGHT), "--virtual-time-budget=5000", *args]
    return subprocess.run(cmd, capture_output=True, text=True, timeout=90)


def png_checks(path):
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        return "the screenshot is not a PNG"
    width, height = struct.unpack(">II", data[16:24])
    if (width, height) != (WIDTH, HEIGHT):
        return "screenshot is %dx%d, expected %dx%d" % (width, height, WIDTH, HEIGHT)
    idat, pos = b"", 8
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        if kind == b"IDAT":
            idat += data[pos + 8:pos + 8 + length]
        pos += 12 + length
    pixels = zlib.decompress(idat)
    if len(set(pixels)) < 16:
        return "the screenshot is blank"
    return None


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.charts, self.findings, self.canvases, self.svgs = [], 0, {}, {}
        self.interactive = False
        self.current = None

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        classes = (a.get("class") or "").split()
        if tag == "html" and "interactive" in classes:
            self.interactive = True
        if tag == "div" and "chart" in classes:
            self.current = a["id"]
            self.charts.append((a["data-filter"], a["data-rate"], a["id"]))
        if tag == "li" and "finding" in classes:
            self.findings += 1
        if tag == "canvas" and self.current:
            self.canvases[self.current] = self.canvases.get(self.current, 0) + 1
        if tag == "svg" and self.current:
            self.svgs[self.current] = True
        if tag == "section":
            self.current = None


def main():
    binary, page, workdir, expected_charts, expected_findings = sys.argv[1:6]
    url = "file://" + page
    problems = []
    shot = workdir + "/shot.png"
    netlog = workdir + "/net.json"
    runs = [chromium(binary, workdir, "--screenshot=" + shot, "--log-net-log=" + netlog, url),
            chromium(binary, workdir, "--dump-dom", url)]
    for run in runs:
        for line in run.stderr.splitlines():
            if ":CONSOLE" in line:
                problems.append("console: " + line)
    if runs[0].returncode != 0 or runs[1].returncode != 0:
        problems.append("chromium failed: " + runs[0].stderr[-500:] + runs[1].stderr[-500:])
    problem = png_checks(shot)
    if problem:
        problems.append(problem)
    for found in re.findall(r'"url":"([^"]*)"', open(netlog, errors="replace").read()):
        if not found.startswith(("file:", "data:", "about:", "chrome:")):
            problems.append("network request: " + found)

    dom = Page()
    dom.feed(runs[1].stdout)
    got = sorted("%s@%s" % (f, r) for f, r, _ in dom.charts)
    want = sorted(expected_charts.split(","))
    if got != want:
        problems.append("charts %s, expected %s" % (got, want))
    if dom.findings != int(expected_findings):
        problems.append("%d findings, expected %s" % (dom.findings, expected_findings))
    with_curves = [i for _, _, i in dom.charts if dom.svgs.get(i)]
    if not with_curves:
        problems.append("no chart has a picture")
    if dom.interactive:
        undrawn = [i for i in with_curves if not dom.canvases.get(i)]
        if undrawn:
            problems.append("not drawn interactively: " + ", ".join(undrawn))
    for p in problems:
        print("FAIL:", p)
    print(json.dumps({"charts": len(dom.charts), "findings": dom.findings, "interactive": dom.interactive}))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
