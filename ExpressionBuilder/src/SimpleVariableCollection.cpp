#include "ExpressionBuilder/SimpleVariableCollection.h"

#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/src/VariableNames.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <typeinfo>

namespace ExpressionBuilder {

SimpleVariableCollectionBase::SimpleVariableCollectionBase() = default;

SimpleVariableCollectionBase::SimpleVariableCollectionBase(const SimpleVariableCollectionBase &other)
    : VariableCollectionAbstract(other) {}

SimpleVariableCollectionBase &
SimpleVariableCollectionBase::operator=(const SimpleVariableCollectionBase & /*other*/) {
  return *this;
}

SimpleVariableCollectionBase::~SimpleVariableCollectionBase() = default;

const ElementAbstract *SimpleVariableCollectionBase::beginLookup(const std::string &name) const {
  const std::lock_guard<std::recursive_mutex> lock(m_mutex);
  const auto [entry, isNew] = m_inProgress.emplace(std::this_thread::get_id(), name);
  if (!isNew) {
    throw CircularDependency(name);
  }
  const ElementAbstract *definition = nullptr;
  try {
    definition = findDefinition(name);
  } catch (...) {
    m_inProgress.erase(entry);
    throw;
  }
  if (definition == nullptr) {
    m_inProgress.erase(entry);
    throw MissingVariable(name);
  }
  return definition;
}

void SimpleVariableCollectionBase::endLookup(const std::string &name) const noexcept {
  const std::lock_guard<std::recursive_mutex> lock(m_mutex);
  m_inProgress.erase({std::this_thread::get_id(), name});
}

namespace {

template <class T> bool isExactly(const ElementAbstract &element) {
  return typeid(element) == typeid(ElementConstant<T>);
}

/// Whether the element is exactly the library's constant of the type that it reports, and nothing derived.
bool isPlainConstant(const ElementAbstract &element, ValueType type) {
  return isKnownValueType(type) && visitValueType(type, [&element](auto tag) {
           return isExactly<typename decltype(tag)::Type>(element);
         });
}

/// The lower part of a stamp. All zero stands for no state of any collection, all one for "too many to count".
constexpr std::uint64_t kPlaces = (std::uint64_t{1} << 24U) - 1;

/// A stamp whose upper part no collection of the process has had.
std::uint64_t newStamp() noexcept {
  static std::atomic<std::uint64_t> s_last{0};
  return s_last.fetch_add(kPlaces + 1, std::memory_order_relaxed) + kPlaces + 1 + 1;
}

/// Room for one more element, growing as push_back does.
template <class V> void reserveOneMore(V &vector) {
  constexpr std::size_t kFirst = 8;
  if (vector.size() == vector.capacity()) {
    vector.reserve(std::max(kFirst, 2 * vector.capacity()));
  }
}

} // namespace

SimpleVariableCollection::SimpleVariableCollection() : m_stamp(newStamp()) {}

SimpleVariableCollection::SimpleVariableCollection(const SimpleVariableCollection &other)
    : SimpleVariableCollectionBase(other), m_names(other.m_names), m_namesAreShared(true),
      m_stamp(newStamp()) {
  other.m_namesAreShared = true;
  m_slots.reserve(other.m_slots.size());
  for (const Slot &slot : other.m_slots) {
    const ElementAbstract &definition = *slot.definition;
    const bool isPlainDouble = slot.isPlain && slot.type == ValueType::Double;
    m_slots.push_back({isPlainDouble ? std::make_unique<ElementConstant<double>>(
                                           static_cast<const ElementConstant<double> &>(definition).value())
                                     : definition.cloneAbstract(),
                       slot.type, slot.isPlain});
  }
}

SimpleVariableCollection::SimpleVariableCollection(SimpleVariableCollection &&other) noexcept : m_stamp(0) {
  swapContents(other);
}

SimpleVariableCollection &SimpleVariableCollection::operator=(const SimpleVariableCollection &other) {
  return *this = SimpleVariableCollection(other);
}

SimpleVariableCollection &SimpleVariableCollection::operator=(SimpleVariableCollection &&other) noexcept {
  swapContents(other);
  return *this;
}

SimpleVariableCollection::~SimpleVariableCollection() = default;

void SimpleVariableCollection::swapContents(SimpleVariableCollection &other) noexcept {
  m_names.swap(other.m_names);
  m_slots.swap(other.m_slots);
  other.m_namesAreShared = m_namesAreShared.exchange(other.m_namesAreShared);
  forgetHandles();
  other.forgetHandles();
}

void SimpleVariableCollection::forgetHandles() noexcept {
  m_stamp = newStamp();
  ++m_layout;
}

std::uint64_t SimpleVariableCollection::withoutPlaces(std::uint64_t stamp) noexcept {
  return stamp & ~kPlaces;
}

void SimpleVariableCollection::forgetPlaces() noexcept {
  if ((m_stamp & kPlaces) != kPlaces) {
    ++m_stamp;
  }
  ++m_layout;
}

const ElementAbstract *SimpleVariableCollection::beginLookup(const std::string &name) const {
  return SimpleVariableCollectionBase::beginLookup(name);
}

void SimpleVariableCollection::endLookup(const std::string &name) const noexcept {
  SimpleVariableCollectionBase::endLookup(name);
}

bool SimpleVariableCollection::declare(std::string_view name, std::unique_ptr<ElementAbstract> definition) {
  if (definition == nullptr) {
    throw std::runtime_error("Invalid Type");
  }
  if (contains(name)) {
    return false;
  }
  if (m_names == nullptr) {
    m_names = std::make_shared<VariableNames>();
    m_namesAreShared = false;
  } else if (m_namesAreShared) {
    m_names = std::make_shared<VariableNames>(*m_names);
    m_namesAreShared = false;
  }
  Slot slot{std::move(definition), ValueType{}, false};
  slot.type = slot.definition->type();
  slot.isPlain = isPlainConstant(*slot.definition, slot.type);
  // Room first: after the name has been added nothing may fail any more.
  reserveOneMore(m_slots);
  m_names->add(name);
  m_slots.push_back(std::move(slot));
  ++m_layout;
  return true;
}

void SimpleVariableCollection::replace(std::string_view name, std::unique_ptr<ElementAbstract> definition) {
  const std::optional<std::size_t> number =
      m_names == nullptr ? std::nullopt : m_names->find(name, m_likelyNext);
  if (!number) {
    throw std::out_of_range("Variable does not exist");
  }
  m_likelyNext = *number + 1 == m_slots.size() ? 0 : *number + 1;
  Slot &slot = m_slots[*number];
  if (slot.isPlain && slot.type == ValueType::Double && definition != nullptr &&
      isExactly<double>(*definition)) {
    // The usual case, with as little as possible for each row of a study.
    static_cast<ElementConstant<double> &>(*slot.definition)
        .setValue(static_cast<const ElementConstant<double> &>(*definition).value());
    return;
  }
  if (definition == nullptr || definition->type() != slot.type) {
    throw std::runtime_error("Invalid Type");
  }
  replaceDefinition(slot, std::move(definition));
}

void SimpleVariableCollection::replaceDefinition(Slot &slot, std::unique_ptr<ElementAbstract> definition) {
  const bool isPlain = isPlainConstant(*definition, slot.type);
  if (isPlain && slot.isPlain) {
    // The value moves and the element stays, so that nobody has to look for the value again.
    visitValueType(slot.type, [&](auto tag) {
      using T = typename decltype(tag)::Type;
      static_cast<ElementConstant<T> &>(*slot.definition)
          .setValue(static_cast<const ElementConstant<T> &>(*definition).value());
    });
    return;
  }
  slot.definition = std::move(definition);
  slot.isPlain = isPlain;
  forgetPlaces();
}

template <class T>
void SimpleVariableCollection::setDefinition(std::uint64_t stamp, std::size_t slot, T value) {
  requireOwn(stamp);
  replaceDefinition(m_slots[slot], std::make_unique<ElementConstant<T>>(std::move(value)));
}

template <class T> VariableHandle<T> SimpleVariableCollection::handle(std::string_view name) const {
  const Slot *const slot = findSlot(name);
  if (slot == nullptr) {
    throw std::out_of_range("Variable does not exist");
  }
  if (slot->type != ValueTypeOf<T>::code) {
    throw std::runtime_error("Invalid Type");
  }
  return handleOf<T>(static_cast<std::size_t>(slot - m_slots.data()));
}

template <class T> VariableHandle<T> SimpleVariableCollection::handleOf(std::size_t slot) const {
  if (!m_slots[slot].isPlain || (m_stamp & kPlaces) == kPlaces) {
    return VariableHandle<T>(withoutPlaces(m_stamp), slot, nullptr);
  }
  return VariableHandle<T>(m_stamp, slot,
                           static_cast<ElementConstant<T> &>(*m_slots[slot].definition).place());
}

void SimpleVariableCollection::requireOwn(std::uint64_t stamp) const {
  if (withoutPlaces(stamp) != withoutPlaces(m_stamp)) {
    throw std::out_of_range("Variable does not exist");
  }
}

const SimpleVariableCollection::Slot *SimpleVariableCollection::findSlot(std::string_view name) const {
  const std::optional<std::size_t> slot = m_names == nullptr ? std::nullopt : m_names->find(name);
  return slot ? &m_slots[*slot] : nullptr;
}

const ElementAbstract *SimpleVariableCollection::find(std::string_view name) const {
  const Slot *const slot = findSlot(name);
  return slot == nullptr ? nullptr : slot->definition.get();
}

bool SimpleVariableCollection::contains(std::string_view name) const {
  return findSlot(name) != nullptr;
}

std::size_t SimpleVariableCollection::size() const noexcept {
  return m_slots.size();
}

bool SimpleVariableCollection::empty() const noexcept {
  return m_slots.empty();
}

std::vector<std::string> SimpleVariableCollection::names() const {
  return m_names == nullptr ? std::vector<std::string>() : m_names->sorted();
}

void SimpleVariableCollection::clear() noexcept {
  m_names.reset();
  m_slots.clear();
  forgetHandles();
}

const void *SimpleVariableCollection::plainValue(std::string_view name, ValueType type) const {
  const Slot *const slot = findSlot(name);
  return slot == nullptr || slot->type != type
             ? nullptr
             : plainValueOf(static_cast<std::size_t>(slot - m_slots.data()));
}

const void *SimpleVariableCollection::plainValueOf(std::size_t slot) const {
  const ElementAbstract &definition = *m_slots[slot].definition;
  return m_slots[slot].isPlain ? definition.shape().value(definition) : nullptr;
}

const ElementAbstract *SimpleVariableCollection::findDefinition(const std::string &name) const {
  return find(name);
}

template VariableHandle<double> SimpleVariableCollection::handle<double>(std::string_view) const;
template VariableHandle<int> SimpleVariableCollection::handle<int>(std::string_view) const;
template VariableHandle<bool> SimpleVariableCollection::handle<bool>(std::string_view) const;
template VariableHandle<std::string> SimpleVariableCollection::handle<std::string>(std::string_view) const;
template VariableHandle<long long> SimpleVariableCollection::handle<long long>(std::string_view) const;

template VariableHandle<double> SimpleVariableCollection::handleOf<double>(std::size_t) const;
template void SimpleVariableCollection::setDefinition<double>(std::uint64_t, std::size_t, double);
template VariableHandle<int> SimpleVariableCollection::handleOf<int>(std::size_t) const;
template void SimpleVariableCollection::setDefinition<int>(std::uint64_t, std::size_t, int);
template VariableHandle<bool> SimpleVariableCollection::handleOf<bool>(std::size_t) const;
template void SimpleVariableCollection::setDefinition<bool>(std::uint64_t, std::size_t, bool);
template VariableHandle<std::string> SimpleVariableCollection::handleOf<std::string>(std::size_t) const;
template void SimpleVariableCollection::setDefinition<std::string>(std::uint64_t, std::size_t, std::string);
template VariableHandle<long long> SimpleVariableCollection::handleOf<long long>(std::size_t) const;
template void SimpleVariableCollection::setDefinition<long long>(std::uint64_t, std::size_t, long long);

} // namespace ExpressionBuilder
