#!/usr/bin/python3
"""Writes a seeded batch of scan records for `corvex locate` (CSV on stdout) that reaches
every stage of the library and the values no phone produces: infinities, NaN, the poles, the
antimeridian, zero and negative accuracies, 32- and 64-bit integer extremes, subnormals.

Tags are contiguous and named after their family (t0042-pole). The same seed gives the same
bytes on every machine: only the standard library's seeded generator is used.

Usage: make_hostile_batch.py [--seed N] [--tags N]
"""
import argparse
import math
import random
import sys

INT32 = (-(2**31), 2**31 - 1)
INT64 = (-(2**63), 2**63 - 1)
INF = math.inf
NAN = math.nan

COLUMNS = ("tag", "timeStamp", "rssi", "confidence", "lon", "lat", "acc", "locationType",
           "locationSourceType", "indoorFlag", "floorId", "floorAcc", "floorInfo", "geoId")

# Values a hostile record may carry instead of a plausible one, per field.
HOSTILE = {
    "timeStamp": [INT64[0], INT64[1], 0, -1, 1],
    "rssi": [INT32[0], INT32[1], 0, 1, -1, -128, -129, 127],
    "confidence": [INF, -INF, NAN, -0.0, 0.0, 1e308, -1.0, 5e-324, 2.0],
    "lon": [INF, -INF, NAN, 180.0, -180.0, 180.0000001, -0.0, 360.0, 1e308, 5e-324],
    "lat": [INF, -INF, NAN, 90.0, -90.0, 90.0000001, -90.0000001, -1e308, 0.0],
    "acc": [INF, -INF, NAN, 0.0, -0.0, -1.0, -1e30, 3.4028235e38, 1e-45],
    "locationType": [INT32[0], INT32[1], 0, -1],
    "locationSourceType": [INT32[0], INT32[1], 0, -1],
    "indoorFlag": [INT32[0], INT32[1], 0, -1],
    "floorId": [INT32[0], INT32[1], 0, -100],
    "floorAcc": [INT32[0], INT32[1], 0, -1],
}
METRES_PER_DEGREE = 111320.0
START = 1718000000000  # ms


def number(value):
    """Shortest text that reads back as the same double (inf, -inf and nan included)."""
    return repr(value) if isinstance(value, float) else str(value)


class Batch:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def record(self, lon, lat, time, spread_m):
        r = self.random
        north = r.gauss(0.0, spread_m) / METRES_PER_DEGREE
        east = r.gauss(0.0, spread_m) / METRES_PER_DEGREE / max(math.cos(math.radians(lat)), 1e-6)
        row = {
            "timeStamp": time,
            "rssi": r.randint(-105, -40),
            "confidence": round(r.random(), r.choice((1, 2, 17))),
            "lon": lon + east,
            "lat": max(-90.0, min(90.0, lat + north)),
            "acc": round(r.uniform(1.0, 80.0), r.choice((0, 1, 6))),
            "locationType": r.choice((1, 1, 1, 0, 2, 3)),
            "locationSourceType": r.choice((1, 2, 3, 0)),
            "indoorFlag": "", "floorId": "", "floorAcc": "", "floorInfo": "", "geoId": "",
        }
        if r.random() < 0.2:
            row.update(indoorFlag=r.choice((0, 1)), floorId=r.randint(-2, 9),
                       floorAcc=r.randint(0, 20), floorInfo=r.choice(("", "F2", "Ebene 3")),
                       geoId=r.choice(("B-4401", "B-17", "Halle")))
        return row

    def cluster(self, count, lon, lat, spread_m):
        """Hearings around one place, seconds to an hour apart, in no particular order."""
        r = self.random
        time = START + r.randint(0, 10**9)
        rows = []
        for _ in range(count):
            time += r.choice((0, 1000, r.randint(1, 600000)))
            rows.append(self.record(lon, lat, time, spread_m))
        r.shuffle(rows)
        return rows

    def place(self):
        r = self.random
        return r.uniform(-180.0, 180.0), r.uniform(-85.0, 85.0)

    def city(self):
        r = self.random
        return self.cluster(r.randint(1, 60), *self.place(), r.choice((5.0, 40.0, 300.0)))

    def big(self):
        r = self.random
        return self.cluster(r.randint(150, 400), *self.place(), r.choice((20.0, 80.0)))

    def pole(self):
        r = self.random
        return self.cluster(r.randint(2, 40), r.uniform(-180.0, 180.0),
                            r.choice((1.0, -1.0)) * r.uniform(89.99, 90.0), 50.0)

    def antimeridian(self):
        rows = self.cluster(self.random.randint(2, 40), 180.0, self.random.uniform(-60, 60), 50.0)
        for row in rows:  # east of the line: -180 + d; west of it: 180 - d
            offset = abs(row["lon"] - 180.0)
            row["lon"] = -180.0 + offset if row["lon"] > 180.0 else 180.0 - offset
        return rows

    def moving(self):
        rows = []
        lon, lat = self.place()
        for leg in range(self.random.randint(2, 5)):
            rows += self.cluster(self.random.randint(3, 15), lon + leg * 0.05, lat, 30.0)
        return rows

    def stale(self):
        """Hearings hours to days apart: the age filters drop most of them."""
        rows = self.city()
        for row in rows:
            row["timeStamp"] -= self.random.randint(0, 3 * 86400000)
        return rows

    def doubtful(self):
        rows = self.city()
        for row in rows:
            row["confidence"] = self.random.uniform(0.0, 0.3)
        return rows

    def duplicates(self):
        row = self.record(*self.place(), START, 10.0)
        return [dict(row) for _ in range(self.random.randint(2, 50))]

    def hostile(self):
        r = self.random
        rows = self.city()
        share = r.choice((0.05, 0.3, 1.0))
        for row in rows:
            for field, values in HOSTILE.items():
                if r.random() < share / 4:
                    row[field] = r.choice(values)
            if row["geoId"] == "" and r.random() < share / 4:
                row.update(geoId="B" * r.choice((1, 300)), floorInfo="", indoorFlag=1,
                           floorId=0, floorAcc=0)
        return rows

    def over_limit(self):
        return self.cluster(5001, *self.place(), 40.0)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--seed", type=int, default=20240611)
    parser.add_argument("--tags", type=int, default=1600)
    args = parser.parse_args()
    batch = Batch(args.seed)
    families = [batch.city] * 4 + [batch.hostile] * 4 + [
        batch.pole, batch.antimeridian, batch.moving, batch.stale, batch.doubtful, batch.duplicates]
    out = sys.stdout
    out.write(",".join(COLUMNS) + "\n")
    for index in range(args.tags):
        if index == args.tags // 2:
            family = batch.over_limit
        elif index % 40 == 7:
            family = batch.big
        else:
            family = batch.random.choice(families)
        tag = "t%04d-%s" % (index, family.__name__.replace("_", "-"))
        for row in family():
            out.write(tag + "," + ",".join(number(row[c]) for c in COLUMNS[1:]) + "\n")


if __name__ == "__main__":
    main()
