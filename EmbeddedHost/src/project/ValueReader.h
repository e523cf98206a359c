#pragma once

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/project/Database.h"
#include "HostModel/AttributePath.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace EmbeddedHost {

class Unit;

/// The texts behind the numbers in rows of values, as paths and as units where they are asked for.
class TextReader {
public:
  explicit TextReader(Database &database);

  /// \throws DamagedProject  there is no such text
  const EntityModel::AttributePath &path(std::int64_t number) { return find(number).path; }
  /// \param standard  what values in the unit are to be converted to
  /// \throws DamagedProject  there is no such text, or it is no unit, or one of another quantity
  const Unit &unit(std::int64_t number, const Unit &standard);

private:
  struct Entry {
    std::string text;
    EntityModel::AttributePath path;
    const Unit *unit = nullptr;
    const Unit *standard = nullptr; ///< the last one that the unit was found to be convertible to
  };

  Entry &find(std::int64_t number);

  std::unordered_map<std::int64_t, Entry> m_texts;
};

/// Turns rows of values into values.
class ValueReader {
public:
  ValueReader(const Model &model, TextReader &texts) : m_model(model), m_texts(texts) {}

  /// \param column  of the value; the next one holds what belongs to it
  /// \throws DamagedProject  the row is no value of the slot
  Value read(const Statement &row, int column, const Slot &slot);

private:
  Value readReal(const Statement &row, int column, const Slot &slot);
  Value readLink(const Statement &row, int column, const Slot &slot) const;
  Value readReference(const Statement &row, int column) const;
  Value readList(std::string_view text, const Slot &slot) const;
  LinkValue checked(LinkValue link, const Slot &slot) const;

  const Model &m_model;
  TextReader &m_texts;
};

} // namespace EmbeddedHost
