"""A copy of the project in which mutants are built and tested, one at a time."""

import os
import resource
import signal
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

FLAGS = "-O1 -g0 -D_GLIBCXX_ASSERTIONS"
HEADERS = ["algorithm", "array", "bit", "cstdint", "cstdio", "cstring", "ctime", "fstream",
           "functional", "istream", "limits", "map", "memory", "optional", "span", "string",
           "string_view", "unordered_set", "utility", "variant", "vector"]
# At the end of the copy's CMakeLists.txt. A change of one source is compiled fastest where each
# source is a unit of its own, a change of a header where all of them are one unit.
COMPILATION = """
foreach(objects TalIec61850Wire TalIec61850ParserObjects)
  target_precompile_headers(${{objects}} PRIVATE {headers})
endforeach()
set_target_properties(TalIec61850Wire TalIec61850ParserObjects PROPERTIES
    UNITY_BUILD ${{TAL_ONE_UNIT}} UNITY_BUILD_BATCH_SIZE 0)
"""
LIBRARY = "TalIec61850Parser"
# The programs of tests from the fastest to the slowest, and what is left out of them: tests that
# take seconds, for what shows in other tests as well.
PROGRAMS = {
    "library-tests": "*Nesting*:*NeedNoStack:*HoweverDeep:AsduSequence.IsSearchedOctetByOctet",
    "internal-tests": "",
    "thread-tests": "*Threads.*:StoppedAtRandom.*",
    "index-tests": "*Tshark*",
    "fault-tests": "",
    "lane-tests": "FullMemory.*:LanesInCallback.*:*ThroughFilters:*OfOddFrames",
}
# Of a test program, in octets: a mutant that takes memory without end fails soon.
MEMORY = 3 << 30


class NotBuilt(Exception):
    """The compiler or the linker refused."""


@dataclass
class Outcome:
    """What a test program came to: "passed", "failed" or "timed out", and the test it ended in."""
    result: str
    test: str = ""


class Workbench:
    def __init__(self, project, folder, jobs):
        self.project, self.folder, self.jobs = Path(project), Path(folder).resolve(), jobs
        self.source, self.build_folder = self.folder / "source", self.folder / "build"
        self.scratch = self.folder / "scratch"
        self.is_one_unit = False
        self.seconds = {}  # of CPU that each program takes on the code as it is

    def prepare(self):
        """Copies what differs from the project, builds it, and sees that all its tests pass."""
        self.scratch.mkdir(parents=True, exist_ok=True)
        self._copy()
        self._configure()
        for program in PROGRAMS:
            self.build(program)
            begin = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
            outcome = self.test(program)
            if outcome.result != "passed":
                raise SystemExit(f"{program} without a mutant: {outcome.result}, {outcome.test}")
            self.seconds[program] = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - begin

    def compile_for(self, file):
        """What follows are changes of this file."""
        if self.is_one_unit != file.endswith(".hpp"):
            self.is_one_unit = not self.is_one_unit
            self._configure()
            for program in PROGRAMS:
                self.build(program)

    def _configure(self):
        with (self.folder / "build.log").open("w") as log:
            subprocess.run(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build_folder,
                            "-DCMAKE_BUILD_TYPE=", f"-DCMAKE_CXX_FLAGS={FLAGS}",
                            "-DTAL_BUILD_TOOLS=OFF", f"-DTAL_ONE_UNIT={self.is_one_unit}"],
                           check=True, stdout=log)

    def _copy(self):
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others",
                                 "--exclude-standard"], cwd=self.project, check=True,
                                capture_output=True, text=True).stdout
        headers = " ".join(f"<{name}>" for name in HEADERS)
        for name in filter(None, listed.split("\0")):
            origin, copy = self.project / name, self.source / name
            if not origin.is_file():
                continue
            content = origin.read_bytes()
            if name == "CMakeLists.txt":
                content += COMPILATION.format(headers=headers).encode()
            if not copy.is_file() or copy.read_bytes() != content:
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.write_bytes(content)

    def read(self, file):
        return (self.source / file).read_text()

    def write(self, file, text):
        (self.source / file).write_text(text)

    def build(self, target):
        """Raises NotBuilt."""
        with (self.folder / "build.log").open("w") as log:
            built = subprocess.run(["ninja", "-C", self.build_folder, "-j", str(self.jobs), target],
                                   stdout=log, stderr=log)
        if built.returncode != 0:
            raise NotBuilt

    def test(self, program, tests=""):
        """Runs a program of tests until one fails. The time limit counts the CPU's seconds."""
        limit = int(3 + 4 * self.seconds.get(program, 30))
        log = self.folder / "test.log"
        with log.open("w") as output:
            process = subprocess.Popen(
                [self.build_folder / "tests" / program, "--gtest_fail_fast",
                 f"--gtest_filter={tests}-{PROGRAMS[program]}"],
                cwd=self.scratch, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                env=self._environment(), preexec_fn=lambda: limit_process(limit),
                start_new_session=True)
            code = wait_for(process, 20 * limit)
        self._clear_scratch()
        if code == 0:
            return Outcome("passed")
        result = "timed out" if code in (-signal.SIGXCPU, -signal.SIGKILL) else "failed"
        return Outcome(result, f"{program} {last_test(log)}")

    def _environment(self):
        # Recorded captures are not everywhere, and tests on them take long: none, for all alike.
        return {**os.environ, "RC_PARAMS": "seed=1", "TMPDIR": str(self.scratch),
                "TAL_CAPTURES": str(self.scratch / "none")}

    def _clear_scratch(self):
        """Removes what killed tests left."""
        subprocess.run(["find", self.scratch, "-mindepth", "1", "-delete"], check=True)


def limit_process(seconds):
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 5))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def wait_for(process, seconds):
    """Its exit code; whatever hangs without using the CPU is ended, and the like of it with it."""
    end = time.monotonic() + seconds
    while process.poll() is None and time.monotonic() < end:
        time.sleep(0.005)
    if process.poll() is None:
        os.killpg(process.pid, signal.SIGKILL)
    return process.wait()


def last_test(log):
    """The test that a program was in when it ended, or that failed."""
    name = ""
    for line in log.read_text(errors="replace").splitlines():
        if line.startswith(("[ RUN      ] ", "[  FAILED  ] ")) and "." in line:
            name = line[13:].split(",")[0].split(" ")[0]
    return name
