#!/usr/bin/env python3
"""Measures the time from the start of `tarno-status save` to the new line of `tarno-status watch`, and to the end of the save.
Prints the medians in milliseconds and their ratio, then the number of wake-ups of a watch with nothing to do.

    bench/watch_bench.py [FOLDER OF THE PROGRAMS] [RUNS]
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time

IDLE = 5


def wake_ups(process):
    """Returns the number of voluntary context switches."""
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        return int(next(line.split()[1] for line in status if line.startswith("voluntary_ctxt_switches")))


def main(program, runs):
    with tempfile.TemporaryDirectory() as folder:
        env = os.environ | {"XDG_DATA_HOME": folder}
        watch = subprocess.Popen([program, "watch", "--json"], env=env, stdout=subprocess.PIPE)
        watch.stdout.readline()
        to_line, to_end = [], []
        for i in range(runs):
            start = time.perf_counter()
            save = subprocess.Popen([program, "save"], env=env, stdin=subprocess.PIPE)
            save.stdin.write(b'{"status": "%s"}' % (b"locked", b"unlocked")[i % 2])
            save.stdin.close()
            watch.stdout.readline()
            to_line.append(time.perf_counter() - start)
            save.wait()
            to_end.append(time.perf_counter() - start)
        line, end = (statistics.median(times) * 1000 for times in (to_line, to_end))
        print(f"watch: a line after {line:.2f} ms, the save ends after {end:.2f} ms, ratio {line / end:.2f}")
        time.sleep(0.2)
        before = wake_ups(watch)
        time.sleep(IDLE)
        print(f"watch: {wake_ups(watch) - before} wake-ups in {IDLE} idle seconds")
        watch.kill()
        watch.communicate()


if __name__ == "__main__":
    main(os.path.join(sys.argv[1] if len(sys.argv) > 1 else "build/release/bin", "tarno-status"),
         int(sys.argv[2]) if len(sys.argv) > 2 else 101)
