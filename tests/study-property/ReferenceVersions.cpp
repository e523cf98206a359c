#include "tests/study-property/ReferenceStudy.h"

#include <algorithm>
#include <limits>

// The versions that a study makes, and their names.

namespace StudyProperty {

std::string ReferenceStudy::studyTypeName() const {
  static const std::map<int, std::string> names = {{0, "Ordinary"}, {1, "Parametric"}, {3, "Optimality"}};
  return names.at(model.versions.at(model.current).studyType);
}

std::string ReferenceStudy::copyName(int number) const {
  return studyTypeName() + " Copy of " + study().base + (number == 0 ? "" : " - " + std::to_string(number));
}

std::string ReferenceStudy::alternateName(int number) const {
  return studyTypeName() + " Alternate " + std::to_string(number) + " of " + study().base;
}

void ReferenceStudy::createCopyVersion(bool forceNew) {
  const FlagScope editing(m_isEditing);
  const int remembered = model.current;
  const int existing = model.find(copyName(0));
  const int previous = existing == ReferenceModel::kNone ? existing : model.versions.at(existing).previous;
  if (!forceNew && previous != ReferenceModel::kNone && model.label(previous) == study().base &&
      model.isCase(existing)) {
    study().copy = copyName(0);
  }
  if (!forceNew && !study().copy.empty()) {
    return;
  }
  int number = 0;
  while (model.find(copyName(number)) != ReferenceModel::kNone) {
    ++number;
  }
  study().copy = copyName(number);
  const int version = model.addFollower(remembered, study().copy);
  model.versions.at(version).isCopy = true;
  model.versions.at(version).isReadOnly = true;
}

void ReferenceStudy::createMissingVersions() {
  const FlagScope editing(m_isEditing);
  if (study().copy.empty()) {
    createCopyVersion(false);
  }
  const int copy = model.find(study().copy);
  const int remembered = model.current;
  for (const Row &row : held->rows) {
    const bool canBeMade =
        copy != ReferenceModel::kNone && model.versions.at(copy).previous != ReferenceModel::kNone;
    if (model.find(row.name) == ReferenceModel::kNone && canBeMade) {
      const int version = model.addAlternate(copy, std::numeric_limits<std::uint64_t>::max());
      model.versions.at(version).label = row.name;
      model.clearStudy(version);
      model.versions.at(version).isReadOnly = true;
      makeCurrent(version);
    }
  }
  makeCurrent(remembered);
}

bool ReferenceStudy::allVersionsExist() const {
  return std::all_of(held->rows.begin(), held->rows.end(),
                     [this](const Row &row) { return model.find(row.name) != ReferenceModel::kNone; });
}

} // namespace StudyProperty
