#pragma once

#include "EmbeddedHost/LinePattern.h"
#include "EmbeddedHost/ResultExtractor.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace EmbeddedHost {

// A text that should be a number, with its line.
struct ExtractionMatch {
  std::string text;
  std::size_t line = 0;
};

// What a search in a text has found: in file order, or why the text cannot be searched.
struct ExtractionMatches {
  std::vector<ExtractionMatch> matches;
  ExtractionFailure failure = ExtractionFailure::None;
  std::string reason;
  std::size_t line = 0;

  bool fail(ExtractionFailure why, std::string message, std::size_t at) {
    failure = why;
    reason = std::move(message);
    line = at;
    return false;
  }
};

// The part of a text that counts, with the number of its first line.
struct ExtractionText {
  std::string_view text;
  std::size_t firstLine = 1;
};

// One search for each kind of rule. `pattern` is the rule's, null when it has none.
void findPattern(const ExtractionRule &rule, const LinePattern &pattern, ExtractionText text,
                 ExtractionMatches &found);
void findKey(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found);
void findFixedColumns(const ExtractionRule &rule, const LinePattern *pattern, ExtractionText text,
                      ExtractionMatches &found);
void findTableColumn(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found);
void findJsonPointer(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found);
void findWholeText(ExtractionText text, ExtractionMatches &found);

// The steps of a JSON pointer; empty when the text is none.
std::optional<std::vector<std::string>> jsonPointerSteps(const std::string &pointer);

} // namespace EmbeddedHost
