#!/usr/bin/python3
"""Writes the generated tags of the whole-call test, tests/interface/whole_calls.csv (the
columns of `corvex locate`), and with --update also its record of their answers.

Usage: make_whole_calls.py [--update [BUILD_DIR]]

Each tag is a few groups of phones: near or far from each other, recent or hours old,
satellite, network or indoor fixes, trusted or not, sometimes too faint to count, sometimes a
lone trusted fix far away and well after the others (a moved tag), and now and then a record
with an out-of-range or missing value. A few tags have hundreds of records. Only
random.random() is drawn, so the same seed gives the same file on every Python 3.

--update then runs the whole-call test of BUILD_DIR (default build/) in its rewrite mode, which
replaces tests/interface/whole_calls.expected with this build's answers: do it only after a
deliberate change of results or log lines, and review the diff.
"""
import math
import os
import random
import subprocess
import sys

SEED = 7
TAGS = 160
NOW = 1718092800000  # ms
MINUTE = 60000  # ms
FIELDS = ("tag,timeStamp,rssi,confidence,lon,lat,acc,locationType,locationSourceType,"
          "indoorFlag,floorId,floorAcc,floorInfo,geoId")
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


class Draw:
    def __init__(self, seed):
        self.rng = random.Random(seed)

    def unit(self):
        return self.rng.random()

    def between(self, low, high):
        return low + (high - low) * self.unit()

    def pick(self, values):
        return values[min(int(self.unit() * len(values)), len(values) - 1)]

    def chance(self, p):
        return self.unit() < p


def odd_value(draw, field, value):
    """Rarely replaces a value by one the library must handle: out of range or not a number."""
    if not draw.chance(0.02):
        return value
    return draw.pick({"rssi": [0, 5, -127, -128, -130], "confidence": [0, 1, 1.5, "nan"],
                      "acc": [0, 0.5, 200, "inf"], "lat": ["nan", 91, -90]}[field])


def group(draw, tag, lon, lat, big):
    """Records of phones around one place, over one stretch of time."""
    count = draw.pick([150, 300]) if big else 1 + int(draw.unit() ** 2 * 24)
    radius = draw.pick([3, 15, 40, 90, 250])
    start = NOW - int(draw.pick([0, 0, 30, 90, 200, 400, 1500]) * MINUTE)
    span = draw.pick([1, 10, 60, 180]) * MINUTE
    kinds = draw.pick([(1,), (1, 1, 0), (0,), (2,), (2, 2, 1)])
    confidence = draw.pick([(0.3, 0.8), (0.55, 1.0), (0.98, 0.98), (0.9, 0.99)])
    building = draw.pick(["", "", "B-1", "B-2", "null"])
    faint = draw.chance(0.05)  # too weak to count: every record below -120 dBm
    rows = []
    for _ in range(count):
        angle, distance = draw.between(0, 2 * math.pi), radius * math.sqrt(draw.unit())
        kind = draw.pick(kinds)
        floor = draw.pick([2, 2, 2, 1, 0, -1])
        indoor = [1, floor, draw.pick([5, 10, 12, 20]), f"L{floor}", building] if building else \
            [""] * 5
        rssi = int(round(-59 - 22 * math.log10(max(distance, 0.5)) + draw.between(-8, 8)))
        rows.append([
            tag, start + int(draw.unit() * span),
            odd_value(draw, "rssi", -125 if faint else max(-120, rssi)),
            odd_value(draw, "confidence", round(draw.between(*confidence), 4)),
            round(lon + distance * math.cos(angle) / 75000, 7),
            odd_value(draw, "lat", round(lat + distance * math.sin(angle) / 111000, 7)),
            odd_value(draw, "acc", round(draw.between(3, 60), 1)),
            kind, draw.pick([1, 2, 3]) if kind != 1 else 1] + indoor)
    return rows


def tag_rows(draw, tag, big):
    lon, lat = 8.54 + draw.between(-0.01, 0.01), 47.37 + draw.between(-0.01, 0.01)
    rows = []
    for _ in range(1 + int(draw.unit() * 3)):
        far = draw.pick([0, 0, 0.0005, 0.002, 0.01, 0.05])
        rows += group(draw, tag, lon + far * draw.between(-1, 1), lat + far * draw.between(-1, 1),
                      big)
        big = False
    if draw.chance(0.15):  # a trusted fix far away, well after the others
        last = max(row[1] for row in rows)
        rows.append([tag, last + draw.pick([20, 31, 45]) * MINUTE, -70, 0.95, lon + 0.02, lat,
                     8, 2, 3] + [""] * 5)
    return rows


def write_calls(path):
    draw = Draw(SEED)
    with open(path, "w") as out:
        out.write(FIELDS + "\n")
        for index in range(TAGS):
            for row in tag_rows(draw, f"t{index}", index % 80 == 79):
                out.write(",".join(str(value) for value in row) + "\n")


def main(args):
    write_calls(os.path.join(ROOT, "tests", "interface", "whole_calls.csv"))
    if args[:1] == ["--update"]:
        build = args[1] if len(args) > 1 else os.path.join(ROOT, "build")
        subprocess.run([os.path.join(build, "tests", "corvex_tests"), "--gtest_filter=WholeCalls.*"],
                       env=dict(os.environ, CORVEX_UPDATE_WHOLE_CALLS="1"), check=True)
    elif args:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
