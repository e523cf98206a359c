#pragma once

#include "tests/study-fault/Suite.h"

#include <string>
#include <vector>

namespace StudyFaults {

/// What became of the study in each trial, as a page of Markdown. The same trials give the same page.
class Table {
public:
  void add(const std::string &flow, const std::vector<Result> &results);
  /// \param file  a path, or "-" for the standard output
  bool write(const std::string &file) const;

private:
  std::string m_text;
};

} // namespace StudyFaults
