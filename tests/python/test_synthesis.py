"""Synthesis and WAVE files: the module's samples are the command-line tool's, edits made through
the views are heard and saved, and threads synthesize side by side without changing a sample."""

import threading

import numpy as np
import pytest

import tessaphon
from conftest import EXAMPLES, cli


def cli_synthesis(stk, tmp_path):
    wav = tmp_path / (stk.stem + "-cli.wav")
    cli("synth", stk, "-o", wav)
    return tessaphon.read_wav(wav)


def test_synthesis_equals_the_tools_file(tmp_path):
    tessaphon.Document.new(length_ms=300, sample_rate=22050).write(tmp_path / "high.stk")
    for stk in (EXAMPLES / "vowel-a.stk", EXAMPLES / "ba.stk", EXAMPLES / "moving-vowels.stk", tmp_path / "high.stk"):
        doc = tessaphon.read(stk)
        samples = tessaphon.synthesize(doc)
        theirs, rate = cli_synthesis(stk, tmp_path)
        assert samples.dtype == np.float32 and rate == doc.sample_rate
        assert samples.shape == theirs.shape == (rate * int(doc.length_ms) // 1000,), stk.name
        assert np.abs(samples - theirs).max() <= 1 / 32768, stk.name
        assert np.abs(samples).max() > 0.01, stk.name
        # write_wav writes the file the tool writes (whose writer adds a zero sample past the
        # declared end when the length in samples has a fraction).
        tessaphon.write_wav(tmp_path / "ours.wav", samples, doc.sample_rate)
        ours = (tmp_path / "ours.wav").read_bytes()
        assert ours == (tmp_path / (stk.stem + "-cli.wav")).read_bytes()[: len(ours)]


def test_an_edit_through_a_view_is_synthesized_and_saved(tmp_path):
    doc = tessaphon.read(EXAMPLES / "vowel-a.stk")
    before = tessaphon.synthesize(doc)
    doc["f1"][:] = 300
    doc.params[:, doc.names.index("f2")] = 2300
    after = tessaphon.synthesize(doc)
    assert after.shape == before.shape and np.abs(after - before).max() > 0.01
    doc.write(tmp_path / "vowel-i.stk")
    theirs, _ = cli_synthesis(tmp_path / "vowel-i.stk", tmp_path)
    assert np.abs(after - theirs).max() <= 1 / 32768


def test_two_threads_synthesize_the_samples_of_one():
    doc = tessaphon.read(EXAMPLES / "moving-vowels.stk")
    alone = tessaphon.synthesize(doc)
    docs = [doc.copy(), doc.copy(), doc]  # the last two share one document: they take turns
    results = [None] * len(docs)

    def work(i):
        results[i] = tessaphon.synthesize(docs[i])

    threads = [threading.Thread(target=work, args=(i,)) for i in range(len(docs))]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    for r in results:
        assert np.array_equal(r, alone)


def test_wave_files_round_trip(tmp_path):
    t = np.arange(16000) / 16000.0
    tone = (0.5 * np.sin(2 * np.pi * 440 * t)).astype(np.float64)  # any real dtype is taken
    tessaphon.write_wav(tmp_path / "tone.wav", tone, 16000)
    samples, rate = tessaphon.read_wav(tmp_path / "tone.wav")
    assert rate == 16000 and samples.dtype == np.float32 and len(samples) == 16000
    assert np.abs(samples - tone).max() <= 1 / 32768
    assert "sample_rate: 16000" in cli("info", tmp_path / "tone.wav")
    # Beyond full scale the samples are limited, not wrapped round to the other sign.
    tessaphon.write_wav(tmp_path / "loud.wav", np.array([1.0, 1.5, -1.0, -3.0, 0.25]), 8000)
    loud, _ = tessaphon.read_wav(tmp_path / "loud.wav")
    assert list(loud) == [32767 / 32768, 32767 / 32768, -1.0, -1.0, 0.25]


def test_stimulus_options_write_the_tools_stimulus(tmp_path):
    doc = tessaphon.read(EXAMPLES / "ba.stk")
    samples = tessaphon.synthesize(doc)
    figures = tessaphon.write_wav(tmp_path / "ours.wav", samples, doc.sample_rate, out_rate=44100,
                                  normalize="rms:-23", ramp_ms=10, pad_ms=(100, 50), bits=24)
    cli("synth", EXAMPLES / "ba.stk", "-o", tmp_path / "theirs.wav", "--rate", 44100, "--normalize", "rms:-23",
        "--ramp", 10, "--pad", "100,50", "--bits", 24)
    assert (tmp_path / "ours.wav").read_bytes() == (tmp_path / "theirs.wav").read_bytes()
    assert figures["rate"] == 44100 and abs(figures["rms_db"] + 23) < 0.05
    plain = tessaphon.write_wav(tmp_path / "plain.wav", samples, doc.sample_rate)
    assert plain["rate"] == doc.sample_rate and plain["gain_db"] == 0
    for bad in ({"out_rate": 1000}, {"normalize": "loud"}, {"bits": 12}, {"format": "mp3"}):
        with pytest.raises(ValueError):
            tessaphon.write_wav(tmp_path / "bad.wav", samples, doc.sample_rate, **bad)
    with pytest.raises(ValueError, match="clip"):
        tessaphon.write_wav(tmp_path / "bad.wav", samples, doc.sample_rate, normalize="rms:-1")
    with pytest.raises(OSError, match="no-folder"):
        tessaphon.write_wav(tmp_path / "no-folder" / "x.wav", samples, doc.sample_rate, out_rate=44100)
