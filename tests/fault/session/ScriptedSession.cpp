#include "tests/fault/session/ScriptedSession.h"

#include "OptimizationTool/OptimizationData.h"
#include "tests/fault/session/Projects.h"

#include <utility>

namespace FaultTests {

namespace {

constexpr int kRows = 5;

} // namespace

ScriptedSession::ScriptedSession(std::string folder, Acknowledgements &acknowledgements, Flaw flaw,
                                 std::function<void(int count)> acknowledged)
    : m_folder(std::move(folder)), m_acknowledgements(acknowledgements), m_flaw(flaw),
      m_acknowledged(std::move(acknowledged)) {}

void ScriptedSession::acknowledge(const std::string &name) {
  m_acknowledgements.add(name);
  m_acknowledged(m_acknowledgements.count());
}

// Whoever is deaf to failures goes on without a project.
BoxSession &ScriptedSession::box() const {
  if (m_box == nullptr) {
    throw StepFailed("no project");
  }
  return *m_box;
}

void ScriptedSession::step(const std::string &name, const std::function<void()> &work) {
  if (m_flaw == Flaw::Early) {
    acknowledge(name);
  }
  try {
    work();
  } catch (const StepFailed &) {
    if (m_flaw != Flaw::Deaf) {
      throw;
    }
  }
  if (m_flaw != Flaw::Early) {
    acknowledge(name);
  }
}

// Every row is a step of its own, which the product reports.
void ScriptedSession::solveRows(const std::string &what, int most) {
  int solved = 0;
  for (int row = 0; m_flaw == Flaw::Early && row < most; ++row) {
    acknowledge(what);
  }
  try {
    box().solve(most, [&](const std::string &row) {
      ++solved;
      if (m_flaw != Flaw::Early) {
        acknowledge(what + " " + row);
      }
    });
  } catch (const StepFailed &) {
    if (m_flaw != Flaw::Deaf) {
      throw;
    }
  }
  for (; m_flaw == Flaw::Deaf && solved < most; ++solved) {
    acknowledge(what);
  }
}

void ScriptedSession::makeRows() {
  step("create", [this] { m_box = std::make_unique<BoxSession>(m_folder, 0); });
  for (int row = 1; row <= kRows; ++row) {
    step("row", [this, row] {
      // The project is closed before it is opened again.
      m_box.reset();
      m_box = std::make_unique<BoxSession>(m_folder, row);
    });
  }
}

void ScriptedSession::editAndRename() {
  step("edit", [this] { box().edit("z", "6"); });
  EntityModel::ModelVersion *draft = nullptr;
  step("new version", [this, &draft] {
    EmbeddedHost::Project &project = box().project();
    draft = project.changeManager().startNewVersion("Draft", "tried", "", "", nullptr, project.rootVersion(),
                                                    false);
    box().save();
  });
  step("rename", [this, &draft] {
    expectDone(box().study().commands().renameVersion(draft, "Kept").problem);
    box().save();
  });
}

void ScriptedSession::removeRow() {
  step("remove", [this] {
    // A row that was solved, so that there is a folder to be removed.
    box().study().data().removeVariant(2, true);
    box().save();
  });
}

void ScriptedSession::run() {
  makeRows();
  editAndRename();
  solveRows("solve", 3);
  step("price", [this] {
    expectDone(box().study().updateAndPrice());
    box().save();
  });
  // What was solved is solved again, over results that are there.
  step("edit", [this] { box().edit("z", "7"); });
  solveRows("solve again", 1);
  removeRow();
  step("save", [this] { box().edit("note", "good bye"); });
  step("backup", [this] {
    std::string problem;
    const bool isDone = box().project().backup(keptProject(m_folder), problem);
    expectDone(isDone || !problem.empty() ? problem : "no reason");
  });
  step("close", [this] { m_box.reset(); });
  step("migrate", [this] { openProject(oldProject(m_folder), EmbeddedHost::OpenMode::ReadWrite); });
}

} // namespace FaultTests
