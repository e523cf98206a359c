#pragma once

#include "tests/contract/HostUnderTest.h"

#include <functional>
#include <string>
#include <vector>

namespace HostContract {

class Scene;

/// One thing that the library relies on, or that a user of a study does.
struct Rule {
  /// "<Subject>_<Behaviour>", unique.
  std::string name;
  /// Checks it with the assertions of GoogleTest.
  void (*body)(Scene &scene);
  Capabilities needs = {};
};

/// Every rule, subject by subject.
const std::vector<Rule> &contractRules();

/// What a rule asks for and the host does not have.
Capabilities missing(const Rule &rule, const HostKind &kind);

/// Runs a rule over a new host. Exceptions count as failures.
/// \param prepare  called once the host is set up
/// \param inspect  called when the rule has been looked at, before the project is closed
void runRule(const Rule &rule, const HostKind &kind, const std::function<void()> &prepare = {},
             const std::function<void()> &inspect = {});

/// Registers one test case per rule in the suite "<name of the host>Contract", before the tests are run. A rule that
/// does not apply is registered as "<rule>_NotApplicable"; it checks that the host really lacks the capability, and
/// prints which one.
void registerContract(const HostKind &kind);

/// \name The rules by subject
/// @{
std::vector<Rule> attributeRules();
std::vector<Rule> copyRules();
std::vector<Rule> creationRules();
std::vector<Rule> deltaRules();
std::vector<Rule> destructionRules();
std::vector<Rule> editorRules();
std::vector<Rule> labelRules();
std::vector<Rule> lifetimeRules();
std::vector<Rule> managerRules();
std::vector<Rule> markRules();
std::vector<Rule> pointerRules();
std::vector<Rule> readOnlyRules();
std::vector<Rule> savingRules();
std::vector<Rule> storeRules();
std::vector<Rule> storyRules();
std::vector<Rule> studyStorageRules();
std::vector<Rule> switchRules();
std::vector<Rule> treeRules();
std::vector<Rule> unitRules();
std::vector<Rule> userRules();
std::vector<Rule> valueRules();
/// @}

} // namespace HostContract
