"""What is read of a file: its fields, its pictures."""

import json
import subprocess

from group import PREVIEWS, Group
from measuring import Measure, compare, measure, remove, report


class Reading(Group):
    def probe(self):
        for source in (self._media.long, self._media.long_ts):
            reference = ["ffprobe", "-v", "error", "-show_format", "-show_streams", source]
            name = f"probe-{source.suffix[1:]}/ffprobe"
            compare(name, 2 * self._count, [self._engine, "probe", source], reference, [])

    def snapshot(self):
        """Later previews in one process against a new process for each picture."""
        for source in (self._media.long, self._media.long_ts):
            first = 100
            picture = self._output(".bmp")
            repeat = [self._engine, "snapshot", source, first, picture, "--repeat", PREVIEWS + 1]
            done = subprocess.run([str(word) for word in repeat], check=True, capture_output=True)
            ours = json.loads(done.stdout)["milliseconds"][1:]
            peak = measure(repeat).peak
            measured = []
            for i, milliseconds in enumerate(ours, start=1):
                reference = ["ffmpeg", "-v", "error", "-y", "-ss", first + i, "-i", source]
                reference += ["-frames:v", 1, "-s", "320x240", picture]
                measured.append([Measure(milliseconds / 1000, 0, peak), measure(reference)])
            remove([picture])
            report(f"snapshot-{source.suffix[1:]}/ffmpeg", measured, lambda run: run.wall)
