#pragma once

#include "HostModel/Export.h"

#include <cstdint>

namespace EntityModel {

/// What the change manager of a host may be besides: one that tells whether labels have come free. A library that
/// tries one label after the other need not try those again of which it knows that they are taken. A change manager
/// that is nothing of the kind is asked for every label anew.
class HOSTMODEL_EXPORT FreedLabels {
public:
  FreedLabels() = default;
  FreedLabels(const FreedLabels &) = delete;
  FreedLabels &operator=(const FreedLabels &) = delete;
  virtual ~FreedLabels();

  /// Another number whenever a label has come free that getUniqueName() had found taken by a version: its last version
  /// went, or got another label. As long as the number stays, getUniqueName() gives none of those labels back
  /// unchanged.
  virtual std::uint64_t countFreedLabels() const = 0;
};

} // namespace EntityModel
