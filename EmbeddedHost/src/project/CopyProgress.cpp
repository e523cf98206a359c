#include "EmbeddedHost/src/project/CopyProgress.h"

#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/src/project/FolderTree.h"
#include "HostModel/NullProgress.h"

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace EmbeddedHost {

namespace {

// What cannot be looked at is left out here; copying it says why.
std::uint32_t countFiles(const Folder &folder, int depth) {
  std::uint32_t count = 0;
  std::vector<std::string> names;
  std::string ignored;
  if (depth > kDeepestFolder || !folder.listNames(names, ignored)) {
    return count;
  }
  for (const std::string &name : names) {
    const EntryKind kind = folder.kindOf(name);
    if (kind == EntryKind::File) {
      ++count;
    } else if (kind == EntryKind::Folder) {
      const Folder inner = folder.open(name);
      count += inner.isOpen() ? countFiles(inner, depth + 1) : 0;
    }
  }
  return count;
}

} // namespace

CopyProgress::CopyProgress(Tools::ToolProgress &progress, const Folder &source)
    : m_progress(progress), m_scope(&progress), m_isNested(progress.isRunning()) {
  if (!m_isNested) {
    m_progress.start();
    m_progress.setText("Copying results");
  }
  m_progress.pushLevel(countFiles(source, 1));
}

CopyProgress::~CopyProgress() {
  // The range around this one goes on where it was; its owner advances it.
  if (m_isNested && !m_progress.stepCounts.empty()) {
    m_progress.stepCounts.pop_back();
  }
}

void CopyProgress::copiedFile() {
  if (!m_isShown) {
    return;
  }
  try {
    m_progress.advance(1, Tools::Progress::AdditionalProgressNone::shared());
  } catch (const std::exception &) {
    // What is copied is copied, whether that can be shown or not.
    m_isShown = false;
  }
}

} // namespace EmbeddedHost
