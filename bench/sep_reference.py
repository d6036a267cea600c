#!/usr/bin/python3
"""Times source extraction by SEP on the plane that stars_bench left behind: sep_reference.py PLANE REPETITIONS

Prints a result in the form of the benchmark programs. Background and extraction at three sigma, on one thread. The
system's interpreter is named above, because the module is a package of the system.
"""

import json
import statistics
import sys
import time

import numpy
import sep


def extract(plane):
    background = sep.Background(plane)
    return sep.extract(plane - background.back(), 3.0, err=background.globalrms)


def main():
    path, repetitions = sys.argv[1], int(sys.argv[2])
    with open(path, "rb") as file:
        width, height = map(int, file.readline().split())
        plane = numpy.frombuffer(file.read(), dtype=numpy.float32).reshape(height, width).copy()
    sep.set_extract_pixstack(20_000_000)
    found = len(extract(plane))
    times = []
    for _ in range(repetitions):
        start = time.process_time()
        extract(plane)
        times.append(time.process_time() - start)
    median = statistics.median(times)
    print(f"SEP {sep.__version__} finds {found} sources", file=sys.stderr)
    row = {"name": "detectstars_sep_median", "time_unit": "ms", "cpu_time": median * 1e3, "items_per_second": width * height / median}
    print(json.dumps({"benchmarks": [row]}))


if __name__ == "__main__":
    main()
