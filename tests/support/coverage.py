#!/usr/bin/python3
"""Prints how much of each folder of src/ the tests run, from what gcovr wrote as JSON, and where
they run least."""

import collections
import json
import pathlib
import sys

FEW = 80.0  # per cent of a file's lines


class Counts:
    def __init__(self):
        self.lines = {}
        self.branches = {}

    def add(self, line):
        number = line["line_number"]
        self.lines[number] = self.lines.get(number, 0) + line["count"]
        for place, branch in enumerate(line["branches"]):
            key = (number, place)
            self.branches[key] = self.branches.get(key, 0) + branch["count"]


def share(counts):
    run, total = sum(count > 0 for count in counts), len(counts)
    return run, total, 100 * run / max(1, total)


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    files = collections.defaultdict(Counts)
    for file in json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]:
        path = (root / file["file"]).resolve()  # headers are included through links
        for line in file["lines"]:
            if not line["gcovr/noncode"]:
                files[path.relative_to(root)].add(line)
    folders = collections.defaultdict(lambda: ([], []))
    for path, counts in files.items():
        for name in (str(path.parent), "all"):
            folders[name][0].extend(counts.lines.values())
            folders[name][1].extend(counts.branches.values())

    print(f"{'':22}{'lines':>16}{'':10}{'branches':>15}")
    for name in [*sorted(set(folders) - {"all"}), "all"]:
        print("{:22}{:7} of {:5}{:6.1f} %".format(name, *share(folders[name][0])),
              "{:7} of {:5}{:6.1f} %".format(*share(folders[name][1])))
    print(f"\nFiles of whose lines less than {FEW:.0f} % were run")
    for path, counts in sorted(files.items()):
        run, total, percent = share(counts.lines.values())
        if percent < FEW:
            print(f"{percent:7.1f} %  {total - run:4} lines not run  {path}")


if __name__ == "__main__":
    main()
