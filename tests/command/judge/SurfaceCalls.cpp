#include "tests/command/judge/SurfaceCalls.h"

namespace CommandTests {

namespace {

using Calls = std::vector<SurfaceCall>;

// The study: x = 0 to 4, sum = x + 10, product = 2 x, cost = sum + product; the best row is the one of the largest x.
const Calls kSolving{
    {{"check", "box.study.yaml", "--no-run"}, 0, "box.study.yaml: 5 rows, 1 input, 2 outputs"},
    {{"check", "box.study.yaml"}, 0, "Box.sum"},
    {{"run", "box.study.yaml", "--dry-run"}, 0, "5 rows of 5 would be run"},
    {{"show", "box.study.yaml"}, 3, "There is no project box.optstudy yet"},
    {{"run", "box.study.yaml", "-q", "-j", "1"}, 0, "5 rows: 5 ok. Kept in box.optstudy"},
    {{"--version"}, 0, "optstudy "},
    {{"run", "box.study.yaml", "--quiet", "--jobs", "3"}, 0, "5 rows: 5 ok. Kept in box.optstudy"},
    {{"run", "box.study.yaml", "-v", "--keep-going"}, 0, "Nothing to solve: 5 rows are solved already."},
    {{"run", "box.study.yaml", "--verbose", "--log-file", "messages.log"}, 0, "Nothing to solve"},
    {{"run", "box.study.yaml", "--fresh"}, 2, "--yes says it"},
    {{"run", "box.study.yaml", "--fresh", "--yes"}, 0, "Solving 5 rows"},
    {{"run", "box.study.yaml", "--prune", "-y"}, 0, "Nothing to solve"},
    {{"run", "box.study.yaml", "--allow-failures", "10%"}, 0, "5 ok"},
    {{"solve", "box.optstudy"}, 0, "5 ok"},
    {{"solve", "box.optstudy", "3", "Variant 4", "-j", "2"}, 0, "now solved 2, failed 0"},
    {{"solve", "box.optstudy", "--failed"}, 0, "now solved 0, failed 0"},
    {{"solve", "box.optstudy", "--failed=time-limit"}, 0, "now solved 0, failed 0"},
    {{"solve", "box.optstudy", "--stale"}, 0, "now solved 0, failed 0"},
    {{"extract", "box.optstudy", "1"}, 0, "5 ok"},
};

const Calls kLooking{
    {{"show", "box.optstudy"}, 0, "* Best: row 4, Variant 4, cost 22"},
    {{"show", "box.study.yaml", "--sort", "cost", "--descending", "--top", "1", "--format", "csv"},
     0,
     "4,Variant 4,ok"},
    {{"show", "box.optstudy", "--status", "failed", "--format", "csv"}, 0, "row,name,status"},
    {{"show", "box.optstudy", "--columns", "Box.sum", "--format", "json"}, 0, "\"rows\""},
    {{"show", "box.optstudy", "--differences", "absolute"}, 0, "+12"},
    {{"show", "box.optstudy", "--columns", "Box.som"}, 2, "did you mean \"Box.sum\"?"},
    {{"best", "box.optstudy", "--format", "csv"}, 0, "4,Variant 4,ok,,4,14,8,22"},
    {{"status", "box.optstudy", "--format", "json"}, 0, "\"ok\": 5"},
    {{"versions", "box.optstudy"}, 0, "Variant 4"},
    {{"log", "box.optstudy", "4"}, 0, "product = 8"},
    {{"log", "box.optstudy", "Variant 9"}, 2, "There is no row \"Variant 9\""},
    {{"folder", "box.optstudy", "Variant 4"}, 0, "/run"},
    {{"group", "list", "box.optstudy"}, 0, "Box.product"},
};

const Calls kChanging{
    {{"cost", "box.optstudy", "%Box.sum%"}, 0, ""},
    {{"cost", "box.optstudy"}, 0, "%Box.sum%"},
    {{"cost", "box.optstudy", "%Box.sum% +"}, 3, "Syntax error"},
    {{"cost", "box.optstudy"}, 0, "%Box.sum%"},
    {{"target", "box.optstudy", "minimise"}, 0, ""},
    {{"best", "box.optstudy"}, 0, "Best: row 0, Base, cost 10"},
    {{"target", "box.optstudy", "none"}, 0, ""},
    {{"best", "box.optstudy"}, 5, "The study has no target"},
    {{"add", "box.optstudy", "--name", "big", "Box.x=40"}, 0, ""},
    {{"show", "box.optstudy", "--status", "not run", "--format", "csv"}, 0, "5,big,not run,,40,,,"},
    {{"set", "box.optstudy", "big", "Box.x=50"}, 0, ""},
    {{"rename", "box.optstudy", "big", "huge"}, 0, ""},
    {{"show", "box.optstudy", "--format", "csv"}, 0, "5,huge,not run,,50,,,"},
    {{"remove", "box.optstudy", "huge", "--keep-version"}, 0, ""},
    {{"remove", "box.optstudy", "0"}, 3, "baseline"},
    {{"input", "set", "box.optstudy", "Box.x", "--minimum", "0", "--maximum", "9", "--step", "1",
      "--low-bound", "0", "--high-bound", "9"},
     0,
     ""},
    {{"add", "box.optstudy", "Box.x=10"}, 3, "above the maximum"},
    {{"output", "remove", "box.optstudy", "Box.product"}, 0, ""},
    {{"output", "add", "box.optstudy", "Box.product", "--name", "double"}, 0, ""},
    {{"group", "rename", "box.optstudy", "double", "twice"}, 0, ""},
    {{"group", "move", "box.optstudy", "twice", "0"}, 0, ""},
    {{"group", "list", "box.optstudy"}, 0, "twice"},
};

const Calls kExchanging{
    {{"export", "box.optstudy", "matrix.csv", "--format", "csv"}, 0, "Wrote 5 rows to matrix.csv"},
    {{"export", "box.optstudy", "matrix.csv"}, 2, "exists already"},
    {{"export", "box.optstudy", "matrix.json", "--format", "json"}, 0, "Wrote 5 rows"},
    {{"import", "box.optstudy", "matrix.csv"}, 0, "0 added, 0 changed, 5 as they were"},
    {{"import", "box.optstudy", "matrix.json"}, 0, "0 added, 0 changed, 5 as they were"},
    {{"import", "box.optstudy", "nothing.csv"}, 3, "nothing.csv"},
    {{"backup", "box.optstudy", "copy.optstudy"}, 0, "Copied box.optstudy"},
    {{"doctor", "box.optstudy"}, 0, "is a sound project"},
    {{"doctor", "copy.optstudy"}, 3, "there is no study file beside the project"},
    {{"input", "remove", "copy.optstudy", "Box.x"}, 0, ""},
    {{"input", "add", "copy.optstudy", "Box.x", "--name", "X"}, 0, ""},
    {{"end", "copy.optstudy", "--delete-versions", "--yes"}, 0, ""},
    {{"show", "copy.optstudy"}, 3, "has no study"},
    {{"begin", "copy.optstudy", "--type", "optimality"}, 0, ""},
    {{"show", "copy.optstudy"}, 0, "1 row"},
};

const Calls kBeginning{
    {{"init", "demo"}, 0, "Next: optstudy check demo/beam.study.yaml"},
    {{"init", "demo"}, 3, "demo/beam.study.yaml exists already"},
    {{"init", "other", "--example", "welded-beam"}, 0, "other/welded-beam.study.yaml"},
    {{"check", "demo/beam.study.yaml", "--no-run"}, 0, "Next: optstudy run demo/beam.study.yaml"},
    {{"functions"}, 0, "sqrt"},
    {{"eval", "1.5 * 2"}, 0, "int 2"},
    {{"eval", "-%x%", "--var", "x=2.5"}, 0, "double -2.5"},
    {{"eval", "1 / 0"}, 3, "Integer division by zero"},
};

const Calls kMistakes{
    {{}, 2, "subcommand"},
    {{"rum", "box.study.yaml"}, 2, "did you mean \"run\"?"},
    {{"run", "box.study.yaml", "--frsh"}, 2, "did you mean \"--fresh\"?"},
    {{"run"}, 2, "STUDY"},
    {{"run", "box.study.yaml", "-j", "0"}, 2, "-j"},
    {{"run", "box.study.yaml", "--allow-failures", "many"}, 2, "such as 3 or 10%"},
    {{"run", "nothing.study.yaml"}, 3, "nothing.study.yaml"},
    {{"show", "nothing.optstudy"}, 3, "nothing.optstudy"},
    {{"show", "box.optstudy", "--format", "xml"}, 2, "--format"},
};

} // namespace

const std::vector<SurfaceCall> &surfaceCalls() {
  static const Calls all = [] {
    Calls calls;
    for (const Calls *some : {&kSolving, &kLooking, &kChanging, &kExchanging, &kBeginning, &kMistakes}) {
      calls.insert(calls.end(), some->begin(), some->end());
    }
    return calls;
  }();
  return all;
}

} // namespace CommandTests
