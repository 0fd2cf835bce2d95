"""Installs the quillheron package by driving the project's CMake build:

    PIP_NO_INDEX=1 pip install --no-build-isolation ./python

from the top of the source tree, in a virtual environment made with
``/usr/bin/python3 -m venv --system-site-packages`` (numpy and scipy from
Debian). Nothing is fetched. The build goes to build-python/ at the top of
the tree, or to QH_BUILD_DIR (an existing build directory is reused as it is
configured); QH_JOBS sets the parallel jobs (default 2).
"""
import glob
import os
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


def project_version() -> str:
    with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as f:
        return re.search(r"project\(quillheron VERSION ([0-9.]+)", f.read()).group(1)


class CMakeBuild(build_ext):
    """Builds the qh_python target and takes the assembled package from it."""

    def build_extension(self, ext):
        build = os.path.abspath(os.environ.get("QH_BUILD_DIR") or os.path.join(ROOT, "build-python"))
        if not os.path.exists(os.path.join(build, "CMakeCache.txt")):
            generator = ["-G", "Ninja"] if shutil.which("ninja") else []
            subprocess.check_call(["cmake", "-S", ROOT, "-B", build, *generator, "-DQH_BUILD_TESTS=OFF",
                                   "-DQH_BUILD_TOOLS=OFF", "-DQH_BUILD_PYTHON=ON", f"-DQH_PYTHON={sys.executable}"])
        subprocess.check_call(["cmake", "--build", build, "--target", "qh_python", "-j",
                               os.environ.get("QH_JOBS", "2")])
        package = os.path.join(build, "python", "quillheron")
        if not glob.glob(os.path.join(package, "_core*.so")):
            raise RuntimeError(f"{build} did not build the extension: are pybind11-dev and python3-pybind11 "
                               "installed (make deps)?")
        shutil.copytree(package, os.path.join(os.path.abspath(self.build_lib), "quillheron"), dirs_exist_ok=True)


setup(
    name="quillheron",
    version=project_version(),
    description="The quillheron filter designers, populate/convert and cascade analysis for numpy",
    packages=["quillheron", "quillheron.pb"],
    package_data={"quillheron": ["*.pyi", "py.typed"], "quillheron.pb": ["*.pyi"]},
    ext_modules=[Extension("quillheron._core", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    python_requires=">=3.9",
    install_requires=["numpy", "protobuf"],
    zip_safe=False,
)
