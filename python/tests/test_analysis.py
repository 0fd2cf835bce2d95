"""The analysis against scipy.signal and numpy, and against the quantisation
analysis `heron design --json` reports."""
import numpy as np
import pytest
import scipy.signal

import quillheron as qh

DESIGNS = [lambda: qh.butterworth("high", 80, 4, 48000, "fxp24"),
           lambda: qh.peq([("peaking", 2000, 3, -9), ("highshelf", 8000, 1, 4)], 44100, "float"),
           lambda: qh.crossover(1200, 32000, "fxp32")]


@pytest.mark.parametrize("make", DESIGNS)
def test_response_and_poles_agree_with_scipy_and_numpy(make):
    d = make()
    hz = np.array([31.5, 250.0, 1000.0, 6000.0, 0.4 * d.rate])
    r = qh.response(d, hz)
    _, h = scipy.signal.sosfreqz(d.sos(), worN=hz, fs=d.rate)
    assert np.allclose(r["h"], h, rtol=1e-9, atol=1e-12)
    assert np.allclose(r["magnitude_db"], 20 * np.log10(np.abs(h)))
    # Section by section: scipy's delay of one long polynomial is ill-conditioned at low corners.
    gd = sum(scipy.signal.group_delay((row[:3], row[3:]), w=hz, fs=d.rate)[1] for row in d.sos())
    assert np.allclose(r["group_delay"], gd, rtol=1e-5, atol=1e-6)
    assert np.allclose(qh.response(d.sos(), hz, rate=d.rate)["h"], h)
    for row, roots in zip(d.sos(), qh.poles(d)):
        assert np.allclose(np.sort_complex(roots["poles"]), np.sort_complex(np.roots(row[3:])))
        assert roots["stability"] == "stable"


@pytest.mark.parametrize("args", [("low", 5000, 6, 48000, "fxp16"), ("high", 30, 8, 48000, "fxp16"),
                                  ("high", 1000, 2, 44100, "fxp32")])
def test_quantisation_report_as_heron_design_reports_it(heron, args):
    kind, cutoff, order, rate, fmt = args
    ref = heron("design", "butterworth", "--type", kind, "--cutoff", cutoff, "--order", order, "--rate", rate,
                "--format", fmt, "--json", json_out=True, ok=(0, 4))["analysis"]
    report = qh.quantisation_report(qh.butterworth(*args))
    assert report["max_error_db"] == pytest.approx(ref["max_error_db"], abs=1e-9)
    assert report["saturated"] == ref["saturated"] and report["silent"] == ref["silent"]


BAD = [(lambda: qh.response(np.zeros((2, 5)), [100.0]), ValueError, "a cascade is a Design"),
       (lambda: qh.response(np.ones((1, 6)), [100.0]), ValueError, "rate is needed"),
       (lambda: qh.response(qh.butterworth("low", np.array([1e3, 2e3]), 2), [1.0]), ValueError, "one design"),
       (lambda: qh.quantisation_report(qh.butterworth("low", 1000, 2)), ValueError, "float design"),
       (lambda: qh.quantisation_report(qh.crossover(300, 48000, "fxp32")), TypeError, "butterworth or peq")]


@pytest.mark.parametrize("call,error,text", BAD, ids=[t for _, _, t in BAD])
def test_bad_cascades_raise(call, error, text):
    with pytest.raises(error, match=text):
        call()


@pytest.mark.parametrize("make,layout", [(lambda: qh.butterworth("low", 700, 5, 48000, "fxp16"), "cascade"),
                                         (lambda: qh.peq([("notch", 900, 4, 0)], 48000, "fxp24"), "cascade"),
                                         (lambda: qh.crossover(300, 48000, "fxp32"), "crossover"),
                                         (lambda: qh.thumpx(100, 48000, "fxp24"), "thumpx")])
def test_dequantise_reads_words_as_the_design_lists_them(make, layout):
    d = make()
    sections, gain = qh.dequantise(d.output, d.width, layout)
    assert np.array_equal(sections, d.sections) and gain == d.gain
