#pragma once

namespace EntityModel {

/// The kind of study that a version is the baseline of. The library relies on the values 0, 3 and 4 and
/// passes any other value through, so a host may have kinds of its own.
enum class ModelVersionStudyType : int {
  None = 0,
  /// An ordinary study; every value kind may take part.
  Parametric = 1,
  /// Owns an optimality configuration; reals, choices and booleans only, inputs are seeded with limits.
  Optimality = 3,
  /// Shares the narrow eligibility of Optimality.
  Calibration = 4,
};

/// What marks a version as one that a study made.
enum class ModelVersionStudyCaseFlag : int {
  /// The working copy of a baseline, from which alternates are made.
  Copy = 2,
};

} // namespace EntityModel

namespace MathematicalUtilities {

/// What is to be done with a study's cost.
enum class OptimisationStrategy : int { None = 0, Minimise = 1, Maximise = 2 };

} // namespace MathematicalUtilities
