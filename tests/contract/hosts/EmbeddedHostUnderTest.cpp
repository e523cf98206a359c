#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "HostModel/AttributePath.h"
#include "tests/contract/hosts/Hosts.h"

#include <optional>
#include <stdexcept>

namespace HostContract {

namespace {

using EmbeddedHost::Commands;
using EmbeddedHost::HostBehaviour;
using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::ModelSchema;
using EmbeddedHost::Project;

MemberType member(const char *label, MemberKind kind, const char *text = "") {
  MemberType type;
  type.label = label;
  type.kind = kind;
  type.defaultText = text;
  return type;
}

MemberType holder(const char *label, MemberKind kind) {
  MemberType type = member(label, kind);
  type.targetType = "Part";
  return type;
}

MemberType options(MemberType type, const std::vector<std::string> &texts) {
  type.options = texts;
  return type;
}

MemberType length() {
  MemberType type = member("Length", MemberKind::Real, "100");
  type.standardUnit = "m";
  type.displayUnit = "mm";
  return type;
}

MemberType mass() {
  MemberType type = member("Mass", MemberKind::Real);
  type.isResult = true;
  return type;
}

ModelSchema contractSchema() {
  ModelSchema schema;
  const std::string problem =
      schema.declareType("Part",
                         {member("Width", MemberKind::Real, "4"), member("Ratio", MemberKind::Real, "0.5"),
                          member("Open", MemberKind::Boolean, "1"), member("Note", MemberKind::Text), mass(),
                          holder("Next", MemberKind::EntityLink), holder("Parts", MemberKind::EntityList),
                          member("Count", MemberKind::Integer, "3"),
                          options(member("Material", MemberKind::Choice, "2"), {"Steel", "Copper", "Air"}),
                          options(member("Law", MemberKind::TypeReference), {"Linear", "Cubic"}), length()}) +
      schema.declareRootMembers({holder("Parts", MemberKind::EntityList)});
  if (!problem.empty()) {
    throw std::logic_error(problem);
  }
  return schema;
}

class EmbeddedHostUnderTest final : public HostUnderTest {
public:
  explicit EmbeddedHostUnderTest(const HostBehaviour &behaviour)
      : m_behaviour(behaviour), m_project(Project::create(contractSchema(), behaviour)) {}

  HostModel::Host &host() override { return *m_project; }
  void open() override { commands().announceOpened(); }
  void close() override {
    if (!closeByUser()) {
      throw std::logic_error("The project cannot be closed");
    }
  }

  bool switchByUser(EntityModel::ModelVersion *version) override {
    return static_cast<bool>(commands().switchVersion(version));
  }
  bool editByUser(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                  const std::string &text) override {
    return static_cast<bool>(commands().edit(entity, path, text));
  }
  bool relabelByUser(EntityModel::ModelVersion *version, const std::string &label) override {
    return static_cast<bool>(commands().renameVersion(version, label));
  }
  bool destroyByUser(EntityModel::ModelVersion *version) override {
    return static_cast<bool>(commands().deleteVersion(version));
  }
  bool closeByUser() override { return static_cast<bool>(commands().close()); }
  void setSolverRuns(bool runs) override {
    m_run.reset();
    if (runs) {
      m_run.emplace(commands());
    }
  }

  bool save(const std::string &path) override {
    return static_cast<bool>(m_project->file().empty() ? commands().saveAs(path + ".optstudy")
                                                       : commands().save());
  }
  bool reopen() override {
    const std::string file = m_project->file();
    m_commands.reset();
    m_project.reset();
    std::string problem;
    m_project = Project::open(file, EmbeddedHost::OpenMode::ReadWrite, problem, m_behaviour);
    return m_project != nullptr;
  }

private:
  Commands &commands() {
    if (!m_commands) {
      m_commands.emplace(*m_project);
    }
    return *m_commands;
  }

  HostBehaviour m_behaviour;
  std::unique_ptr<Project> m_project;
  std::optional<Commands> m_commands;
  std::optional<Commands::SolverRun> m_run;
};

HostKind embeddedHost(const std::string &name, Capabilities capabilities, const HostBehaviour &behaviour) {
  capabilities.insert({Capability::MoreKinds, Capability::Units, Capability::UserCommands,
                       Capability::Persistence, Capability::Store});
  return {name, std::move(capabilities), [behaviour] {
            return std::make_unique<EmbeddedHostUnderTest>(behaviour);
          }};
}

} // namespace

std::vector<HostKind> embeddedHosts() {
  HostBehaviour eager;
  eager.newVersionsBecomeCurrent = true;
  HostBehaviour silent;
  silent.switchesNotify = false;
  return {embeddedHost("EmbeddedHost", {Capability::NotifyingSwitches, Capability::QuietCreation}, {}),
          embeddedHost("EagerEmbeddedHost", {Capability::NotifyingSwitches}, eager),
          embeddedHost("SilentEmbeddedHost", {Capability::QuietCreation}, silent)};
}

} // namespace HostContract
