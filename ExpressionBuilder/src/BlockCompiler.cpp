#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/src/BlockProgram.h"

#include <memory>
#include <utility>

namespace ExpressionBuilder {

namespace {

using Form = ElementShape::Form;
using Code = ScalarOperation::Code;
using BlockKernels::Shape;

/// More would not stay in the processor's caches anyway.
constexpr std::size_t kMostRegisters = 512;

bool isBasic(Code code) {
  return code >= Code::Add && code <= Code::Divide;
}

bool isArithmetic(Code code) {
  return code >= Code::Add && code <= Code::Maximum;
}

bool isComparison(Code code) {
  return code >= Code::Equal && code <= Code::GreaterEqual;
}

} // namespace

/// Walks the tree and keeps what it has met on a stack of operands. Two places with an operation between them
/// stay unemitted until it is known what becomes of them.
class BlockCompiler {
public:
  BlockCompiler(const SimpleVariableCollection &variables, const BlockProgram::Columns &columns)
      : m_variables(variables), m_columns(columns) {}

  std::optional<BlockProgram> compile(const ElementAbstract &root) {
    visit(root);
    while (!m_frames.empty() && !m_failed) {
      step();
    }
    if (m_failed || m_program.m_registers > kMostRegisters) {
      return std::nullopt;
    }
    const Operand &last = m_operands.back();
    if (last.kind != Operand::Kind::Place || last.places[0].values != nullptr) {
      const BlockPlace place = toPlace(m_operands.back());
      if (place.values != nullptr) {
        emit(BlockKernels::copy(place.isVector), {place});
      }
    }
    return std::move(m_program);
  }

private:
  struct Operand {
    enum class Kind : unsigned char {
      Place,
      Pair,       ///< places[0] code places[1], basic
      Comparison, ///< places[0] code places[1]
    };
    Kind kind = Kind::Place;
    Code code = Code::Unknown;
    BlockPlace places[2];
  };
  using Kind = Operand::Kind;

  struct Frame {
    const ElementAbstract *node;
    std::size_t stage;
  };

  void visit(const ElementAbstract &node) {
    const ElementShape &shape = node.shape();
    if (shape.type == ValueType::String || shape.type == ValueType::LongLong) {
      m_failed = true;
      return;
    }
    switch (shape.form) {
    case Form::Constant:
    case Form::Variable:
      visitLeaf(node);
      return;
    case Form::Functional:
      m_failed = m_failed || shape.operation.code == Code::Unknown ||
                 shape.operation.code == Code::OtherThrowing || shape.arity > kMostOperands;
      break;
    case Form::Conditional:
      // A constant condition may make one branch invisible to validation; folding leaves none of those.
      m_failed = m_failed || hasMissingOrConstantCondition(node);
      break;
    case Form::Opaque:
      m_failed = true;
      break;
    }
    m_frames.push_back({&node, 0});
  }

  static bool hasMissingOrConstantCondition(const ElementAbstract &node) {
    const std::unique_ptr<ElementAbstract> &condition = childrenOf(node)[0];
    return condition == nullptr || condition->isConstant();
  }

  void visitLeaf(const ElementAbstract &node) {
    const ElementShape &shape = node.shape();
    const void *const value = shape.form == Form::Constant
                                  ? shape.value(node)
                                  : m_variables.plainValue(shape.name(node), shape.type);
    if (value == nullptr) {
      m_failed = true;
      return;
    }
    Operand operand;
    BlockPlace &place = operand.places[0];
    switch (shape.type) {
    case ValueType::Int:
      place.values = scalar(*static_cast<const int *>(value));
      break;
    case ValueType::Bool:
      place.values = scalar(*static_cast<const bool *>(value) ? 1.0 : 0.0);
      break;
    default: {
      const auto column = m_columns.find(value);
      place.isColumn = place.isVector = column != m_columns.end();
      place.values = place.isColumn ? column->second : static_cast<const double *>(value);
      break;
    }
    }
    m_operands.push_back(operand);
  }

  const double *scalar(double value) {
    m_program.m_scalars.push_back(value);
    return &m_program.m_scalars.back();
  }

  void step() {
    Frame &frame = m_frames.back();
    const ElementAbstract &node = *frame.node;
    const ElementShape &shape = node.shape();
    if (frame.stage < shape.arity) {
      const ElementAbstract *const child = childrenOf(node)[frame.stage].get();
      ++frame.stage;
      if (child == nullptr) {
        m_failed = true;
        return;
      }
      visit(*child);
      return;
    }
    m_frames.pop_back();
    if (shape.form == Form::Conditional) {
      finishConditional();
    } else {
      finishOperation(node);
    }
  }

  void finishConditional() {
    const BlockPlace no = toPlace(popOperand());
    const BlockPlace yes = toPlace(popOperand());
    const Operand condition = popOperand();
    if (condition.kind == Kind::Comparison) {
      const Shape operands = shapeOf(condition.places[0], condition.places[1]);
      emit(BlockKernels::selectCompared(condition.code, operands, shapeOf(yes, no)),
           {condition.places[0], condition.places[1], yes, no});
      return;
    }
    emit(BlockKernels::select(shapeOf(yes, no)), {toVector(toPlace(condition)), yes, no});
  }

  void finishOperation(const ElementAbstract &node) {
    const Code code = node.shape().operation.code;
    if (isArithmetic(code)) {
      finishArithmetic(code);
      return;
    }
    if (isComparison(code)) {
      Operand result;
      result.places[1] = toPlace(popOperand());
      result.places[0] = toPlace(popOperand());
      result.kind = Kind::Comparison;
      result.code = code;
      m_operands.push_back(result);
      return;
    }
    finishOther(node);
  }

  void finishArithmetic(Code code) {
    const Operand b = popOperand();
    const Operand a = popOperand();
    const bool basic = isBasic(code);
    if (basic && a.kind == Kind::Place && b.kind == Kind::Place) {
      Operand pair;
      pair.kind = Kind::Pair;
      pair.code = code;
      pair.places[0] = a.places[0];
      pair.places[1] = b.places[0];
      m_operands.push_back(pair);
      return;
    }
    if (basic && a.kind == Kind::Pair && b.kind == Kind::Pair && finishPairs(code, a, b)) {
      return;
    }
    if (basic && b.kind == Kind::Pair) {
      const BlockPlace left = toPlace(a);
      if (left.isVector) {
        emit(BlockKernels::vectorWithPair(code, b.code, shapeOf(b.places[0], b.places[1])),
             {left, b.places[0], b.places[1]});
        return;
      }
    }
    if (basic && a.kind == Kind::Pair) {
      const BlockPlace right = toPlace(b);
      if (right.isVector) {
        emit(BlockKernels::pairWithVector(code, a.code, shapeOf(a.places[0], a.places[1])),
             {right, a.places[0], a.places[1]});
        return;
      }
    }
    // The right one first: a register that it takes must not be the left one's.
    const BlockPlace left = toPlace(a);
    const BlockPlace right = toPlace(b);
    emit(BlockKernels::binary(code, shapeOf(left, right)), {left, right});
  }

  /// (a + b) + c, which continues a sum, and the square of a sum or difference.
  bool finishPairs(Code code, const Operand &a, const Operand &b) {
    const bool isSquare = code == Code::Multiply && (a.code == Code::Add || a.code == Code::Subtract) &&
                          a.code == b.code && isSame(a.places[0], b.places[0]) &&
                          isSame(a.places[1], b.places[1]);
    if (!isSquare) {
      return false;
    }
    emit(BlockKernels::square(a.code, shapeOf(a.places[0], a.places[1])), {a.places[0], a.places[1]});
    return true;
  }

  static bool isSame(const BlockPlace &a, const BlockPlace &b) {
    return a.values != nullptr && b.values != nullptr &&
           (a.values == b.values || (!a.isVector && !b.isVector && *a.values == *b.values));
  }

  void finishOther(const ElementAbstract &node) {
    const ElementShape &shape = node.shape();
    std::vector<BlockPlace> places(shape.arity);
    for (std::size_t i = shape.arity; i > 0; --i) {
      places[i - 1] = toPlace(popOperand());
    }
    switch (shape.operation.code) {
    case Code::Negate:
      emit(BlockKernels::negate(), {toVector(places[0])});
      return;
    case Code::SquareRoot:
      emit(BlockKernels::squareRoot(), {toVector(places[0])});
      return;
    case Code::Absolute:
      emit(BlockKernels::absolute(), {toVector(places[0])});
      return;
    case Code::Unary:
      emit(BlockKernels::unaryFunction(), {toVector(places[0])}).operation = &shape.operation;
      return;
    case Code::Binary:
      emit(BlockKernels::binaryFunction(shapeOf(places[0], places[1])), {places[0], places[1]}).operation =
          &shape.operation;
      return;
    case Code::Clamp:
      emit(BlockKernels::clamp(shapeOf(places[1], places[2])), {toVector(places[0]), places[1], places[2]});
      return;
    case Code::And:
      emit(BlockKernels::logicalAnd(), {toVector(places[0]), toVector(places[1])});
      return;
    case Code::Or:
      emit(BlockKernels::logicalOr(), {toVector(places[0]), toVector(places[1])});
      return;
    case Code::Not:
      emit(BlockKernels::logicalNot(), {toVector(places[0])});
      return;
    default:
      break;
    }
    for (BlockPlace &place : places) {
      place = toVector(place);
    }
    std::vector<ValueType> types;
    types.reserve(shape.arity + 1);
    for (std::size_t i = 0; i < shape.arity; ++i) {
      types.push_back(childrenOf(node)[i]->shape().type);
    }
    types.push_back(shape.type);
    BlockInstruction &instruction = emit(BlockKernels::other(), places);
    instruction.operation = &shape.operation;
    instruction.types = std::move(types);
  }

  Operand popOperand() {
    Operand operand = m_operands.back();
    m_operands.pop_back();
    return operand;
  }

  static Shape shapeOf(const BlockPlace &a, const BlockPlace &b) {
    return BlockKernels::shapeOf(a.isVector, b.isVector);
  }

  /// Computes an operand that is not yet a place.
  BlockPlace toPlace(const Operand &operand) {
    if (operand.kind == Kind::Place) {
      return operand.places[0];
    }
    const Shape shape = shapeOf(operand.places[0], operand.places[1]);
    emit(operand.kind == Kind::Pair ? BlockKernels::binary(operand.code, shape)
                                    : BlockKernels::compare(operand.code, shape),
         {operand.places[0], operand.places[1]});
    return popOperand().places[0];
  }

  BlockPlace toVector(const BlockPlace &place) {
    if (place.isVector) {
      return place;
    }
    emit(BlockKernels::copy(false), {place});
    return popOperand().places[0];
  }

  /// Emits an instruction and pushes its result. The registers that it reads are free afterwards, but never the
  /// one that it writes: kernels may take for granted that the result overlaps no operand.
  BlockInstruction &emit(BlockKernel kernel, const std::vector<BlockPlace> &operands) {
    BlockInstruction instruction;
    instruction.kernel = kernel;
    if (m_free.empty()) {
      m_free.push_back(m_program.m_registers);
      ++m_program.m_registers;
    }
    instruction.result = m_free.back();
    m_free.pop_back();
    for (std::size_t i = 0; i < operands.size(); ++i) {
      instruction.operands[i] = operands[i];
      if (operands[i].values == nullptr) {
        m_free.push_back(operands[i].number);
      }
    }
    Operand result;
    result.places[0].number = instruction.result;
    result.places[0].isVector = true;
    m_operands.push_back(result);
    m_program.m_instructions.push_back(std::move(instruction));
    return m_program.m_instructions.back();
  }

  static constexpr std::size_t kMostOperands = 4;

  const SimpleVariableCollection &m_variables;
  const BlockProgram::Columns &m_columns;
  BlockProgram m_program;
  std::vector<Frame> m_frames;
  std::vector<Operand> m_operands;
  std::vector<std::size_t> m_free;
  bool m_failed = false;
};

std::optional<BlockProgram> BlockProgram::compile(const ElementAbstract &root,
                                                  const SimpleVariableCollection &variables,
                                                  const Columns &columns) {
  return BlockCompiler(variables, columns).compile(root);
}

} // namespace ExpressionBuilder
