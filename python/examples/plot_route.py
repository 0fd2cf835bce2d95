"""Populates the shipped example route at 48000 Hz and plots every filter of
it that is a biquad cascade: the ones copied from coefficient tables (output
high-pass, Brio high-pass and crossover, the acoustic EQ banks of the model)
and the ones designed from parameters (Thumpx, the limiter's crossovers, the
distortion-prevention notch and sense banks). Each is drawn twice: the float
design it stands for (solid) and the record's fixed-point words read back
as real numbers (dashed). The rooms and the headphone EQ are FIR filters
and are not drawn.

    PYTHONPATH=build/python /usr/bin/python3 python/examples/plot_route.py docs/python_example.png
"""
import os
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402
from google.protobuf import text_format  # noqa: E402

import quillheron as qh  # noqa: E402
from quillheron.pb import listeningmodel_pb2, routeconfiguration_pb2  # noqa: E402

RATE = 48000
HERE = os.path.dirname(os.path.abspath(__file__))
EXAMPLES = os.path.join(HERE, "..", "..", "examples")
HZ = np.geomspace(10, RATE / 2 * 0.999, 600)


def load(name, cls):
    m = cls()
    with open(os.path.join(EXAMPLES, name), encoding="utf-8") as f:
        text_format.Parse(f.read(), m)
    return m


def curve(cascade, phase):
    r = qh.response(cascade, HZ, rate=RATE)
    return np.degrees(np.unwrap(r["phase"])) if phase else r["magnitude_db"]


def pair(ax, label, design, words, color, phase=False):
    """The float design (solid) and the de-quantised words (dashed): the
    magnitude in dB, or the phase in degrees."""
    ax.semilogx(HZ, curve(design, phase), color=color, lw=1.6, label=f"{label} float")
    ax.semilogx(HZ, curve(words, phase), color=color, lw=1.2, ls="--", label=f"{label} words")


def main(out_png):
    route = load("headphone_route.txtpb", routeconfiguration_pb2.RouteConfiguration)
    model = load("listening_model.txtpb", listeningmodel_pb2.listeningModel)
    r = qh.populate(route, RATE, models=[model])
    assert r.result == 0, r
    post = r.postmix
    settings = route.tech[0].heron_v1_1.postmix
    panels = []  # (title, y limits, y label)

    def panel(title, ylim=(-40, 15), ylabel="dB"):
        panels.append((title, ylim, ylabel))
        return axes.flat[len(panels) - 1]

    fig, axes = plt.subplots(3, 3, figsize=(16, 12))
    colors = plt.rcParams["axes.prop_cycle"].by_key()["color"]

    # Tables: designed by the route's author as Butterworth filters.
    ax = panel(f"output high-pass (table, 32-bit): {settings.hpf_coef.cutoff} Hz, order {settings.hpf_coef.order}")
    pair(ax, "high-pass", qh.butterworth("high", settings.hpf_coef.cutoff, settings.hpf_coef.order, RATE),
         qh.dequantise(post["hpf.coeffs"], 32, sections=(post["hpf.order"] + 1) // 2), colors[0])
    bh = settings.brio_hpf_coef
    ax = panel(f"Brio high-pass (table, 16-bit): {bh.cutoff} Hz, order {bh.order}")
    pair(ax, "high-pass", qh.butterworth("high", bh.cutoff, bh.order, RATE),
         qh.dequantise(post["brio_hpf.coeffs"], 16, sections=(post["brio_hpf.order"] + 1) // 2), colors[0])
    bx = settings.brio_xover_coef
    ax = panel(f"Brio crossover (table, 16-bit): {bx.cutoff} Hz, order {bx.order}")
    for i, kind in enumerate(("low", "high")):
        pair(ax, f"{kind}-pass", qh.butterworth(kind, bx.cutoff, bx.order, RATE),
             qh.dequantise(post[f"brio_xover.{kind[0]}pf_coeffs"], 16), colors[i])

    # Acoustic EQ: the model's tables, designed from its band descriptions.
    for bank, table in enumerate(model.aeqs[0].coefficient_table[:2]):
        bands = [(b.type, b.center_freq, b.q, b.gain) for b in table.iirDesc.band_data]
        ax = panel(f"acoustic EQ bank {bank} (model table, 32-bit): {len(bands)} bands")
        pair(ax, f"bank {bank}", qh.peq(bands, RATE),
             qh.dequantise(post[f"aeq.bank[{bank}].iir_coeffs"], 32, sections=post[f"aeq.bank[{bank}].iir_order"] // 2),
             colors[bank])

    # Designed from parameters.
    p = settings.thumpx_coef.filterDesignParams
    thumpx = qh.thumpx(p.custom_speaker_size, RATE, "float", bass_ctrl=p.bass_ctrl, hp_ratio=p.hp_ratio,
                       ext_bass=p.ext_bass, lp_ratio=p.lp_ratio, pre_lp_freq=p.pre_lp_freq,
                       harm_hp_freq=p.harm_hp_freq, clip_level=p.clip_level)
    words, _ = qh.dequantise(post["thumpx.coeffs"], 32, "thumpx")
    ax = panel(f"Thumpx (designed, 32-bit): speaker size {p.custom_speaker_size}", ylim=(-40, 30))
    for i, (name, groups) in enumerate([("bass boost", [8, 9, 10]), ("low-pass", [0, 1]), ("hp_ratio high-pass", [3]),
                                        ("pre low-pass", [4, 5]), ("harmonics high-pass", [2, 7])]):
        pair(ax, name, (thumpx.sections[groups], 1.0), (words[groups], 1.0), colors[i])

    mbhl = route.tech[0].heron_v1_1.DesignerParameters.mbhl_design_params
    ax = panel(f"limiter crossovers (designed, 32-bit): {mbhl.custom_low_cross:g} and {mbhl.custom_mid_cross:g} Hz")
    for i, (field, freq) in enumerate([("low_cross", mbhl.custom_low_cross), ("mid_cross", mbhl.custom_mid_cross)]):
        design = qh.crossover(freq, RATE)
        halves, _ = qh.dequantise(post[f"mbhl_coef.{field}_coeffs"], 32, "crossover")
        for h, half in enumerate(("low", "high")):
            pair(ax, f"{freq:g} Hz {half}", (design.sections[[h]], 1.0), (halves[[h]], 1.0), colors[2 * i + h])

    # Distortion prevention: each record's float form of a band slot against
    # its words. The notch bank is made of all-pass sections: their phase is
    # what there is to see.
    for bank in ("notch", "sense"):
        phase = bank == "notch"
        ax = panel(f"distortion prevention {bank} bands at {RATE} Hz (designed, 32-bit)"
                   + (": all-pass phase" if phase else ""),
                   ylim=(-380, 20) if phase else (-40, 15), ylabel="degrees" if phase else "dB")
        for k in range(2):
            count = post[f"dist_prev[{k}].{bank}_band_count"]
            floats = post[f"dist_prev[{k}].{bank}_band_coeffs_float32"][:6 * count].reshape(count, 6)
            ws = post[f"dist_prev[{k}].{bank}_band_coeffs"]
            for b in range(count):
                design = (floats[b, :5].astype(float)[None, :], float(floats[b, 5]))
                label = f"record {k} band {b}" if b == 0 or bank == "notch" else None
                pair(ax, label or "_", design, qh.dequantise(ws[8 * b:8 * b + 8], 32), colors[(4 * k + b) % 10], phase)

    for ax, (title, ylim, ylabel) in zip(axes.flat, panels):
        ax.set_title(title, fontsize=9)
        ax.set_xlim(10, RATE / 2)
        ax.set_ylim(*ylim)
        ax.grid(True, which="both", alpha=0.3)
        ax.set_xlabel("Hz", fontsize=8)
        ax.set_ylabel(ylabel, fontsize=8)
        handles, labels = ax.get_legend_handles_labels()
        keep = [(h, l) for h, l in zip(handles, labels) if not l.startswith("_")]
        ax.legend(*zip(*keep), fontsize=6, ncol=2, loc="lower center")
    fig.suptitle(f"Example route at {RATE} Hz: float designs (solid) against the record's words (dashed)")
    fig.tight_layout()
    fig.savefig(out_png, dpi=90)
    print(f"wrote {out_png}: {len(panels)} panels")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "python_example.png")
