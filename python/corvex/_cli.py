"""python -m corvex: the command line of the Python package."""
from __future__ import annotations

import argparse
import contextlib
import logging
import os
import sys

from corvex import _core
from corvex._batch import locate_many
from corvex._scan_file import ScanFileError, read_scans

EXIT_FAILURE = 1  # could not finish
EXIT_BAD_INPUT = 2  # bad command line or bad input; nothing was printed


def location_lines(frame) -> list[str]:
    """The JSON lines of `corvex locate` for a frame made by corvex.locate_many."""
    columns = [frame[name].tolist() for name in (
        "tag", "code", "message", "lon", "lat", "acc", "confidence", "timeStamp",
        "runTimeStamp", "indoorFlag", "geoId", "floorId", "floorAcc", "floorInfo", "infoCount")]
    return [_core.format_line(*values) for values in zip(*columns)]


# CORVEX_LOG_LEVEL values and the logging levels they keep.
_LOG_LEVELS = {"debug": logging.DEBUG, "info": logging.INFO, "warn": logging.WARNING,
               "error": logging.ERROR, "off": logging.CRITICAL + 1}


@contextlib.contextmanager
def _log_like_the_tool(command: str):
    """The library's lines on stderr as the tool's log sink writes them, for the length of a
    command; evaluate prints only its tables."""
    logger = logging.getLogger("corvex")
    saved = logger.handlers[:], logger.level, logger.propagate
    handler = logging.StreamHandler(sys.stderr)
    handler.setFormatter(logging.Formatter("%(levelname).1s 0xD002300/Mirelth: %(message)s"))
    logger.handlers[:] = [handler]
    logger.propagate = False
    logger.setLevel(logging.CRITICAL + 1 if command == "evaluate" else
                    _LOG_LEVELS.get(os.environ.get("CORVEX_LOG_LEVEL", ""), logging.WARNING))
    try:
        yield
    finally:
        logger.handlers[:], logger.propagate = saved[0], saved[2]
        logger.setLevel(saved[1])  # also clears the logger's cache of enabled levels


def _locate(arguments: argparse.Namespace) -> int:
    try:
        frame = read_scans(arguments.file)
    except (ScanFileError, OSError) as error:
        print(f"corvex: {error}", file=sys.stderr)
        return EXIT_BAD_INPUT
    lines = location_lines(locate_many(frame, by="tag", jobs=arguments.jobs))
    try:
        sys.stdout.write("".join(line + "\n" for line in lines))
        sys.stdout.flush()
    except OSError:
        print("corvex: cannot write the output", file=sys.stderr)
        return EXIT_FAILURE
    return 0


def _evaluations(arguments: argparse.Namespace, client) -> list:
    from corvex import evaluate, scenes
    observe = arguments.losses and client is None
    if arguments.file:
        records, truth = evaluate.labelled_file(arguments.file, arguments.truth_lon,
                                                arguments.truth_lat, arguments.truth_floor)
        return [(evaluate.evaluate_frame(arguments.file, records, truth, arguments.jobs, client,
                                         observe), truth)]
    done = []
    for family in arguments.family or scenes.REALISTIC_FAMILIES:
        records, truth = scenes.generate(family, arguments.scenes, arguments.seed)
        done.append((evaluate.evaluate_frame(family, records, truth, arguments.jobs, client,
                                             observe), truth))
    return done


def _evaluate(arguments: argparse.Namespace) -> int:
    from corvex import evaluate
    if arguments.file and not (arguments.truth_lon and arguments.truth_lat):
        print("corvex: a labelled FILE needs --truth-lon and --truth-lat", file=sys.stderr)
        return EXIT_BAD_INPUT
    client = None
    if arguments.scheduler:
        from distributed import Client
        client = Client(arguments.scheduler)
    try:
        done = _evaluations(arguments, client)
    except (ScanFileError, OSError, ValueError) as error:
        print(f"corvex: {error}", file=sys.stderr)
        return EXIT_BAD_INPUT
    finally:
        if client is not None:
            client.close()
    for evaluation, truth in done:
        print(evaluate.table(evaluation))
        if evaluation.observed is not None:
            print(evaluate.losses_table(evaluation, truth))
    if len(done) > 1:
        print("All families: median / p95 error (m)\n")
        print(evaluate.overview([evaluation for evaluation, _ in done]))
    if arguments.plot:
        evaluate.plot([evaluation for evaluation, _ in done], arguments.plot)
    return 0


def _positive(text: str) -> int:
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError(f"{text} is not a positive number")
    return number


def _jobs(text: str) -> int:
    jobs = int(text)
    if not 1 <= jobs <= 1024:
        raise argparse.ArgumentTypeError(f"{text} is not in 1 to 1024")
    return jobs


def parser() -> argparse.ArgumentParser:
    main = argparse.ArgumentParser(
        prog="python -m corvex",
        description="corvex: estimates where Bluetooth Low Energy tags are from phone scan records")
    commands = main.add_subparsers(dest="command", required=True)
    locate = commands.add_parser(
        "locate", help="locate every tag of a CSV or JSON file of scan records",
        description="Prints one JSON object per tag and line, tags in order of first appearance.")
    locate.add_argument("file", metavar="FILE",
                        help='CSV with a header row, or a JSON array of objects ("-": stdin)')
    locate.add_argument("-j", "--jobs", type=_jobs, default=1, help="tags located at once")
    locate.set_defaults(run=_locate)
    _add_evaluate(commands)
    return main


def _add_evaluate(commands) -> None:
    from corvex.scenes import FAMILIES, REALISTIC_FAMILIES
    evaluate = commands.add_parser(
        "evaluate", help="measure corvex against ground truth and simple baselines",
        description="Locates simulated scenes (or the tags of a labelled FILE) with corvex and "
                    "with baselines (newest report, mean, confidence- and accuracy-weighted "
                    "mean) and prints per family: error quantiles (m), the share of scenes "
                    "whose truth lies within the stated accuracy, floor hits and corvex's "
                    "error codes.")
    evaluate.add_argument("file", metavar="FILE", nargs="?",
                          help="labelled scan records (the locate format plus truth columns)")
    evaluate.add_argument("--truth-lon", metavar="COL", help="FILE's column of true longitudes")
    evaluate.add_argument("--truth-lat", metavar="COL", help="FILE's column of true latitudes")
    evaluate.add_argument("--truth-floor", metavar="COL", help="FILE's column of true floors")
    evaluate.add_argument("--scenes", type=_positive, default=1000, help="scenes per family")
    evaluate.add_argument("--family", action="append", choices=list(FAMILIES),
                          help=f"family (repeatable; default: {', '.join(REALISTIC_FAMILIES)})")
    evaluate.add_argument("--seed", type=int, default=0, help="seed of the scenes")
    evaluate.add_argument("--plot", metavar="PNG", help="write error CDFs and calibration here")
    evaluate.add_argument("-j", "--jobs", type=_jobs, default=None,
                          help="tags located at once (default: the CPU count)")
    evaluate.add_argument("--scheduler", metavar="ADDRESS",
                          help="locate on this Dask scheduler (e.g. tcp://host:8786)")
    evaluate.add_argument("--losses", action="store_true",
                          help="also tell where corvex loses to a baseline and which step "
                               "causes it (local runs)")
    evaluate.set_defaults(run=_evaluate)


def main(argv: list[str] | None = None) -> int:
    arguments = parser().parse_args(argv)
    with _log_like_the_tool(arguments.command):
        return arguments.run(arguments)
