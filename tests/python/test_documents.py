"""Documents: factory values, the grid seen through numpy views, limits, saving and reading."""

import numpy as np
import pytest

import tessaphon
from conftest import EXAMPLES, cli

def test_new_document_matches_the_tools_new_document(tmp_path):
    doc = tessaphon.Document.new(length_ms=300, interval_ms=5)
    assert (doc.frames, doc.interval_ms, doc.length_ms, doc.sample_rate) == (60, 5, 300.0, 11025)
    assert doc.params.shape == (60, 48)
    assert doc.names[0] == "f0" and doc.names[12] == "f1" and doc.names[47] == "gain"
    assert (doc["f1"] == 500).all()  # every factory value: the bytes of the tool's new document below
    assert repr(doc) == "<tessaphon.Document: 60 frames of 5 ms, 300 ms, 11025 Hz>"
    ours, theirs = tmp_path / "ours.stk", tmp_path / "theirs.stk"
    doc.write(ours)
    cli("new", "--length", 300, "--interval", 5, "-o", theirs)
    assert ours.read_bytes() == theirs.read_bytes()

    assert tessaphon.Document(length_ms=300, interval_ms=5).params.shape == (60, 48)
    high = tessaphon.Document.new(length_ms=100, sample_rate=22050)
    assert high.sample_rate == 22050 and high.selected[high.names.index("f6")]


def test_views_are_the_grid_itself():
    doc = tessaphon.Document.new(length_ms=200)
    params, f1 = doc.params, doc["f1"]
    assert not params.flags.owndata and not f1.flags.owndata
    f1[3] = 777
    assert params[3, doc.names.index("f1")] == 777
    params[5, 0] = 1234
    assert doc["f0"][5] == 1234 and doc.params[5, 0] == 1234
    # A view outlives the name it came from: it keeps the document alive.
    view = tessaphon.Document.new(length_ms=100)["f2"]
    view[:] = 2000
    assert (view == 2000).all()


def test_assignment_clamps_to_the_limits_and_views_store_as_written(tmp_path):
    doc = tessaphon.Document.new(length_ms=100)
    assert doc.limits("f1") == (200, 1300, 500)
    doc["f1"] = 5000.4
    assert (doc["f1"] == 1300).all()
    doc["f2"] = np.linspace(0, 4000, doc.frames)
    assert doc["f2"].min() == 550 and doc["f2"].max() == 3000
    # Through a view the value is stored, synthesized and saved as written (f0 = 0 is how an
    # unvoiced frame is traced).
    doc["f0"][:5] = 0
    doc["b1"][:] = 9
    tessaphon.synthesize(doc)
    doc.write(tmp_path / "as-written.stk")
    back = tessaphon.read(tmp_path / "as-written.stk")
    assert (back["f0"][:5] == 0).all() and (back["b1"] == 9).all()
    doc["atu"] = 87  # the row's limit is 87 although its description says 70
    doc["av"][:] = -5
    doc.clamp()
    assert (doc["av"] == 0).all() and (doc["atu"] == 87).all() and (doc["b1"] == 40).all()
    assert (doc["f0"][:5] == 500).all()
    with pytest.raises(KeyError):
        doc["f9"]
    with pytest.raises(ValueError):
        doc["f1"] = np.zeros(doc.frames + 1)


def test_written_document_reads_back_with_its_values_anchors_and_shown_rows(tmp_path):
    doc = tessaphon.read(EXAMPLES / "ba.stk")
    rng = np.random.default_rng(7)
    for name in ("f1", "f2", "av", "f0"):
        low, high, _ = doc.limits(name)
        doc[name][:] = rng.integers(low, high + 1, doc.frames)
    shown = doc.selected
    shown[doc.names.index("tl")] = True
    doc.selected = shown
    anchors = np.zeros((doc.frames, 48), dtype=bool)
    anchors[2, doc.names.index("f1")] = anchors[7, 0] = True
    doc.anchors = anchors
    doc.write(tmp_path / "edited.stk")
    back = tessaphon.read(tmp_path / "edited.stk")
    assert (back.params == doc.params).all()
    assert (back.selected == doc.selected).all()
    assert (back.anchors == anchors).all()
    assert (back.frames, back.interval_ms, back.length_ms) == (doc.frames, doc.interval_ms, doc.length_ms)
    copy = back.copy()
    copy["f1"][:] = 300
    assert (back["f1"] == doc["f1"]).all()
