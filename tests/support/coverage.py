#!/usr/bin/python3
"""Prints how much of each folder of src/ the tests run, from what gcovr wrote as JSON, and where
they run least."""

import collections
import json
import pathlib
import sys

FEW = 80.0  # per cent of a file's lines


def share(counts):
    run, total = sum(count > 0 for count in counts), len(counts)
    return run, total, 100 * run / max(1, total)


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    files = collections.defaultdict(collections.Counter)
    for file in json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]:
        path = (root / file["file"]).resolve()  # headers are included through links
        for line in file["lines"]:
            if not line["gcovr/noncode"]:
                files[path.relative_to(root)][line["line_number"]] += line["count"]
    folders = collections.defaultdict(list)
    for path, counts in files.items():
        for name in (str(path.parent), "all"):
            folders[name].extend(counts.values())

    print("Lines that were run")
    for name in [*sorted(set(folders) - {"all"}), "all"]:
        print("  {:20}{:7} of {:5}{:7.1f} %".format(name, *share(folders[name])))
    print(f"\nFiles of whose lines less than {FEW:.0f} % were run")
    for path, counts in sorted(files.items()):
        run, total, percent = share(counts.values())
        if percent < FEW:
            print(f"{percent:7.1f} %  {total - run:4} lines not run  {path}")


if __name__ == "__main__":
    main()
