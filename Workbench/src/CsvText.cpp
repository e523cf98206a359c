#include "Workbench/src/CsvText.h"

namespace Workbench {

namespace {

bool needsQuotes(const std::string &text) {
  return text.find_first_of(",\"\r\n") != std::string::npos ||
         (!text.empty() && (text.front() == ' ' || text.back() == ' '));
}

} // namespace

std::string csvCell(const std::string &text) {
  if (!needsQuotes(text)) {
    return text;
  }
  std::string cell = "\"";
  for (const char character : text) {
    cell += character;
    if (character == '"') {
      cell += character;
    }
  }
  return cell + "\"";
}

void appendCsvLine(std::string &text, const std::vector<std::string> &cells) {
  for (std::size_t index = 0; index < cells.size(); ++index) {
    text.append(index == 0 ? "" : ",").append(csvCell(cells[index]));
  }
  text += "\n";
}

} // namespace Workbench
