"""Measures `render` and prints everything as one table. Called by scripts/bench.

Usage: report.py FOLDER CLI, with FOLDER holding stages.json and slowest.txt of quorbel-bench.
"""

import array
import json
import os
import random
import struct
import sys
import time

RATE = 48000

SETTINGS = {
    "bands": [{"frequency": 31.25 * 2**i, "gainDB": 3 if i % 2 == 0 else -3} for i in range(10)],
    "spatial": {
        "widenerEnabled": True, "widthPercent": 130, "xtcEnabled": True, "xtcAmount": 50,
        "xtcNotchFrequency": 2000, "reverbEnabled": True, "reverbMix": 15,
        "reverbPreset": "mediumHall", "bassEnabled": True, "bassAdaptiveEnabled": True,
        "voiceEnabled": True, "voiceAdaptiveEnabled": True,
        "toneBassDB": 2, "toneMidDB": -1, "toneTrebleDB": 1,
    },
    "mixer": {
        "saturationEnabled": True, "crossfeedEnabled": True, "autoGainEnabled": True,
        "manualLoudnessEnabled": True, "manualLoudnessDB": 1,
    },
    "presets": [],
}


def write_noise(path, seconds):
    """Writes a stereo WAV file of 32-bit floats: noise that fades out once per second."""
    source = random.Random(1)
    second = array.array("f", (source.uniform(-0.5, 0.5) * (1 - (i // 2) / RATE)
                               for i in range(2 * RATE))).tobytes()
    size = len(second) * seconds
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", size + 36) + b"WAVEfmt ")
        file.write(struct.pack("<IHHIIHH", 16, 3, 2, RATE, 8 * RATE, 8, 32))
        file.write(b"data" + struct.pack("<I", size))
        for _ in range(seconds):
            file.write(second)


def run(command):
    """Returns wall seconds, user seconds and peak memory in KiB of one run."""
    start = time.monotonic()
    process = os.posix_spawn(command[0], command, os.environ)
    _, status, usage = os.wait4(process, 0)
    if status != 0:
        sys.exit("failed: " + " ".join(command))
    return time.monotonic() - start, usage.ru_utime, usage.ru_maxrss


def render(cli, folder, seconds, runs):
    """Returns the minimum over several runs of each figure of `run`."""
    files = [os.path.join(folder, name) for name in ("in.wav", "out.wav", "settings.json")]
    write_noise(files[0], seconds)
    with open(files[2], "w", encoding="utf-8") as file:
        json.dump(SETTINGS, file)
    results = [run([cli, "render", "--settings", files[2], files[0], files[1]])
               for _ in range(runs)]
    return [min(figures) for figures in zip(*results)]


def main():
    folder, cli = sys.argv[1:]
    with open(os.path.join(folder, "stages.json"), encoding="utf-8") as file:
        entries = json.load(file)["benchmarks"]
    stages = {}
    for entry in entries:
        if entry.get("aggregate_name") == "least" and "per_frame" in entry:
            name, frames = entry["run_name"].split("/")[:2]
            stages.setdefault(name, {})[frames] = entry["per_frame"] * 1e9
    print(f"{'ns per stereo frame, in blocks of':<36}{'64':>8}{'512':>8}{'4096':>8}")
    for name, costs in stages.items():
        print(f"{name:<36}" + "".join(f"{costs[n]:8.2f}" for n in ("64", "512", "4096")))

    with open(os.path.join(folder, "slowest.txt"), encoding="utf-8") as file:
        print("\n" + file.read(), end="")

    wall, user, memory = render(cli, folder, 300, 5)
    short, _, _ = render(cli, folder, 1, 20)
    print(f"\nrender, everything on, 5 minutes: {user / 300 / RATE * 1e9:.1f} ns per frame of the "
          f"processor, {wall / 300 / RATE * 1e9:.1f} in all; {300 / wall:.0f} x real time; "
          f"peak memory {memory / 1024:.1f} MiB")
    print(f"render, everything on, 1 second: {short * 1000:.1f} ms")


if __name__ == "__main__":
    main()
