"""What runs of two programs take, and how they compare."""

import os
import statistics
import sys
import tempfile
import time
from pathlib import Path

IN_USE_MIB = 1280  # as much as any case writes


class Measure:
    """What one run took: wall and CPU seconds, peak memory in MiB."""

    def __init__(self, wall, cpu, peak):
        self.wall, self.cpu, self.peak = wall, cpu, peak


def measure(command):
    words = [str(word) for word in command]
    with open(os.devnull, "wb") as sink, tempfile.TemporaryFile() as errors:
        streams = [(os.POSIX_SPAWN_DUP2, sink.fileno(), 1)]
        streams += [(os.POSIX_SPAWN_DUP2, errors.fileno(), 2)]
        began = time.perf_counter()
        child = os.posix_spawnp(words[0], words, os.environ, file_actions=streams)
        _, status, usage = os.wait4(child, 0)
        wall = time.perf_counter() - began
        if status != 0:
            errors.seek(0)
            sys.exit(f"{' '.join(words)}\nfailed:\n{errors.read().decode()}")
    return Measure(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024)


def prepare(outputs, sources):
    """Makes both programs start alike: nothing written before is still on its way to the disk, the
    sources are in memory, and the memory for the new file has just been in use. A virtual machine
    gives memory that lies idle back to its host, and what has to be fetched from there costs more
    than all of the work."""
    remove(outputs)
    os.sync()
    for source in sources:
        with open(source, "rb", buffering=0) as file:
            while file.read(1 << 20):
                pass
    if outputs:
        in_use = outputs[0].with_name("in-use")
        with open(in_use, "wb") as file:
            for _ in range(IN_USE_MIB):
                file.write(bytes(1 << 20))
            os.fsync(file.fileno())
        remove([in_use])


def remove(paths):
    for path in paths:
        path.unlink(missing_ok=True)


def pairs(count, velmora, reference, outputs):
    """The measures of `count` pairs of runs, after one that does not count."""
    words = (Path(str(word).removeprefix("+")) for word in [*velmora[1:], *reference[1:]])
    sources = {word for word in words if os.path.isfile(word) and word not in outputs}
    measured = []
    for i in range(count + 1):
        pair = {}
        # In turn, so that neither always finds what the other has left in memory.
        for which in (0, 1) if i % 2 == 0 else (1, 0):
            prepare(outputs, sources)
            pair[which] = measure((velmora, reference)[which])
        measured.append((pair[0], pair[1]))
    remove(outputs)
    return measured[1:]


def report(name, measured, of):
    ours = [of(pair[0]) for pair in measured]
    theirs = [of(pair[1]) for pair in measured]
    ratios = [our / their for our, their in zip(ours, theirs)]
    peaks = [max(pair[i].peak for pair in measured) for i in (0, 1)]
    print(
        f"{name} ratio {statistics.median(ratios):.3f}"
        f" ({min(ratios):.3f} … {max(ratios):.3f})"
        f" velmora {statistics.median(ours):.3f} reference {statistics.median(theirs):.3f}"
        f" peak {peaks[0]:.1f} / {peaks[1]:.1f}",
        flush=True,
    )


def compare(name, count, velmora, reference, outputs, cpu=True):
    measured = pairs(count, velmora, reference, outputs)
    report(f"{name}-wall", measured, lambda run: run.wall)
    if cpu:
        report(f"{name}-cpu", measured, lambda run: run.cpu)
