"""Compares `lumetra batch` with other programs that make the same images, and prints the table of
docs/performance.md.

usage: report.py LUMETRA FOLDER [FIELDS [ROUNDS]]

Each field has three channels of 2048 x 2048 and 16 bits, in uncompressed TIFF files in the page
cache, and becomes one PNG file: equal contrast limits, each channel in its colour, and their sum.
All ways take turns, each on one thread; the smallest processor time of a way counts, with all that its processes take.
"""

import os
import shutil
import subprocess
import sys
import time

import cv2
import numpy
import tifffile

HERE = os.path.dirname(os.path.abspath(__file__))
LUMETRA, FOLDER = (os.path.abspath(name) for name in sys.argv[1:3])
ONE_THREAD = {"OMP_NUM_THREADS": "1", "MAGICK_THREAD_LIMIT": "1", "VIPS_CONCURRENCY": "1"}
FIELDS = int(sys.argv[3]) if len(sys.argv) > 3 else 40
ROUNDS = int(sys.argv[4]) if len(sys.argv) > 4 else 3
SIZE = 2048
LOW, HIGH = 200, 3200
COLOURS = {"blue": (0, 107, 255), "green": (29, 255, 0), "red": (255, 64, 0)}


def make_fields():
    """A dim background with spots and the noise of a camera, 12 bits of 16."""
    random = numpy.random.default_rng(1)
    noise = random.normal(0, 15, (SIZE, SIZE)).astype(numpy.float32)
    for field in range(FIELDS):
        for channel in COLOURS:
            light = numpy.full((SIZE, SIZE), 200, numpy.float32)
            for _ in range(150):
                place = [int(v) for v in random.integers(0, SIZE, 2)]
                cv2.circle(light, place, int(random.integers(10, 60)),
                           float(random.integers(500, 3500)), -1)  # fmt: skip
            light = cv2.GaussianBlur(light, (31, 31), 5)
            light += numpy.roll(noise, random.integers(0, SIZE, 2), (0, 1))
            tifffile.imwrite(f"{FOLDER}/data/{name(field)}_{channel}.tif",
                             light.clip(0, 4095).astype(numpy.uint16))  # fmt: skip


def name(field):
    return f"f{field:03}"


def inputs(field):
    return [f"{FOLDER}/data/{name(field)}_{channel}.tif" for channel in COLOURS]


def colour_text(colour):
    return "#%02x%02x%02x" % colour


def by_lumetra(fields, out):
    channels = [f"--channel={channel}={colour_text(c)}" for channel, c in COLOURS.items()]
    names = "\n".join(file for field in fields for file in inputs(field))
    return [([LUMETRA, "batch", f"{FOLDER}/data/{{field}}_{{channel}}.tif", *channels, "--levels",
              f"{LOW}:{HIGH}", "--jobs=1", "--quiet", "--files-from=-", "-o",
              out + "/{field}.png"], names)]  # fmt: skip


def by_python(fields, out):
    arguments = [str(value) for value in (LOW, HIGH)]
    arguments += [colour_text(colour) for colour in COLOURS.values()]
    return [(["/usr/bin/python3", HERE + "/with_opencv.py", out, *arguments,
              *(file for field in fields for file in inputs(field))], None)]  # fmt: skip


def by_vips(fields, out):
    """One command for each step, as its command line has it, with files between them in memory."""
    between = f"/dev/shm/lumetra-peers-{os.getpid()}"
    scale = 255 / (HIGH - LOW)
    for field in fields:
        tints = []
        for i, (file, colour) in enumerate(zip(inputs(field), COLOURS.values())):
            gray, tint = f"{between}-{i}-gray.v", f"{between}-{i}.v"
            yield ["vips", "linear", "--uchar", "--", file, gray, str(scale),
                   str(-LOW * scale)], None  # fmt: skip
            factors = " ".join(str(component / 255) for component in colour)
            yield ["vips", "linear", "--uchar", gray, tint, factors, "0 0 0"], None
            tints.append(tint)
        yield ["vips", "sum", " ".join(tints), between + "-sum.v"], None
        yield ["vips", "cast", between + "-sum.v", between + "-image.v", "uchar"], None
        yield ["vips", "copy", between + "-image.v", f"{out}/{name(field)}.png",
               "--interpretation", "srgb"], None  # fmt: skip
    yield ["sh", "-c", f"rm -f {between}-*"], None


def by_imagemagick(fields, out):
    for field in fields:
        command = ["convert-im6.q16"]
        for i, (file, colour) in enumerate(zip(inputs(field), COLOURS.values())):
            command += ["(", file, "-level", f"{LOW},{HIGH}", "-set", "colorspace", "sRGB",
                        "+level-colors", "#000000," + colour_text(colour), ")"]  # fmt: skip
            if i > 0:
                command += ["-compose", "plus", "-composite"]
        yield [*command, "-depth", "8", f"PNG24:{out}/{name(field)}.png"], None


def by_imagej(fields, out):
    steps = ["setBatchMode(true);"]
    for field in fields:
        for i, (file, colour) in enumerate(zip(inputs(field), COLOURS.values())):
            ramps = ["r", "g", "b"]
            steps.append(f'open("{file}"); setMinAndMax({LOW}, {HIGH}); run("8-bit");')
            for ramp, component in zip(ramps, colour):
                steps.append(f"{ramp} = newArray(256); for (v = 0; v < 256; v++) "
                             f"{ramp}[v] = floor(v * {component} / 255);")  # fmt: skip
            steps.append(f'setLut(r, g, b); run("RGB Color"); rename("c{i}");')
            if i > 0:
                steps.append(f'imageCalculator("Add", "c0", "c{i}");')
        steps.append(f'selectWindow("c0"); saveAs("PNG", "{out}/{name(field)}.png"); close("*");')
    macro = FOLDER + "/macro.ijm"
    with open(macro, "w", encoding="utf-8") as file:
        file.write("\n".join(steps) + "\n")
    # It ends with status 1 whatever it did; whether images are there is seen when they are compared.
    return [(["sh", "-c", f"xvfb-run -a imagej -b '{macro}' || true"], None)]


WAYS = {
    "lumetra batch": by_lumetra,
    "Python: tifffile, OpenCV": by_python,
    "libvips": by_vips,
    "ImageMagick": by_imagemagick,
    "ImageJ": by_imagej,
}


def processor_time(commands):
    """Seconds of processor time of commands and their children."""
    before = os.times()
    for command, standard_input in commands:
        done = subprocess.run(command, input=standard_input, text=True, capture_output=True,
                              env={**os.environ, **ONE_THREAD}, check=False)  # fmt: skip
        if done.returncode != 0:
            sys.exit(f"bench: failed: {' '.join(command)[:200]}\n{done.stdout}{done.stderr}")
    after = os.times()
    return (after.children_user + after.children_system
            - before.children_user - before.children_system)  # fmt: skip


def largest_difference(out, reference):
    """Of any component of any pixel, and the share of components that differ, over all fields."""
    largest, differing, count = 0, 0, 0
    for field in range(FIELDS):
        files = (f"{folder}/{name(field)}.png" for folder in (out, reference))
        ours, other = (cv2.imread(file, cv2.IMREAD_COLOR) for file in files)
        difference = cv2.absdiff(ours, other)
        largest = max(largest, int(difference.max()))
        differing += int(numpy.count_nonzero(difference))
        count += difference.size
    return largest, differing / count


def main():
    os.makedirs(FOLDER + "/data", exist_ok=True)
    if len(os.listdir(FOLDER + "/data")) != FIELDS * len(COLOURS):
        shutil.rmtree(FOLDER + "/data")
        os.makedirs(FOLDER + "/data")
        make_fields()
    outs = {way: f"{FOLDER}/out-{i}" for i, way in enumerate(WAYS)}
    best = {}
    for _ in range(ROUNDS):
        for way, commands in WAYS.items():
            shutil.rmtree(outs[way], ignore_errors=True)
            os.makedirs(outs[way])
            seconds = processor_time(commands(range(FIELDS), outs[way]))
            best[way] = min(best.get(way, seconds), seconds)
            print(f"bench: {way}: {seconds:.2f} s", file=sys.stderr, flush=True)
    reference = outs["lumetra batch"]
    print(f"{FIELDS} fields of 3 x {SIZE} x {SIZE} pixels, 16 bits; {time.strftime('%Y-%m-%d')}")
    print("| program | ms for a field | × lumetra | MB written | largest difference | differing |")
    print("|---|---|---|---|---|---|")
    for way, seconds in best.items():
        written = sum(entry.stat().st_size for entry in os.scandir(outs[way])) / 1e6
        largest, share = largest_difference(outs[way], reference)
        print(f"| {way} | {1000 * seconds / FIELDS:.0f} | {seconds / best['lumetra batch']:.1f} "
              f"| {written:.0f} | {largest} | {100 * share:.1f} % |", flush=True)  # fmt: skip
    for out in outs.values():
        shutil.rmtree(out, ignore_errors=True)


main()
