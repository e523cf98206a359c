#include "tests/fault/judge/SyncOrder.h"

#include "tests/fault/judge/CallLog.h"
#include "tests/fault/judge/Command.h"

#include <algorithm>
#include <functional>

namespace FaultTests {

namespace {

using Lines = std::vector<std::string>;

// Which of the product's acts a line shows; paths without the project's folder.
struct Act {
  enum class Kind { Other, Sync, Removal, Start, Report };
  Kind kind = Kind::Other;
  std::string path;
};

std::string between(const std::string &text, char begin, char end) {
  const std::size_t from = text.find(begin);
  const std::size_t to = from == std::string::npos ? from : text.find(end, from + 1);
  return to == std::string::npos ? "" : text.substr(from + 1, to - from - 1);
}

std::string below(const std::string &path, const std::string &folder) {
  return path == folder ? "." : path.rfind(folder + "/", 0) == 0 ? path.substr(folder.size() + 1) : path;
}

bool succeeded(const std::string &line) {
  return line.find(") = -1") == std::string::npos;
}

Act actOf(const std::string &line, const std::string &folder) {
  const std::string call = callOf(line);
  if (!succeeded(line)) {
    return {};
  }
  if (call == "fsync" || call == "fdatasync") {
    return {Act::Kind::Sync, below(between(line, '<', '>'), folder)};
  }
  if (call == "unlink") {
    return {Act::Kind::Removal, below(between(line, '"', '"'), folder)};
  }
  if (call == "sendmsg") { // by which a supervisor is told to start a solver
    return {Act::Kind::Start, ""};
  }
  if (call == "pwritev2" && line.find(".acks>") != std::string::npos) {
    return {Act::Kind::Report, between(line, '"', '"')};
  }
  return {};
}

bool endsWith(const std::string &text, const std::string &ending) {
  return text.size() >= ending.size() &&
         text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

// Looks for acts one after the other.
class Search {
public:
  Search(const std::vector<Act> &acts, std::size_t from, std::size_t to)
      : m_acts(acts), m_at(from), m_to(to) {}

  void expect(const std::string &what, Act::Kind kind, const std::string &ending) {
    while (m_problem.empty() && m_at < m_to) {
      const Act &act = m_acts[m_at++];
      if (act.kind == kind && endsWith(act.path, ending)) {
        return;
      }
    }
    m_problem = m_problem.empty() ? what : m_problem;
  }
  void expectSync(const std::string &ending) {
    expect(ending + " is not synced in time", Act::Kind::Sync, ending);
  }
  void expectCommit() {
    expectSync("box.optstudy-journal");
    expectSync("box.optstudy");
    expect("the journal stays", Act::Kind::Removal, "box.optstudy-journal");
    expectSync(".");
  }
  const std::string &problem() const { return m_problem; }

private:
  const std::vector<Act> &m_acts;
  std::size_t m_at;
  std::size_t m_to;
  std::string m_problem;
};

// The strace line of a string that was cut has no end that says so; the file's own names are short enough.
std::string problemBetween(const std::vector<Act> &acts, std::size_t from, std::size_t start,
                           std::size_t to) {
  Search begin(acts, from, start);
  begin.expectCommit();
  if (!begin.problem().empty()) {
    return "when the solver starts: " + begin.problem();
  }
  for (const char *file :
       {"/run/result.txt", "/run/stdout.log", "/run/detail/inputs.txt", "/run/detail", "/run"}) {
    Search search(acts, start, to);
    search.expectSync(file);
    search.expectSync("box.results");
    search.expectSync(".");
    search.expectCommit();
    if (!search.problem().empty()) {
      return "when the row is reported: " + search.problem();
    }
  }
  return "";
}

} // namespace

std::vector<SolvedRow> solvedRows(const std::string &log, const std::string &folder) {
  std::vector<Act> acts;
  for (const std::string &line : linesOf(log)) {
    const Act act = actOf(line, folder);
    if (act.kind != Act::Kind::Other) {
      acts.push_back(act);
    }
  }
  std::vector<SolvedRow> rows;
  std::size_t last = 0;
  for (std::size_t number = 0; number < acts.size(); ++number) {
    if (acts[number].kind != Act::Kind::Report) {
      continue;
    }
    if (acts[number].path.rfind("solve", 0) == 0) {
      std::size_t start = last;
      while (start < number && acts[start].kind != Act::Kind::Start) {
        ++start;
      }
      rows.push_back({acts[number].path, start == number ? "it is reported before its solver starts"
                                                         : problemBetween(acts, last, start, number)});
    }
    last = number;
  }
  return rows;
}

} // namespace FaultTests
