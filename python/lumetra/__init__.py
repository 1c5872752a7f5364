"""Colour and merge the channels of fluorescence microscopy images.

Images are numpy arrays, dyes have names, and the results are, byte for byte, those of the command
``lumetra`` and of the viewer.

>>> import lumetra, numpy
>>> nuclei = numpy.zeros((512, 512), numpy.uint16)
>>> actin = numpy.ones((512, 512), numpy.uint16)
>>> image = lumetra.merge([nuclei, actin], ["DAPI", "Alexa Fluor 488"])
>>> image.shape, image.dtype
((512, 512, 3), dtype('uint8'))

All functions release the interpreter's lock while they work on pixels, and can be called by
several threads at once.
"""

from ._contrast import Histogram, contrast_limits
from ._dyes import Dye, colormap, colour, dye, dyes, nearest
from ._rendering import apply_lut, composite, luts, merge, project, tint

__version__ = "1.1.0"

__all__ = [
    "Dye",
    "Histogram",
    "apply_lut",
    "colormap",
    "colour",
    "composite",
    "contrast_limits",
    "dye",
    "dyes",
    "luts",
    "merge",
    "nearest",
    "project",
    "tint",
]
