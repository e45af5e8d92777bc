"""locate and locate_many: frames of scan records to locations, with the GIL released."""
from __future__ import annotations

import json
import logging
import os
from typing import Any

import numpy as np
import pandas as pd

from corvex import _core
from corvex._location import Location
from corvex._records import as_frame, columns_of

logger = logging.getLogger("corvex")

# Platform log levels of the library and their logging levels.
_LEVELS = {3: logging.DEBUG, 4: logging.INFO, 5: logging.WARNING, 6: logging.ERROR}
_PLATFORM_OFF = 7

# CPU time (s) the library calls of the latest locate_groups took, summed over threads; the
# benchmark compares it with the whole Python path.
last_library_seconds = 0.0

# Columns of a result frame after the tag column, with their dtypes.
RESULT_COLUMNS = {
    "code": np.int32, "message": object, "lon": np.float64, "lat": np.float64,
    "acc": np.float32, "confidence": np.float64, "timeStamp": np.int64,
    "runTimeStamp": np.int64, "indoorFlag": np.int32, "geoId": object, "floorId": np.int32,
    "floorAcc": np.int32, "floorInfo": object, "infoCount": object, "trace": object,
}


def _capture_level() -> int:
    """Lowest library level the "corvex" logger takes; with CORVEX_LOG_FILE set the library
    writes its own lines there instead."""
    if os.environ.get("CORVEX_LOG_FILE"):
        return _core.NO_CAPTURE
    for platform_level, level in _LEVELS.items():
        if logger.isEnabledFor(level):
            return platform_level
    return _PLATFORM_OFF


def _forward_log(log: tuple[list, list, list], tags: Any) -> None:
    for group, level, message in zip(*log):
        logger.log(_LEVELS.get(level, logging.ERROR), message, extra={"tag": tags[group]})


def _check_jobs(jobs: int | None) -> int:
    if jobs is None:
        return os.cpu_count() or 1
    if isinstance(jobs, bool) or not isinstance(jobs, (int, np.integer)) or jobs < 1:
        raise ValueError(f"jobs: expected a whole number of at least 1, found {jobs!r}")
    return int(jobs)


def _parse_trace(trace: str | None) -> dict[str, Any]:
    # The library's messages hold no quotes, so its trace is valid JSON.
    return json.loads(trace) if trace else {}


def locate_groups(frame: pd.DataFrame, rows: np.ndarray, offsets: np.ndarray, tags: Any,
                  jobs: int, observe: bool = False) -> dict[str, Any]:
    """Runs the library once per group of rows (group g: rows[offsets[g]:offsets[g + 1]], in
    that order); returns the result columns, log lines forwarded. observe: also what each
    call did, under "observed"."""
    outcome = _core.locate_groups(columns_of(frame), np.ascontiguousarray(rows, np.int64),
                                  np.ascontiguousarray(offsets, np.int64), jobs,
                                  _capture_level(), pd.NA, observe)
    _forward_log(outcome.pop("log"), tags)
    global last_library_seconds
    last_library_seconds = outcome.pop("library_seconds")
    traces = [_parse_trace(trace) for trace in outcome["trace"]]
    outcome["trace"] = traces
    outcome["message"] = [trace.get("errorMsg", "") for trace in traces]
    outcome["infoCount"] = [trace.get("infoCount", []) for trace in traces]
    return outcome


def locate(records: Any) -> Location:
    """Locates one tag from all its scan records.

    records: a pandas DataFrame with the field columns of the CSV format (timeStamp ms, rssi
    dBm, confidence, lon and lat degrees, acc metres, locationType, locationSourceType,
    indoorFlag, floorId, floorAcc, floorInfo, geoId; other columns are ignored), a list of
    dicts with those keys, or a numpy structured array with those fields. Records without a
    building (geoId empty, None or NaN) need no indoor values. NaN is a valid value of the
    floating fields; an empty input is a valid (empty) list of records.

    Returns the library's answer; an error code is a field of it, never an exception.
    Raises ValueError for a caller mistake: a missing column, a value of the wrong type, a
    missing or non-finite value of an integer field (timeStamp included).
    """
    return location_at(locate_one(records), 0)


def locate_one(records: Any, observe: bool = False) -> dict[str, Any]:
    """The result columns of one call over all records, in their order."""
    frame = as_frame(records)
    return locate_groups(frame, np.arange(len(frame)), np.array([0, len(frame)]), [None], 1,
                         observe)


def location_at(outcome: dict[str, Any], group: int) -> Location:
    return Location(**{name: _scalar(outcome[name][group]) for name in RESULT_COLUMNS
                       if name != "infoCount"},
                    infoCount=tuple(outcome["infoCount"][group]))


def _scalar(value: Any) -> Any:
    return value.item() if isinstance(value, np.generic) else value


def result_frame(by: str, tags: Any, outcome: dict[str, Any] | None = None) -> pd.DataFrame:
    """A frame with the tag column and the result columns (empty when outcome is None)."""
    columns = {by: tags}
    for name, dtype in RESULT_COLUMNS.items():
        values = outcome[name] if outcome is not None else []
        columns[name] = np.asarray(values, dtype=dtype) if dtype is not object else pd.Series(
            values, dtype=object)
    return pd.DataFrame(columns)


def group_rows(frame: pd.DataFrame, by: str) -> tuple[Any, np.ndarray, np.ndarray]:
    """Tags in order of first appearance, and the rows of each in input order."""
    if by not in frame.columns:
        raise ValueError(f"missing column {by!r}")
    codes, tags = pd.factorize(frame[by])
    if len(codes) and codes.min() < 0:  # missing tags form a group too (a slower pass)
        codes, tags = pd.factorize(frame[by], use_na_sentinel=False)
    rows, offsets = _core.rows_by_group(codes, len(tags))
    return tags, rows, offsets


def locate_many(frame: pd.DataFrame, by: str = "tag", jobs: int | None = None) -> pd.DataFrame:
    """Locates every tag of a frame of scan records (columns as for locate, plus the tag
    column named by `by`).

    Returns one row per tag, in order of first appearance: the tag column, then code,
    message, lon, lat (degrees), acc (metres), confidence, timeStamp, runTimeStamp (ms),
    indoorFlag, geoId, floorId, floorAcc, floorInfo, infoCount and trace as in Location.
    Each tag's records reach the library in frame order. jobs library calls run at once on
    threads of this process (default: the number of CPUs); the GIL is released meanwhile.
    Working memory: about 100 bytes per record besides the frame.
    """
    jobs = _check_jobs(jobs)
    if not isinstance(frame, pd.DataFrame):
        raise ValueError(f"frame: expected a pandas DataFrame, found {type(frame).__name__}")
    tags, rows, offsets = group_rows(frame, by)
    if len(tags) == 0:
        return result_frame(by, pd.Series([], dtype=frame[by].dtype))
    return result_frame(by, tags, locate_groups(frame, rows, offsets, tags, jobs))
