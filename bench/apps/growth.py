"""How the cost of each step of a plate grows with the number of its files, which are tiny.

usage: growth.py LUMETRA FOLDER [MOST [LEAST]]    for LEAST files (1,000), ten times as many, and so
                                                  on up to MOST (1,000,000)
"""

import os
import shutil
import subprocess
import sys

LUMETRA, FOLDER = sys.argv[1:3]
MOST = int(sys.argv[3]) if len(sys.argv) > 3 else 1_000_000
PATTERN = "in/{plate}/{well}_{site}_{channel}.pgm"
WELLS = [row + column for row in "ABCDEFGHIJKLMNOP" for column in map("{:02}".format, range(1, 25))]
SITES = 9
PART = 100  # fields of a task

# A step and its command; what a column holds is processor time in microseconds per file.
LIST = ["list", PATTERN, "--channel", "w1=DAPI", "--images", "out/{plate}/{well}_{site}.png",
        "-o", "fields.jsonl", "--overwrite", "--quiet"]
BATCH = ["batch", "--fields", "fields.jsonl", "--settings", "plate.json", "--quiet"]
STEPS = {
    "finding": LIST,
    "measuring": ["levels", "--fields", "fields.jsonl", "-o", "plate.json", "--quiet"],
    "making": BATCH,
    "making, with a log": [*BATCH, "--log", "fields.log", "--overwrite"],
    "resuming": [*BATCH, "--log", "fields.log", "--resume"],
    "gallery": ["gallery", "out", "-o", "index.html", "--log", "fields.log", "--quiet"],
}


def draw(count):
    """Files by their names: each is one of few, linked as often as file systems let."""
    links = 30_000
    pixels = bytes((i * 37 + i // 3) % 251 for i in range(2 * 8 * 8))
    for i in range(count):
        plate, rest = divmod(i, len(WELLS) * SITES)
        name = f"in/P{plate:03}/{WELLS[rest // SITES]}_s{rest % SITES + 1}_w1.pgm"
        if rest == 0:
            os.makedirs(os.path.dirname(name))
        if i % links:
            os.link(original, name)
            continue
        original = name
        with open(name, "wb") as file:
            file.write(b"P5 8 8 65535\n" + pixels)


def run(arguments):
    """Processor time in seconds and peak memory in MiB."""
    process = subprocess.Popen([LUMETRA, *arguments], stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"bench: failed: lumetra {' '.join(arguments)}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


print("processor time in microseconds per file, and peak memory in MiB")
print("| files | " + " | ".join(f"{step} | MiB" for step in STEPS) + " | start of a task, ms | MiB |")
print("|" + "---|" * (2 * len(STEPS) + 3), flush=True)
count = int(sys.argv[4]) if len(sys.argv) > 4 else 1000
while count <= MOST:
    place = f"{FOLDER}/{count}"
    shutil.rmtree(place, ignore_errors=True)
    os.makedirs(place)
    os.chdir(place)
    draw(count)
    print(f"| {count:,} ", end="", flush=True)
    for arguments in STEPS.values():
        seconds, memory = run(arguments)
        print(f"| {seconds / count * 1e6:.1f} | {memory:.0f} ", end="", flush=True)
    parts = count // PART
    seconds, memory = run([*BATCH, "--shard", f"{parts // 2}/{parts}", "--dry-run"])
    print(f"| {seconds * 1e3:.0f} | {memory:.0f} |", flush=True)
    os.chdir(FOLDER)
    shutil.rmtree(place)
    count *= 10
