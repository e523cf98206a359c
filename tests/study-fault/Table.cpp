#include "tests/study-fault/Table.h"

#include <cstdio>
#include <fstream>

namespace StudyFaults {

namespace {

constexpr const char *kHead = "| operation | fault | at call | outcome | flags | current version | matrix | "
                              "rows with a cost | versions | "
                              "usable again |\n|---|---|---|---|---|---|---|---|---|---|\n";

bool isSame(const Result &a, const Result &b) {
  return a.operation == b.operation && a.kind == b.kind && a.seen == b.seen && a.findings == b.findings;
}

std::string line(const Result &result, const std::string &where) {
  std::string text = "| " + (result.operation.empty() ? std::string("none") : result.operation) + " | " +
                     result.kind + " | " + (where.empty() ? "-" : where);
  for (const std::string &field : result.seen) {
    text += " | " + field;
  }
  for (const std::string &finding : result.findings) {
    text += " | FOUND: " + finding;
  }
  return text + " |\n";
}

} // namespace

void Table::add(const std::string &flow, const std::vector<Result> &results) {
  m_text += "## " + flow + "\n\n" + kHead;
  for (std::size_t index = 0; index < results.size();) {
    std::string where = results[index].where;
    std::size_t next = index + 1;
    // Calls with the same end share a line.
    for (; next < results.size() && isSame(results[index], results[next]); ++next) {
      where += ", ";
      where += results[next].where;
    }
    m_text += line(results[index], where);
    index = next;
  }
  m_text += "\n";
}

bool Table::write(const std::string &file) const {
  if (file == "-") {
    return std::fputs(m_text.c_str(), stdout) >= 0;
  }
  std::ofstream stream(file, std::ios::binary);
  stream << m_text;
  stream.close();
  return !stream.fail();
}

} // namespace StudyFaults
