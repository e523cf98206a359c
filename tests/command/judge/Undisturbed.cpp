#include "tests/command/judge/Undisturbed.h"

#include <filesystem>

namespace CommandTests {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

namespace {

const std::vector<std::string> kShow{"show", "box.optstudy", "--format", "csv"};

} // namespace

Undisturbed Undisturbed::of(const Product &product, int rows, const std::string &script) {
  Undisturbed result;
  const Box box = Box::make(product, "undisturbed-" + std::to_string(rows));
  box.writeStudy(rows);
  box.script(script);
  const auto begin = std::chrono::steady_clock::now();
  const Call run = box.run();
  result.time = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
  const Call show = box.call(kShow);
  result.table = Table::of(show.output);
  result.problem = run.unless(0) + show.unless(0);
  if (result.problem.empty() && result.table.ok.size() != static_cast<std::size_t>(rows)) {
    result.problem = "not every row is ok: " + show.output;
  }
  return result;
}

std::string problemAfterStrike(const Box &box, const Undisturbed &undisturbed, Table &shown) {
  std::string survivors = box.survivors();
  if (!survivors.empty()) {
    box.killSurvivors();
    return survivors;
  }
  if (!fs::exists(box.path("box.optstudy"))) {
    return "";
  }
  const Call show = box.call(kShow);
  if (show.exitCode() != 0) {
    return "the project cannot be shown: " + show.unless(0);
  }
  shown = Table::of(show.output);
  for (const auto &[x, line] : shown.ok) {
    const auto expected = undisturbed.table.ok.find(x);
    if (expected == undisturbed.table.ok.end() || expected->second != line) {
      return "a row is shown as ok that is not as it should be: " + line;
    }
  }
  return "";
}

std::string problemOfGoingOn(const Box &box, const Undisturbed &undisturbed, const Table &shown) {
  const std::map<std::string, int> before = box.begun();
  const Call again = box.run();
  if (again.exitCode() != 0) {
    return "it does not go on: " + again.unless(0);
  }
  std::string survivors = box.survivors();
  if (!survivors.empty()) {
    box.killSurvivors();
    return survivors;
  }
  for (const auto &[x, times] : box.begun()) {
    const auto former = before.find(x);
    const int more = times - (former == before.end() ? 0 : former->second);
    const int wanted = shown.ok.count(x) == 0 ? 1 : 0;
    if (more != wanted) {
      return "row x = " + x + " was begun " + std::to_string(more) + " times more, not " +
             std::to_string(wanted);
    }
  }
  const Call show = box.call(kShow);
  return show.exitCode() != 0 ? show.unless(0) : difference(undisturbed.table.text, show.output);
}

} // namespace CommandTests
