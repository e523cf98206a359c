#include "testing/HostOperation.h"

#include <unordered_map>

namespace HostTesting {

namespace {

using Effect = OperationEffect;
using Result = OperationResult;

} // namespace

// These tables are never destroyed: an object that lives to the end of the process still asks its host then.
const std::vector<HostOperation> &hostOperations() {
  static const auto &operations = *new std::vector<HostOperation>{
      {"Host::getEntityEditor", Effect::Query, Result::Pointer},
      {"Host::getEntityManager", Effect::Query, Result::Pointer},
      {"Host::getStudyTypeNames", Effect::Query, Result::Pointer},
      {"Host::getModellingImpact", Effect::Query, Result::Pointer},
      {"Host::getProjectStore", Effect::Query, Result::Pointer},
      {"Host::getDirectories", Effect::Query, Result::Pointer},
      {"EntityEditor::getRootEntity", Effect::Query, Result::Pointer},
      {"EntityEditor::getChangeManager", Effect::Query, Result::Pointer},
      {"EntityEditor::createEntity", Effect::Change, Result::Pointer},
      {"EntityEditor::addEntity", Effect::Change, Result::Flag},
      {"EntityEditor::moveEntity", Effect::Change, Result::Flag},
      {"EntityEditor::deleteEntity", Effect::Change, Result::Flag},
      {"EntityEditor::deleteEntities", Effect::Change, Result::Flag},
      {"EntityEditor::setValue", Effect::Change, Result::Flag},
      {"EntityEditor::setValueNoThrow", Effect::Change, Result::Flag},
      {"EntityEditor::setValueNoThrow(bool)", Effect::Change, Result::Flag},
      {"EntityManager::getChangeManager", Effect::Query, Result::Pointer},
      {"EntityManager::getObserverManager", Effect::Query, Result::Pointer},
      {"EntityManager::setNeedsSave", Effect::Change, Result::Nothing},
      {"EntityManager::setValue", Effect::Change, Result::Flag},
      {"EntityManager::checkSelectionsAreValid", Effect::Change, Result::Nothing},
      {"EntityManager::getModelChecker", Effect::Query, Result::Pointer},
      {"ModelChecker::check", Effect::Change, Result::Nothing},
      {"ObserverManager::addObserver", Effect::Change, Result::Nothing},
      {"ObserverManager::removeObserver", Effect::Change, Result::Nothing},
      {"ObserverManager::broadcastChangedVersion", Effect::Change, Result::Nothing},
      {"ObserverManager::broadcastChangedEntities", Effect::Change, Result::Nothing},
      {"ObserverManager::broadcastUndoneOrRedone", Effect::Change, Result::Nothing},
      {"ObserverManager::broadcastSetCurrentEntity", Effect::Change, Result::Nothing},
      {"ObserverManager::broadcastSelectEntities", Effect::Change, Result::Nothing},
      {"ChangeManager::getCurrentVersion", Effect::Query, Result::Pointer},
      {"ChangeManager::getRootVersion", Effect::VersionQuery, Result::Pointer},
      {"ChangeManager::findVersion", Effect::VersionQuery, Result::Pointer},
      {"ChangeManager::getAlternates", Effect::VersionQuery, Result::Nothing},
      {"ChangeManager::setCurrentVersion", Effect::Change, Result::Flag},
      {"ChangeManager::startNewVersion", Effect::Change, Result::Pointer},
      {"ChangeManager::startNewAlternate", Effect::Change, Result::Pointer},
      {"ChangeManager::getUniqueName", Effect::VersionQuery, Result::Value},
      {"ChangeManager::editedVersion", Effect::Change, Result::Nothing},
      {"ChangeManager::destroyVersion", Effect::Change, Result::Nothing},
      {"ChangeManager::destroyVersions", Effect::Change, Result::Nothing},
      {"ChangeManager::getVersionFolder", Effect::VersionQuery, Result::Value},
      {"ChangeManager::canBeginPACStudy", Effect::VersionQuery, Result::Flag},
      {"ModelVersion::getLabel", Effect::Query, Result::Value},
      {"ModelVersion::setLabel", Effect::Change, Result::Nothing},
      {"ModelVersion::getStudyType", Effect::Query, Result::Value},
      {"ModelVersion::setStudyType", Effect::Change, Result::Nothing},
      {"ModelVersion::getVersionType", Effect::Query, Result::Value},
      {"ModelVersion::getStudyBaseline", Effect::Query, Result::Pointer},
      {"ModelVersion::isStudyBaseline", Effect::Query, Result::Flag},
      {"ModelVersion::clearStudy", Effect::Change, Result::Nothing},
      {"ModelVersion::removeFromStudy", Effect::Change, Result::Nothing},
      {"ModelVersion::isStudyCase", Effect::Query, Result::Flag},
      {"ModelVersion::setStudyCaseFlag", Effect::Change, Result::Nothing},
      {"ModelVersion::setReadOnlyVersion", Effect::Change, Result::Nothing},
      {"ModelVersion::getPrevious", Effect::Query, Result::Pointer},
      {"ModelVersion::beginNext", Effect::Query, Result::RangeBegin},
      {"ModelVersion::endNext", Effect::Query, Result::RangeEnd},
      {"ModelVersion::getDelta", Effect::Query, Result::Pointer},
      {"ModelVersion::getExternalData", Effect::Query, Result::Pointer},
      {"ModelVersionExternalData::begin", Effect::Query, Result::RangeBegin},
      {"ModelVersionExternalData::end", Effect::Query, Result::RangeEnd},
      {"ModelDelta::findEditOperation", Effect::Query, Result::Pointer},
      {"EditOperation::getKind", Effect::Query, Result::Value},
      {"EditOperation::getValue", Effect::Query, Result::Pointer},
      {"StudyTypeName::getStudyTypeName", Effect::Query, Result::Value},
      {"ModellingImpact::hasModellingImpact", Effect::Query, Result::Flag},
      {"ProjectStore::getStoreDirectoryName", Effect::VersionQuery, Result::Value},
      {"ProjectStore::remove", Effect::Change, Result::Flag},
      {"ProjectStore::copyResults", Effect::Change, Result::Flag},
      {"Directory::rename", Effect::Change, Result::Flag},
      {"Attribute::getOwnerEntity", Effect::Query, Result::Pointer},
      {"Attribute::getAttributePath", Effect::Query, Result::Value},
      {"Attribute::getType", Effect::Query, Result::Value},
      {"Attribute::isReadOnly", Effect::Query, Result::Flag},
      {"Attribute::isLocked", Effect::Query, Result::Flag},
      {"Attribute::isMonitor", Effect::Query, Result::Flag},
      {"Attribute::isInternal", Effect::Query, Result::Flag},
      {"Attribute::isInteger", Effect::Query, Result::Flag},
      {"Attribute::isReal", Effect::Query, Result::Flag},
      {"Attribute::isChoice", Effect::Query, Result::Flag},
      {"Attribute::isBoolean", Effect::Query, Result::Flag},
      {"Attribute::isEntityLink", Effect::Query, Result::Flag},
      {"Attribute::isTypeReference", Effect::Query, Result::Flag},
      {"Attribute::isEntityList", Effect::Query, Result::Flag},
      {"Attribute::isText", Effect::Query, Result::Flag},
      {"Attribute::isAttributeReference", Effect::Query, Result::Flag},
      {"Attribute::isEntity", Effect::Query, Result::Flag},
      {"Attribute::asEntity", Effect::Query, Result::Pointer},
      {"Attribute::asLink", Effect::Query, Result::Pointer},
      {"Attribute::asList", Effect::Query, Result::Pointer},
      {"Attribute::asTypeAttribute", Effect::Query, Result::Pointer},
      {"Attribute::getReferencedAttribute", Effect::Query, Result::Pointer},
      {"Attribute::hasValue", Effect::Query, Result::Flag},
      {"Attribute::getValueAsString", Effect::Query, Result::Value},
      {"Attribute::setValueFromString", Effect::Change, Result::Nothing},
      {"Attribute::assignValue", Effect::Change, Result::Nothing},
      {"Attribute::getStandardValue", Effect::Query, Result::Value},
      {"Attribute::isQuantity", Effect::Query, Result::Flag},
      {"Attribute::getUnits", Effect::Query, Result::Value},
      {"Attribute::getValueInUnits", Effect::Query, Result::Value},
      {"Attribute::isNumeric", Effect::Query, Result::Flag},
      {"Attribute::getNumericValue", Effect::Query, Result::Value},
      {"Attribute::getIntValue", Effect::Query, Result::Value},
      {"Attribute::getUpperIndex", Effect::Query, Result::Value},
      {"Attribute::setOptionalMinimum", Effect::Change, Result::Nothing},
      {"Attribute::setOptionalMaximum", Effect::Change, Result::Nothing},
      {"Attribute::getTypeDescription", Effect::Query, Result::Value},
      {"Attribute::clone", Effect::Query, Result::Pointer},
      {"CompositeAttribute::findAttribute", Effect::Query, Result::Pointer},
      {"CompositeAttribute::findAttribute(type)", Effect::Query, Result::Pointer},
      {"Entity::getOwnerEntityLink", Effect::Query, Result::Pointer},
      {"Entity::getName", Effect::Query, Result::Value},
      {"EntityLink::getLinkedEntity", Effect::Query, Result::Pointer},
      {"ListAttribute::getCount", Effect::Query, Result::Value},
      {"ListAttribute::getEntity", Effect::Query, Result::Pointer},
      {"ListAttribute::indexOf", Effect::Query, Result::Value},
      {"ListAttribute::moveEntity", Effect::Change, Result::Flag},
      {"TypeAttribute::getTypeValue", Effect::Query, Result::Value},
      {"TypeAttribute::hasSameTypes", Effect::Query, Result::Flag},
  };
  return operations;
}

const HostOperation *findHostOperation(std::string_view name) {
  static const auto &index = []() -> const std::unordered_map<std::string_view, const HostOperation *> & {
    auto &byName = *new std::unordered_map<std::string_view, const HostOperation *>;
    for (const HostOperation &operation : hostOperations()) {
      byName.emplace(operation.name, &operation);
    }
    return byName;
  }();
  const auto found = index.find(name);
  return found == index.end() ? nullptr : found->second;
}

} // namespace HostTesting
