"""The example script runs as the README shows and makes the steps it promises."""

import subprocess
import sys

import numpy as np

import tessaphon
from conftest import SOURCE_DIR


def test_vot_continuum_example_writes_its_steps(tmp_path):
    script = SOURCE_DIR / "examples" / "python" / "vot_continuum.py"
    done = subprocess.run([sys.executable, str(script), str(tmp_path / "vot")], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    onsets = []
    for vot in range(0, 70, 10):
        doc = tessaphon.read(tmp_path / "vot" / f"ba_vot{vot:02d}.stk")
        samples, rate = tessaphon.read_wav(tmp_path / "vot" / f"ba_vot{vot:02d}.wav")
        assert np.abs(samples - tessaphon.synthesize(doc)).max() <= 1 / 32768
        onsets.append(int(np.argmax(doc["av"] > 0)))
    assert onsets == list(range(onsets[0], onsets[0] + 7))
    again = subprocess.run([sys.executable, str(script), str(tmp_path / "vot")], capture_output=True, text=True)
    assert again.returncode != 0 and "--force" in again.stderr
