#include "EmbeddedHost/ModelSchema.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/StudyStorageTypes.h"
#include "EmbeddedHost/src/model/ValueText.h"
#include "HostModel/TypeConstants.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>
#include <functional>
#include <set>
#include <utility>

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::TypeRef;

EntityType::EntityType(std::string label, const std::vector<MemberType> &members, bool isStudyStorage)
    : m_label(std::move(label)), m_reference(TypeRef::fromLabel(m_label)), m_isStudyStorage(isStudyStorage) {
  add(members, "", 0);
  enterPlaces();
}

EntityType::~EntityType() = default;

void EntityType::add(const std::vector<MemberType> &members, const std::string &prefix, std::size_t parent) {
  for (const MemberType &declared : members) {
    Member member;
    static_cast<MemberType &>(member) = declared;
    const std::string path = prefix + declared.label;
    member.path = AttributePath(path);
    member.type = TypeRef::fromLabel(declared.label);
    member.index = m_members.size();
    member.parent = prefix.empty() ? member.index : parent;
    member.isStudyStorage =
        m_isStudyStorage || declared.label == EntityModel::OptimizationDataList_t.getLabel();
    if (!declared.standardUnit.empty()) {
      UnitSystem &units = UnitSystem::process();
      member.standard = units.parse(declared.standardUnit).unit;
      member.display =
          declared.displayUnit.empty() ? member.standard : units.parse(declared.displayUnit).unit;
    }
    const std::size_t index = member.index;
    m_members.push_back(std::move(member));
    add(declared.members, path + ".", index);
  }
}

const Member *EntityType::findMember(const AttributePath &path) const {
  const auto &[found, index] = m_places[placeOf(path)];
  return found.empty() ? nullptr : &m_members[index];
}

void EntityType::enterPlaces() {
  std::size_t size = 4;
  while (size < 2 * m_members.size()) {
    size *= 2;
  }
  m_places.resize(size);
  for (const Member &member : m_members) {
    m_places[placeOf(member.path)] = {member.path, member.index};
  }
}

std::size_t EntityType::placeOf(const AttributePath &path) const {
  // Paths are addresses, which differ in their middle bits; multiplication spreads them over the high ones.
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15ULL;
  const std::size_t mask = m_places.size() - 1;
  const std::uint64_t spread = std::uint64_t{std::hash<AttributePath>()(path)} * kSpread;
  std::size_t place = static_cast<std::size_t>(spread >> 32U) & mask;
  while (!m_places[place].first.empty() && m_places[place].first != path) {
    place = (place + 1) & mask;
  }
  return place;
}

struct ModelSchema::Declaration {
  std::string label;
  std::vector<MemberType> members;
};

ModelSchema::ModelSchema() {
  for (const std::shared_ptr<const EntityType> &type : studyStorageTypes()) {
    m_types.emplace(type->label(), type);
  }
  m_rootType =
      std::make_shared<const EntityType>(kRootType, std::vector<MemberType>{studyListMember()}, false);
  m_types.emplace(kRootType, m_rootType);
}

ModelSchema::ModelSchema(const ModelSchema &) = default;
ModelSchema::ModelSchema(ModelSchema &&) noexcept = default;
ModelSchema &ModelSchema::operator=(const ModelSchema &) = default;
ModelSchema &ModelSchema::operator=(ModelSchema &&) noexcept = default;
ModelSchema::~ModelSchema() = default;

namespace {

std::string quoted(const std::string &text) {
  return "\"" + text + "\"";
}

std::string checkLabel(const std::string &label) {
  if (label.empty()) {
    return "A label is empty.";
  }
  // The full stop separates the labels of a path, the others end a name in texts of links and in cost functions.
  return label.find_first_of(".%#:") == std::string::npos
             ? std::string()
             : "The label " + quoted(label) + R"( holds one of ".", "%", "#" and ":".)";
}

std::string checkUnits(const MemberType &member) {
  if (member.standardUnit.empty()) {
    return member.displayUnit.empty()
               ? std::string()
               : "The member " + quoted(member.label) + " has a display unit but no standard unit.";
  }
  if (member.kind != MemberKind::Real) {
    return "The member " + quoted(member.label) + " has a unit but is no real number.";
  }
  UnitSystem &units = UnitSystem::process();
  const UnitResult standard = units.parse(member.standardUnit);
  if (standard.unit == nullptr) {
    return "The member " + quoted(member.label) + ": " + standard.problem;
  }
  if (member.displayUnit.empty()) {
    return {};
  }
  const UnitResult display = units.parse(member.displayUnit);
  if (display.unit == nullptr) {
    return "The member " + quoted(member.label) + ": " + display.problem;
  }
  return units.areConvertible(*display.unit, *standard.unit)
             ? std::string()
             : "The member " + quoted(member.label) + " cannot be displayed in " + member.displayUnit +
                   ": that does not convert to " + member.standardUnit +
                   conversionHint(member.displayUnit, member.standardUnit) + ".";
}

std::string checkLimits(const MemberType &member) {
  const bool hasLimits = member.minimum.has_value() || member.maximum.has_value();
  if (!hasLimits) {
    return {};
  }
  if (member.kind != MemberKind::Real && member.kind != MemberKind::Integer) {
    return "The member " + quoted(member.label) + " has limits but is no number.";
  }
  const double minimum = member.minimum.value_or(-INFINITY);
  const double maximum = member.maximum.value_or(INFINITY);
  return minimum <= maximum ? std::string()
                            : "The minimum of the member " + quoted(member.label) + " is above its maximum.";
}

std::string checkOptions(const MemberType &member) {
  if (member.kind == MemberKind::Choice && member.options.empty()) {
    return "The choice " + quoted(member.label) + " has no options.";
  }
  const std::set<std::string> different(member.options.begin(), member.options.end());
  return different.size() == member.options.size()
             ? std::string()
             : "The member " + quoted(member.label) + " has an option twice.";
}

std::string checkDefault(const MemberType &member) {
  const EntityType type("Check", {member}, false);
  try {
    defaultValue(type.members().front());
    return {};
  } catch (const std::exception &error) {
    return std::string("A default is no value: ") + error.what() + ".";
  }
}

std::string checkMembers(const std::vector<MemberType> &members);

std::string checkMember(const MemberType &member) {
  for (const auto &check : {checkUnits, checkLimits, checkOptions}) {
    if (std::string problem = check(member); !problem.empty()) {
      return problem;
    }
  }
  if (member.kind == MemberKind::Composite) {
    return checkMembers(member.members);
  }
  return member.members.empty() ? checkDefault(member)
                                : "The member " + quoted(member.label) + " is no composite but has members.";
}

std::string checkMembers(const std::vector<MemberType> &members) {
  std::set<std::string> labels;
  for (const MemberType &member : members) {
    std::string problem = checkLabel(member.label);
    if (problem.empty() && !labels.insert(member.label).second) {
      problem = "The label " + quoted(member.label) + " is used twice.";
    }
    if (problem.empty()) {
      problem = checkMember(member);
    }
    if (!problem.empty()) {
      return problem;
    }
  }
  return {};
}

} // namespace

std::string ModelSchema::check(const std::string &label, const std::vector<MemberType> &members) const {
  std::string problem = checkLabel(label);
  if (problem.empty() && label != kRootType && m_types.count(label) != 0) {
    problem = "The type " + quoted(label) + " is there already.";
  }
  return problem.empty() ? checkMembers(members) : problem;
}

std::string ModelSchema::declareType(const std::string &label, const std::vector<MemberType> &members) {
  if (label == kRootType) {
    return declareRootMembers(members);
  }
  std::string problem = check(label, members);
  if (problem.empty()) {
    m_types.emplace(label, std::make_shared<const EntityType>(label, members, false));
    m_declarations.push_back({label, members});
  }
  return problem;
}

std::string ModelSchema::declareRootMembers(const std::vector<MemberType> &members) {
  const auto isRoot = [](const Declaration &declaration) {
    return declaration.label == kRootType;
  };
  std::vector<MemberType> all = {studyListMember()};
  all.insert(all.end(), members.begin(), members.end());
  if (std::any_of(m_declarations.begin(), m_declarations.end(), isRoot)) {
    return "The members of the root entity are declared already.";
  }
  std::string problem = check(kRootType, all);
  if (problem.empty()) {
    m_rootType = std::make_shared<const EntityType>(kRootType, all, false);
    m_types[kRootType] = m_rootType;
    m_declarations.insert(m_declarations.begin(), {kRootType, members});
  }
  return problem;
}

std::shared_ptr<const EntityType> ModelSchema::findType(std::string_view label) const {
  const auto found = m_types.find(std::string(label));
  return found == m_types.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<const EntityType>> ModelSchema::declaredTypes() const {
  std::vector<std::shared_ptr<const EntityType>> types;
  types.reserve(m_declarations.size());
  for (const Declaration &declaration : m_declarations) {
    types.push_back(m_types.at(declaration.label));
  }
  return types;
}

const std::vector<MemberType> &ModelSchema::declaration(std::string_view label) const {
  static const std::vector<MemberType> none;
  for (const Declaration &declaration : m_declarations) {
    if (declaration.label == label) {
      return declaration.members;
    }
  }
  return none;
}

} // namespace EmbeddedHost
