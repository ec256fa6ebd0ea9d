#!/usr/bin/python3
"""Plots the last lines of bench/edit_latency runs against the diagram's size: the edit road's
times, the initial scan, and memory per block, on log-log axes.

    for n in 1000 10000 100000 1000000; do
      build/bench/edit_latency/edit_latency --blocks $n | tail -n 1
    done > latency.txt
    bench/plot_latency.py latency.txt docs/performance-latency.png
"""
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

PANELS = (
    ("one edit, microseconds", (("main_edit_us_p50", "main thread, p50"),
                                ("glow_us_p50", "edit to glow, p50"),
                                ("glow_us_p99", "edit to glow, p99"),
                                ("handoff_us_p50", "bare thread hand-off, p50"))),
    ("initial scan, milliseconds", (("scan_ms", "scan to quiescence"),
                                    ("max_slice_ms", "longest main-thread step"))),
    ("bytes per block", (("engine_bytes_per_block", "engine, per kept block"),
                         ("host_bytes_per_block", "host, per block"))),
)


def read_runs(path):
    runs = []
    with open(path, encoding="utf-8") as f:
        for line in f:
            fields = dict(p.split("=", 1) for p in line.split() if "=" in p)
            if "blocks" in fields:
                runs.append({k: float(v) for k, v in fields.items()})
    return sorted(runs, key=lambda r: r["blocks"])


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    runs = read_runs(sys.argv[1])
    blocks = [r["blocks"] for r in runs]
    fig, axes = plt.subplots(1, len(PANELS), figsize=(15, 4.5))
    for axis, (title, series) in zip(axes, PANELS):
        for key, label in series:
            axis.plot(blocks, [max(r[key], 0.01) for r in runs], marker="o", label=label)
        axis.set_xscale("log")
        axis.set_yscale("log")
        axis.set_xlabel("blocks")
        axis.set_title(title)
        axis.grid(True, which="both", alpha=0.3)
        axis.legend(fontsize="small")
    fig.tight_layout()
    fig.savefig(sys.argv[2], dpi=100)


if __name__ == "__main__":
    main()
