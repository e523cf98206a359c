#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace EntityModel {
class AttributePath;
class Entity;
class ModelVersion;
} // namespace EntityModel
namespace HostModel {
class Host;
}

namespace HostContract {

/// What a host has besides what every study needs. A rule that asks for more than a host has does not apply to it.
enum class Capability {
  /// setCurrentVersion() itself tells the observers of the switch.
  NotifyingSwitches,
  /// New versions are neither made current nor announced.
  QuietCreation,
  /// Integers, choices and declared type references: the members "Count", "Material" and "Law" of a part.
  MoreKinds,
  /// Quantities: the member "Length" of a part.
  Units,
  /// Commands that a user is offered and that keep him from breaking a study.
  UserCommands,
  /// The project can be saved and opened again.
  Persistence,
  /// Versions have folders with results. Comes with Persistence, since a project without file has no folders.
  Store,
};

using Capabilities = std::set<Capability>;

/// The name of a capability, as in the names of cases that do not apply.
std::string nameOf(Capability capability);

/// A host with a project in it, made anew for each case. What an embedder writes over his own host to run the
/// contract over it.
///
/// The project has one version, "Base", and an empty list "Parts" in the root entity, which takes entities of the
/// type "Part". The members of a part are, with the values of a new one:
///
/// | Member | Kind | Value |
/// |---|---|---|
/// | Width | real | 4 |
/// | Ratio | real | 0.5 |
/// | Open | boolean | 1 |
/// | Note | text | "" |
/// | Mass | real, a result | none |
/// | Next | link to a part | none |
/// | Parts | list of parts | empty |
/// | Count (MoreKinds) | integer | 3 |
/// | Material (MoreKinds) | choice of three options | 2 |
/// | Law (MoreKinds) | one of the types "Linear" and "Cubic", or none | none |
/// | Length (Units) | real in metres, shown in millimetres | 100 mm |
class HostUnderTest {
public:
  HostUnderTest() = default;
  HostUnderTest(const HostUnderTest &) = delete;
  HostUnderTest &operator=(const HostUnderTest &) = delete;
  virtual ~HostUnderTest() = default;

  /// What is installed. Another object after reopen().
  virtual HostModel::Host &host() = 0;
  /// Shows the project as the application does once it is opened. The host is installed.
  virtual void open() = 0;
  /// Does what the application does before it frees the project. The host is installed.
  virtual void close() = 0;

  /// \name With UserCommands; whether the command was carried out
  /// @{
  virtual bool switchByUser(EntityModel::ModelVersion *version);
  virtual bool editByUser(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                          const std::string &text);
  virtual bool relabelByUser(EntityModel::ModelVersion *version, const std::string &label);
  virtual bool destroyByUser(EntityModel::ModelVersion *version);
  /// Whether it was closed, as by close().
  virtual bool closeByUser();
  /// Begins or ends a solver run, during which a user may change less.
  virtual void setSolverRuns(bool runs);
  /// @}

  /// \name With Persistence
  /// @{
  /// Saves the project, under that path, to which an ending may be added, where it has no file yet.
  virtual bool save(const std::string &path);
  /// Frees the closed project, unsaved changes included, and opens its file anew. No host is installed.
  virtual bool reopen();
  /// @}
};

/// A host that the contract is run over.
struct HostKind {
  /// Letters and digits.
  std::string name;
  Capabilities capabilities;
  std::function<std::unique_ptr<HostUnderTest>()> make;
};

} // namespace HostContract
