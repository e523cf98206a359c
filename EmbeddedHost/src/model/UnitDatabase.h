#pragma once

#include "EmbeddedHost/Units.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

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
  std::optional<double> convertTo(double value, const Unit &from, std::string_view to) override;

private:
  struct Conversion;
  class ParsedUnit;
  class Handles;
  using Results = std::unordered_map<std::string, UnitResult>;

  /// The conversion may be used by several threads; it has no converter when the two cannot be converted.
  const Conversion &conversion(const ParsedUnit &from, const Unit &to);

  std::mutex m_mutex;
  std::unique_ptr<Handles> m_handles;
  Results m_results;
  // The result that was asked for last, without lock: a column of quantities asks for one and the same unit. Results
  // stay where they are and as they are.
  std::atomic<const Results::value_type *> m_last{nullptr};
};

} // namespace EmbeddedHost
