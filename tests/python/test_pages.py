"""What documentation and examples show can be run."""

import pathlib
import re
import runpy
import sys
import types

import lumetra
import numpy as np
import pytest
from conftest import noise

ROOT = pathlib.Path(__file__).parents[2]


def test_code_of_the_page():
    pytest.importorskip("dask.array")
    page = (ROOT / "docs/python.md").read_text()
    blocks = re.findall(r"^```python\n(.*?)^```$", page, re.S | re.M)
    assert len(blocks) > 5
    names = {}
    for block in blocks:
        exec(block, names)
    assert names["image"].shape == (254, 253, 3)
    assert names["dye"].name == "Alexa 488"
    assert names["images"].compute().shape == (4, 256, 256, 3)


def test_napari_example(tmp_path, monkeypatch):
    """napari is not here; what its viewer is told is."""
    tifffile = pytest.importorskip("tifffile")
    layers = []
    viewer = types.SimpleNamespace(add_image=lambda image, **told: layers.append((image, told)))
    napari = types.SimpleNamespace(Viewer=lambda: viewer, run=lambda: None)
    monkeypatch.setitem(sys.modules, "napari", napari)
    image = noise(1, "uint16", shape=(3, 2, 20, 30))
    names = {"Name": ["Hoechst", "brightfield 1"]}
    file = tmp_path / "a.ome.tif"
    tifffile.imwrite(file, image, metadata={"axes": "ZCYX", "Channel": names})
    monkeypatch.setattr(sys, "argv", ["", str(file)])
    runpy.run_path(str(ROOT / "examples/napari_channels.py"), run_name="__main__")
    assert [told["name"] for _, told in layers] == names["Name"]
    np.testing.assert_array_equal(layers[1][0], image[:, 1])
    ends = layers[0][1]["colormap"]["colors"]
    assert ends.shape == (2, 4) and ends[0].tolist() == [0, 0, 0, 1]
    assert tuple(np.rint(255 * ends[1, :3]).astype(int)) == lumetra.colour("Hoechst")
    assert layers[1][1]["colormap"] == "gray"
