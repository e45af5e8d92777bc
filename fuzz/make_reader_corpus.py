#!/usr/bin/env python3
"""Writes fuzz/reader_corpus/: seed inputs for corvex_reader_fuzzer made from examples/scans.csv.

Each file is one mode byte (bit 7: strict; bits 0-4: size of the pieces the input arrives in,
minus one) followed by a small CSV or JSON input: a few records of each example tag, with and
without a byte order mark, quoted cells, escapes and line ends of both kinds.
"""
import csv
import io
import json
import os

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUT = os.path.join(ROOT, "fuzz", "reader_corpus")
INTS = {"timeStamp", "rssi", "locationType", "locationSourceType", "indoorFlag", "floorId",
        "floorAcc"}
FLOATS = {"confidence", "lon", "lat", "acc"}


def sample():
    """Three records of every tag of the example, as read by csv.DictReader."""
    with open(os.path.join(ROOT, "examples", "scans.csv"), encoding="utf-8") as f:
        rows = list(csv.DictReader(f))
    seen = {}
    for row in rows:
        if seen.setdefault(row["tag"], 0) < 3:
            seen[row["tag"]] += 1
            yield row


def as_json(rows):
    records = []
    for row in rows:
        record = {}
        for key, value in row.items():
            if value == "":
                continue
            record[key] = int(value) if key in INTS else float(value) if key in FLOATS else value
        records.append(record)
    return json.dumps(records, indent=1, ensure_ascii=True)


def as_csv(rows, line_end):
    text = io.StringIO()
    writer = csv.DictWriter(text, fieldnames=list(rows[0].keys()), lineterminator=line_end,
                            quoting=csv.QUOTE_MINIMAL)
    writer.writeheader()
    writer.writerows(rows)
    return text.getvalue()


def main():
    rows = list(sample())
    odd = dict(rows[0], tag='say "hi", é', floorInfo="F1\nwest", geoId="B-1", indoorFlag="1",
               floorId="1", floorAcc="10", lon="200")
    inputs = {
        "csv_lf": (0x1F, as_csv(rows, "\n")),
        "csv_crlf_pieces": (0x02, as_csv(rows, "\r\n")),
        "csv_quoted_strict": (0x83, as_csv(rows[:2] + [odd], "\n")),
        "json": (0x1F, as_json(rows)),
        "json_bom_pieces": (0x04, "\ufeff" + as_json(rows)),
        "json_escapes_strict": (0x85, as_json(rows[:2] + [odd])),
    }
    os.makedirs(OUT, exist_ok=True)
    for name, (mode, text) in inputs.items():
        with open(os.path.join(OUT, name), "wb") as f:
            f.write(bytes([mode]) + text.encode("utf-8"))


if __name__ == "__main__":
    main()
