"""Reads the list of mutants that nothing can notice."""


def read_equivalents(path):
    """The reason for each, by the mutant's key.

    A block of lines, ended by an empty one: the file, then for each mutant "- " and the source line
    ("-[2] " for the second such line of the file), "+ " and what became of it, where
    further "+" belong to the same line; last of all the reason, on lines that begin with a blank.
    """
    reasons = {}
    for block in path.read_text().split("\n\n") if path.is_file() else []:
        lines = [line for line in block.splitlines() if not line.startswith("#")]
        if not lines:
            continue
        reason = " ".join(line.strip() for line in lines if line.startswith(" "))
        if not reason:
            raise SystemExit(f"{path}: no reason is given for {lines[0]}")
        number, before = "", ""
        for line in lines[1:]:
            if line.startswith("-"):
                mark, before = line.split(" ", 1)
                number = f" {mark[1:]}" if len(mark) > 1 else ""
            elif line.startswith("+ "):
                reasons[f"{lines[0]}{number}\t{before}\t{line[2:]}"] = reason
    return reasons
