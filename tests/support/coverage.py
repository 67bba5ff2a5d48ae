#!/usr/bin/python3
"""Prints how much of each folder of src/ the tests run, from gcovr's summary, and where they run
least."""

import collections
import json
import pathlib
import sys

FEW = 80.0  # per cent of a file's lines


def main():
    files = json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]
    folders = collections.defaultdict(lambda: [0, 0, 0, 0])
    for file in files:
        for name in (str(pathlib.Path(file["filename"]).parent), "all"):
            counts = folders[name]
            counts[0] += file["line_covered"]
            counts[1] += file["line_total"]
            counts[2] += file["branch_covered"]
            counts[3] += file["branch_total"]
    print(f"{'':28}{'lines':>16}{'':9}{'branches':>16}")
    for name in [*sorted(set(folders) - {"all"}), "all"]:
        lines, all_lines, branches, all_branches = folders[name]
        print(f"{name:28}{lines:>7} of {all_lines:>5}{100 * lines / all_lines:6.1f} %"
              f"{branches:>10} of {all_branches:>5}{100 * branches / max(1, all_branches):6.1f} %")
    poor = sorted((file["line_percent"] or 0, file["line_total"] - file["line_covered"],
                   file["filename"])
                  for file in files if (file["line_percent"] or 0) < FEW and file["line_total"])
    if poor:
        print(f"\nFiles of whose lines less than {FEW:.0f} % were run")
        for percent, missed, name in poor:
            print(f"{percent:7.1f} %  {missed:4} lines not run  {name}")


if __name__ == "__main__":
    main()
