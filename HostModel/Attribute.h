#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/Export.h"
#include "HostModel/Type.h"

#include <memory>
#include <optional>
#include <string>

namespace EntityModel {

class CompositeAttribute;
class Entity;
class EntityLink;
class ListAttribute;
class TypeAttribute;

/// A typed value of an entity. Owned by the host; a clone is owned by whoever made it.
///
/// For as long as it exists in a version, an attribute has one address: the library compares attributes by
/// address. The kinds exclude each other, except that a list of entities is also an entity link.
class HOSTMODEL_EXPORT Attribute {
public:
  Attribute() = default;
  Attribute(const Attribute &) = delete;
  Attribute &operator=(const Attribute &) = delete;
  virtual ~Attribute();

  /// \name Place in the model
  /// @{

  /// The entity that owns this attribute; null for a clone.
  virtual Entity *getOwnerEntity() = 0;
  virtual const Entity *getOwnerEntity() const = 0;
  /// The path from the owner entity to this attribute; empty for an entity itself and for a clone without
  /// place.
  virtual AttributePath getAttributePath() const = 0;
  /// The declared type of this attribute.
  virtual Type getType() const = 0;
  /// Whether the value is read-only by nature, as a result is.
  /// \param includeVersion  also true when the version that the attribute belongs to is read-only
  virtual bool isReadOnly(bool includeVersion) const = 0;
  /// Whether the value is locked against changes by a user.
  virtual bool isLocked() const = 0;
  /// @}

  /// \name Kinds
  /// @{

  /// Whether the value is a monitored field or series of results, not a single value.
  virtual bool isMonitor() const = 0;
  /// Whether the attribute is internal: hidden from users, or a container of others.
  virtual bool isInternal() const = 0;
  virtual bool isInteger() const = 0;
  virtual bool isReal() const = 0;
  /// Whether the value is one of a list of options, see getUpperIndex(); its text is the option's ordinal
  /// from 1.
  virtual bool isChoice() const = 0;
  /// Whether the value is true or false; its text is "1" or "0".
  virtual bool isBoolean() const = 0;
  virtual bool isEntityLink() const = 0;
  virtual bool isTypeReference() const = 0;
  /// Whether the value is an ordered list of entities; asList() then answers it.
  virtual bool isEntityList() const = 0;
  virtual bool isText() const = 0;
  /// Whether the attribute refers to another attribute; see getReferencedAttribute().
  virtual bool isAttributeReference() const = 0;
  /// Whether this is an entity itself; asEntity() then answers it.
  virtual bool isEntity() const = 0;
  /// @}

  /// \name The same object under its own class; null when it is of another kind
  /// @{
  virtual Entity *asEntity();
  virtual EntityLink *asLink();
  virtual ListAttribute *asList();
  virtual TypeAttribute *asTypeAttribute();
  /// @}

  /// The attribute that this one refers to; null when it refers to none or is no attribute reference.
  virtual Attribute *getReferencedAttribute() const;

  /// \name Value
  /// @{

  /// Whether a value is held; false for a result that has not been computed.
  virtual bool hasValue() const = 0;
  /// The value as text, independent of the locale and lossless for numbers; "" when no value is held.
  virtual std::string getValueAsString() const = 0;
  /// Sets the value from the text form, which getValueAsString() gives.
  /// \throws std::exception  the text is no value of this attribute, the empty text of a number included;
  ///                         the value has not changed
  virtual void setValueFromString(const std::string &text) = 0;
  /// Copies value, absence of a value, and display unit of an attribute of the same kind.
  virtual void assignValue(const Attribute &other) = 0;
  /// The value in the standard units of the host (metre, second, kilogram and so on); a plain number as it
  /// is, an integer, choice or boolean as its number, 0.0 for anything else and without a value.
  virtual double getStandardValue() const = 0;
  /// Whether the value is a quantity with units.
  virtual bool isQuantity() const = 0;
  /// The unit in which the value is displayed; "" without units.
  /// \param form  0 for the form that getValueInUnits() reads
  virtual std::string getUnits(int form) const = 0;
  /// The value in the given units, in the form of getUnits(0); the standard value when the text is empty or
  /// names no unit of this quantity.
  virtual double getValueInUnits(const std::string &units) const = 0;
  /// Whether getNumericValue() and getIntValue() have a number to give.
  virtual bool isNumeric() const = 0;
  /// The value as a double in standard units; 0.0 when there is none.
  virtual double getNumericValue() const = 0;
  /// The value as an int, truncated toward zero and clamped to its range; 0 when there is none.
  virtual int getIntValue() const = 0;
  /// Index of the last option of a choice, counted from 0; 0 for other kinds.
  virtual int getUpperIndex() const = 0;
  /// Sets or clears the lowest value that setValueFromString() accepts, in standard units.
  virtual void setOptionalMinimum(const std::optional<double> &minimum) = 0;
  /// Sets or clears the highest value that setValueFromString() accepts, in standard units.
  virtual void setOptionalMaximum(const std::optional<double> &maximum) = 0;
  /// A text that is equal for attributes which may share one value.
  virtual std::string getTypeDescription() const = 0;
  /// A detached copy with the same value, limits and units; it outlives the original and the model.
  virtual std::unique_ptr<Attribute> clone() const = 0;
  /// @}
};

/// An attribute with members.
class HOSTMODEL_EXPORT CompositeAttribute : public Attribute {
public:
  ~CompositeAttribute() override;

  /// The member at the path in the current version, or null. The empty path gives the composite itself.
  virtual Attribute *findAttribute(const AttributePath &path) = 0;
  const Attribute *findAttribute(const AttributePath &path) const;
  /// The member of that type, or null.
  /// \param searchMembers  also search the members of members, depth first
  virtual Attribute *findAttribute(const TypeRef &type, bool searchMembers) = 0;
  const Attribute *findAttribute(const TypeRef &type, bool searchMembers) const;
};

/// A model object. As an attribute it stands for itself: its own path is empty and its text is its name.
/// An entity keeps its address over all versions; one that the current version does not have, or that was
/// deleted, stays allocated until its project closes and answers every query with nothing.
class HOSTMODEL_EXPORT Entity : public CompositeAttribute {
public:
  ~Entity() override;

  /// The link by which the entity is owned; null for the root entity and for a deleted one.
  virtual EntityLink *getOwnerEntityLink() const = 0;
  /// The entity's name.
  /// \param asDisplayed  the form shown to users, which cost expressions use too
  virtual std::string getName(bool asDisplayed) const = 0;
};

/// An attribute that holds or refers to an entity.
class HOSTMODEL_EXPORT EntityLink : public Attribute {
public:
  ~EntityLink() override;

  /// The linked entity; null when there is none in the current version. The first element of a list.
  virtual Entity *getLinkedEntity() const = 0;
};

/// An attribute that holds an ordered list of entities.
class HOSTMODEL_EXPORT ListAttribute : public EntityLink {
public:
  ~ListAttribute() override;

  /// Number of elements.
  virtual int getCount() const = 0;
  /// The element; null when \p index is not in 0..getCount()-1, negative included.
  virtual Entity *getEntity(int index) const = 0;
  /// Position of the element; -1 when the list does not hold it.
  virtual int indexOf(const Entity *entity) const = 0;
  /// Moves an element before the one that is now at \p to; \p to may equal getCount(), which moves to the
  /// end. The element ends at \p to when that is before its old place, else one before.
  /// \return whether the
  /// list holds the element and \p to is in range
  virtual bool moveEntity(Entity *entity, int to) = 0;
};

/// An attribute whose value is a type reference.
class HOSTMODEL_EXPORT TypeAttribute : public Attribute {
public:
  ~TypeAttribute() override;

  /// The type held; the empty reference when there is none.
  virtual TypeRef getTypeValue() const = 0;
  /// Whether both attributes accept the same types.
  virtual bool hasSameTypes(const TypeAttribute &other) const = 0;
};

} // namespace EntityModel
