"""corvex for Python: where is the Bluetooth Low Energy tag?

Phones that pass near a tag report each hearing (RSSI, scan time) with their own position fix;
corvex turns all reports of one tag into one location. This package runs the C++ library on
pandas frames:

    corvex.locate(records)            one tag -> Location
    corvex.locate_many(frame, by=...) one row per tag, on several threads
    corvex.dask.locate(ddf, by=...)   the same on a Dask DataFrame (import corvex.dask)
    corvex.read_scans(path)           a CSV or JSON file of `corvex locate` as a frame
    corvex.explain(records)           one tag's call with each record's stage and the choices

Units: longitude and latitude in degrees, accuracies in metres, time stamps in milliseconds,
RSSI in dBm. The library's diagnostics go to the logger "corvex" (library debug, info, warn
and error lines as DEBUG, INFO, WARNING and ERROR records, after each call), unless
CORVEX_LOG_FILE names a file for them.
"""
from corvex._batch import locate, locate_many
from corvex._explain import STAGES, Candidate, Explanation, explain
from corvex._location import Location
from corvex._records import FIELDS, ScanFileError, read_scans

__all__ = ["FIELDS", "STAGES", "Candidate", "Explanation", "Location", "ScanFileError", "explain", "locate",
           "locate_many", "read_scans"]
