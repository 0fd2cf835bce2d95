"""The library's filter designers, with numpy results and vectorised sweeps."""
from __future__ import annotations

import numbers
from typing import Any, Dict, List, Optional, Sequence, Tuple

import numpy as np

from . import _core

FORMATS = ("float", "fxp32", "fxp32-noscale", "fxp24", "fxp16")
_WIDTH = {"float": 0, "fxp32": 32, "fxp32-noscale": 32, "fxp24": 24, "fxp16": 16}
_KINDS = {"low": _core.LOWPASS, "high": _core.HIGHPASS}
BAND_TYPES: Dict[str, int] = {name: value for value, name in _core.BAND_TYPES}
# Beyond these an output buffer is sized from a mistake; `heron design` has the same limits.
_MAX_ORDER = 64
_MAX_BANDS = 64


def _fmt(fmt: Any) -> str:
    if not isinstance(fmt, str):
        raise TypeError(f"fmt must be a str ({', '.join(FORMATS)}), not {type(fmt).__name__}")
    return fmt  # the native layer names the formats the family has


def _workers(workers: Optional[int]) -> int:
    if workers is None:
        return 0
    if not isinstance(workers, numbers.Integral) or isinstance(workers, bool) or workers < 1:
        raise ValueError(f"workers must be a positive integer or None (every core), not {workers!r}")
    return int(workers)


def _numeric(name: str, value: Any, dtype: Any) -> np.ndarray:
    """value as an array of dtype; TypeError for anything not numeric."""
    a = np.asarray(value)
    if a.dtype.kind not in "biuf" or (np.dtype(dtype).kind in "iu" and a.dtype.kind == "f"):
        want = "integer" if np.dtype(dtype).kind in "iu" else "number"
        raise TypeError(f"{name} must be a {want} or an array of them, not {type(value).__name__} "
                        f"of dtype {a.dtype}")
    return a.astype(dtype)


class Design:
    """The result of one design, or of a sweep of designs.

    Attributes (a sweep adds the sweep's shape in front of each array):

    result   the designer's code: 0, or -1000 when it refused the parameters
    error    None, or the sentence saying why it refused (a sweep: ``errors``,
             a dict from flat index to sentence)
    output   the raw output buffer: float32 for 'float', int32 for the 32- and
             24-bit formats, int16 for 'fxp16'
    sections (S, 5) real coefficient values b0 b1 b2 A1 A2, the library's
             convention (A1, A2 negated: y = ... + A1 y[n-1] + A2 y[n-2]);
             first-order groups as b0 b1 0 A1 0
    gain     the cascade gain (1.0 where the output has none)
    iwl      (S,) integer bits of each fixed-point section (None for float);
             ``gain_iwl`` that of the gain word
    names    the section names
    family, fmt, rate, width  what was designed (width 0 for float)
    """

    def __init__(self, family: str, fmt: str, rate: Any, result: np.ndarray, output: np.ndarray,
                 sections: np.ndarray, gain: Any, iwl: Optional[np.ndarray], gain_iwl: Any,
                 names: List[str], default_sos: Sequence[int], errors: Dict[int, str],
                 shape: Optional[Tuple[int, ...]], request: Dict[str, Any]):
        self.family, self.fmt, self.rate, self.width = family, fmt, rate, _WIDTH.get(fmt, 32)
        self.names = names
        self.shape = shape
        self._default_sos = list(default_sos)
        self._request = request
        if shape is None:  # one design: drop the sweep axis
            self.result = int(result[0])
            self.output = output[0]
            self.sections = sections[0]
            self.gain = float(gain[0])
            self.iwl = None if iwl is None else iwl[0]
            self.gain_iwl = None if gain_iwl is None else int(gain_iwl[0])
            self.error = errors.get(0)
            self.errors = errors
        else:
            lead = tuple(shape)
            self.result = result.reshape(lead)
            self.output = output.reshape(lead + output.shape[1:])
            self.sections = sections.reshape(lead + sections.shape[1:])
            self.gain = gain.reshape(lead)
            self.iwl = None if iwl is None else iwl.reshape(lead + iwl.shape[1:])
            self.gain_iwl = None if gain_iwl is None else gain_iwl.reshape(lead)
            self.error = None
            self.errors = errors

    def sos(self, which: Optional[Sequence[int]] = None) -> np.ndarray:
        """The cascade in scipy.signal's convention: (S, 6) rows b0 b1 b2 1 a1 a2
        with a1 = -A1, a2 = -A2 and the gain folded into the first section, for
        ``scipy.signal.sosfreqz(d.sos(), fs=d.rate)`` and ``sosfilt``.

        ``which`` picks sections by index; the default is the whole cascade
        (Butterworth, parametric EQ), the low-pass half of a crossover (``[1]``
        is the high-pass half) and the bass-boost path of thumpx.
        """
        idx = self._default_sos if which is None else list(which)
        s = self.sections[..., idx, :]
        out = np.empty(s.shape[:-1] + (6,))
        out[..., 0:3] = s[..., 0:3]
        out[..., 3] = 1.0
        out[..., 4] = -s[..., 3]
        out[..., 5] = -s[..., 4]
        if out.shape[-2] > 0:
            out[..., 0, 0:3] *= np.asarray(self.gain)[..., None]
        return out

    def __repr__(self) -> str:
        what = f"{self.family} {self.fmt}"
        if self.shape is not None:
            return f"<Design {what}, sweep {self.shape}, {int(np.count_nonzero(self.result))} refused>"
        return f"<Design {what}, result {self.result}, {len(self.names)} sections, gain {self.gain:.6g}>"


def _cascade(family: str, fmt: str, rate: Any, out: Tuple[np.ndarray, np.ndarray, dict], sections: int,
             names: List[str], shape: Optional[Tuple[int, ...]], request: Dict[str, Any]) -> Design:
    results, output, errors = out
    n = output.shape[0]
    width = _WIDTH[fmt]
    if width == 0:
        secs = output[:, :5 * sections].reshape(n, sections, 5).astype(np.float64)
        gain = output[:, 5 * sections].astype(np.float64) if output.shape[1] > 5 * sections else np.ones(n)
        iwl = gain_iwl = None
    else:
        w = output[:, :6 * sections].reshape(n, sections, 6).astype(np.int64)
        iwl = w[..., 0]
        secs = w[..., 1:] * np.ldexp(1.0, (iwl - width))[..., None]
        gain_iwl = output[:, 6 * sections].astype(np.int64)
        gain = output[:, 6 * sections + 1] * np.ldexp(1.0, gain_iwl - width)
    return Design(family, fmt, rate, results, output, secs, gain, iwl, gain_iwl, names, range(sections),
                  errors, shape, request)


def _sweep_shape(*arrays: np.ndarray) -> Tuple[Optional[Tuple[int, ...]], List[np.ndarray]]:
    """Broadcasts the parameters; shape None when every one is a scalar."""
    try:
        b = np.broadcast_arrays(*arrays)
    except ValueError as e:
        raise ValueError(f"the parameter arrays do not broadcast together: {e}") from None
    shape = b[0].shape
    flat = [np.ascontiguousarray(x).reshape(-1) for x in b]
    return (None if shape == () else shape), flat


def _kind_codes(kind: Any) -> np.ndarray:
    k = np.asarray(kind)
    if k.dtype.kind not in "US":
        raise TypeError(f"kind must be 'low' or 'high' (or an array of them), not {type(kind).__name__}")
    bad = sorted(set(np.unique(k).tolist()) - set(_KINDS))
    if bad:
        raise ValueError(f"kind must be 'low' or 'high', not {bad[0]!r}")
    return np.where(k == "low", _KINDS["low"], _KINDS["high"]).astype(np.int32)


def butterworth(kind: Any, cutoff: Any, order: int, rate: Any = 48000, fmt: str = "float", *,
                workers: Optional[int] = None) -> Design:
    """Butterworth low- or high-pass cascade (OVA_IirFilterDesign*).

    kind 'low' or 'high'; cutoff in Hz; order 1 to 16 ((order + 1) // 2
    sections, the first one first order when order is odd); rate in Hz; fmt
    'float', 'fxp32', 'fxp24' or 'fxp16'. ``kind``, ``cutoff`` and ``rate`` may
    be numpy arrays, broadcast together: the result is a sweep whose fields
    have the broadcast shape in front, designed in parallel on ``workers``
    threads (default every core). ``order`` is one integer for the whole sweep.
    A design the library refuses comes back with result -1000; wrong types
    raise TypeError, bad values ValueError.
    """
    fmt = _fmt(fmt)
    if not isinstance(order, numbers.Integral) or isinstance(order, bool):
        raise TypeError(f"order must be an integer (one for the whole sweep), not {type(order).__name__}")
    if order > _MAX_ORDER:
        raise ValueError(f"order must be at most {_MAX_ORDER}, not {order}")
    shape, (k, c, r) = _sweep_shape(_kind_codes(kind), _numeric("cutoff", cutoff, np.float32),
                                    _numeric("rate", rate, np.int32))
    out = _core.design_butterworth(k, c, int(order), r, fmt, _workers(workers))
    sections = (int(order) + 1) // 2 if order > 0 else 0
    names = [f"section {s}" for s in range(sections)]
    if order % 2 == 1 and names:
        names[0] += " (first order)"
    req = dict(kind=kind, cutoff=cutoff, order=order, rate=rate)
    return _cascade("butterworth", fmt, rate, out, sections, names, shape, req)


def _band_type(value: Any) -> np.ndarray:
    a = np.asarray(value)
    if a.dtype.kind in "US":
        codes = np.empty(a.shape, np.int32)
        for i, name in np.ndenumerate(a):
            if name in BAND_TYPES:
                codes[i] = BAND_TYPES[name]
            elif str(name).lstrip("-").isdigit():
                codes[i] = int(name)
            else:
                raise ValueError(f"unknown band type {str(name)!r} ({', '.join(BAND_TYPES)} or a number)")
        return codes
    return _numeric("band type", a, np.int32)


def peq(bands: Sequence[Sequence[Any]], rate: Any = 48000, fmt: str = "float", *,
        workers: Optional[int] = None) -> Design:
    """Parametric equaliser (OVA_ParametriceqDesign*), one section per band.

    bands: a sequence of (type, freq, q, gain[, invert]) tuples; type a band
    type's name ('traditional', 'lowshelf', 'highshelf', 'lowpass', 'highpass',
    'bandpass', 'allpass', 'notch', 'peaking', 'gain') or number, freq in Hz,
    q in engine units (the shelf slope for shelves), gain in dB, invert 0 or
    1. fmt 'float', 'fxp32', 'fxp32-noscale', 'fxp24' or 'fxp16'. Any band
    field and ``rate`` may be numpy arrays, broadcast together into a sweep
    designed in parallel (``workers`` threads, default every core).
    """
    fmt = _fmt(fmt)
    if isinstance(bands, (str, bytes)) or not isinstance(bands, Sequence):
        raise TypeError("bands must be a sequence of (type, freq, q, gain[, invert]) tuples")
    if len(bands) > _MAX_BANDS:
        raise ValueError(f"at most {_MAX_BANDS} bands, not {len(bands)}")
    fields: List[List[np.ndarray]] = [[], [], [], [], []]
    for i, band in enumerate(bands):
        if isinstance(band, (str, bytes)) or not isinstance(band, Sequence):
            raise TypeError(f"band {i} must be a (type, freq, q, gain[, invert]) tuple, not {type(band).__name__}")
        if len(band) not in (4, 5):
            raise ValueError(f"band {i} has {len(band)} values; it takes (type, freq, q, gain[, invert])")
        inv = _numeric("invert", band[4] if len(band) == 5 else 0, np.int32)
        if np.any((inv != 0) & (inv != 1)):
            raise ValueError(f"band {i}: invert must be 0 or 1")
        fields[0].append(_band_type(band[0]))
        fields[1].append(_numeric("freq", band[1], np.float32))
        fields[2].append(_numeric("q", band[2], np.float32))
        fields[3].append(_numeric("gain", band[3], np.float32))
        fields[4].append(inv)
    nb = len(bands)
    flat_in = [a for f in fields for a in f] + [_numeric("rate", rate, np.int32)]
    shape, flat = _sweep_shape(*flat_in)
    n = flat[-1].size
    cols = [np.stack(flat[j * nb:(j + 1) * nb], axis=1) if nb else np.zeros((n, 0), np.int32) for j in range(5)]
    out = _core.design_peq(cols[0].astype(np.int32), cols[1].astype(np.float32), cols[2].astype(np.float32),
                           cols[3].astype(np.float32), cols[4].astype(np.int32), flat[-1], fmt, _workers(workers))
    names = [f"band {i}" for i in range(nb)]
    return _cascade("peq", fmt, rate, out, nb, names, shape, dict(bands=bands, rate=rate))


def _groups(family: str, fmt: str, rate: int, out: Tuple[np.ndarray, np.ndarray, dict],
            default_sos: Sequence[int], request: Dict[str, Any]) -> Design:
    results, output, errors = out
    groups, _ = _core.designer_groups(family)
    width = _WIDTH[fmt]
    secs = np.zeros((1, len(groups), 5))
    iwl = None if width == 0 else np.zeros((1, len(groups)), np.int64)
    for g, (_, ffirst, wfirst, values) in enumerate(groups):
        pos = [0, 1, 3] if values == 3 else [0, 1, 2, 3, 4]
        if width == 0:
            secs[0, g, pos] = output[0, ffirst:ffirst + values]
        else:
            iwl[0, g] = output[0, wfirst]
            secs[0, g, pos] = output[0, wfirst + 1:wfirst + 1 + values] * np.ldexp(1.0, int(iwl[0, g]) - width)
    names = [g[0] for g in groups]
    return Design(family, fmt, rate, results, output, secs, np.ones(1), iwl, None, names, default_sos,
                  errors, None, request)


def thumpx(speaker_size: int, rate: int = 48000, fmt: str = "float", *, bass_ctrl: float = 0.333499998,
           hp_ratio: float = 0.5, ext_bass: float = 0.8, lp_ratio: float = 5.5, pre_lp_freq: float = 500.0,
           harm_hp_freq: float = 44.0, clip_level: float = 1.5) -> Design:
    """Bass-enhancement filter set (OVA_THUMPX_FilterDesign*): eleven filter
    groups as ``sections`` (first-order groups as b0 b1 0 A1 0) and the seven
    parameter words as ``parameters``. ``sos()`` is the bass-boost path (two
    peaks and the high shelf). Defaults are the schema's; rate 44100, 32000 or
    48000; fmt 'float', 'fxp32', 'fxp24' or 'fxp16'.
    """
    fmt = _fmt(fmt)
    if not isinstance(speaker_size, numbers.Integral) or not isinstance(rate, numbers.Integral):
        raise TypeError("speaker_size and rate must be integers")
    vals = dict(bass_ctrl=bass_ctrl, hp_ratio=hp_ratio, ext_bass=ext_bass, lp_ratio=lp_ratio,
                pre_lp_freq=pre_lp_freq, harm_hp_freq=harm_hp_freq, clip_level=clip_level)
    for name, v in vals.items():
        if not isinstance(v, numbers.Real):
            raise TypeError(f"{name} must be a number, not {type(v).__name__}")
    # The reserved argument as the converter passes it (the bits of 1.0f); no designer reads it.
    out = _core.design_thumpx(int(speaker_size), bass_ctrl, hp_ratio, ext_bass, int(rate), lp_ratio, pre_lp_freq,
                              harm_hp_freq, clip_level, 0x3F800000, fmt)
    d = _groups("thumpx", fmt, rate, out, [8, 9, 10], dict(speaker_size=speaker_size, rate=rate, **vals))
    _, words = _core.designer_groups("thumpx")
    width = _WIDTH[fmt]
    d.parameters = {name: (float(d.output[fi]) if width == 0 else _core.parameter_value(enc, int(d.output[wi]), width))
                    for name, fi, wi, enc in words}
    return d


def crossover(freq: float, rate: int = 48000, fmt: str = "float") -> Design:
    """Multi-band limiter crossover (QUILL_McDyn_FilterDesign*): a second-order
    low-pass and high-pass section at freq Hz, no gain; fmt 'float' or
    'fxp32'. ``sos()`` is the low-pass half, ``sos([1])`` the high-pass half.
    """
    fmt = _fmt(fmt)
    if not isinstance(freq, numbers.Real) or not isinstance(rate, numbers.Integral):
        raise TypeError("freq must be a number and rate an integer")
    out = _core.design_crossover(float(freq), int(rate), fmt)
    return _groups("crossover", fmt, rate, out, [0], dict(freq=freq, rate=rate))


_DISTPREV_FIELDS = (("nf_mode", 0), ("nf_thld", 0.0), ("nf_sense", 0.0), ("nf_attk_thld", 0.0),
                    ("nf_attk_ms", 200.0), ("nf_rel_ms", 50.0), ("nf_band_ct", 0), ("nf_base_freq", 100.0),
                    ("nf_base_q", 10.0), ("nf_base_attn_max", 0.0), ("nf_spacing", 0), ("nf_width", 0),
                    ("nf_slope", 0.0))


class DistprevDesign:
    """Distortion-prevention records: ``result`` (always 0), ``header`` (the
    fixed design header, bytes), ``output`` (every record's words, int32, as
    ``heron design distprev --json`` prints them), ``records`` (one bytes
    object per design) and ``record(k)``: the named fields of record k, with
    the names ``heron dump`` prints after ``dist_prev[0].``.
    """

    def __init__(self, result: int, header: bytes, records: bytes):
        size = _core.DISTPREV_RECORD_BYTES
        self.result, self.header = result, header
        self.records = [records[i:i + size] for i in range(0, len(records), size)]
        self.output = np.frombuffer(records, dtype="<i4").copy()

    def record(self, k: int) -> Dict[str, Any]:
        from ._records import field_values
        return field_values(self.records[k], "postmix", "dist_prev[0].")


def distprev(count: int = 2, **block: Any) -> DistprevDesign:
    """``count`` distortion-prevention records designed from one notch block
    (quill_distprev_config_designer), at 48000, 44100 and 32000 Hz. Block
    fields as keywords, defaults as ``heron design distprev``: nf_mode 0,
    nf_thld 0, nf_sense 0, nf_attk_thld 0, nf_attk_ms 200, nf_rel_ms 50,
    nf_band_ct 0, nf_base_freq 100, nf_base_q 10, nf_base_attn_max 0,
    nf_spacing 0, nf_width 0, nf_slope 0.
    """
    if not isinstance(count, numbers.Integral) or count < 0:
        raise ValueError(f"count must be a non-negative integer, not {count!r}")
    names = dict(_DISTPREV_FIELDS)
    unknown = sorted(set(block) - set(names))
    if unknown:
        raise TypeError(f"distprev() got unknown block field {unknown[0]!r}; fields: {', '.join(names)}")
    values = []
    for name, default in _DISTPREV_FIELDS:
        v = block.get(name, default)
        if not isinstance(v, numbers.Real) or (isinstance(default, int) and not isinstance(v, numbers.Integral)):
            raise TypeError(f"{name} must be {'an integer' if isinstance(default, int) else 'a number'}")
        values.append(type(default)(v))
    result, header, records = _core.design_distprev([tuple(values)] * int(count))
    return DistprevDesign(result, header, records)
