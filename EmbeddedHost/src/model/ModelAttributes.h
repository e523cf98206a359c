#pragma once

#include "EmbeddedHost/src/model/Slot.h"

#include <memory>

namespace EmbeddedHost {

class ModelEntity;
struct DetachedSlot;

/// Makes the attribute object of an entity's slot.
std::unique_ptr<EntityModel::Attribute> makeAttribute(Slot &slot);

/// Makes a detached copy of a slot with a value of its own.
std::unique_ptr<EntityModel::Attribute> makeDetachedAttribute(const Slot &slot, const Value &value);

/// Replaces a detached copy, which may be null, by what makeDetachedAttribute() would make of a slot of the same model.
/// Changes it in place where it can: as many copies are looked at as a study has cells.
void renewDetachedAttribute(std::unique_ptr<EntityModel::Attribute> &copy, const Slot &slot,
                            const Value &value);

/// Makes a copy of a detached copy.
std::unique_ptr<EntityModel::Attribute> makeDetachedAttribute(const DetachedSlot &original);

/// Makes a detached copy of an entity as an attribute, which keeps its name only.
std::unique_ptr<EntityModel::Attribute> makeDetachedEntity(const ModelEntity &entity);

/// The slot behind an attribute of this host; null for an entity and for another host's attribute.
const Slot *slotOf(const EntityModel::Attribute &attribute);

} // namespace EmbeddedHost
