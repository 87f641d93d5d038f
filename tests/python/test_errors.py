"""Bad input ends as a Python exception with the project's message and the file's name, never as a
crash: OSError for files, ValueError for damaged files and bad arguments, MemoryError."""

import os
import subprocess
import sys
import textwrap

import numpy as np
import pytest

import tessaphon
from conftest import EXAMPLES


def test_files_that_cannot_be_read_or_written_raise_oserror(tmp_path):
    missing = tmp_path / "missing.stk"
    for call in (tessaphon.read, tessaphon.read_wav):
        with pytest.raises(FileNotFoundError) as caught:
            call(missing)
        assert caught.value.filename == str(missing) and "missing.stk" in str(caught.value)
    doc = tessaphon.Document.new()
    with pytest.raises(FileNotFoundError) as caught:
        doc.write(tmp_path / "no-folder" / "x.stk")
    assert "no-folder" in str(caught.value)
    with pytest.raises(OSError):
        tessaphon.write_wav(tmp_path / "no-folder" / "x.wav", np.zeros(100), 11025)
    if os.geteuid() != 0:
        locked = tmp_path / "locked"
        locked.mkdir(mode=0o500)
        with pytest.raises(PermissionError):
            doc.write(locked / "x.stk")
    with pytest.raises(IsADirectoryError):
        tessaphon.read(tmp_path)


def test_damaged_files_raise_valueerror_naming_the_file(tmp_path):
    text = (EXAMPLES / "ba.stk").read_bytes()
    cases = {
        "garbage.stk": b"\x00\x01 not a document at all \xff" * 10,
        "empty.stk": b"",
        "short.wav": b"RIFF\x24\x00\x00\x00WAVEfmt ",
        "bad-format.wav": b"RIFF\x24\x00\x00\x00WAVEfmt \x10\x00\x00\x00\x63\x00\x01\x00"
        + b"\x11\x2b\x00\x00\x22\x56\x00\x00\x02\x00\x10\x00data\x00\x00\x00\x00",
    }
    for name, data in cases.items():
        (tmp_path / name).write_bytes(data)
        with pytest.raises(ValueError, match=name):
            (tessaphon.read_wav if name.endswith(".wav") else tessaphon.read)(tmp_path / name)
    with pytest.raises(ValueError, match="ba.stk"):
        tessaphon.read_wav(EXAMPLES / "ba.stk")  # a document is not a WAVE file
    # A document cut short is read as far as it goes, with a warning naming it.
    (tmp_path / "cut.stk").write_bytes(text[: len(text) * 2 // 3])
    with pytest.warns(UserWarning, match="cut.stk"):
        doc = tessaphon.read(tmp_path / "cut.stk")
    assert doc.frames == tessaphon.read(EXAMPLES / "ba.stk").frames


def test_bad_arguments_raise_valueerror():
    samples = np.zeros(11025, dtype=np.float32)
    doc = tessaphon.Document.new()
    bad_calls = [
        lambda: tessaphon.Document.new(length_ms=0),
        lambda: tessaphon.Document.new(interval_ms=0),
        lambda: tessaphon.Document.new(sample_rate=16000),
        lambda: tessaphon.pitch(samples, 11025, low=600, high=100),
        lambda: tessaphon.pitch(samples, 0),
        lambda: tessaphon.pitch(np.zeros((10, 10)), 11025),
        lambda: tessaphon.pitch(np.zeros(0), 11025),
        lambda: tessaphon.formants(np.array([0.0, np.nan] * 1000), 11025),
        lambda: doc.__setitem__("f1", np.full(doc.frames, np.nan)),
        lambda: tessaphon.formants(samples, 11025, columns=0),
        lambda: tessaphon.spectrogram(samples, 11025, dynamic_range=500),
        lambda: tessaphon.slice(samples, 11025, 5000.0),
        lambda: tessaphon.slice(samples, 11025, 10.0, window=300),
        lambda: tessaphon.compare(samples, samples, -1),
        lambda: tessaphon.trace(samples[:50], 11025),
        lambda: tessaphon.continuum(doc, tessaphon.Document.new(length_ms=300), 3),
        lambda: tessaphon.continuum(doc, doc, 1),
        lambda: tessaphon.continuum(doc, doc, 3, scale="octaves"),
        lambda: tessaphon.continuum(doc, doc, 3, rows=["f9"]),
        lambda: tessaphon.write_wav("/tmp/never-written.wav", samples, 0),
        lambda: setattr(doc, "selected", [True] * 3),
    ]
    for i, call in enumerate(bad_calls):
        with pytest.raises(ValueError):
            call()
            pytest.fail(f"bad call {i} was accepted")


def test_running_out_of_memory_raises_memoryerror():
    # Under an address-space limit an hour-long synthesis cannot get its sample block.
    script = textwrap.dedent("""
        import resource, tessaphon, numpy
        doc = tessaphon.Document.new(length_ms=3600 * 1000)
        size = next(int(line.split()[1]) for line in open("/proc/self/status") if line.startswith("VmSize:"))
        limit = size * 1024 + 100 * 1024 * 1024  # the hour's samples need 159 MB
        resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
        try:
            tessaphon.synthesize(doc)
        except MemoryError as e:
            print("MemoryError:", e)
    """)
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr
    assert done.stdout.startswith("MemoryError:")
