#include "Workbench/StudySession.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/ChangeManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/ModelDeclaration.h"
#include "Workbench/src/ModelChange.h"
#include "Workbench/src/PlainText.h"

#include <exception>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace Workbench {

namespace {

using OptimizationTool::OptimizationManager;

// Whether another program makes the project at this moment, or nobody may make one there.
bool cannotBeMadeNow(const std::string &projectFile) {
  const std::string folder = std::filesystem::path(projectFile).parent_path().string();
  return EmbeddedHost::Project::isHeld(projectFile) ||
         std::filesystem::exists(std::filesystem::symlink_status(projectFile)) ||
         ::access(folder.empty() ? "." : folder.c_str(), W_OK) != 0;
}

} // namespace

StudySession::StudySession(const StudyFile &study, std::string fileName,
                           std::unique_ptr<EmbeddedHost::Project> project)
    : ProjectSession(std::move(fileName), std::move(project)), m_study(study) {}

std::unique_ptr<StudySession> StudySession::open(const StudyFile &study, const std::string &projectFile,
                                                 Keeping keeping, OpenFailure &failure) {
  const bool exists = std::filesystem::exists(std::filesystem::symlink_status(projectFile));
  std::unique_ptr<EmbeddedHost::Project> project;
  ModelChange change;
  if (exists) {
    project = openExisting(projectFile, study, change, failure);
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
    failure.problem = exists ? session->continueExisting(change) : session->beginNew();
    if (failure.problem.empty() && keeping == Keeping::Changes) {
      failure.problem = exists ? session->save() : session->commands().saveAs(projectFile).problem;
      failure.isHeld = !failure.problem.empty() && !exists && cannotBeMadeNow(projectFile);
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
  applyLimits();
  std::string problem = applyCost();
  return problem.empty() ? applyRows() : problem;
}

// The types of an open project are what they are; one whose model has changed is opened again with the changed ones.
std::unique_ptr<EmbeddedHost::Project> StudySession::openExisting(const std::string &projectFile,
                                                                  const StudyFile &study, ModelChange &change,
                                                                  OpenFailure &failure) {
  std::unique_ptr<EmbeddedHost::Project> project = openForWriting(projectFile, failure);
  if (!project) {
    return nullptr;
  }
  change = ModelChange::of(study, *project);
  if (!change.refusal().empty()) {
    failure.problem = "the project " + projectFile + " was made for another model: " + change.refusal();
    return nullptr;
  }
  if (change.isNeeded()) {
    project.reset();
    project = EmbeddedHost::Project::open(
        projectFile, [&change](EmbeddedHost::ModelSchema &schema) { return change.applyTo(schema); },
        failure.problem);
  }
  return project;
}

std::string StudySession::continueExisting(const ModelChange &change) {
  std::string problem = announce();
  if (!problem.empty()) {
    return problem;
  }
  if (!hasStudy()) {
    return "the project " + fileName() + " holds no study: \"optstudy begin " + shellWord(fileName()) +
           "\" begins one, or move the project away and run again";
  }
  if (OptimizationManager::instance().getStudyType() != m_study.type) {
    return "the project " + fileName() +
           " holds a study of another type. Give the study file another name, or move " + "the project away";
  }
  problem = change.createEntities(project());
  if (!problem.empty()) {
    return problem;
  }
  m_changes = change.sentences();
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
    applyLimits();
    problem = applyCost();
  }
  if (problem.empty()) {
    problem = applyRows();
  }
  if (change.changesLimits()) {
    const std::vector<std::string> outside = rowsOutsideLimits(*this);
    m_changes.insert(m_changes.end(), outside.begin(), outside.end());
  }
  return problem;
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
