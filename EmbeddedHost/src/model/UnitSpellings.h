#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace EmbeddedHost {

/// What becomes of a spelling that the unit database does not have, or has for something else.
enum class UnitTreatment {
  Means,               ///< one symbol for what the database has under another spelling
  Product,             ///< a product written without a sign between its factors
  Ambiguous,           ///< read as something else than many mean by it
  AmbiguousInCompound, ///< the same, but clear when it stands alone
  AmbiguousBelowLine,  ///< the same, but clear above a division
  Refused,             ///< no unit of measurement, or not only that
};

/// One spelling of the table.
struct UnitSpellingRow {
  std::string_view written; ///< two words are parted by one blank, which stands for any sign of a product
  UnitTreatment treatment;
  /// What to read instead; for the ambiguous ones the readings, the likeliest first, each a text that works,
  /// parted by " or "; for a refused one what to write instead, which may be empty.
  std::string_view meant;
  std::string_view why; ///< of a refused one: the part of a sentence before "; write <meant>"
};

/// Whether the row has several readings, in some places or in all.
bool isAmbiguous(const UnitSpellingRow &row);
/// The readings of an ambiguous row.
std::vector<std::string> readingsOf(const UnitSpellingRow &row);

/// The spellings that engineers use and the unit database does not read, or reads as something else. Kept in
/// step with docs/units.md by a test.
class UnitSpellings {
public:
  /// All rows, by treatment.
  static const std::vector<UnitSpellingRow> &rows();
  /// \return  null when the table says nothing of that text
  static const UnitSpellingRow *find(std::string_view written);
};

} // namespace EmbeddedHost
