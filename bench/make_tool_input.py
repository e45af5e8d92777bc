#!/usr/bin/env python3
"""Writes a large input for `corvex locate` throughput runs, as CSV or as JSON.

usage: make_tool_input.py [--records N] [--tags T] [--format csv|json] [--seed S] OUT

Every tag has N/T records, one tag after the other (the way an export sorted by tag looks):
phones within 60 m of the tag over 24 hours, mostly satellite fixes, one in ten indoors with a
building and floor. The same arguments give the same bytes.
"""
import argparse
import json
import math
import random

FIELDS = ["tag", "timeStamp", "rssi", "confidence", "lon", "lat", "acc", "locationType",
          "locationSourceType", "indoorFlag", "floorId", "floorAcc", "floorInfo", "geoId"]
START_MS = 1718092800000
DAY_MS = 24 * 3600 * 1000
METRES_PER_DEGREE = 111320.0


def tag_records(rng, tag, count):
    """count records of one tag, in scan-time order."""
    tag_lon, tag_lat = rng.uniform(5.9, 10.4), rng.uniform(45.9, 47.7)
    indoor = rng.random() < 0.1
    times = sorted(rng.randrange(DAY_MS) for _ in range(count))
    for time_ms in times:
        angle, distance = rng.uniform(0, 2 * math.pi), 60 * math.sqrt(rng.random())
        gnss = rng.random() < 0.8
        acc = rng.uniform(3, 15) if gnss else rng.uniform(15, 60)
        east = distance * math.cos(angle) + rng.gauss(0, acc / 2)
        north = distance * math.sin(angle) + rng.gauss(0, acc / 2)
        rssi = -59 - 22 * math.log10(max(distance, 0.5)) + rng.gauss(0, 4)
        record = {
            "tag": tag,
            "timeStamp": START_MS + time_ms,
            "rssi": int(round(min(-40, max(-100, rssi)))),
            "confidence": round(rng.uniform(0.55, 1.0) if gnss else rng.uniform(0.3, 0.8), 2),
            "lon": round(tag_lon + east / (METRES_PER_DEGREE * math.cos(math.radians(tag_lat))), 7),
            "lat": round(tag_lat + north / METRES_PER_DEGREE, 7),
            "acc": round(acc, 1),
            "locationType": 1 if gnss else 0,
            "locationSourceType": 1 if gnss else 2,
            "indoorFlag": None, "floorId": None, "floorAcc": None, "floorInfo": None, "geoId": None,
        }
        if indoor:
            record.update({"indoorFlag": 1, "floorId": rng.choice([1, 2]),
                           "floorAcc": rng.choice([10, 15, 20]), "floorInfo": "",
                           "geoId": "B-%04d" % (int(tag_lon * 1000) % 10000)})
        yield record


def write_csv(out, records):
    out.write(",".join(FIELDS) + "\n")
    for record in records:
        out.write(",".join("" if record[f] is None else str(record[f]) for f in FIELDS) + "\n")


def write_json(out, records):
    out.write("[\n")
    for i, record in enumerate(records):
        kept = {k: v for k, v in record.items() if v is not None}
        out.write(("" if i == 0 else ",\n") + json.dumps(kept, separators=(",", ":")))
    out.write("\n]\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--records", type=int, default=200000)
    parser.add_argument("--tags", type=int, default=100)
    parser.add_argument("--format", choices=["csv", "json"], default="csv")
    parser.add_argument("--seed", type=int, default=10)
    parser.add_argument("out")
    args = parser.parse_args()
    rng = random.Random(args.seed)

    def records():
        for t in range(args.tags):
            yield from tag_records(rng, "tag-%03d" % t, args.records // args.tags)

    with open(args.out, "w", encoding="utf-8") as out:
        (write_json if args.format == "json" else write_csv)(out, records())


if __name__ == "__main__":
    main()
