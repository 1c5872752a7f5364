import os
import pathlib
import subprocess

import numpy as np
import pytest
from png import read_png

SHAPE = (47, 61)


def noise(seed, dtype, high=None, shape=SHAPE):
    """Values of any size, and some at both ends."""
    random = np.random.default_rng(seed)
    if np.dtype(dtype).kind == "f":
        array = random.normal(100, 80, shape).astype(dtype)
        array.flat[:3] = np.nan, np.inf, -np.inf
        return array
    limits = np.iinfo(dtype)
    array = random.integers(limits.min, high or limits.max, shape, dtype, endpoint=True)
    array.flat[::101] = limits.min
    return array


@pytest.fixture(scope="session")
def command():
    """What the command makes of arrays: channels as files, then its arguments."""
    program = os.environ.get("LUMETRA")
    if not program:
        pytest.skip("the command is not built")
    return program


@pytest.fixture
def rendered(command, tmp_path):
    tifffile = pytest.importorskip("tifffile")

    def render(name, arrays, dyes, *options):
        files = []
        for i, (array, dye) in enumerate(zip(arrays, dyes)):
            tifffile.imwrite(tmp_path / f"{i}.tif", np.ascontiguousarray(array))
            files.append(f"{i}.tif" + (f"={dye}" if dye else ""))
        subprocess.run(
            [command, name, *files, "-o", "out.png", "--overwrite", "--quiet", *options],
            cwd=tmp_path,
            check=True,
        )
        return read_png(pathlib.Path(tmp_path / "out.png"))

    return render
