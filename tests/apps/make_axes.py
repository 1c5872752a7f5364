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
        for z in (2, 9, 10):  # in this order, which is not that of the names
            tifffile.imwrite(f"slice_t{t + 1}_c{c + 1}_z{z}.tif", stack[t, (2, 9, 10).index(z), c])

for t in range(2):
    tifffile.imwrite(f"both_t{t + 1}.ome.tif", stack[t, 1], metadata={
        "axes": "CYX", "Channel": {"Name": ["DAPI", "FITC"]}})
    tifffile.imwrite(f"both-ij_t{t + 1}.tif", stack[t, 1], imagej=True, metadata={"axes": "CYX"})

numbers = stack[0, 0, 0].astype(numpy.float32) / 1000
tifffile.imwrite("float.tif", numbers)
tifffile.imwrite("int.tif", stack[0, 0, 0])
numbers[3, 4] = numpy.nan
tifffile.imwrite("nan.tif", numbers)

# Two fields of floats, dark and bright, and what they are as whole numbers of one scale.
for field, factor in (("dark", 1), ("bright", 10)):
    values = (stack[0, 0, 0] // 16 * factor).astype(numpy.uint16)
    tifffile.imwrite(f"plate-int_{field}.tif", values)
    tifffile.imwrite(f"plate-float_{field}.tif", values.astype(numpy.float64) / 4 - 100)

indices = numpy.arange(40 * 50, dtype=numpy.uint8).reshape(40, 50)
colours = random.integers(0, 256, (3, 256), numpy.uint16)
tifffile.imwrite("palette.tif", indices, photometric="palette", colormap=colours * 257)
tifffile.imwrite("palette-rgb.tif", numpy.moveaxis(colours.astype(numpy.uint8)[:, indices], 0, 2), photometric="rgb")
