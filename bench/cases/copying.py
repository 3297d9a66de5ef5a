"""Cuts and joins that copy packets."""

from group import Group
from measuring import compare, measure
from media import MINUTES

END = MINUTES * 60  # of the cuts, seconds
START = END // 20


class Copying(Group):
    def _cut(self, source, start=None, end=None):
        start = START if start is None else start
        end = END if end is None else end
        return [self._engine, "cut", source, start, end, self._output(source.suffix)]

    def cut_mp4(self):
        source, output = self._media.long, self._output(".mp4")
        reference = ["ffmpeg", "-v", "error", "-y", "-ss", START, "-i", source]
        reference += ["-c", "copy", output]
        compare("cut-mp4/ffmpeg", self._count, self._cut(source), reference, [output])

    def cut_mkv(self):
        source, output = self._media.long_mkv, self._output(".mkv")
        part = f"parts:{START}s-{END}s"
        reference = ["mkvmerge", "-q", "-o", output, "--split", part, source]
        numbered = output.with_name("output-001.mkv")
        compare("cut-mkv/mkvmerge", self._count, self._cut(source), reference, [output, numbered])

    def cut_cp(self):
        for source in (self._media.long, self._media.long_mkv):
            output = self._output(source.suffix)
            measure(self._cut(source))
            part = self._media.head_of(source, output.stat().st_size)
            name = f"cut-{source.suffix[1:]}/cp"
            reference = ["cp", part, output]
            compare(name, self._count, self._cut(source), reference, [output], cpu=False)

    def cut_memory(self):
        source, output = self._media.long, self._output(".mp4")
        tenth = self._cut(source, end=START + (END - START) // 10)
        compare("cut-mp4/cut-of-a-tenth", self._count, self._cut(source), tenth, [output])

    def exact_mp4(self):
        self._exact(self._media.long)

    def exact_mkv(self):
        self._exact(self._media.long_mkv)

    def _exact(self, source):
        """With both ends between key frames, against a copy of the same stretch."""
        output = self._output(source.suffix)
        exact = [*self._cut(source, START + 0.3, END - 0.3), "--exact"]
        reference = ["ffmpeg", "-v", "error", "-y", "-ss", START + 0.3, "-to", END - 0.3, "-i", source]
        reference += ["-c", "copy", output]
        compare(f"exact-{source.suffix[1:]}/ffmpeg", self._count, exact, reference, [output])

    def join_mp4(self):
        self._join_ffmpeg(self._media.copies(self._media.minute))

    def join_mkv(self):
        files = self._media.copies(self._media.minute_mkv)
        self._join_ffmpeg(files)
        output = self._output(".mkv")
        appended = [files[0], *(f"+{file}" for file in files[1:])]
        reference = ["mkvmerge", "-q", "-o", output, *appended]
        join = [self._engine, "join", output, *files]
        compare("join-mkv/mkvmerge", self._count, join, reference, [output])

    def _join_ffmpeg(self, files):
        output = self._output(files[0].suffix)
        listed = self._media.list_of(files)
        reference = ["ffmpeg", "-v", "error", "-y", "-f", "concat", "-safe", 0, "-i", listed]
        reference += ["-c", "copy", output]
        name = f"join-{output.suffix[1:]}/ffmpeg"
        compare(name, self._count, [self._engine, "join", output, *files], reference, [output])
