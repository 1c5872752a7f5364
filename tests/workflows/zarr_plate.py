"""Makes an OME-Zarr store of a plate of TIFF files, as other programs write one.

Usage: zarr_plate.py FOLDER STORE, where FOLDER has files ROWCOLUMN_SITE_CHANNEL.tif; or
zarr_plate.py --compare FOLDER IMAGES, which compares ROWCOLUMN_SITE.png, the images that the
command made, with ROW_COLUMN_SITE.png.
"""

import pathlib
import sys

import numpy as np
from PIL import Image


def write(folder, store):
    import numcodecs
    import zarr

    compressor = numcodecs.Zlib(1)  # which tells when a chunk is cut short
    plate = zarr.open_group(store, mode="w")
    wells = {}
    for file in sorted(pathlib.Path(folder).glob("*.tif")):
        well, site, channel = file.stem.split("_")
        path = f"{well[0]}/{well[1:]}"
        wells.setdefault(path, {}).setdefault(site, {})[channel] = np.asarray(Image.open(file))
    plate.attrs["plate"] = {"version": "0.4", "wells": [{"path": path} for path in wells]}
    for path, sites in wells.items():
        well = plate.create_group(path)
        well.attrs["well"] = {"version": "0.4", "images": [{"path": site} for site in sites]}
        for site, channels in sites.items():
            image = well.create_group(site)
            axes = [{"name": name} for name in "tczyx"]
            image.attrs["multiscales"] = [
                {"version": "0.4", "axes": axes, "datasets": [{"path": "0"}]}
            ]
            image.attrs["omero"] = {"channels": [{"label": name} for name in channels]}
            pixels = np.stack(list(channels.values()))[None, :, None]
            chunks = (1, 1, 1, *pixels.shape[3:])
            image.array("0", pixels, chunks=chunks, compressor=compressor)


def compare(folder, images):
    expected = {}
    for file in pathlib.Path(folder).iterdir():
        well, site = file.stem.split("_")
        expected[f"{well[0]}_{well[1:]}_{site}.png"] = file
    found = {file.name: file for file in pathlib.Path(images).iterdir()}
    if sorted(found) != sorted(expected):
        return f"not the same images: {sorted(set(found) ^ set(expected))}"
    for name in found:
        if not np.array_equal(Image.open(found[name]), Image.open(expected[name])):
            return f"{name} has other pixels"
    return None


if __name__ == "__main__":
    if sys.argv[1] == "--compare":
        sys.exit(compare(*sys.argv[2:]))
    write(*sys.argv[1:])
