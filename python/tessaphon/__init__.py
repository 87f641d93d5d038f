"""Tessaphon from Python: Klatt cascade/parallel synthesis, parameter documents and analyses.

The same synthesizer, documents and analyses as the Tessaphon workbench and tessaphon-cli:

    import tessaphon
    doc = tessaphon.read("vowel-a.stk")       # or tessaphon.Document.new(length_ms=300)
    doc["f1"][:] = 700                        # a numpy view of the grid: no copy
    samples = tessaphon.synthesize(doc)       # float32, full scale +-1, doc.sample_rate Hz
    tessaphon.write_wav("vowel.wav", samples, doc.sample_rate)
    doc.write("vowel-700.stk")

Errors are OSError (a file missing, unreadable or not writable), ValueError (a damaged
document or WAVE file, a bad argument) and MemoryError, each naming the file. Synthesis and
the analyses release the interpreter lock, so threads run them side by side.
numpy is imported when the first array is made, not at import.
"""

from . import _tessaphon
from ._tessaphon import Document

Document.__module__ = __name__

__all__ = [
    "Document", "read", "synthesize", "read_wav", "write_wav", "pitch", "formants",
    "spectrogram", "slice", "compare", "trace", "continuum", "copysynth",
]


def read(path):
    """read(path) -> Document

    Opens a parameter document (.stk), as the workbench opens it. A WAVE file opens as a
    document whose model is the recording and whose frames span it. A document whose value
    lines stop early is read as far as it goes (the missing frames hold default values) and
    values too large for the grid are clamped to their rows' limits; each gives a
    UserWarning naming the file. Raises OSError when the file cannot be read, ValueError
    when it is neither a parameter document nor a WAVE file (the message says why).
    """
    return _tessaphon.read(str(path))


def synthesize(doc):
    """synthesize(doc) -> numpy.ndarray of float32

    Synthesizes the document as the workbench and tessaphon-cli synth do: one Klatt frame per
    frame of the grid, at doc.sample_rate (11025 Hz, or 22050 Hz when a sixth-to-eighth
    formant row is shown), full scale +-1. Samples are 16-bit steps (k / 32768), so writing
    them with write_wav gives the file tessaphon-cli synth writes.

    The values are used as they stand, within their limits or not (see
    help(tessaphon.Document)). Runs without the interpreter lock: several threads may
    synthesize at once (calls on the same document take turns). Raises MemoryError.
    """
    return _tessaphon.synthesize(doc)


def read_wav(path):
    """read_wav(path) -> (samples, rate)

    Reads a WAVE file (integer PCM, IEEE float or mu-law) as the workbench opens a model
    recording: float32 samples at full scale +-1 and the rate in Hz. Raises OSError when it cannot be read, ValueError when it is not a
    usable WAVE file.
    """
    return _tessaphon.read_wav(str(path))


def write_wav(path, samples, rate, *, out_rate=None, normalize=None, ramp_ms=None, pad_ms=None,
              bits=None, format=None, allow_clip=False):
    """write_wav(path, samples, rate, *, out_rate=None, normalize=None, ramp_ms=None,
    pad_ms=None, bits=None, format=None, allow_clip=False) -> dict

    Writes samples (a 1-D array, full scale +-1, at rate Hz) to a sound file, replacing it
    atomically (it holds its old or its new bytes, never a mixture), and answers the file's
    figures: {"duration_ms", "rate", "rms_db", "peak_db", "clipped", "gain_db"}.

    Without options: a 16-bit mono PCM WAVE file at rate Hz, the file tessaphon-cli synth
    writes; samples beyond full scale are limited to -1 .. 32767/32768, never wrapped.

    The options are tessaphon-cli synth's stimulus options and work as they do there:
    out_rate, the file's rate in Hz (8000 .. 192000, resampled); normalize, the level rule
    "rms:DB" or "peak:DB" (DB from -100 to 0) or "off"; ramp_ms, raised-cosine onset and
    offset; pad_ms, silence before and after (one number, or (before, after)); bits, 16 or
    24; format, "wav" or "flac"; allow_clip, write a normalizing gain that would clip
    instead of refusing it.

    Raises OSError when the file cannot be written, ValueError for no samples, NaN or
    infinite samples, a rate outside 1 Hz .. 1 MHz, more than an hour of audio, an option
    out of range or a gain that would clip.
    """
    options = []
    if out_rate is not None:
        options.append(("rate", str(int(out_rate))))
    if normalize is not None:
        options.append(("normalize", str(normalize)))
    if ramp_ms is not None:
        options.append(("ramp", repr(float(ramp_ms))))
    if pad_ms is not None:
        pad = pad_ms if isinstance(pad_ms, (tuple, list)) else (pad_ms,)
        options.append(("pad", ",".join(repr(float(p)) for p in pad)))
    if bits is not None:
        options.append(("bits", str(int(bits))))
    if format is not None:
        options.append(("format", str(format)))
    if allow_clip:
        options.append(("allow-clip", "1"))
    return _tessaphon.write_wav(str(path), samples, float(rate), options)


def pitch(samples, rate, *, window=35.0, step=10.0, low=50.0, high=500.0, deviation=100.0,
          threshold=1.0):
    """pitch(samples, rate, *, window=35.0, step=10.0, low=50.0, high=500.0, deviation=100.0,
    threshold=1.0) -> (times_ms, f0_hz)

    The cepstral pitch track, as the pitch window and tessaphon-cli pitch compute it: one
    value per step, 0 where a frame is unvoiced or rejected. The keywords are the pitch
    panel's settings with its defaults: window and step in ms, the search range low..high
    in Hz, deviation the largest frame-to-frame jump kept (Hz), threshold the energy gate in
    per cent of the loudest frame. Raises ValueError for an argument out of range.
    """
    s = _tessaphon._PitchSettings()
    s.window, s.step, s.low, s.high = float(window), float(step), float(low), float(high)
    s.deviation, s.threshold = float(deviation), float(threshold)
    return _tessaphon.pitch(samples, float(rate), s)


def _spectrogram_options(columns, rows, window, frequency_range, order, preemphasis,
                         dynamic_range):
    o = _tessaphon._SpectrogramOptions()
    o.columns, o.rows, o.window = int(columns), int(rows), int(window)
    o.frequency_range = None if frequency_range is None else int(frequency_range)
    o.order = None if order is None else int(order)
    o.preemphasis, o.dynamic_range = float(preemphasis), int(dynamic_range)
    return o


_SPECTROGRAM_KEYWORDS = """The keywords are the spectrogram panel's settings with its defaults: window, the FFT
    frame in samples; frequency_range, the frequency of the top row in Hz (default: 1000 Hz
    steps below half the rate, 5000 at 11025 Hz); order, the LPC order (default: 2 per kHz
    of rate plus 4, made even: 14 at 11025 Hz); preemphasis, the forward-difference
    coefficient (0 = off); dynamic_range, the levels shown in dB. columns and rows are the
    display's size in analysis frames and levels per frame, as tessaphon-cli's --columns and
    --rows. Raises ValueError for an argument out of range."""


def formants(samples, rate, *, columns=500, rows=256, window=128, frequency_range=None,
             order=None, preemphasis=0.98, dynamic_range=50):
    """formants(samples, rate, *, columns=500, rows=256, window=128, frequency_range=None,
    order=None, preemphasis=0.98, dynamic_range=50) -> (times_ms, tracks)

    The formant tracks from LPC roots, as the spectrogram window and tessaphon-cli formants
    compute them: times_ms has one time per analysis frame (columns of them), tracks has
    shape (columns, 5) with F1..F5 in Hz and NaN where a frame has no formant in a slot.

    """
    o = _spectrogram_options(columns, rows, window, frequency_range, order, preemphasis,
                             dynamic_range)
    return _tessaphon.formants(samples, float(rate), o)


def spectrogram(samples, rate, *, columns=500, rows=256, window=128, frequency_range=None,
                order=None, preemphasis=0.98, dynamic_range=50):
    """spectrogram(samples, rate, *, columns=500, rows=256, window=128, frequency_range=None,
    order=None, preemphasis=0.98, dynamic_range=50) -> numpy.ndarray, shape (columns, rows)

    The normalized spectrogram the spectrogram window shows and tessaphon-cli spectrogram
    draws: levels in dB from 0 (dynamic_range or more below the loudest frame) up to
    dynamic_range (the loudest); column c is the analysis frame c, row r the frequency
    r * frequency_range / rows.

    """
    o = _spectrogram_options(columns, rows, window, frequency_range, order, preemphasis,
                             dynamic_range)
    return _tessaphon.spectrogram(samples, float(rate), o)


formants.__doc__ += _SPECTROGRAM_KEYWORDS
spectrogram.__doc__ += _SPECTROGRAM_KEYWORDS


def slice(samples, rate, at_ms, *, window=None, applied=None, order=None, frequency_range=None):
    """slice(samples, rate, at_ms, *, window=None, applied=None, order=None,
    frequency_range=None) -> (freq_hz, fft_db, lpc_db)

    The FFT/LPC slice at at_ms, as the slice window and tessaphon-cli slice compute it: the
    mean level spectrum of 10 windows spread over the 10 ms from at_ms on, and its LPC
    envelope (NaN when every window is silent), in dB re full scale, one value per bin up to
    the frequency range. The keywords are the FFT/LPC panel's settings; left at None they
    take its defaults for the rate: window, the transform length (256; a power of two 32 ..
    8192, choosing it windows the whole transform as the panel does); applied, the ms of
    samples windowed (256 points' worth); order, the LPC order (2 per kHz plus 4, even);
    frequency_range in Hz (1000 Hz steps below half the rate). Raises ValueError for an
    argument out of range or at_ms past the end.
    """
    return _tessaphon.slice(samples, float(rate), float(at_ms), window, applied, order,
                            frequency_range)


def compare(a, b, rate, *, window=128, frequency_range=None, order=None, preemphasis=0.98,
            dynamic_range=50):
    """compare(a, b, rate, *, window=128, frequency_range=None, order=None, preemphasis=0.98,
    dynamic_range=50) -> (times_ms, distance_db)

    The spectral distance of two recordings of one rate, frame by frame every 10 ms, as
    tessaphon-cli compare measures it: the RMS difference in dB of the frames' zero-mean LPC
    envelopes from 0 Hz to the frequency range. Frames more than dynamic_range below their
    recording's loudest frame are skipped; the longer recording is cut. The mean distance is
    distance_db.mean(). The keywords are the spectrogram panel's settings (see
    help(tessaphon.formants)).
    """
    o = _spectrogram_options(1, 1, window, frequency_range, order, preemphasis, dynamic_range)
    return _tessaphon.compare(a, b, float(rate), o)


def trace(samples, rate, *, columns=695, rows=187, window=128, frequency_range=None, order=None,
          preemphasis=0.98, dynamic_range=50, pitch_window=35.0, pitch_step=10.0, pitch_low=50.0,
          pitch_high=500.0, pitch_deviation=100.0, pitch_threshold=1.0):
    """trace(samples, rate, **options) -> Document

    Copy synthesis as the trace window's Enter All Data does it and tessaphon-cli trace
    saves it: a new document spanning the recording, with its pitch track entered into f0,
    its formant tracks into f1..f5 and the spectrogram's level under each formant into
    a1f..a5f. The samples are taken as the 16-bit WAVE file write_wav would write, so the
    document equals the one tessaphon-cli trace makes of that file. columns and rows are the
    trace window's spectrogram size in pixels (its formant frames follow it); the other
    keywords are the spectrogram panel's (see help(tessaphon.formants)) and, prefixed
    pitch_, the pitch panel's (see help(tessaphon.pitch)). Raises ValueError for a
    recording shorter than one frame or an argument out of range.
    """
    o = _spectrogram_options(columns, rows, window, frequency_range, order, preemphasis,
                             dynamic_range)
    p = _tessaphon._PitchSettings()
    p.window, p.step, p.low, p.high = (float(pitch_window), float(pitch_step),
                                       float(pitch_low), float(pitch_high))
    p.deviation, p.threshold = float(pitch_deviation), float(pitch_threshold)
    return _tessaphon.trace(samples, float(rate), o, p)


def continuum(a, b, steps, scale="bark", rows=None):
    """continuum(a, b, steps, scale="bark", rows=None) -> list of Documents

    The steps of a continuum from document a (step 1) to document b (step N), as
    tessaphon-cli continuum makes them: step k has weight w = (k - 1) / (N - 1) and each
    interpolated value is (1 - w) a + w b on the frequency scale ("hz", "bark", "erb" or
    "mel") for the frequency rows (f0, f1..f8, fnz, fnp) and linear for the others, rounded
    and kept within a's limits. rows names the parameters to interpolate (default: every
    row where a and b differ); everything else is a's. a and b need the same frames and
    interval; raises ValueError otherwise or for a bad argument.
    """
    names = [] if rows is None else [rows] if isinstance(rows, str) else list(rows)
    return _tessaphon.continuum(a, b, int(steps), str(scale), names)


def copysynth(samples, rate, *, output_rate=None, max_formant=None, interval_ms=10, pitch_low=60.0,
              pitch_high=500.0, pitch_window=None, order=None, preemphasis=0.97):
    """copysynth(samples, rate, *, output_rate=None, max_formant=None, interval_ms=10,
    pitch_low=60.0, pitch_high=500.0, pitch_window=None, order=None, preemphasis=0.97) -> Document

    Automatic copy synthesis, as the workbench's Automatic Copy Synthesis and tessaphon-cli
    copysynth make it: every synthesis parameter of the recording estimated frame by frame
    (voicing and f0, f1..f5 and their bandwidths, f6..f8 at 22050 Hz, noise amplitudes,
    levels corrected by synthesizing the estimate), in a document spanning the recording.
    The samples are taken as the 16-bit WAVE file write_wav would write, so the document
    equals the one tessaphon-cli copysynth makes of that file. output_rate is 11025 or
    22050 (None: 22050 for recordings at 22050 Hz or more); max_formant the formant ceiling
    in Hz, 3000..8000 (None: the ceiling with the smoothest tracks); interval_ms the frame
    length, 1..100; pitch_low..pitch_high the pitch search range in Hz, 30..1200;
    pitch_window in ms (None: three periods of pitch_low); order the LPC order, 2..40
    (None: 2 + 2 per kHz of ceiling); preemphasis 0 (off) .. 0.999. Raises ValueError for a
    recording shorter than two frames, a rate below 8000 Hz or an argument out of range.
    """
    if output_rate not in (None, 11025, 22050):
        raise ValueError(f"output_rate must be 11025 or 22050 (got {output_rate})")
    checks = (("max_formant", max_formant, 3000.0, 8000.0), ("interval_ms", interval_ms, 1, 100),
              ("pitch_low", pitch_low, 30.0, 1200.0), ("pitch_high", pitch_high, 30.0, 1200.0),
              ("pitch_window", pitch_window, 5.0, 1000.0), ("order", order, 2, 40),
              ("preemphasis", preemphasis, 0.0, 0.999))
    for name, value, low, high in checks:
        if value is not None and not low <= value <= high:
            raise ValueError(f"{name} must be between {low:g} and {high:g} (got {value})")
    if pitch_low > pitch_high:
        raise ValueError("pitch_low must not lie above pitch_high")
    o = _tessaphon._CopySynthesisOptions()
    o.rate = output_rate or 0
    o.max_formant = float(max_formant or 0.0)
    o.interval_ms = int(interval_ms)
    o.pitch_low, o.pitch_high = float(pitch_low), float(pitch_high)
    o.pitch_window = float(pitch_window or 0.0)
    o.order = int(order or 0)
    o.preemphasis = float(preemphasis)
    return _tessaphon.copysynth(samples, float(rate), o)
