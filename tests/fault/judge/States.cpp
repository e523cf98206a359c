#include "tests/fault/judge/States.h"

#include "tests/fault/judge/Command.h"

namespace FaultTests {

namespace {

using Blocks = std::map<std::string, std::string>;

Blocks blocksOf(const std::string &state) {
  Blocks blocks;
  std::string name;
  for (const std::string &line : linesOf(state)) {
    if (line.rfind("@ ", 0) == 0) {
      name = line;
    }
    blocks[name] += line + "\n";
  }
  return blocks;
}

bool saysUnfinished(const std::string &block) {
  return block.find("\n  run failed\n") != std::string::npos ||
         block.find("\n  run running\n") != std::string::npos;
}

// A block without results, and what it says of the run.
struct Parts {
  std::string inputs;
  std::string run;
};

Parts partsOf(const std::string &block) {
  Parts parts;
  bool isRun = false;
  for (const std::string &line : linesOf(block)) {
    isRun = isRun || line.rfind("  run ", 0) == 0;
    const bool isResult = line.rfind("    sum = ", 0) == 0 || line.rfind("    product = ", 0) == 0;
    (isRun ? parts.run : parts.inputs) += isResult && !isRun ? "" : line + "\n";
  }
  return parts;
}

// A version that is being solved may have failed, or not come to an end. Others, without results of their own, show
// those of the version that they were made from.
bool mayFollowFromAnError(const std::string &before, const std::string &found) {
  const Parts was = partsOf(before);
  const Parts is = partsOf(found);
  return was.inputs == is.inputs && (was.run == is.run || saysUnfinished(found));
}

} // namespace

States States::read(const std::string &folder, std::size_t count) {
  States states;
  for (std::size_t number = 0; number <= count; ++number) {
    states.after.push_back(readFile(folder + "/" + std::to_string(number)));
    const std::string solving = readFile(folder + "/running-" + std::to_string(number));
    if (!solving.empty()) {
      states.solvingAfter[number] = solving;
    }
  }
  return states;
}

bool States::isAllowed(const std::string &state, std::size_t acknowledged) const {
  if (acknowledged >= after.size()) {
    return false;
  }
  const auto solving = solvingAfter.find(acknowledged);
  return state == after[acknowledged] ||
         (acknowledged + 1 < after.size() && state == after[acknowledged + 1]) ||
         (solving != solvingAfter.end() && state == solving->second);
}

bool States::isAllowedAfterError(const std::string &state, std::size_t acknowledged) const {
  if (isAllowed(state, acknowledged)) {
    return true;
  }
  if (solvingAfter.count(acknowledged) == 0) {
    return false;
  }
  const Blocks found = blocksOf(state);
  const Blocks before = blocksOf(after[acknowledged]);
  const Blocks next = blocksOf(after[acknowledged + 1]);
  if (found.size() != before.size()) {
    return false;
  }
  for (const auto &[name, block] : found) {
    const auto was = before.find(name);
    const auto becomes = next.find(name);
    if (was == before.end() || becomes == next.end()) {
      return false;
    }
    const bool isAffected = was->second != becomes->second;
    if (block != was->second && !(isAffected && mayFollowFromAnError(was->second, block))) {
      return false;
    }
  }
  return true;
}

std::string States::difference(const std::string &state, std::size_t acknowledged) const {
  if (acknowledged >= after.size()) {
    return "there are more acknowledgements than steps";
  }
  const std::vector<std::string> expected = linesOf(after[acknowledged]);
  const std::vector<std::string> found = linesOf(state);
  std::string block;
  for (std::size_t line = 0; line < found.size(); ++line) {
    block = found[line].rfind("@ ", 0) == 0 ? found[line] : block;
    if (line >= expected.size() || found[line] != expected[line]) {
      return block + ": " + found[line] + (line < expected.size() ? " instead of " + expected[line] : "");
    }
  }
  return found.size() < expected.size() ? "it ends before " + expected[found.size()] : "no difference";
}

} // namespace FaultTests
