#!/usr/bin/python3
"""Plots the lines of bench/batch_check.sh: time and peak memory against blocks, one curve per
shape, on log-log axes. Runs that did not end with exit 0 or 1 are left out.

    bench/batch_check.sh 1000 10000 100000 > runs.txt
    bench/plot_batch.py runs.txt docs/performance-batch.png
"""
import collections
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402


def read_runs(path):
    runs = collections.defaultdict(list)
    with open(path, encoding="utf-8") as f:
        for line in f:
            fields = dict(p.split("=", 1) for p in line.split() if "=" in p)
            if "shape" not in fields or fields.get("exit", "0") not in ("0", "1"):
                continue
            runs[fields["shape"]].append(
                (int(fields["blocks"]), float(fields["seconds"]), float(fields["peak_rss_mb"])))
    return {shape: sorted(points) for shape, points in runs.items()}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    runs = read_runs(sys.argv[1])
    fig, (time_axis, memory_axis) = plt.subplots(1, 2, figsize=(11, 4.5))
    for shape, points in sorted(runs.items()):
        blocks = [p[0] for p in points]
        time_axis.plot(blocks, [p[1] for p in points], marker="o", label=shape)
        memory_axis.plot(blocks, [p[2] for p in points], marker="o", label=shape)
    for axis, label in ((time_axis, "seconds"), (memory_axis, "peak RSS, MB")):
        axis.set_xscale("log")
        axis.set_yscale("log")
        axis.set_xlabel("blocks")
        axis.set_ylabel(label)
        axis.grid(True, which="both", alpha=0.3)
        axis.legend()
    time_axis.set_title("blockara check: time")
    memory_axis.set_title("blockara check: peak memory")
    fig.tight_layout()
    fig.savefig(sys.argv[2], dpi=100)


if __name__ == "__main__":
    main()
