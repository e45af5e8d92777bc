"""The answer for one tag."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any


@dataclass(frozen=True)
class Location:
    """Where the library puts one tag, with the library's error code as a field.

    A non-zero code says why no estimate could be made; the other fields then hold the
    library's fallback values (typically the newest record's position).
    """

    code: int
    """0 on success, else the library's error code (500010 no records, 500020 more than 5000
    records, 500030 an RSSI outside -127 to 0, 500050 every record filtered out, 500060 the
    solver failed, 500070 every confidence 0, 500090 the tag moved, -1 unknown)."""
    message: str
    """The code's message, e.g. "Success"."""
    lon: float
    """Longitude (degrees)."""
    lat: float
    """Latitude (degrees)."""
    acc: float
    """Accuracy radius (metres), the library's single-precision value."""
    confidence: float
    """Confidence of the estimate."""
    timeStamp: int
    """Time the position refers to (ms, the records' epoch)."""
    runTimeStamp: int
    """Newest scan near the position (ms)."""
    indoorFlag: int
    """Indoor indication of the winning building vote; 0 outdoors."""
    geoId: str
    """Building identifier; "" when none."""
    floorId: int
    """Floor number; -100 when unknown."""
    floorAcc: int
    """Floor accuracy."""
    floorInfo: str
    """Floor text; "" when none."""
    infoCount: tuple[int, ...]
    """Records left after each filter stage: input, age cut, one per transmission, confidence
    trim, first and second clustering, and outdoors the satellite cut and the spread trim."""
    trace: dict[str, Any]
    """The library's trace log, parsed: version, errorCode, errorMsg, infoCount."""
