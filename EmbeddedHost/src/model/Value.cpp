#include "EmbeddedHost/src/model/Value.h"

#include <algorithm>
#include <cstring>

namespace EmbeddedHost {

namespace {

bool isSameLink(const LinkValue &a, const LinkValue &b) {
  return a.entity == b.entity && a.isOwned == b.isOwned;
}

struct SameAlternative {
  const Value &self;
  const Value &other;

  bool operator()(std::monostate /*none*/) const { return true; }
  bool operator()(const RealValue &real) const {
    const auto &that = std::get<RealValue>(other);
    std::uint64_t bits[2] = {};
    std::memcpy(&bits[0], &real.number, sizeof real.number);
    std::memcpy(&bits[1], &that.number, sizeof that.number);
    return bits[0] == bits[1] && real.unit == that.unit;
  }
  bool operator()(std::int64_t number) const { return number == std::get<std::int64_t>(other); }
  bool operator()(const TextValue &text) const { return textOf(text) == textOf(std::get<TextValue>(other)); }
  bool operator()(const EntityModel::TypeRef &type) const {
    return type == std::get<EntityModel::TypeRef>(other);
  }
  bool operator()(const LinkValue &link) const { return isSameLink(link, std::get<LinkValue>(other)); }
  bool operator()(const std::shared_ptr<const AttributeTarget> &target) const {
    const auto &that = std::get<std::shared_ptr<const AttributeTarget>>(other);
    return target->entity == that->entity && target->path == that->path;
  }
  bool operator()(const std::shared_ptr<ListContent> & /*list*/) const {
    const std::vector<LinkValue> &that = elementsOf(other);
    const std::vector<LinkValue> &elements = elementsOf(self);
    return std::equal(elements.begin(), elements.end(), that.begin(), that.end(), isSameLink);
  }
};

} // namespace

TextValue makeText(std::string_view text) {
  return text.empty() ? nullptr : std::make_shared<const std::string>(text);
}

std::string_view textOf(const TextValue &text) {
  return text == nullptr ? std::string_view() : std::string_view(*text);
}

bool isSameValue(const Value &a, const Value &b) {
  return a.index() == b.index() && std::visit(SameAlternative{a, b}, a);
}

Value deepCopy(const Value &value) {
  if (const auto *list = std::get_if<std::shared_ptr<ListContent>>(&value)) {
    return *list == nullptr ? Value(std::shared_ptr<ListContent>())
                            : Value(std::make_shared<ListContent>(**list));
  }
  return value;
}

const std::vector<LinkValue> &elementsOf(const Value &value) {
  static const std::vector<LinkValue> none;
  const auto *list = std::get_if<std::shared_ptr<ListContent>>(&value);
  return list == nullptr || *list == nullptr ? none : (*list)->elements;
}

} // namespace EmbeddedHost
