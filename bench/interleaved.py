#!/usr/bin/env python3
"""Times renaming commands in interleaved rounds: each round makes the files afresh, then runs every command in
turn (the order reversed every other round), so a machine whose speed drifts affects all commands alike. Prints
each command's median and its ratio to the first command's.

Usage: bench/interleaved.py [--read-only] FOLDER_PARENT COUNT ROUNDS NAME=COMMAND...
  {folder} in a command stands for the folder of COUNT files (file_000001.txt ...), made in FOLDER_PARENT.
  --read-only makes the files once, for commands that only read them (previews).
Example: bench/interleaved.py /var/tmp 10000 30 \\
    "loop=build/release/bench/bench_renameloop {folder} _x" \\
    "cli=build/release/src/cli/quillfern-cli rename --yes --do 'append _x' --recursive {folder}" \\
    "mmv=cd {folder} && mmv '*.txt' '#1_x.txt'"
"""
import os
import shutil
import statistics
import subprocess
import sys
import time


def make_files(folder, count):
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    subprocess.run(f"cd '{folder}' && seq -f 'file_%06g.txt' 1 {count} | xargs touch", shell=True, check=True)
    # The disk writes of making (and deleting) the files happen now, not during the timed run.
    subprocess.run(["sync"], check=True)


def main():
    arguments = sys.argv[1:]
    read_only = arguments[:1] == ["--read-only"]
    if read_only:
        arguments = arguments[1:]
    if len(arguments) < 4:
        sys.exit(__doc__)
    parent, count, rounds = arguments[0], int(arguments[1]), int(arguments[2])
    commands = [argument.split("=", 1) for argument in arguments[3:]]
    folder = os.path.join(parent, "quillfern-interleaved")
    times = {name: [] for name, _ in commands}
    try:
        if read_only:
            make_files(folder, count)
        for round_number in range(rounds):
            for name, command in commands if round_number % 2 == 0 else reversed(commands):
                if not read_only:
                    make_files(folder, count)
                start = time.perf_counter()
                subprocess.run(command.replace("{folder}", folder), shell=True, stdout=subprocess.DEVNULL)
                times[name].append(time.perf_counter() - start)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    base = statistics.median(times[commands[0][0]])
    for name, _ in commands:
        median = statistics.median(times[name])
        print(f"{name:<14} median {median * 1000:8.1f} ms  {median / base:5.2f}x  (fastest {min(times[name]) * 1000:.1f} ms)")


if __name__ == "__main__":
    main()
