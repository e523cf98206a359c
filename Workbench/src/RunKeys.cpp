#include "Workbench/RunKeys.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"

#include <QCryptographicHash>

#include <algorithm>

namespace Workbench {

namespace {

constexpr std::size_t kLargestFile = std::size_t{1024} * 1024 * 1024;

// Hashes a list of texts such that no other list gives the same bytes.
class KeyHash {
public:
  void add(const std::string &text) {
    const std::string length = std::to_string(text.size()) + ":";
    m_hash.addData(length.data(), static_cast<int>(length.size()));
    for (std::size_t offset = 0; offset < text.size(); offset += kPiece) {
      const std::size_t size = std::min(kPiece, text.size() - offset);
      m_hash.addData(text.data() + offset, static_cast<int>(size));
    }
  }
  void add(std::size_t number) { add(std::to_string(number)); }
  void add(bool truth) { add(truth ? std::size_t{1} : std::size_t{0}); }
  void add(const std::optional<double> &number) {
    add(number ? EmbeddedHost::writeSolverNumber(*number) : std::string("none"));
  }
  void add(const EmbeddedHost::TableColumn &column) {
    add(column.title);
    add(column.number);
  }
  template <class T> void addAll(const std::vector<T> &items) {
    add(items.size());
    for (const T &item : items) {
      add(item);
    }
  }
  std::string text() const { return m_hash.result().toHex().toStdString(); }

private:
  static constexpr std::size_t kPiece = std::size_t{1} << 30U;

  QCryptographicHash m_hash{QCryptographicHash::Sha256};
};

// Everything that the rule says, whether the way of searching uses it or not.
void addRule(const EmbeddedHost::ExtractionRule &rule, KeyHash &key) {
  key.add(static_cast<std::size_t>(rule.kind));
  key.add(static_cast<std::size_t>(rule.reduction));
  key.add(rule.after);
  key.add(rule.until);
  key.add(rule.pattern);
  key.add(rule.group);
  key.add(rule.key);
  key.add(rule.separators);
  key.add(rule.column);
  key.add(std::string(1, rule.delimiter));
  key.add(rule.skippedLines);
  key.add(rule.whereColumn.has_value());
  key.add(rule.whereColumn.value_or(EmbeddedHost::TableColumn()));
  key.add(rule.whereValue);
  key.add(rule.isNearest);
  key.add(rule.pointer);
  key.add(rule.lineNumber);
  key.add(rule.firstColumn);
  key.add(rule.lastColumn);
}

void addExtractor(const StudyExtractor &extractor, KeyHash &key) {
  key.add(extractor.attribute);
  key.add(static_cast<std::size_t>(extractor.source));
  key.add(extractor.file);
  key.add(extractor.stage ? std::to_string(*extractor.stage) : std::string("all"));
  key.add(extractor.unit);
  key.add(extractor.minimum);
  key.add(extractor.maximum);
  key.add(extractor.extractor.has_value());
  if (extractor.extractor) {
    addRule(extractor.extractor->rule(), key);
  }
}

// Formulas compute in declared units, so that their numbers mean something else when one is declared in another.
void addUnit(const StudyFile &study, const std::string &attribute, KeyHash &key) {
  const StudyAttribute *declared = study.findAttribute(attribute);
  key.add(declared == nullptr ? std::string() : declared->unit);
}

std::string extractKey(const StudyFile &study, const std::vector<std::string> &constants) {
  KeyHash key;
  key.addAll(constants);
  key.add(study.solver.extractors.size());
  for (const StudyExtractor &extractor : study.solver.extractors) {
    addExtractor(extractor, key);
  }
  key.add(study.solver.success.has_value());
  if (const auto &success = study.solver.success) {
    key.add(success->pattern.pattern());
    key.add(static_cast<std::size_t>(success->source));
    key.add(success->file);
    key.add(success->stage);
  }
  key.add(study.formulas.size());
  for (const StudyFormula &formula : study.formulas) {
    key.add(formula.attribute);
    key.add(formula.text);
    addUnit(study, formula.attribute, key);
    for (const std::string &variable : formula.variables) {
      addUnit(study, variable, key);
    }
    key.add(formula.minimum);
    key.add(formula.maximum);
  }
  return key.text();
}

} // namespace

std::string fileFingerprint(const std::string &path, std::string &problem) {
  const std::optional<std::string> content = EmbeddedHost::readWholeFile(path, kLargestFile, problem);
  if (!content) {
    return "";
  }
  KeyHash hash;
  hash.add(*content);
  return hash.text();
}

RunKeys runKeys(const StudyFile &study, const std::vector<std::string> &programs,
                const RunContents &contents) {
  KeyHash run;
  run.addAll(programs);
  run.add(study.solver.stages.size());
  for (const StudyStage &stage : study.solver.stages) {
    run.add(stage.name);
    run.add(stage.exitCodes.size());
    for (const int code : stage.exitCodes) {
      run.add(static_cast<std::size_t>(code));
    }
  }
  run.add(contents.commands.size());
  for (const std::vector<std::string> &command : contents.commands) {
    run.addAll(command);
  }
  run.add(study.solver.environment.size());
  for (const auto &[name, value] : study.solver.environment) {
    run.add(name);
    run.add(value);
  }
  run.add(contents.files.size());
  for (const RunFile &file : contents.files) {
    run.add(file.name);
    run.add(std::string(file.copyOf.empty() ? "rendered" : "copied"));
    run.add(file.copyOf.empty() ? file.content : file.fingerprint);
  }
  return {"run-2:" + run.text(), "extract-2:" + extractKey(study, contents.constants), ""};
}

} // namespace Workbench
