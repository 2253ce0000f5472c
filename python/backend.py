"""Makes a wheel of the package with CMake, for `pip install .`: module and libraries in one folder, nothing fetched."""

import base64
import hashlib
import os
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
NAME = "netlistdb"


def version():
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(\S+ VERSION (\S+)", text).group(1)


def metadata():
    return (f"Metadata-Version: 2.1\nName: {NAME}\nVersion: {version()}\n"
            "Summary: Navigable view of a synthesized FPGA design\nRequires-Python: >=3.9\n"
            "Provides-Extra: pandas\nRequires-Dist: pandas; extra == 'pandas'\n").encode()


def tag():
    interpreter = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{interpreter}-{interpreter}-{sysconfig.get_platform().replace('-', '_').replace('.', '_')}"


def run(*command):
    subprocess.run([str(word) for word in command], check=True, stdout=sys.stderr)


def build(folder):
    """Builds the package with its libraries below folder. The build itself is kept for the next time."""
    where = Path(os.environ.get("NETLISTDB_BUILD_DIR", ROOT / "build/pip"))
    run("cmake", "-S", ROOT, "-B", where, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DGLABRENIMGAF_BUILD_PYTHON=ON",
        "-DGLABRENIMGAF_BUILD_TESTS=OFF", "-DCMAKE_INSTALL_PREFIX=/install", f"-DCMAKE_INSTALL_LIBDIR={NAME}/lib",
        "-DGLABRENIMGAF_PYTHON_DIR=.", f"-DPython3_EXECUTABLE={sys.executable}")
    run("cmake", "--build", where, "--target", "netlistdb_python", "glabrenimgaf", "glabrenimgaf_analysis", "verific")
    for component in ("python", "runtime"):
        run("cmake", "--install", where, "--prefix", folder, "--strip", "--component", component)
    # A wheel holds no symbolic links: each library has the name by which it is looked for.
    for file in sorted((folder / NAME / "lib").iterdir()):
        if file.is_symlink():
            target = file.resolve()
            file.unlink()
            shutil.copy2(target, file)
    for file in sorted((folder / NAME / "lib").iterdir()):
        if not re.search(r"\.so\.\d+$", file.name):
            file.unlink()
    shutil.copytree(ROOT / "families", folder / NAME / "families", ignore=lambda _, names: [
        name for name in names if name not in ("derive.py", "model_clocks.py", "models.py")])


def information():
    """The files of the folder of metadata, but for the list of all files."""
    wheel = f"Wheel-Version: 1.0\nGenerator: {NAME}\nRoot-Is-Purelib: false\nTag: {tag()}\n"
    return f"{NAME}-{version()}.dist-info", {"METADATA": metadata(), "WHEEL": wheel.encode()}


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    info, files = information()
    folder = Path(metadata_directory) / info
    folder.mkdir()
    for name, content in files.items():
        (folder / name).write_bytes(content)
    return info


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    info, files = information()
    wheel = f"{NAME}-{version()}-{tag()}.whl"
    with tempfile.TemporaryDirectory() as folder, \
            zipfile.ZipFile(Path(wheel_directory) / wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        build(Path(folder))
        record = []

        def add(name, content):
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
            record.append(f"{name},sha256={digest},{len(content)}")
            archive.writestr(name, content)
        for file in sorted(Path(folder).rglob("*")):
            if file.is_file():
                add(file.relative_to(folder).as_posix(), file.read_bytes())
        for name, content in files.items():
            add(f"{info}/{name}", content)
        archive.writestr(f"{info}/RECORD", "\n".join([*record, f"{info}/RECORD,,", ""]))
    return wheel


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("the package is built from the repository: pip install .")
