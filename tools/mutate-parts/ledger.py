"""What was found out: the results on disk, the accepted survivors, the draw."""
import json
import os
import random
import re
from collections import Counter, defaultdict

KILLED, SURVIVED, EQUIVALENT, BROKEN = "killed", "survived", "same object code", "does not compile"
COUNTED = (KILLED, SURVIVED)


class Results:
    """One line of JSON for each mutant tried, behind a line that says of which run."""

    def __init__(self, path, run, resume):
        self.path, self.entries = path, {}
        if resume:
            self.load(run)
        else:
            with open(path, "w", encoding="utf-8") as file:
                file.write(json.dumps(run) + "\n")

    def load(self, run):
        header, entries = read_results(self.path)
        if header != run:
            raise SystemExit("The results at hand are of another run, or of a tree that has changed since; begin anew.")
        self.entries = entries

    def add(self, key, entry):
        self.entries[key] = entry
        with open(self.path, "a", encoding="utf-8") as file:
            file.write(json.dumps(dict(entry, key=key)) + "\n")


def read_results(path):
    try:
        with open(path, encoding="utf-8") as file:
            header, *lines = file.read().splitlines()
    except (FileNotFoundError, ValueError):
        raise SystemExit("There are no results to go on with.") from None
    entries = {}
    for line in lines:
        try:
            entry = json.loads(line)
        except ValueError:
            # The last line of a run that was cut off.
            continue
        entries[entry.pop("key")] = entry
    return json.loads(header), entries


class Draw:
    """Hands out mutants at random, as many of every file as its share of the lines of code, and further ones for
    those that turn out not to count."""

    def __init__(self, mutants, lines, count, seed):
        """`mutants` and `lines` by file; without `count` all are drawn."""
        generator = random.Random(seed)
        self.waiting = {}
        for file in sorted(mutants):
            self.waiting[file] = list(mutants[file])
            generator.shuffle(self.waiting[file])
        total = sum(len(waiting) for waiting in self.waiting.values())
        self.everything = count is None or count >= total
        self.count = total if self.everything else count
        self.quota = self.shares(lines)
        self.valid, self.open = Counter(), Counter()

    def shares(self, lines):
        if self.everything:
            return {file: len(waiting) for file, waiting in self.waiting.items()}
        quota = dict.fromkeys(self.waiting, 0)
        for _ in range(self.count):
            # Always the file that is farthest behind its share and has mutants left.
            candidates = [file for file in quota if quota[file] < len(self.waiting[file])]
            file = min(candidates, key=lambda name: ((quota[name] + 0.5) / max(lines[name], 1), name))
            quota[file] += 1
        return quota

    def next(self):
        """A mutant, or None when none is wanted for the time being."""
        wanting = [file for file in self.quota if self.waiting[file] and self.valid[file] + self.open[file] < self.quota[file]]
        if not wanting:
            return None
        file = min(wanting, key=lambda name: ((self.valid[name] + self.open[name]) / self.quota[name], name))
        self.open[file] += 1
        return self.waiting[file].pop()

    def report(self, file, counts):
        self.open[file] -= 1
        self.valid[file] += counts
        if not counts and not self.waiting[file]:
            self.pass_on(file)

    def pass_on(self, file):
        """Another file stands in for one that has no further mutants."""
        missing = self.quota[file] - self.valid[file] - self.open[file]
        self.quota[file] -= max(missing, 0)
        if self.everything:
            return
        for _ in range(missing):
            others = {name: len(waiting) - self.quota[name] + self.valid[name] + self.open[name] for name, waiting in self.waiting.items()}
            best = max(sorted(others), key=others.get)
            if others[best] > 0:
                self.quota[best] += 1

    def is_done(self):
        return not any(self.open.values()) and self.next_file() is None

    def next_file(self):
        for file, waiting in self.waiting.items():
            if waiting and self.valid[file] + self.open[file] < self.quota[file]:
                return file
        return None


class Accepted:
    """The survivors that are accepted, each with its reason.

    An entry is a paragraph: `file function`, the altered lines before (-) and after (+), and the reason (why:).
    Several mutants of one function may be accepted for one reason: further pairs of lines.
    """

    def __init__(self, path):
        self.reasons, self.problems = {}, []
        if not os.path.exists(path):
            return
        with open(path, encoding="utf-8") as file:
            paragraphs = re.split(r"\n\s*\n", re.sub(r"^#.*\n?", "", file.read(), flags=re.MULTILINE))
        for paragraph in paragraphs:
            if paragraph.strip():
                self.read(paragraph.strip().splitlines())

    def read(self, lines):
        place = tuple(lines[0].split())
        why = " ".join(line.strip() for line in lines if not line.startswith(("-", "+")))[len(lines[0]) :].strip()
        before = [line[1:].strip() for line in lines if line.startswith("-")]
        after = [line[1:].strip() for line in lines if line.startswith("+")]
        if len(place) != 2 or not why.startswith("why: ") or not before or len(before) != len(after):
            self.problems.append(f"not an entry: {lines[0]}")
            return
        for pair in zip(before, after):
            self.reasons[(*place, *pair)] = why[len("why: ") :]

    def key(self, mutant):
        return (os.path.basename(mutant["file"]), mutant["function"], mutant["before"], mutant["after"])

    def reason(self, mutant):
        return self.reasons.get(self.key(mutant))

    def stale(self, mutants, entries):
        """Entries of which no mutant is left, or that the tests kill by now. The last of several alike counts."""
        known = defaultdict(set)
        for mutant in mutants:
            entry = entries.get(mutant.key)
            known[self.key(vars(mutant))].add(entry["verdict"] if entry else "")
        for key in self.reasons:
            if key not in known:
                yield key, "there is no such mutant"
            elif known[key] == {KILLED}:
                yield key, "the tests kill it"
