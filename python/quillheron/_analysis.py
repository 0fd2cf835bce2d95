"""Responses, poles and zeros, and quantisation reports of cascades, from the
analysis component."""
from __future__ import annotations

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from . import _core
from ._designs import Design


def _sections(cascade: Any) -> Tuple[np.ndarray, float, Optional[float]]:
    """(S, 5) sections in the library's convention, the gain, and the rate if
    the cascade knows it. Takes a Design (one design, not a sweep), an (S, 6)
    array in scipy.signal's sos convention, or a (sections (S, 5), gain) pair."""
    if isinstance(cascade, Design):
        if cascade.shape is not None:
            raise ValueError("pass one design of a sweep (index its arrays), not the whole sweep")
        idx = cascade._default_sos
        return np.asarray(cascade.sections)[idx], float(cascade.gain), float(cascade.rate)
    if isinstance(cascade, tuple) and len(cascade) == 2:
        s = np.asarray(cascade[0], dtype=np.float64)
        if s.ndim != 2 or s.shape[1] != 5:
            raise ValueError(f"sections must be an (S, 5) array, not shape {s.shape}")
        return s, float(cascade[1]), None
    sos = np.asarray(cascade, dtype=np.float64)
    if sos.ndim != 2 or sos.shape[1] != 6:
        raise ValueError(f"a cascade is a Design, an (S, 6) sos array or (sections, gain), not shape {sos.shape}")
    if np.any(sos[:, 3] == 0):
        raise ValueError("sos rows need a non-zero a0")
    sos = sos / sos[:, 3:4]
    return np.stack([sos[:, 0], sos[:, 1], sos[:, 2], -sos[:, 4], -sos[:, 5]], axis=1), 1.0, None


def _rate(known: Optional[float], rate: Optional[float]) -> float:
    r = rate if rate is not None else known
    if r is None:
        raise ValueError("rate is needed for a cascade that is not a Design")
    if not r > 0:
        raise ValueError(f"rate must be positive, not {r}")
    return float(r)


def response(cascade: Any, freqs: Any, rate: Optional[float] = None) -> Dict[str, np.ndarray]:
    """Frequency response at ``freqs`` (Hz): a dict of numpy arrays ``hz``,
    ``h`` (complex), ``magnitude_db``, ``phase`` (radians) and ``group_delay``
    (samples). ``cascade``: a Design, an (S, 6) sos array or (sections, gain);
    ``rate`` defaults to the Design's.
    """
    s, gain, known = _sections(cascade)
    hz = np.atleast_1d(np.asarray(freqs, dtype=np.float64))
    h, db, phase, delay = _core.response(s, gain, _rate(known, rate), hz.ravel())
    return dict(hz=hz, h=h.reshape(hz.shape), magnitude_db=db.reshape(hz.shape), phase=phase.reshape(hz.shape),
                group_delay=delay.reshape(hz.shape))


def poles(cascade: Any) -> List[Dict[str, Any]]:
    """Per section: ``poles`` and ``zeros`` (complex arrays, in z),
    ``pole_radius`` (the largest) and ``stability`` ('stable', 'marginal' or
    'unstable')."""
    s, _, _ = _sections(cascade)
    return _core.roots(s)


def quantisation_report(design: Design) -> Dict[str, Any]:
    """How far a fixed-point Butterworth or parametric-EQ design is from its
    float design: ``max_error_db`` (None if nothing qualifies) and ``at_hz``
    over 20 Hz to min(20 kHz, 0.45 rate) where the float design is above
    -60 dB, ``silent``, ``saturated`` (coefficient words at the extremes),
    ``sections`` (roots of the quantised sections) and ``stability_changed``.
    """
    from . import _designs
    if not isinstance(design, Design) or design.family not in ("butterworth", "peq"):
        raise TypeError("quantisation_report takes a Design of butterworth or peq")
    if design.shape is not None:
        raise ValueError("pass one design, not a sweep")
    if design.width == 0:
        raise ValueError("a float design has no quantisation to report")
    if design.result != 0:
        raise ValueError(f"the design was refused ({design.error})")
    ref = getattr(_designs, design.family)(fmt="float", **design._request)
    n = len(design.names)
    words = np.asarray(design.output, dtype=np.int64)
    groups = words[:6 * n].reshape(n, 6)
    coefficient_words = groups[:, 1:].ravel().tolist() + [int(words[6 * n + 1])]
    numerator_words = groups[:, 1:4].ravel().tolist()
    return _core.quantisation(ref.sections, ref.gain, design.sections, design.gain, float(design.rate),
                              coefficient_words, numerator_words, design.width)


def dequantise(words: Any, width: int, layout: str = "cascade",
               sections: Optional[int] = None) -> Tuple[np.ndarray, float]:
    """Fixed-point words as the real filter they hold: ``(sections (S, 5),
    gain)`` in the library's convention, ready for ``response`` and ``poles``.

    layout 'cascade': S sections of iwl b0 b1 b2 A1 A2, then the gain's iwl
    and word (6*S + 2 words; S from ``sections``, else from the length);
    'crossover' (low-pass then high-pass section) and 'thumpx' (the eleven
    groups, first-order ones as b0 b1 0 A1 0): one row per group, gain 1.
    width: 32, 24 or 16, the bits each word was quantised to.
    """
    w = np.asarray(words)
    if w.dtype.kind not in "iu" or w.ndim != 1:
        raise TypeError("words must be a 1-D integer array")
    if width not in (16, 24, 32):
        raise ValueError(f"width must be 16, 24 or 32, not {width!r}")
    w = w.astype(np.int64)
    if layout == "cascade":
        s = (len(w) - 2) // 6 if sections is None else int(sections)
        if s < 0 or len(w) < 6 * s + 2:
            raise ValueError(f"{len(w)} words do not hold a cascade of {s} sections")
        g = w[:6 * s].reshape(s, 6)
        return g[:, 1:] * np.ldexp(1.0, g[:, :1] - width), float(w[6 * s + 1] * np.ldexp(1.0, int(w[6 * s]) - width))
    if layout not in ("crossover", "thumpx"):
        raise ValueError(f"layout must be 'cascade', 'crossover' or 'thumpx', not {layout!r}")
    groups, _ = _core.designer_groups(layout)
    out = np.zeros((len(groups), 5))
    for i, (_, _, first, values) in enumerate(groups):
        if len(w) < first + 1 + values:
            raise ValueError(f"{len(w)} words are too few for the {layout} layout")
        pos = [0, 1, 3] if values == 3 else [0, 1, 2, 3, 4]
        out[i, pos] = w[first + 1:first + 1 + values] * np.ldexp(1.0, int(w[first]) - width)
    return out, 1.0
