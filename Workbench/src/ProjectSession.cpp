#include "Workbench/ProjectSession.h"

#include "EmbeddedHost/VersionLook.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <unordered_map>
#include <utility>

namespace Workbench {

namespace {

using EmbeddedHost::RunStatus;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationManager;

constexpr const char *kProjectEnding = ".optstudy";
constexpr const char *kUntitled = "Model";

bool removeEnding(std::string &text, const std::string &ending) {
  const bool ends =
      text.size() > ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
  if (ends) {
    text.resize(text.size() - ending.size());
  }
  return ends;
}

// Where in a record's keys the one of the inputs is.
constexpr std::size_t kInputsKey = 2;

// As if the inputs were those of the run.
// \param canRun  another program may be solving rows
RowState stateOf(const EmbeddedHost::RunRecord &record, bool canRun) {
  RowState state;
  switch (record.status) {
  case RunStatus::None:
    break;
  case RunStatus::Running:
    state.status = canRun ? RowStatus::Running : RowStatus::Failed;
    state.reason = canRun ? "" : EmbeddedHost::kLostRun;
    break;
  case RunStatus::Failed:
    state.status = RowStatus::Failed;
    state.reason = record.reason;
    break;
  case RunStatus::Ok:
    state.status = RowStatus::Ok;
    break;
  }
  return state;
}

// Such that no two lists of texts give the same bytes.
std::string counted(const std::string &text) {
  return std::to_string(text.size()) + ":" + text;
}

} // namespace

std::string ProjectSession::projectFileOf(const std::string &studyFile) {
  const std::filesystem::path path(studyFile);
  std::string name = path.filename().string();
  for (const char *ending : {".yaml", ".yml", ".json"}) {
    if (removeEnding(name, ending)) {
      break;
    }
  }
  removeEnding(name, ".study");
  return (path.parent_path() / (name + kProjectEnding)).string();
}

std::string ProjectSession::studyFileOf(const std::string &projectFile) {
  std::string stem = projectFile;
  removeEnding(stem, kProjectEnding);
  constexpr std::array<const char *, 6> kEndings{".study.yaml", ".study.yml", ".study.json",
                                                 ".yaml",       ".yml",       ".json"};
  for (const char *ending : kEndings) {
    std::string candidate = stem + ending;
    std::error_code ignored;
    if (std::filesystem::exists(candidate, ignored)) {
      return candidate;
    }
  }
  return "";
}

ProjectSession::ProjectSession(std::string fileName, std::unique_ptr<EmbeddedHost::Project> project)
    : m_fileName(std::move(fileName)), m_project(std::move(project)), m_installation(*m_project),
      m_commands(*m_project), m_baseline(m_project->rootVersion()) {
  // The manager follows the host from its first use on: it must be there before anything is announced.
  OptimizationManager::instance();
}

ProjectSession::~ProjectSession() {
  // Refused only while a solver runs, which no longer can.
  const EmbeddedHost::CommandResult closed = m_commands.close();
  static_cast<void>(closed);
}

std::unique_ptr<EmbeddedHost::Project> ProjectSession::openForWriting(const std::string &projectFile,
                                                                      OpenFailure &failure) {
  std::unique_ptr<EmbeddedHost::Project> project =
      EmbeddedHost::Project::open(projectFile, EmbeddedHost::OpenMode::ReadWrite, failure.problem);
  if (!project) {
    std::string ignored;
    failure.isHeld =
        EmbeddedHost::Project::open(projectFile, EmbeddedHost::OpenMode::ReadOnly, ignored) != nullptr;
  }
  return project;
}

std::unique_ptr<ProjectSession> ProjectSession::open(const std::string &projectFile,
                                                     EmbeddedHost::OpenMode mode, OpenFailure &failure) {
  std::unique_ptr<EmbeddedHost::Project> project =
      mode == EmbeddedHost::OpenMode::ReadWrite
          ? openForWriting(projectFile, failure)
          : EmbeddedHost::Project::open(projectFile, mode, failure.problem);
  if (!project) {
    return nullptr;
  }
  std::unique_ptr<ProjectSession> session(new ProjectSession(projectFile, std::move(project)));
  try {
    failure.problem = session->announce();
    if (failure.problem.empty()) {
      session->readModel();
      session->refreshRows();
      session->assessFromRecords();
      session->clearUnreliableCosts();
    }
  } catch (const std::exception &error) {
    failure.problem = error.what();
  }
  return failure.problem.empty() ? std::move(session) : nullptr;
}

// A cost that cannot be computed must not keep anybody from looking at the study.
std::string ProjectSession::announce() {
  tolerateUnpriced([this] { m_commands.announceOpened(); });
  makeStudyCurrent();
  return m_project->currentVersion() == m_baseline ? "" : m_commands.switchVersion(m_baseline).problem;
}

// The version that was current last may be any; the study of a project is that of the first version that has one.
void ProjectSession::makeStudyCurrent() {
  for (EntityModel::ModelVersion *version : m_project->versions()) {
    if (version->isStudyBaseline()) {
      m_baseline = version;
      break;
    }
  }
  if (m_project->currentVersion() != m_baseline || !hasStudy()) {
    tolerateUnpriced([this] {
      const EmbeddedHost::CommandResult switched = m_commands.switchVersion(m_baseline);
      static_cast<void>(switched); // seen by whoever asks for the current version
    });
  }
}

void ProjectSession::readModel() {
  m_model = std::make_unique<ProjectModel>(*m_project);
  m_keyedInputs.clear();
  for (const ModelAttribute &attribute : m_model->attributes()) {
    if (!attribute.isResult) {
      m_keyedInputs.push_back({&attribute, counted(attribute.fullName())});
    }
  }
  buildRule();
}

std::string ProjectSession::rule() const {
  const EntityModel::Attribute *text = m_project->attribute(m_project->rootEntity(), ProjectModel::kRule);
  return text == nullptr ? "" : text->getValueAsString();
}

void ProjectSession::setRule(const std::string &rule) {
  m_project->setValue(m_project->rootEntity(), ProjectModel::kRule, rule);
  buildRule();
}

// A rule that does not build any more, for an attribute that is gone, keeps nobody from looking.
void ProjectSession::buildRule() {
  const std::string text = rule();
  std::vector<ExpressionNote> warnings;
  ExpressionNote problem;
  m_rule = text.empty() ? std::nullopt : StudyExpression::create(text, m_model->names(), warnings, problem);
}

std::string ProjectSession::infeasibility(const AttributeValues &inputs) const {
  return Workbench::infeasibility(m_rule, inputs);
}

std::string ProjectSession::title() const {
  const std::string name = m_project->rootEntity()->getName(true);
  return name == kUntitled ? "" : name;
}

void ProjectSession::setTitle(const std::string &title) {
  m_project->renameEntity(m_project->rootEntity(), title.empty() ? kUntitled : title);
}

bool ProjectSession::hasStudy() const {
  return OptimizationManager::instance().getData() != nullptr;
}

OptimizationData &ProjectSession::data() const {
  return *OptimizationManager::instance().getData();
}

std::size_t ProjectSession::groupCount(bool isInput) const {
  return !hasStudy() ? 0 : static_cast<std::size_t>(isInput ? data().getNumInputs() : data().getNumOutputs());
}

const ModelAttribute *ProjectSession::groupAttribute(bool isInput, std::size_t group) const {
  return m_model->find(data().getGroup(isInput, static_cast<int>(group)).getFrontAttribute());
}

bool ProjectSession::hasAllAttributes(bool isInput) const {
  for (std::size_t group = 0; group < groupCount(isInput); ++group) {
    if (groupAttribute(isInput, group) == nullptr) {
      return false;
    }
  }
  return true;
}

std::string ProjectSession::rowName(std::size_t row) const {
  return data().getVariantName(row);
}

std::optional<std::size_t> ProjectSession::findRow(const std::string &name) const {
  return hasStudy() ? data().getVariantIndex(name) : std::nullopt;
}

EntityModel::ModelVersion *ProjectSession::rowVersion(std::size_t row) const {
  return m_project->changeManager().findVersion(rowName(row), nullptr);
}

void ProjectSession::setRowState(std::size_t row, RowState state) {
  m_states[row] = std::move(state);
}

void ProjectSession::refreshRows() {
  std::unordered_map<std::string, RowState> known;
  for (std::size_t row = 0; row < m_names.size(); ++row) {
    known.emplace(std::move(m_names[row]), std::move(m_states[row]));
  }
  const std::size_t count = hasStudy() ? data().getNumVariants() : 0;
  m_names.clear();
  m_states.assign(count, RowState());
  for (std::size_t row = 0; row < count; ++row) {
    m_names.push_back(rowName(row));
    if (const auto found = known.find(m_names.back()); found != known.end()) {
      m_states[row] = std::move(found->second);
    }
  }
}

void ProjectSession::rowWasAdded() {
  m_states.emplace_back();
  m_names.push_back(rowName(m_states.size() - 1));
}

std::optional<double> ProjectSession::currentValue(const std::string &fullName) const {
  const ModelAttribute *attribute = m_model->find(fullName);
  return attribute == nullptr || !attribute->value->hasValue()
             ? std::nullopt
             : std::optional<double>(attribute->value->getStandardValue());
}

std::string ProjectSession::inputsKey() const {
  std::string all;
  for (const KeyedInput &input : m_keyedInputs) {
    all.append(input.countedName).append(counted(shownText(*input.attribute, input.attribute->value)));
  }
  QCryptographicHash hash(QCryptographicHash::Sha256);
  hash.addData(all.data(), static_cast<int>(all.size()));
  return "inputs-1:" + hash.result().toHex().toStdString();
}

// The records first, as they come, and then one look at the inputs of each row that has to be looked at.
void ProjectSession::assessFromRecords() {
  struct RecordedRow {
    EntityModel::ModelVersion *version = nullptr;
    RowState state;
    std::optional<std::string> inputsKey; // of the inputs that a solved row was solved with
  };
  if (m_states.empty()) {
    return;
  }
  std::vector<RecordedRow> rows(m_states.size());
  std::unordered_map<const EntityModel::ModelVersion *, std::size_t> rowOf;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    rows[row].version = rowVersion(row);
    rowOf.emplace(rows[row].version, row);
  }
  // Whoever may write the project is the only one, and has not begun anything.
  const bool canRun = m_project->isReadOnlyProject() && EmbeddedHost::Project::isHeld(m_project->file());
  m_project->forEachRun([&](const EntityModel::ModelVersion &version, const EmbeddedHost::RunRecord &record) {
    if (const auto known = rowOf.find(&version); known != rowOf.end()) {
      RecordedRow &row = rows[known->second];
      row.state = stateOf(record, canRun);
      if (row.state.status == RowStatus::Ok && record.keys.size() > kInputsKey) {
        row.inputsKey = record.keys[kInputsKey];
      }
    }
  });
  EmbeddedHost::VersionLook look(*m_project);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    RowState state = std::move(rows[row].state);
    if (rows[row].version == nullptr) {
      state.status = RowStatus::Failed;
      state.reason = "start: the version of \"" + rowName(row) + "\" is gone";
    } else {
      const bool isShown = look.at(*rows[row].version);
      if (rows[row].inputsKey && (!isShown || *rows[row].inputsKey != inputsKey())) {
        state.status = RowStatus::Stale;
      }
      const std::string broken =
          infeasibility([this](const std::string &name) { return currentValue(name); });
      if (!broken.empty()) {
        state.status = RowStatus::Infeasible;
        state.reason = broken;
      }
    }
    state.isInStudyFile = m_states[row].isInStudyFile;
    m_states[row] = std::move(state);
  }
}

// Much that the study does prices rows on the way, and a cost may be one that cannot be computed for a row: not yet,
// while it has no results, or never. That must not keep anybody from opening, mending or solving the study.
void ProjectSession::tolerateUnpriced(const std::function<void()> &call) {
  try {
    call();
    return;
  } catch (const std::exception &) {
    if (!hasStudy()) {
      throw;
    }
  }
  // Whatever threw has left the version of that row current.
  const EmbeddedHost::CommandResult switched = m_commands.switchVersion(m_baseline);
  static_cast<void>(switched);
  data().clearCosts();
  for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
    try {
      data().recalculateCost(row);
    } catch (const std::exception &) {
      data().clearCosts(row);
    }
  }
}

std::string ProjectSession::freeRowName() const {
  for (std::size_t number = rowCount();; ++number) {
    std::string name = "Variant " + std::to_string(number);
    if (m_project->changeManager().findVersion(name, nullptr) == nullptr) {
      return name;
    }
  }
}

std::string ProjectSession::updateAndPrice() {
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

void ProjectSession::clearUnreliableCosts() {
  const bool hasAll = hasAllAttributes(true) && hasAllAttributes(false);
  const std::vector<PricedGroup> priced = pricedGroups();
  for (std::size_t row = 0; row < m_states.size(); ++row) {
    if (!hasAll || m_states[row].status != RowStatus::Ok || lacksValue(row, priced)) {
      data().clearCosts(row);
    }
  }
}

// Those that the cost names.
std::vector<ProjectSession::PricedGroup> ProjectSession::pricedGroups() const {
  std::vector<PricedGroup> groups;
  const std::string cost = hasStudy() ? data().getCostFunction() : "";
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < groupCount(isInput); ++group) {
      const std::string macro = data().getGroup(isInput, static_cast<int>(group)).getAttributeMacro();
      if (cost.find("%" + macro + "%") != std::string::npos) {
        groups.push_back({isInput, group});
      }
    }
  }
  return groups;
}

bool ProjectSession::lacksValue(std::size_t row, const std::vector<PricedGroup> &groups) const {
  return std::any_of(groups.begin(), groups.end(), [this, row](const PricedGroup &group) {
    const EntityModel::Attribute *cell = data().getVariantGroup(group.isInput, row, group.index);
    return cell == nullptr || !cell->hasValue();
  });
}

void ProjectSession::setTarget(MathematicalUtilities::OptimisationStrategy target) {
  if (target != MathematicalUtilities::OptimisationStrategy::None) {
    data().setOptimisationTarget(target);
    return;
  }
  EntityModel::EntityEditor::setValueNoThrow(
      data().get(), EntityModel::AttributePath(EntityModel::OptimisationTarget_t), "", false, nullptr, true);
}

std::string ProjectSession::save() {
  return m_commands.save().problem;
}

class VersionTour::Parts {
public:
  explicit Parts(ProjectSession &session)
      : m_session(session), m_run(session.commands()), m_guard(session.data()) {}
  Parts(const Parts &) = delete;
  Parts &operator=(const Parts &) = delete;
  ~Parts() {
    const EmbeddedHost::CommandResult switched = m_session.commands().switchVersion(m_session.baseline());
    static_cast<void>(switched); // the baseline exists as long as the project
  }

private:
  ProjectSession &m_session;
  EmbeddedHost::Commands::SolverRun m_run;
  OptimizationTool::OptimizationDataSolvingGuard m_guard;
};

VersionTour::VersionTour(ProjectSession &session) : m_parts(std::make_unique<Parts>(session)) {}

VersionTour::~VersionTour() = default;

} // namespace Workbench
