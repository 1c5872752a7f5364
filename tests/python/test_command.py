"""The bytes are those of the command."""

import subprocess

import lumetra
import numpy as np
import pytest
from conftest import noise

CHANNELS = {
    "8 bits": [noise(1, "uint8"), noise(2, "uint8", 90), noise(3, "uint8")],
    "12 bits": [noise(1, "uint16", 4095), noise(2, "uint16", 4095), noise(3, "uint16", 999)],
    "16 bits": [noise(1, "uint16"), noise(2, "uint16"), noise(3, "uint16")],
    "mixed": [noise(1, "uint16", 4095), noise(2, "uint8"), noise(3, "uint16")],
}
DYES = ["DAPI", "Alexa Fluor 488", "#ff00c0"]
SETTINGS = [
    # what the command is told, and what the function is
    ([], {}),
    (["--levels", "auto"], {"contrast_limits": "auto"}),
    (["--levels", "none"], {"contrast_limits": "none"}),
    (["--levels", "7:201", "--gamma", "0.6"], {"contrast_limits": (7, 201), "gamma": 0.6}),
    (  # the last None is the default, as without --levels
        ["--levels", "9:4000", "--levels", "clip:2.5", "--levels", "clip:0.1"]
        + ["--gamma", "1", "--gamma", "2.2", "--gamma", "0.45"],
        {
            "contrast_limits": [(8.6, np.float32(3999.6)), "clip:2.5", None],
            "gamma": [1, 2.2, np.float64(0.45)],
        },
    ),
    (
        ["--blend", "add", "--blend", "screen", "--blend", "darkest"],
        {"blend": ["add", "screen", "darkest"]},
    ),
]


@pytest.mark.parametrize("settings", range(len(SETTINGS)))
@pytest.mark.parametrize("kind", CHANNELS)
def test_merge(rendered, kind, settings):
    options, keywords = SETTINGS[settings]
    offsets = [(0, 0), (3, -2), (-1, 5)] if settings % 2 else [(0, 0)] * 3
    dyes = [f"{dye}{x:+}{y:+}" for dye, (x, y) in zip(DYES, offsets)]
    expected = rendered("merge", CHANNELS[kind], dyes, *options)
    image = lumetra.merge(CHANNELS[kind], DYES, offsets=offsets, **keywords)
    assert image.dtype == expected.dtype.newbyteorder("=")
    np.testing.assert_array_equal(image, expected)


@pytest.mark.parametrize("dtype", ["int8", "int16", "uint32", "int32", "float32", "float64"])
def test_other_types_under_given_limits(rendered, dtype):
    image = noise(5, dtype)
    limits = (10, 120) if dtype != "uint32" else (1000, 60000)
    options = ["--levels", "{}:{}".format(*limits), "--gamma", "0.7"]
    with np.errstate(all="raise"):
        merged = lumetra.merge([image], ["FITC"], contrast_limits=limits, gamma=0.7)
    np.testing.assert_array_equal(merged, rendered("merge", [image], ["FITC"], *options))


@pytest.mark.parametrize("kind", ["8 bits", "16 bits"])
def test_single_images(rendered, kind):
    image = CHANNELS[kind][0]
    for options, keywords in SETTINGS[:4]:
        np.testing.assert_array_equal(
            lumetra.tint(image, "Cy5", **keywords), rendered("dye", [image], ["Cy5"], *options)
        )
        np.testing.assert_array_equal(
            lumetra.apply_lut(image, "magma", reversed=True, **keywords),
            rendered("pseudo", [image], [None], "--lut", "magma", "--reversed", *options),
        )
    np.testing.assert_array_equal(
        lumetra.apply_lut(image), rendered("pseudo", [image], [None])
    )


@pytest.mark.parametrize("method", ["max", "mean", "sum"])
def test_projections(rendered, method):
    for dtype in ("uint8", "uint16"):
        stack = noise(7, dtype, shape=(5, 20, 30))
        expected = rendered(
            "merge", [stack], ["gray"], "--project", method, "--levels", "none"
        )
        image = lumetra.tint(lumetra.project(stack, method), "gray", contrast_limits="none")
        np.testing.assert_array_equal(image, expected)


def test_composites_are_sums():
    tinted = [lumetra.tint(noise(seed, "uint8"), dye) for seed, dye in enumerate(DYES)]
    offsets = [(0, 0), (3, -2), (-1, 5)]
    for images in (tinted, [image.astype(np.uint16) * 257 for image in tinted]):
        expected = 0
        for image, (x, y) in zip(images, offsets):
            rows, columns = image.shape[0] - 7, image.shape[1] - 4
            part = image[y + 2 : y + 2 + rows, x + 1 : x + 1 + columns]
            expected = expected + part.astype(np.int64)
        expected = np.minimum(expected, np.iinfo(images[0].dtype).max)
        image = lumetra.composite(images, offsets=offsets)
        assert image.dtype == images[0].dtype
        np.testing.assert_array_equal(image, expected)
        np.testing.assert_array_equal(
            lumetra.composite(images, blend="darkest"), np.min(images, axis=0)
        )


def test_limits_of_a_data_set(command, tmp_path):
    tifffile = pytest.importorskip("tifffile")
    images = [noise(seed, "uint16", 100 * seed + 9) for seed in range(1, 6)]
    for i, image in enumerate(images):
        tifffile.imwrite(tmp_path / f"{i}_dapi.tif", image)
    for saturated in (0, 0.1, 12.5):
        told = subprocess.run(
            [command, "levels", "{field}_{channel}.tif", "--channel", "dapi=DAPI"]
            + ["--levels", f"clip:{saturated}", "--quiet"],
            cwd=tmp_path,
            check=True,
            capture_output=True,
            text=True,
        ).stdout
        low, high = lumetra.contrast_limits(iter(images), saturated)
        assert f"{low}" in told and f"{high}" in told
        parts = [lumetra.Histogram(half) for half in np.split(np.array(images), [2])]
        assert sum(reversed(parts)).contrast_limits(saturated) == (low, high)


def test_dyes_and_words(command):
    listed = subprocess.run([command, "dyes"], check=True, capture_output=True, text=True).stdout
    lines = []
    for dye in lumetra.dyes().values():
        excitation, emission = dye.excitation or "-", dye.emission or "-"
        colour = "#%02x%02x%02x" % dye.colour
        lines.append(f"{excitation:>10}  {emission:>8}  {colour}  {dye.source:<12}  {dye.name}")
    assert listed.splitlines()[1:] == lines
    assert lumetra.dye("red").excitation is None and lumetra.dye("red").emission is None
    told = subprocess.run([command, "--version"], check=True, capture_output=True, text=True)
    assert told.stdout == f"lumetra {lumetra.__version__}\n"
