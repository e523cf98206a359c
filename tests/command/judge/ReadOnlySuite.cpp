#include "tests/command/judge/Looks.h"
#include "tests/command/judge/SmallDisk.h"
#include "tests/command/judge/Suites.h"
#include "tests/fault/judge/Disk.h"
#include "tests/fault/judge/Report.h"

#include <filesystem>
#include <functional>
#include <iostream>

namespace CommandTests {

namespace {

namespace fs = std::filesystem;
using FaultTests::readFile;
using FaultTests::Report;
using FaultTests::WorkFolder;

constexpr int kRows = 4;
constexpr std::size_t kRoom = 16000; // kB

std::map<std::string, std::string> everythingIn(const std::string &folder) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
    files[entry.path().string()] = entry.is_regular_file() ? readFile(entry.path().string()) : "";
  }
  return files;
}

// A solved project that `protect` makes unwritable, and `unprotect` writable again.
void judge(const Product &product, const std::string &folder, const std::function<bool()> &protect,
           const std::function<bool()> &unprotect, Report &report) {
  fs::create_directory(folder);
  Box box(product, folder);
  box.keepBeside(product.work().path() + "/" + fs::path(folder).filename().string() + ".");
  box.script("");
  box.writeStudy(kRows);
  report.add("solving", box.run().unless(0));
  report.add("protecting", protect() ? "" : "the project cannot be protected");
  const auto before = everythingIn(folder);
  for (const Look &look : looks()) {
    report.add(joined(look.words), problemOfLook(box, look));
  }
  for (const Words &words : changes()) {
    report.add(joined(words), problemOfRefusal(box, words, "reading only"));
  }
  report.add("what is there", everythingIn(folder) == before ? "" : "something was written");
  report.add("starts", box.beginnings() == kRows ? "" : "a solver was started");
  report.add("giving back", unprotect() ? "" : "the project cannot be given back");
}

bool setModes(const std::string &folder, fs::perms ofFiles, fs::perms ofFolders) {
  std::error_code error;
  std::vector<fs::path> folders{folder};
  fs::permissions(folder, fs::perms::owner_all, error);
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_directory()) {
      folders.push_back(entry.path());
    } else {
      fs::permissions(entry.path(), ofFiles, error);
    }
  }
  for (auto path = folders.rbegin(); path != folders.rend(); ++path) {
    fs::permissions(*path, ofFolders, error);
  }
  return !error;
}

// The same trials where everything may be written: each change is carried out.
bool isFoundOut(const Report &control) {
  return control.violations() >= static_cast<int>(changes().size());
}

} // namespace

Outcome runReadOnlySuite(const SuiteOptions &options) {
  const WorkFolder work;
  const Product product(work, options);
  const std::string folder = work.path() + "/box";
  Report report("read-only");
  judge(
      product, folder, [&] { return setModes(folder, fs::perms(0444), fs::perms(0555)); },
      [&] { return setModes(folder, fs::perms(0644), fs::perms(0755)); }, report);
  std::cout << "What the control finds is meant to be found:\n";
  Report control("read-only control, writable");
  const auto nothing = [] {
    return true;
  };
  judge(product, work.path() + "/writable", nothing, nothing, control);
  report.close();
  control.close();
  return report.violations() == 0 && isFoundOut(control) ? Outcome::Passed : Outcome::Failed;
}

Outcome runMediaSuite(const SuiteOptions &options) {
  const WorkFolder work;
  if (!FaultTests::prepareMounting(work.path())) {
    return Outcome::CannotMount;
  }
  const std::string place = work.makeFolder("disk");
  const SmallDisk disk(place, kRoom);
  if (!disk.problem().empty()) {
    return Outcome::CannotMount;
  }
  const Product product(work, options, FaultTests::startWithoutRights);
  Report report("read-only media");
  judge(
      product, place + "/box", [&] { return disk.makeReadOnly(); }, [&] { return disk.makeWritable(); },
      report);
  std::cout << "What the control finds is meant to be found:\n";
  Report control("read-only media control, writable");
  const auto nothing = [] {
    return true;
  };
  judge(product, place + "/writable", nothing, nothing, control);
  report.close();
  control.close();
  return report.violations() == 0 && isFoundOut(control) ? Outcome::Passed : Outcome::Failed;
}

} // namespace CommandTests
