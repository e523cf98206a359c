#include "Workbench/StudySession.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/ChangeManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <exception>
#include <filesystem>
#include <utility>

namespace Workbench {

namespace {

using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationManager;

bool removeEnding(std::string &text, const std::string &ending) {
  const bool ends =
      text.size() > ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
  if (ends) {
    text.resize(text.size() - ending.size());
  }
  return ends;
}

} // namespace

std::string StudySession::projectFileOf(const std::string &studyFile) {
  const std::filesystem::path path(studyFile);
  std::string name = path.filename().string();
  for (const char *ending : {".yaml", ".yml", ".json"}) {
    if (removeEnding(name, ending)) {
      break;
    }
  }
  removeEnding(name, ".study");
  return (path.parent_path() / (name + ".optstudy")).string();
}

StudySession::StudySession(const StudyFile &study, std::string fileName,
                           std::unique_ptr<EmbeddedHost::Project> project)
    : m_study(study), m_fileName(std::move(fileName)), m_project(std::move(project)),
      m_installation(*m_project), m_commands(*m_project), m_baseline(m_project->rootVersion()) {
  // The manager follows the host from its first use on: it must be there before anything is announced.
  OptimizationManager::instance();
}

StudySession::~StudySession() {
  // Refused only while a solver runs, which no longer can.
  const EmbeddedHost::CommandResult closed = m_commands.close();
  static_cast<void>(closed);
}

std::unique_ptr<StudySession> StudySession::open(const StudyFile &study, const std::string &projectFile,
                                                 std::string &problem) {
  const bool exists = std::filesystem::exists(std::filesystem::symlink_status(projectFile));
  std::unique_ptr<EmbeddedHost::Project> project;
  if (exists) {
    project = EmbeddedHost::Project::open(projectFile, EmbeddedHost::OpenMode::ReadWrite, problem);
  } else {
    EmbeddedHost::ModelSchema schema;
    problem = declareModel(study, schema);
    if (problem.empty()) {
      project = EmbeddedHost::Project::create(schema);
      problem = createEntities(study, *project);
    }
  }
  if (!project || !problem.empty()) {
    return nullptr;
  }
  std::unique_ptr<StudySession> session(new StudySession(study, projectFile, std::move(project)));
  try {
    problem = exists ? session->continueExisting() : session->beginNew();
    if (problem.empty()) {
      problem = exists ? session->save() : session->m_commands.saveAs(projectFile).problem;
    }
  } catch (const std::exception &error) {
    problem = error.what();
  }
  if (!problem.empty()) {
    return nullptr;
  }
  return session;
}

OptimizationData &StudySession::data() const {
  return *OptimizationManager::instance().getData();
}

std::string StudySession::beginNew() {
  m_isNew = true;
  m_commands.announceOpened();
  OptimizationManager::instance().beginStudy(m_study.type);
  if (OptimizationManager::instance().getData() == nullptr) {
    return "the study could not be begun";
  }
  m_attributes = std::make_unique<ModelAttributes>(m_study, *m_project);
  m_states.assign(data().getNumVariants(), RowState());
  for (const bool isInput : {true, false}) {
    std::string problem = addGroups(isInput);
    if (!problem.empty()) {
      return problem;
    }
  }
  std::string problem = applyLimits();
  if (problem.empty()) {
    problem = applyCost();
  }
  return problem.empty() ? applyRows() : problem;
}

std::string StudySession::continueExisting() {
  std::string problem = compareModel(m_study, *m_project);
  if (!problem.empty()) {
    return "the project " + m_fileName + " was made for another model: " + problem +
           ". Give the study file another name, or move the project away";
  }
  tolerateUnpriced([this] { m_commands.announceOpened(); });
  if (m_project->currentVersion() != m_baseline) {
    problem = m_commands.switchVersion(m_baseline).problem;
  }
  if (!problem.empty()) {
    return problem;
  }
  if (OptimizationManager::instance().getData() == nullptr) {
    return "the project " + m_fileName + " holds no study";
  }
  m_attributes = std::make_unique<ModelAttributes>(m_study, *m_project);
  m_states.assign(data().getNumVariants(), RowState());
  clearUnreliableCosts();
  for (const bool isInput : {true, false}) {
    problem = compareGroups(isInput);
    if (!problem.empty()) {
      return "the project " + m_fileName + " has other " + (isInput ? "inputs" : "outputs") + ": " + problem +
             ". Give the study file another name, or move the project away";
    }
  }
  problem = applyBaselineValues();
  if (problem.empty()) {
    problem = applyLimits();
  }
  if (problem.empty()) {
    problem = applyCost();
  }
  return problem.empty() ? applyRows() : problem;
}

std::string StudySession::rowName(std::size_t row) const {
  return data().getVariantName(row);
}

EntityModel::ModelVersion *StudySession::rowVersion(std::size_t row) const {
  return m_project->changeManager().findVersion(rowName(row), nullptr);
}

void StudySession::setRowState(std::size_t row, RowState state) {
  m_states[row] = std::move(state);
}

// Much that the study does prices rows on the way, and a cost may be one that cannot be computed for a row: not yet,
// while it has no results, or never. That must not keep anybody from opening, mending or solving the study.
void StudySession::tolerateUnpriced(const std::function<void()> &call) {
  try {
    call();
    return;
  } catch (const std::exception &) {
    if (OptimizationManager::instance().getData() == nullptr) {
      throw;
    }
  }
  // Whatever threw has left the version of that row current.
  const EmbeddedHost::CommandResult switched = m_commands.switchVersion(m_baseline);
  static_cast<void>(switched);
  data().clearCosts();
}

std::string StudySession::updateAndPrice() {
  std::string problem;
  try {
    data().updateAlternates(OptimizationData::ReadFromModel, nullptr);
  } catch (const std::exception &) {
    // One by one, so that the others have their cost.
    for (std::size_t row = 0; row < m_states.size(); ++row) {
      try {
        data().updateAlternate(OptimizationData::ReadFromModel, row);
      } catch (const std::exception &error) {
        data().clearCosts(row);
        if (problem.empty() && m_states[row].status == RowStatus::Ok) {
          problem = "the cost of \"" + rowName(row) + "\" cannot be computed: " + error.what();
        }
      }
    }
    const EmbeddedHost::CommandResult switched = m_commands.switchVersion(m_baseline);
    problem = problem.empty() ? switched.problem : problem;
  }
  clearUnreliableCosts();
  return problem;
}

void StudySession::clearUnreliableCosts() {
  for (std::size_t row = 0; row < m_states.size(); ++row) {
    if (m_states[row].status != RowStatus::Ok) {
      data().clearCosts(row);
    }
  }
}

std::string StudySession::save() {
  return m_commands.save().problem;
}

} // namespace Workbench
