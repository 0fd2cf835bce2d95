"""populate against `heron populate` byte for byte, named fields against
`heron dump --json`, convert against `heron convert`."""
import numpy as np
import pytest
from google.protobuf import json_format, text_format

import quillheron as qh
from conftest import MODEL, ROUTE
from quillheron.pb import listeningmodel_pb2, routeconfiguration_pb2


def read(path):
    with open(path, "rb") as f:
        return f.read()


def message(path, cls):
    m = cls()
    with open(path, encoding="utf-8") as f:
        text_format.Parse(f.read(), m)
    return m


@pytest.fixture(scope="module")
def tool_records(heron, tmp_path_factory):
    """{(rate, room_mask): (premix bytes, postmix bytes)} from heron populate."""
    out = {}
    tmp = tmp_path_factory.mktemp("populate")
    for rate, mask in [(48000, 14), (44100, 4), (32000, 0)]:
        pre, post = tmp / f"pre{rate}.bin", tmp / f"post{rate}.bin"
        heron("populate", ROUTE, "--model", MODEL, "--rate", rate, "--room-mask", mask, "--premix-out", pre,
              "--postmix-out", post, ok=(0, 3))
        out[(rate, mask)] = read(pre), read(post)
    return out


# Every way of passing the route and the model.
SOURCES = {
    "text paths": lambda tmp: (ROUTE, MODEL),
    "messages": lambda tmp: (message(ROUTE, routeconfiguration_pb2.RouteConfiguration),
                             message(MODEL, listeningmodel_pb2.listeningModel)),
    "bytes": lambda tmp: (message(ROUTE, routeconfiguration_pb2.RouteConfiguration).SerializeToString(),
                          message(MODEL, listeningmodel_pb2.listeningModel).SerializeToString()),
    "binary and json paths": lambda tmp: (
        write(tmp / "route.binpb", message(ROUTE, routeconfiguration_pb2.RouteConfiguration).SerializeToString()),
        write(tmp / "model.json", json_format.MessageToJson(message(MODEL, listeningmodel_pb2.listeningModel)))),
}


def write(path, data):
    path.write_bytes(data) if isinstance(data, bytes) else path.write_text(data)
    return path


@pytest.mark.parametrize("source", SOURCES)
def test_populate_is_byte_identical_to_heron_populate(tool_records, tmp_path, source):
    route, model = SOURCES[source](tmp_path)
    for (rate, mask), (pre, post) in tool_records.items():
        r = qh.populate(route, rate, models=[model], room_mask=mask)
        assert r.premix == pre and r.postmix == post, (source, rate, mask)


def test_named_fields_are_what_heron_dump_prints(heron, tool_records, tmp_path):
    r = qh.populate(ROUTE, 48000, models=[MODEL])
    for view in (r.premix, r.postmix):
        path = write(tmp_path / f"{view.record}.bin", bytes(view))
        dump = heron("dump", "--json", path, json_out=True)
        assert [f["name"] for f in dump["fields"]] == view.keys()
        for f in dump["fields"]:
            ours = view[f["name"]]
            if isinstance(ours, np.ndarray):
                assert np.array_equal(ours, np.array(f["value"], dtype=ours.dtype)), f["name"]
            else:
                assert ours == (np.float32(f["value"]) if isinstance(ours, float) else f["value"]), f["name"]
    assert r.postmix["front_room.coeffs"].dtype == np.int16
    assert r.postmix.layout("lyra_input_gain")["slots"][0] == "HMO_Stereo"


def test_convert_equals_heron_convert(heron, tool_records, tmp_path):
    pre, post = tool_records[(48000, 14)]
    p, q = write(tmp_path / "pre.bin", pre), write(tmp_path / "post.bin", post)
    out = tmp_path / "settings.binpb"
    heron("convert", "--premix", p, "--postmix", q, "--with-room-models", "--premix-fader", "1,2,3,4,5",
          "--output-format", "binary", "-o", out)
    settings = qh.convert(premix=pre, postmix=post, rate=48000, with_room_models=True, premix_fader=(1, 2, 3, 4, 5))
    assert settings.SerializeToString() == read(out)
    assert type(settings).__module__ == "quillheron.pb.heron_v1_1_pb2"


BAD = [
    (lambda: qh.populate(42, 48000), TypeError, "route must be serialized bytes, a path or a"),
    (lambda: qh.populate(ROUTE, 48000, models=MODEL), TypeError, "models must be a list"),
    (lambda: qh.populate(listeningmodel_pb2.listeningModel(), 48000), TypeError, "route must be a quill.pb.hub"),
    (lambda: qh.populate("route.yaml", 48000), ValueError, "cannot tell the encoding"),
    (lambda: qh.populate(ROUTE, 48000.0), TypeError, "rate and room_mask must be integers"),
    (lambda: qh.convert(premix=b"\0" * 10), ValueError, "premix must be 156 bytes"),
    (lambda: qh.convert(premix_fader=(1, 2)), ValueError, "a fader is five integers"),
]


@pytest.mark.parametrize("call,error,text", BAD, ids=[t for _, _, t in BAD])
def test_bad_sources_raise(call, error, text):
    with pytest.raises(error, match=text):
        call()


def test_unparsable_route_comes_back_as_the_parse_failure_code():
    r = qh.populate(b"\xff\xff\xff", 48000)
    assert (r.premix_result, r.result) == (-1001, -1001) and r.premix == bytes(156)


def test_every_schema_module_imports_inside_the_package():
    import glob
    import importlib
    import os
    import sys
    from conftest import SOURCE_DIR
    for proto in glob.glob(os.path.join(SOURCE_DIR, "proto", "*.proto")):
        stem = os.path.splitext(os.path.basename(proto))[0]
        module = importlib.import_module(f"quillheron.pb.{stem}_pb2")
        assert os.path.exists(module.__file__ + "i")  # the stub beside it
    assert not [m for m in sys.modules if m.endswith("_pb2") and "." not in m]
