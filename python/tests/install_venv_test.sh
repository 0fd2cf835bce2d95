#!/bin/sh
# The documented install command in a throw-away virtual environment:
#   PIP_NO_INDEX=1 pip install --no-build-isolation ./python
# with this build directory reused, then an import from elsewhere.
# Usage: install_venv_test.sh PYTHON SOURCE_DIR BUILD_DIR
set -eu
python=$1 source_dir=$2 build_dir=$3
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
"$python" -m venv --system-site-packages "$tmp/venv"
cd "$source_dir"
QH_BUILD_DIR="$build_dir" PIP_NO_INDEX=1 "$tmp/venv/bin/pip" install -q --no-build-isolation ./python
cd "$tmp"
"$tmp/venv/bin/python" -c '
import sys, quillheron, quillheron.pb.heron_v1_1_pb2
assert quillheron.__file__.startswith(sys.prefix), quillheron.__file__
assert quillheron.butterworth("low", 1000, 2).result == 0
print("installed", quillheron.__file__)'
