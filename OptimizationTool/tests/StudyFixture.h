#pragma once

#include "EmbeddedHost/Project.h"
#include "HostModel/Attribute.h"
#include "HostModel/Host.h"
#include "OptimizationTool/OptimizationGroups.h"
#include "testing/FaultyHost.h"
#include "testing/RecordingHost.h"

#include <memory>
#include <string>
#include <vector>

namespace StudyTesting {

/// A model with one kind of part that has members of every kind, and studies on it, in the embedded host. The host
/// that is installed records the calls and can be made to fail; all entities and attributes that the fixture gives
/// out are those of the installed host.
///
/// The root entity has a list "Parts" of parts and a length "Depth" ("2 m"). A part has
/// - "Length" ("100 mm") and "Width" ("20 mm"), quantities shown in mm; "Ratio" ("0.5"), without units
/// - "Count" ("3"), a whole number; "Level" ("5"), one from 0 to 10; "Angle" ("30"), a number from 0 to 90
/// - "Active" ("1"), a boolean
/// - "Material" ("1"), a choice of Steel, Copper and Glass; "Finish" ("1"), one of Raw and Painted
/// - "Note" (""), a text
/// - "Mode" and "OtherMode" ("Fast"), types of Fast and Slow; "Law" ("Linear"), a type of Linear and Square
/// - "Neighbour", a link to an entity; "Source" and "Target", references to attributes; "Children", a list of parts
/// - "Shape.Height" ("10 mm") and "Shape.Radius" ("1 mm"), inside of a composite
/// - "Power" (without value), a result in W, and "Field", a result that is no single value
class StudyFixture {
public:
  explicit StudyFixture(const EmbeddedHost::HostBehaviour &behaviour = {});
  StudyFixture(const StudyFixture &) = delete;
  StudyFixture &operator=(const StudyFixture &) = delete;
  ~StudyFixture();

  EmbeddedHost::Project &project() { return *m_project; }
  HostTesting::FaultyHost &faults() { return *m_faults; }
  HostTesting::RecordingHost &recording() { return *m_recording; }
  /// The recorded calls that change something, in order, and nothing of what was recorded before; forgets them.
  std::vector<std::string> takeCalls();

  EntityModel::Entity *root() const;
  /// Adds a part to the root.
  EntityModel::Entity *addPart(const std::string &name);
  /// Adds an entity of any declared type to a list or link of \p owner.
  EntityModel::Entity *addEntity(const std::string &type, EntityModel::Entity *owner, const std::string &list,
                                 const std::string &name);

  /// Adds an empty study, named "Study" in recorded calls, to the root.
  EntityModel::Entity *addStudy();
  /// Adds a group at the end of one side of a study. In recorded calls it is named \p name.
  OptimizationTool::OptimizationGroup addGroup(EntityModel::Entity *study, bool isInput,
                                               const std::string &name);
  /// Adds a variable at the end of a group.
  OptimizationTool::OptimizationGroupVariable addVariable(const OptimizationTool::OptimizationGroup &group,
                                                          EntityModel::Entity *owner,
                                                          const std::string &path);
  /// Names a variable in recorded calls.
  void name(const OptimizationTool::OptimizationGroupVariable &variable, const std::string &alias);

  /// The attribute at a "."-separated path, or null.
  static EntityModel::Attribute *attribute(EntityModel::Entity *entity, const std::string &path);
  /// Sets a value, of the study storage too. Fails the test when the host refuses.
  static void set(EntityModel::Entity *entity, const std::string &path, const std::string &text);
  /// The text of a value; "(none)" where there is no attribute.
  static std::string get(EntityModel::Entity *entity, const std::string &path);
  /// Makes a reference attribute refer to another attribute.
  void refer(EntityModel::Entity *entity, const std::string &path, EntityModel::Entity *target,
             const std::string &targetPath);
  static void remove(EntityModel::Entity *entity);

private:
  std::unique_ptr<EmbeddedHost::Project> m_project;
  std::unique_ptr<HostTesting::FaultyHost> m_faults;
  std::unique_ptr<HostTesting::RecordingHost> m_recording;
  std::unique_ptr<HostModel::HostInstallation> m_installation;
};

} // namespace StudyTesting
