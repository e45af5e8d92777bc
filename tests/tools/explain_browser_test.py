"""corvex explain in a real browser: headless Chromium opens the report of the mall example.
The page must hold one dot per record, the estimate marker, stage counts equal to the call's
infoCount (and to the dots of each stage), and its screenshot must not be blank.

Usage: explain_browser_test.py CORVEX_BINARY EXAMPLES_DIR SCREENSHOT_PNG
Exits 77 (skipped) only when no Chromium is installed.
"""
import csv
import html.parser
import json
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib
from collections import Counter

TAG = "bag-mall"


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.dots = Counter()  # stage -> dots
        self.rows = []  # (stage, removed, left) of the stage list, in order
        self.estimate = False

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        if "dot" in a.get("class", "").split():
            self.dots[a["data-stage"]] += 1
        self.estimate |= a.get("id") == "estimate"
        if tag == "li" and "data-stage" in a:
            self.rows.append((a["data-stage"], a.get("data-removed"), a.get("data-left")))


def pixel_values(png):
    """Counts the pixel values of an 8-bit RGB(A), non-interlaced PNG, as Chromium writes."""
    pos, idat = 8, b""
    while pos < len(png):
        length, kind = struct.unpack(">I4s", png[pos:pos + 8])
        body = png[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            width, height, _, colour_type = struct.unpack(">IIBB", body[:10])
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    bpp = {2: 3, 6: 4}[colour_type]
    stride, raw = width * bpp, zlib.decompress(idat)
    prev, counts = bytearray(stride), Counter()
    for y in range(height):
        start = y * (stride + 1)
        kind, line = raw[start], bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            a = line[i - bpp] if i >= bpp else 0
            b, c = prev[i], prev[i - bpp] if i >= bpp else 0
            if kind == 1:
                line[i] = (line[i] + a) & 255
            elif kind == 2:
                line[i] = (line[i] + b) & 255
            elif kind == 3:
                line[i] = (line[i] + (a + b) // 2) & 255
            elif kind == 4:
                p = a + b - c
                near = min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]
                line[i] = (line[i] + near) & 255
        counts.update(bytes(line[i:i + bpp]) for i in range(0, stride, bpp * 7))
        prev = line
    return counts


def main(corvex, examples, screenshot):
    browser = shutil.which("chromium")
    if browser is None:
        print("SKIPPED: Chromium is not installed (Debian package chromium)")
        return 77
    scans = os.path.join(examples, "scans.csv")
    with open(scans, newline="") as f:
        records = sum(1 for row in csv.DictReader(f) if row["tag"] == TAG)
    env = dict(os.environ, CORVEX_LOG_LEVEL="off")
    located = subprocess.run([corvex, "locate", scans], env=env, check=True,
                             capture_output=True, text=True).stdout
    info_count = next(line["infoCount"] for line in map(json.loads, located.splitlines())
                      if line["tag"] == TAG)
    with tempfile.TemporaryDirectory() as work:
        report = os.path.join(work, "report.html")
        subprocess.run([corvex, "explain", scans, "--tag", TAG, "-o", report], env=env, check=True)
        chromium = [browser, "--headless", "--no-sandbox", "--disable-gpu",
                    "--disable-background-networking", "--disable-component-update",
                    "--disable-sync", "--no-first-run", "--hide-scrollbars",
                    "--window-size=1440,1100", "--user-data-dir=" + os.path.join(work, "profile")]
        dom = subprocess.run(chromium + ["--dump-dom", "file://" + report], check=True,
                             capture_output=True, text=True, timeout=300).stdout
        subprocess.run(chromium + ["--screenshot=" + screenshot, "file://" + report], check=True,
                       capture_output=True, timeout=300)
    page = Page()
    page.feed(dom)
    failures = []
    if sum(page.dots.values()) != records:
        failures.append(f"{sum(page.dots.values())} dots for {records} records")
    if not page.estimate:
        failures.append("no estimate marker")
    left = [int(left) for _, _, left in page.rows if left is not None]
    if left != info_count:
        failures.append(f"stage counts {left}, infoCount {info_count}")
    for stage, removed, _ in page.rows:
        if removed is not None and int(removed) != page.dots[stage]:
            failures.append(f"stage {stage}: {removed} removed, {page.dots[stage]} dots")
    with open(screenshot, "rb") as f:
        values = pixel_values(f.read())
    if len(values) < 16 or values.most_common(1)[0][1] > 0.95 * sum(values.values()):
        failures.append(f"screenshot looks blank: {len(values)} pixel values")
    for failure in failures:
        print("FAILED:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
