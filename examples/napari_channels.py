"""Opens an OME-TIFF file in napari, each channel in the colour of its dye.

usage: python3 napari_channels.py FILE

The names of the channels are those of dyes. A channel that has another name is white.
"""

import sys
import xml.etree.ElementTree as ElementTree

import lumetra
import napari
import numpy
import tifffile


def channels(path):
    """The names and arrays of the channels of a file."""
    with tifffile.TiffFile(path) as file:
        image = numpy.moveaxis(file.asarray(), file.series[0].axes.index("C"), 0)
        elements = ElementTree.fromstring(file.ome_metadata).iter()
    names = [element.get("Name") for element in elements if element.tag.endswith("}Channel")]
    return zip(names, image)


def colormap(name):
    try:
        return lumetra.colormap(name)
    except ValueError:
        return "gray"


if __name__ == "__main__":
    viewer = napari.Viewer()
    for name, image in channels(sys.argv[1]):
        viewer.add_image(
            image,
            name=name,
            colormap=colormap(name),
            contrast_limits=lumetra.contrast_limits(image),
            blending="additive",
        )
    napari.run()
