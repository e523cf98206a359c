#pragma once

#include "EmbeddedHost/ModelSchema.h"
#include "Workbench/StudyFile.h"

#include <map>
#include <string>
#include <vector>

namespace EmbeddedHost {
class Project;
}

namespace Workbench {

class ProjectSession;

// What has to happen to the model of a project so that it is the one that a study file declares. Only what loses nothing
// that was solved can happen: entities and attributes are added, units converted, limits and options replaced. Values
// are no part of it.
class ModelChange {
public:
  static ModelChange of(const StudyFile &study, const EmbeddedHost::Project &project);

  bool isNeeded() const { return !m_sentences.empty(); }
  // Why the project cannot have the study file's model, with what to do; "" when it can.
  const std::string &refusal() const { return m_refusal; }
  // What changes, one sentence each.
  const std::vector<std::string> &sentences() const { return m_sentences; }
  // Whether rows may be outside limits that they were made in.
  bool changesLimits() const { return m_changesLimits; }

  // Changes the types. \return "" or one sentence
  std::string applyTo(EmbeddedHost::ModelSchema &schema) const;
  // Creates what is new, in the current version of a project that was opened with applyTo(). \return as above
  std::string createEntities(EmbeddedHost::Project &project) const;

private:
  struct NewEntity {
    std::string name;
    std::string type;
    std::vector<EmbeddedHost::MemberType> members;
  };
  using Members = std::vector<EmbeddedHost::MemberType>;

  void compareEntity(const std::string &type, const std::vector<const StudyAttribute *> &declared,
                     const std::string &name, const Members &members);
  bool compareMember(const StudyAttribute &declared, EmbeddedHost::MemberType &member);
  bool compareUnit(const StudyAttribute &declared, EmbeddedHost::MemberType &member);
  bool compareOptions(const StudyAttribute &declared, EmbeddedHost::MemberType &member);
  bool compareLimits(const StudyAttribute &declared, EmbeddedHost::MemberType &member);
  void refuse(const std::string &what, const std::string &mend);

  std::map<std::string, Members> m_types; // by their labels, those that change
  std::vector<NewEntity> m_entities;
  std::vector<std::string> m_sentences;
  std::string m_refusal;
  bool m_changesLimits = false;
};

// The rows that are outside the limits of an input's attributes, one sentence each; the last one counts the rest.
std::vector<std::string> rowsOutsideLimits(const ProjectSession &session);

} // namespace Workbench
