#!/usr/bin/env python3
"""The load figures of scripts/bench-serve.

  serve_report.py parse NAME CLIENTS WRK_OUTPUT [TICKS CLK_TCK]
      one JSON line: requests/s, p50 and p99 in ms, and with the server's clock ticks over the
      run, its CPU time per request in microseconds
  serve_report.py write RESULTS PERFORMANCE_MD CPUS SECONDS NODE RQB_VERSION HANDLER_LOG
      replaces the section "## `brixq serve` under load" of PERFORMANCE_MD (to its end) by the
      table of RESULTS; HANDLER_LOG is brixq serve's request log, whose per-request handling times
      say how much of a request the handler takes.
"""
import json
import os
import re
import statistics
import sys
from pathlib import Path

HEADING = "## `brixq serve` under load"
UNITS = {"us": 1e-3, "ms": 1.0, "s": 1e3}


def milliseconds(text):
    number, unit = re.fullmatch(r"([\d.]+)(us|ms|s)", text).groups()
    return float(number) * UNITS[unit]


def parse(name, clients, wrk_file, ticks=None, clk_tck=None):
    text = Path(wrk_file).read_text()
    rps = float(re.search(r"Requests/sec:\s+([\d.]+)", text).group(1))
    requests = int(re.search(r"(\d+) requests in", text).group(1))
    cpu_us = int(ticks) / int(clk_tck) * 1e6 / requests if ticks and requests else None
    timeouts = re.search(r"timeout (\d+)", text)
    percent = dict(re.findall(r"^\s+(\d+)%\s+(\S+)\s*$", text, re.M))
    print(json.dumps({"server": name, "clients": int(clients), "rps": rps,
                      "p50_ms": milliseconds(percent["50"]), "p99_ms": milliseconds(percent["99"]),
                      "timeouts": int(timeouts.group(1)) if timeouts else 0, "cpu_us": cpu_us}))


def handler_times(log_file):
    times = [float(m) for m in re.findall(r" ([\d.]+)ms POST ", Path(log_file).read_text())]
    if not times:
        return None
    times.sort()
    return statistics.median(times), times[int(len(times) * 0.99)]


def write(results_file, md_file, cpus, seconds, node, rqb, log_file):
    rows = [json.loads(line) for line in Path(results_file).read_text().splitlines() if line]
    by = {(r["server"], r["clients"]): r for r in rows}
    clients = sorted({r["clients"] for r in rows})
    lines = [HEADING, "",
             f"Written by `scripts/bench-serve` from one run on {cpus} CPUs: `wrk` posts the orders "
             f"sample to `POST /api/render` for {seconds} s at each number of connections (wrk itself "
             "runs on the same machine). brixq answers every text of the definition (SQL, WHERE, "
             "full-text request, descriptions, every field's clause list, both parameterized "
             "statements), posted inside JSON and as the document itself (`application/xml`), "
             "and, as the peer does, the SQL alone; the peer, node's `http` module on Node " + node + " with "
             f"react-querybuilder {rqb}, answers `formatQuery(query, 'sql')` of the same filter. "
             "CPU / request is the server process's user and system time over the run divided by "
             "the requests answered: the figure other load on the machine disturbs least.", "",
             "| connections | server | req/s | p50 | p99 | req/s / peer | CPU / request |",
             "|---|---|---|---|---|---|---|"]
    labels = {"brixq": "brixq, every text", "brixq_xml": "brixq, every text, XML body",
              "brixq_sql": "brixq, `parts: [\"sql\"]`", "peer": "peer, `formatQuery(query, 'sql')`"}
    for c in clients:
        peer = by[("peer", c)]
        for server in ("brixq", "brixq_xml", "brixq_sql", "peer"):
            r = by.get((server, c))
            if r:
                cpu = f"{r['cpu_us']:.0f} µs" if r.get("cpu_us") else "-"
                lines.append(f"| {c} | {labels[server]} | {r['rps']:.0f} | {r['p50_ms']:.2f} ms | "
                             f"{r['p99_ms']:.2f} ms | {r['rps'] / peer['rps']:.2f}x | {cpu} |"
                             + (f" ({r['timeouts']} over 10 s)" if r["timeouts"] else ""))
    lines += ["", "Aim: at least 3x the peer's throughput at 64 connections, p99 under 10 ms.", ""]
    handler = handler_times(log_file)
    if handler:
        lines += [f"Inside brixq the handler (reading the body, `LoadXMLDef`, the renders, JSON dump) "
                  f"took {handler[0]:.2f} ms at the median and {handler[1]:.2f} ms at p99 over all "
                  "requests, from the server's request log; the rest of a request's latency is HTTP, "
                  "the kernel and the wait for one of the two CPUs shared with wrk.", ""]
    before = os.environ.get("BENCH_SERVE_LOAD_BEFORE", "?")
    lines += [f"Load average of the machine before the run: {before} (other work on the machine; "
              "wrk and the servers share the two CPUs with it). node answers on one thread, brixq "
              "on as many as there are connections: brixq's advantage at 8 and 64 connections is "
              "the second CPU, as far as wrk and other work leave it free, and the CPU / request "
              "column compares the work itself.", "",
              "Where the time goes (`perf` profiles of the server at 64 connections on this "
              "machine, not part of the script). Answering the SQL alone, about a third of the "
              "server's CPU is the kernel (TCP send and receive, poll, and switching between the "
              "threads that each hold a connection), a third brixq's own code, almost all of it "
              "`LoadXMLDef` reading the 13 KB definition, a fifth the C library's copies and "
              "compares, 7% the allocator (jemalloc), 7% cpp-httplib and 2% simdjson reading the "
              "body. Answering every text adds a 10 KB answer: building, dumping and freeing its "
              "nlohmann-json tree (each field's clause list) is about a quarter of the server's "
              "CPU, computing the clause lists a few percent. The peer parses a 400-byte query and answers "
              "300 bytes, on one thread.", ""]
    text = Path(md_file).read_text() if Path(md_file).exists() else "# Performance\n"
    at = text.find(HEADING)
    head = (text if at < 0 else text[:at]).rstrip("\n") + "\n\n"
    # Only this section is replaced: what other runs wrote after it stays.
    rest = ""
    if at >= 0:
        ends = [i for i in (text.find("\n## ", at + 1), text.find("<!-- python-bench -->", at))
                if i >= 0]
        rest = text[min(ends):].lstrip("\n") if ends else ""
    Path(md_file).write_text(head + "\n".join(lines) + ("\n" + rest if rest else ""))


if __name__ == "__main__":
    if sys.argv[1] == "parse":
        parse(*sys.argv[2:7])
    else:
        write(*sys.argv[2:9])
