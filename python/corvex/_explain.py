"""What one call did: where each record left the filters, and how the answer was chosen."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any

from corvex._batch import locate_one, location_at
from corvex._location import Location

# Where a record left the filter pipeline, by the library's stage number.
STAGES = ("not reached",     # the call ended before filtering (e.g. too many records)
          "age",             # more than six hours older than the newest record
          "kindTransId",     # another record of its transmission was preferred
          "confidence",      # trimmed for low confidence
          "first cluster",   # outside the cluster chosen by the 400 m clustering
          "second cluster",  # outside the cluster chosen by the 60 m clustering
          "gnss offset",     # 75 m or more from the cohesive satellite fixes (outdoors)
          "spread",          # trimmed to bring the spread down (outdoors)
          "kept")            # used by the solver
SOLVERS = ("none", "weighted mean", "least squares")
WINNERS = ("none", "main", "kmeans")


@dataclass(frozen=True)
class Candidate:
    """One calculator's answer before the library chose between the two."""
    ran: bool
    lon: float  # degrees (NaN when it did not run)
    lat: float  # degrees
    acc: float  # metres
    runTimeStamp: int  # ms: newest scan near the answer; the later one wins
    code: int  # its error code


@dataclass(frozen=True)
class Explanation:
    """A call of the library with what it did on the way."""
    location: Location
    stages: tuple[str, ...]
    """Per input record, in input order: the STAGES entry that removed it, or "kept"."""
    reference: tuple[float, float] | None
    """Origin (lon, lat in degrees) of the local east/north plane; None before it was set."""
    solver: str
    """How the main path solved: "weighted mean", "least squares" or "none"."""
    solver_iterations: int
    solver_evaluations: int
    solver_rms: float
    """Least squares only: iterations, evaluations and residual RMS (metres)."""
    main: Candidate
    """The main path: filters and solver."""
    kmeans: Candidate
    """The k-means fallback; ran is False when it was not needed."""
    winner: str
    """"main", "kmeans", or "none" when the call ended before choosing."""
    buildings: dict[str, int]
    """The indoor vote: candidates per building (geoId)."""
    floors: dict[int, int]
    """Candidates per floor of the winning building."""
    building: str
    floor: int
    vote_applied: bool
    """Whether the result took the vote's building, floor and floor accuracy."""


def explain(records: Any) -> Explanation:
    """Locates one tag as corvex.locate does (same records, same answer, same log lines) and
    tells what the call did."""
    outcome = locate_one(records, observe=True)
    observed: dict[str, Any] = outcome["observed"][0]
    return Explanation(
        location=location_at(outcome, 0),
        stages=tuple(STAGES[stage] for stage in observed["stages"]),
        reference=observed["reference"],
        solver=SOLVERS[observed["solver"]],
        solver_iterations=observed["solver_iterations"],
        solver_evaluations=observed["solver_evaluations"],
        solver_rms=observed["solver_rms"],
        main=Candidate(*observed["main"]),
        kmeans=Candidate(*observed["kmeans"]),
        winner=WINNERS[observed["winner"]],
        buildings=dict(observed["buildings"]),
        floors=dict(observed["floors"]),
        building=observed["building"],
        floor=observed["floor"],
        vote_applied=observed["vote_applied"],
    )
