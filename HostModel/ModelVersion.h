#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/Export.h"
#include "HostModel/StudyEnumerations.h"

#include <string>

namespace EntityModel {

class Attribute;
class Entity;

/// One edit recorded in a delta.
class HOSTMODEL_EXPORT EditOperation {
public:
  /// The kind of an operation that set a value, or took it away. A host numbers other kinds differently.
  static constexpr int kValueSet = 1;

  EditOperation() = default;
  EditOperation(const EditOperation &) = delete;
  EditOperation &operator=(const EditOperation &) = delete;
  virtual ~EditOperation();

  virtual int getKind() const = 0;
  /// For kind kValueSet a detached attribute that holds the last value set, or no value where it was taken
  /// away; null for other kinds.
  virtual const Attribute *getValue() const = 0;
};

/// The edits that a version makes relative to its previous version.
class HOSTMODEL_EXPORT ModelDelta {
public:
  ModelDelta() = default;
  ModelDelta(const ModelDelta &) = delete;
  ModelDelta &operator=(const ModelDelta &) = delete;
  virtual ~ModelDelta();

  /// The operation on that attribute, or null. The operation is valid until the next call on any delta and
  /// until the model is edited, so that a host may keep its edits in any form.
  virtual const EditOperation *findEditOperation(const Entity *entity, const AttributePath &path) const = 0;
};

/// Edits of a version that are kept outside its own delta, such as results. They come before the version's
/// own.
class HOSTMODEL_EXPORT ModelVersionExternalData {
public:
  /// An item's delta, or null where it has none.
  using const_iterator = ModelDelta *const *;

  ModelVersionExternalData() = default;
  ModelVersionExternalData(const ModelVersionExternalData &) = delete;
  ModelVersionExternalData &operator=(const ModelVersionExternalData &) = delete;
  virtual ~ModelVersionExternalData();

  virtual const_iterator begin() const = 0;
  virtual const_iterator end() const = 0;
};

/// One version of the model. Owned by the host; the address is stable until the version is destroyed.
class HOSTMODEL_EXPORT ModelVersion {
public:
  /// What a version is to the studies of its project, computed from its marks.
  enum class VersionType : int {
    /// A study may begin on it.
    Ordinary = 0,
    Alternate = 1,
    Copy = 2,
    /// A study has begun on it and may be continued.
    StudyBaseline = 3,
  };
  /// A following version; null entries may occur.
  using const_iterator = ModelVersion *const *;

  ModelVersion() = default;
  ModelVersion(const ModelVersion &) = delete;
  ModelVersion &operator=(const ModelVersion &) = delete;
  virtual ~ModelVersion();

  virtual std::string getLabel() const = 0;
  /// Not checked for uniqueness; the label that it already has is accepted.
  virtual void setLabel(const std::string &label) = 0;

  virtual ModelVersionStudyType getStudyType() const = 0;
  /// Anything but None makes the version a study baseline.
  virtual void setStudyType(ModelVersionStudyType type) = 0;
  virtual VersionType getVersionType() const = 0;
  /// The baseline of the study that this version belongs to: itself for a baseline, the previous version for
  /// a study case, null for an ordinary version.
  virtual ModelVersion *getStudyBaseline() const = 0;
  virtual bool isStudyBaseline() const = 0;
  /// Clears study type, case flags and the mark of removal; harmless on a version without marks.
  virtual void clearStudy() = 0;
  /// Marks the version as taken out of its study: it is kept but is no study case any more.
  virtual void removeFromStudy() = 0;
  /// Whether the version is a case of a study and was not removed from it.
  /// \param throughAlternate  also true for an alternate of a study case
  /// \param anyRelation       also true through wider relations, which a host may define
  virtual bool isStudyCase(bool throughAlternate, bool anyRelation) const = 0;
  virtual void setStudyCaseFlag(ModelVersionStudyCaseFlag flag, bool set) = 0;
  /// \param text  "true" or "false"; enforced against users only, never against the library
  virtual void setReadOnlyVersion(const std::string &text) = 0;

  /// The version that this one was made from; null for the first one.
  virtual ModelVersion *getPrevious() const = 0;
  /// The versions made from this one, in order of creation. The range is valid until a version is created or
  /// destroyed.
  virtual const_iterator beginNext() const = 0;
  virtual const_iterator endNext() const = 0;

  /// The version's own edits; may be null.
  /// \param includeUnsaved  with the edits since the last save
  virtual ModelDelta *getDelta(bool includeUnsaved) const = 0;
  /// The version's edits kept elsewhere; may be null.
  virtual ModelVersionExternalData *getExternalData() const = 0;
};

} // namespace EntityModel
