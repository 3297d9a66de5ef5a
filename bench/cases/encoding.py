"""Cuts and joins that encode anew."""

from group import Group
from measuring import compare, measure, remove


class Encoding(Group):
    def encode(self):
        """20 seconds of 1080p, encoded anew."""
        h264 = "-c:v libx264 -preset superfast -bf 0 -g 12 -qmin 10 -qmax 51 -qcomp 0.6"
        plain = "-g 12"
        for name, suffix, size, video, options, audio, encoder in (
            ("720p", ".mp4", "1280x720", "H264", h264, "AAC", "aac"),
            ("1080p", ".mp4", "1920x1080", "H264", h264, "AAC", "aac"),
            ("avi", ".avi", "1280x720", "MPEG4", f"-c:v mpeg4 {plain}", "MP3", "libmp3lame"),
            ("wmv", ".wmv", "1280x720", "WMV2", f"-c:v wmv2 {plain}", "WMA8", "wmav2"),
            ("flv", ".flv", "1280x720", "FLV", f"-c:v flv {plain}", "MP3", "libmp3lame"),
        ):
            source, output = self._media.minute, self._output(suffix)
            ours = [self._engine, "cut", source, 10, 30, output, "--reencode", f"size={size}"]
            ours += [f"vcodec={video}", f"acodec={audio}", "vbitrate=2000"]
            theirs = ["ffmpeg", "-v", "error", "-y", "-ss", 10, "-t", 20, "-i", source]
            theirs += [*options.split(), *self._common(size), "-c:a", encoder, output]
            compare(f"encode-{name}/ffmpeg", self._count, ours, theirs, [output])

    def encode_exact(self):
        """Exactly 20 seconds of 1080p, from the middle of a group of 250 pictures."""
        source, output = self._media.minute, self._output(".mp4")
        ours = [self._engine, "cut", source, 10, 30, output, "--exact", "--reencode"]
        ours += ["size=1280x720", "vcodec=H264", "acodec=AAC", "vbitrate=2000"]
        theirs = ["ffmpeg", "-v", "error", "-y", "-ss", 10, "-to", 30, "-i", source]
        theirs += "-c:v libx264 -preset superfast -bf 0 -g 12 -qmin 10 -qmax 51 -qcomp 0.6".split()
        theirs += [*self._common("1280x720"), "-c:a", "aac", output]
        compare("encode-exact/ffmpeg", self._count, ours, theirs, [output])

    def picture(self):
        """The picture at 12.3 s, against decoding as many pictures from the key frame before it."""
        source, output = self._media.minute, self._output(".png")
        ours = [self._engine, "picture", source, 12.3, output]
        theirs = ["ffmpeg", "-v", "error", "-ss", 8.3334, "-i", source, "-an", "-frames:v", 120]
        compare("picture/ffmpeg", self._count, ours, [*theirs, "-f", "null", "-"], [output])

    @staticmethod
    def _common(size):
        scaling = ["-s", size, "-sws_flags", "bicubic"] if size else []
        return ["-b:v", "2000k", *scaling, "-b:a", "128k", "-ar", 44100, "-ac", 2]

    def encode_join(self):
        """Ten files of 10 seconds in three sizes, against one filter graph."""
        files, output = self._media.sizes(), self._output(".mp4")
        ours = [self._engine, "join", output, *files, "--reencode", "size=1280x720"]
        inputs, scaled, joined = [], "", ""
        for i, file in enumerate(files):
            inputs += ["-i", file]
            scaled += f"[{i}:v]scale=1280:720:flags=bicubic,setsar=1[v{i}];"
            joined += f"[v{i}][{i}:a]"
        graph = f"{scaled}{joined}concat=n={len(files)}:v=1:a=1[v][a]"
        theirs = ["ffmpeg", "-v", "error", "-y", *inputs, "-filter_complex", graph]
        theirs += ["-map", "[v]", "-map", "[a]", "-c:v", "libx264", "-preset", "superfast"]
        theirs += "-bf 0 -g 12 -qmin 10 -qmax 51 -qcomp 0.6 -c:a aac".split()
        theirs += [*self._common(None), output]
        compare("encode-join/ffmpeg", self._count, ours, theirs, [output])

    def encode_memory(self):
        """Ten minutes against one."""
        source, output = self._media.long, self._output(".mp4")

        def cut(minutes):
            words = [self._engine, "cut", source, 0, 60 * minutes, output]
            return [*words, "--reencode", "size=640x360"]

        ours, theirs = measure(cut(10)), measure(cut(1))
        remove([output])
        print(f"encode-memory 10 minutes {ours.peak:.1f} MiB, 1 minute {theirs.peak:.1f} MiB")
