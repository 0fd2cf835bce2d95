"""Designs against independent references: scipy.signal.butter, and the C
library through `heron design --json` word for word."""
import numpy as np
import pytest
import scipy.signal

import quillheron as qh

# (kind, order, corner as a fraction of the rate, rate)
BUTTER_CASES = [("low", 1, 0.01, 48000), ("low", 2, 0.1, 44100), ("low", 5, 0.45, 32000), ("low", 8, 0.2, 48000),
                ("high", 3, 0.01, 48000), ("high", 4, 0.3, 96000), ("high", 7, 0.05, 16000),
                ("high", 16, 0.25, 48000)]


@pytest.mark.parametrize("kind,order,frac,rate", BUTTER_CASES)
def test_butterworth_float_matches_scipy_butter(kind, order, frac, rate):
    cutoff = frac * rate
    d = qh.butterworth(kind, cutoff, order, rate, "float")
    assert d.result == 0
    ref = scipy.signal.butter(order, cutoff, btype=kind + "pass", fs=rate, output="sos")
    freqs = np.geomspace(rate * 1e-4, rate * 0.4999, 400)
    _, ours = scipy.signal.sosfreqz(d.sos(), worN=freqs, fs=rate)
    _, theirs = scipy.signal.sosfreqz(ref, worN=freqs, fs=rate)
    theirs_db = 20 * np.log10(np.abs(theirs))
    shown = theirs_db > -40
    assert shown.sum() > 20
    assert np.max(np.abs(20 * np.log10(np.abs(ours[shown])) - theirs_db[shown])) < 1e-2


# (python call, heron design arguments)
TOOL_CASES = [
    (lambda f: qh.butterworth("low", 1000, 3, 48000, f), ["butterworth", "--type", "low", "--cutoff", 1000,
                                                         "--order", 3]),
    (lambda f: qh.butterworth("high", 37.5, 6, 44100, f), ["butterworth", "--type", "high", "--cutoff", 37.5,
                                                          "--order", 6, "--rate", 44100]),
    (lambda f: qh.peq([("peaking", 1000, 1.4, 6), (1, 120, 0.7, -4.5, 1), ("notch", 3000, 8, 0)], 48000, f),
     ["peq", "--band", "peaking,1000,1.4,6", "--band", "1,120,0.7,-4.5,1", "--band", "notch,3000,8,0"]),
    (lambda f: qh.peq([("highpass", 60, 1, 3), ("gain", 0, 0, -6)], 32000, f),
     ["peq", "--rate", 32000, "--band", "highpass,60,1,3", "--band", "gain,0,0,-6"]),
    (lambda f: qh.thumpx(150, 44100, f, bass_ctrl=0.6), ["thumpx", "--speaker-size", 150, "--rate", 44100,
                                                        "--bass-ctrl", 0.6]),
    (lambda f: qh.crossover(250, 48000, f), ["crossover", "--freq", 250]),
]
FAMILY_FORMATS = {"butterworth": ["float", "fxp32", "fxp24", "fxp16"], "peq": list(qh.FORMATS),
                  "thumpx": ["float", "fxp32", "fxp24", "fxp16"], "crossover": ["float", "fxp32"]}


@pytest.mark.parametrize("call,args", TOOL_CASES, ids=[c[1][0] + str(i) for i, c in enumerate(TOOL_CASES)])
def test_designs_equal_heron_design_word_for_word(heron, call, args):
    for fmt in FAMILY_FORMATS[args[0]]:
        ref = heron("design", *args, "--format", fmt, "--json", json_out=True, ok=(0, 4))
        d = call(fmt)
        assert d.result == ref["result"] == 0
        assert d.output.dtype == {"float": np.float32, "fxp16": np.int16}.get(fmt, np.int32)
        assert np.array_equal(d.output, np.array(ref["output"], dtype=d.output.dtype)), fmt
        # The real values: the tool lists cascade sections with the gain after them.
        rows = [s for s in ref["sections"] if s["name"] not in ("gain", "parameters")]
        for row, ours in zip(rows, d.sections):
            theirs = [row.get(k, 0.0) for k in ("b0", "b1", "b2", "a1", "a2")]
            assert np.allclose(ours, theirs, rtol=0, atol=1e-12), (fmt, row["name"])
        if d.width:
            assert list(d.iwl[:len(rows)]) == [r["iwl"] for r in rows]


def test_distprev_equals_heron_design(heron):
    ref = heron("design", "distprev", "--count", 3, "--nf-band-ct", 4, "--nf-base-freq", 80, "--nf-slope", 2,
                "--json", json_out=True, ok=(0, 4))
    d = qh.distprev(3, nf_band_ct=4, nf_base_freq=80, nf_slope=2.0)
    assert d.result == ref["result"] == 0
    assert d.header.hex() == ref["header"]
    assert np.array_equal(d.output, ref["output"])
    assert d.record(2)["notch_band_count"] == 4


def test_refused_design_comes_back_as_the_code_with_the_tools_reason(heron):
    ref = heron("design", "butterworth", "--type", "low", "--cutoff", 30000, "--order", 2, "--unchecked",
                "--json", json_out=True, ok=(3,))
    d = qh.butterworth("low", 30000, 2, 48000, "fxp32")
    assert d.result == ref["result"] == -1000
    assert d.error == ref["error"]


BAD_ARGUMENTS = [
    (lambda: qh.butterworth("band", 1000, 2), ValueError, "kind must be 'low' or 'high'"),
    (lambda: qh.butterworth(0, 1000, 2), TypeError, "kind must be"),
    (lambda: qh.butterworth("low", "1k", 2), TypeError, "cutoff must be a number"),
    (lambda: qh.butterworth("low", 1000, 2.0), TypeError, "order must be an integer"),
    (lambda: qh.butterworth("low", 1000, 65), ValueError, "order must be at most 64"),
    (lambda: qh.butterworth("low", 1000, 2, 48000, "fxp8"), ValueError, "butterworth takes fmt"),
    (lambda: qh.butterworth("low", 1000, 2, 48000, 32), TypeError, "fmt must be a str"),
    (lambda: qh.butterworth("low", np.ones(3), 2, np.ones(2, int)), ValueError, "do not broadcast"),
    (lambda: qh.butterworth("low", 1000, 2, workers=0), ValueError, "workers must be"),
    (lambda: qh.peq([("peaking", 1000, 1)]), ValueError, "band 0 has 3 values"),
    (lambda: qh.peq([("wobble", 1000, 1, 0)]), ValueError, "unknown band type 'wobble'"),
    (lambda: qh.peq([("peaking", 1000, 1, 0, 2)]), ValueError, "invert must be 0 or 1"),
    (lambda: qh.peq("peaking,1000,1,0"), TypeError, "bands must be a sequence"),
    (lambda: qh.peq([("peaking", 1000, 1, 0)], 48000, "record"), ValueError, "peq takes fmt"),
    (lambda: qh.crossover(300, 48000, "fxp16"), ValueError, "crossover takes fmt 'float', 'fxp32'"),
    (lambda: qh.thumpx(100, 48000, bass_ctrl="high"), TypeError, "bass_ctrl must be a number"),
    (lambda: qh.distprev(2, nf_band=3), TypeError, "unknown block field 'nf_band'"),
    (lambda: qh.distprev(-1), ValueError, "count must be"),
]


@pytest.mark.parametrize("call,error,text", BAD_ARGUMENTS, ids=[t for _, _, t in BAD_ARGUMENTS])
def test_bad_arguments_raise_the_documented_errors(call, error, text):
    with pytest.raises(error, match=text.replace("(", r"\(")):
        call()
