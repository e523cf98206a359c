#include "EmbeddedHost/src/model/UnitSpellings.h"

#include <gtest/gtest.h>
#include <udunits2.h>

#include <cmath>
#include <locale.h>
#include <memory>
#include <set>
#include <string>

namespace EmbeddedHost {
namespace {

struct Free {
  void operator()(ut_unit *unit) const { ut_free(unit); }
  void operator()(ut_system *system) const { ut_free_system(system); }
  void operator()(cv_converter *converter) const { cv_free(converter); }
};
using DatabaseUnit = std::unique_ptr<ut_unit, Free>;

/// The unit database alone, without anything of ours before it.
class UnitSpellingsTest : public ::testing::Test {
protected:
  // The database reads numbers by the locale of the thread.
  UnitSpellingsTest()
      : m_plain(newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr))), m_previous(uselocale(m_plain)) {
    ut_set_error_message_handler(&ut_ignore);
    m_system.reset(ut_read_xml(nullptr));
  }

  UnitSpellingsTest(const UnitSpellingsTest &) = delete;
  UnitSpellingsTest &operator=(const UnitSpellingsTest &) = delete;

  ~UnitSpellingsTest() override {
    uselocale(m_previous);
    freelocale(m_plain);
  }

  DatabaseUnit read(std::string_view text) const {
    return DatabaseUnit(ut_parse(m_system.get(), std::string(text).c_str(), UT_UTF8));
  }

  bool isSame(std::string_view first, std::string_view second) const {
    const DatabaseUnit from = read(first);
    const DatabaseUnit to = read(second);
    if (from == nullptr || to == nullptr || ut_are_convertible(from.get(), to.get()) == 0) {
      return false;
    }
    const std::unique_ptr<cv_converter, Free> converter(ut_get_converter(from.get(), to.get()));
    return std::abs(cv_convert_double(converter.get(), 1.0) - 1.0) < 1e-9;
  }

private:
  locale_t m_plain;
  locale_t m_previous;
  std::unique_ptr<ut_system, Free> m_system;
};

TEST_F(UnitSpellingsTest, EverySpelling_StandsOnce) {
  std::set<std::string_view> written;
  for (const UnitSpellingRow &row : UnitSpellings::rows()) {
    EXPECT_TRUE(written.insert(row.written).second) << row.written;
    EXPECT_EQ(UnitSpellings::find(row.written), &row);
  }
  EXPECT_EQ(UnitSpellings::find("mm"), nullptr);
}

TEST_F(UnitSpellingsTest, WhatMeansAnother_IsNotReadByTheDatabaseItself) {
  for (const UnitSpellingRow &row : UnitSpellings::rows()) {
    if (row.treatment == UnitTreatment::Means || row.treatment == UnitTreatment::Product) {
      EXPECT_EQ(read(row.written), nullptr) << row.written;
      EXPECT_NE(read(row.meant), nullptr) << row.meant;
    }
  }
}

TEST_F(UnitSpellingsTest, ReadingsOfTheAmbiguous_NameTheOneOfTheDatabase) {
  for (const UnitSpellingRow &row : UnitSpellings::rows()) {
    if (!isAmbiguous(row) || read(row.written) == nullptr) {
      continue;
    }
    // A factor has no offset.
    const bool isFactor = row.treatment != UnitTreatment::Ambiguous;
    const auto inUse = [isFactor](std::string_view text) {
      return isFactor ? "V/(" + std::string(text) + ")" : std::string(text);
    };
    bool isNamed = false;
    for (const std::string &reading : readingsOf(row)) {
      isNamed = isNamed || isSame(inUse(row.written), inUse(reading));
    }
    EXPECT_TRUE(isNamed) << row.written << ": " << row.meant;
  }
}

} // namespace
} // namespace EmbeddedHost
