"""The copy of the tree that holds the changes, and how it is compiled."""

import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
WORK = ROOT / "build" / "mutants"
TREE = WORK / "tree"
BUILD = TREE / "build" / "dev"
WORKERS = os.cpu_count() or 1


def run(*command, check=True, **options):
    result = subprocess.run(command, cwd=TREE, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, **options)
    if check and result.returncode != 0:
        sys.exit(f"mutants: {shlex.join(command)} failed:\n{result.stdout[-5000:]}")
    return result


class Tree:
    """The copy. It is written only where it differs, so that little is built again."""

    def __init__(self):
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
            check=True, stdout=subprocess.PIPE).stdout.decode()
        names = [name for name in listed.split("\0") if (ROOT / name).is_file()]
        # Read once: the user may go on working.
        self.originals = {name: (ROOT / name).read_bytes() for name in names}
        for left in set(self.copied()) - set(names):
            (TREE / left).unlink()
        for name, content in self.originals.items():
            self.put(name, content)
            (TREE / name).chmod((ROOT / name).stat().st_mode)

    @staticmethod
    def copied():
        for folder, folders, files in os.walk(TREE):
            if Path(folder) == TREE and "build" in folders:
                folders.remove("build")
            yield from (str((Path(folder) / file).relative_to(TREE)) for file in files)

    @staticmethod
    def put(name, content):
        path = TREE / name
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.exists() or path.read_bytes() != content:
            path.write_bytes(content)

    def change(self, numbered, names):
        """Writes the files of these names with the changes, by number, that are theirs."""
        from places import written  # clang's module is there once the packages are installed

        for name in names:
            here = [(number, change) for number, change in numbered.items() if change.file == name]
            content = self.originals[name]
            if here:
                content = written(content.decode("latin-1"), here).encode("latin-1")
            self.put(name, content)


class Compiler:
    """Compiles the copy, and knows how each file is compiled."""

    def __init__(self):
        run("cmake", "--preset", "dev", "-DVELMORA_WERROR=OFF", "-DVELMORA_PRECOMPILE=ON")
        targets = run("ninja", "-C", str(BUILD), "-t", "targets", "all").stdout
        generated = re.findall(r"^(velmora_\w+_autogen): phony", targets, re.MULTILINE)
        run("cmake", "--build", "--preset", "dev", "--target", *generated)  # headers to be parsed
        entries = json.loads((BUILD / "compile_commands.json").read_text())
        self.sources = {}  # name in the tree: the command's words
        self.objects = {}  # object: name
        for entry in entries:
            words = shlex.split(entry["command"])
            name = os.path.relpath(entry["file"], TREE)
            self.sources[name] = words
            self.objects[words[words.index("-o") + 1]] = name

    def build(self):
        """Builds all. Returns the names of the sources that do not compile."""
        result = run("nice", "cmake", "--build", "--preset", "dev", "--parallel", str(WORKERS), "--",
                     "-k", "0", check=False)
        failed = re.findall(r"^FAILED: (\S+)", result.stdout, re.MULTILINE)
        names = {self.objects[name] for name in failed if name in self.objects}
        if result.returncode != 0 and not names:
            sys.exit(f"mutants: the copy cannot be built:\n{result.stdout[-5000:]}")
        return names

    def compiles(self, name):
        return self.called(name, "-fsyntax-only").returncode == 0

    def needs(self, name, header):
        return str(TREE / header) in self.called(name, "-MM").stdout.split()

    def called(self, name, option):
        """The compiler, called for the source with one more option and no output file."""
        words = self.sources[name]
        output = words.index("-o")
        return subprocess.run([*words[:output], *words[output + 2:], option], cwd=BUILD, text=True,
                              capture_output=True)

    def arguments(self, name):
        """What another compiler needs to know to parse the source."""
        words = self.sources[name]
        return [word for before, word in zip(words, words[1:])
                if before == "-isystem" or word.startswith(("-I", "-D", "-isystem", "-std="))]
