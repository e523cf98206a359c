"""In which order the suites of a test program are tried on a mutant: those of the altered file first, slow ones last."""
import json
import os
import re
from dataclasses import dataclass

SUITE = re.compile(r"^(?:TEST|TEST_F|TEST_P|TYPED_TEST)\(\s*(\w+)", re.MULTILINE)
SLOW_SECONDS = 2.0
LEAST_CPU_SECONDS = 10


@dataclass
class Stage:
    filter: str
    cpu_seconds: int


class Order:
    def __init__(self, tests_folder, report):
        """`report` is what the tests wrote about a run of all of them (--gtest_output=json)."""
        self.seconds = {}
        for suite in json.loads(report)["testsuites"]:
            self.seconds[suite["name"]] = float(suite["time"].rstrip("s"))
        self.files = {}
        for name in sorted(os.listdir(tests_folder)) if os.path.isdir(tests_folder) else []:
            if name.endswith(".cpp"):
                with open(os.path.join(tests_folder, name), encoding="utf-8") as file:
                    for suite in SUITE.findall(file.read()):
                        self.files.setdefault(suite, name)

    def stages(self, source):
        stem = os.path.splitext(os.path.basename(source))[0]
        slow = [suite for suite, seconds in self.seconds.items() if seconds > SLOW_SECONDS]
        quick = [suite for suite in self.seconds if suite not in slow]
        near = [suite for suite in quick if self.is_near(suite, stem)]
        far = [suite for suite in quick if suite not in near]
        return [self.stage(suites) for suites in (near, far, sorted(slow, key=self.seconds.get)) if suites]

    def is_near(self, suite, stem):
        # One of a parameterised suite is called Prefix/Suite/Number.
        names = [part for part in suite.split("/") if part in self.files]
        return bool(names) and self.files[names[0]].startswith(stem.rstrip("s"))

    def stage(self, suites):
        total = sum(self.seconds[suite] for suite in suites)
        return Stage(":".join(f"{suite}.*" for suite in suites), int(LEAST_CPU_SECONDS + 5 * total))
