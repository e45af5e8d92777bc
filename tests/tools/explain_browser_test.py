"""corvex explain end to end. Without --tag a file of several tags is refused with their names.
Headless Chromium opens the report of the mall example: it must hold one dot per record, the
estimate marker, stage counts equal to the call's infoCount (and to the dots of each stage),
and its screenshot must not be blank.

Usage: explain_browser_test.py CORVEX_BINARY EXAMPLES_DIR SCREENSHOT_PNG
Exits 77 (skipped) when no Chromium is installed.
"""
import csv, html.parser, json, os, shutil, struct, subprocess, sys, tempfile, zlib
from collections import Counter

TAG = "bag-mall"


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.dots, self.rows, self.estimate = Counter(), [], False

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        if "dot" in a.get("class", "").split():
            self.dots[a["data-stage"]] += 1
        self.estimate |= a.get("id") == "estimate"
        if tag == "li" and "data-stage" in a:
            self.rows.append((a["data-stage"], a.get("data-removed"), a.get("data-left")))


def pixels(png):
    """Every 7th pixel of an 8-bit RGB(A), non-interlaced PNG, as Chromium writes them."""
    pos, idat = 8, b""
    while pos < len(png):
        length, kind = struct.unpack(">I4s", png[pos:pos + 8])
        if kind == b"IHDR":
            width, height, _, colour = struct.unpack(">IIBB", png[pos + 8:pos + 18])
        idat += png[pos + 8:pos + 8 + length] if kind == b"IDAT" else b""
        pos += 12 + length
    bpp, raw = {2: 3, 6: 4}[colour], zlib.decompress(idat)
    stride, prev, seen = width * bpp, bytearray(width * bpp), Counter()
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a, b, c = line[i - bpp] if i >= bpp else 0, prev[i], prev[i - bpp] if i >= bpp else 0
            paeth = min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]
            line[i] = (line[i] + (0, a, b, (a + b) // 2, paeth)[kind]) & 255
        seen.update(bytes(line[i:i + bpp]) for i in range(0, stride, bpp * 7))
        prev = line
    return seen


def main(corvex, examples, screenshot):
    scans, env = os.path.join(examples, "scans.csv"), dict(os.environ, CORVEX_LOG_LEVEL="off")
    refused = subprocess.run([corvex, "explain", scans], capture_output=True, text=True)
    failures = [] if refused.returncode == 2 and "choose one with --tag: 'wallet-home', " in \
        refused.stderr else [f"several tags without --tag: {refused.returncode} {refused.stderr}"]
    browser = shutil.which("chromium")
    if browser is None:
        print("SKIPPED: Chromium is not installed (Debian package chromium)")
        return 77
    with open(scans, newline="") as f:
        records = sum(1 for row in csv.DictReader(f) if row["tag"] == TAG)
    located = subprocess.run([corvex, "locate", scans], env=env, check=True, capture_output=True,
                             text=True).stdout
    info_count = [line for line in map(json.loads, located.splitlines())
                  if line["tag"] == TAG][0]["infoCount"]
    with tempfile.TemporaryDirectory() as work:
        report = os.path.join(work, "report.html")
        subprocess.run([corvex, "explain", scans, "--tag", TAG, "-o", report], env=env, check=True)
        chromium = [browser, "--headless", "--no-sandbox", "--disable-gpu",
                    "--disable-background-networking", "--disable-component-update",
                    "--disable-sync", "--no-first-run", "--hide-scrollbars",
                    "--window-size=1440,1100", "--user-data-dir=" + os.path.join(work, "profile")]
        run = [subprocess.run(chromium + [arg, "file://" + report], check=True, timeout=300,
                              capture_output=True, text=True) for arg in ("--dump-dom",
                                                                          "--screenshot=" + screenshot)]
        page = Page()
        page.feed(run[0].stdout)
    if sum(page.dots.values()) != records:
        failures.append(f"{sum(page.dots.values())} dots for {records} records")
    if not page.estimate:
        failures.append("no estimate marker")
    if [int(left) for _, _, left in page.rows if left is not None] != info_count:
        failures.append(f"stage counts {page.rows}, infoCount {info_count}")
    failures += [f"stage {stage}: {removed} removed, {page.dots[stage]} dots"
                 for stage, removed, _ in page.rows if removed and int(removed) != page.dots[stage]]
    with open(screenshot, "rb") as f:
        seen = pixels(f.read())
    if len(seen) < 16 or seen.most_common(1)[0][1] > 0.95 * sum(seen.values()):
        failures.append(f"the screenshot looks blank: {len(seen)} pixel values")
    for failure in failures:
        print("FAILED:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
