#!/usr/bin/python3
"""Writes fuzz inputs for the GetAggregateLocation fuzz target from scan tables.

Usage: make_fuzz_corpus.py CSV OUT_DIR [--variants]

One input per tag of the CSV (the columns of examples/scans.csv and `corvex locate`). With
--variants, the first tag also gets inputs that exercise the entry point's edges: a zero, a
negative and an over-limit count, null pointers and 64 KiB texts. The byte layout is the one
described at the top of fuzz/get_aggregate_location_fuzzer.cc. Seed inputs are rewritten
whenever examples/scans.csv changes:

  /usr/bin/python3 scripts/make_fuzz_corpus.py examples/scans.csv fuzz/corpus --variants
"""
import csv
import os
import struct
import sys

RECORD = struct.Struct("<qiddd f iiiii BB".replace(" ", ""))
MAX_TEXT = 0xFFFF


def number(text, kind, default=0):
    text = (text or "").strip()
    if not text:
        return default
    return float(text) if kind is float else int(text)


def text_choice(value, texts):
    if value is None:
        return 0
    if value in texts:
        return texts.index(value) + 1
    return 3


def encode(rows, flags=0, target=0, texts=None):
    geo_ids = [row["geoId"] for row in rows if row.get("geoId")]
    floors = [row["floorInfo"] for row in rows if row.get("floorInfo")]
    if texts is None:
        texts = [geo_ids[0] if geo_ids else "", floors[0] if floors else ""]
    out = bytearray(struct.pack("<BH", flags, target))
    for text in texts:
        data = text.encode()[:MAX_TEXT]
        out += struct.pack("<H", len(data)) + data
    for row in rows:
        geo_id = row.get("geoId") or None
        floor_info = row.get("floorInfo") if geo_id is not None else None
        out += RECORD.pack(
            number(row["timeStamp"], int), number(row["rssi"], int),
            number(row["confidence"], float), number(row["lon"], float),
            number(row["lat"], float), number(row["acc"], float),
            number(row["locationType"], int), number(row["locationSourceType"], int),
            number(row.get("indoorFlag"), int), number(row.get("floorId"), int, -100),
            number(row.get("floorAcc"), int), text_choice(geo_id, texts),
            text_choice(floor_info, texts) if geo_id is not None else 0)
    return bytes(out)


def variants(rows):
    long_texts = ["G" * MAX_TEXT, "F" * MAX_TEXT]
    indoor = [dict(row, geoId=long_texts[0], floorInfo=long_texts[1]) for row in rows]
    return {
        "zero-count": encode(rows, flags=1 << 3),
        "negative-count": encode(rows, flags=2 << 3, target=7),
        "over-limit": encode(rows, flags=3 << 3, target=5001),
        "at-limit": encode(rows, flags=3 << 3, target=5000),
        "null-infos": encode(rows, flags=1),
        "null-result": encode(rows, flags=2),
        "null-trace": encode(rows, flags=4),
        "long-texts": encode(indoor, texts=long_texts),
    }


def main(argv):
    if len(argv) not in (3, 4):
        sys.exit(__doc__)
    with open(argv[1], newline="") as table:
        rows = list(csv.DictReader(table))
    tags = {}
    for row in rows:
        tags.setdefault(row["tag"], []).append(row)
    os.makedirs(argv[2], exist_ok=True)
    inputs = {tag: encode(tag_rows) for tag, tag_rows in tags.items()}
    if "--variants" in argv[3:] and tags:
        inputs.update(variants(next(iter(tags.values()))))
    for name, data in inputs.items():
        with open(os.path.join(argv[2], name + ".bin"), "wb") as out:
            out.write(data)


if __name__ == "__main__":
    main(sys.argv)
