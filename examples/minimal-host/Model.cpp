#include "Model.h"

#include "HostModel/TypeConstants.h"
#include "Versions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace MinimalHost {

namespace {

// Neither depends on the locale; the text is the shortest that gives the same number back.
std::optional<double> toNumber(const std::string &text) {
  double number = 0.0;
  const char *end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

std::string toText(double number) {
  std::array<char, 32> text = {};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::unique_ptr<Attribute> makeAttribute(Slot slot) {
  if (slot.member.kind == Kind::TypeReference) {
    return std::make_unique<TypeValue>(std::move(slot));
  }
  if (slot.isLink()) {
    return std::make_unique<Links>(std::move(slot));
  }
  return std::make_unique<AttributeOf<Attribute>>(std::move(slot));
}

} // namespace

bool Slot::isVersionReadOnly() const {
  return isVersioned() && model->current != nullptr && model->current->isReadOnly;
}

const Value &Slot::value() const {
  const Version *version = isVersioned() ? model->current : nullptr;
  for (; version != nullptr; version = version->previous) {
    if (const auto edit = version->edits.find(this); edit != version->edits.end()) {
      return edit->second;
    }
  }
  return held;
}

bool Slot::store(Value changed) {
  if (isVersioned() && model->current == nullptr) {
    return false;
  }
  (isVersioned() ? model->current->edits[this] : held) = std::move(changed);
  return true;
}

Value Slot::read(const std::string &text) const {
  if (member.kind == Kind::Text || member.kind == Kind::Entity) {
    return {text};
  }
  if (member.kind == Kind::TypeReference && text.empty()) {
    return {};
  }
  if (member.kind == Kind::TypeReference &&
      (text == EntityModel::Minimise_t.getLabel() || text == EntityModel::Maximise_t.getLabel())) {
    return {text};
  }
  const std::optional<double> parsed = toNumber(text);
  if (member.kind == Kind::Boolean && (text == "0" || text == "1")) {
    return {text};
  }
  // Written so that no limit accepts what is no number.
  if (member.kind == Kind::Real && parsed && (!lowest || *parsed >= *lowest) &&
      (!highest || *parsed <= *highest)) {
    return {toText(*parsed)};
  }
  throw std::invalid_argument("\"" + text + "\" is no value of " + std::string(member.type.getLabel()));
}

double Slot::number() const {
  const std::optional<std::string> &text = value().text;
  return isNumber() && text ? toNumber(*text).value_or(0.0) : 0.0;
}

int Slot::wholeNumber() const {
  using Limits = std::numeric_limits<int>;
  const double all = std::isnan(number()) ? 0.0 : number();
  return static_cast<int>(std::clamp(all, double{Limits::min()}, double{Limits::max()}));
}

std::unique_ptr<Attribute> copyOf(const Slot &slot, const std::optional<std::string> &text) {
  Slot copy = slot;
  copy.model = nullptr;
  copy.owner = nullptr;
  copy.held = {text};
  if (slot.member.kind == Kind::Entity) {
    copy.member.kind = Kind::Text; // of an entity its name is left
  }
  return makeAttribute(std::move(copy));
}

std::string Links::getValueAsString() const {
  return hasValue() ? getLinkedEntity()->getName(false) : std::string();
}

Entity *Links::getEntity(int index) const {
  return index < 0 || index >= getCount() ? nullptr
                                          : existing(value().entities[static_cast<std::size_t>(index)]);
}

int Links::indexOf(const Entity *entity) const {
  const std::vector<Entity *> &entities = value().entities;
  const auto found = std::find(entities.begin(), entities.end(), entity);
  return found == entities.end() ? -1 : static_cast<int>(found - entities.begin());
}

bool Links::moveEntity(Entity *entity, int to) {
  const int from = indexOf(entity);
  if (from < 0 || to < 0 || to > getCount()) {
    return false;
  }
  Value changed = value();
  changed.entities.insert(changed.entities.begin() + to, entity);
  changed.entities.erase(changed.entities.begin() + (from < to ? from : from + 1));
  return store(std::move(changed));
}

bool Links::insert(ModelEntity &entity, bool owns, int position) {
  Value changed = value();
  if (!isEntityList()) {
    changed.entities.clear();
  }
  const int count = static_cast<int>(changed.entities.size());
  const int place = position < 0 ? count : std::min(position, count);
  changed.entities.insert(changed.entities.begin() + place, &entity);
  if (!store(std::move(changed))) {
    return false;
  }
  if (owns) {
    entity.owners.push_back(this);
  }
  return true;
}

bool Links::remove(ModelEntity &entity) {
  Value changed = value();
  std::vector<Entity *> &entities = changed.entities;
  entities.erase(std::remove(entities.begin(), entities.end(), &entity), entities.end());
  return store(std::move(changed));
}

ModelEntity::ModelEntity(Model &project, const Member &type, const std::vector<Member> &declared,
                         bool isStudyPart)
    : AttributeOf(Slot{&project, this, type, isStudyPart, {type.text}}) {
  for (const Member &each : declared) {
    Slot slot{&project, this, each, isStudyPart || each.type == EntityModel::OptimizationDataList_t};
    if (!each.text.empty() || each.kind == Kind::Text) {
      slot.held = slot.read(each.text);
    }
    members.push_back(makeAttribute(std::move(slot)));
  }
}

Attribute *ModelEntity::findAttribute(const AttributePath &path) {
  if (path.empty()) {
    return existing(this);
  }
  return path.size() == 1 ? findAttribute(path.back(), false) : nullptr;
}

Attribute *ModelEntity::findAttribute(const TypeRef &type, bool /*searchMembers*/) {
  for (const std::unique_ptr<Attribute> &each : members) {
    if (each->getType() == type && exists()) {
      return each.get();
    }
  }
  return nullptr;
}

EntityLink *ModelEntity::getOwnerEntityLink() const {
  const auto found = std::find_if(owners.rbegin(), owners.rend(), [this](const Links *link) {
    return link->indexOf(this) >= 0 && existing(link->owner) != nullptr;
  });
  return found == owners.rend() ? nullptr : *found;
}

std::string ModelEntity::getName(bool /*asDisplayed*/) const {
  return exists() ? held.text.value_or("") : std::string();
}

bool ModelEntity::exists() const {
  return this == model->entities.front().get() || getOwnerEntityLink() != nullptr;
}

// Entities are handed out to be changed; looking at one changes nothing.
ModelEntity *existing(const Entity *entity) {
  auto *known = dynamic_cast<ModelEntity *>(const_cast<Entity *>(entity));
  return known != nullptr && known->exists() ? known : nullptr;
}

} // namespace MinimalHost
