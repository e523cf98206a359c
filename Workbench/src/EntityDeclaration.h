#pragma once

#include "EmbeddedHost/ModelSchema.h"
#include "Workbench/StudyFile.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Workbench {

// One entity of a study file with its attributes.
struct EntityDeclaration {
  std::string name;
  std::vector<const StudyAttribute *> attributes;
};

// The entities of a study file, which they refer to.
std::vector<EntityDeclaration> entitiesOf(const StudyFile &study);

// The label of the type of an entity, counted from 0. An entity's name may hold a full stop, which a label may not; so
// types are numbered.
std::string typeLabel(std::size_t index);

// How the host declares an attribute. The declared unit is the standard unit too, so that no number is ever converted
// on its way.
EmbeddedHost::MemberType memberOf(const StudyAttribute &attribute);
std::vector<EmbeddedHost::MemberType> membersOf(const EntityDeclaration &entity);

} // namespace Workbench
