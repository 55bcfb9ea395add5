"""The package's build back end (PEP 517): configures and builds the extension with CMake, then
writes the wheel with the standard library alone (zipfile, hashlib), so that `pip install .` and
`pip wheel .` need no package index.

The build folder is `build/python-<interpreter tag>` in the source tree (kept between builds, so
a rebuild is quick), or BRIX_PYTHON_BUILD_DIR, or the config setting `build-dir`
(`pip install . -C build-dir=/tmp/b`). ccache is used when it is installed, Ninja when it is.
"""

import base64
import hashlib
import io
import os
import re
import shutil
import subprocess
import sys
import sysconfig
import tarfile
import zipfile
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
PACKAGE = "brixobjects4"
PACKAGE_SOURCE = SOURCE / "python" / PACKAGE
# What a source distribution carries: everything the module's build reads.
SDIST_PATHS = ["CMakeLists.txt", "cmake", "runtime", "persistence", "querybuilder", "diagnostics",
               "python", "pyproject.toml", "README.md"]


def _project():
    text = (SOURCE / "pyproject.toml").read_text(encoding="utf-8")
    fields = dict(re.findall(r'^(name|description|requires-python) = "([^"]*)"', text, re.M))
    cmake = (SOURCE / "CMakeLists.txt").read_text(encoding="utf-8")
    fields["version"] = re.search(r"project\(brixobjects4 VERSION ([0-9.]+)", cmake).group(1)
    return fields


def _tag():
    interpreter = f"cp{sys.version_info.major}{sys.version_info.minor}"
    abi = interpreter + getattr(sys, "abiflags", "")
    platform = re.sub(r"[-.]", "_", sysconfig.get_platform())
    return f"{interpreter}-{abi}-{platform}"


def _build_dir(config_settings):
    chosen = (config_settings or {}).get("build-dir") or os.environ.get("BRIX_PYTHON_BUILD_DIR")
    if chosen:
        return Path(chosen).resolve()
    return SOURCE / "build" / f"python-{_tag()}"


def _run(command):
    print("+", " ".join(str(part) for part in command), file=sys.stderr, flush=True)
    subprocess.run([str(part) for part in command], check=True, stdout=sys.stderr)


def _build_extension(build_dir):
    configure = ["cmake", "-S", SOURCE, "-B", build_dir, "-DCMAKE_BUILD_TYPE=Release",
                 "-DBRIX_BUILD_TESTS=OFF", "-DBRIX_BUILD_TOOLS=OFF", "-DBRIX_BUILD_BENCHMARKS=OFF",
                 "-DBRIX_BUILD_PYTHON=ON", f"-DPython_EXECUTABLE={sys.executable}",
                 f"-DPYTHON_EXECUTABLE={sys.executable}"]
    if shutil.which("ninja") and not (build_dir / "Makefile").exists():
        configure += ["-G", "Ninja"]
    if shutil.which("ccache"):
        configure.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    _run(configure)
    jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL") or str(min(os.cpu_count() or 1, 4))
    _run(["cmake", "--build", build_dir, "--target", "brixobjects4_python", "-j", jobs])
    suffix = sysconfig.get_config_var("EXT_SUFFIX")
    module = build_dir / "python" / "package" / PACKAGE / f"_core{suffix}"
    if not module.exists():
        raise RuntimeError(f"the build did not make {module} (is pybind11-dev installed?)")
    return module


def _metadata(project):
    readme = (SOURCE / "README.md").read_text(encoding="utf-8")
    return (f"Metadata-Version: 2.1\nName: {project['name']}\nVersion: {project['version']}\n"
            f"Summary: {project['description']}\n"
            f"Requires-Python: {project['requires-python']}\n"
            f"Description-Content-Type: text/markdown\n\n{readme}")


def _dist_info(project):
    return f"{project['name']}-{project['version']}.dist-info"


def _record_line(name, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(data)}"


def _write_wheel(wheel_directory, files, project, tag):
    """Writes the wheel of `files` (archive name -> bytes) with its dist-info and RECORD."""
    dist_info = _dist_info(project)
    files = dict(files)
    files[f"{dist_info}/METADATA"] = _metadata(project).encode()
    files[f"{dist_info}/WHEEL"] = (f"Wheel-Version: 1.0\nGenerator: brix_build_backend\n"
                                   f"Root-Is-Purelib: false\nTag: {tag}\n").encode()
    files[f"{dist_info}/top_level.txt"] = f"{PACKAGE}\n".encode()
    record = [_record_line(name, data) for name, data in files.items()]
    record.append(f"{dist_info}/RECORD,,")
    files[f"{dist_info}/RECORD"] = ("\n".join(record) + "\n").encode()
    name = f"{project['name']}-{project['version']}-{tag}.whl"
    with zipfile.ZipFile(Path(wheel_directory) / name, "w", zipfile.ZIP_DEFLATED) as wheel:
        for archive_name, data in files.items():
            info = zipfile.ZipInfo(archive_name, date_time=(2020, 1, 1, 0, 0, 0))
            info.external_attr = (0o755 if archive_name.endswith(".so") else 0o644) << 16
            info.compress_type = zipfile.ZIP_DEFLATED
            wheel.writestr(info, data)
    return name


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    project = _project()
    dist_info = Path(metadata_directory) / _dist_info(project)
    dist_info.mkdir(parents=True, exist_ok=True)
    (dist_info / "METADATA").write_text(_metadata(project), encoding="utf-8")
    return dist_info.name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    module = _build_extension(_build_dir(config_settings))
    files = {f"{PACKAGE}/{module.name}": module.read_bytes()}
    for path in sorted(PACKAGE_SOURCE.iterdir()):
        if path.is_file() and path.suffix in {".py", ".pyi", ".typed"}:
            files[f"{PACKAGE}/{path.name}"] = path.read_bytes()
    return _write_wheel(wheel_directory, files, _project(), _tag())


def build_sdist(sdist_directory, config_settings=None):
    project = _project()
    base = f"{project['name']}-{project['version']}"
    name = f"{base}.tar.gz"

    def keep(info):
        parts = Path(info.name).parts
        return None if "__pycache__" in parts or "build" in parts[1:2] else info

    with tarfile.open(Path(sdist_directory) / name, "w:gz", format=tarfile.PAX_FORMAT) as sdist:
        for path in SDIST_PATHS:
            sdist.add(SOURCE / path, arcname=f"{base}/{path}", filter=keep)
        pkg_info = _metadata(project).encode()
        info = tarfile.TarInfo(f"{base}/PKG-INFO")
        info.size = len(pkg_info)
        sdist.addfile(info, io.BytesIO(pkg_info))
    return name
