#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/TypeRef.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace EmbeddedHost {

class Unit;

/// What a member of an entity holds.
enum class MemberKind {
  Real = 1,           ///< a double, a quantity with units when a standard unit is declared
  Integer,            ///< a signed 64-bit number
  Boolean,            ///< its text is "0" or "1"; "false" and "true" are read too
  Choice,             ///< one of options; its text is the ordinal from 1; an option's own text is read too
  Text,               ///< any bytes
  TypeReference,      ///< one of the type labels in options; "" for none
  EntityLink,         ///< one entity or none, owned when it was created there
  AttributeReference, ///< an attribute of some entity, or none
  EntityList,         ///< entities in order, owned when they were created there
  Composite,          ///< holds members of its own and no value
};

/// One member that a type of entities declares. Values stay what they are when a field is left alone: an
/// editable, visible value without limits.
struct MemberType {
  std::string label; ///< not empty, without "."; unique among its siblings
  MemberKind kind = MemberKind::Real;

  std::string standardUnit;      ///< Real: makes it a quantity, in which limits and standard values are meant
  std::string displayUnit;       ///< Real: in which values are shown and read; "" is the standard unit
  std::optional<double> minimum; ///< Real (in the standard unit) and Integer: the lowest value accepted
  std::optional<double> maximum; ///< likewise the highest
  std::vector<std::string> options; ///< Choice: the options; TypeReference: the labels that are accepted
  std::string defaultText;          ///< the value of a new entity; "" leaves a number without value
  std::string targetType;           ///< EntityLink and EntityList: the only type that may be held; "" for any

  bool isResult = false;              ///< read-only by nature; computed by a solver, so it may be unset
  bool isLocked = false;              ///< users may not change it
  bool isInternal = false;            ///< hidden from users
  bool isMonitor = false;             ///< a field or series of results, not a single settable value
  bool hasNoSimulationEffect = false; ///< changing it leaves the simulation as it is, like a note or a colour
  /// EntityList and EntityLink: what is owned here belongs to the project as a whole and is the same in every
  /// version.
  bool isProjectLevel = false;

  std::vector<MemberType> members; ///< Composite: its members
};

/// A member as a type holds it: with its place in the type.
struct Member : MemberType {
  EntityModel::AttributePath path; ///< from the entity
  EntityModel::TypeRef type;       ///< names the member
  std::size_t index = 0;           ///< in EntityType::members()
  std::size_t parent = 0;          ///< index of the composite that it is in; its own index when in none
  bool isStudyStorage = false;     ///< part of the built-in study storage
  const Unit *standard = nullptr;  ///< the standard unit; null without units
  const Unit *display = nullptr;   ///< the unit that values have at first; null without units
};

/// A type of entities: its label and its members, those of composites following their composite. Immutable
/// and shared, so that detached copies of values outlive the project that they come from.
class EntityType {
public:
  EntityType(std::string label, const std::vector<MemberType> &members, bool isStudyStorage);
  EntityType(const EntityType &) = delete;
  EntityType &operator=(const EntityType &) = delete;
  ~EntityType();

  const std::string &label() const { return m_label; }
  const EntityModel::TypeRef &reference() const { return m_reference; }
  const std::vector<Member> &members() const { return m_members; }
  bool isStudyStorage() const { return m_isStudyStorage; }
  /// The member at that path, composites on the way included; null when the type has none.
  const Member *findMember(const EntityModel::AttributePath &path) const;

private:
  void add(const std::vector<MemberType> &members, const std::string &prefix, std::size_t parent);
  void enterPlaces();
  /// Where the path is, or the free place where it would be.
  std::size_t placeOf(const EntityModel::AttributePath &path) const;

  std::string m_label;
  EntityModel::TypeRef m_reference;
  bool m_isStudyStorage;
  std::vector<Member> m_members;
  // Places of open addressing, a power of two of them: every look-up of an attribute begins here. A free place has the
  // empty path.
  std::vector<std::pair<EntityModel::AttributePath, std::size_t>> m_places;
};

/// The types of a model. The types that hold studies are always there; an engineer's own types are declared
/// at run time and stored with the project.
class ModelSchema {
public:
  /// Label of the type of the root entity.
  static constexpr const char *kRootType = "Model";

  /// The built-in types only.
  ModelSchema();
  ModelSchema(const ModelSchema &);
  ModelSchema(ModelSchema &&) noexcept;
  ModelSchema &operator=(const ModelSchema &);
  ModelSchema &operator=(ModelSchema &&) noexcept;
  ~ModelSchema();

  /// Declares a type of entities.
  /// \return "" when declared; else one sentence saying what is wrong with the declaration (a label that is
  /// empty,
  ///         taken or holds ".", an unknown or ambiguous unit, a default that is no value, and so on), and
  ///         nothing has changed
  std::string declareType(const std::string &label, const std::vector<MemberType> &members);
  /// Declares the members of the root entity itself, in addition to the study list.
  /// \return as declareType()
  std::string declareRootMembers(const std::vector<MemberType> &members);

  /// The type with this label, or null.
  std::shared_ptr<const EntityType> findType(std::string_view label) const;
  const std::shared_ptr<const EntityType> &rootType() const { return m_rootType; }
  /// The declared types, without the built-in ones, in order of declaration; the root type first when it has
  /// members of its own.
  std::vector<std::shared_ptr<const EntityType>> declaredTypes() const;
  /// The members as they were declared, by the label of a type of declaredTypes().
  const std::vector<MemberType> &declaration(std::string_view label) const;

private:
  struct Declaration;

  std::string check(const std::string &label, const std::vector<MemberType> &members) const;

  std::shared_ptr<const EntityType> m_rootType;
  std::vector<Declaration> m_declarations;
  std::unordered_map<std::string, std::shared_ptr<const EntityType>> m_types;
};

} // namespace EmbeddedHost
