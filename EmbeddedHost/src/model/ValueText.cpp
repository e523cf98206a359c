#include "EmbeddedHost/src/model/ValueText.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelEntity.h"
#include "EmbeddedHost/src/model/NumberText.h"

#include <algorithm>
#include <stdexcept>

namespace EmbeddedHost {

namespace {

[[noreturn]] void refuse(const Slot &slot, std::string_view text, const std::string &why) {
  throw std::invalid_argument(slot.member->label + ": \"" + std::string(text) + "\" " + why);
}

void checkLimits(const Slot &slot, std::string_view text, double number) {
  const std::optional<double> &minimum = minimumOf(slot);
  const std::optional<double> &maximum = maximumOf(slot);
  const std::string unit = slot.member->standardUnit.empty() ? "" : " " + slot.member->standardUnit;
  // Written so that no limit accepts what is no number at all.
  if (minimum.has_value() && !(number >= *minimum)) {
    refuse(slot, text, "is below the minimum " + numberText(*minimum) + unit);
  }
  if (maximum.has_value() && !(number <= *maximum)) {
    refuse(slot, text, "is above the maximum " + numberText(*maximum) + unit);
  }
}

Value readReal(const Slot &slot, std::string_view text) {
  const std::optional<LeadingNumber> number = readLeadingNumber(text);
  if (!number.has_value()) {
    refuse(slot, text, "is no number");
  }
  RealValue real{number->value, displayUnit(*slot.member, slot.value)};
  const std::string_view unitText = trimmed(text.substr(number->length));
  const Unit *standard = slot.member->standard;
  if (!unitText.empty()) {
    if (standard == nullptr) {
      refuse(slot, text, "is no number: this value has no units");
    }
    const UnitResult unit = UnitSystem::process().parse(unitText);
    if (unit.unit == nullptr) {
      refuse(slot, text, "has no valid unit: " + unit.problem);
    }
    if (!UnitSystem::process().areConvertible(*unit.unit, *standard)) {
      refuse(slot, text,
             "is not in a unit that can be converted to " + standard->text() +
                 conversionHint(unitText, standard->text()));
    }
    real.unit = unit.unit;
  }
  checkLimits(slot, text, standardNumber(*slot.member, real));
  return real;
}

Value readWholeNumber(const Slot &slot, std::string_view text) {
  const std::optional<std::int64_t> number = readInteger(text);
  if (!number.has_value()) {
    refuse(slot, text, "is no whole number");
  }
  checkLimits(slot, text, static_cast<double>(*number));
  return *number;
}

Value readBoolean(const Slot &slot, std::string_view text) {
  if (text == "1" || text == "true") {
    return std::int64_t{1};
  }
  if (text == "0" || text == "false") {
    return std::int64_t{0};
  }
  refuse(slot, text, "is neither 0 nor 1");
}

Value readChoice(const Slot &slot, std::string_view text) {
  const std::vector<std::string> &options = slot.member->options;
  if (const std::optional<std::int64_t> ordinal = readInteger(text)) {
    if (*ordinal >= 1 && *ordinal <= static_cast<std::int64_t>(options.size())) {
      return *ordinal;
    }
  }
  const auto found = std::find(options.begin(), options.end(), text);
  if (found == options.end()) {
    refuse(slot, text, "is no option; options are 1 to " + std::to_string(options.size()));
  }
  return std::int64_t{found - options.begin() + 1};
}

Value readType(const Slot &slot, std::string_view text) {
  if (text.empty()) {
    return {};
  }
  const std::vector<std::string> &options = slot.member->options;
  if (std::find(options.begin(), options.end(), text) == options.end()) {
    refuse(slot, text, "is no type that may stand here");
  }
  return EntityModel::TypeRef::fromLabel(text);
}

ModelEntity &readEntity(const Slot &slot, std::string_view text, std::string_view reference,
                        const Model *model) {
  const std::size_t mark = reference.rfind('#');
  const std::optional<std::int64_t> number =
      mark == std::string_view::npos ? std::nullopt : readInteger(reference.substr(mark + 1));
  ModelEntity *entity = number.has_value() && model != nullptr ? model->findEntity(*number) : nullptr;
  if (entity == nullptr) {
    refuse(slot, text, "names no entity; the text of a link ends in \"#\" and the entity's number");
  }
  return *entity;
}

Value readLink(const Slot &slot, std::string_view text, const Model *model) {
  if (text.empty()) {
    return {};
  }
  ModelEntity &entity = readEntity(slot, text, text, model);
  const std::string &target = slot.member->targetType;
  if (!target.empty() && entity.type().label() != target) {
    refuse(slot, text, "is no entity of the type " + target);
  }
  return LinkValue{&entity, false};
}

// "Fan #12:Size.Width"
Value readReference(const Slot &slot, std::string_view text, const Model *model) {
  if (text.empty()) {
    return {};
  }
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) {
    refuse(slot, text, "names no attribute; write the entity, \":\" and the attribute's path");
  }
  ModelEntity &entity = readEntity(slot, text, text.substr(0, colon), model);
  return std::make_shared<const AttributeTarget>(
      AttributeTarget{&entity, EntityModel::AttributePath(std::string(text.substr(colon + 1)))});
}

std::string entityText(const ModelEntity &entity) {
  return entity.name() + " #" + numberText(entity.number());
}

} // namespace

bool isNumberKind(MemberKind kind) {
  return kind == MemberKind::Real || kind == MemberKind::Integer || kind == MemberKind::Boolean ||
         kind == MemberKind::Choice;
}

std::string valueText(const Slot &slot, const Value &value) {
  struct Visitor {
    std::string operator()(std::monostate /*none*/) const { return {}; }
    std::string operator()(const RealValue &real) const {
      const std::string text = numberText(real.number);
      return real.unit == nullptr ? text : text + " " + real.unit->text();
    }
    std::string operator()(std::int64_t number) const { return numberText(number); }
    std::string operator()(const TextValue &text) const { return std::string(textOf(text)); }
    std::string operator()(const EntityModel::TypeRef &type) const { return std::string(type.getLabel()); }
    std::string operator()(const LinkValue &link) const {
      return link.entity == nullptr || !link.entity->exists() ? std::string() : entityText(*link.entity);
    }
    std::string operator()(const std::shared_ptr<const AttributeTarget> &target) const {
      return target->entity->exists() ? entityText(*target->entity) + ":" + target->path.toString('.')
                                      : std::string();
    }
    std::string operator()(const std::shared_ptr<ListContent> & /*list*/) const { return {}; }
  };
  if (slot.member->kind == MemberKind::EntityList) {
    std::string text;
    for (const LinkValue &element : elementsOf(value)) {
      text += (text.empty() ? "" : ", ") + Visitor()(element);
    }
    return text;
  }
  return std::visit(Visitor(), value);
}

Value readValue(const Slot &slot, std::string_view text, const Model *model) {
  switch (slot.member->kind) {
  case MemberKind::Real:
    return readReal(slot, trimmed(text));
  case MemberKind::Integer:
    return readWholeNumber(slot, trimmed(text));
  case MemberKind::Boolean:
    return readBoolean(slot, trimmed(text));
  case MemberKind::Choice:
    return readChoice(slot, trimmed(text));
  case MemberKind::Text:
    return makeText(text);
  case MemberKind::TypeReference:
    return readType(slot, text);
  case MemberKind::EntityLink:
    return readLink(slot, text, model);
  case MemberKind::AttributeReference:
    return readReference(slot, text, model);
  case MemberKind::EntityList:
  case MemberKind::Composite:
    break;
  }
  refuse(slot, text, "cannot be set: this is no single value");
}

Value defaultValue(const Member &member) {
  if (!member.defaultText.empty()) {
    Slot slot;
    slot.member = &member;
    return readValue(slot, member.defaultText, nullptr);
  }
  if (member.kind == MemberKind::Text && !member.isResult) {
    return TextValue();
  }
  if (member.kind == MemberKind::EntityList) {
    return std::shared_ptr<ListContent>();
  }
  return {};
}

const Unit *displayUnit(const Member &member, const Value &value) {
  if (const auto *real = std::get_if<RealValue>(&value)) {
    return real->unit;
  }
  return member.display;
}

double standardNumber(const Member &member, const Value &value) {
  if (const auto *number = std::get_if<std::int64_t>(&value)) {
    return static_cast<double>(*number);
  }
  const auto *real = std::get_if<RealValue>(&value);
  if (real == nullptr) {
    return 0.0;
  }
  if (real->unit == nullptr || real->unit == member.standard) {
    return real->number;
  }
  return UnitSystem::process().convert(real->number, *real->unit, *member.standard);
}

} // namespace EmbeddedHost
