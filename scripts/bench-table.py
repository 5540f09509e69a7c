#!/usr/bin/env python3
"""Prints Google Benchmark JSON results as one table: case, ours, peer, ratio.

Benchmarks are named "Case/ours" and "Case/<peer>". Throughput is bytes or items per second
when the case reports it, else iterations per second; the ratio is ours / peer, so above 1
means we are faster."""
import json
import sys


def rate(b):
    for key in ("bytes_per_second", "items_per_second"):
        if key in b:
            return b[key], "B/s" if key == "bytes_per_second" else "items/s"
    scale = {"ns": 1e9, "us": 1e6, "ms": 1e3, "s": 1.0}[b.get("time_unit", "ns")]
    return scale / b["real_time"], "ops/s"


def human(value, unit):
    for factor, prefix in ((1e9, "G"), (1e6, "M"), (1e3, "k")):
        if value >= factor:
            return f"{value / factor:.2f} {prefix}{unit}"
    return f"{value:.2f} {unit}"


def main(paths):
    cases = {}
    for path in paths:
        with open(path) as f:
            for b in json.load(f)["benchmarks"]:
                if b.get("run_type") == "aggregate":
                    continue
                case, _, who = b["name"].partition("/")
                cases.setdefault(case, {})[who] = rate(b)
    rows = [("case", "ours", "peer", "ratio")]
    for case, results in cases.items():
        ours = results.get("ours")
        peers = [(w, r) for w, r in results.items() if w != "ours"] or [("-", None)]
        for who, peer in peers:
            rows.append((case,
                         human(*ours) if ours else "-",
                         f"{who}: {human(*peer)}" if peer else "-",
                         f"{ours[0] / peer[0]:.2f}x" if ours and peer else "-"))
    widths = [max(len(r[i]) for r in rows) for i in range(4)]
    for r in rows:
        print("  ".join(c.ljust(w) for c, w in zip(r, widths)).rstrip())


if __name__ == "__main__":
    main(sys.argv[1:])
