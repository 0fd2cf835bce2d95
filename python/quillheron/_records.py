"""Populate and convert through the library's C entry point, and named views
of the native records from the record catalogue `heron dump` reads."""
from __future__ import annotations

import numbers
import os
from typing import Any, Dict, Iterator, List, Optional, Sequence, Tuple, Union

import numpy as np

from . import _core

_LAYOUTS = _core.record_layouts()
_DTYPES = {"int32": "<i4", "uint32": "<u4", "int16": "<i2", "float32": "<f4"}

Source = Union[bytes, bytearray, memoryview, str, "os.PathLike[str]", Any]


class QuillheronError(RuntimeError):
    """A library call returned a negative result; ``code`` holds it."""

    def __init__(self, message: str, code: int):
        super().__init__(f"{message} (code {code})")
        self.code = code


def _uuid_text(raw: bytes) -> str:
    h = raw.hex()
    return f"{h[0:8]}-{h[8:12]}-{h[12:16]}-{h[16:20]}-{h[20:32]}"


def _field(data: bytes, layout: Tuple, base: int = 0) -> Any:
    name, offset, width, count, type_name, _ = layout
    offset -= base
    if type_name == "uuid":
        return _uuid_text(bytes(data[offset:offset + 16]))
    values = np.frombuffer(data, dtype=_DTYPES[type_name], count=count, offset=offset)
    return values.item() if count == 1 else values


def field_values(data: bytes, record: str, prefix: str) -> Dict[str, Any]:
    """Fields of `record` under `prefix`, read from bytes holding just that
    part (its first field at offset 0), named without the prefix."""
    fields = [f for f in _LAYOUTS[record][1] if f[0].startswith(prefix)]
    base = min(f[1] for f in fields)
    return {f[0][len(prefix):]: _field(data, f, base) for f in fields}


class RecordView(bytes):
    """A native record: the record's bytes, plus its fields by the names
    ``heron dump`` prints. ``view["front_room.coeffs"]`` is a read-only numpy
    array (little-endian int32, uint32, int16 or float32), a scalar field a
    Python number, an identifier its 8-4-4-4-12 text. Integer and slice
    indexes read bytes as for any bytes object.
    """

    record: str

    def __new__(cls, data: bytes, record: str) -> "RecordView":
        self = super().__new__(cls, data)
        self.record = record
        self._by_name = {f[0]: f for f in _LAYOUTS[record][1]}
        return self

    def __getitem__(self, key: Any) -> Any:  # type: ignore[override]
        if isinstance(key, str):
            try:
                return _field(self, self._by_name[key])
            except KeyError:
                raise KeyError(f"{self.record} record has no field {key!r}") from None
        return super().__getitem__(key)

    def keys(self) -> List[str]:
        """Field names in record order."""
        return list(self._by_name)

    def items(self) -> Iterator[Tuple[str, Any]]:
        """(name, value) of every field in record order."""
        for name in self._by_name:
            yield name, self[name]

    def layout(self, key: str) -> Dict[str, Any]:
        """Where a field lies: offset, width, count, type and slot labels."""
        name, offset, width, count, type_name, slots = self._by_name[key]
        return dict(name=name, offset=offset, width=width, count=count, type=type_name, slots=slots)

    def __repr__(self) -> str:
        return f"<RecordView {self.record}, {len(self)} bytes>"


class Records:
    """What populate wrote: ``premix`` and ``postmix`` (RecordView: bytes with
    named fields), their result codes ``premix_result`` and ``result`` (the
    postmix populate's), and the faders ``premix_fader`` and
    ``postmix_fader`` (five integers: shadow, out_length, hold_length,
    in_length, state; None when the route has no settings).
    """

    def __init__(self, premix: Tuple[int, bytes], postmix: Tuple[int, bytes],
                 faders: Tuple[Tuple[int, tuple], Tuple[int, tuple]], rate: int):
        self.premix_result, self.premix = premix[0], RecordView(premix[1], "premix")
        self.result, self.postmix = postmix[0], RecordView(postmix[1], "postmix")
        self.premix_fader = faders[0][1] if faders[0][0] == 0 else None
        self.postmix_fader = faders[1][1] if faders[1][0] == 0 else None
        self.rate = rate

    def __repr__(self) -> str:
        return f"<Records at {self.rate} Hz: premix result {self.premix_result}, postmix result {self.result}>"


_BINARY = (".pb", ".binpb", ".bin")
_TEXT = (".txtpb", ".textproto", ".pbtxt")


def _serialized(source: Source, message_type: Any, what: str) -> bytes:
    """Serialized bytes of `source`: bytes as they are, a protobuf message of
    `message_type`, or a path read by its extension (.pb .binpb .bin binary;
    .txtpb .textproto .pbtxt text; .json JSON)."""
    if isinstance(source, (bytes, bytearray, memoryview)):
        return bytes(source)
    if isinstance(source, (str, os.PathLike)):
        path = os.fspath(source)
        ext = os.path.splitext(path)[1].lower()
        if ext in _BINARY:
            with open(path, "rb") as f:
                return f.read()
        if ext not in _TEXT and ext != ".json":
            raise ValueError(f"{path}: cannot tell the encoding from the extension "
                             f"(binary {' '.join(_BINARY)}, text {' '.join(_TEXT)}, JSON .json)")
        from google.protobuf import json_format, text_format
        with open(path, encoding="utf-8") as f:
            text = f.read()
        message = message_type()
        if ext == ".json":
            json_format.Parse(text, message)
        else:
            text_format.Parse(text, message)
        return message.SerializeToString()
    if hasattr(source, "SerializeToString") and hasattr(source, "DESCRIPTOR"):
        want = message_type.DESCRIPTOR.full_name
        if source.DESCRIPTOR.full_name != want:
            raise TypeError(f"{what} must be a {want} message, not {source.DESCRIPTOR.full_name}")
        return source.SerializeToString()
    raise TypeError(f"{what} must be serialized bytes, a path or a {message_type.DESCRIPTOR.full_name} message, "
                    f"not {type(source).__name__}")


def populate(route: Source, rate: int, models: Sequence[Source] = (), room_mask: int = 14) -> Records:
    """Fills the premix and postmix records (from zero) from a route, as
    ``heron populate`` does: quillheron_populate_premix, _postmix and _fader.

    route: a quill.pb.hub.RouteConfiguration as serialized bytes, a path
    (binary, text or JSON by extension) or a message; models: listeningModel
    sources searched in order before the model inside the settings; rate in
    Hz; room_mask: 2 wide, 4 front, 8 multichannel rooms. Result codes come
    back in the Records (0, -1000 no settings, -999, -998, -997, -1001 parse
    failure); a source that is not bytes, a path or the right message raises
    TypeError, a path of unknown encoding ValueError.
    """
    from .pb import listeningmodel_pb2, routeconfiguration_pb2
    if not all(isinstance(v, numbers.Integral) and not isinstance(v, bool) for v in (rate, room_mask)):
        raise TypeError("rate and room_mask must be integers")
    if isinstance(models, (str, bytes)) or not isinstance(models, (list, tuple)):
        raise TypeError("models must be a list or tuple of model sources")
    r = _serialized(route, routeconfiguration_pb2.RouteConfiguration, "route")
    ms = [_serialized(m, listeningmodel_pb2.listeningModel, "a model") for m in models]
    return Records(_core.populate_premix(r), _core.populate_postmix(r, ms, int(rate), int(room_mask)),
                   (_core.populate_fader(r, True), _core.populate_fader(r, False)), int(rate))


def convert(premix: Optional[bytes] = None, postmix: Optional[bytes] = None, rate: int = 48000,
            with_room_models: bool = False, premix_fader: Optional[Sequence[int]] = None,
            postmix_fader: Optional[Sequence[int]] = None) -> Any:
    """Rebuilds a quill.pb.heron_v1_1.HeronSettings message from records
    (quillheron_convert): any of premix (156 bytes), postmix (66108 bytes) and
    the two faders (five integers each) may be left out. rate is written into
    every rebuilt coefficient table; with_room_models also rebuilds the rooms.
    The caller's record bytes are not changed. Raises QuillheronError on a
    negative result, ValueError for records of the wrong size.
    """
    from .pb import heron_v1_1_pb2
    for name, rec in (("premix", premix), ("postmix", postmix)):
        if rec is not None and not isinstance(rec, (bytes, bytearray, memoryview)):
            raise TypeError(f"{name} must be bytes, not {type(rec).__name__}")
    code, data = _core.convert(int(rate), None if premix is None else bytes(premix),
                               None if postmix is None else bytes(postmix), bool(with_room_models),
                               premix_fader, postmix_fader)
    if code != 0:
        raise QuillheronError("convert failed", code)
    settings = heron_v1_1_pb2.HeronSettings()
    settings.ParseFromString(data)
    return settings
