#pragma once

#include "EmbeddedHost/Units.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

union cv_converter;

namespace EmbeddedHost {

/// The unit system over udunits2. What makes units and converters there may be used by one thread at a time only.
class UnitDatabase final : public UnitSystem {
public:
  /// \param file  the database; null for the one of the package, or of the environment variable UDUNITS2_XML_PATH
  explicit UnitDatabase(const char *file);
  ~UnitDatabase() override;

  UnitResult parse(std::string_view text) override;
  bool areConvertible(const Unit &from, const Unit &to) override;
  double convert(double value, const Unit &from, const Unit &to) override;

private:
  class ParsedUnit;
  class Handles;
  using Results = std::unordered_map<std::string, UnitResult>;

  /// May be used by several threads; null when the two cannot be converted.
  const cv_converter *converter(const Unit &from, const Unit &to);

  std::mutex m_mutex;
  std::unique_ptr<Handles> m_handles;
  Results m_results;
  // The result that was asked for last, without lock: a column of quantities asks for one and the same unit. Results
  // stay where they are and as they are.
  std::atomic<const Results::value_type *> m_last{nullptr};
};

} // namespace EmbeddedHost
