#pragma once

#include "EmbeddedHost/Units.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

namespace EmbeddedHost {

/// The unit system over udunits2, whose functions may be used by one thread at a time only.
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

  std::mutex m_mutex;
  std::unique_ptr<Handles> m_handles;
  std::unordered_map<std::string, UnitResult> m_results;
};

} // namespace EmbeddedHost
