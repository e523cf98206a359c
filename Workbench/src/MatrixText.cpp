#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/src/PlainText.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

// One column of the printed table: a title, a unit, and one text a row.
struct TextColumn {
  std::vector<std::string> cells;
  bool isRightAligned = true;
};

std::string formatted(const char *format, double value) {
  std::string problem;
  const auto parsed = EmbeddedHost::SolverNumberFormat::parse(format, problem);
  const std::optional<std::string> text = parsed ? parsed->write(value) : std::nullopt;
  return text ? *text : EmbeddedHost::writeSolverNumber(value);
}

std::string valueText(const std::optional<double> &value) {
  return value ? formatted("%.6g", *value) : "";
}

// Nothing where either is unknown, or where the baseline is 0 and per cent of it are asked for.
std::string differenceText(const std::optional<double> &value, const std::optional<double> &baseline,
                           Differences differences) {
  if (!value || !baseline || !std::isfinite(*value) || !std::isfinite(*baseline)) {
    return "";
  }
  if (differences == Differences::Absolute) {
    return formatted("%+.6g", *value - *baseline);
  }
  if (*baseline == 0.0) {
    return "";
  }
  const double percent = (*value - *baseline) / std::fabs(*baseline) * 100.0;
  return formatted("%+.1f", percent);
}

// How many characters a terminal shows, taking every code point as one.
std::size_t widthOf(const std::string &text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) != 0x80U;
  }));
}

// A table of thousands of rows has a million cells: their lines are put together in place.
std::string linesOf(const std::vector<TextColumn> &columns) {
  std::vector<std::size_t> widths;
  std::size_t lineLength = 1;
  for (const TextColumn &column : columns) {
    std::size_t width = 0;
    for (const std::string &cell : column.cells) {
      width = std::max(width, widthOf(cell));
    }
    widths.push_back(width);
    lineLength += width + 2;
  }
  std::string text;
  text.reserve(lineLength * (columns.front().cells.size() + 1));
  for (std::size_t line = 0; line < columns.front().cells.size(); ++line) {
    for (std::size_t index = 0; index < columns.size(); ++index) {
      const std::string &cell = columns[index].cells[line];
      const std::size_t padding = widths[index] - widthOf(cell);
      text.append(index == 0 ? 0 : 2, ' ');
      text.append(columns[index].isRightAligned ? padding : 0, ' ').append(cell);
      text.append(columns[index].isRightAligned ? 0 : padding, ' ');
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
    if (line == 1) {
      for (std::size_t index = 0; index < columns.size(); ++index) {
        text += (index == 0 ? "" : "  ") + std::string(widths[index], '-');
      }
      text += "\n";
    }
  }
  return text;
}

} // namespace

std::string MatrixTable::toText(Differences differences) const {
  std::vector<TextColumn> columns;
  const auto add = [&columns](const std::string &heading, const std::string &unit,
                              bool isRightAligned) -> TextColumn & {
    columns.push_back({{inOneLine(heading), inOneLine(unit)}, isRightAligned});
    return columns.back();
  };
  TextColumn &numbers = add("row", "", true);
  for (const Row &row : rows) {
    numbers.cells.push_back((bestNumber == row.number ? "* " : "") + std::to_string(row.number));
  }
  TextColumn &names = add("name", "", false);
  for (const Row &row : rows) {
    names.cells.push_back(inOneLine(row.name));
  }
  for (std::size_t index = 0; index < inputs.size(); ++index) {
    TextColumn &column = add(inputs[index].title, inputs[index].unit, true);
    for (const Row &row : rows) {
      column.cells.push_back(inOneLine(row.inputs[index]));
    }
  }
  const auto addResult = [&](const std::string &heading, const std::string &unit, const auto &valueOf) {
    TextColumn &values = add(heading, unit, true);
    for (const Row &row : rows) {
      values.cells.push_back(valueText(valueOf(row)));
    }
    if (differences == Differences::None) {
      return;
    }
    TextColumn &changes = add("diff", differences == Differences::Percent ? "%" : unit, true);
    for (const Row &row : rows) {
      changes.cells.push_back(differenceText(valueOf(row), valueOf(baseline), differences));
    }
  };
  for (std::size_t index = 0; index < outputs.size(); ++index) {
    addResult(outputs[index].title, outputs[index].unit,
              [index](const Row &row) { return row.outputs[index]; });
  }
  if (hasCost) {
    addResult("cost", "", [](const Row &row) { return row.cost; });
  }
  TextColumn &statuses = add("status", "", false);
  for (const Row &row : rows) {
    statuses.cells.push_back(
        inOneLine(statusText(row.state) + (row.state.isInStudyFile ? "" : " (not in the study file)")));
  }
  return (title.empty() ? "" : inOneLine(title) + "\n\n") + linesOf(columns);
}

} // namespace Workbench
