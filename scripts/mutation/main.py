"""Changes the library in many small ways, and sees whether the tests notice.

Works on a copy of the project in WORK_DIR, where results.tsv takes a line per mutant: a run that
was interrupted goes on where it stopped. Mutants that change nothing a test could see are listed in
scripts/mutation/equivalent.txt, with reasons.
"""

import argparse
import hashlib
import sys
from collections import Counter
from pathlib import Path

sys.dont_write_bytecode = True

from equivalents import read_equivalents  # noqa: E402
from operators import mutants_of  # noqa: E402
from results import Results, print_report  # noqa: E402
from workbench import LIBRARY, PROGRAMS, NotBuilt, Outcome, Workbench  # noqa: E402

PROJECT = Path(__file__).resolve().parents[2]
# Sources, then headers.
FILES = [f"TalIec61850Parser/{name}" for name in (
    "wire/BlockReader.cpp", "wire/Ethernet.cpp", "wire/Hex.cpp", "wire/ReadAhead.cpp",
    "wire/ShortLength.cpp", "wire/pattern/MaskedBlocks.cpp",
    "wire/pattern/PatternTable.cpp", "codec/Asn1Parser.cpp", "codec/BerValue.cpp",
    "codec/ReadElementContent.cpp", "store/Db.cpp", "store/Goose.cpp", "store/PackageFile.cpp",
    "store/StreamFiles.cpp", "store/Sv.cpp", "goose/GooseFrame.cpp", "goose/GooseParser.cpp",
    "goose/DecodeGoosePdu.cpp", "sv/SvFrame.cpp", "sv/SvParser.cpp", "sv/DecodeAsdu.cpp",
    "capture/EthernetParser.cpp", "capture/JudgeFrame.cpp", "capture/PcapParser.cpp",
    "capture/RecordReader.cpp", "capture/index/IndexFrame.cpp", "capture/lane/FastLane.cpp",
    "capture/lane/KnownStream.cpp",
    "wire/ApplicationHeader.hpp", "wire/BerReader.hpp", "wire/BlockReader.hpp",
    "wire/CaptureFormat.hpp", "wire/Ethernet.hpp", "wire/GooseTags.hpp", "wire/Octets.hpp",
    "wire/OptionalGroup.hpp", "wire/ReadAhead.hpp", "wire/ShortLength.hpp", "wire/SvTags.hpp",
    "wire/pattern/FrameMemory.hpp", "wire/pattern/MaskedBlocks.hpp",
    "wire/pattern/PatternTable.hpp", "wire/pattern/TurnPredictor.hpp", "codec/Asn1Tag.hpp",
    "codec/BerValue.hpp", "codec/BerWalk.hpp", "codec/BytesConverter.hpp", "codec/WalkTrace.hpp",
    "store/Payload.hpp", "frame/Admission.hpp", "frame/FilterRule.hpp",
    "capture/IndexCapture.hpp", "capture/RecordReader.hpp", "capture/index/IndexFrame.hpp",
    "capture/index/StreamPlace.hpp", "capture/lane/FastLane.hpp", "capture/lane/FilterImage.hpp")]


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/mutate", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sample", type=int, metavar="N", help="N mutants of all; default: all")
    parser.add_argument("--seed", type=int, default=1, metavar="S", help="another sample")
    parser.add_argument("--only", action="append", default=[], metavar="FILE",
                        help="those of files whose path holds this; may be repeated")
    parser.add_argument("--survivors", action="store_true",
                        help="test again what survived, instead of what was not tested")
    parser.add_argument("--equivalent", action="store_true",
                        help="test those as well that are said to change nothing")
    parser.add_argument("--report", action="store_true", help="test nothing, sum up")
    parser.add_argument("--jobs", type=int, default=1, metavar="N", help="compilers at a time")
    parser.add_argument("work_dir", nargs="?", default=PROJECT / "build" / "mutation",
                        metavar="WORK_DIR", help="default: build/mutation")
    return parser.parse_args()


def chosen_mutants(only, sample, seed):
    """By file. A mutant's lot is its own: a larger sample of the same seed holds the smaller one,
    and a change of the source leaves the lots of all other mutants as they are."""
    files = [file for file in FILES if not only or any(part in file for part in only)]
    mutants = [m for file in files for m in mutants_of(file, (PROJECT / file).read_text())]
    mutants.sort(key=lambda m: hashlib.sha256(f"{seed} {m.key}".encode()).digest())
    return sorted(mutants[:sample], key=lambda m: (FILES.index(m.file), m.start, m.replacement))


class Trial:
    """Tries mutants one by one, those tests first that noticed others of the same file."""

    def __init__(self, workbench, results):
        self.workbench = workbench
        self.noticed = results.noticed()

    def outcome_of(self, mutant):
        self.workbench.compile_for(mutant.file)
        original = self.workbench.read(mutant.file)
        self.workbench.write(mutant.file, mutant.applied_to(original))
        try:
            return self._built_and_tested(mutant.file)
        finally:
            self.workbench.write(mutant.file, original)

    def _built_and_tested(self, file):
        try:
            self.workbench.build(LIBRARY)
        except NotBuilt:
            return Outcome("not compiled")
        for program in PROGRAMS:
            try:
                self.workbench.build(program)
            except NotBuilt:
                return Outcome("killed", f"{program} does not compile")
            outcome = self._tested(program, self.noticed.setdefault((file, program), Counter()))
            if outcome.result != "passed":
                return outcome
        return Outcome("survived")

    def _tested(self, program, noticed):
        likely = [test for test, _ in noticed.most_common(12) if test]
        for tests in ([":".join(likely)] if likely else []) + [""]:
            outcome = self.workbench.test(program, tests)
            if outcome.result == "failed":
                noticed[outcome.test.removeprefix(f"{program} ")] += 1
                return Outcome("killed", outcome.test)
            if outcome.result == "timed out":
                return outcome
        return outcome


def run(mutants, results, options):
    workbench = Workbench(PROJECT, options.work_dir, options.jobs)
    workbench.prepare()
    trial = Trial(workbench, results)
    for number, mutant in enumerate(mutants, 1):
        outcome = trial.outcome_of(mutant)
        results.add(mutant, outcome)
        print(f"{number}/{len(mutants)} {outcome.result} {outcome.test}: {mutant.file}:"
              f"{mutant.line}: {mutant.before}  =>  {mutant.after}", flush=True)


def main():
    options = arguments()
    Path(options.work_dir).mkdir(parents=True, exist_ok=True)
    mutants = chosen_mutants(options.only, options.sample, options.seed)
    results = Results(Path(options.work_dir) / "results.tsv")
    equivalents = read_equivalents(PROJECT / "scripts" / "mutation" / "equivalent.txt")
    if not options.report:
        result = "survived" if options.survivors else None
        run([m for m in mutants
             if results.of(m) == result and (options.equivalent or m.key not in equivalents)],
            results, options)
    print_report(mutants, results, equivalents)


main()
