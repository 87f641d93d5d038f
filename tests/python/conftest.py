"""Shared fixtures of the module's tests: the command-line tool the module must agree with, the
example documents, and recordings made by that tool."""

import csv
import io
import os
import subprocess
from pathlib import Path

import numpy as np
import pytest

import tessaphon

SOURCE_DIR = Path(os.environ.get("TESSAPHON_SOURCE_DIR", Path(__file__).resolve().parents[2]))
EXAMPLES = SOURCE_DIR / "examples"


def cli(*args, check=True):
    """Runs tessaphon-cli; answers its standard output."""
    tool = os.environ.get("TESSAPHON_CLI")
    if not tool:
        pytest.fail("TESSAPHON_CLI names no tessaphon-cli to compare with")
    done = subprocess.run([tool, *map(str, args)], capture_output=True, text=True)
    if check and done.returncode != 0:
        pytest.fail(f"tessaphon-cli {' '.join(map(str, args))}: {done.stderr}")
    return done.stdout


def csv_rows(text):
    """The rows of CSV text without its header, as lists of floats (empty fields as NaN)."""
    rows = list(csv.reader(io.StringIO(text)))[1:]
    return np.array([[float(v) if v else np.nan for v in row] for row in rows])


@pytest.fixture(scope="session")
def recording(tmp_path_factory):
    """The synthesis of examples/moving-vowels.stk as tessaphon-cli writes it: (path, samples, rate)."""
    path = tmp_path_factory.mktemp("recording") / "moving-vowels.wav"
    cli("synth", EXAMPLES / "moving-vowels.stk", "-o", path)
    samples, rate = tessaphon.read_wav(path)
    return path, samples, rate
