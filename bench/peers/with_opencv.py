"""What people write for a plate: an image of each field, with tifffile and OpenCV.

usage: with_opencv.py FOLDER LOW HIGH COLOUR COLOUR COLOUR FILE...

Files come field by field, in the order of the colours.
"""

import os
import sys

import cv2
import numpy
import tifffile

cv2.setNumThreads(1)
out, low, high = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
colours = [tuple(int(text[i : i + 2], 16) for i in (5, 3, 1)) for text in sys.argv[4:7]]
files = sys.argv[7:]
values = numpy.arange(256)[:, None, None]
luts = [(values * numpy.array(colour) // 255).astype(numpy.uint8) for colour in colours]
for first in range(0, len(files), 3):
    image = None
    for file, lut in zip(files[first : first + 3], luts):
        above = cv2.subtract(tifffile.imread(file), float(low))
        gray = cv2.convertScaleAbs(above, alpha=255 / (high - low))
        tinted = cv2.applyColorMap(gray, lut)
        image = tinted if image is None else cv2.add(image, tinted, dst=image)
    name = os.path.basename(files[first]).split("_")[0]
    cv2.imwrite(f"{out}/{name}.png", image)
