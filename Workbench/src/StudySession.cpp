#include "Workbench/StudySession.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/ChangeManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/ModelDeclaration.h"

#include <exception>
#include <filesystem>
#include <utility>

namespace Workbench {

namespace {

using OptimizationTool::OptimizationManager;

} // namespace

StudySession::StudySession(const StudyFile &study, std::string fileName,
                           std::unique_ptr<EmbeddedHost::Project> project)
    : ProjectSession(std::move(fileName), std::move(project)), m_study(study) {}

std::unique_ptr<StudySession> StudySession::open(const StudyFile &study, const std::string &projectFile,
                                                 Keeping keeping, OpenFailure &failure) {
  const bool exists = std::filesystem::exists(std::filesystem::symlink_status(projectFile));
  std::unique_ptr<EmbeddedHost::Project> project;
  if (exists) {
    project = openForWriting(projectFile, failure);
  } else {
    EmbeddedHost::ModelSchema schema;
    failure.problem = declareModel(study, schema);
    if (failure.problem.empty()) {
      project = EmbeddedHost::Project::create(schema);
      failure.problem = createEntities(study, *project);
    }
  }
  if (!project || !failure.problem.empty()) {
    return nullptr;
  }
  std::unique_ptr<StudySession> session(new StudySession(study, projectFile, std::move(project)));
  try {
    failure.problem = exists ? session->continueExisting() : session->beginNew();
    if (failure.problem.empty() && keeping == Keeping::Changes) {
      failure.problem = exists ? session->save() : session->commands().saveAs(projectFile).problem;
    }
  } catch (const std::exception &error) {
    failure.problem = error.what();
  }
  if (!failure.problem.empty()) {
    return nullptr;
  }
  return session;
}

std::string StudySession::beginNew() {
  m_isNew = true;
  commands().announceOpened();
  readModel();
  OptimizationManager::instance().beginStudy(m_study.type);
  if (!hasStudy()) {
    return "the study could not be begun";
  }
  refreshRows();
  applyRule();
  for (const bool isInput : {true, false}) {
    for (const StudyGroup &group : isInput ? m_study.inputs : m_study.outputs) {
      std::string problem = addGroup(isInput, group);
      if (!problem.empty()) {
        return problem;
      }
    }
  }
  std::string problem = applyLimits();
  if (problem.empty()) {
    problem = applyCost();
  }
  return problem.empty() ? applyRows() : problem;
}

std::string StudySession::continueExisting() {
  std::string problem = compareModel(m_study, project());
  if (!problem.empty()) {
    return "the project " + fileName() + " was made for another model: " + problem +
           ". Give the study file another name, or move the project away";
  }
  problem = announce();
  if (!problem.empty()) {
    return problem;
  }
  if (!hasStudy()) {
    return "the project " + fileName() + " holds no study";
  }
  if (OptimizationManager::instance().getStudyType() != m_study.type) {
    return "the project " + fileName() +
           " holds a study of another type. Give the study file another name, or move " + "the project away";
  }
  readModel();
  refreshRows();
  clearUnreliableCosts();
  applyTitle();
  applyRule();
  for (const bool isInput : {true, false}) {
    problem = applyGroups(isInput);
    if (!problem.empty()) {
      return problem;
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

// The rule is kept in the project, so that rows are judged by it where the study file is not at hand.
void StudySession::applyRule() {
  const std::string before = rule();
  if (before == m_study.rule.text) {
    return;
  }
  setRule(m_study.rule.text);
  if (!m_isNew) {
    m_changes.push_back(m_study.rule.text.empty() ? "the rule was removed"
                                                  : "the rule is now: " + m_study.rule.text);
  }
}

void StudySession::applyTitle() {
  if (title() != m_study.title) {
    setTitle(m_study.title);
    m_changes.push_back("the title is now: " + m_study.title);
  }
}

} // namespace Workbench
