"""Turns the benchmark's JSON into a table on the terminal or a bar chart."""

import argparse
import collections
import html
import json
import statistics
import sys

Row = collections.namedtuple(
    "Row", "operation side milliseconds memcpy memcpy_aim opencv opencv_aim growth extra_bytes")

# A pixel of the largest images may cost this many times one of 2048².
GROWTH_AIM = 1.6


def rows(document):
    """One row for each operation and side, from the medians of the repetitions."""
    times, counters = collections.defaultdict(list), {}
    for run in document["benchmarks"]:
        if run["run_type"] == "iteration":
            key = tuple(run["run_name"].rsplit("/", 2))
            times[key].append(run["cpu_time"])
            counters[key] = run
    median = {key: statistics.median(values) for key, values in times.items()}
    operations = sorted({(op, int(side)) for op, way, side in median}, key=lambda k: (k[1], k[0]))
    for operation, side in operations:
        def ratio(way):
            rival = median.get((operation, way, str(side)))
            return median[mine] / rival if rival else None
        mine = (operation, "lumetra", str(side))
        own = counters[mine]
        usual = median.get((operation, "lumetra", "2048"))
        growth = median[mine] / usual * (2048 / side) ** 2 if usual and side == 8192 else None
        yield Row(operation, side, median[mine], ratio("memcpy"), own["memcpyAim"],
                  ratio("opencv"), own["openCvAim"], growth, own["peakBytes"])


def shown_ratio(ratio, aim):
    if ratio is None:
        return ""
    if not aim:
        return f"{ratio:.2f}"
    return f"{ratio:.2f} (≤ {aim:g}{'' if ratio <= aim else ', MISSED'})"


def print_table(table):
    print(f"{'operation':44}{'side':>5}{'ms':>10}{'Mpixel/s':>10}{'× memcpy':>20}"
          f"{'× OpenCV way':>22}{'× a 2048² pixel':>24}{'extra MiB':>11}")
    for row in table:
        usual = row.side == 2048
        opencv_aim = row.opencv_aim if usual else 1
        print(f"{row.operation:44}{row.side:5}{row.milliseconds:10.3f}"
              f"{row.side ** 2 / row.milliseconds / 1e3:10.0f}"
              f"{shown_ratio(row.memcpy, usual and row.memcpy_aim):>20}"
              f"{shown_ratio(row.opencv, opencv_aim):>22}"
              f"{shown_ratio(row.growth, GROWTH_AIM):>24}"
              f"{row.extra_bytes / 2 ** 20:11.2f}")


def plot(table, path):
    """Bars of the time relative to the two alternatives at 2048², shorter is better."""
    table = [row for row in table if row.side == 2048]
    left, scale, step = 330, 160, 46
    height = 70 + step * len(table)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="900" height="{height}" '
             f'viewBox="0 0 900 {height}" font-family="sans-serif" font-size="13"><rect width="100%" height="100%" '
             'fill="white"/>',
             f'<text x="{left}" y="22">time at 2048 × 2048, relative to '
             '(shorter is better)</text>',
             f'<rect x="{left}" y="32" width="12" height="12" fill="#4c78a8"/>'
             f'<text x="{left + 18}" y="43">a memcpy of the same bytes</text>'
             f'<rect x="{left + 230}" y="32" width="12" height="12" fill="#f58518"/>'
             f'<text x="{left + 248}" y="43">the same job with OpenCV calls</text>',
             f'<line x1="{left + scale}" x2="{left + scale}" y1="52" y2="{height - 8}" '
             'stroke="#999" stroke-dasharray="4 3"/>']
    for number, row in enumerate(table):
        y = 58 + step * number
        parts.append(f'<text x="{left - 10}" y="{y + 20}" text-anchor="end">'
                     f'{html.escape(row.operation)}, {row.milliseconds:.2f} ms</text>')
        for offset, ratio, colour in ((0, row.memcpy, "#4c78a8"), (17, row.opencv, "#f58518")):
            # A ratio beyond the edge (decoding files, against a copy) is useless as a bar.
            if ratio is not None and ratio < 3.2:
                parts.append(f'<rect x="{left}" y="{y + offset}" width="{ratio * scale:.1f}" '
                             f'height="15" fill="{colour}"/><text x="{left + ratio * scale + 6:.1f}"'
                             f' y="{y + offset + 12}">{ratio:.2f}</text>')
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(parts) + "\n</svg>\n")
    print(f"drawn: {path}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("json")
    parser.add_argument("--plot", metavar="FILE.svg")
    options = parser.parse_args()
    with open(options.json, encoding="utf-8") as file:
        table = list(rows(json.load(file)))
    if options.plot:
        plot(table, options.plot)
    else:
        print_table(table)


if __name__ == "__main__":
    sys.exit(main())
