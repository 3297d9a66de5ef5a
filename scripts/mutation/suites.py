"""The suites of tests: what they come to, and whether they fail."""

import contextlib
import json
import os
import signal
import subprocess
import tempfile
import threading
import time
from pathlib import Path

from workcopy import BUILD, WORK, run

LEFT_OUT = {"e2e", "races", "fuzz", "help"}  # labels
# A suite hangs if it takes this many times as long as with nothing changed, and this many seconds more.
PATIENCE = (4, 30)
# A change can have a program allocate without end; without one, none takes this much.
MOST_MEMORY = 8 << 30


class Suite:
    """A test of CTest's, and how it went with nothing changed."""

    running = set()
    stopped = threading.Event()
    locks = {}

    def __init__(self, listed):
        properties = {entry["name"]: entry["value"] for entry in listed.get("properties", [])}
        self.name = listed["name"]
        self.command = listed["command"]
        self.folder = properties["WORKING_DIRECTORY"]
        self.environment = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
        self.labels = set(properties.get("LABELS", []))
        self.held = sorted(properties.get("RESOURCE_LOCK", []))
        self.tests = Path(self.command[0]).relative_to(BUILD).parts[1]  # the folder in tests
        self.seconds = properties.get("TIMEOUT", 600) / PATIENCE[0]
        self.lasted = 0.0  # seconds, the last time
        self.reached = set()
        for lock in self.held:
            Suite.locks.setdefault(lock, threading.Lock())

    def run(self, **environment):
        """Runs it. Tells in words how it failed, or returns nothing."""
        with contextlib.ExitStack() as held:
            for lock in self.held:
                held.enter_context(Suite.locks[lock])
            folder = held.enter_context(own_folder())
            start = time.monotonic()
            failure = self.run_alone({**os.environ, **self.environment, "TMPDIR": folder,
                                      **environment})
            self.lasted = time.monotonic() - start
            return failure

    def run_alone(self, environment):
        if Suite.stopped.is_set():
            raise SystemExit
        limited = ["prlimit", "--core=0", f"--as={MOST_MEMORY}", "nice", *self.command]
        process = subprocess.Popen(limited, cwd=self.folder, env=environment, start_new_session=True,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        Suite.running.add(process)
        try:
            return "fails" if process.wait(self.seconds * PATIENCE[0] + PATIENCE[1]) else ""
        except subprocess.TimeoutExpired:
            return "hangs"
        finally:
            end(process)
            Suite.running.discard(process)

    def record(self):
        """Runs it with nothing changed and remembers which places it comes to."""
        file = WORK / f"reached-{self.name.replace('/', '-')}"
        file.write_text("")
        file.chmod(0o666)  # some tests give up their rights
        failure = self.run(VELMORA_MUTANT_RECORD=str(file))
        self.seconds = self.lasted
        self.reached = {int(line) for line in file.read_text().split()}
        return failure


@contextlib.contextmanager
def own_folder():
    """A folder for temporary files, since what is ended early leaves its own behind."""
    with tempfile.TemporaryDirectory(dir=WORK, ignore_cleanup_errors=True) as folder:
        os.chmod(folder, 0o1777)
        yield folder


def end(process):
    """Ends the process and what it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def recorded(pool, say):
    """The suites that pass with nothing changed."""
    listed = run("ctest", "--preset", "dev", "--show-only=json-v1").stdout
    every = [Suite(test) for test in json.loads(listed)["tests"]
             if test["command"][0].startswith(str(BUILD / "tests"))]
    suites = [suite for suite in every if not suite.labels & LEFT_OUT]
    passing = []
    for suite, failure in zip(suites, pool.map(Suite.record, suites)):
        if failure:
            say(f"{suite.name} {failure} with nothing changed: left out")
        else:
            passing.append(suite)
    return passing
