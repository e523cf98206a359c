#pragma once

#include "tests/fault/session/Acknowledgements.h"
#include "tests/fault/session/BoxSession.h"

#include <functional>
#include <memory>
#include <string>

namespace FaultTests {

/// What is wrong with a session on purpose, so that a suite can show that it would notice.
enum class Flaw {
  None,
  Early, ///< reports a step as done before it is begun
  Deaf   ///< reports a step as done though it failed
};

/// A user's work on one project, from its creation to its backup, and on a second one that an earlier release made.
/// Each step is acknowledged once the product has reported it done.
class ScriptedSession {
public:
  /// \param acknowledged  called after every acknowledgement
  ScriptedSession(std::string folder, Acknowledgements &acknowledgements, Flaw flaw,
                  std::function<void(int count)> acknowledged);

  /// \throws StepFailed  and nothing more is done then
  void run();

private:
  BoxSession &box() const;
  void step(const std::string &name, const std::function<void()> &work);
  void acknowledge(const std::string &name);
  void solveRows(const std::string &what, int most);
  void makeRows();
  void editAndRename();
  void removeRow();

  std::string m_folder;
  Acknowledgements &m_acknowledgements;
  Flaw m_flaw;
  std::function<void(int)> m_acknowledged;
  std::unique_ptr<BoxSession> m_box;
};

} // namespace FaultTests
