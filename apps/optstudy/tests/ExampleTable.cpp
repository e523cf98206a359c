#include "apps/optstudy/tests/ExampleTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <locale>
#include <sstream>

namespace fs = std::filesystem;

ExampleTable::ExampleTable(const std::string &name) : m_name(name) {
  for (const fs::directory_entry &entry : fs::directory_iterator(fs::path(OPTSTUDY_EXAMPLES) / name)) {
    // Somebody may have run the example where it is.
    if (entry.is_regular_file() && entry.path().extension() != ".optstudy") {
      fs::copy_file(entry.path(), m_folder.path() / entry.path().filename());
    }
  }
}

std::vector<std::map<std::string, std::string>> ExampleTable::rows() const {
  const CommandResult result = runCommand(m_folder, {"show", studyFile(), "--format", "csv"});
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  std::vector<std::vector<std::string>> lines;
  for (const std::string &line : linesOf(result.output)) {
    std::vector<std::string> cells(1);
    for (const char character : line) { // no cell of the examples needs quotes
      if (character == ',') {
        cells.emplace_back();
      } else {
        cells.back() += character;
      }
    }
    lines.push_back(std::move(cells));
  }
  std::vector<std::map<std::string, std::string>> rows;
  for (std::size_t number = 2; number < lines.size(); ++number) {
    EXPECT_EQ(lines[number].size(), lines[0].size()) << number;
    std::map<std::string, std::string> row;
    for (std::size_t cell = 0; cell < std::min(lines[number].size(), lines[0].size()); ++cell) {
      row[lines[0][cell]] = lines[number][cell];
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

double numberIn(const std::map<std::string, std::string> &row, const std::string &title) {
  const auto found = row.find(title);
  std::istringstream stream(found == row.end() ? "" : found->second);
  stream.imbue(std::locale::classic());
  double number = std::nan("");
  return stream >> number ? number : std::nan("");
}
