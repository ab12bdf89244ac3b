#!/usr/bin/env python3
"""Prints line and branch coverage totals per source folder from gcovr's JSON summary."""
import json
import sys
from collections import defaultdict


def main(path):
    with open(path, encoding="utf-8") as f:
        summary = json.load(f)
    totals = defaultdict(lambda: [0, 0, 0, 0])
    for entry in summary["files"]:
        folder = entry["filename"].split("/", 1)[0]
        t = totals[folder]
        t[0] += entry["line_covered"]
        t[1] += entry["line_total"]
        t[2] += entry["branch_covered"]
        t[3] += entry["branch_total"]

    def pct(a, b):
        return f"{100.0 * a / b:5.1f}%" if b else "    -"

    print(f"{'folder':<14}{'lines':>18}{'branches':>20}")
    for folder in sorted(totals):
        lc, lt, bc, bt = totals[folder]
        print(f"{folder:<14}{lc:>7}/{lt:<6}{pct(lc, lt)}{bc:>8}/{bt:<6}{pct(bc, bt)}")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "build-coverage/coverage.json")
