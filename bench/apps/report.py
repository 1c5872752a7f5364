"""Measures `lumetra batch` beside the bare reading and writing of its files and a plain program.

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
LEVELS = "200:3200"  # given, so that one pass is measured beside one pass


def run(command):
    """Seconds, seconds of the processors, and peak memory (MiB) of a command."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"bench: failed: {' '.join(command)}")
    return (time.perf_counter() - start, usage.ru_utime + usage.ru_stime,
            usage.ru_maxrss / 1024)


def batch(count, extension):
    data, out = f"{FOLDER}/{count}", f"{FOLDER}/out"
    shutil.rmtree(out, ignore_errors=True)
    return run([LUMETRA, "batch", data + "/{field}_{channel}.tif", "--channel", "dapi=DAPI",
                "--channel", "actin=FITC", "--levels", LEVELS, "--quiet", "--jobs", str(JOBS),
                "-o", out + "/{field}" + extension])


def beside(mode, count, extension):
    out = f"{FOLDER}/out"
    shutil.rmtree(out, ignore_errors=True)
    return run([BENCH, mode, f"{FOLDER}/{count}", str(count), out, extension, str(JOBS)])


def best(measure, *arguments, times=2):
    results = [measure(*arguments) for _ in range(times)]
    return min(results)


few = max(FIELDS // 10, 1)
for size in (few, FIELDS):
    if not os.path.isdir(f"{FOLDER}/{size}"):
        subprocess.run([BENCH, "make", f"{FOLDER}/{size}", str(size)], check=True)

print(f"{FIELDS} fields of 2 x 2048 x 2048 pixels, 16 bits, {JOBS} at once; fields a second, "
      "the better of two runs")
print("| to | lumetra batch | reading and writing alone | share of that | share by processor time "
      f"| plain OpenCV program | MiB for {few} | MiB for {FIELDS} |")
print("|---|---|---|---|---|---|---|---|")
for extension in (".png", ".tif"):
    seconds, work, many = best(batch, FIELDS, extension)
    memory = batch(few, extension)[-1]
    floor, floor_work, _ = best(beside, "floor", FIELDS, extension)
    plain = best(beside, "plain", FIELDS, extension)[0]
    print(f"| {extension[1:].upper()} | {FIELDS / seconds:.1f} | {FIELDS / floor:.1f} "
          f"| {floor / seconds:.2f} | {floor_work / work:.2f} | {FIELDS / plain:.1f} "
          f"| {memory:.0f} | {many:.0f} |")
shutil.rmtree(f"{FOLDER}/out", ignore_errors=True)
