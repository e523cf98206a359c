"""What is printed: progress while it runs, survivors as they come, and the figures at the end."""
import re
import sys
import time
from collections import Counter

import ledger

MUST = 95.0
SHOWN_SECONDS = 20


def described(mutant):
    return (
        f"{mutant['file']}:{mutant['line']} {mutant['function']} [{mutant['operation']}]\n"
        f"  - {mutant['before']}\n  + {mutant['after']}"
    )


def killer(status, output):
    """The test that failed, or what became of the program."""
    if status is None:
        return "time limit"
    failed = re.search(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", output, re.MULTILINE)
    if failed:
        return failed[1]
    return f"signal {-status}" if status < 0 else f"status {status}"


class Progress:
    def __init__(self, draw, accepted):
        self.draw, self.accepted = draw, accepted
        self.begin = self.shown = time.monotonic()
        self.counts, self.tried, self.seconds = Counter(), 0, 0.0

    def show(self, entry, seconds):
        self.counts[entry["verdict"]] += 1
        self.tried += seconds > 0.01
        if entry["verdict"] == ledger.SURVIVED:
            reason = self.accepted.reason(entry)
            print(f"survived: {described(entry)}" + (f"\n  accepted: {reason}" if reason else ""), flush=True)
        now = time.monotonic()
        if now - self.shown > SHOWN_SECONDS:
            self.shown = now
            done = sum(self.counts[verdict] for verdict in ledger.COUNTED)
            left = (now - self.begin) / max(self.tried, 1) * (self.draw.count - done)
            print(f"  {done} of {self.draw.count}, {self.counts[ledger.SURVIVED]} survived, {left / 60:.0f} min left", file=sys.stderr, flush=True)


def conclude(run, results, accepted, is_whole):
    entries = list(results.entries.values())
    counts = Counter(entry["verdict"] for entry in entries)
    total = sum(counts[verdict] for verdict in ledger.COUNTED)
    by_file(run, entries)
    by_operation(entries)
    print(f"\nReplaced by others: {counts[ledger.BROKEN]} that do not compile, {counts[ledger.EQUIVALENT]} with the same object code")
    survivors = sorted((entry for entry in entries if entry["verdict"] == ledger.SURVIVED), key=lambda entry: (entry["file"], entry["line"]))
    unnamed = [entry for entry in survivors if accepted.reason(entry) is None]
    for title, chosen in (("Survivors that are accepted", [entry for entry in survivors if entry not in unnamed]), ("Survivors", unnamed)):
        if chosen:
            print(f"\n{title}:")
        for entry in chosen:
            reason = accepted.reason(entry)
            print(described(entry) + (f"\n  {reason}" if reason else ""))
    stale = [f"{' '.join(key[:2])}: {why}\n  - {key[2]}\n  + {key[3]}" for key, why in accepted.stale(run.everything(), results.entries)]
    if run.options.file:
        stale = [text for text in stale if "there is no such mutant" not in text]
    for problem in accepted.problems + stale:
        print(f"tools/mutate-survivors.txt: {problem}")
    share = 100.0 * counts[ledger.KILLED] / total if total else 0.0
    print(f"\n{counts[ledger.KILLED]} of {total} mutants killed: {share:.2f} % (must be {MUST:g} %); {len(survivors)} survived, {len(unnamed)} of them not named in tools/mutate-survivors.txt")
    bad_list = accepted.problems or (stale if is_whole else [])
    return 0 if not unnamed and not bad_list and (share >= MUST or not is_whole) else 1


def by_file(run, entries):
    print(f"\n{'':48} {'lines':>6} {'tried':>6} {'killed':>7}")
    for name in sorted(run.mutants):
        mine = [entry["verdict"] for entry in entries if entry["file"] == name]
        killed = mine.count(ledger.KILLED)
        tried = killed + mine.count(ledger.SURVIVED)
        if run.mutants[name]:
            print(f"{name:48} {run.lines[name]:6} {tried:6} {killed:7}")


def by_operation(entries):
    print()
    for operation in sorted({entry["operation"] for entry in entries}):
        mine = [entry["verdict"] for entry in entries if entry["operation"] == operation]
        killed = mine.count(ledger.KILLED)
        print(f"{operation:48} {'':6} {killed + mine.count(ledger.SURVIVED):6} {killed:7}")
