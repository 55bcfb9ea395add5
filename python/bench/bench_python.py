#!/usr/bin/env python3
"""Times the library through the Python module against the same calls in C++, and writes the
figures as the "From Python" section of the performance report (replacing that section alone).

    bench_python.py REFERENCE_BENCH EXAMPLES_DIR PERFORMANCE_MD

REFERENCE_BENCH is the Google Benchmark program python_reference_bench (one ReturnSQL and one
parameterized statement on the orders sample). The module must be importable (PYTHONPATH).
"""

import concurrent.futures
import json
import os
import re
import statistics
import subprocess
import sys
import time
import timeit
from pathlib import Path

import brixobjects4 as brix

REPETITIONS = 5
DEFINITIONS = 10_000
BEGIN, END = "<!-- python-bench -->", "<!-- /python-bench -->"


def cpp_medians(program):
    """{benchmark name: median CPU ns per call} from the reference program."""
    done = subprocess.run([program, f"--benchmark_repetitions={REPETITIONS}",
                           "--benchmark_report_aggregates_only=true", "--benchmark_format=json"],
                          check=True, capture_output=True, text=True)
    scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    return {entry["run_name"]: entry["cpu_time"] * scale[entry["time_unit"]]
            for entry in json.loads(done.stdout)["benchmarks"]
            if entry.get("aggregate_name") == "median"}


def python_ns(call, number):
    """Median over the repetitions of the process CPU time per call, in ns."""
    timer = timeit.Timer(call, timer=time.process_time)
    return statistics.median(timer.repeat(REPETITIONS, number)) / number * 1e9


def definitions(orders_text):
    """10,000 distinct definitions: the orders sample under other names and operand values."""
    texts = []
    for n in range(DEFINITIONS):
        text = orders_text.replace("Comenzi martie 2024", f"Comenzi {n}")
        texts.append(text.replace("<Value>2</Value>", f"<Value>{n % 50 + 1}</Value>").encode())
    return texts


def render(text):
    return brix.Query.load(text).sql()


def render_all(texts, threads):
    """Wall-clock and CPU seconds to load and render every text, on `threads` threads."""
    start, cpu_start = time.perf_counter(), time.process_time()
    if threads == 1:
        results = [render(text) for text in texts]
    else:
        with concurrent.futures.ThreadPoolExecutor(threads) as pool:
            results = list(pool.map(render, texts, chunksize=256))
    elapsed, cpu = time.perf_counter() - start, time.process_time() - cpu_start
    assert len(set(results)) > 1
    return elapsed, cpu


def section(cpp, python, batch, load):
    sql_ratio = python["sql"] / cpp["BM_OrdersSql"]
    param_ratio = python["parameterized"] / cpp["BM_OrdersParameterized"]
    one, two = batch
    return "\n".join([
        BEGIN,
        "### From Python",
        "",
        "Measured by `python/bench/bench_python.py` (run by `scripts/bench`): the module built "
        "in Release, Debian's Python, medians of "
        f"{REPETITIONS} repetitions of CPU time; the C++ figures from `python_reference_bench` "
        f"in the same run. {os.cpu_count()} CPUs, load average {load:.1f} when the run began "
        "(the machine is shared: the two-thread figure only shows a gain on idle cores; CPU time "
        "over wall clock shows how much of the run the two threads overlapped).",
        "",
        "| one call on the orders sample | C++ | Python | Python / C++ |",
        "|---|---|---|---|",
        f"| `sql()` / `ReturnSQL` | {cpp['BM_OrdersSql'] / 1000:.2f} µs | "
        f"{python['sql'] / 1000:.2f} µs | {sql_ratio:.2f}x |",
        f"| `parameterized(\"postgresql\")` / `ReturnParameterizedSQL` | "
        f"{cpp['BM_OrdersParameterized'] / 1000:.2f} µs | "
        f"{python['parameterized'] / 1000:.2f} µs | {param_ratio:.2f}x |",
        "",
        f"| {DEFINITIONS:,} definitions loaded and rendered (`Query.load(text).sql()`) | "
        "wall clock | per definition | CPU time / wall clock |",
        "|---|---|---|---|",
        f"| 1 thread | {one[0]:.2f} s | {one[0] / DEFINITIONS * 1e6:.0f} µs | "
        f"{one[1] / one[0]:.2f} |",
        f"| 2 threads (the GIL released while loading and rendering) | {two[0]:.2f} s | "
        f"{two[0] / DEFINITIONS * 1e6:.0f} µs | {two[1] / two[0]:.2f} |",
        "",
        "The difference from C++ is the call's crossing: argument checks, the GIL released "
        "and taken again, and the text converted to a Python `str`.",
        END,
    ])


def main(program, examples, performance_md):
    load = os.getloadavg()[0]
    orders = (Path(examples) / "orders.xml").read_text(encoding="utf-8")
    cpp = cpp_medians(program)
    query = brix.Query.load(orders)
    python = {"sql": python_ns(query.sql, 20_000),
              "parameterized": python_ns(lambda: query.parameterized("postgresql"), 10_000)}
    texts = definitions(orders)
    batch = (render_all(texts, 1), render_all(texts, 2))
    text = section(cpp, python, batch, load)
    doc = Path(performance_md)
    current = doc.read_text(encoding="utf-8") if doc.exists() else "# Performance\n"
    pattern = re.compile(re.escape(BEGIN) + ".*?" + re.escape(END), re.S)
    if pattern.search(current):
        current = pattern.sub(lambda _: text, current)
    else:
        current = current.rstrip("\n") + "\n\n" + text + "\n"
    doc.write_text(current, encoding="utf-8")
    print(text)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
