#include "tests/fault/session/BoxSession.h"

#include "tests/fault/session/BoxStudyText.h"
#include "tests/fault/session/Projects.h"

#include <utility>
#include <vector>

namespace FaultTests {

namespace {

class Observer final : public Workbench::SolveObserver {
public:
  Observer(int most, const std::function<void(const std::string &)> &solved)
      : m_left(most), m_solved(solved) {}

  void begun(std::size_t /*toSolve*/, std::size_t /*alreadySolved*/) override {}
  void finished(const std::string &rowName, const Workbench::RowState &state, double /*seconds*/) override {
    if (state.status != Workbench::RowStatus::Ok) {
      m_problem = state.reason.empty() ? "no reason" : state.reason;
      m_left = 0;
      return;
    }
    --m_left;
    m_solved(rowName);
  }
  void ended() override {}
  int interruptions() const override { return m_left > 0 ? 0 : 1; }
  const std::string &problem() const { return m_problem; }

private:
  int m_left;
  const std::function<void(const std::string &)> &m_solved;
  std::string m_problem;
};

std::string textOf(const std::vector<EmbeddedHost::FileProblem> &problems) {
  return problems.empty() ? "no reason" : problems.front().toText();
}

} // namespace

void expectDone(const std::string &problem) {
  if (!problem.empty()) {
    throw StepFailed(problem);
  }
}

BoxSession::BoxSession(const std::string &folder, int rows) : m_folder(folder) {
  std::vector<EmbeddedHost::FileProblem> problems;
  std::optional<Workbench::StudyFile> study =
      Workbench::StudyFile::parse(folder + "/box.study.yaml", boxStudyText(rows), m_units, problems);
  if (!study) {
    throw StepFailed(textOf(problems));
  }
  m_study = std::make_unique<Workbench::StudyFile>(std::move(*study));
  Workbench::OpenFailure failure;
  m_session =
      Workbench::StudySession::open(*m_study, boxProject(folder), Workbench::Keeping::Changes, failure);
  expectDone(m_session == nullptr && failure.problem.empty() ? "no reason" : failure.problem);
}

void BoxSession::solve(int most, const std::function<void(const std::string &row)> &solved) {
  std::vector<EmbeddedHost::FileProblem> problems;
  std::vector<EmbeddedHost::FileProblem> doubts;
  const std::optional<Workbench::RunInputs> inputs =
      Workbench::RunInputs::load(*m_study, m_units, doubts, problems);
  if (!inputs) {
    throw StepFailed(textOf(problems));
  }
  const Workbench::SolverPrograms programs(m_session->study(), {m_folder + "/solve.sh"});
  Workbench::SolveRunner runner(*m_session, *m_study, *inputs, m_units, programs);
  runner.assess();
  m_session->clearUnreliableCosts();
  Observer observer(most, solved);
  const Workbench::SolveReport report = runner.solve({1, true}, observer);
  expectDone(report.problem);
  expectDone(observer.problem());
}

void BoxSession::edit(const std::string &attribute, const std::string &text) {
  expectDone(m_session->commands()
                 .edit(m_session->model().findEntity("Box"), EntityModel::AttributePath(attribute), text)
                 .problem);
  save();
}

void BoxSession::save() {
  expectDone(m_session->save());
}

} // namespace FaultTests
