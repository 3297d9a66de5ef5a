"""The files of the cases."""

import shutil
import subprocess

MINUTES = 18  # of the long file: about 1.1 GB
JOINED = 20  # files of one minute


class Media:
    """The files of the cases, made once."""

    def __init__(self, folder):
        self.folder = folder
        folder.mkdir(parents=True, exist_ok=True)
        self.minute = self.make("minute.mp4", self.minute_command())
        loop = ["-stream_loop", MINUTES - 1, "-i", self.minute, "-c", "copy"]
        self.long = self.make("long.mp4", loop)
        self.long_mkv = self.make("long.mkv", ["-i", self.long, "-c", "copy"])
        self.long_ts = self.make("long.ts", ["-i", self.long, "-c", "copy"])
        self.minute_mkv = self.make("minute.mkv", ["-i", self.minute, "-c", "copy"])

    @staticmethod
    def minute_command():
        picture = "testsrc2=s=1920x1080:r=30:d=60,noise=alls=12:allf=t"
        sound = "anoisesrc=d=60:c=pink:a=0.2,aformat=channel_layouts=stereo"
        return (
            ["-f", "lavfi", "-i", picture, "-f", "lavfi", "-i", sound]
            + ["-c:v", "libx264", "-preset", "veryfast", "-b:v", "8M", "-maxrate", "10M"]
            + ["-bufsize", "16M", "-g", 250, "-pix_fmt", "yuv420p", "-c:a", "aac", "-b:a", "160k"]
        )

    def make(self, name, arguments):
        path = self.folder / name
        if not path.exists():
            making = self.folder / f"making-{name}"
            command = ["ffmpeg", "-v", "error", "-y", *map(str, arguments), str(making)]
            subprocess.run(command, check=True)
            making.rename(path)
        return path

    def two_hours(self):
        """Of few bits, in three containers: what costs is how many pictures and how much sound."""
        small = ["-i", self.minute, "-c:v", "libx264", "-preset", "veryfast", "-b:v", "1M"]
        minute = self.make("small-minute.mp4", [*small, "-g", 250, "-c:a", "copy"])
        loop = ["-stream_loop", 119, "-i", minute, "-c", "copy"]
        mp4 = self.make("two-hours.mp4", loop)
        remuxed = [self.make(f"two-hours.{form}", ["-i", mp4, "-c", "copy"]) for form in ("mkv", "ts")]
        return [mp4, *remuxed]

    def copies(self, source):
        """As many files as a join takes; they share no pages in memory."""
        made = []
        for i in range(JOINED):
            path = self.folder / f"{source.stem}-{i}{source.suffix}"
            if not path.exists():
                shutil.copyfile(source, path)
            made.append(path)
        return made

    def sizes(self):
        """Ten files of 10 seconds, of three sizes."""
        made = []
        for i in range(10):
            size = ("1920x1080", "1280x720", "640x480")[i % 3]
            picture = f"testsrc2=s={size}:r=30:d=10"
            arguments = ["-f", "lavfi", "-i", picture, "-f", "lavfi", "-i", "sine=d=10:r=48000"]
            arguments += ["-c:v", "libx264", "-preset", "veryfast", "-pix_fmt", "yuv420p"]
            made.append(self.make(f"ten-{i}.mp4", [*arguments, "-c:a", "aac", "-ac", 2]))
        return made

    def small(self, count):
        """Files of a second, for joins of many; they share no pages in memory."""
        second = self.make("second.mp4", ["-t", 1, "-i", self.minute, "-s", "320x180", "-r", 25])
        folder = self.folder / "small"
        folder.mkdir(exist_ok=True)
        made = [folder / f"{i}.mp4" for i in range(count)]
        for path in made:
            if not path.exists():
                shutil.copyfile(second, path)
        return made

    def list_of(self, files):
        path = self.folder / f"list{files[0].suffix}.txt"
        path.write_text("".join(f"file '{file}'\n" for file in files))
        return path

    def head_of(self, source, size):
        path = self.folder / f"head{source.suffix}"
        if not path.exists() or path.stat().st_size != size:
            with source.open("rb") as reading, path.open("wb") as writing:
                shutil.copyfileobj(reading, writing)
                writing.truncate(size)
        return path
