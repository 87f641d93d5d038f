"""Each analysis gives what its tessaphon-cli command gives on the same recording."""

import struct
import zlib

import numpy as np
import pytest

import tessaphon
from conftest import EXAMPLES, cli, csv_rows


def test_pitch_agrees_with_the_tool(recording):
    path, samples, rate = recording
    times, f0 = tessaphon.pitch(samples, rate)
    theirs = csv_rows(cli("pitch", path))
    assert np.array_equal(times, theirs[:, 0]) and np.array_equal(f0, theirs[:, 1])
    assert np.median(f0[f0 > 0]) > 80
    times, f0 = tessaphon.pitch(samples, rate, step=5.0, low=70, high=300, threshold=2.0)
    theirs = csv_rows(cli("pitch", path, "--step", 5, "--low", 70, "--high", 300, "--threshold", 2))
    assert np.array_equal(f0, theirs[:, 1])


def test_formants_agree_with_the_tool(recording):
    path, samples, rate = recording
    times, tracks = tessaphon.formants(samples, rate)
    theirs = csv_rows(cli("formants", path))
    assert tracks.shape == (500, 5)
    assert np.array_equal(times, theirs[:, 1])
    assert np.array_equal(np.nan_to_num(tracks, nan=-1), theirs[:, 2:])
    assert 200 < np.nanmedian(tracks[:, 0]) < 1000
    _, tracks = tessaphon.formants(samples, rate, columns=120, order=10, preemphasis=0.9)
    theirs = csv_rows(cli("formants", path, "--columns", 120, "--order", 10, "--preemphasis", 0.9))
    assert np.array_equal(np.nan_to_num(tracks, nan=-1), theirs[:, 2:])


def read_png_gray(path):
    """The first channel of an 8-bit RGB PNG, rows from the top."""
    data = path.read_bytes()
    pos, chunks, width, height = 8, b"", 0, 0
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            width, height = struct.unpack(">II", body[:8])
        elif kind == b"IDAT":
            chunks += body
        pos += 12 + length
    raw, stride, prev, rows = zlib.decompress(chunks), width * 3, bytearray(width * 3), []
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - 3] if i >= 3 else 0
            b, c = prev[i], prev[i - 3] if i >= 3 else 0
            if kind == 1:
                line[i] = (line[i] + a) & 255
            elif kind == 2:
                line[i] = (line[i] + b) & 255
            elif kind == 3:
                line[i] = (line[i] + (a + b) // 2) & 255
            elif kind == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[i] = (line[i] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
        rows.append(bytes(line[0::3]))
        prev = line
    return np.array([list(r) for r in rows], dtype=np.uint8)


def test_spectrogram_agrees_with_the_tools_picture(recording, tmp_path):
    path, samples, rate = recording
    levels = tessaphon.spectrogram(samples, rate, columns=200, rows=64)
    assert levels.shape == (200, 64) and levels.min() >= 0 and levels.max() == 50
    cli("spectrogram", path, "--columns", 200, "--rows", 64, "-o", tmp_path / "s.png")
    gray = read_png_gray(tmp_path / "s.png")
    assert gray.shape == (64, 200)
    # Each pixel is the grey of its level's step (row 0 at the bottom): one grey per step,
    # darker for louder.
    steps = np.clip((levels * 256 / 50).astype(int), 0, 256)
    pixels = gray[::-1, :].T
    grey_of = {}
    for step, pixel in zip(steps.ravel(), pixels.ravel()):
        assert grey_of.setdefault(step, pixel) == pixel
    keys = sorted(grey_of)
    assert all(grey_of[a] >= grey_of[b] for a, b in zip(keys, keys[1:]))
    assert len(keys) > 50


def test_slice_agrees_with_the_tool(recording):
    path, samples, rate = recording
    for at, options, args in ((100.0, {}, []), (2500.0, {"window": 512, "order": 12}, ["--window", 512, "--order", 12])):
        freq, fft, lpc = tessaphon.slice(samples, rate, at, **options)
        theirs = csv_rows(cli("slice", path, "--at", at, "--lpc", *args))
        assert len(freq) == len(theirs)
        for ours, column in ((freq, 0), (fft, 1), (lpc, 2)):
            assert np.abs(ours - theirs[:, column]).max() <= 0.005 + 1e-9


def test_compare_agrees_with_the_tool(recording, tmp_path):
    path, samples, rate = recording
    doc = tessaphon.read(EXAMPLES / "moving-vowels.stk")
    doc["f2"][:] = np.clip(doc["f2"].astype(int) + 300, 550, 3000)
    other = tessaphon.synthesize(doc)
    tessaphon.write_wav(tmp_path / "other.wav", other, rate)
    times, distance = tessaphon.compare(samples, other, rate)
    theirs = csv_rows(cli("compare", path, tmp_path / "other.wav"))
    assert np.array_equal(times, theirs[:, 0])
    assert np.abs(distance - theirs[:, 1]).max() <= 0.0005 + 1e-9
    assert distance.mean() > 0.5
    _, same = tessaphon.compare(samples, samples, rate)
    assert np.abs(same).max() == 0


def test_trace_makes_the_tools_document(tmp_path):
    doc = tessaphon.read(EXAMPLES / "ba.stk")
    samples = tessaphon.synthesize(doc)
    tessaphon.write_wav(tmp_path / "ba.wav", samples, doc.sample_rate)
    traced = tessaphon.trace(samples, doc.sample_rate)
    traced.write(tmp_path / "ours.stk")
    cli("trace", tmp_path / "ba.wav", "-o", tmp_path / "theirs.stk")
    assert (tmp_path / "ours.stk").read_bytes() == (tmp_path / "theirs.stk").read_bytes()
    voiced = doc["av"][: traced.frames] > 30
    assert np.median(np.abs(traced["f1"][voiced].astype(int) - doc["f1"][: traced.frames][voiced])) < 150


def test_continuum_makes_the_tools_steps(tmp_path):
    a = tessaphon.read(EXAMPLES / "vowel-a.stk")
    b = a.copy()
    b["f1"][:] = 300
    b["f2"][:] = 2200
    b.write(tmp_path / "b.stk")
    steps = tessaphon.continuum(a, b, 5, scale="bark")
    assert len(steps) == 5
    assert (steps[0].params == a.params).all() and (steps[-1].params == b.params).all()
    f1 = [int(s["f1"][10]) for s in steps]
    assert f1 == sorted(f1, reverse=True) and len(set(f1)) == 5
    cli("continuum", EXAMPLES / "vowel-a.stk", tmp_path / "b.stk", "--steps", 5, "--scale", "bark",
        "--no-wav", "-o", tmp_path / "cont")
    for k, step in enumerate(steps, start=1):
        step.write(tmp_path / f"ours_{k}.stk")
        assert (tmp_path / f"ours_{k}.stk").read_bytes() == (tmp_path / "cont" / f"vowel-a_{k}.stk").read_bytes()
    only_f1 = tessaphon.continuum(a, b, 3, rows=["f1"])
    assert (only_f1[-1]["f2"] == a["f2"]).all() and (only_f1[-1]["f1"] == 300).all()


def test_copysynth_makes_the_tools_document(recording, tmp_path):
    path, samples, rate = recording
    short = samples[: int(rate * 1.5)]
    tessaphon.write_wav(tmp_path / "short.wav", short, rate)
    doc = tessaphon.copysynth(short, rate)
    doc.write(tmp_path / "ours.stk")
    cli("copysynth", tmp_path / "short.wav", "-o", tmp_path / "theirs.stk")
    assert (tmp_path / "ours.stk").read_bytes() == (tmp_path / "theirs.stk").read_bytes()
    assert doc.frames == int(doc.length_ms // doc.interval_ms) and abs(doc.length_ms - 1500) <= 1
    with pytest.raises(ValueError):
        tessaphon.copysynth(short[:10], rate)
