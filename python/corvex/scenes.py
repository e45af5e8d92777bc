"""Simulated scan records with known tag positions, seeded: the same arguments give the same
records.

Phones pass near a tag and report their own position fix (off by about its stated accuracy)
and the tag's RSSI from a log-distance path-loss model with shadowing.
"""
from __future__ import annotations

import numpy as np
import pandas as pd

METRES_PER_DEGREE = 111320.0  # metres per degree of latitude (and of longitude at the equator)
START_MS = 1718092800000  # 2024-06-11 08:00 UTC


def rssi_at(rng: np.random.Generator, distance: np.ndarray, at_1m: float = -59.0,
            exponent: float = 2.2, shadowing: float = 4.0) -> np.ndarray:
    """RSSI (dBm, whole) at distance (metres): at_1m (dBm) at one metre, falling by 10 *
    exponent dB per decade of distance, plus Gaussian shadowing (dB); clipped to -100..-40."""
    value = at_1m - 10.0 * exponent * np.log10(np.maximum(distance, 0.5))
    value = value + rng.normal(0.0, shadowing, distance.shape)
    return np.rint(np.clip(value, -100.0, -40.0)).astype(np.int32)


def crowd(tags: int = 500, records_per_tag: int = 2000, seed: int = 0,
          radius: float = 40.0, hours: float = 4.0) -> pd.DataFrame:
    """Scan records of many tags at once, rows shuffled so that tags interleave, for batch
    runs and benchmarks: `tags` tags within about 10 km of a city centre, each heard
    `records_per_tag` times (at whole seconds) within `radius` metres over `hours` hours; 85%
    satellite fixes (3 to 15 m accuracy), the rest network fixes (15 to 60 m); every fifth
    tag indoors (its records name a building and floor). Columns: tag and the record fields."""
    rng = np.random.default_rng(seed)
    count = tags * records_per_tag
    tag = np.repeat(np.arange(tags), records_per_tag)
    centre_lon = 8.54 + rng.uniform(-0.1, 0.1, tags)[tag]
    centre_lat = 47.37 + rng.uniform(-0.1, 0.1, tags)[tag]
    distance = radius * np.sqrt(rng.random(count))
    angle = rng.uniform(0.0, 2.0 * np.pi, count)
    gnss = rng.random(count) < 0.85
    acc = np.where(gnss, rng.uniform(3.0, 15.0, count), rng.uniform(15.0, 60.0, count))
    east = distance * np.cos(angle) + rng.normal(0.0, 1.0, count) * acc / 2
    north = distance * np.sin(angle) + rng.normal(0.0, 1.0, count) * acc / 2
    indoor = tag % 5 == 0
    floor = rng.integers(-1, 4, count)
    names = np.array([f"tag-{t}" for t in range(tags)], dtype=object)
    buildings = np.array([f"B-{t // 5}" if t % 5 == 0 else "" for t in range(tags)], dtype=object)
    floor_names = np.array(["", "L-1", "L0", "L1", "L2", "L3"], dtype=object)
    frame = pd.DataFrame({
        "tag": names[tag],
        # Whole seconds, as many phones report them: ties make the records' order matter.
        "timeStamp": START_MS + 1000 * rng.integers(0, int(hours * 3600), count),
        "rssi": rssi_at(rng, distance),
        "confidence": np.round(rng.uniform(0.3, 1.0, count), 2),
        "lon": np.round(centre_lon + east / (METRES_PER_DEGREE * np.cos(np.radians(centre_lat))), 7),
        "lat": np.round(centre_lat + north / METRES_PER_DEGREE, 7),
        "acc": np.round(acc, 1).astype(np.float32),
        "locationType": np.where(gnss, 1, 0).astype(np.int32),
        "locationSourceType": np.where(gnss, 1, 2).astype(np.int32),
        "indoorFlag": indoor.astype(np.int32),
        "floorId": np.where(indoor, floor, 0).astype(np.int32),
        "floorAcc": np.where(indoor, 10, 0).astype(np.int32),
        "floorInfo": floor_names[np.where(indoor, floor + 2, 0)],
        "geoId": buildings[tag],
    })
    return frame.iloc[rng.permutation(count)].reset_index(drop=True)
