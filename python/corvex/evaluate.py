"""How good is the estimate? corvex against ground truth and simple baselines.

Scenes (corvex.scenes) or a user's labelled records are located with corvex and with four
baselines: the newest report, the mean of the fixes, the confidence-weighted mean and the
accuracy-weighted mean (weights 1/acc^2). Per family a table gives the error quantiles, how
often the true position lies within the reported accuracy, floor hits indoors and corvex's
error codes; plot() draws error CDFs and corvex's calibration; losses() tells where corvex
loses to a baseline and which step of the library adds the error.
"""
from __future__ import annotations

import io
import json
from dataclasses import dataclass

import numpy as np
import pandas as pd

from corvex import _batch, _explain
from corvex._records import TAG, has_text, read_scans

METHODS = ("corvex", "newest report", "mean", "confidence-weighted mean",
           "accuracy-weighted mean")
"""Estimators compared, corvex first."""
BASELINES = METHODS[1:]
EARTH_RADIUS = 6371008.8  # mean Earth radius (m)
QUANTILES = (0.5, 0.9, 0.95)


def distance(lon1, lat1, lon2, lat2) -> np.ndarray:
    """Great-circle distance (m) between points given in degrees; inf where one is not finite."""
    lon1, lat1, lon2, lat2 = (np.radians(np.asarray(v, dtype=np.float64))
                              for v in (lon1, lat1, lon2, lat2))
    a = (np.sin((lat2 - lat1) / 2) ** 2
         + np.cos(lat1) * np.cos(lat2) * np.sin((lon2 - lon1) / 2) ** 2)
    metres = 2 * EARTH_RADIUS * np.arcsin(np.sqrt(np.clip(a, 0.0, 1.0)))
    return np.where(np.isfinite(metres), metres, np.inf)


def baselines(records: pd.DataFrame, by: str = "tag") -> pd.DataFrame:
    """The baselines' positions per tag (index, in order of first appearance), as columns "<method> lon" and "<method> lat",
    plus the newest report's stated accuracy ("newest report acc", m) and floor ("newest report
    floor", None without a building). The newest report is the one with the latest timeStamp,
    of equal ones the last in the records' order."""
    newest = records.sort_values("timeStamp", kind="stable").groupby(by, sort=False).tail(1)
    newest = newest.set_index(by).reindex(pd.unique(records[by]))
    weights = {"mean": np.ones(len(records)),
               "confidence-weighted mean": records["confidence"].to_numpy(np.float64),
               "accuracy-weighted mean": 1.0 / records["acc"].to_numpy(np.float64) ** 2}
    out = pd.DataFrame({"newest report lon": newest["lon"], "newest report lat": newest["lat"],
                        "newest report acc": newest["acc"].astype(np.float64),
                        "newest report floor": newest["floorId"].astype(object).where(has_text(
                            np.ascontiguousarray(newest["geoId"].to_numpy(object))), None)})
    keys = records[by]
    for method, weight in weights.items():
        with np.errstate(invalid="ignore", divide="ignore"):
            sums = pd.DataFrame({"w": weight, "lon": weight * records["lon"].to_numpy(),
                                 "lat": weight * records["lat"].to_numpy()}).groupby(
                                     keys.to_numpy(), sort=False).sum()
            out[f"{method} lon"] = sums["lon"] / sums["w"]
            out[f"{method} lat"] = sums["lat"] / sums["w"]
    return out


@dataclass
class Evaluation:
    """One family's (or file's) scenes, scored: one row per scene in `scores`."""
    name: str
    scores: pd.DataFrame
    """Columns: tag, "<method> error" (m) per method, acc (corvex, m), "newest report acc",
    code (corvex), floor hit columns where the truth has floors; observed: what each corvex
    call did (when located with observe)."""
    observed: list | None = None
    records: pd.DataFrame | None = None


def score(name: str, records: pd.DataFrame, truth: pd.DataFrame, located: pd.DataFrame,
          by: str = "tag", observed: list | None = None) -> Evaluation:
    """Scores corvex's answers (a locate_many frame) and the baselines against the truth
    (columns by, lon, lat, optional floor)."""
    truth = truth.set_index(by)
    found = located.set_index(by).reindex(truth.index)
    base = baselines(records, by).reindex(truth.index)
    scores = pd.DataFrame({by: truth.index,
                           "corvex error": distance(found["lon"], found["lat"], truth["lon"],
                                                    truth["lat"])})
    for method in BASELINES:
        scores[f"{method} error"] = distance(base[f"{method} lon"], base[f"{method} lat"],
                                             truth["lon"], truth["lat"])
    scores["acc"] = found["acc"].to_numpy(np.float64)
    scores["newest report acc"] = base["newest report acc"].to_numpy()
    scores["code"] = found["code"].to_numpy()
    if "floor" in truth and truth["floor"].notna().any():
        floor = truth["floor"].to_numpy()
        indoor = truth["floor"].notna().to_numpy()
        scores["indoor"] = indoor
        scores["corvex floor hit"] = indoor & (found["floorId"].to_numpy() == floor)
        scores["newest report floor hit"] = indoor & (base["newest report floor"].to_numpy() == floor)
    return Evaluation(name, scores.reset_index(drop=True), observed, records)


def labelled_file(path: str, lon_column: str, lat_column: str,
                  floor_column: str | None = None) -> tuple[pd.DataFrame, pd.DataFrame]:
    """A user's labelled records: (records as read_scans reads them, truth per tag). The
    truth columns (degrees; floor optional) are read from the first record of each tag."""
    records = read_scans(path)
    with open(path, "rb") as file:
        text = file.read().decode("utf-8", "surrogateescape")
    if text.lstrip(" \t\r\n")[:1] == "[":
        raw = pd.DataFrame(json.loads(text))
    else:
        raw = pd.read_csv(io.StringIO(text.removeprefix("\ufeff")), dtype=str,
                          keep_default_na=False, skipinitialspace=True)
    columns = [lon_column, lat_column] + ([floor_column] if floor_column else [])
    for column in columns:
        if column not in raw.columns:
            raise ValueError(f"{path}: missing truth column {column!r}")
    truth = pd.DataFrame({
        "tag": raw[TAG].fillna("").astype(str) if TAG in raw else "",
        "lon": pd.to_numeric(raw[lon_column], errors="coerce"),
        "lat": pd.to_numeric(raw[lat_column], errors="coerce"),
        "floor": pd.to_numeric(raw[floor_column], errors="coerce") if floor_column else None})
    truth = truth.groupby("tag", sort=False).first().reset_index()
    truth["floor"] = truth["floor"].astype(object).where(truth["floor"].notna(), None)
    return records, truth


def quantile(errors: np.ndarray, q: float) -> float:
    """Empirical quantile (the smallest error with at least a share q at or below it)."""
    return float(np.quantile(errors, q, method="inverted_cdf")) if len(errors) else np.nan


def summary(evaluation: Evaluation) -> pd.DataFrame:
    """Per method: error quantiles (m), share within the stated accuracy, floor hit rate."""
    scores = evaluation.scores
    rows = []
    for method in METHODS:
        errors = scores[f"{method} error"].to_numpy()
        row = {"method": method, **{f"p{round(q * 100)}": quantile(errors, q) for q in QUANTILES}}
        acc = {"corvex": "acc", "newest report": "newest report acc"}.get(method)
        row["within acc"] = float(np.mean(errors <= scores[acc])) if acc and len(errors) else None
        hits = f"{method} floor hit"
        row["floor hits"] = (float(scores.loc[scores["indoor"], hits].mean())
                             if hits in scores and scores["indoor"].any() else None)
        rows.append(row)
    return pd.DataFrame(rows)


def _number(value, percent=False) -> str:
    if value is None or (isinstance(value, float) and np.isnan(value)):
        return ""
    if percent:
        return f"{100 * value:.1f}%"
    return "inf" if np.isinf(value) else f"{value:.1f}"


def table(evaluation: Evaluation) -> str:
    """The family's table in Markdown, with corvex's error codes below it."""
    lines = [f"{evaluation.name}: {len(evaluation.scores)} scenes", "",
             "| method | median (m) | p90 (m) | p95 (m) | within acc | floor hits |",
             "|---|---:|---:|---:|---:|---:|"]
    for row in summary(evaluation).itertuples(index=False):
        lines.append(f"| {row.method} | {_number(row.p50)} | {_number(row.p90)} | "
                     f"{_number(row.p95)} | {_number(row._4, True)} | {_number(row._5, True)} |")
    codes = evaluation.scores["code"].value_counts().sort_index()
    lines += ["", "corvex codes: " + ", ".join(f"{code} x{count}" for code, count in codes.items()),
              ""]
    return "\n".join(lines)


def overview(evaluations: list[Evaluation]) -> str:
    """One Markdown table over families: median / p95 error (m) per method, corvex's share
    within its stated accuracy, floor hits of corvex / the newest report."""
    lines = ["| family | " + " | ".join(METHODS) + " | corvex within acc | floor hits |",
             "|---|" + "---:|" * (len(METHODS) + 2)]
    for evaluation in evaluations:
        rows = summary(evaluation).set_index("method")
        errors = [f"{_number(rows.loc[m, 'p50'])} / {_number(rows.loc[m, 'p95'])}" for m in METHODS]
        floors = rows.loc[["corvex", "newest report"], "floor hits"]
        floor_text = " / ".join(_number(v, True) for v in floors) if floors.notna().all() else ""
        lines.append(f"| {evaluation.name} | " + " | ".join(errors) +
                     f" | {_number(rows.loc['corvex', 'within acc'], True)} | {floor_text} |")
    return "\n".join(lines + [""])


def evaluate_frame(name: str, records: pd.DataFrame, truth: pd.DataFrame, jobs: int | None = None,
                   client=None, observe: bool = False) -> Evaluation:
    """Locates every tag of records (locally on jobs threads, or on a Dask client) and scores
    the answers against truth. observe: keep what each call did (local runs only)."""
    if client is not None:
        import dask.dataframe as dd

        import corvex.dask
        partitions = max(1, len(client.scheduler_info().get("workers", {})) * 2)
        located = corvex.dask.locate(dd.from_pandas(records, npartitions=partitions, sort=False),
                                     by="tag").compute(scheduler=client).sort_index()
        return score(name, records, truth, located.reset_index(drop=True))
    jobs = _batch._check_jobs(jobs)
    tags, rows, offsets = _batch.group_rows(records, "tag")
    outcome = _batch.locate_groups(records, rows, offsets, tags, jobs, observe)
    located = _batch.result_frame("tag", tags, outcome)
    observed = outcome.get("observed")
    if observed is not None:  # stages in the records' row order, for losses()
        for group, seen in enumerate(observed):
            seen["rows"] = rows[offsets[group]:offsets[group + 1]]
    return score(name, records, truth, located, observed=observed)


# Steps of a call that can add error, in order: the filter stages, the solver, the choice
# between the main path's answer and the k-means fallback (or the fallback of a failed call).
STEPS = _explain.STAGES[1:8] + ("solver", "choice")


def _weighted_mean_error(records: pd.DataFrame, rows: np.ndarray, truth_lon, truth_lat) -> float:
    if len(rows) == 0:
        return np.nan
    part = records.iloc[rows]
    weight = 1.0 / part["acc"].to_numpy(np.float64) ** 2
    with np.errstate(invalid="ignore", divide="ignore"):
        lon = np.sum(weight * part["lon"].to_numpy()) / np.sum(weight)
        lat = np.sum(weight * part["lat"].to_numpy()) / np.sum(weight)
    return float(distance(lon, lat, truth_lon, truth_lat))


def step_errors(evaluation: Evaluation, truth: pd.DataFrame, scene: int) -> np.ndarray:
    """Error (m) added by each of STEPS in one scene: the accuracy-weighted mean of the records
    surviving each filter stage against the truth, then the main path's answer, then the
    returned one. A stage that leaves no record adds nothing."""
    seen = evaluation.observed[scene]
    truth_lon, truth_lat = truth["lon"].iloc[scene], truth["lat"].iloc[scene]
    rows, stages = seen["rows"], np.asarray(seen["stages"])
    chain = [_weighted_mean_error(evaluation.records, rows, truth_lon, truth_lat)]
    for stage in range(1, 8):
        error = _weighted_mean_error(evaluation.records, rows[stages > stage], truth_lon, truth_lat)
        chain.append(chain[-1] if np.isnan(error) else error)
    _, main_lon, main_lat = seen["main"][:3]
    main = float(distance(main_lon, main_lat, truth_lon, truth_lat)) if seen["main"][0] else chain[-1]
    chain += [main, evaluation.scores["corvex error"].iloc[scene]]
    with np.errstate(invalid="ignore"):
        return np.diff(np.asarray(chain, dtype=np.float64))


def _beaten_above(error: float, margin: float) -> float:
    return error + max(margin, 0.5 * error)


def losses(evaluation: Evaluation, truth: pd.DataFrame, margin: float = 5.0) -> pd.DataFrame:
    """Scenes where corvex's error exceeds a baseline's by more than margin metres and by more
    than half of it, with the step that added the most error (the cause). One row per scene
    that loses to at least one baseline: tag, the baselines it loses to, cause, corvex error,
    and the error added by each of STEPS (m)."""
    scores, rows = evaluation.scores, []
    for scene in range(len(scores)):
        error = scores["corvex error"].iloc[scene]
        beaten = [method for method in BASELINES
                  if error > _beaten_above(scores[f"{method} error"].iloc[scene], margin)]
        if beaten:
            added = np.nan_to_num(step_errors(evaluation, truth, scene), nan=-np.inf)
            rows.append({"tag": scores["tag"].iloc[scene], "beaten by": tuple(beaten),
                         "cause": STEPS[int(np.argmax(added))], "corvex error": error,
                         **dict(zip(STEPS, added))})
    return pd.DataFrame(rows, columns=["tag", "beaten by", "cause", "corvex error", *STEPS])


def losses_table(evaluation: Evaluation, truth: pd.DataFrame) -> str:
    """How often corvex loses to each baseline, and the causes of its losses, in Markdown."""
    lost = losses(evaluation, truth)
    total = len(evaluation.scores)
    lines = [f"{evaluation.name}: corvex loses in {len(lost)} of {total} scenes", "",
             "| baseline | scenes lost | most frequent causes |", "|---|---:|---|"]
    for method in BASELINES:
        these = lost[np.array([method in beaten for beaten in lost["beaten by"]], dtype=bool)]
        causes = these["cause"].value_counts()
        lines.append(f"| {method} | {len(these)} ({100 * len(these) / max(total, 1):.1f}%) | "
                     + ", ".join(f"{cause} {count}" for cause, count in causes.head(3).items())
                     + " |")
    if len(lost):
        added = lost[list(STEPS)].replace([np.inf, -np.inf], np.nan).mean()
        lines += ["", "mean error added per step in the lost scenes (m): " + ", ".join(
            f"{step} {value:+.1f}" for step, value in added.items() if abs(value) >= 0.05)]
    return "\n".join(lines + [""])


PANEL_INCHES = (5.0, 4.0)
DPI = 100


def plot_size(panels: int) -> tuple[int, int]:
    """Width and height (pixels) of the figure plot() draws for this many panels."""
    columns = min(3, panels)
    rows = -(-panels // columns)
    return int(columns * PANEL_INCHES[0] * DPI), int(rows * PANEL_INCHES[1] * DPI)


def plot(evaluations: list[Evaluation], path: str) -> None:
    """Writes a PNG: per family the error CDFs of corvex and the baselines (log scale), then
    corvex's calibration (stated accuracy against actual error) over all families. Its size is
    plot_size(len(evaluations) + 1)."""
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    panels = len(evaluations) + 1
    columns = min(3, panels)
    rows = -(-panels // columns)
    figure, axes = plt.subplots(rows, columns, squeeze=False, dpi=DPI,
                                figsize=(columns * PANEL_INCHES[0], rows * PANEL_INCHES[1]))
    for ax, evaluation in zip(axes.flat, evaluations):
        for method in METHODS:
            errors = np.sort(evaluation.scores[f"{method} error"].to_numpy())
            share = np.arange(1, len(errors) + 1) / max(len(errors), 1)
            ax.step(np.maximum(errors, 0.1), share, where="post", label=method,
                    linewidth=2.2 if method == "corvex" else 1.2)
        ax.set(xscale="log", xlim=(0.1, 1e4), ylim=(0, 1), title=evaluation.name,
               xlabel="error (m)", ylabel="share of scenes")
        ax.grid(True, which="both", alpha=0.3)
    axes.flat[0].legend(loc="lower right", fontsize="small")
    calibration = axes.flat[panels - 1]
    for evaluation in evaluations:
        scores = evaluation.scores
        calibration.scatter(np.maximum(scores["acc"], 0.1), np.maximum(scores["corvex error"], 0.1),
                            s=4, alpha=0.4, label=evaluation.name)
    calibration.plot([0.1, 1e4], [0.1, 1e4], color="black", linewidth=1, label="error = acc")
    calibration.set(xscale="log", yscale="log", xlim=(1, 1e3), ylim=(0.1, 1e3),
                    title="corvex calibration", xlabel="stated accuracy (m)",
                    ylabel="actual error (m)")
    calibration.legend(loc="upper left", fontsize="x-small", markerscale=3)
    for ax in axes.flat[panels:]:
        ax.set_visible(False)
    figure.tight_layout()
    figure.savefig(path, format="png", dpi=DPI)
    plt.close(figure)
