#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

/// A second evaluator of the expression language, simple and slow, which the tests compare the product with.
/// It includes nothing of the product.
namespace LanguageOracle {

enum class Type { Double = 1, Int, Bool, String, LongLong };

constexpr std::array<Type, 5> kTypes = {Type::Double, Type::Int, Type::Bool, Type::String, Type::LongLong};

const char *typeName(Type type);

/// A value of one of the five types; only the member of that type counts.
struct Value {
  Type type = Type::Int;
  double real = 0.0;
  std::int32_t whole = 0;
  bool truth = false;
  std::string text;
  std::int64_t wide = 0;

  static Value ofDouble(double value);
  static Value ofInt(std::int32_t value);
  static Value ofBool(bool value);
  static Value ofString(std::string value);
  static Value ofLongLong(std::int64_t value);
};

/// Type and value, doubles with all their digits and strings with their bytes written out.
std::string describe(const Value &value);

/// The same type and the same value: doubles bit for bit, one NaN like another.
bool same(const Value &left, const Value &right);

/// An error of the language, met while building or while evaluating.
class Error : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// What comes of a text.
struct Outcome {
  enum class Kind { Value, BuildError, RuntimeError };

  Kind kind = Kind::Value;
  Value value;
  std::string message;

  static Outcome ofValue(Value value);
  static Outcome ofBuildError(std::string message);
  static Outcome ofRuntimeError(std::string message);
};

std::string describe(const Outcome &outcome);
bool same(const Outcome &left, const Outcome &right);

/// What the language leaves open, and deliberate mistakes for proving that a comparison notices them.
struct Rules {
  /// Which of two NaN operands "+" and "*" pass on. They differ in the sign, which is seen in the text of the
  /// result; processors take the first one, and compilers may exchange the operands.
  bool secondNanCounts = false;

  bool leftOperandDecides = false;
  bool quotientIsFloored = false;
  bool otherErrorText = false;
  bool leftOperandFirst = false;
  bool stringsClampToZero = false;
};

} // namespace LanguageOracle
