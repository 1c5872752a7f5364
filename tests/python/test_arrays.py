"""Arrays of any shape, strides and byte order give the same bytes as plain ones."""

import pickle
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import lumetra
import numpy as np
import pytest
from conftest import noise
from lumetra import _arrays

SETTINGS = {"contrast_limits": [(9, 200), "clip:3"], "gamma": [1, 0.7]}


def misaligned(array):
    memory = np.empty(array.nbytes + 1, np.uint8)
    result = memory[1:].view(array.dtype).reshape(array.shape)
    result[:] = array
    return result


def on_disk(array, tmp_path):
    np.save(tmp_path / "array.npy", array)
    return np.load(tmp_path / "array.npy", mmap_mode="r")


LAYOUTS = {
    # how the same pixels lie in memory, and whether the library can read them there
    "rows from the last to the first": (lambda a: a[::-1].copy()[::-1], True),
    "every second row": (lambda a: np.repeat(a, 2, axis=0)[::2], True),
    "wider rows": (lambda a: np.pad(a, ((1, 2), (3, 4)))[1:-2, 3:-4], True),
    "not aligned": (misaligned, True),
    "every second pixel": (lambda a: np.repeat(a, 2, axis=1)[:, 1::2], False),
    "pixels from the last to the first": (lambda a: a[:, ::-1].copy()[:, ::-1], False),
    "columns": (np.asfortranarray, False),
}


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
def test_layouts(dtype, tmp_path):
    planes = [noise(1, dtype, 250 if dtype != "float32" else None), noise(2, dtype)]
    settings = SETTINGS if dtype != "float32" else {"contrast_limits": (0, 200)}
    expected = lumetra.merge(planes, ["DAPI", "FITC"], **settings)
    lut = lumetra.apply_lut(planes[0], contrast_limits=(0, 200))
    for name, (laid_out, is_readable) in LAYOUTS.items():
        views = [laid_out(plane) for plane in planes]
        swapped = [view.astype(view.dtype.newbyteorder()) for view in views]
        for arrays in (views, swapped):
            image = lumetra.merge(arrays, ["DAPI", "FITC"], **settings)
            np.testing.assert_array_equal(image, expected, name)
            image = lumetra.apply_lut(arrays[0], contrast_limits=(0, 200))
            np.testing.assert_array_equal(image, lut, name)
        if dtype != "float32":
            assert (_arrays.rows_of_gray(views[0]) is views[0]) == is_readable, name
            assert lumetra.Histogram(views[0]) == lumetra.Histogram(planes[0]), name
            np.testing.assert_array_equal(
                lumetra.project(np.stack([views[0], views[1]])),
                np.maximum(*planes),
                name,
            )
    for plane in planes:
        plane.flags.writeable = False
    image = lumetra.merge([planes[0], on_disk(planes[1], tmp_path)], ["DAPI", "FITC"], **settings)
    np.testing.assert_array_equal(image, expected)


@pytest.mark.parametrize("axis", [0, 1, 2, -1])
def test_axes(axis):
    """Channels along any axis, time points and z-slices under the same limits."""
    stack = noise(3, "uint16", 4095, shape=(4, 3, 2, 20, 30))  # T, Z, C, Y, X
    channels = [stack[:, :, channel] for channel in range(2)]
    limits = [lumetra.contrast_limits(channel) for channel in channels]
    expected = np.array(
        [
            [
                lumetra.merge(list(planes), ["DAPI", "FITC"], contrast_limits=limits)
                for planes in time_point
            ]
            for time_point in stack
        ]
    )
    moved = np.moveaxis(stack, 2, axis)
    image = lumetra.merge(moved, ["DAPI", "FITC"], channel_axis=axis)
    np.testing.assert_array_equal(image, expected)
    projected = lumetra.project(np.moveaxis(stack, 1, axis), "mean", axis=axis)
    mean = np.floor(stack.astype(float).mean(axis=1) + 0.5)
    np.testing.assert_array_equal(projected, mean)
    tinted = lumetra.tint(channels[0], "GFP", contrast_limits=limits[0])
    np.testing.assert_array_equal(tinted[2, 1], lumetra.tint(stack[2, 1, 0], "GFP", contrast_limits=limits[0]))
    both = lumetra.composite([tinted, tinted[::-1]], blend="screen")
    np.testing.assert_array_equal(both[1], lumetra.composite([tinted[1], tinted[2]], blend="screen"))


def test_out():
    planes = [noise(1, "uint16"), noise(2, "uint16")]
    expected = lumetra.merge(planes, ["DAPI", "FITC"])
    wide = np.zeros((2 * expected.shape[0], 100, 4), np.uint8)
    outputs = [
        np.empty_like(expected),
        np.empty_like(expected)[::-1],
        wide[::2, : expected.shape[1], :3],  # four bytes for each pixel
        np.empty((3, *expected.shape[:2]), np.uint8).transpose(1, 2, 0),
    ]
    for out in outputs:
        assert lumetra.merge(planes, ["DAPI", "FITC"], out=out) is out
        np.testing.assert_array_equal(out, expected)
    assert not wide[1::2].any() and not wide[..., 3].any()

    kept = lumetra.tint(planes[0], "red", contrast_limits="none")
    swapped = np.empty(kept.shape, kept.dtype.newbyteorder())
    lumetra.tint(planes[0], "red", contrast_limits="none", out=swapped)
    np.testing.assert_array_equal(swapped, kept)

    memory = np.concatenate([expected, expected])  # an image that is drawn over its own input
    rows = len(expected)
    lumetra.composite([memory[:rows], memory[rows:]], offsets=[(0, 0), (0, 1)], out=memory[1:rows])
    parts = expected[:-1].astype(int) + expected[1:]
    np.testing.assert_array_equal(memory[1:rows], np.minimum(parts, 255))

    stack = noise(4, "uint8", shape=(3, 20, 30))
    expected = stack.max(axis=0)
    lumetra.project(stack, out=stack[0])
    np.testing.assert_array_equal(stack[0], expected)


def test_other_containers():
    stack = noise(1, "uint16", shape=(3, 2, 20, 30))
    limits = [(0, 4000), (90, 999)]
    expected = lumetra.merge(stack, ["DAPI", "FITC"], channel_axis=1, contrast_limits=limits)
    merge = {"channel_axis": 1, "contrast_limits": limits}
    xarray = pytest.importorskip("xarray")
    labelled = xarray.DataArray(stack, dims=("T", "C", "Y", "X"))
    np.testing.assert_array_equal(lumetra.merge(labelled, ["DAPI", "FITC"], **merge), expected)
    assert lumetra.contrast_limits(labelled) == lumetra.contrast_limits(stack)
    dask_array = pytest.importorskip("dask.array")
    blocks = dask_array.from_array(stack, chunks=(1, 2, 20, 30))
    images = blocks.map_blocks(
        lumetra.merge,
        ["DAPI", "FITC"],
        **merge,
        dtype=np.uint8,
        drop_axis=1,
        new_axis=3,
        chunks=(1, 20, 30, 3),
    )
    np.testing.assert_array_equal(images.compute(scheduler="threads"), expected)


def test_threads_do_not_meet():
    """Each thread has its own memory for tables, which differ here from call to call."""
    planes = [noise(seed, "uint16") for seed in (1, 2)]

    def render(seed):
        limits = [(seed, 40000 + seed), (7 * seed, 9000)]
        return lumetra.merge(planes, ["DAPI", "FITC"], contrast_limits=limits, gamma=0.9)

    expected = [render(seed) for seed in range(40)]
    with ThreadPoolExecutor(4) as pool:
        for image, alone in zip(pool.map(render, range(40)), expected):
            np.testing.assert_array_equal(image, alone)


def test_pickling():
    histogram = lumetra.Histogram(noise(1, "uint16"))
    sent = pickle.loads(pickle.dumps(histogram))
    assert sent == histogram and sent.bit_depth == 16 and sent.total == histogram.total
    sent.add(noise(2, "uint16"))
    assert sent != histogram
    with pytest.raises(ValueError, match="read-only"):
        histogram.counts[0] = 1
    assert pickle.loads(pickle.dumps(lumetra.Histogram())) == lumetra.Histogram()
    dye = lumetra.dye("GFP")
    assert pickle.loads(pickle.dumps(dye)) == dye
    with pytest.raises(AttributeError):
        dye.name = "another"


def python(*lines, **environment):
    import os

    return subprocess.run(
        [sys.executable, "-c", "\n".join(lines)],
        env={**os.environ, "QT_QPA_PLATFORM": "offscreen", **environment},
        capture_output=True,
        text=True,
    )


RENDERS = (
    "import numpy",
    "image = lumetra.merge([numpy.full((9, 9), 255, 'uint8')], ['red'], contrast_limits='none')",
    "assert image[0, 0].tolist() == [255, 0, 0]",
)


@pytest.mark.parametrize("order", [1, -1])
@pytest.mark.parametrize("binding", ["PyQt5", "PyQt6"])
def test_beside_qt(binding, order):
    pytest.importorskip(binding)
    imports = ["import lumetra", f"from {binding}.QtWidgets import QApplication"]
    done = python(*imports[::order], "application = QApplication([])", *RENDERS)
    assert done.returncode == 0, done.stderr


def test_brings_no_qt():
    done = python("import lumetra", *RENDERS, "print(open('/proc/self/maps').read())")
    assert "liblumetra-render.so.0" in done.stdout
    assert "Qt" not in done.stdout and "libLumetra" not in done.stdout


@pytest.mark.parametrize(
    "library, text",
    [("/none.so", "cannot be loaded"), ("libm.so.6", "libm.so.6 is of another version")],
)
def test_library_that_is_none(library, text):
    done = python("import lumetra", LUMETRA_RENDER_LIBRARY=library)
    last = done.stderr.splitlines()[-1]
    assert last.startswith("ImportError: ") and text in last
