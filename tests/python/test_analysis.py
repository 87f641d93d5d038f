"""Each analysis gives what its tessaphon-cli command gives on the same recording."""

import numpy as np
import pytest

import tessaphon
from conftest import EXAMPLES, cli, csv_rows


def test_pitch_agrees_with_the_tool(recording):
    path, samples, rate = recording
    times, f0 = tessaphon.pitch(samples, rate)
    theirs = csv_rows(cli("pitch", path))
    assert np.array_equal(times, theirs[:, 0]) and np.array_equal(f0, theirs[:, 1])
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
    _, tracks = tessaphon.formants(samples, rate, columns=120, order=10, preemphasis=0.9)
    theirs = csv_rows(cli("formants", path, "--columns", 120, "--order", 10, "--preemphasis", 0.9))
    assert np.array_equal(np.nan_to_num(tracks, nan=-1), theirs[:, 2:])


def test_spectrogram_has_a_column_per_frame_and_a_row_per_band():
    # A 1000 Hz tone: in every column the loudest row is 1000 / 5000 of the rows up from row 0,
    # and the loudest level is the dynamic range asked for.
    rate = 11025
    tone = (0.5 * np.sin(2 * np.pi * 1000 * np.arange(rate) / rate)).astype(np.float32)
    levels = tessaphon.spectrogram(tone, rate, columns=200, rows=64, dynamic_range=30)
    assert levels.shape == (200, 64) and levels.min() >= 0 and levels.max() == 30
    assert (np.abs(levels[10:190].argmax(axis=1) - 64 * 1000 / 5000) <= 1).all()


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


def test_trace_makes_the_tools_document(tmp_path):
    doc = tessaphon.read(EXAMPLES / "ba.stk")
    samples = tessaphon.synthesize(doc)
    tessaphon.write_wav(tmp_path / "ba.wav", samples, doc.sample_rate)
    traced = tessaphon.trace(samples, doc.sample_rate)
    traced.write(tmp_path / "ours.stk")
    cli("trace", tmp_path / "ba.wav", "-o", tmp_path / "theirs.stk")
    assert (tmp_path / "ours.stk").read_bytes() == (tmp_path / "theirs.stk").read_bytes()


def test_continuum_makes_the_tools_steps(tmp_path):
    a = tessaphon.read(EXAMPLES / "vowel-a.stk")
    b = a.copy()
    b["f1"][:] = 300
    b["f2"][:] = 2200
    b.write(tmp_path / "b.stk")
    steps = tessaphon.continuum(a, b, 5, scale="bark")
    assert len(steps) == 5
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
    with pytest.raises(ValueError):
        tessaphon.copysynth(short[:10], rate)
