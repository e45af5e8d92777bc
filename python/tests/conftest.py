import os
import subprocess
import sys
from pathlib import Path

import pytest

SOURCE_DIR = Path(os.environ.get("CORVEX_SOURCE_DIR", Path(__file__).resolve().parents[2]))
EXAMPLE = SOURCE_DIR / "examples" / "scans.csv"


def run(command, stdin=None, **env):
    """Runs a command with extra environment variables; returns the finished process (its
    output as text, or as bytes when stdin is given as bytes)."""
    return subprocess.run(command, input=stdin, capture_output=True, text=stdin is None,
                          env={**os.environ, **env}, check=False)


def run_module(*arguments, **env):
    return run([sys.executable, "-m", "corvex", *map(str, arguments)], **env)


@pytest.fixture(scope="session")
def tool():
    """The built corvex tool; tests comparing with it are skipped without one."""
    path = os.environ.get("CORVEX_CLI")
    if not path:
        pytest.skip("CORVEX_CLI is not set (the tool is not built)")
    return path
