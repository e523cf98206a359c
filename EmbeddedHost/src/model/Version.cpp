#include "EmbeddedHost/src/model/Version.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelAttributes.h"
#include "EmbeddedHost/src/model/VersionTree.h"

#include <utility>

namespace EmbeddedHost {

using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;

namespace {

constexpr int kListChanged = 2;

} // namespace

ShownEdit::~ShownEdit() = default;

void ShownEdit::show(const Edit &edit) {
  m_edit = &edit;
  m_isValueShown = false;
}

int ShownEdit::getKind() const {
  return m_edit->slot->member->kind == MemberKind::EntityList ? kListChanged : kValueSet;
}

const EntityModel::Attribute *ShownEdit::getValue() const {
  if (getKind() != kValueSet) {
    return nullptr;
  }
  if (!m_isValueShown) {
    renewDetachedAttribute(m_value, *m_edit->slot, m_edit->value);
    m_isValueShown = true;
  }
  return m_value.get();
}

Version::Version(VersionTree &tree, std::int64_t number, std::string folder, Version *previous)
    : m_tree(tree), m_number(number), m_folder(std::move(folder)), m_previous(previous),
      m_depth(previous == nullptr ? 0 : previous->m_depth + 1) {}

Version::~Version() = default;

Version *Version::alternateOf() const {
  return m_family == nullptr || m_family->origin == this ? nullptr : m_family->origin;
}

std::string Version::getLabel() const {
  return m_marks.label;
}

void Version::setLabel(const std::string &label) {
  if (label != m_marks.label) {
    m_tree.relabel(*this, label);
  }
}

template <class Change> void Version::changeMarks(Change change) {
  change(m_marks);
  m_tree.markUnsaved(*this);
}

ModelVersionStudyType Version::getStudyType() const {
  return m_marks.studyType;
}

void Version::setStudyType(ModelVersionStudyType type) {
  changeMarks([type](VersionMarks &marks) { marks.studyType = type; });
}

EntityModel::ModelVersion::VersionType Version::getVersionType() const {
  if (isStudyBaseline()) {
    return VersionType::StudyBaseline;
  }
  if (isStudyCase(false, false)) {
    return VersionType::Copy;
  }
  return isStudyCase(true, false) ? VersionType::Alternate : VersionType::Ordinary;
}

EntityModel::ModelVersion *Version::getStudyBaseline() const {
  if (isStudyBaseline()) {
    return const_cast<Version *>(this);
  }
  const bool isCase = isStudyCase(true, false);
  return isCase && m_previous != nullptr && m_previous->isStudyBaseline() ? m_previous : nullptr;
}

bool Version::isStudyBaseline() const {
  return m_marks.studyType != ModelVersionStudyType::None;
}

void Version::clearStudy() {
  changeMarks([](VersionMarks &marks) {
    marks.studyType = ModelVersionStudyType::None;
    marks.caseFlags.clear();
    marks.isRemovedFromStudy = false;
  });
}

void Version::removeFromStudy() {
  changeMarks([](VersionMarks &marks) {
    marks.studyType = ModelVersionStudyType::None;
    marks.caseFlags.clear();
    marks.isRemovedFromStudy = true;
  });
}

// An alternate has no flag of its own: it is a case for as long as the version that it is an alternate of is
// one, so that clearing that version's marks releases its alternates too.
bool Version::isStudyCase(bool throughAlternate, bool /*anyRelation*/) const {
  if (m_marks.isRemovedFromStudy) {
    return false;
  }
  if (!m_marks.caseFlags.empty()) {
    return true;
  }
  const Version *origin = alternateOf();
  return throughAlternate && origin != nullptr && !origin->m_marks.caseFlags.empty();
}

void Version::setStudyCaseFlag(ModelVersionStudyCaseFlag flag, bool set) {
  changeMarks([flag, set](VersionMarks &marks) {
    if (set) {
      marks.caseFlags.insert(flag);
    } else {
      marks.caseFlags.erase(flag);
    }
  });
}

void Version::setReadOnlyVersion(const std::string &text) {
  changeMarks([&text](VersionMarks &marks) { marks.isReadOnly = text == "true"; });
}

EntityModel::ModelVersion *Version::getPrevious() const {
  return m_previous;
}

EntityModel::ModelVersion::const_iterator Version::beginNext() const {
  return m_next.data();
}

EntityModel::ModelVersion::const_iterator Version::endNext() const {
  return m_next.data() + m_next.size();
}

EntityModel::ModelDelta *Version::getDelta(bool /*includeUnsaved*/) const {
  return const_cast<Version *>(this);
}

EntityModel::ModelVersionExternalData *Version::getExternalData() const {
  return nullptr;
}

const EntityModel::EditOperation *Version::findEditOperation(const EntityModel::Entity *entity,
                                                             const EntityModel::AttributePath &path) const {
  return m_tree.showEdit(*this, entity, path);
}

} // namespace EmbeddedHost
