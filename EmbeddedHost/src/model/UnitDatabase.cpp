#include "EmbeddedHost/src/model/UnitDatabase.h"

#include "EmbeddedHost/src/model/NumberText.h"
#include "EmbeddedHost/src/model/UnitText.h"

#include <udunits2.h>

#include <limits>
#include <locale.h>
#include <vector>

namespace EmbeddedHost {

namespace {

struct FreeUnit {
  void operator()(ut_unit *unit) const { ut_free(unit); }
};
struct FreeConverter {
  void operator()(cv_converter *converter) const { cv_free(converter); }
};
struct FreeSystem {
  void operator()(ut_system *system) const { ut_free_system(system); }
};

// The unit library reads numbers by the locale of the thread, its own database with them. While one lives, that is
// the "C" locale, whatever the process has.
class PlainLocaleScope {
public:
  PlainLocaleScope() : m_previous(uselocale(plain())) {}
  PlainLocaleScope(const PlainLocaleScope &) = delete;
  PlainLocaleScope &operator=(const PlainLocaleScope &) = delete;
  ~PlainLocaleScope() { uselocale(m_previous); }

private:
  // Made once and kept: units may be parsed as long as the process lives.
  static locale_t plain() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
  }

  locale_t m_previous;
};

} // namespace

// A way to another unit. Stays as it is once it is known, and may be used by several threads.
struct UnitDatabase::Conversion {
  const Unit *to = nullptr;
  std::unique_ptr<cv_converter, FreeConverter> converter;
};

class UnitDatabase::ParsedUnit final : public Unit {
public:
  ParsedUnit(std::string text, ut_unit *unit) : m_text(std::move(text)), m_unit(unit) {}
  ~ParsedUnit() override = default;

  const std::string &text() const override { return m_text; }
  ut_unit *handle() const { return m_unit.get(); }
  // The conversion that was asked for last, for use without lock.
  std::atomic<const Conversion *> &last() const { return m_last; }

private:
  mutable std::atomic<const Conversion *> m_last{nullptr};
  std::string m_text;
  std::unique_ptr<ut_unit, FreeUnit> m_unit;
};

class UnitDatabase::Handles {
public:
  // Destroyed from the last to the first: what was made from the system goes before it.
  std::unique_ptr<ut_system, FreeSystem> system;
  std::vector<std::unique_ptr<ParsedUnit>> units;
  std::map<std::pair<const Unit *, const Unit *>, Conversion> conversions;
  std::string problem;

  /// Without a converter when the two cannot be converted.
  const Conversion &conversion(const ParsedUnit &from, const Unit &to) {
    const auto known = conversions.find({&from, &to});
    if (known != conversions.end()) {
      return known->second;
    }
    ut_unit *source = from.handle();
    ut_unit *target = static_cast<const ParsedUnit &>(to).handle();
    Conversion made;
    made.to = &to;
    made.converter.reset(ut_are_convertible(source, target) == 0 ? nullptr
                                                                 : ut_get_converter(source, target));
    return conversions.emplace(std::make_pair(&from, &to), std::move(made)).first->second;
  }
};

UnitDatabase::UnitDatabase(const char *file) : m_handles(std::make_unique<Handles>()) {
  const PlainLocaleScope plainLocale;
  ut_set_error_message_handler(&ut_ignore);
  m_handles->system.reset(ut_read_xml(file));
  if (m_handles->system == nullptr) {
    const bool isMissing = ut_get_status() == UT_OPEN_ENV || ut_get_status() == UT_OPEN_DEFAULT ||
                           ut_get_status() == UT_OPEN_ARG;
    m_handles->problem = std::string("The unit database udunits2.xml ") +
                         (isMissing ? "was not found" : "cannot be read") +
                         ": install the package libudunits2-data, or name the file in UDUNITS2_XML_PATH.";
  }
}

UnitDatabase::~UnitDatabase() = default;

UnitResult UnitDatabase::parse(std::string_view text) {
  const Results::value_type *last = m_last.load(std::memory_order_acquire);
  if (last != nullptr && last->first == text) {
    return last->second;
  }
  const std::string name(trimmed(text));
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_handles->system == nullptr) {
    return {nullptr, m_handles->problem};
  }
  const auto known = m_results.find(name);
  if (known != m_results.end()) {
    m_last.store(&*known, std::memory_order_release);
    return known->second;
  }
  UnitResult result;
  const UnitText readable = readUnitText(name);
  result.problem = readable.problem;
  if (!readable.text.empty()) {
    const PlainLocaleScope plainLocale;
    ut_unit *unit = ut_parse(m_handles->system.get(), readable.text.c_str(), UT_UTF8);
    if (unit == nullptr) {
      result.problem =
          "The unit \"" + name + "\" is unknown; products are written as in N.m, powers as in m2.";
    } else {
      m_handles->units.push_back(std::make_unique<ParsedUnit>(name, unit));
      result.unit = m_handles->units.back().get();
      m_results.emplace(name, result);
    }
  }
  return result;
}

bool UnitDatabase::areConvertible(const Unit &from, const Unit &to) {
  return &from == &to || conversion(static_cast<const ParsedUnit &>(from), to).converter != nullptr;
}

double UnitDatabase::convert(double value, const Unit &from, const Unit &to) {
  if (&from == &to) {
    return value;
  }
  const Conversion &way = conversion(static_cast<const ParsedUnit &>(from), to);
  return way.converter == nullptr ? std::numeric_limits<double>::quiet_NaN()
                                  : cv_convert_double(way.converter.get(), value);
}

std::optional<double> UnitDatabase::convertTo(double value, const Unit &from, std::string_view to) {
  const auto &source = static_cast<const ParsedUnit &>(from);
  // A column of quantities asks for the same unit again and again.
  const Conversion *way = source.last().load(std::memory_order_acquire);
  if (way == nullptr || way->to->text() != to) {
    const UnitResult target = parse(to);
    if (target.unit == nullptr) {
      return std::nullopt;
    }
    if (target.unit == &from) {
      return value;
    }
    way = &conversion(source, *target.unit);
  }
  return way->converter == nullptr ? std::nullopt
                                   : std::optional<double>(cv_convert_double(way->converter.get(), value));
}

const UnitDatabase::Conversion &UnitDatabase::conversion(const ParsedUnit &from, const Unit &to) {
  const Conversion *known = from.last().load(std::memory_order_acquire);
  if (known == nullptr || known->to != &to) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    known = &m_handles->conversion(from, to);
    from.last().store(known, std::memory_order_release);
  }
  return *known;
}

} // namespace EmbeddedHost
