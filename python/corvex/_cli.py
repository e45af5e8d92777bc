"""python -m corvex: the command line of the Python package."""
from __future__ import annotations

import argparse
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


def _log_like_the_tool() -> None:
    """The library's lines on stderr as the tool's log sink writes them."""
    handler = logging.StreamHandler(sys.stderr)
    handler.setFormatter(logging.Formatter("%(levelname).1s 0xD002300/Mirelth: %(message)s"))
    logger = logging.getLogger("corvex")
    logger.addHandler(handler)
    logger.propagate = False
    logger.setLevel(_LOG_LEVELS.get(os.environ.get("CORVEX_LOG_LEVEL", ""), logging.WARNING))


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
    return main


def main(argv: list[str] | None = None) -> int:
    arguments = parser().parse_args(argv)
    _log_like_the_tool()
    return arguments.run(arguments)
