#include "Workbench/RunKeys.h"

#include "EmbeddedHost/RunFiles.h"

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
  std::string text() const { return m_hash.result().toHex().toStdString(); }

private:
  static constexpr std::size_t kPiece = std::size_t{1} << 30U;

  QCryptographicHash m_hash{QCryptographicHash::Sha256};
};

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

RunKeys runKeys(const StudySolver &solver, const std::string &program, const std::vector<RunFile> &files) {
  KeyHash run;
  run.add(program);
  run.add(std::to_string(solver.command.size()));
  for (const std::string &argument : solver.command) {
    run.add(argument);
  }
  run.add(std::to_string(solver.environment.size()));
  for (const auto &[name, value] : solver.environment) {
    run.add(name);
    run.add(value);
  }
  run.add(std::to_string(solver.exitCodes.size()));
  for (const int code : solver.exitCodes) {
    run.add(std::to_string(code));
  }
  for (const RunFile &file : files) {
    run.add(file.name);
    run.add(file.copyOf.empty() ? "rendered" : "copied");
    run.add(file.copyOf.empty() ? file.content : file.fingerprint);
  }
  KeyHash extract;
  for (const StudyExtractor &extractor : solver.extractors) {
    extract.add(extractor.attribute);
    extract.add(std::to_string(static_cast<int>(extractor.source)));
    extract.add(extractor.file);
    extract.add(extractor.unit);
    extract.add(extractor.extractor.pattern());
    extract.add(std::to_string(extractor.extractor.group()));
  }
  return {"run-1:" + run.text(), "extract-1:" + extract.text()};
}

} // namespace Workbench
