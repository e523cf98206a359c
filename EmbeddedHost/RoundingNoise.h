#pragma once

namespace EmbeddedHost {

/// The number that a person means by a computed one: the decimal of at most 14 significant digits of \p scale that it
/// was computed as, where rounding explains the difference; else the number itself, bit for bit. 3 mm are
/// 0.30000000000000004 cm by the rules of floating point and 0.3 cm for everybody else, and limits, equal rows and
/// what solvers are given must not depend on that.
/// \param scale  the largest magnitude that went into the computation: what 300.1 K - 273.15 K is rounded by is the
///               size of 300.1
double withoutRoundingNoise(double value, double scale);

} // namespace EmbeddedHost
