"""quillheron: the library's filter designers, its populate and convert
entry points and its cascade analysis, for numpy, scipy.signal and
matplotlib.

Designers (results as numpy arrays; sweeps over numpy parameter arrays run in
parallel in C++):
    butterworth(kind, cutoff, order, rate, fmt)   peq(bands, rate, fmt)
    thumpx(speaker_size, rate, fmt, ...)          crossover(freq, rate, fmt)
    distprev(count, **block)
Records:
    populate(route, rate, models=(), room_mask=14) -> Records
    convert(premix=..., postmix=..., rate=...)     -> HeronSettings message
Analysis:
    response(cascade, freqs), poles(cascade), quantisation_report(design),
    dequantise(words, width, layout) (record words as real sections)
The schema's message classes are in quillheron.pb (e.g.
quillheron.pb.routeconfiguration_pb2.RouteConfiguration).
"""
from ._analysis import dequantise, poles, quantisation_report, response
from ._designs import (BAND_TYPES, FORMATS, Design, DistprevDesign, butterworth, crossover, distprev, peq,
                       thumpx)
from ._records import QuillheronError, Records, RecordView, convert, populate

__all__ = ["BAND_TYPES", "FORMATS", "Design", "DistprevDesign", "QuillheronError", "RecordView", "Records",
           "butterworth", "convert", "crossover", "dequantise", "distprev", "peq", "poles", "populate", "quantisation_report",
           "response", "thumpx"]
