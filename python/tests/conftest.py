"""Shared helpers: the heron tool (QH_HERON) as the reference, the source tree
(QH_SOURCE_DIR) for the shipped examples."""
import json
import os
import subprocess

import pytest

SOURCE_DIR = os.environ.get("QH_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", ".."))
ROUTE = os.path.join(SOURCE_DIR, "examples", "headphone_route.txtpb")
MODEL = os.path.join(SOURCE_DIR, "examples", "listening_model.txtpb")


@pytest.fixture(scope="session")
def heron():
    """Runs `heron ARGS...`; with json=True parses its standard output."""
    path = os.environ.get("QH_HERON")
    if not path or not os.path.exists(path):
        pytest.skip("QH_HERON does not name the built heron tool")

    def run(*args, json_out=False, ok=(0,)):
        p = subprocess.run([path, *map(str, args)], capture_output=True, text=True)
        assert p.returncode in ok, f"heron {' '.join(map(str, args))}: {p.returncode}\n{p.stderr}"
        return json.loads(p.stdout) if json_out else p
    return run
