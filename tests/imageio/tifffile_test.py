"""TIFF files of another writer, read back and compared with the arrays that they were made of.

Usage: tifffile_test.py PROGRAM, where PROGRAM writes the planes of a file to its standard output.
Ends with status 77 where tifffile is not installed.
"""

import itertools
import json
import os
import struct
import subprocess
import sys
import tempfile
import unittest

try:
    import numpy
    import tifffile
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

PROGRAM = ""
HEIGHT, WIDTH = 19, 23
READ_AS = {
    "uint8": "uint8", "uint16": "uint16", "int8": "float32", "int16": "float32",
    "uint32": "float64", "int32": "float64", "float16": "float32", "float32": "float32",
    "float64": "float64",
}  # fmt: skip


def values(shape, dtype):
    """An array without two equal planes, over all of the type's range."""
    random = numpy.random.default_rng(len(shape) + sum(shape))
    if numpy.issubdtype(dtype, numpy.integer):
        limits = numpy.iinfo(dtype)
        return random.integers(limits.min, limits.max, shape, dtype, endpoint=True)
    array = random.normal(0, 1000, shape).astype(dtype)
    array.flat[:4] = numpy.nan, numpy.inf, -numpy.inf, 3e-7  # small for a half
    return array


def dump(file):
    """What the program says of a file, and its planes as an array T, Z, C, Y, X."""
    result = subprocess.run([PROGRAM, file], capture_output=True, check=False)
    if result.returncode != 0:
        raise AssertionError(result.stderr.decode())
    line, raw = result.stdout.split(b"\n", 1)
    told = json.loads(line)
    names = {"CV_8UC1": "uint8", "CV_16UC1": "uint16", "CV_32FC1": "float32", "CV_64FC1": "float64"}
    channels, slices, frames = told["axes"]
    shape = (frames, slices, channels, *told["size"])
    return told, numpy.frombuffer(raw, names[told["type"]]).reshape(shape)


def ordered(array, axes):
    """The array as T, Z, C, Y, X."""
    for axis in "TZCYX":
        if axis not in axes:
            array, axes = array[numpy.newaxis], axis + axes
    return numpy.transpose(array, [axes.index(axis) for axis in "TZCYX"])


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = os.path.join(folder.name, "a.ome.tif")

    def expect(self, array, axes, **options):
        """The file that was written holds the array."""
        told, planes = dump(self.file)
        expected = ordered(array, axes)
        self.assertEqual(told["axes"], [expected.shape[i] for i in (2, 1, 0)])
        self.assertEqual(planes.dtype, READ_AS[array.dtype.name])
        self.assertEqual(planes.tobytes(), expected.astype(planes.dtype).tobytes())
        self.assertEqual(told["warnings"], options.get("warnings", []))
        return told

    def test_every_order_of_axes_as_ome_xml(self):
        sizes = {"T": 2, "Z": 3, "C": 4}
        for count in range(4):
            for order in itertools.permutations("TZC", count):
                axes = "".join(order) + "YX"
                shape = [sizes[axis] for axis in order] + [HEIGHT, WIDTH]
                array = values(shape, "uint16")
                with self.subTest(axes=axes):
                    tifffile.imwrite(self.file, array, ome=True, metadata={"axes": axes},
                                     photometric="minisblack")  # fmt: skip
                    told = self.expect(array, axes)
                    self.assertTrue(told["known"])

    def test_every_type_in_every_byte_order_and_compression(self):
        compressions = [{}, {"compression": "zlib"}, {"compression": "zlib", "predictor": True},
                        {"tile": (16, 16)}, {"rowsperstrip": 5}, {"bigtiff": True},
                        {"tile": (16, 32), "compression": "zlib"}]  # fmt: skip
        for dtype, order, options in itertools.product(READ_AS, "<>", compressions):
            is_float = dtype.startswith("float")
            if is_float and "predictor" in options:
                continue  # needs a codec that Debian does not have
            is_ome = dtype != "float16"  # which OME-XML has no name for
            axes, shape = ("ZCYX", (2, 3)) if is_ome else ("ZYX", (6,))
            array = values((*shape, HEIGHT, WIDTH), dtype)
            with self.subTest(dtype=dtype, order=order, options=options):
                tifffile.imwrite(self.file, array, ome=is_ome, byteorder=order,
                                 metadata={"axes": axes} if is_ome else None,
                                 photometric="minisblack", **options)  # fmt: skip
                told = self.expect(array, axes)
                self.assertEqual(told["known"], is_ome)
                self.assertEqual(told["inRows"], dtype in ("uint8", "uint16"))

    def test_values_of_a_pixel_are_channels(self):
        for dtype, samples, planar in itertools.product(
            ["uint8", "uint16", "float32"], [2, 3, 4, 6], ["contig", "separate"]
        ):
            axes = "YXC" if planar == "contig" else "CYX"
            shape = [{"C": samples, "Y": HEIGHT, "X": WIDTH}[axis] for axis in axes]
            array = values(shape, dtype)
            with self.subTest(dtype=dtype, samples=samples, planar=planar):
                tifffile.imwrite(self.file, array, photometric="minisblack", ome=False, metadata=None,
                                 planarconfig=planar)  # fmt: skip
                self.assertFalse(self.expect(array, axes)["known"])
                pages = numpy.stack([array, array[::-1].copy()])
                tifffile.imwrite(self.file, pages, photometric="minisblack", ome=False, metadata=None,
                                 planarconfig=planar, rowsperstrip=4)  # fmt: skip
                self.expect(pages, "Z" + axes)

    def test_rgb_in_ome_xml_gives_three_channels(self):
        for planar, axes in (("contig", "TYXS"), ("separate", "TSYX")):
            shape = [{"T": 2, "Y": HEIGHT, "X": WIDTH, "S": 3}[axis] for axis in axes]
            array = values(shape, "uint8")
            tifffile.imwrite(self.file, array, ome=True, metadata={"axes": axes},
                             photometric="rgb", planarconfig=planar)  # fmt: skip
            told = self.expect(array, axes.replace("S", "C"))
            colours = [channel["colour"] for channel in told["channels"]]
            self.assertEqual(colours, [0xFF0000, 0x00FF00, 0x0000FF])

    def test_names_colours_wavelengths_and_pixel_size_of_ome_xml(self):
        channels = {"Name": ["DAPI", "FITC"], "Color": [0x0000FFFF, 0x00FF00FF],
                    "EmissionWavelength": [461, 0.519], "EmissionWavelengthUnit": ["nm", "µm"],
                    "ExcitationWavelength": [358, 0.49], "ExcitationWavelengthUnit": ["nm", "\u03bcm"]}  # fmt: skip
        array = values((2, 3, HEIGHT, WIDTH), "uint16")
        tifffile.imwrite(self.file, array, ome=True, photometric="minisblack",
                         metadata={"axes": "CZYX", "Channel": channels, "PhysicalSizeX": 325,
                                   "PhysicalSizeXUnit": "nm", "PhysicalSizeY": 0.5,
                                   "PhysicalSizeZ": 0.002, "PhysicalSizeZUnit": "mm"})  # fmt: skip
        told = self.expect(array, "CZYX")
        self.assertEqual([c["name"] for c in told["channels"]], ["DAPI", "FITC"])
        self.assertEqual([c["colour"] for c in told["channels"]], [0x0000FF, 0x00FF00])
        self.assertEqual([round(c["emission"], 6) for c in told["channels"]], [461, 519])
        self.assertEqual([round(c["excitation"], 6) for c in told["channels"]], [358, 490])
        self.assertEqual([round(size, 9) for size in told["pixelSize"]], [0.325, 0.5])
        self.assertEqual(told["sliceDistance"], 2)

    def test_imagej(self):
        ramp = numpy.arange(256, dtype="uint8")
        red = numpy.stack([ramp, 0 * ramp, 0 * ramp])
        fire = numpy.stack([ramp, ramp // 2, 255 - ramp])
        for dtype, bytes_behind_one, order in itertools.product(
            ["uint8", "uint16", "float32"], [False, True], "<>"
        ):
            array = values((2, 3, 2, HEIGHT, WIDTH), dtype)
            tifffile.imwrite(self.file, array, imagej=True, byteorder=order,
                             resolution=(4, 2), photometric="minisblack",
                             metadata={"axes": "TZCYX", "unit": "um", "spacing": 1.5,
                                       "mode": "composite", "LUTs": [red, fire],
                                       "Labels": ["DAPI", "FITC"] * 6})  # fmt: skip
            if bytes_behind_one:  # as in stacks of more than 4 GB: there is no second directory
                with open(self.file, "r+b") as file:
                    endian = "little" if order == "<" else "big"
                    file.seek(8)
                    entries = int.from_bytes(file.read(2), endian)
                    file.seek(8 + 2 + 12 * entries)
                    file.write(bytes(4))
            with self.subTest(dtype=dtype, bytes_behind_one=bytes_behind_one, order=order):
                told = self.expect(array, "TZCYX")
                self.assertEqual(told["pages"], 12)
                self.assertEqual(told["pixelSize"], [0.25, 0.5])
                self.assertEqual(told["sliceDistance"], 1.5)
                self.assertEqual([c["name"] for c in told["channels"]], ["DAPI", "FITC"])
                self.assertEqual(told["channels"][0]["lut"], [i << 16 for i in range(256)])
                self.assertEqual(told["channels"][1]["colour"], 0xFF7F00)

    def test_ome_xml_over_several_files(self):
        array = values((3, 2, HEIGHT, WIDTH), "uint8")  # a channel in each file, of two slices
        folder = os.path.dirname(self.file)
        names = ["a.ome.tif", "b.ome.tif", "c.ome.tif"]
        parts = "".join(
            f'<TiffData IFD="0" FirstC="{c}" PlaneCount="2">'
            f'<UUID FileName="{name}">urn:uuid:{c}</UUID></TiffData>'
            for c, name in enumerate(names)
        )
        for number, name in enumerate(names):
            xml = (f'<?xml version="1.0"?><OME xmlns="x" UUID="urn:uuid:{number}"><Image ID="I">'
                   f'<Pixels DimensionOrder="XYZCT" SizeC="3" SizeZ="2" SizeT="1">{parts}'
                   '</Pixels></Image></OME>')  # fmt: skip
            tifffile.imwrite(os.path.join(folder, name), array[number], ome=False, metadata=None,
                             description=xml, photometric="minisblack")  # fmt: skip
        self.expect(array, "CZYX")
        self.file = os.path.join(folder, "b.ome.tif")
        self.expect(array, "CZYX")
        os.rename(os.path.join(folder, "c.ome.tif"), os.path.join(folder, "moved.tif"))
        with self.assertRaisesRegex(AssertionError, "in the file c.ome.tif, which is not beside"):
            dump(self.file)
        self.file = os.path.join(folder, "moved.tif")  # still knows which planes are its own
        with open(os.path.join(folder, "c.ome.tif"), "wb") as damaged:
            damaged.write(b"II*")
        self.expect(array, "CZYX")

    def test_ome_xml_places_planes_where_it_says(self):
        array = values((4, HEIGHT, WIDTH), "uint16")
        xml = ('<OME><Image><Pixels DimensionOrder="XYZCT" SizeC="2" SizeZ="2" SizeT="1">'
               '<TiffData IFD="3" FirstC="0" FirstZ="0"/><TiffData IFD="0" FirstC="1" FirstZ="1"/>'
               '<TiffData IFD="1" FirstC="1" FirstZ="0"/><TiffData IFD="2" FirstC="0" FirstZ="1"/>'
               '</Pixels></Image></OME>')  # fmt: skip
        with tifffile.TiffWriter(self.file, ome=False) as writer:
            for number, page in enumerate(array):
                writer.write(page, description=xml if number == 0 else None, metadata=None,
                             contiguous=False)  # fmt: skip
        self.expect(array[[3, 1, 2, 0]].reshape(2, 2, HEIGHT, WIDTH), "ZCYX")

    def write_stk(self, array, order, distance, times, claimed=None):
        """Planes one after another behind one directory, and the tag that tells their number."""
        def pack(form, *numbers):
            return struct.pack(order + form, *numbers)

        planes = claimed or len(array)
        pixels = array.astype(array.dtype.newbyteorder(order)).tobytes()
        rows = 7
        row_bytes = array.itemsize * WIDTH
        strips = [(row * row_bytes, min(rows, HEIGHT - row) * row_bytes)
                  for row in range(0, HEIGHT, rows)]  # fmt: skip
        data = 8 + len(pixels)
        offsets = pack(f"{len(strips)}I", *(8 + start for start, _ in strips))
        counts = pack(f"{len(strips)}I", *(count for _, count in strips))
        uic2 = b"".join(pack("6I", distance, 1, 2450000, 1000 * i * times, 0, 0)
                        for i in range(len(array)))  # fmt: skip
        # 0.65 x 1.3 µm per pixel: pairs of what a number is and where, two fractions, the unit.
        uic1_at = data + len(offsets) + len(counts) + len(uic2)
        uic1 = pack("8I", 3, 1, 4, uic1_at + 32, 5, uic1_at + 40, 6, uic1_at + 48)
        uic1 += pack("4I", 65, 100, 13, 10) + pack("I2s", 2, b"um")
        blocks = offsets + counts + uic2 + uic1
        entries = [(256, 3, 1, WIDTH), (257, 3, 1, HEIGHT), (258, 3, 1, 8 * array.itemsize),
                   (259, 3, 1, 1), (262, 3, 1, 1), (273, 4, len(strips), data),
                   (277, 3, 1, 1), (278, 3, 1, rows),
                   (279, 4, len(strips), data + len(offsets)),
                   (33628, 4, 4, uic1_at), (33629, 5, planes, data + len(offsets) + len(counts))]  # fmt: skip
        directory = pack("H", len(entries))
        for tag, kind, count, value in entries:
            inside = pack("HH", value, 0) if kind == 3 else pack("I", value)
            directory += pack("HHI", tag, kind, count) + inside
        with open(self.file, "wb") as file:
            start = pack("HI", 42, data + len(blocks))
            file.write((b"II" if order == "<" else b"MM") + start + pixels + blocks)
            file.write(directory + bytes(4))

    def test_stk(self):
        for dtype, order in itertools.product(["uint8", "uint16"], "<>"):
            array = values((5, HEIGHT, WIDTH), dtype)
            for distance, times, axis in ((1, 0, "Z"), (1, 1, "Z"), (0, 1, "T"), (0, 0, "Z")):
                with self.subTest(dtype=dtype, order=order, axis=axis):
                    self.write_stk(array, order, distance, times)
                    told = self.expect(array, axis + "YX")
                    self.assertTrue(told["known"])
                    self.assertEqual(told["pixelSize"], [0.65, 1.3])
            for claimed in (6, 1000, 2**31, 2**32 - 1):
                self.write_stk(array, order, 1, 0, claimed)
                with self.assertRaisesRegex(AssertionError, "STK file|can be reached"):
                    dump(self.file)

    def test_a_description_that_is_wrong_leaves_the_pages(self):
        array = values((4, HEIGHT, WIDTH), "uint8")
        for text in ("ImageJ=1.53\nimages=4\nchannels=3\nslices=2\n",
                     "ImageJ=1.53\nimages=4\nchannels=x\n",
                     '<OME><Image><Pixels DimensionOrder="XYCZT" SizeC="4"',
                     '<OME><Image><Pixels DimensionOrder="XYABC" SizeC="4"/></Image></OME>',
                     '<OME><Image><Pixels DimensionOrder="XYCZT" SizeC="99999" SizeZ="99999" '
                     'SizeT="99999"/></Image></OME>',
                     '<OME><BinaryOnly MetadataFile="b.ome" UUID="x"/></OME>'):  # fmt: skip
            with self.subTest(text=text):
                with tifffile.TiffWriter(self.file, ome=False) as writer:
                    for number, page in enumerate(array):
                        writer.write(page, description=text if number == 0 else None,
                                     metadata=None, contiguous=False)  # fmt: skip
                told, planes = dump(self.file)
                self.assertEqual(planes.tobytes(), array.tobytes())
                self.assertEqual(told["axes"], [1, 4, 1])
                self.assertFalse(told["known"])
                self.assertEqual(len(told["warnings"]), 1)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
