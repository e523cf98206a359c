#pragma once

#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/ValueType.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ExpressionBuilder::Fuzzing {

/// What one run of the fuzzer tries: a text and how it is built.
struct ExpressionCase {
  ValueType type;
  bool foldConstants;
  bool allowEscapes;
  /// More rows than two blocks hold, rather than a few.
  bool hasManyRows;
  std::string text;
};

/// The first byte chooses type and options, so that a case is a file that can be read and edited: 'Z' asks for a
/// double with folding and few rows. All others are the text.
ExpressionCase caseOf(const std::uint8_t *bytes, std::size_t size);

/// Declares variables of all five types, some of them defined through others, one of them through itself.
void declareVariables(BuilderBase &builder);

/// Builds texts in several ways and evaluates, copies, compares and releases what comes out.
class Examiner {
public:
  /// The builders may be prepared otherwise, but have to know the doubles "a", "b" and "c".
  explicit Examiner(const std::function<void(BuilderBase &)> &prepare = declareVariables);
  ~Examiner();
  Examiner(const Examiner &) = delete;
  Examiner &operator=(const Examiner &) = delete;

  /// What contradicts what; empty when everything agrees and every error is one that is documented.
  std::string contradictionIn(const ExpressionCase &input);

private:
  struct Builders;
  std::unique_ptr<Builders> m_builders;
};

} // namespace ExpressionBuilder::Fuzzing
