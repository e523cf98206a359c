#include "EmbeddedHost/JsonText.h"
#include "EmbeddedHost/src/solve/ExtractionSearch.h"

namespace EmbeddedHost {

namespace {

// Follows a pointer through a JSON text as it is read, without keeping the text's other values.
class PointerSearch final : public JsonHandler {
public:
  PointerSearch(std::vector<std::string> steps, std::size_t firstLine, ExtractionMatches &found)
      : m_steps(std::move(steps)), m_linesBefore(firstLine - 1), m_found(found) {}

  void beginObject(TextPlace place) override {
    const bool isInTarget = !m_open.empty() && m_open.back().isTarget;
    const bool isWanted = isOnPointer();
    if (isInTarget || (isWanted && m_open.size() == m_steps.size())) {
      refuse("an object", place);
    }
    m_open.push_back({false, isWanted, false});
  }
  void endObject() override { m_open.pop_back(); }

  void beginArray(TextPlace place) override {
    const bool isInTarget = !m_open.empty() && m_open.back().isTarget;
    const bool isWanted = isOnPointer();
    if (isInTarget) {
      refuse("a list of lists", place);
    }
    m_open.push_back({true, isWanted, isWanted && m_open.size() == m_steps.size()});
  }
  void endArray() override { m_open.pop_back(); }

  void key(std::string name, TextPlace /*place*/) override { m_key = std::move(name); }

  void value(JsonKind kind, std::string text, TextPlace place) override {
    const bool isInTarget = !m_open.empty() && m_open.back().isTarget;
    const bool isTarget = isOnPointer() && m_open.size() == m_steps.size();
    if (!isTarget && !isInTarget) {
      return;
    }
    if (kind == JsonKind::Number) {
      m_found.matches.push_back({std::move(text), place.line + m_linesBefore});
    } else if (kind == JsonKind::Null) {
      m_found.matches.push_back({"", place.line + m_linesBefore});
    } else if (m_found.failure == ExtractionFailure::None) {
      m_found.fail(ExtractionFailure::NotANumber, quotedBeginning(text) + " is not a number",
                   place.line + m_linesBefore);
    }
  }

private:
  struct Level {
    bool isArray;
    bool isOnPointer;
    bool isTarget; // a list that the pointer ends at
    std::size_t next = 0;
  };

  // Whether the pointer leads to or through the value that begins here.
  bool isOnPointer() {
    if (m_open.empty()) {
      return true;
    }
    Level &parent = m_open.back();
    const std::size_t index = parent.next++;
    const std::size_t depth = m_open.size() - 1;
    if (!parent.isOnPointer || depth >= m_steps.size()) {
      return false;
    }
    return m_steps[depth] == (parent.isArray ? std::to_string(index) : m_key);
  }

  void refuse(const std::string &what, TextPlace place) {
    if (m_found.failure == ExtractionFailure::None) {
      m_found.fail(ExtractionFailure::NotANumber, what + " is not a number", place.line + m_linesBefore);
    }
  }

  std::vector<std::string> m_steps;
  std::size_t m_linesBefore;
  ExtractionMatches &m_found;
  std::vector<Level> m_open;
  std::string m_key;
};

} // namespace

std::optional<std::vector<std::string>> jsonPointerSteps(const std::string &pointer) {
  std::vector<std::string> steps;
  if (pointer.empty()) {
    return steps;
  }
  if (pointer.front() != '/') {
    return std::nullopt;
  }
  for (std::size_t index = 0; index < pointer.size(); ++index) {
    if (pointer[index] == '/') {
      steps.emplace_back();
    } else if (pointer[index] != '~') {
      steps.back() += pointer[index];
    } else if (++index < pointer.size() && (pointer[index] == '0' || pointer[index] == '1')) {
      steps.back() += pointer[index] == '0' ? '~' : '/';
    } else {
      return std::nullopt;
    }
  }
  return steps;
}

// The whole text is read even when the value was found, because a text that was cut short is no result.
void findJsonPointer(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found) {
  PointerSearch search(jsonPointerSteps(rule.pointer).value_or(std::vector<std::string>()), text.firstLine,
                       found);
  JsonProblem problem;
  if (!parseJson(text.text, search, problem)) {
    found.fail(ExtractionFailure::Malformed, "this is no JSON text: " + problem.message,
               problem.place.line + text.firstLine - 1);
  }
}

} // namespace EmbeddedHost
