#!/usr/bin/env python3
"""Frames per second of Plan.stamp called from Python against the library's plan stamping in
C++ alone, on the same plan, in the same run.

    PYTHONPATH=build/default/python /usr/bin/python3 bench/python_stamp.py [block.json] \\
        [--frames 10000000] [--chunk 65536] [--repeat 9]

Both sides stamp the frames in chunks into one reused buffer (a bytearray for Python), so the
ratio is the cost of the calls from Python; the best of --repeat runs is kept on each side.
"""

import argparse
import os
import time

import vrm


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("block", nargs="?", default=os.path.join(here, "..", "examples", "ipv4-udp.json"))
    parser.add_argument("--frames", type=int, default=10_000_000)
    parser.add_argument("--chunk", type=int, default=65536)
    parser.add_argument("--repeat", type=int, default=9)
    args = parser.parse_args()

    plan = vrm.Block.from_json(args.block).plan()
    out = bytearray(args.chunk * plan.frame_length)

    def python_seconds():
        started = time.perf_counter()
        done = 0
        while done < args.frames:
            n = min(args.chunk, args.frames - done)
            plan.stamp(done, n, out)
            done += n
        return time.perf_counter() - started

    def native_seconds():
        return plan._stamp_native(0, args.frames, args.chunk)

    python_best = native_best = float("inf")
    for _ in range(args.repeat):  # interleaved, so that both see the same machine
        native_best = min(native_best, native_seconds())
        python_best = min(python_best, python_seconds())

    python_fps = args.frames / python_best
    native_fps = args.frames / native_best
    print(f"block {os.path.basename(args.block)}: {plan.frame_length}-byte frames, {args.frames} frames, "
          f"chunks of {args.chunk}")
    print(f"C++ plan        {native_fps:14,.0f} frames/s  ({native_best:.3f} s)")
    print(f"Python stamp    {python_fps:14,.0f} frames/s  ({python_best:.3f} s)")
    print(f"ratio Python/C++ {python_fps / native_fps:.3f}x")


if __name__ == "__main__":
    main()
