"""What a person reads off an image, beside formulas written out and pixels counted."""

import ctypes
import json
import os
import pathlib
import struct
import subprocess
import sys

import numpy as np
import pytest
import tifffile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "python"))
from png import read_png  # pylint: disable=wrong-import-position

COMMAND = os.environ["LUMETRA"]
RAMP = np.arange(256, dtype=np.uint8).reshape(4, 64)
BLACK = np.zeros((300, 400), np.uint8)


@pytest.fixture(autouse=True)
def _folder(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)


def lumetra(*arguments, status=0):
    done = subprocess.run([COMMAND, *arguments], capture_output=True, text=True, check=False)
    assert done.returncode == status, done.stderr
    return done.stdout


def image(*arguments):
    lumetra(*arguments, "-o", "image.png", "--overwrite", "--quiet")
    return read_png(pathlib.Path("image.png")).astype(int)


def files(folder):
    return {file.name: file.read_bytes() for file in pathlib.Path(folder).iterdir()}


@pytest.mark.parametrize("gamma", [0.25, 0.5, 2, 4])
def test_gamma_bends_as_the_formula_says(gamma):
    tifffile.imwrite("ramp.tif", RAMP)
    wanted = np.floor(255 * (RAMP / 255) ** gamma + 0.5)
    options = ["--levels", "0:255", "--gamma", str(gamma)]
    merged = image("merge", "ramp.tif=#ffffff", *options)
    assert np.array_equal(merged[..., 0], wanted)
    lut = image("pseudo", "ramp.tif", "--lut", "gray", *options)
    assert np.abs(lut[..., 0] - wanted).max() <= 2  # 255 slots in place of 256 levels


def test_each_channel_has_what_is_said_of_it():
    tifffile.imwrite("a_1.tif", RAMP)
    tifffile.imwrite("a_2.tif", RAMP[::-1])
    first, second = np.floor(255 * (RAMP / 255) ** 2 + 0.5), np.clip(RAMP[::-1] * 5.1 - 255, 0, 255)
    options = ["--levels", "0:255", "--levels", "50:100", "--gamma", "2", "--gamma", "1"]
    named = image("merge", "a_1.tif=#ff0000", "a_2.tif=#00ff00", *options)
    assert np.array_equal(named[..., 0], first) and np.abs(named[..., 1] - second).max() <= 1
    # Settings keep it, and what is said beside them changes nothing else.
    channels = [*("--channel", "1=#ff0000", "--channel", "2=#00ff00"), "--gamma", "2", "--gamma", "1"]
    lumetra("levels", "a_{channel}.tif", *channels, *options[:4], "-o", "set.json")
    kept = ["merge", "a_1.tif", "a_2.tif", "--settings", "set.json"]
    assert np.array_equal(image(*kept), named)
    assert np.array_equal(image(*kept, *options[:4]), named)
    hidden = json.loads(pathlib.Path("set.json").read_text())
    hidden["channels"][0]["visible"] = False
    pathlib.Path("set.json").write_text(json.dumps(hidden))
    lumetra("batch", "{f}_{channel}.tif", "--settings", "set.json", "--channel", "1=#ff0000",
            "--channel", "2=#00ff00", "-o", "{f}.png")
    assert not read_png(pathlib.Path("a.png"))[..., 0].any()


def test_offsets_go_where_they_say():
    for name, place in (("a.tif", (20, 30)), ("b.tif", (18, 33))):
        plane = BLACK.copy()
        plane[place] = 255
        tifffile.imwrite(name, plane)
    merged = image("merge", "a.tif=#ff0000", "b.tif=#00ff00+3-2", "--levels", "0:255")
    assert (merged == (255, 255, 0)).all(axis=2).sum() == 1 == merged.any(axis=2).sum()


def test_colours_of_files_are_as_they_say():
    colours = np.stack([RAMP.ravel(), RAMP.ravel() // 2, 255 - RAMP.ravel()]).astype(np.uint8)
    tifffile.imwrite("palette.tif", RAMP, photometric="palette", colormap=colours.astype(np.uint16) * 257)
    pathlib.Path("own.lut").write_bytes(colours.tobytes())
    tifffile.imwrite("ramp.tif", RAMP)
    wanted = colours.T.reshape(*RAMP.shape, 3).astype(int)
    assert np.array_equal(image("pseudo", "palette.tif", "--lut", "own"), wanted)
    assert np.abs(image("pseudo", "ramp.tif", "--lut", "own.lut", "--levels", "0:255") - wanted).max() <= 2
    tifffile.imwrite("emission.ome.tif", RAMP, metadata={
        "axes": "YX", "Channel": {"Name": "x", "EmissionWavelength": 525, "EmissionWavelengthUnit": "nm"}})
    red, green, blue = image("merge", "emission.ome.tif", "--levels", "0:255").max(axis=(0, 1))
    assert green == 255 and max(red, blue) < 128


def test_gamma_bends_images_of_three_colours():
    tifffile.imwrite("rgb.tif", np.dstack([RAMP, RAMP // 2, 0 * RAMP]), photometric="rgb")
    plain, bent = [image("dye", "rgb.tif=#ffffff", "--levels", "0:255", "--gamma", gamma).astype(float)
                   for gamma in ("1", "2")]
    assert np.abs(255 * (plain / 255) ** 2 - bent).max() <= 1


def test_what_is_drawn_on_16_bits_is_white():
    resolution = {"resolution": (20000, 20000), "resolutionunit": "CENTIMETER"}  # 0.5 µm
    tifffile.imwrite("black.tif", BLACK.astype(np.uint16), **resolution)
    for size, pixels in ((None, 40), ("0.25", 80)):  # the user's goes before the file's
        more = ["--pixel-size", size] if size else []
        lumetra("dye", "black.tif=DAPI", "--levels", "none", "--scale-bar", "20", *more, "-o", "bar.tif",
                "--overwrite", "--compression", "none")
        bar = tifffile.imread("bar.tif")
        assert bar.dtype == np.uint16 and (bar == 65535).all(axis=2).sum(axis=1).max() == pixels


@pytest.mark.parametrize("length, pixel, pixels", [(20, 0.5, 40), (30, 0.5, 60), (7, 0.13, 54), (50, 0.2, 250)])
def test_scale_bar_has_its_length(length, pixel, pixels):
    tifffile.imwrite("black.tif", BLACK)
    shown = image("merge", "black.tif=DAPI", "--scale-bar", str(length), "--pixel-size", str(pixel))
    longest = max(max(map(len, "".join("x" if white else " " for white in row).split()), default=0)
                  for row in (shown == 255).all(axis=2))
    assert longest == pixels


@pytest.mark.parametrize("hidden", [0, 1, 2, 3])
def test_legend_has_the_colours_of_what_is_shown(hidden):
    tifffile.imwrite("black.tif", BLACK)
    colours = ["#ff0000", "#00ff00", "#0000ff"]
    hide = ["--hide", str(hidden)] if hidden else []
    shown = image("merge", *[f"black.tif=MMM{colour}" for colour in colours], "--legend", *hide)
    for number, colour in enumerate(colours, 1):
        components = [int(colour[i : i + 2], 16) for i in (1, 3, 5)]
        assert (shown == components).all(axis=2).any() == (number != hidden), colour


def test_levels_of_a_stack_are_those_of_all_pages():
    for name in "ab":
        tifffile.imwrite(f"stack_{name}.tif", np.stack([RAMP, RAMP.astype(np.uint16) * 10]).astype(np.uint16))
    options, plain = ["--all-pages", "--levels", "auto", "--quiet"], ["--compression", "none"]
    lumetra("merge", "stack_a.tif=#ffffff", *options, *plain, "-o", "merged.tif")
    lumetra("batch", "stack_{f}.tif", "--channel", "x=#ffffff", *options, *plain, "-o", "out_{f}.tiff")
    for name in ("merged.tif", "out_a.tiff"):
        dim, bright = tifffile.imread(name)[..., 0].astype(int)
        assert (dim.max(), bright.max()) == (26, 255)  # 255 * 255 / 2550, rounded up from a half
    assert '2550' in lumetra("levels", "stack_{f}.tif", "--channel", "x=#ffffff", *options)


def test_an_image_is_replaced_in_one_step():
    libc, deleted = ctypes.CDLL(None), 0x200  # IN_DELETE
    tifffile.imwrite("ramp.tif", RAMP)
    os.mkdir("out")
    lumetra("merge", "ramp.tif=DAPI", "-o", "out/image.png")
    events = libc.inotify_init1(os.O_NONBLOCK)
    libc.inotify_add_watch(events, b"out", deleted)
    lumetra("merge", "ramp.tif=FITC", "-o", "out/image.png", "--overwrite")
    try:
        seen = os.read(events, 4096)
    except BlockingIOError:
        seen = b""
    os.close(events)
    assert b"image.png" not in seen, struct.unpack("iIII", seen[:16])


def test_gamma_of_settings_stays_beside_named_channels():
    tifffile.imwrite("f_a.tif", RAMP)
    lumetra("levels", "{f}_{channel}.tif", "--channel", "a=#ffffff", "--gamma", "2", "-o", "set.json")
    lumetra("batch", "{f}_{channel}.tif", "--settings", "set.json", "--channel", "a=#ffffff", "-o", "{f}.png")
    lumetra("merge", "f_a.tif=#ffffff", "--gamma", "2", "-o", "gamma.png")
    assert pathlib.Path("f.png").read_bytes() == pathlib.Path("gamma.png").read_bytes()


def test_another_pixel_size_or_gamma_is_another_image():
    tifffile.imwrite("f_a.tif", BLACK)
    batch = ["batch", "{f}_{channel}.tif", "--channel", "a=DAPI", "-o", "{f}.png", "--log", "log",
             "--levels", "0:9", "--resume", "--scale-bar", "10", "--pixel-size"]
    for size, gamma, lines in (("0.5", "1", 1), ("0.5", "1", 1), ("0.25", "1", 2), ("0.25", "2", 3)):
        lumetra(*batch, size, "--gamma", gamma)
        assert len(pathlib.Path("log").read_text().splitlines()) == lines


def test_a_shard_without_fields_is_done():
    for field in "fg":
        tifffile.imwrite(f"{field}_a.tif", RAMP)
    shards = [lumetra("batch", "{f}_{channel}.tif", "--channel", "a=DAPI", "-o", "out/{f}.png",
                      "--shard", f"{k}/7", status=0) for k in range(1, 8)]
    assert len(shards) == 7 and len(files("out")) == 2


@pytest.mark.parametrize("dye, file, options", [
    ("a=b#ff8000", "f", []),
    ("DAPI", "f[2]", []),
    ("DAPI", "f", ["--gamma", "0.125"]),
    ("DAPI", "f", ["--gamma", "1.0625", "--scale-bar", "1.25", "--pixel-size", "0.0325"])])
def test_lines_of_a_dry_run_say_what_is_meant(dye, file, options):
    tifffile.imwrite(file + "_a.tif", np.tile(RAMP, (40, 4)))
    os.rename(file + "_a.tif", file)
    for folder, more in (("batch", []), ("lines", ["--dry-run"])):
        os.mkdir(folder)
        line = lumetra("batch", "{f}", "--files-from", _list(file), "--channel", f"x={dye}",
                       "-o", folder + "/{f}.png", "--quiet", *options, *more)
    subprocess.run(line, shell=True, check=True,
                   env=dict(os.environ, PATH=os.path.dirname(COMMAND) + ":" + os.environ["PATH"]))
    assert files("batch") == files("lines") and len(files("batch")) == 1


def _list(*names):
    """A list as Windows writes it."""
    pathlib.Path("list").write_bytes("".join(name + "\r\n" for name in names).encode())
    return "list"


if __name__ == "__main__":
    sys.exit(pytest.main([__file__, "-q", "-p", "no:cacheprovider"]))
