"""Simulated scan records with known tag positions, seeded: the same arguments give the same
records.

A scene is one tag at a true position and phones passing by over hours. Each report carries
the phone's position fix, off by a realistic error for its stated accuracy (a share of fixes
claims better accuracy than it has), an RSSI from a log-distance path-loss model with
shadowing (the model the library inverts, plus noise), the reporter's confidence and a time
stamp. Families (FAMILIES) vary the setting: an outdoor park, a dense city street, an indoor
mall with floors, sparse scenes, a tag carried away, a stale far cluster, hostile reports;
"exact" has noise-free fixes around the tag. generate() makes the scenes of one family.
"""
from __future__ import annotations

from dataclasses import dataclass

import numpy as np
import pandas as pd

METRES_PER_DEGREE = 111320.0  # metres per degree of latitude (and of longitude at the equator)
START_MS = 1718092800000  # 2024-06-11 08:00 UTC
HOUR_MS = 3600 * 1000
# Per-axis standard deviation of a fix error whose 68% circle has radius 1: a stated accuracy
# is the radius within which the true position lies with 68% probability.
SIGMA_PER_ACCURACY = 1.0 / np.sqrt(-2.0 * np.log(0.32))
# Kinds of fix: (locationType, locationSourceType) as the phones report them.
GNSS, NETWORK, INDOOR = (1, 1), (0, 2), (2, 3)


@dataclass(frozen=True)
class SceneParameters:
    """How the scenes of a family are made. Ranges (low, high) are drawn uniformly per scene
    (counts) or per report (accuracies, confidences)."""

    reports: tuple[int, int] = (30, 150)
    """Reports per scene (count, inclusive range). Default 30 to 150."""
    hours: float = 3.0
    """Time span of the reports, ending at the newest one (h). Default 3."""
    radius: float = 25.0
    """Phones hear the tag within this distance of it, uniformly over the disc (m). Default 25."""
    gnss_share: float = 0.85
    """Share of satellite fixes (the rest are network fixes, or indoor fixes indoors).
    Default 0.85."""
    gnss_acc: tuple[float, float] = (3.0, 15.0)
    """Stated accuracy of satellite fixes (m). Default 3 to 15."""
    network_acc: tuple[float, float] = (15.0, 60.0)
    """Stated accuracy of network fixes (m). Default 15 to 60."""
    indoor_acc: tuple[float, float] = (5.0, 20.0)
    """Stated accuracy of indoor fixes (m). Default 5 to 20."""
    optimistic_share: float = 0.1
    """Share of fixes whose real error is larger than their stated accuracy says. Default 0.1."""
    optimism: float = 3.0
    """How many times larger the error of those fixes is (factor). Default 3."""
    rssi_at_1m: float = -72.5
    """RSSI one metre from the tag (dBm). Default -72.5, as the library assumes."""
    db_per_decade: float = 26.5
    """Path loss per tenfold distance (dB). Default 26.5, as the library assumes."""
    shadowing: float = 4.0
    """Standard deviation of the RSSI around the model (dB). Default 4."""
    gnss_confidence: tuple[float, float] = (0.55, 1.0)
    """Confidence reported with satellite and indoor fixes. Default 0.55 to 1."""
    network_confidence: tuple[float, float] = (0.3, 0.8)
    """Confidence reported with network fixes. Default 0.3 to 0.8."""
    indoor: bool = False
    """The tag is inside a building: fixes are indoor fixes naming the building and a floor,
    except satellite fixes (gnss_share) taken at the doors. Default False."""
    floors: tuple[int, int] = (-1, 4)
    """Floors of the building; the tag lies on one of them (inclusive range). Default -1 to 4."""
    floor_label_accuracy: float = 0.8
    """Share of indoor fixes labelled with the right floor; the rest name a neighbouring floor.
    Default 0.8."""
    move_distance: tuple[float, float] = (0.0, 0.0)
    """The tag is carried this far (m) at a time between 40% and 80% of the span; reports after
    that hear it at its new place, which is the truth. Default 0 (not moved)."""
    stale_reports: tuple[int, int] = (0, 0)
    """Reports of a stale group: heard around another place (stale_distance away) stale_age
    hours before the scene. Default none."""
    stale_age: float = 24.0
    """Age of the stale group before the scene's oldest report (h). Default 24."""
    stale_distance: tuple[float, float] = (1000.0, 3000.0)
    """Distance of the stale group from the tag (m). Default 1000 to 3000."""
    hostile_reports: tuple[int, int] = (0, 0)
    """Hostile reports: fixes hostile_distance away from the tag with a good stated accuracy,
    a strong RSSI and full confidence, at random times. Default none."""
    hostile_distance: tuple[float, float] = (500.0, 5000.0)
    """Distance of hostile fixes from the tag (m). Default 500 to 5000."""
    noise_free: bool = False
    """Fixes exactly where the phones are, phones evenly spaced on a circle of the given radius
    around the tag, RSSI without shadowing, confidence 1. Default False."""


FAMILIES = {
    "park": SceneParameters(),
    "street": SceneParameters(gnss_share=0.6, gnss_acc=(5.0, 30.0), network_acc=(20.0, 80.0),
                              optimistic_share=0.4, optimism=2.5),
    # Walls shorten the range at which phones hear the tag.
    "mall": SceneParameters(indoor=True, gnss_share=0.1, reports=(30, 120), radius=15.0),
    "sparse": SceneParameters(reports=(3, 10)),
    "moved": SceneParameters(move_distance=(300.0, 2000.0), reports=(40, 150)),
    "stale": SceneParameters(stale_reports=(10, 30)),
    "hostile": SceneParameters(hostile_reports=(2, 5)),
    "exact": SceneParameters(noise_free=True, reports=(8, 14), radius=10.0, gnss_share=1.0,
                             gnss_acc=(5.0, 5.0)),
}
"""Scene families by name."""
REALISTIC_FAMILIES = ("park", "street", "mall", "sparse", "moved", "stale", "hostile")
"""The families of the evaluation table ("exact" checks the evaluator itself)."""


def _rssi(rng: np.random.Generator, distance: np.ndarray, p: SceneParameters) -> np.ndarray:
    """RSSI (dBm, whole, within the library's range) of phones at distance (m) from the tag."""
    rssi = p.rssi_at_1m - p.db_per_decade * np.log10(np.maximum(distance, 0.5))
    if not p.noise_free:
        rssi = rssi + rng.normal(0.0, p.shadowing, len(distance))
    return np.rint(np.clip(rssi, -127.0, -30.0)).astype(np.int32)


def _offset(lon, lat, east, north):
    """The point east/north metres away from lon/lat (degrees)."""
    return (lon + east / (METRES_PER_DEGREE * np.cos(np.radians(lat))),
            lat + north / METRES_PER_DEGREE)


def _polar(distance: np.ndarray, angle: np.ndarray) -> np.ndarray:
    return np.stack([distance * np.cos(angle), distance * np.sin(angle)], axis=1)


def _disc(rng: np.random.Generator, count: int, radius: float) -> np.ndarray:
    """Uniform positions (east, north in metres) in a disc around the origin."""
    return _polar(radius * np.sqrt(rng.random(count)), rng.uniform(0.0, 2.0 * np.pi, count))


def _ring(count: int, radius: float) -> np.ndarray:
    """Positions evenly spaced on a circle: their mean is its centre."""
    return _polar(np.full(count, radius), 2.0 * np.pi * np.arange(count) / count)


def _away(rng: np.random.Generator, count: int, distances: tuple[float, float]) -> np.ndarray:
    """Positions (east, north in metres) at distances in the range, in random directions."""
    return _polar(rng.uniform(*distances, count), rng.uniform(0.0, 2.0 * np.pi, count))


class _SceneMaker:
    """The reports of one scene, in metres east/north of the tag's true (final) position."""

    def __init__(self, rng: np.random.Generator, p: SceneParameters, floor: int):
        self.rng, self.p, self.floor = rng, p, floor
        self.parts: list[dict[str, np.ndarray]] = []

    def heard(self, spots: np.ndarray, times: np.ndarray) -> None:
        """Reports of phones near the tag, which lay at spots (one per report) when heard."""
        rng, p, count = self.rng, self.p, len(times)
        phones = spots + (_ring(count, p.radius) if p.noise_free else _disc(rng, count, p.radius))
        gnss = rng.random(count) < p.gnss_share
        acc = np.where(gnss, rng.uniform(*p.gnss_acc, count),
                       rng.uniform(*(p.indoor_acc if p.indoor else p.network_acc), count))
        sigma = acc * SIGMA_PER_ACCURACY * np.where(rng.random(count) < p.optimistic_share,
                                                    p.optimism, 1.0)
        fixes = phones if p.noise_free else phones + rng.normal(size=(count, 2)) * sigma[:, None]
        confidence = np.where(gnss | p.indoor, rng.uniform(*p.gnss_confidence, count),
                              rng.uniform(*p.network_confidence, count))
        other = INDOOR if p.indoor else NETWORK
        part = {
            "timeStamp": times, "rssi": _rssi(rng, np.hypot(*(phones - spots).T), p),
            "confidence": np.ones(count) if p.noise_free else np.round(confidence, 2),
            "east": fixes[:, 0], "north": fixes[:, 1], "acc": np.round(acc, 1),
            "locationType": np.where(gnss, GNSS[0], other[0]),
            "locationSourceType": np.where(gnss, GNSS[1], other[1]),
            "indoor": ~gnss & p.indoor,
        }
        self.parts.append(part)

    def hostile(self, count: int, times: np.ndarray) -> None:
        """Far-off fixes that claim 5 m accuracy, a strong RSSI and full confidence."""
        fixes = _away(self.rng, count, self.p.hostile_distance)
        self.parts.append({
            "timeStamp": times, "rssi": np.full(count, -65.0), "confidence": np.ones(count),
            "east": fixes[:, 0], "north": fixes[:, 1], "acc": np.full(count, 5.0),
            "locationType": np.full(count, GNSS[0]), "locationSourceType": np.full(count, GNSS[1]),
            "indoor": np.zeros(count, bool)})

    def records(self, tag: str, lon: float, lat: float, building: str) -> dict[str, np.ndarray]:
        """The reports' columns, in random order (phones report in no particular order)."""
        part = {name: np.concatenate([p[name] for p in self.parts]) for name in self.parts[0]}
        count, indoor = len(part["timeStamp"]), part["indoor"]
        wrong = self.rng.random(count) >= self.p.floor_label_accuracy
        label = self.floor + np.where(wrong, self.rng.choice([-1, 1], count), 0)
        fix_lon, fix_lat = _offset(lon, lat, part["east"], part["north"])
        order = self.rng.permutation(count)
        columns = {
            "tag": np.full(count, tag, dtype=object),
            "timeStamp": part["timeStamp"].astype(np.int64),
            "rssi": part["rssi"].astype(np.int32), "confidence": part["confidence"],
            "lon": np.round(fix_lon, 7), "lat": np.round(fix_lat, 7),
            "acc": part["acc"].astype(np.float32),
            "locationType": part["locationType"].astype(np.int32),
            "locationSourceType": part["locationSourceType"].astype(np.int32),
            "indoorFlag": indoor.astype(np.int32),
            "floorId": np.where(indoor, label, 0).astype(np.int32),
            "floorAcc": np.where(indoor, 10, 0).astype(np.int32),
            "floorInfo": np.where(indoor, [f"L{f}" for f in label], "").astype(object),
            "geoId": np.where(indoor, building, "").astype(object),
        }
        return {name: values[order] for name, values in columns.items()}


def _scene(rng: np.random.Generator, p: SceneParameters, tag: str) -> tuple[dict, dict]:
    lon = 8.54 + rng.uniform(-0.05, 0.05)
    lat = 47.37 + rng.uniform(-0.05, 0.05)
    newest = START_MS + int(rng.integers(0, 30 * 24 * HOUR_MS))
    span = int(p.hours * HOUR_MS)
    floor = int(rng.integers(p.floors[0], p.floors[1] + 1)) if p.indoor else 0
    maker = _SceneMaker(rng, p, floor)
    count = int(rng.integers(p.reports[0], p.reports[1] + 1))
    times = np.sort(newest - rng.integers(0, span, count))
    times[-1] = newest  # the span ends with the newest report
    spots = np.zeros((count, 2))
    if p.move_distance[1] > 0:  # before the move the tag lay elsewhere
        moved_at = newest - span + int(rng.uniform(0.4, 0.8) * span)
        spots[times < moved_at] = _away(rng, 1, p.move_distance)[0]
    maker.heard(spots, times)
    stale = int(rng.integers(p.stale_reports[0], p.stale_reports[1] + 1))
    if stale:
        oldest = times[0] - int(p.stale_age * HOUR_MS)
        maker.heard(np.repeat(_away(rng, 1, p.stale_distance), stale, axis=0),
                    oldest - rng.integers(0, HOUR_MS, stale))
    hostile = int(rng.integers(p.hostile_reports[0], p.hostile_reports[1] + 1))
    if hostile:
        maker.hostile(hostile, newest - rng.integers(0, span, hostile))
    building = f"B-{tag}" if p.indoor else ""
    return maker.records(tag, lon, lat, building), {"tag": tag, "lon": lon, "lat": lat,
                     "floor": floor if p.indoor else None, "building": building or None}


def generate(family: str, scenes: int, seed: int = 0,
             parameters: SceneParameters | None = None) -> tuple[pd.DataFrame, pd.DataFrame]:
    """The scenes of a family: (records, truth).

    records: one row per report, columns tag ("<family>-<n>") and the record fields. truth:
    one row per scene, columns tag, lon, lat (degrees: where the tag is at the newest report),
    floor (indoor scenes, else None) and building. The same family, count and seed give the
    same scenes; scene n does not depend on the count. parameters: instead of the family's.
    """
    if family not in FAMILIES:
        raise ValueError(f"unknown family {family!r}; known: {', '.join(FAMILIES)}")
    p = parameters or FAMILIES[family]
    family_key = int.from_bytes(family.encode(), "little") % (1 << 63)
    made = [_scene(np.random.default_rng([seed, family_key, n]), p, f"{family}-{n}")
            for n in range(scenes)]
    records = pd.DataFrame({name: np.concatenate([r[name] for r, _ in made])
                            for name in made[0][0]}) if made else pd.DataFrame()
    truth = pd.DataFrame([t for _, t in made], columns=["tag", "lon", "lat", "floor", "building"])
    return records, truth


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
        "rssi": _rssi(rng, distance, SceneParameters()),
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
