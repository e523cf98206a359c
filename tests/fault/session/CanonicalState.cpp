#include "tests/fault/session/CanonicalState.h"

#include "EmbeddedHost/src/project/ProjectParts.h"

#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace FaultTests {

namespace {

namespace fs = std::filesystem;
using EmbeddedHost::RunRecord;
using EmbeddedHost::RunStatus;
using EmbeddedHost::Version;

// On one line, whatever is in it.
std::string quoted(const std::string &text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '\n' || character == '"' || character == '\\') {
      result += '\\';
    }
    result += character == '\n' ? 'n' : character;
  }
  return result + "\"";
}

std::string bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(bits));
  return text.data();
}

std::string pathOf(const Version &version) {
  const std::string label = version.getLabel();
  return version.previous() == nullptr ? label : pathOf(*version.previous()) + "/" + label;
}

std::string marksText(const Version &version) {
  const EmbeddedHost::VersionMarks &marks = version.marks();
  std::string text = "  marks type " + std::to_string(static_cast<int>(marks.studyType)) + " flags";
  for (const EntityModel::ModelVersionStudyCaseFlag flag : marks.caseFlags) {
    text += " " + std::to_string(static_cast<int>(flag));
  }
  text += marks.isRemovedFromStudy ? " removed" : "";
  text += marks.isReadOnly ? " read-only" : "";
  return text + " " + quoted(marks.description) + "\n";
}

std::string limitText(const std::optional<double> &limit) {
  return limit ? bitsOf(*limit) : "none";
}

std::string slotText(EmbeddedHost::Slot &slot) {
  const EntityModel::Attribute &attribute = EmbeddedHost::ModelEntity::attributeOf(slot);
  std::string text = attribute.hasValue() ? quoted(attribute.getValueAsString()) : "unset";
  if (const auto *real = std::get_if<EmbeddedHost::RealValue>(&slot.value); real != nullptr) {
    text += " " + bitsOf(real->number);
  }
  return text + " limits " + limitText(minimumOf(slot)) + " " + limitText(maximumOf(slot));
}

std::string valuesText(const EmbeddedHost::Model &model) {
  std::string text;
  for (const std::unique_ptr<EmbeddedHost::ModelEntity> &entity : model.entities()) {
    if (!entity->exists()) {
      continue;
    }
    text += "  entity " + quoted(entity->name()) + " of " + entity->type().label() + "\n";
    for (EmbeddedHost::Slot &slot : entity->slots()) {
      text += "    " + slot.member->path.toString('.') + " = " + slotText(slot) + "\n";
    }
  }
  return text;
}

std::string contentOf(const fs::path &file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return stream ? content.str() : "unreadable";
}

std::string filesText(const std::string &folder) {
  std::vector<std::string> lines;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = fs::relative(entry->path(), folder, error).string();
    if (name == "run.new") {
      // Where a run is made; it becomes a result by being renamed.
      entry.disable_recursion_pending();
      continue;
    }
    lines.push_back("  " +
                    (entry->is_regular_file()
                         ? "file " + quoted(name) + " " + hashOf(contentOf(entry->path()))
                         : "folder " + quoted(name)) +
                    "\n");
  }
  if (error) {
    lines.push_back("  folder cannot be read: " + error.message() + "\n");
  }
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string &line : lines) {
    text += line;
  }
  return text;
}

const char *nameOf(RunStatus status) {
  switch (status) {
  case RunStatus::None:
    return "none";
  case RunStatus::Running:
    return "running";
  case RunStatus::Ok:
    return "ok";
  default:
    return "failed";
  }
}

std::string runText(EmbeddedHost::Project &project, EntityModel::ModelVersion &version) {
  const RunRecord record = project.runRecord(version);
  // What was begun shows as lost to whoever opens the project for writing.
  const bool isLost = record.status == RunStatus::Failed && record.reason == EmbeddedHost::kLostRun;
  const RunStatus status = isLost ? RunStatus::Running : record.status;
  std::string text = std::string("  run ") + nameOf(status) + "\n";
  if (status == RunStatus::None || status == RunStatus::Running) {
    return text;
  }
  text += "  reason " + quoted(record.reason) + "\n  keys";
  for (const std::string &key : record.keys) {
    text += " " + quoted(key);
  }
  text += "\n  command";
  for (const std::string &word : record.command) {
    text += " " + quoted(word);
  }
  text += "\n  exit " + (record.exitCode ? std::to_string(*record.exitCode) : std::string("none"));
  text += "\n  log " + quoted(record.logTail) + "\n";
  const std::string folder = project.versionFolder(version, false);
  std::error_code error;
  return text + (fs::exists(folder, error) ? filesText(folder) : "  no files\n");
}

} // namespace

std::string hashOf(const std::string &bytes) {
  const QByteArray hash = QCryptographicHash::hash(
      QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size())), QCryptographicHash::Sha256);
  return hash.toHex().toStdString();
}

std::string versionText(EmbeddedHost::Project &project, EntityModel::ModelVersion &version) {
  EmbeddedHost::Model &model = project.parts().model;
  Version *own = model.tree().own(&version);
  model.tree().makeCurrent(own);
  return marksText(*own) + valuesText(model) + runText(project, version);
}

std::string projectText(EmbeddedHost::Project &project, const std::string &name) {
  std::vector<std::string> blocks;
  for (EntityModel::ModelVersion *version : project.versions()) {
    const std::string path = pathOf(*project.parts().model.tree().own(version));
    std::string block = "@ ";
    block.append(name).append("/").append(path).append("\n");
    blocks.push_back(block + versionText(project, *version));
  }
  std::string text;
  for (const std::string &block : blocks) {
    text += block;
  }
  return text;
}

} // namespace FaultTests
