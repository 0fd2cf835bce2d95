"""Sweeps: every design of a broadcast sweep equals the same design done on
its own, whatever the number of workers."""
import time

import numpy as np
import pytest

import quillheron as qh


def same(a, b):
    return np.array_equal(a, b, equal_nan=True)


@pytest.mark.parametrize("fmt", ["float", "fxp32", "fxp24", "fxp16"])
def test_butterworth_sweep_equals_single_designs(fmt):
    kinds = np.array(["low", "high"])[:, None, None]
    cutoffs = np.array([20.0, 440.0, 9000.0, 30000.0])[None, :, None]  # 30 kHz is refused at 48 kHz
    rates = np.array([48000, 96000])[None, None, :]
    sweep = qh.butterworth(kinds, cutoffs, 5, rates, fmt, workers=3)
    assert sweep.output.shape[:3] == (2, 4, 2) and sweep.sos().shape == (2, 4, 2, 3, 6)
    for i, j, k in np.ndindex(2, 4, 2):
        one = qh.butterworth(str(kinds[i, 0, 0]), float(cutoffs[0, j, 0]), 5, int(rates[0, 0, k]), fmt)
        assert sweep.result[i, j, k] == one.result
        assert same(sweep.output[i, j, k], one.output)
        assert same(sweep.sections[i, j, k], one.sections) and same(sweep.gain[i, j, k], one.gain)
        flat = np.ravel_multi_index((i, j, k), (2, 4, 2))
        assert sweep.errors.get(flat) == one.error
        if one.result == 0:
            assert same(sweep.sos()[i, j, k], one.sos())


def test_peq_sweep_broadcasts_band_fields_and_rate():
    freqs = np.geomspace(50, 15000, 7)
    gains = np.array([-12.0, 0.0, 6.0])[:, None]
    bands = [("peaking", freqs, 2.0, gains), ("lowshelf", 100, 0.7, -3, 1)]
    sweep = qh.peq(bands, 44100, "fxp32-noscale")
    assert sweep.result.shape == (3, 7)
    for i, j in np.ndindex(3, 7):
        one = qh.peq([("peaking", freqs[j], 2.0, gains[i, 0]), ("lowshelf", 100, 0.7, -3, 1)], 44100,
                     "fxp32-noscale")
        assert same(sweep.output[i, j], one.output) and sweep.result[i, j] == one.result


def test_ten_thousand_fxp32_designs_same_with_one_worker_or_all():
    cutoffs = np.linspace(20, 20000, 10_000)
    start = time.perf_counter()
    parallel = qh.butterworth("low", cutoffs, 4, 48000, "fxp32")
    seconds = time.perf_counter() - start
    serial = qh.butterworth("low", cutoffs, 4, 48000, "fxp32", workers=1)
    print(f"10,000 Fxp32 Butterworth designs: {seconds * 1000:.1f} ms")
    assert parallel.output.shape == (10_000, 14)
    assert np.array_equal(parallel.output, serial.output) and not parallel.result.any()


def test_a_sweep_lets_other_python_threads_run():
    """While one thread sweeps, this one keeps running: its longest pause is
    far shorter than the sweep (holding the interpreter lock, it would be all of it)."""
    import threading
    cutoffs = np.linspace(20, 20000, 30_000)
    done = threading.Event()
    worker = threading.Thread(target=lambda: (qh.butterworth("high", cutoffs, 6, 48000, "fxp32", workers=1),
                                              done.set()))
    start = last = time.perf_counter()
    longest = 0.0
    worker.start()
    while not done.is_set():
        now = time.perf_counter()
        longest, last = max(longest, now - last), now
    worker.join()
    assert longest < 0.5 * (time.perf_counter() - start)
