#!/usr/bin/python3
"""Renders the images of a plate in an OME-Zarr store with dask.distributed, here or on a cluster.

usage: dask_zarr.py [SCHEDULER]    in the folder of the store; again after a stop or a repair

SCHEDULER is the address of a cluster, tcp://HOST:PORT, whose workers see the same folder; without
it, there is a worker on each core of this machine.
"""

import json
import os
import pathlib
import sys

import distributed
import lumetra
import zarr
from PIL import Image

# Edit this: the store, the labels of its channels with their dyes, and the folder of the images.
# Workers start in other folders, so they get whole paths.
PLATE = os.path.abspath("plate.zarr")
DYES = {"nuclei": "DAPI", "filaments": "FITC", "mitochondria": "MitoTracker Red 580"}
IMAGES = pathlib.Path("out").resolve()

LIMITS = pathlib.Path("limits.json")


def fields():
    """Every field of the plate as the store names it: ROW/COLUMN/FIELD."""
    plate = zarr.open(PLATE, mode="r")
    for well in plate.attrs["plate"]["wells"]:
        for image in plate[well["path"]].attrs["well"]["images"]:
            yield f"{well['path']}/{image['path']}"


def image_of(field):
    return IMAGES / (field.replace("/", "_") + ".png")


def planes(field):
    """The channels at the first time point, of z-slices their maximum projection."""
    image = zarr.open(PLATE, mode="r")[field]
    multiscale = image.attrs["multiscales"][0]
    axes = [axis["name"] for axis in multiscale["axes"]]
    labels = [channel["label"] for channel in image.attrs["omero"]["channels"]]
    pixels = image[multiscale["datasets"][0]["path"]]
    for name in DYES:
        chosen = {"t": 0, "c": labels.index(name)}
        plane = pixels[tuple(chosen.get(axis, slice(None)) for axis in axes)]
        yield lumetra.project(plane) if "z" in axes else plane


def measure(field):
    return [lumetra.Histogram(plane) for plane in planes(field)]


def add(parts):
    return [sum(histograms) for histograms in zip(*parts)]


def render(field, limits):
    image = lumetra.merge(list(planes(field)), list(DYES.values()), contrast_limits=limits)
    unfinished = image_of(field).with_suffix(".unfinished")
    Image.fromarray(image).save(unfinished, "png")
    os.replace(unfinished, image_of(field))


def run(client, work, names, *arguments):
    """The fields that could be worked on, the others reported."""
    futures = client.map(work, names, *([argument] * len(names) for argument in arguments))
    distributed.wait(futures)
    for name, future in zip(names, futures):
        if future.status == "error":
            error = future.exception()
            print(f"dask_zarr.py: failed: {name}: {type(error).__name__}: {error}", file=sys.stderr)
    return [future for future in futures if future.status == "finished"]


def measure_limits(client, names):
    """Adds the histograms of all fields on the workers that have them, some at a time.

    Limits are measured once and kept: images can be compared only if they have the same limits,
    also those of a later run.
    """
    parts = run(client, measure, names)
    if not parts:
        sys.exit("dask_zarr.py: no field could be measured")
    while len(parts) > 1:
        parts = [client.submit(add, parts[i : i + 8]) for i in range(0, len(parts), 8)]
    LIMITS.write_text(json.dumps([whole.contrast_limits(0.1) for whole in parts[0].result()]))


def main(scheduler=None):
    names = list(fields())
    here = {"host": "127.0.0.1", "threads_per_worker": 1, "dashboard_address": None}
    with distributed.Client(scheduler) if scheduler else distributed.Client(**here) as client:
        if not LIMITS.exists():
            measure_limits(client, names)
        IMAGES.mkdir(exist_ok=True)
        missing = [name for name in names if not image_of(name).exists()]
        rendered = run(client, render, missing, json.loads(LIMITS.read_text()))
    return 0 if len(rendered) == len(missing) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
