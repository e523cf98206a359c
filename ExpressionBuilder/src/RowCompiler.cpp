#include "ExpressionBuilder/src/RowCompiler.h"

#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/src/RowHandlers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

namespace {

using Form = ElementShape::Form;
using Code = ScalarOperation::Code;
using RowHandlers::Composite;
using RowHandlers::Operands;
using RowHandlers::Single;

bool isBasic(Code code) {
  return code >= Code::Add && code <= Code::Divide;
}

bool isArithmetic(Code code) {
  return code >= Code::Add && code <= Code::Maximum;
}

bool isComparison(Code code) {
  return code >= Code::Equal && code <= Code::GreaterEqual;
}

/// Walks the tree, left operand first, and keeps what it has met on a stack of operands. Up to four leaves with
/// basic operations between them stay unemitted until it is known what becomes of them, because one
/// instruction can do them together with the operation that follows.
class RowCompiler {
public:
  explicit RowCompiler(const SimpleVariableCollection &variables) : m_variables(variables) {
    // Enough for most expressions; to grow step by step would take longer than all the rest.
    constexpr std::size_t kUsualDepth = 16;
    constexpr std::size_t kUsualLength = 32;
    m_frames.reserve(kUsualDepth);
    m_operands.reserve(kUsualDepth);
    m_instructions.reserve(kUsualLength);
  }

  bool compile(const ElementAbstract &root) {
    visit(root);
    while (!m_frames.empty() && !m_failed) {
      step();
    }
    if (m_failed) {
      return false;
    }
    if (root.shape().type == ValueType::Double) {
      toValue(0);
    } else {
      toTemporary(0);
    }
    emit(RowHandlers::stop());
    return true;
  }

  RowProgram take() { return RowProgram(std::move(m_instructions), m_temporaries); }

private:
  struct Operand {
    enum class Kind : unsigned char {
      Leaf,      ///< a variable or constant, at p[0]
      Pair,      ///< p[0] first p[1]; of doubles, as the next one
      Composite, ///< of p[0] to p[3]
      Value,     ///< a double, computed last
      Temporary, ///< in the temporary with the number of the operand
      Jumped,    ///< a condition whose jump has been emitted
    };
    Kind kind = Kind::Leaf;
    ValueType type = ValueType::Double;
    Composite composite = {Composite::Form::PairC, Code::Add, Code::Add, Code::Add};
    const double *p[4] = {};
    /// The leaf of whatever type.
    const void *cell = nullptr;
  };
  using Kind = Operand::Kind;

  /// Small, because a sum of a million terms is a million frames deep.
  struct Frame {
    const ElementAbstract *node;
    /// Conditional: the jump over the true branch, then the one over the false branch.
    std::uint32_t jump;
    std::uint16_t stage;
    /// Conditional: the condition when it compares two leaves, otherwise Unknown.
    Code comparison;
  };

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // Walking the tree.

  void visit(const ElementAbstract &node) {
    const ElementShape &shape = node.shape();
    switch (shape.form) {
    case Form::Constant:
    case Form::Variable:
      visitLeaf(node);
      return;
    case Form::Functional:
      if (shape.operation.code == Code::Unknown) {
        m_failed = true;
        return;
      }
      m_frames.push_back({&node, 0, 0, Code::Unknown});
      return;
    case Form::Conditional:
      visitConditional(node);
      return;
    case Form::Opaque:
      m_failed = true;
      return;
    }
  }

  /// Where the leaf's value stands; null when it cannot be lowered.
  const void *leafCell(const ElementAbstract &node) const {
    const ElementShape &shape = node.shape();
    if (shape.type == ValueType::String) {
      return nullptr;
    }
    return shape.form == Form::Constant ? shape.value(node)
                                        : m_variables.plainValue(shape.name(node), shape.type);
  }

  void visitLeaf(const ElementAbstract &node) {
    Operand operand;
    operand.type = node.shape().type;
    operand.cell = leafCell(node);
    if (operand.type == ValueType::Double) {
      operand.p[0] = static_cast<const double *>(operand.cell);
    }
    m_failed = m_failed || operand.cell == nullptr;
    push(operand);
  }

  void visitConditional(const ElementAbstract &node) {
    const std::unique_ptr<ElementAbstract> *const children = childrenOf(node);
    if (children[0] == nullptr || children[1] == nullptr || children[2] == nullptr ||
        node.shape().type == ValueType::String) {
      m_failed = true;
      return;
    }
    const std::size_t selected = node.shape().selectedBranch(node);
    if (selected == 0 && children[0]->isConstant()) {
      m_failed = true; // the condition cannot be computed
      return;
    }
    if (selected != 0 && children[0]->shape().form == Form::Constant) {
      visit(*children[selected]);
      return;
    }
    if (m_valueAt != kNone) {
      spill();
    }
    m_frames.push_back({&node, 0, 0, Code::Unknown});
  }

  void step() {
    Frame &frame = m_frames.back();
    const ElementShape &shape = frame.node->shape();
    if (shape.form == Form::Conditional) {
      stepConditional();
      return;
    }
    if (frame.stage < shape.arity) {
      const ElementAbstract *const child = childrenOf(*frame.node)[frame.stage].get();
      ++frame.stage;
      if (child == nullptr) {
        m_failed = true;
        return;
      }
      visit(*child);
      return;
    }
    m_frames.pop_back();
    finishOperation(shape);
  }

  void stepConditional() {
    Frame &frame = m_frames.back();
    const std::unique_ptr<ElementAbstract> *const children = childrenOf(*frame.node);
    switch (frame.stage) {
    case 0:
      frame.stage = 1;
      visit(*children[0]);
      return;
    case 1:
      frame.stage = 2;
      finishCondition(frame);
      visit(*children[1]);
      return;
    case 2:
      frame.stage = 3;
      if (finishTrueBranch(frame)) {
        visit(*children[2]);
      } else {
        m_frames.pop_back();
      }
      return;
    default:
      finishBranch(frame.node->shape().type);
      land(frame.jump);
      m_frames.pop_back();
      return;
    }
  }

  /// Emits the jump over the true branch, unless the comparison has already done so.
  void finishCondition(Frame &frame) {
    const std::size_t index = m_operands.size() - 1;
    const Operand condition = m_operands.back();
    if (condition.kind == Kind::Leaf) {
      emit(RowHandlers::jumpUnlessCell()).cell = condition.cell;
    } else if (condition.kind == Kind::Temporary) {
      emit(RowHandlers::jumpUnlessTemporary()).slot = slotOf(index);
    } else {
      frame.comparison = m_jumpComparison;
    }
    m_operands.pop_back();
    frame.jump = static_cast<std::uint32_t>(m_instructions.size() - 1);
  }

  /// Whether the false branch is still to be lowered.
  bool finishTrueBranch(Frame &frame) {
    const bool isPlain = frame.comparison != Code::Unknown && frame.node->shape().type == ValueType::Double;
    const Operand &branch = m_operands.back();
    if (isPlain && m_instructions.size() == frame.jump + 1 && branch.kind == Kind::Leaf) {
      // "a < b ? leaf : ..." takes the leaf and jumps in one instruction.
      m_instructions[frame.jump].handler = RowHandlers::takeIf(frame.comparison);
      m_instructions[frame.jump].c = branch.p[0];
      m_operands.pop_back();
      return true;
    }
    finishBranch(frame.node->shape().type);
    const ElementAbstract &other = *childrenOf(*frame.node)[2];
    const Form form = other.shape().form;
    if (isPlain && (form == Form::Constant || form == Form::Variable)) {
      // "a < b ? ... : leaf" likewise.
      const void *const leaf = leafCell(other);
      m_failed = m_failed || leaf == nullptr;
      m_instructions[frame.jump].handler = RowHandlers::takeUnless(frame.comparison);
      m_instructions[frame.jump].c = static_cast<const double *>(leaf);
      land(frame.jump);
      return false;
    }
    m_operands.pop_back();
    m_valueAt = kNone;
    const auto jump = static_cast<std::uint32_t>(m_instructions.size());
    emit(RowHandlers::jump());
    land(frame.jump);
    frame.jump = jump;
    return true;
  }

  /// The branch's operand ends where the other branch's one does.
  void finishBranch(ValueType type) {
    if (type == ValueType::Double) {
      toValue(m_operands.size() - 1);
    } else {
      toTemporary(m_operands.size() - 1);
    }
  }

  /// The jump at this place leads to the instruction that is emitted next.
  void land(std::size_t jump) {
    m_instructions[jump].jump = static_cast<std::int32_t>(m_instructions.size() - jump);
  }

  // Operations.

  void finishOperation(const ElementShape &shape) {
    const Code code = shape.operation.code;
    if (isArithmetic(code)) {
      finishArithmetic(code);
    } else if (isComparison(code)) {
      finishComparison(code);
    } else {
      finishOther(shape);
    }
  }

  void finishOther(const ElementShape &shape) {
    const std::size_t first = m_operands.size() - shape.arity;
    switch (shape.operation.code) {
    case Code::Negate:
      finishSingle(first, &RowHandlers::negate);
      return;
    case Code::SquareRoot:
      finishSingle(first, &RowHandlers::squareRoot);
      return;
    case Code::Absolute:
      finishSingle(first, &RowHandlers::absolute);
      return;
    case Code::Unary:
      finishSingle(first, &RowHandlers::unaryFunction).unary = shape.operation.unary;
      return;
    case Code::Binary: {
      const Operands operands = toOperands(first);
      emitBinary(RowHandlers::binaryFunction(operands), operands, first).binary = shape.operation.binary;
      return;
    }
    case Code::Clamp:
      if (m_operands[first + 1].kind == Kind::Leaf && m_operands[first + 2].kind == Kind::Leaf) {
        finishClamp(first);
        return;
      }
      break;
    case Code::And:
      finishOnTemporaries(first, shape, RowHandlers::logicalAnd());
      return;
    case Code::Or:
      finishOnTemporaries(first, shape, RowHandlers::logicalOr());
      return;
    case Code::Not:
      finishOnTemporaries(first, shape, RowHandlers::logicalNot());
      return;
    default:
      break;
    }
    finishOnTemporaries(first, shape, RowHandlers::applyToTemporaries()).apply = shape.operation.apply;
  }

  void finishArithmetic(Code code) {
    const std::size_t left = m_operands.size() - 2;
    Operand &a = m_operands[left];
    Operand &b = m_operands[left + 1];
    if (isBasic(code) && combine(code, a, b)) {
      m_operands.pop_back();
      return;
    }
    if (isBasic(code) && finishWithFused(code, left)) {
      return;
    }
    const Operands operands = toOperands(left);
    emitBinary(RowHandlers::binary(code, operands), operands, left);
  }

  /// Two unemitted operands with at most four leaves together become one.
  static bool combine(Code code, Operand &a, const Operand &b) {
    if (a.kind == Kind::Leaf && b.kind == Kind::Leaf) {
      a.kind = Kind::Pair;
      a.composite.first = code;
      a.p[1] = b.p[0];
      return true;
    }
    if (a.kind == Kind::Pair && b.kind == Kind::Leaf) {
      a.kind = Kind::Composite;
      a.composite = {Composite::Form::PairC, code, a.composite.first, Code::Add};
      a.p[2] = b.p[0];
      return true;
    }
    if (a.kind == Kind::Leaf && b.kind == Kind::Pair) {
      a.kind = Kind::Composite;
      a.composite = {Composite::Form::CPair, code, b.composite.first, Code::Add};
      a.p[2] = a.p[0];
      a.p[0] = b.p[0];
      a.p[1] = b.p[1];
      return true;
    }
    if (a.kind == Kind::Pair && b.kind == Kind::Pair) {
      a.kind = Kind::Composite;
      a.composite = {Composite::Form::PairPair, code, a.composite.first, b.composite.first};
      a.p[2] = b.p[0];
      a.p[3] = b.p[1];
      return true;
    }
    return false;
  }

  /// The value with an unemitted operand of several leaves, in one instruction.
  bool finishWithFused(Code code, std::size_t left) {
    if (m_operands[left].kind == Kind::Pair && m_operands[left + 1].kind == Kind::Value) {
      const Operand pair = m_operands[left];
      setLeaves(emit(RowHandlers::pairWithValue(code, pair.composite.first)), pair);
      finishInValue(left);
      return true;
    }
    const Operand &right = m_operands[left + 1];
    const bool isPair = right.kind == Kind::Pair;
    const bool isComposite = right.kind == Kind::Composite && (code == Code::Add || code == Code::Subtract);
    if (!isPair && !isComposite) {
      return false;
    }
    toValue(left);
    const Operand operand = m_operands[left + 1];
    setLeaves(emit(isPair ? RowHandlers::valueWithPair(code, operand.composite.first)
                          : RowHandlers::valueWithComposite(code == Code::Subtract, operand.composite)),
              operand);
    finishInValue(left);
    return true;
  }

  void finishComparison(Code code) {
    const std::size_t left = m_operands.size() - 2;
    const Operands operands = toOperands(left, false);
    const bool isCondition = !m_frames.empty() && m_frames.back().node->shape().form == Form::Conditional &&
                             m_frames.back().stage == 1;
    RowInstruction &instruction =
        emit(isCondition ? RowHandlers::jumpUnless(code, operands) : RowHandlers::compare(code, operands));
    setOperands(instruction, operands, left);
    if (!isCondition) {
      instruction.jump = static_cast<std::int32_t>(left);
    }
    if (operands != Operands::AB) {
      m_valueAt = kNone;
    }
    m_jumpComparison = operands == Operands::AB ? code : Code::Unknown;
    m_operands.pop_back();
    m_operands.back() = Operand();
    m_operands.back().type = ValueType::Bool;
    m_operands.back().kind = isCondition ? Kind::Jumped : Kind::Temporary;
  }

  RowInstruction &finishSingle(std::size_t index, RowHandler (*handler)(Single)) {
    const Operand operand = m_operands[index];
    if (operand.kind == Kind::Leaf) {
      const std::size_t pushed = m_valueAt;
      RowInstruction &instruction = emit(handler(pushed == kNone ? Single::A : Single::PushA));
      instruction.a = operand.p[0];
      pushedBy(instruction, pushed);
      m_operands[index] = Operand();
      m_operands[index].kind = Kind::Value;
      m_valueAt = index;
      return instruction;
    }
    toValue(index);
    return emit(handler(Single::Value));
  }

  void finishClamp(std::size_t first) {
    const double *const low = m_operands[first + 1].p[0];
    const double *const high = m_operands[first + 2].p[0];
    m_operands.resize(first + 1);
    RowInstruction &instruction = finishSingle(first, &RowHandlers::clamp);
    instruction.b = low;
    instruction.c = high;
  }

  RowInstruction &finishOnTemporaries(std::size_t first, const ElementShape &shape, RowHandler handler) {
    for (std::size_t i = first; i < m_operands.size(); ++i) {
      toTemporary(i);
    }
    m_operands.resize(first + 1);
    m_operands.back() = Operand();
    m_operands.back().kind = Kind::Temporary;
    m_operands.back().type = shape.type;
    RowInstruction &instruction = emit(handler);
    instruction.slot = slotOf(first);
    return instruction;
  }

  // Operands.

  void push(const Operand &operand) {
    m_operands.push_back(operand);
    // One more, because an operand and the one after it may have to be in temporaries at once.
    m_temporaries = std::max(m_temporaries, m_operands.size() + 1);
  }

  static std::uint32_t slotOf(std::size_t index) { return static_cast<std::uint32_t>(index); }

  RowInstruction &emit(RowHandler handler) {
    m_instructions.emplace_back();
    m_instructions.back().handler = handler;
    return m_instructions.back();
  }

  /// Completes an instruction that pushes the operand that was in the value; none for kNone.
  void pushedBy(RowInstruction &instruction, std::size_t pushed) {
    if (pushed != kNone) {
      instruction.slot = slotOf(pushed);
      m_operands[pushed].kind = Kind::Temporary;
    }
  }

  void spill() {
    emit(RowHandlers::store()).slot = slotOf(m_valueAt);
    m_operands[m_valueAt].kind = Kind::Temporary;
    m_valueAt = kNone;
  }

  static void setLeaves(RowInstruction &instruction, const Operand &operand) {
    instruction.a = operand.p[0];
    instruction.b = operand.p[1];
    instruction.c = operand.p[2];
    instruction.d = operand.p[3];
  }

  /// The two operands from `left` on become one, which is the value.
  void finishInValue(std::size_t left) {
    m_operands.resize(left + 1);
    m_operands[left] = Operand();
    m_operands[left].kind = Kind::Value;
    m_valueAt = left;
  }

  /// Makes the double operand the value.
  void toValue(std::size_t index) {
    const Operand operand = m_operands[index];
    if (operand.kind == Kind::Value) {
      return;
    }
    const std::size_t pushed = m_valueAt;
    const bool pushes = pushed != kNone;
    switch (operand.kind) {
    case Kind::Leaf: {
      RowInstruction &instruction = emit(RowHandlers::load(pushes));
      instruction.a = operand.p[0];
      pushedBy(instruction, pushed);
      break;
    }
    case Kind::Pair: {
      RowInstruction &instruction =
          emit(RowHandlers::binary(operand.composite.first, pushes ? Operands::PushAB : Operands::AB));
      setLeaves(instruction, operand);
      pushedBy(instruction, pushed);
      break;
    }
    case Kind::Composite: {
      RowInstruction &instruction = emit(RowHandlers::composite(operand.composite, pushes));
      setLeaves(instruction, operand);
      pushedBy(instruction, pushed);
      break;
    }
    default:
      if (pushes) {
        spill();
      }
      emit(RowHandlers::loadTemporary()).slot = slotOf(index);
      break;
    }
    m_operands[index] = Operand();
    m_operands[index].kind = Kind::Value;
    m_valueAt = index;
  }

  void toTemporary(std::size_t index) {
    const Operand operand = m_operands[index];
    if (operand.kind == Kind::Temporary) {
      return;
    }
    if (operand.kind == Kind::Leaf) {
      RowInstruction &instruction = emit(RowHandlers::copyCell(operand.type));
      instruction.slot = slotOf(index);
      instruction.cell = operand.cell;
      m_operands[index].kind = Kind::Temporary;
      return;
    }
    toValue(index);
    spill();
  }

  /// Brings two double operands to where one of the forms of an instruction can take them. An instruction that
  /// overwrites the value must push it when it is another operand's.
  Operands toOperands(std::size_t left, bool isOverwritten = true) {
    const auto kind = [this](std::size_t index) {
      return m_operands[index].kind;
    };
    const std::size_t right = left + 1;
    const auto isUnemitted = [&](std::size_t index) {
      return kind(index) == Kind::Pair || kind(index) == Kind::Composite;
    };
    if (kind(left) == Kind::Leaf && kind(right) == Kind::Leaf) {
      return m_valueAt == kNone || !isOverwritten ? Operands::AB : Operands::PushAB;
    }
    if (isUnemitted(right) || (kind(right) == Kind::Temporary && kind(left) == Kind::Leaf)) {
      // The left one first, so that the right one pushes it.
      if (isUnemitted(left)) {
        toValue(left);
      }
      toValue(right);
    }
    if (kind(right) == Kind::Value) {
      if (kind(left) == Kind::Leaf) {
        return Operands::AValue;
      }
      if (kind(left) == Kind::Temporary) {
        return Operands::TemporaryValue;
      }
    }
    toValue(left);
    if (kind(right) == Kind::Leaf) {
      return Operands::ValueA;
    }
    return Operands::ValueTemporary;
  }

  void setOperands(RowInstruction &instruction, Operands operands, std::size_t left) {
    switch (operands) {
    case Operands::AB:
    case Operands::PushAB:
      instruction.a = m_operands[left].p[0];
      instruction.b = m_operands[left + 1].p[0];
      return;
    case Operands::ValueA:
      instruction.a = m_operands[left + 1].p[0];
      return;
    case Operands::AValue:
      instruction.a = m_operands[left].p[0];
      return;
    case Operands::TemporaryValue:
      instruction.slot = slotOf(left);
      return;
    case Operands::ValueTemporary:
      instruction.slot = slotOf(left + 1);
      return;
    }
  }

  /// Emits an operation whose result is the value.
  RowInstruction &emitBinary(RowHandler handler, Operands operands, std::size_t left) {
    RowInstruction &instruction = emit(handler);
    setOperands(instruction, operands, left);
    if (operands == Operands::PushAB) {
      pushedBy(instruction, m_valueAt);
    }
    finishInValue(left);
    return instruction;
  }

  const SimpleVariableCollection &m_variables;
  std::vector<RowInstruction> m_instructions;
  std::vector<Frame> m_frames;
  std::vector<Operand> m_operands;
  std::size_t m_temporaries = 1;
  /// Number of the operand that is the value.
  std::size_t m_valueAt = kNone;
  /// The last comparison when it was one of two leaves, otherwise Unknown.
  Code m_jumpComparison = Code::Unknown;
  bool m_failed = false;
};

} // namespace

std::optional<RowProgram> compileRow(const ElementAbstract &root, const SimpleVariableCollection &variables) {
  RowCompiler compiler(variables);
  if (!compiler.compile(root)) {
    return std::nullopt;
  }
  return compiler.take();
}

} // namespace ExpressionBuilder
