#include "EmbeddedHost/src/project/ValueReader.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/NumberText.h"
#include "EmbeddedHost/src/project/ProjectReader.h"

#include <algorithm>
#include <optional>

namespace EmbeddedHost {

TextReader::TextReader(Database &database) {
  Statement rows = database.prepare("SELECT number, text FROM text");
  while (rows.step()) {
    m_texts.emplace(rows.integer(0), Entry{std::string(rows.text(1)), {}, nullptr, nullptr});
  }
  for (auto &[number, entry] : m_texts) {
    entry.path = EntityModel::AttributePath(entry.text);
  }
}

const Unit &TextReader::unit(std::int64_t number, const Unit &standard) {
  Entry &entry = find(number);
  if (entry.unit == nullptr) {
    const UnitResult result = UnitSystem::process().parse(entry.text);
    if (result.unit == nullptr) {
      throw DamagedProject("a value whose unit cannot be read: " + result.problem);
    }
    entry.unit = result.unit;
  }
  if (entry.standard != &standard) {
    if (!UnitSystem::process().areConvertible(*entry.unit, standard)) {
      throw DamagedProject("a value in a unit of another quantity");
    }
    entry.standard = &standard;
  }
  return *entry.unit;
}

TextReader::Entry &TextReader::find(std::int64_t number) {
  const auto found = m_texts.find(number);
  if (found == m_texts.end()) {
    throw DamagedProject("a row that refers to an unknown text");
  }
  return found->second;
}

namespace {

// The database would turn anything into a number.
std::int64_t wholeNumber(const Statement &row, int column) {
  if (row.type(column) != SQLITE_INTEGER) {
    throw DamagedProject("a whole number that is none");
  }
  return row.integer(column);
}

Value readNumber(const Statement &row, int column, const Slot &slot) {
  const std::int64_t number = wholeNumber(row, column);
  const bool isChoice = slot.member->kind == MemberKind::Choice;
  const bool isBoolean = slot.member->kind == MemberKind::Boolean;
  const auto highest = isChoice ? static_cast<std::int64_t>(slot.member->options.size()) : std::int64_t{1};
  if ((isChoice || isBoolean) && (number < (isChoice ? 1 : 0) || number > highest)) {
    throw DamagedProject("a choice of an option that there is not");
  }
  return number;
}

Value readType(const Statement &row, int column, const Slot &slot) {
  const std::string_view label = row.text(column);
  const std::vector<std::string> &options = slot.member->options;
  if (std::find(options.begin(), options.end(), label) == options.end()) {
    throw DamagedProject("a type that may not stand where it stands");
  }
  return EntityModel::TypeRef::fromLabel(label);
}

} // namespace

Value ValueReader::read(const Statement &row, int column, const Slot &slot) {
  if (row.isNull(column)) {
    return {};
  }
  switch (slot.member->kind) {
  case MemberKind::Real:
    return readReal(row, column, slot);
  case MemberKind::Integer:
  case MemberKind::Boolean:
  case MemberKind::Choice:
    return readNumber(row, column, slot);
  case MemberKind::Text:
    return makeText(row.text(column));
  case MemberKind::TypeReference:
    return readType(row, column, slot);
  case MemberKind::EntityLink:
    return readLink(row, column, slot);
  case MemberKind::AttributeReference:
    return readReference(row, column);
  case MemberKind::EntityList:
    return readList(row.text(column), slot);
  case MemberKind::Composite:
    break;
  }
  throw DamagedProject("a value for a composite");
}

Value ValueReader::readReal(const Statement &row, int column, const Slot &slot) {
  const int type = row.type(column);
  const bool isBytes = type == SQLITE_BLOB && row.text(column).size() == sizeof(double);
  if (type != SQLITE_FLOAT && type != SQLITE_INTEGER && !isBytes) {
    throw DamagedProject("a number that is none");
  }
  RealValue real{row.real(column), nullptr};
  if (slot.member->standard != nullptr && !row.isNull(column + 1)) {
    real.unit = &m_texts.unit(row.integer(column + 1), *slot.member->standard);
  }
  return real;
}

// An entity that was deleted is no damage: a link to it is empty.
Value ValueReader::readLink(const Statement &row, int column, const Slot &slot) const {
  ModelEntity *entity = m_model.findEntity(wholeNumber(row, column));
  return entity == nullptr ? Value() : Value(checked({entity, row.integer(column + 1) != 0}, slot));
}

// Entities that own each other in a circle are no damage: two versions may each have moved one into the other.
LinkValue ValueReader::checked(LinkValue link, const Slot &slot) const {
  const bool mayBeOwned =
      link.entity != &m_model.root() && link.entity->isProjectLevel() == Model::isProjectLevel(slot);
  if (link.isOwned && !mayBeOwned) {
    throw DamagedProject("an owner of an entity that it cannot own");
  }
  return link;
}

Value ValueReader::readReference(const Statement &row, int column) const {
  ModelEntity *entity = m_model.findEntity(row.integer(column + 1));
  if (entity == nullptr) {
    return {};
  }
  return std::make_shared<const AttributeTarget>(
      AttributeTarget{entity, EntityModel::AttributePath(std::string(row.text(column)))});
}

Value ValueReader::readList(std::string_view text, const Slot &slot) const {
  auto list = std::make_shared<ListContent>();
  while (!text.empty()) {
    const std::size_t end = text.find_first_of("+-");
    const std::optional<std::int64_t> number =
        end == std::string_view::npos ? std::nullopt : readInteger(text.substr(0, end));
    if (!number.has_value()) {
      throw DamagedProject("a list that cannot be read");
    }
    if (ModelEntity *entity = m_model.findEntity(*number)) {
      list->elements.push_back(checked({entity, text[end] == '+'}, slot));
    }
    text.remove_prefix(end + 1);
  }
  return list;
}

} // namespace EmbeddedHost
