"""The Python module's timings, run by `make bench`: synthesis of 60 s of varying frames at
22050 Hz against the synthesis driver's own time in bench_synthesis, the same synthesis in two
threads at once, and `import tessaphon`. Medians of several runs; figures on a shared machine
move with its load.

    PYTHONPATH=build/python /usr/bin/python3 bench/python_bench.py build
"""

import json
import math
import os
import statistics
import subprocess
import sys
import threading
import time
from pathlib import Path

import tessaphon

SECONDS = 60
INTERVAL_MS = 10
FRAMES = SECONDS * 1000 // INTERVAL_MS
RUNS = 5


def speech_like_document():
    """bench_synthesis's document: frame k (1-based) in grid frame k - 1, syllables of 250 ms."""
    doc = tessaphon.Document.new(length_ms=SECONDS * 1000 + INTERVAL_MS, sample_rate=22050)
    p, n = doc.params, doc.names.index
    for k in range(1, FRAMES + 1):
        row = p[k - 1]
        phase, t = k % 25, k * 0.01
        glide = 0.5 + 0.5 * math.sin(t * 5.3)
        row[n("f0")] = int(1150 + 250 * math.sin(t * 1.7) + 60 * math.sin(t * 9.1))
        row[n("f1")] = int(300 + 450 * glide)
        row[n("f2")] = int(900 + 1300 * (0.5 + 0.5 * math.sin(t * 3.1)))
        row[n("f3")] = int(2300 + 600 * (0.5 + 0.5 * math.sin(t * 2.3)))
        row[n("b1")] = 60 + (k % 7) * 5
        row[n("b2")] = 90 + (k % 5) * 10
        if phase < 4:
            row[n("av")], row[n("af")], row[n("ah")] = 0, 50 + phase * 3, 40
            row[n("a4f")], row[n("a5f")], row[n("ab")] = 55, 60, 30
        else:
            row[n("av")] = 45 + 5 * phase if phase < 7 else 60 - (4 * (phase - 20) if phase > 20 else 0)
            row[n("ah")] = 35 if phase > 20 else 0
    return doc


def median_time(work, runs=RUNS):
    """Median wall time and median process CPU time of `work`, in seconds."""
    wall, cpu = [], []
    for _ in range(runs):
        start, start_cpu = time.perf_counter(), time.process_time()
        work()
        wall.append(time.perf_counter() - start)
        cpu.append(time.process_time() - start_cpu)
    return statistics.median(wall), statistics.median(cpu)


def engine_time(build):
    """Median real and CPU time of bench_synthesis's synthesis from the grid at 22050 Hz, in seconds."""
    tool = Path(build) / "bin" / "bench_synthesis"
    if not tool.exists():
        return None
    out = subprocess.run([str(tool), "--benchmark_filter=BM_SynthesizeFromGrid/22050",
                          f"--benchmark_repetitions={RUNS}", "--benchmark_format=json"],
                         capture_output=True, text=True, check=True).stdout
    for b in json.loads(out)["benchmarks"]:
        if b.get("aggregate_name") == "median":
            return b["real_time"] / 1000.0, b["cpu_time"] / 1000.0  # ms
    return None


def two_threads(docs):
    threads = [threading.Thread(target=tessaphon.synthesize, args=(d,)) for d in docs]
    for t in threads:
        t.start()
    for t in threads:
        t.join()


def import_time():
    code = "import time; t = time.perf_counter(); import tessaphon; print(time.perf_counter() - t)"
    runs = [float(subprocess.run([sys.executable, "-c", code], capture_output=True, text=True,
                                 check=True).stdout) for _ in range(7)]
    return statistics.median(runs)


def report(name, value, target, limit):
    verdict = "met" if value <= limit else "NOT met"
    print(f"{name:<44} {value:8.3f} {target:<24} {verdict}")


def main():
    build = sys.argv[1] if len(sys.argv) > 1 else "build"
    print(f"load average {os.getloadavg()[0]:.1f} on {os.cpu_count()} cores")
    doc = speech_like_document()
    one, one_cpu = median_time(lambda: tessaphon.synthesize(doc))
    copies = [doc.copy(), doc.copy()]
    both, both_cpu = median_time(lambda: two_threads(copies))
    engine = engine_time(build)
    print(f"{'case':<44} {'seconds':>8} target")
    print(f"{'synthesize, 60 s at 22050 Hz':<44} {one:8.3f} (CPU {one_cpu:.3f} s, realtime x{SECONDS / one:.0f})")
    print(f"{'two threads at once, wall':<44} {both:8.3f} (CPU {both_cpu:.3f} s for both)")
    if engine:
        print(f"{'bench_synthesis, the same from the grid':<44} {engine[0]:8.3f} (CPU {engine[1]:.3f} s)")
        report("  ratio module / engine, wall", one / engine[0], "<= 1.10", 1.10)
        report("  ratio module / engine, CPU", one_cpu / engine[1], "<= 1.10", 1.10)
    report("two threads at once / one (ratio)", both / one, "<= 1.25", 1.25)
    report("import tessaphon (s)", import_time(), "<= 0.100", 0.100)
    print(f"load average {os.getloadavg()[0]:.1f}")


if __name__ == "__main__":
    main()
