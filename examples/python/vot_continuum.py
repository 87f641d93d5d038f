"""A voice-onset-time continuum from "ba" towards "pa", written as documents and WAVE files, with
the spectra of each step's first 30 ms after the release plotted when matplotlib is installed.

    PYTHONPATH=build/python python3 examples/python/vot_continuum.py [FOLDER] [--force]

Each step delays the voicing of examples/ba.stk by 10 ms more (0 to 60 ms) and fills the gap
with aspiration, as in a classic identification experiment. Runs in a notebook cell as well:
call main(["vot-continuum"]).
"""

import argparse
import pathlib
import sys

import numpy as np

import tessaphon

BA = pathlib.Path(__file__).resolve().parents[1] / "ba.stk"
VOTS_MS = range(0, 70, 10)
ASPIRATION_DB = 55


def step_document(base, vot_ms):
    """The base document with its voicing delayed by vot_ms after the release, aspirated meanwhile."""
    doc = base.copy()
    release = int(np.argmax(base["af"] > 0))  # the burst's frame
    onset = release + 1
    lag = vot_ms // doc.interval_ms
    av = base["av"].astype(float)
    delayed = np.concatenate([av[:onset], np.zeros(lag), av[onset:len(av) - lag]])
    doc["av"] = delayed
    ah = base["ah"].astype(float)
    ah[onset:onset + lag] = ASPIRATION_DB
    doc["ah"] = ah
    return doc, release


def write_steps(folder):
    base = tessaphon.read(BA)
    spectra = []
    for vot in VOTS_MS:
        doc, release = step_document(base, vot)
        stem = folder / f"ba_vot{vot:02d}"
        doc.write(stem.with_suffix(".stk"))
        samples = tessaphon.synthesize(doc)
        tessaphon.write_wav(stem.with_suffix(".wav"), samples, doc.sample_rate)
        freq, fft, _ = tessaphon.slice(samples, doc.sample_rate, release * doc.interval_ms + 10.0)
        spectra.append((vot, freq, fft))
        print(f"{stem.name}: {len(samples) / doc.sample_rate:.3f} s, voicing from "
              f"{(release + 1) * doc.interval_ms + vot} ms")
    return spectra


def plot(spectra, path):
    try:
        import matplotlib
        matplotlib.use("Agg")
        import matplotlib.pyplot as plt
    except ImportError:
        print("matplotlib is not installed: no plot")
        return
    fig, ax = plt.subplots(figsize=(7, 4))
    for vot, freq, fft in spectra:
        ax.plot(freq, fft, label=f"VOT {vot} ms")
    ax.set_xlabel("Frequency (Hz)")
    ax.set_ylabel("Level (dB re full scale)")
    ax.set_title("10 ms after the release")
    ax.legend(fontsize="small")
    fig.tight_layout()
    fig.savefig(path, dpi=100)
    print(f"spectra plotted in {path}")


def main(argv=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", nargs="?", default="vot-continuum")
    parser.add_argument("--force", action="store_true", help="replace the files of an existing folder")
    args = parser.parse_args(argv)
    folder = pathlib.Path(args.folder)
    if folder.exists() and any(folder.iterdir()) and not args.force:
        sys.exit(f"{folder} exists and is not empty; use --force to replace its files")
    folder.mkdir(parents=True, exist_ok=True)
    plot(write_steps(folder), folder / "vot_spectra.png")


if __name__ == "__main__":
    main()
