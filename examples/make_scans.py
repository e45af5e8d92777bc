#!/usr/bin/env python3
"""Writes examples/scans.csv: scan records of five tags, as phones passing by would report them.

The records are simulated: each phone reports its own position fix (with the fix's noise) and
the tag's RSSI from a log-distance path-loss model with shadowing. The same seed gives the same
file.
"""
import csv
import math
import random
import sys

SEED = 20240611
START_MS = 1718092800000  # 2024-06-11 08:00:00 UTC
MINUTE_MS = 60 * 1000
METRES_PER_DEGREE = 111320.0

FIELDS = ["tag", "timeStamp", "rssi", "confidence", "lon", "lat", "acc", "locationType",
          "locationSourceType", "indoorFlag", "floorId", "floorAcc", "floorInfo", "geoId"]

GNSS, NETWORK, INDOOR = 1, 0, 2


def offset(lon, lat, east, north):
    """The point east/north metres away from lon/lat (degrees)."""
    return (lon + east / (METRES_PER_DEGREE * math.cos(math.radians(lat))),
            lat + north / METRES_PER_DEGREE)


def rssi_at(rng, distance):
    """Received strength (dBm) at distance metres: -59 dBm at 1 m, exponent 2.2, 4 dB noise."""
    value = -59.0 - 22.0 * math.log10(max(distance, 0.5)) + rng.gauss(0.0, 4.0)
    return int(round(min(-40.0, max(-100.0, value))))


def scan(rng, tag, time_ms, tag_lon, tag_lat, radius, fix_kind, indoor=None, confidence=None):
    """One phone within radius metres of the tag reporting its fix; indoor = (building, floor)."""
    angle = rng.uniform(0.0, 2.0 * math.pi)
    distance = radius * math.sqrt(rng.random())
    phone_lon, phone_lat = offset(tag_lon, tag_lat, distance * math.cos(angle),
                                  distance * math.sin(angle))
    acc = rng.uniform(3.0, 15.0) if fix_kind == GNSS else rng.uniform(15.0, 60.0)
    # The fix is off by about its accuracy.
    fix_lon, fix_lat = offset(phone_lon, phone_lat, rng.gauss(0.0, acc / 2), rng.gauss(0.0, acc / 2))
    row = {
        "tag": tag,
        "timeStamp": time_ms,
        "rssi": rssi_at(rng, distance),
        "confidence": confidence if confidence is not None else round(
            rng.uniform(0.3, 0.8) if fix_kind == NETWORK else rng.uniform(0.55, 1.0), 2),
        "lon": round(fix_lon, 7),
        "lat": round(fix_lat, 7),
        "acc": round(acc, 1),
        "locationType": fix_kind,
        "locationSourceType": {GNSS: 1, NETWORK: 2, INDOOR: 3}[fix_kind],
        "indoorFlag": "", "floorId": "", "floorAcc": "", "floorInfo": "", "geoId": "",
    }
    if indoor is not None:
        building, floor = indoor
        row.update({"indoorFlag": 1, "floorId": floor, "floorAcc": rng.choice([5, 10, 12, 15, 20]),
                    "floorInfo": "L%d" % floor if floor >= 0 else "B%d" % -floor,
                    "geoId": building})
    return row


def times(rng, count, start_ms, span_minutes):
    return sorted(start_ms + int(rng.uniform(0, span_minutes * MINUTE_MS)) for _ in range(count))


def park_keys(rng):
    """Keys lost in a park: outdoor phones, mostly satellite fixes."""
    lon, lat = 8.5452, 47.3667
    return [scan(rng, "keys-park", t, lon, lat, 30.0, GNSS if rng.random() < 0.85 else NETWORK)
            for t in times(rng, 140, START_MS, 180)]


def mall_bag(rng):
    """A bag in a shopping centre: indoor fixes, mostly on level 2, a few outside the door."""
    lon, lat = 8.5310, 47.3780
    rows = []
    for t in times(rng, 90, START_MS + 30 * MINUTE_MS, 240):
        if rng.random() < 0.1:
            rows.append(scan(rng, "bag-mall", t, lon, lat, 45.0, GNSS))
        else:
            floor = 2 if rng.random() < 0.8 else rng.choice([1, 3, -1])
            rows.append(scan(rng, "bag-mall", t, lon, lat, 25.0, INDOOR, ("B-4401", floor)))
    return rows


def moved_bike(rng):
    """A bike heard at the station for two hours, then, 40 minutes later, once across town by a
    phone with a trusted indoor fix: the tag has moved."""
    first = [scan(rng, "bike-moved", t, 8.5403, 47.3779, 20.0, GNSS)
             for t in times(rng, 45, START_MS, 120)]
    last = first[-1]["timeStamp"] + 40 * MINUTE_MS
    return first + [scan(rng, "bike-moved", last, 8.5205, 47.3904, 10.0, INDOOR, confidence=0.95)]


def wallet_with_old_cluster(rng):
    """A wallet at home today, with a cluster of day-old hearings 5 km away."""
    old = [scan(rng, "wallet-home", t, 8.6010, 47.3560, 25.0, GNSS)
           for t in times(rng, 30, START_MS - 26 * 60 * MINUTE_MS, 60)]
    recent = [scan(rng, "wallet-home", t, 8.5498, 47.3921, 20.0,
                   GNSS if rng.random() < 0.6 else NETWORK)
              for t in times(rng, 70, START_MS + 60 * MINUTE_MS, 150)]
    return old + recent


def sparse_earbuds(rng):
    """Earbuds heard rarely: few, weak records with network fixes."""
    return [scan(rng, "earbuds-sparse", t, 8.5350, 47.3700, 40.0, NETWORK)
            for t in times(rng, 20, START_MS, 300)]


def main():
    rng = random.Random(SEED)
    rows = (park_keys(rng) + mall_bag(rng) + moved_bike(rng) + wallet_with_old_cluster(rng) +
            sparse_earbuds(rng))
    rows.sort(key=lambda row: (row["timeStamp"], row["tag"]))  # as a collector would log them
    path = sys.argv[1] if len(sys.argv) > 1 else "examples/scans.csv"
    with open(path, "w", newline="") as out:
        writer = csv.DictWriter(out, fieldnames=FIELDS, lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)


if __name__ == "__main__":
    main()
