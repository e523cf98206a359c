#pragma once

#include "HostModel/Host.h"
#include "HostModel/TypeRef.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace MinimalHost {

/// The kinds of values of this host, which are also the kind codes of its types.
enum class Kind { Real = 1, Boolean, Text, TypeReference, Link, List, Entity };

/// What a type declares of one of its members.
struct Member {
  EntityModel::TypeRef type;
  Kind kind = Kind::Real;
  /// The value of a new entity; "" is no value, except of a text.
  std::string text = {};
  bool isResult = false;
};

/// A whole host, as short as it can be: entities and versions in memory, and nothing that a study can do without.
class Host final : public HostModel::Host {
public:
  /// \param rootMembers  what the root entity has besides the studies
  /// \param types        the members of every other type of entity, by its label
  Host(const std::vector<Member> &rootMembers, std::map<std::string, std::vector<Member>> types);
  ~Host() override;

  /// Selects the root entity and says so, which loads the study of the current version. Once it is installed.
  void open();
  /// Leaves no version current and says so, so that the study lets go of the model. While it is installed.
  void close();

  EntityModel::EntityEditorService *getEntityEditor() override;
  EntityGUI::EntityManagerService *getEntityManager() override;
  EntityModel::StudyTypeNameService *getStudyTypeNames() override;

private:
  struct Parts;

  std::unique_ptr<Parts> m_parts;
};

} // namespace MinimalHost
