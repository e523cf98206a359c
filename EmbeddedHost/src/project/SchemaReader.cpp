#include "EmbeddedHost/src/project/MemberFlags.h"
#include "EmbeddedHost/src/project/ProjectReader.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kDeepestComposite = 64;

struct DeclaredMember {
  std::int64_t number = 0;
  std::int64_t parent = 0;
  MemberType member;
};

std::optional<double> limit(const Statement &row, int column) {
  return row.isNull(column) ? std::nullopt : std::optional<double>(row.real(column));
}

DeclaredMember readMember(const Statement &row) {
  DeclaredMember declared;
  declared.number = row.integer(0);
  declared.parent = row.integer(1);
  MemberType &member = declared.member;
  member.label = row.text(2);
  const std::int64_t kind = row.integer(3);
  if (kind < static_cast<int>(MemberKind::Real) || kind > static_cast<int>(MemberKind::Composite)) {
    throw DamagedProject("a member of unknown kind");
  }
  member.kind = static_cast<MemberKind>(kind);
  member.standardUnit = row.text(4);
  member.displayUnit = row.text(5);
  member.minimum = limit(row, 6);
  member.maximum = limit(row, 7);
  member.defaultText = row.text(8);
  member.targetType = row.text(9);
  setFlags(member, row.integer(10));
  member.options = unpackTexts(row.text(11));
  return declared;
}

/// Puts the members of a type into their places.
class MemberTree {
public:
  explicit MemberTree(std::vector<DeclaredMember> members) : m_members(std::move(members)) {
    for (std::size_t index = 0; index < m_members.size(); ++index) {
      m_children[m_members[index].parent].push_back(index);
    }
  }

  std::vector<MemberType> take() {
    std::vector<MemberType> members = childrenOf(0, 0);
    if (m_taken != m_members.size()) {
      throw DamagedProject("a member without place");
    }
    return members;
  }

private:
  std::vector<MemberType> childrenOf(std::int64_t parent, std::size_t depth) {
    std::vector<MemberType> members;
    const auto children = m_children.find(parent);
    if (children == m_children.end()) {
      return members;
    }
    if (depth > kDeepestComposite) {
      throw DamagedProject("a composite that is nested too deeply");
    }
    members.reserve(children->second.size());
    for (const std::size_t index : children->second) {
      ++m_taken;
      members.push_back(std::move(m_members[index].member));
      members.back().members = childrenOf(m_members[index].number, depth + 1);
    }
    return members;
  }

  std::vector<DeclaredMember> m_members;
  std::unordered_map<std::int64_t, std::vector<std::size_t>> m_children;
  std::size_t m_taken = 0;
};

} // namespace

ModelSchema readSchema(Database &database) {
  ModelSchema schema;
  Statement types = database.prepare("SELECT label FROM type ORDER BY position");
  while (types.step()) {
    const std::string label(types.text(0));
    Statement rows = database.prepare(
        "SELECT number, parent, label, kind, standard_unit, display_unit, minimum, maximum, "
        "default_text, target_type, flags, options FROM member WHERE type = ? ORDER BY number");
    rows.bindText(1, label);
    std::vector<DeclaredMember> members;
    while (rows.step()) {
      members.push_back(readMember(rows));
    }
    const std::string problem = schema.declareType(label, MemberTree(std::move(members)).take());
    if (!problem.empty()) {
      throw DamagedProject("a type that cannot be declared: " + problem);
    }
  }
  return schema;
}

} // namespace EmbeddedHost
