#pragma once

#include "apps/optstudy/tests/CommandRun.h"

#include <map>
#include <string>
#include <vector>

// An example of the source tree in a folder of its own, and what the command makes of it.
class ExampleTable {
public:
  // \param name  of the folder below examples/; the study file is called after it
  explicit ExampleTable(const std::string &name);

  const TemporaryFolder &folder() const { return m_folder; }
  std::string studyFile() const { return m_name + ".study.yaml"; }
  CommandResult run() const { return runCommand(m_folder, {"run", studyFile()}); }

  // The matrix of the project, a map from titles to cells for each row; no cell is missing.
  std::vector<std::map<std::string, std::string>> rows() const;

private:
  std::string m_name;
  TemporaryFolder m_folder;
};

// A cell as a number; NaN when it is none.
double numberIn(const std::map<std::string, std::string> &row, const std::string &title);
