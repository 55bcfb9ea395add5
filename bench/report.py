#!/usr/bin/env python3
"""Writes docs/performance.md and docs/performance.png from one run's measurements.

Inputs (all from the same run of scripts/bench): Google Benchmark's JSON (medians of repetitions),
the peer's JSON (bench/peer), and the memory figures of brixq. Each figure is shown with its ratio
to the reference measured in that run.
"""
import json
import os
import subprocess
import sys
from pathlib import Path

SIZES = [1000, 10000, 100000]


def medians(benchmark_json):
    """{(name, arg): cpu seconds per iteration} from the 'median' aggregates."""
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
    result = {}
    for entry in benchmark_json["benchmarks"]:
        if entry.get("aggregate_name") != "median":
            continue
        name, _, arg = entry["run_name"].partition("/")
        result[(name, arg)] = entry["cpu_time"] * scale[entry["time_unit"]]
    return result


def per_condition_ns(times, name, size):
    seconds = times.get((name, str(size)))
    return None if seconds is None else seconds / size * 1e9


def fmt(value, unit="ns"):
    if value is None:
        return "-"
    if unit == "ns" and value >= 1000:
        return f"{value / 1000:.2f} µs"
    return f"{value:.1f} {unit}" if value < 100 else f"{value:.0f} {unit}"


def ratio(a, b):
    return "-" if a is None or b is None or b == 0 else f"{a / b:.2f}x"


def size_table(title, rows, reference_label, target):
    """rows: [(label, [per-size ns]), ...]; the last row is the reference."""
    lines = [f"### {title}", "", "| per condition | " + " | ".join(f"{s // 1000}k" for s in SIZES) + " |",
             "|---|" + "---|" * len(SIZES)]
    for label, values in rows:
        lines.append(f"| {label} | " + " | ".join(fmt(v) for v in values) + " |")
    subject, reference = rows[0][1], rows[-1][1]
    lines.append(f"| ratio to {reference_label} | " +
                 " | ".join(ratio(a, b) for a, b in zip(subject, reference)) + " |")
    lines += ["", f"Target: {target}", ""]
    return lines


WHERE_FLATNESS_NOTE = ("These WHERE figures are not those of the peer table above: there the filter of the peer's mix (String fields, equality, range, starts-with, contains, in-list and null tests, default arguments); here the filter the statement writes for the benchmark's mixed definition (String, Numeric and Date fields in turn, date ranges and relative kinds computed from `Today`, every tenth field linked to another table), with qualified names and the join equalities (`ReturnWHEREConditions(false, nullptr, true)`).")


def flatness_table(times, title, series, note=""):
    lines = [f"### {title}", ""] + ([note, ""] if note else []) + [
             "| per item | " + " | ".join(f"{s // 1000}k" for s in SIZES) + " | 100k / 1k |",
             "|---|" + "---|" * (len(SIZES) + 1)]
    for label, name in series:
        values = [per_condition_ns(times, name, s) for s in SIZES]
        lines.append(f"| {label} | " + " | ".join(fmt(v) for v in values) +
                     f" | {ratio(values[-1], values[0])} |")
    lines += ["", "Target: the cost per condition at 100k within 1.5x of the cost at 1k.", ""]
    return lines


def bandwidth_table(times):
    memcpy = times.get(("BM_Memcpy", ""))
    lines = ["### Base64 (1 MiB)", "", "| operation | time | ratio of bandwidth to `memcpy` |",
             "|---|---|---|"]
    for label, name in [("`memcpy`", "BM_Memcpy"), ("`EncodeB64`", "BM_EncodeB64"),
                        ("`DecodeB64`", "BM_DecodeB64"), ("scalar encode", "BM_EncodeScalarCore"),
                        ("scalar decode", "BM_DecodeScalarCore")]:
        seconds = times.get((name, ""))
        share = "-" if seconds is None or memcpy is None else f"{memcpy / seconds:.2f}"
        lines.append(f"| {label} | {fmt(None if seconds is None else seconds * 1e6, 'µs')} | {share} |")
    lines += ["", "Target: encode and decode each at least 0.2 of `memcpy`'s bandwidth.", ""]
    return lines


def append_table(times):
    def series(name):
        return [per_condition_ns(times, name, s) for s in SIZES]
    builder = series("BM_StringBuilderAppend")
    if all(v is None for v in builder):
        return []
    lines = size_table("String builder (`Append` of short pieces)",
                       [("`StringBuilder::Append`, growing by bumps", builder),
                        ("`std::u16string::operator+=`, reserved", series("BM_U16StringAppendReserved"))],
                       "`std::u16string +=`", "within 1.3x of `std::u16string::operator+=` with a reserved buffer.")
    return [line.replace("per condition", "per append") for line in lines]


def plot(times, out_png, data_file, peer_values):
    """Our lines solid, the references they are measured against dashed beside them."""
    series = [("LoadXMLDef", "BM_LoadXMLDef"), ("SaveXMLDef", "BM_SaveXMLDef"),
              ("ReturnWHEREConditions", "BM_ReturnWHEREConditions"), ("ReturnSQL", "BM_ReturnSQL"),
              ("raw pugixml parse", "BM_RawPugixmlParse"), ("raw pugixml print", "BM_RawPugixmlSave")]
    references = {"raw pugixml parse", "raw pugixml print"}
    with open(data_file, "w") as out:
        for index, size in enumerate(SIZES):
            values = [per_condition_ns(times, name, size) for _, name in series]
            values.append(peer_values[index])
            out.write(f"{size} " + " ".join("NaN" if v is None else f"{v:.3f}" for v in values) + "\n")
    labels = [label for label, _ in series] + ["peer formatQuery (WHERE)"]
    references.add("peer formatQuery (WHERE)")
    plots = ", ".join(
        f"'{data_file}' using 1:{i + 2} with linespoints lw 2 "
        f"{'dt 2 ' if label in references else ''}title '{label}'"
        for i, label in enumerate(labels))
    script = f"""set terminal pngcairo size 900,560 font 'DejaVu Sans,11'
set output '{out_png}'
set title 'Cost per condition against definition size (median of repetitions)'
set xlabel 'conditions in the definition'
set ylabel 'ns per condition'
set logscale xy
set xrange [700:140000]
set grid
set key outside right
plot {plots}
"""
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def main():
    bench_json, peer_json, memory_json, out_md, out_png, data_file = sys.argv[1:7]
    times = medians(json.loads(Path(bench_json).read_text()))
    peer = json.loads(Path(peer_json).read_text())
    memory = json.loads(Path(memory_json).read_text())
    context = json.loads(Path(bench_json).read_text())["context"]

    def series(name):
        return [per_condition_ns(times, name, s) for s in SIZES]

    peer_values = [peer["rules"][str(s)]["median_ns_per_rule"] for s in SIZES]
    lines = ["# Performance", "",
             "Written by `scripts/bench` from one run: every figure below was measured in that run, and "
             "each ratio is to a reference measured beside it. Medians of the repetitions, CPU time.",
             "",
             f"Machine: {context.get('num_cpus')} CPUs at {context.get('mhz_per_cpu')} MHz "
             f"({os.environ.get('BENCH_CPU', 'CPU not given')}), Release build with "
             f"{os.environ.get('BENCH_COMPILER', 'an unnamed compiler')}, date {context.get('date')}.",
             ""]
    lines += size_table("Loading (`LoadXMLDef`)",
                        [("`LoadXMLDef`", series("BM_LoadXMLDef")),
                         ("raw pugixml parse of the same text", series("BM_RawPugixmlParse"))],
                        "the raw parse", "within 3x of the raw parse at every size (aim 2x).")
    lines += size_table("Saving (`SaveXMLDef`)",
                        [("`SaveXMLDef`", series("BM_SaveXMLDef")),
                         ("raw pugixml print of the same document", series("BM_RawPugixmlSave"))],
                        "the raw print", "within 1.5x of the raw print at every size.")
    where = series("BM_ReturnWHEREConditionsPeerMix")
    lines += ["### WHERE against a peer", "",
              f"The peer is {peer['peer']} {peer['version']} on Node {peer.get('node', '')}, timed on a "
              "flat query with the same number of rules and the same mix of equality, range, "
              "starts-with, contains, in-list and null tests.", "",
              "| per condition | " + " | ".join(f"{s // 1000}k" for s in SIZES) + " |",
              "|---|" + "---|" * len(SIZES),
              "| `ReturnWHEREConditions` | " + " | ".join(fmt(v) for v in where) + " |",
              "| peer `formatQuery(query, 'sql')` | " + " | ".join(fmt(v) for v in peer_values) + " |",
              "| peer / library | " + " | ".join(ratio(p, w) for p, w in zip(peer_values, where)) + " |",
              "", "Target: WHERE at least 30x faster per condition than the peer at every size.", ""]
    lines += flatness_table(times, "WHERE and SELECT across sizes",
                            [("`ReturnWHEREConditions`", "BM_ReturnWHEREConditions"),
                             ("`ReturnSQL`", "BM_ReturnSQL")],
                            WHERE_FLATNESS_NOTE)
    lines += flatness_table(times, "Collection indexes under edits",
                            [("a rename between lookups", "BM_RenameBetweenLookups"),
                             ("a value set after each addition", "BM_AddThenSetValue"),
                             ("conditions with one duplicate key", "BM_EqualDuplicateKeys")])
    lines += bandwidth_table(times)
    lines += append_table(times)
    lines += ["### Memory", "",
              "| | |", "|---|---|",
              f"| document of {memory['conditions']} conditions | {memory['document_bytes'] / 1e6:.1f} MB |",
              f"| peak memory of `brixq where` on it | {memory['peak_rss_kb'] / 1e3:.1f} MB |",
              f"| ratio to the document | {memory['peak_rss_kb'] * 1024 / memory['document_bytes']:.2f}x |",
              "", "Target: under 6x the document's size.", "",
              "### Cost per condition against size", "", "![cost per condition](performance.png)", ""]
    Path(out_md).write_text("\n".join(lines))
    plot(times, out_png, data_file, peer_values)


if __name__ == "__main__":
    main()
