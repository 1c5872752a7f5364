"""Writes the files with axes that axes.bats reads: one stack as OME-TIFF, as ImageJ's, and as files."""

import numpy
import tifffile

random = numpy.random.default_rng(5)
stack = random.integers(100, 60000, (2, 3, 2, 40, 50), numpy.uint16)  # T, Z, C, Y, X

tifffile.imwrite("cells.ome.tif", stack, metadata={
    "axes": "TZCYX", "Channel": {"Name": ["DAPI", "FITC"]},
    "PhysicalSizeX": 0.5, "PhysicalSizeXUnit": "µm", "PhysicalSizeY": 0.5, "PhysicalSizeYUnit": "µm"})
tifffile.imwrite("cells-ij.tif", stack, imagej=True, resolution=(2, 2),
                 metadata={"axes": "TZCYX", "unit": "um"})
for t in range(2):
    for c in range(2):
        tifffile.imwrite(f"t{t + 1}_c{c + 1}.tif", stack[t, :, c], photometric="minisblack")  # pages are z-slices
        tifffile.imwrite(f"max_t{t + 1}_c{c + 1}.tif", stack[t, :, c].max(0))
        tifffile.imwrite(f"z2_t{t + 1}_c{c + 1}.tif", stack[t, 1, c])

for t in range(2):
    tifffile.imwrite(f"both_t{t + 1}.ome.tif", stack[t, 1], metadata={
        "axes": "CYX", "Channel": {"Name": ["DAPI", "FITC"]}})

numbers = stack[0, 0, 0].astype(numpy.float32) / 1000
tifffile.imwrite("float.tif", numbers)
tifffile.imwrite("int.tif", stack[0, 0, 0])
numbers[3, 4] = numpy.nan
tifffile.imwrite("nan.tif", numbers)
