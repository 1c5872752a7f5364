"""Measures the package for Python beside what people write with numpy, scikit-image, OpenCV and
matplotlib, and prints the tables of docs/performance.md.

All ways are called in turn, on one thread, and the smallest processor time of a way counts. Memory
is what a single call takes at its peak beside the images, its result included.
"""

import ctypes
import os
import sys
import time
from concurrent.futures import ThreadPoolExecutor

import cv2
import lumetra
import matplotlib
import numpy as np
from matplotlib.colors import LinearSegmentedColormap, Normalize
from skimage import color, exposure, util

DYES = ["DAPI", "Alexa Fluor 488", "Texas Red"]
COLOURS = [np.array(lumetra.colour(dye)) for dye in DYES]
LIMITS = [(100, 3800), (90, 3000), (120, 3500)]
ROUNDS = 9
M_MMAP_THRESHOLD = -3  # of malloc.h


def specimen(size):
    """Cells on a dark background, 12 bits in 16."""
    random = np.random.default_rng(1)
    y, x = np.mgrid[:size, :size] / size * 40
    images = []
    for phase in range(3):
        light = np.clip(np.sin(x + phase) * np.cos(y - phase), 0, None) ** 2
        photons = random.poisson(60 * light + 2)
        images.append(np.clip(100 + 55 * photons, 0, 4095).astype(np.uint16))
    return images


def with_opencv(images):
    """Each step in as few bits as it needs."""
    total = None
    for image, (low, high), colour in zip(images, LIMITS, COLOURS):
        gray = cv2.convertScaleAbs(cv2.subtract(image, float(low)), alpha=255 / (high - low))
        ramp = np.rint(np.arange(256)[:, None] * colour[::-1] / 255).astype(np.uint8)
        tinted = cv2.applyColorMap(gray, ramp[:, None])
        total = tinted if total is None else cv2.add(total, tinted, dst=total)
    return cv2.cvtColor(total, cv2.COLOR_BGR2RGB)


def with_numpy(images, limits=None):
    total = 0
    for image, (low, high), colour in zip(images, limits or LIMITS, COLOURS):
        share = np.clip((image.astype(np.float32) - low) / (high - low), 0, 1)
        total = total + share[..., None] * colour.astype(np.float32)
    return np.clip(total, 0, 255).astype(np.uint8)


def with_percentiles(images):
    return with_numpy(images, [np.percentile(image, (0.1, 99.9)) for image in images])


def with_scikit_image(images):
    total = 0
    for image, limits, colour in zip(images, LIMITS, COLOURS):
        share = exposure.rescale_intensity(image, in_range=limits, out_range=(0, 1))
        total = total + color.gray2rgb(share) * (colour / 255)
    return util.img_as_ubyte(np.clip(total, 0, 1))


def with_colormaps(images):
    total = 0
    for image, (low, high), colour in zip(images, LIMITS, COLOURS):
        ramp = LinearSegmentedColormap.from_list("dye", ["black", colour / 255])
        total = total + ramp(Normalize(low, high, clip=True)(image))[..., :3]
    return (np.clip(total, 0, 1) * 255).astype(np.uint8)


def lut_with_opencv(image):
    low, high = LIMITS[0]
    gray = cv2.convertScaleAbs(cv2.subtract(image, float(low)), alpha=255 / (high - low))
    return cv2.applyColorMap(gray, cv2.COLORMAP_VIRIDIS)


def lut_with_matplotlib(image):
    shares = Normalize(*LIMITS[0], clip=True)(image)
    return matplotlib.colormaps["viridis"](shares, bytes=True)[..., :3]


def status(name):
    with open("/proc/self/status") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith(name)) / 1024


def peak_of(call):
    """MB that a call takes: in a process of its own, whose allocator keeps nothing for later."""
    reader, writer = os.pipe()
    child = os.fork()
    if child == 0:
        libc = ctypes.CDLL(None)
        libc.mallopt(M_MMAP_THRESHOLD, 65536)
        libc.malloc_trim(0)
        with open("/proc/self/clear_refs", "w") as clear:
            clear.write("5")
        before = status("VmRSS")
        call()
        os.write(writer, str(status("VmHWM") - before).encode())
        os._exit(0)
    os.waitpid(child, 0)
    os.close(writer)
    with os.fdopen(reader) as told:
        return float(told.read())


def measure(ways, rounds=ROUNDS, number=1):
    best = {name: float("inf") for name in ways}
    for call in ways.values():
        call()
    for _ in range(rounds):
        for name, call in ways.items():
            started = time.process_time()
            for _ in range(number):
                call()
            best[name] = min(best[name], (time.process_time() - started) / number)
    return best


def table(title, ways):
    best = measure(ways)
    own = next(iter(best.values()))
    print(f"\n| {title} | ms | × lumetra | MB |\n|---|---|---|---|")
    for name, seconds in best.items():
        memory = peak_of(ways[name])
        print(f"| {name} | {seconds * 1e3:.1f} | {seconds / own:.1f} | {memory:.0f} |", flush=True)


def threads(images, calls=24):
    """How much faster two threads are than one."""

    def render(_):
        return lumetra.merge(images, DYES, contrast_limits=LIMITS)

    times = []
    for workers in (1, 2):
        with ThreadPoolExecutor(workers) as pool:
            list(pool.map(render, range(workers)))
            best = float("inf")
            for _ in range(5):
                started = time.perf_counter()
                list(pool.map(render, range(calls)))
                best = min(best, time.perf_counter() - started)
        times.append(best)
    return times[0] / times[1]


def main(size=2048):
    cv2.setNumThreads(1)
    images = specimen(size)
    table(
        f"three channels of {size} × {size} and 16 bits",
        {
            "lumetra, given limits": lambda: lumetra.merge(images, DYES, contrast_limits=LIMITS),
            "lumetra, measured limits": lambda: lumetra.merge(images, DYES),
            "OpenCV, given limits": lambda: with_opencv(images),
            "numpy, given limits": lambda: with_numpy(images),
            "scikit-image, given limits": lambda: with_scikit_image(images),
            "numpy, percentiles": lambda: with_percentiles(images),
            "matplotlib's colormaps, given limits": lambda: with_colormaps(images),
        },
    )
    table(
        "LUT of one channel",
        {
            "lumetra": lambda: lumetra.apply_lut(images[0], contrast_limits=LIMITS[0]),
            "OpenCV": lambda: lut_with_opencv(images[0]),
            "matplotlib": lambda: lut_with_matplotlib(images[0]),
        },
    )
    stack = np.stack(images * 4)
    table(
        "maximum of 12 planes",
        {"lumetra": lambda: lumetra.project(stack), "numpy": lambda: stack.max(axis=0)},
    )
    small = [image[:64, :64].copy() for image in images[:2]]
    limits = LIMITS[:2]
    calls = {"call": lambda: lumetra.merge(small, DYES[:2], contrast_limits=limits)}
    microseconds = measure(calls, rounds=20, number=500)["call"] * 1e6
    print(f"\nA call with two channels of 64 × 64 takes {microseconds:.0f} µs.")
    print(f"Two threads are {threads(images):.2f} times as fast as one.")


if __name__ == "__main__":
    main(*map(int, sys.argv[1:]))
