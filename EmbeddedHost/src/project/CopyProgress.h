#pragma once

#include "HostModel/ToolProgress.h"

namespace EmbeddedHost {

class Folder;

/// Tells a host's progress of each file of a folder that was copied, in a range of its own with one step per file.
/// Begins and ends a task when none runs.
class CopyProgress {
public:
  CopyProgress(Tools::ToolProgress &progress, const Folder &source);
  CopyProgress(const CopyProgress &) = delete;
  CopyProgress &operator=(const CopyProgress &) = delete;
  ~CopyProgress();

  void copiedFile();

private:
  Tools::ToolProgress &m_progress;
  Tools::ProgressScope m_scope;
  bool m_isNested;
  bool m_isShown = true;
};

} // namespace EmbeddedHost
