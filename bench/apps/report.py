"""Compares `lumetra batch` with only reading and writing its files, and with a simple program.

usage: report.py LUMETRA FIELDS_BENCH FOLDER [FIELDS]
"""

import os
import shutil
import subprocess
import sys
import time

LUMETRA, BENCH, FOLDER = sys.argv[1:4]
FIELDS = int(sys.argv[4]) if len(sys.argv) > 4 else 200
JOBS = len(os.sched_getaffinity(0))
JOBS_TRIED = sorted({1, JOBS})
LEVELS = "200:3200"  # fixed, so that both sides make one pass


# Memory is kept from image to image, as the command does.
KEEPS_MEMORY = {"GLIBC_TUNABLES": "glibc.malloc.mmap_threshold=33554432:"
                                  "glibc.malloc.trim_threshold=268435456"}


def run(command, more_environment={}):
    """Wall time and processor time in seconds, and peak memory (MiB), of a command."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stderr=subprocess.DEVNULL,
                               env={**os.environ, **more_environment})
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"bench: failed: {' '.join(command)}")
    return (time.perf_counter() - start, usage.ru_utime + usage.ru_stime,
            usage.ru_maxrss / 1024)


def batch(count, extension, jobs=JOBS):
    data, out = f"{FOLDER}/{count}", f"{FOLDER}/out"
    shutil.rmtree(out, ignore_errors=True)
    return run([LUMETRA, "batch", data + "/{field}_{channel}.tif", "--channel", "dapi=DAPI",
                "--channel", "actin=FITC", "--levels", LEVELS, "--quiet", "--jobs", str(jobs),
                "-o", out + "/{field}" + extension])


def keep_image(extension):
    """A copy of one of the last images, for the runs that only write."""
    image = f"{FOLDER}/image{extension}"
    shutil.copy(f"{FOLDER}/out/f1000{extension}", image)
    return image


def beside(mode, count, extension, *image, jobs=JOBS, more_environment={}):
    out = f"{FOLDER}/out"
    shutil.rmtree(out, ignore_errors=True)
    return run([BENCH, mode, f"{FOLDER}/{count}", str(count), out, extension, str(jobs), *image],
               more_environment)


def best(measure, *arguments, times=2, **named):
    results = [measure(*arguments, **named) for _ in range(times)]
    return min(results)


def against_floor(few):
    print(f"{FIELDS} fields of 2 x 2048 x 2048 pixels, 16 bits, {JOBS} at once; fields per second, "
          "the better of two runs")
    print("| output format | lumetra batch | only reading and writing | ratio "
          "| ratio of processor time | simple OpenCV program | MiB for "
          f"{few} | MiB for {FIELDS} |")
    print("|---|---|---|---|---|---|---|---|")
    for extension in (".png", ".tif"):
        seconds, work, many = best(batch, FIELDS, extension)
        memory = batch(few, extension)[-1]
        image = keep_image(extension)
        floor, floor_work, _ = best(beside, "floor", FIELDS, extension, image)
        plain = best(beside, "plain", FIELDS, extension)[0]
        print(f"| {extension[1:].upper()} | {FIELDS / seconds:.1f} | {FIELDS / floor:.1f} "
              f"| {floor / seconds:.2f} | {floor_work / work:.2f} | {FIELDS / plain:.1f} "
              f"| {memory:.0f} | {many:.0f} |", flush=True)


def by_cores(count):
    """The cost of a field, and how it scales with cores."""
    print(f"{count} such fields, by number of cores; processor time in milliseconds per field")
    print("| output format | " + "".join(f"fields per second, {jobs} at once | MiB | " for jobs in JOBS_TRIED)
          + "reading | writing | all else |")
    print("|---|" + "---|---|" * len(JOBS_TRIED) + "---|---|---|")
    for extension in (".png", ".tif"):
        row = []
        for jobs in JOBS_TRIED:
            seconds, work, memory = best(batch, count, extension, jobs)
            row += [f"{count / seconds:.1f}", f"{memory:.0f}"]
            if jobs == 1:
                total = work
        alone = {"jobs": 1, "more_environment": KEEPS_MEMORY}
        image = keep_image(extension)
        reading = best(beside, "read", count, extension, **alone)[1]
        writing = best(beside, "write", count, extension, image, **alone)[1]
        for part in (reading, writing, total - reading - writing):
            row.append(f"{1000 * part / count:.0f}")
        print(f"| {extension[1:].upper()} | " + " | ".join(row) + " |", flush=True)


few, some = max(FIELDS // 10, 1), max(FIELDS // 4, 1)
for size in (few, some, FIELDS):
    if not os.path.isdir(f"{FOLDER}/{size}"):
        subprocess.run([BENCH, "make", f"{FOLDER}/{size}", str(size)], check=True)
against_floor(few)
print()
by_cores(some)
shutil.rmtree(f"{FOLDER}/out", ignore_errors=True)
