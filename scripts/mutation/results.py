"""What became of the mutants: a file with a line each, and a summary of it."""

from collections import Counter


class Results:
    def __init__(self, path):
        self.path = path
        self.by_key = {}
        if path.is_file():
            for line in path.read_text().splitlines():
                result, test, key = line.split("\t", 2)
                self.by_key[key] = (result, test)  # the last one counts

    def of(self, mutant):
        """"killed", "timed out", "survived", "not compiled"; None before it was tried."""
        return self.by_key.get(mutant.key, (None, ""))[0]

    def noticed(self):
        """How often each test noticed a mutant, by the mutant's file and the test's program."""
        counts = {}
        for key, (result, test) in self.by_key.items():
            if result == "killed" and not test.endswith("does not compile"):
                program, name = test.split(" ", 1)
                file = key.split("\t")[0].split(" ")[0]
                counts.setdefault((file, program), Counter())[name] += 1
        return counts

    def add(self, mutant, outcome):
        self.by_key[mutant.key] = (outcome.result, outcome.test)
        with self.path.open("a") as file:
            file.write(f"{outcome.result}\t{outcome.test}\t{mutant.key}\n")


def fate(mutant, results, equivalents):
    """What is said of it: as Results.of, or "equivalent"."""
    result = results.of(mutant)
    is_equivalent = mutant.key in equivalents and result in (None, "survived")
    return "equivalent" if is_equivalent else result


def print_report(mutants, results, equivalents):
    fates = {m.key: fate(m, results, equivalents) for m in mutants}
    counts = Counter(fates.values())
    print_by_file(mutants, fates)
    for mutant in mutants:
        if fates[mutant.key] == "survived":
            print(f"survived: {mutant.file}:{mutant.line}\n    - {mutant.before}\n"
                  f"    + {mutant.after}")
        elif mutant.key in equivalents and fates[mutant.key] in ("killed", "timed out"):
            print(f"said to be equivalent, and killed: {mutant.key}")
    killed = counts["killed"] + counts["timed out"]
    compiled = killed + counts["survived"] + counts["equivalent"]
    print(f"\n{len(mutants)} mutants: {counts[None]} not tried, {counts['not compiled']} do not "
          f"compile, {compiled} do.\nOf these {killed} were killed ({counts['timed out']} by the "
          f"time limit), {counts['equivalent']} are equivalent, {counts['survived']} survived.")
    print(f"Killed: {100 * killed / max(1, compiled):.1f} % of those that compile, "
          f"{100 * killed / max(1, compiled - counts['equivalent']):.1f} % of those that are not "
          f"equivalent.")


def print_by_file(mutants, fates):
    columns = ["killed", "timed out", "equivalent", "survived", "not compiled"]
    print(f"{'':44}" + "".join(f"{column:>14}" for column in columns))
    for file in dict.fromkeys(m.file for m in mutants):
        counts = Counter(fates[m.key] for m in mutants if m.file == file)
        print(f"{file:44}" + "".join(f"{counts[column]:14}" for column in columns))
