"""What the user waits for in the windows."""

import json
import statistics
import subprocess

from group import PREVIEWS, Group
from measuring import Measure, compare, measure, remove, report


class Windows(Group):
    def __init__(self, media, engine, count):
        super().__init__(media, engine, count)
        windows = engine.parents[2] / "bench" / "windows"
        self._windows, self._bare = windows / "velmora-windows", windows / "bare-window"

    def startup(self):
        """From the start of the process to the first painted window."""
        ours = [self._windows, "start"]
        compare("startup/bare-window", 4 * self._count, ours, [self._bare], [])

    def _printed(self, *arguments):
        """What velmora-windows prints."""
        command = [str(word) for word in [self._windows, *arguments]]
        return json.loads(subprocess.run(command, check=True, capture_output=True).stdout)

    def _report_printed(self, name, ours, theirs):
        measured = [
            [Measure(milliseconds / 1000, 0, 0) for milliseconds in pair]
            for pair in zip(ours, theirs)
        ]
        report(name, measured, lambda run: run.wall)

    def load(self):
        """From a drop to the painted preview, against the engine's share of it."""
        for source in (self._media.long, self._media.minute):
            pairs = [
                (self._printed("load", source), self._printed("engine", source))
                for _ in range(2 * self._count + 1)
            ]
            self._report_printed(f"load-{source.stem}/engine", *zip(*pairs[1:]))

    def scrub(self):
        """A move of the bar until its preview is painted, against the engine's later pictures."""
        picture = self._output(".bmp")
        repeat = ["snapshot", self._media.long, 100, picture, "--repeat", PREVIEWS + 1]
        command = [str(word) for word in [self._engine, *repeat]]
        for loads in (1, 20):
            ours = self._printed("scrub", self._media.long, loads, PREVIEWS)
            done = subprocess.run(command, check=True, capture_output=True)
            theirs = json.loads(done.stdout)["milliseconds"]
            self._report_printed(f"scrub-after-{loads}-loads/snapshot", ours[1:], theirs[1:])
        remove([picture])

    def timeline(self):
        """Key frames and sound of two hours, against ffmpeg's decoding of that sound."""
        for source in self._media.two_hours():
            form = source.suffix[1:]
            ours = [self._windows, "timeline", source]
            reference = ["ffmpeg", "-v", "error", "-i", source, "-vn", "-f", "null", "-"]
            compare(f"timeline-{form}/ffmpeg", self._count, ours, reference, [])
            key_frames, sound, size = self._printed("timeline", source)
            print(
                f"timeline-{form} key frames {key_frames / 1000:.3f} s"
                f" sound {sound / 1000:.3f} s, {size / 1024:.2f} MiB"
            )

    def exact_pictures(self):
        """Of the exact preview, until painted: steps, key frames, pictures in the middle of groups
        that have not been decoded, and the times between new pictures while the bar is dragged."""
        for source in (self._media.long, self._media.long_mkv, self._media.long_ts):
            kind = source.suffix[1:]
            self._report_times(f"step-{kind}", self._printed("steps", source, 500, 60))
            self._report_times(f"key-frame-{kind}", self._printed("key-frames", source, 40))
            self._report_times(f"cold-{kind}", self._printed("cold", source, 60, 10))
            self._report_times(f"drag-{kind}", self._printed("drag", source))

    @staticmethod
    def _report_times(name, milliseconds):
        ordered = sorted(milliseconds)
        most = ordered[int(len(ordered) * 0.95)]
        middle = statistics.median(ordered)
        print(f"{name} median {middle:.1f} ms, 95 % {most:.1f} ms, most {ordered[-1]:.1f} ms")

    def loads_memory(self):
        """A hundred loads against ten."""
        ten, hundred = self._printed("memory", self._media.minute)
        print(f"loads-memory after 100 {hundred / 1024:.1f} MiB, after 10 {ten / 1024:.1f} MiB")

    def add(self):
        """Adding 200 files to the joiner, against the probes."""
        files = self._media.small(200)
        pairs = [
            (self._printed("add", *files), self._printed("probe", *files))
            for _ in range(self._count + 1)
        ]
        self._report_printed("add-200/probes", *zip(*pairs[1:]))

    def join_many(self):
        """Two hundred small files, from the press of the button; and 999 against a hundred."""
        files, output = self._media.small(999), self._output(".mp4")
        listed = self._media.list_of(files[:200])
        reference = ["ffmpeg", "-v", "error", "-y", "-f", "concat", "-safe", 0, "-i", listed]
        reference += ["-c", "copy", output]
        measured = []
        for _ in range(2 * self._count + 1):
            milliseconds = self._printed("join", output, *files[:200])
            measured.append((Measure(milliseconds / 1000, 0, 0), measure(reference)))
        report("join-200/ffmpeg", measured[1:], lambda run: run.wall)
        ours = [self._engine, "join", output, *files]
        hundred = [self._engine, "join", output, *files[:100]]
        compare("join-999/join-of-100", self._count, ours, hundred, [output])
