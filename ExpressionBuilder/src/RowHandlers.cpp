#include "ExpressionBuilder/src/RowHandlers.h"

#include "ExpressionBuilder/FunctionObjects.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <tuple>
#include <utility>

namespace ExpressionBuilder::RowHandlers {

namespace {

/// Goes on with the next instruction. Where the compiler turns a call at the end of a function into a jump,
/// the handlers call one another; elsewhere each returns to the loop in RowProgram, which needs no stack.
inline double proceed(const RowInstruction *next, RowState *state, double value) {
#ifdef OPTSTUDY_TAIL_CALLS
  return next->handler(next, state, value);
#else
  state->next = next;
  return value;
#endif
}

// Where an operand stands. Each gives the operand's value.

struct FromA {
  static double get(const RowInstruction &at, const RowState & /*state*/, double /*value*/) { return *at.a; }
};
struct FromB {
  static double get(const RowInstruction &at, const RowState & /*state*/, double /*value*/) { return *at.b; }
};
struct FromC {
  static double get(const RowInstruction &at, const RowState & /*state*/, double /*value*/) { return *at.c; }
};
struct FromValue {
  static double get(const RowInstruction & /*at*/, const RowState & /*state*/, double value) { return value; }
};
struct FromTemporary {
  static double get(const RowInstruction &at, const RowState &state, double /*value*/) {
    return state.temporaries[at.slot].asDouble;
  }
};
template <class Op> struct FromPair {
  static double get(const RowInstruction &at, const RowState & /*state*/, double /*value*/) {
    return Op{}(*at.a, *at.b);
  }
};
template <class Op> struct FromSecondPair {
  static double get(const RowInstruction &at, const RowState & /*state*/, double /*value*/) {
    return Op{}(*at.c, *at.d);
  }
};
template <class Op, class Left, class Right> struct FromBinary {
  static double get(const RowInstruction &at, const RowState &state, double value) {
    return Op{}(Left::get(at, state, value), Right::get(at, state, value));
  }
};

void push(const RowInstruction &at, const RowState &state, double value) {
  state.temporaries[at.slot].asDouble = value;
}

// The handlers.

/// The value becomes the operand.
template <class Operand, bool Pushes> double become(const RowInstruction *at, RowState *state, double value) {
  const double next = Operand::get(*at, *state, value);
  if constexpr (Pushes) {
    push(*at, *state, value);
  }
  return proceed(at + 1, state, next);
}

template <class Op, class Left, class Right>
double compareInto(const RowInstruction *at, RowState *state, double value) {
  const bool holds = Op{}(Left::get(*at, *state, value), Right::get(*at, *state, value));
  state->temporaries[at->jump].asBool = holds;
  return proceed(at + 1, state, value);
}

template <class Op, class Left, class Right, bool Pushes>
double jumpUnlessCompared(const RowInstruction *at, RowState *state, double value) {
  const bool holds = Op{}(Left::get(*at, *state, value), Right::get(*at, *state, value));
  if constexpr (Pushes) {
    push(*at, *state, value);
  }
  return proceed(holds ? at + 1 : at + at->jump, state, value);
}

template <class Op, bool Wanted> double takeWhen(const RowInstruction *at, RowState *state, double value) {
  if (Op{}(*at->a, *at->b) == Wanted) {
    return proceed(at + at->jump, state, *at->c);
  }
  return proceed(at + 1, state, value);
}

template <class Operand, bool Pushes>
double unaryOf(const RowInstruction *at, RowState *state, double value) {
  const double argument = Operand::get(*at, *state, value);
  if constexpr (Pushes) {
    push(*at, *state, value);
  }
  return proceed(at + 1, state, at->unary(argument));
}

template <class Left, class Right, bool Pushes>
double binaryOf(const RowInstruction *at, RowState *state, double value) {
  const double left = Left::get(*at, *state, value);
  const double right = Right::get(*at, *state, value);
  if constexpr (Pushes) {
    push(*at, *state, value);
  }
  return proceed(at + 1, state, at->binary(left, right));
}

template <class Operand, bool Pushes>
double clampOf(const RowInstruction *at, RowState *state, double value) {
  const double clamped = Clamp<double>{}(Operand::get(*at, *state, value), *at->b, *at->c);
  if constexpr (Pushes) {
    push(*at, *state, value);
  }
  return proceed(at + 1, state, clamped);
}

struct SquareRootOf {
  double operator()(double a) const { return std::sqrt(a); }
};
struct AbsoluteOf {
  double operator()(double a) const { return std::fabs(a); }
};

template <class Op, class Operand> struct FromUnary {
  static double get(const RowInstruction &at, const RowState &state, double value) {
    return Op{}(Operand::get(at, state, value));
  }
};

double stopHandler(const RowInstruction * /*at*/, RowState *state, double value) {
  state->next = nullptr;
  return value;
}

double storeHandler(const RowInstruction *at, RowState *state, double value) {
  push(*at, *state, value);
  return proceed(at + 1, state, value);
}

template <class T> double copyHandler(const RowInstruction *at, RowState *state, double value) {
  state->temporaries[at->slot].set<T>(*static_cast<const T *>(at->cell));
  return proceed(at + 1, state, value);
}

double jumpUnlessTemporaryHandler(const RowInstruction *at, RowState *state, double value) {
  return proceed(state->temporaries[at->slot].asBool ? at + 1 : at + at->jump, state, value);
}

double jumpUnlessCellHandler(const RowInstruction *at, RowState *state, double value) {
  return proceed(*static_cast<const bool *>(at->cell) ? at + 1 : at + at->jump, state, value);
}

double jumpHandler(const RowInstruction *at, RowState *state, double value) {
  return proceed(at + at->jump, state, value);
}

double andHandler(const RowInstruction *at, RowState *state, double value) {
  ScalarCell *const cells = state->temporaries + at->slot;
  cells[0].asBool = cells[0].asBool && cells[1].asBool;
  return proceed(at + 1, state, value);
}

double orHandler(const RowInstruction *at, RowState *state, double value) {
  ScalarCell *const cells = state->temporaries + at->slot;
  cells[0].asBool = cells[0].asBool || cells[1].asBool;
  return proceed(at + 1, state, value);
}

double notHandler(const RowInstruction *at, RowState *state, double value) {
  ScalarCell &cell = state->temporaries[at->slot];
  cell.asBool = !cell.asBool;
  return proceed(at + 1, state, value);
}

double applyHandler(const RowInstruction *at, RowState *state, double value) {
  at->apply(state->temporaries + at->slot);
  return proceed(at + 1, state, value);
}

// The tables. A list of function objects stands for the codes in the order of ScalarOperation::Code.

template <class... Ops> struct OpList {};
using BasicOps = OpList<std::plus<double>, std::minus<double>, std::multiplies<double>, std::divides<double>>;
using ArithmeticOps = OpList<std::plus<double>, std::minus<double>, std::multiplies<double>,
                             std::divides<double>, Minimum<double>, Maximum<double>>;
using ComparisonOps = OpList<std::equal_to<double>, std::not_equal_to<double>, std::less<double>,
                             std::less_equal<double>, std::greater<double>, std::greater_equal<double>>;

std::size_t arithmeticIndex(Code code) {
  return static_cast<std::size_t>(code) - static_cast<std::size_t>(Code::Add);
}

std::size_t comparisonIndex(Code code) {
  return static_cast<std::size_t>(code) - static_cast<std::size_t>(Code::Equal);
}

/// One handler for each operation, picked by the code.
template <template <class> class Handler, class... Ops>
constexpr std::array<RowHandler, sizeof...(Ops)> tableOf(OpList<Ops...> /*ops*/) {
  return {Handler<Ops>::handler...};
}

template <class Left, class Right, bool Pushes> struct BinaryForm {
  template <class Op> struct Handler {
    static constexpr RowHandler handler = &become<FromBinary<Op, Left, Right>, Pushes>;
  };
};
template <class Left, class Right> struct CompareForm {
  template <class Op> struct Handler { static constexpr RowHandler handler = &compareInto<Op, Left, Right>; };
};
template <class Left, class Right, bool Pushes> struct JumpForm {
  template <class Op> struct Handler {
    static constexpr RowHandler handler = &jumpUnlessCompared<Op, Left, Right, Pushes>;
  };
};
template <bool Wanted> struct TakeForm {
  template <class Op> struct Handler { static constexpr RowHandler handler = &takeWhen<Op, Wanted>; };
};

template <class Inner> struct ValueWithPairForm {
  template <class Op> struct Handler {
    static constexpr RowHandler handler = &become<FromBinary<Op, FromValue, FromPair<Inner>>, false>;
  };
};
template <class Inner> struct PairWithValueForm {
  template <class Op> struct Handler {
    static constexpr RowHandler handler = &become<FromBinary<Op, FromPair<Inner>, FromValue>, false>;
  };
};

using Row4 = std::array<RowHandler, 4>;
using Row44 = std::array<Row4, 4>;

template <template <class> class Form, class... Inner>
constexpr Row44 tableOfPairs(OpList<Inner...> /*inner*/) {
  return {tableOf<Form<Inner>::template Handler>(BasicOps{})...};
}

/// How a composite is used: alone, alone after pushing, added to the value, subtracted from it.
enum class Use { Alone, Pushing, Added, Subtracted };

template <Use How, class Operand> constexpr RowHandler handlerFor() {
  if constexpr (How == Use::Added) {
    return &become<FromBinary<std::plus<double>, FromValue, Operand>, false>;
  } else if constexpr (How == Use::Subtracted) {
    return &become<FromBinary<std::minus<double>, FromValue, Operand>, false>;
  } else {
    return &become<Operand, How == Use::Pushing>;
  }
}

template <Use How, class Outer, class First, class... Second>
constexpr Row4 pairPairRow(OpList<Second...> /*second*/) {
  return {handlerFor<How, FromBinary<Outer, FromPair<First>, FromSecondPair<Second>>>()...};
}

template <Use How, class Outer, class... First> constexpr Row44 pairPairTable(OpList<First...> /*first*/) {
  return {pairPairRow<How, Outer, First>(BasicOps{})...};
}

/// Handlers of all composites with one outer operation: by form, first and second operation.
struct OuterTable {
  Row4 pairC;
  Row4 cPair;
  Row44 pairPair;
};

template <Use How, class Outer, class... First> constexpr OuterTable outerTable(OpList<First...> first) {
  return {{handlerFor<How, FromBinary<Outer, FromPair<First>, FromC>>()...},
          {handlerFor<How, FromBinary<Outer, FromC, FromPair<First>>>()...},
          pairPairTable<How, Outer>(first)};
}

using CompositeTable = std::array<OuterTable, 4>;

template <Use How, class... Outer> constexpr CompositeTable compositeTable(OpList<Outer...> /*outer*/) {
  return {outerTable<How, Outer>(BasicOps{})...};
}

RowHandler find(const CompositeTable &table, const Composite &composite) {
  const OuterTable &outer = table[arithmeticIndex(composite.outer)];
  const std::size_t first = arithmeticIndex(composite.first);
  switch (composite.form) {
  case Composite::Form::PairC:
    return outer.pairC[first];
  case Composite::Form::CPair:
    return outer.cPair[first];
  case Composite::Form::PairPair:
    break;
  }
  return outer.pairPair[first][arithmeticIndex(composite.second)];
}

constexpr CompositeTable kAlone = compositeTable<Use::Alone>(BasicOps{});
constexpr CompositeTable kPushing = compositeTable<Use::Pushing>(BasicOps{});
constexpr CompositeTable kAdded = compositeTable<Use::Added>(BasicOps{});
constexpr CompositeTable kSubtracted = compositeTable<Use::Subtracted>(BasicOps{});
constexpr Row44 kValueWithPair = tableOfPairs<ValueWithPairForm>(BasicOps{});
constexpr Row44 kPairWithValue = tableOfPairs<PairWithValueForm>(BasicOps{});

template <template <class Left, class Right, bool Pushes> class Form, class List>
RowHandler withOperands(List list, std::size_t index, Operands operands) {
  switch (operands) {
  case Operands::AB:
    return tableOf<Form<FromA, FromB, false>::template Handler>(list)[index];
  case Operands::PushAB:
    return tableOf<Form<FromA, FromB, true>::template Handler>(list)[index];
  case Operands::ValueA:
    return tableOf<Form<FromValue, FromA, false>::template Handler>(list)[index];
  case Operands::AValue:
    return tableOf<Form<FromA, FromValue, false>::template Handler>(list)[index];
  case Operands::TemporaryValue:
    return tableOf<Form<FromTemporary, FromValue, false>::template Handler>(list)[index];
  case Operands::ValueTemporary:
    break;
  }
  return tableOf<Form<FromValue, FromTemporary, false>::template Handler>(list)[index];
}

template <class Left, class Right, bool Pushes> struct PlainCompareForm : CompareForm<Left, Right> {};

template <class Op> RowHandler single(Single operand) {
  switch (operand) {
  case Single::Value:
    return &become<FromUnary<Op, FromValue>, false>;
  case Single::A:
    return &become<FromUnary<Op, FromA>, false>;
  case Single::PushA:
    break;
  }
  return &become<FromUnary<Op, FromA>, true>;
}

} // namespace

RowHandler stop() {
  return &stopHandler;
}

RowHandler load(bool pushes) {
  return pushes ? &become<FromA, true> : &become<FromA, false>;
}

RowHandler loadTemporary() {
  return &become<FromTemporary, false>;
}

RowHandler store() {
  return &storeHandler;
}

RowHandler copyCell(ValueType type) {
  switch (type) {
  case ValueType::Int:
    return &copyHandler<int>;
  case ValueType::Bool:
    return &copyHandler<bool>;
  case ValueType::LongLong:
    return &copyHandler<long long>;
  default:
    return &copyHandler<double>;
  }
}

RowHandler binary(Code operation, Operands operands) {
  return withOperands<BinaryForm>(ArithmeticOps{}, arithmeticIndex(operation), operands);
}

RowHandler compare(Code comparison, Operands operands) {
  return withOperands<PlainCompareForm>(ComparisonOps{}, comparisonIndex(comparison), operands);
}

RowHandler binaryFunction(Operands operands) {
  switch (operands) {
  case Operands::AB:
    return &binaryOf<FromA, FromB, false>;
  case Operands::PushAB:
    return &binaryOf<FromA, FromB, true>;
  case Operands::ValueA:
    return &binaryOf<FromValue, FromA, false>;
  case Operands::AValue:
    return &binaryOf<FromA, FromValue, false>;
  case Operands::TemporaryValue:
    return &binaryOf<FromTemporary, FromValue, false>;
  case Operands::ValueTemporary:
    break;
  }
  return &binaryOf<FromValue, FromTemporary, false>;
}

RowHandler valueWithPair(Code operation, Code inner) {
  return kValueWithPair[arithmeticIndex(inner)][arithmeticIndex(operation)];
}

RowHandler pairWithValue(Code operation, Code inner) {
  return kPairWithValue[arithmeticIndex(inner)][arithmeticIndex(operation)];
}

RowHandler composite(const Composite &composite, bool pushes) {
  return find(pushes ? kPushing : kAlone, composite);
}

RowHandler valueWithComposite(bool minus, const Composite &composite) {
  return find(minus ? kSubtracted : kAdded, composite);
}

RowHandler negate(Single operand) {
  return single<std::negate<double>>(operand);
}

RowHandler squareRoot(Single operand) {
  return single<SquareRootOf>(operand);
}

RowHandler absolute(Single operand) {
  return single<AbsoluteOf>(operand);
}

RowHandler unaryFunction(Single operand) {
  switch (operand) {
  case Single::Value:
    return &unaryOf<FromValue, false>;
  case Single::A:
    return &unaryOf<FromA, false>;
  case Single::PushA:
    break;
  }
  return &unaryOf<FromA, true>;
}

RowHandler clamp(Single operand) {
  switch (operand) {
  case Single::Value:
    return &clampOf<FromValue, false>;
  case Single::A:
    return &clampOf<FromA, false>;
  case Single::PushA:
    break;
  }
  return &clampOf<FromA, true>;
}

RowHandler jumpUnless(Code comparison, Operands operands) {
  return withOperands<JumpForm>(ComparisonOps{}, comparisonIndex(comparison), operands);
}

RowHandler takeIf(Code comparison) {
  return tableOf<TakeForm<true>::Handler>(ComparisonOps{})[comparisonIndex(comparison)];
}

RowHandler takeUnless(Code comparison) {
  return tableOf<TakeForm<false>::Handler>(ComparisonOps{})[comparisonIndex(comparison)];
}

RowHandler jumpUnlessTemporary() {
  return &jumpUnlessTemporaryHandler;
}

RowHandler jumpUnlessCell() {
  return &jumpUnlessCellHandler;
}

RowHandler jump() {
  return &jumpHandler;
}

RowHandler logicalAnd() {
  return &andHandler;
}

RowHandler logicalOr() {
  return &orHandler;
}

RowHandler logicalNot() {
  return &notHandler;
}

RowHandler applyToTemporaries() {
  return &applyHandler;
}

} // namespace ExpressionBuilder::RowHandlers
