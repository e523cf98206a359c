#include "tests/contract/Contract.h"

#include "tests/contract/Absence.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>

namespace HostContract {

namespace {

class RuleCase : public testing::Test {
public:
  RuleCase(const Rule &rule, const HostKind &kind) : m_rule(rule), m_kind(kind) {}

  void TestBody() override {
    const Capabilities lacking = missing(m_rule, m_kind);
    if (lacking.empty()) {
      runRule(m_rule, m_kind);
      return;
    }
    for (const Capability capability : lacking) {
      std::printf("not applicable: %s has no %s\n", m_kind.name.c_str(), nameOf(capability).c_str());
      Scene scene(m_kind);
      expectAbsent(scene, capability);
    }
  }

private:
  Rule m_rule;
  HostKind m_kind;
};

std::vector<Rule> collectRules() {
  std::vector<Rule> all;
  for (auto *subject :
       {treeRules,      markRules,   creationRules, labelRules,        destructionRules, readOnlyRules,
        switchRules,    deltaRules,  pointerRules,  studyStorageRules, editorRules,      managerRules,
        attributeRules, valueRules,  copyRules,     unitRules,         storyRules,       lifetimeRules,
        userRules,      savingRules, storeRules}) {
    std::vector<Rule> rules = subject();
    std::move(rules.begin(), rules.end(), std::back_inserter(all));
  }
  return all;
}

} // namespace

const std::vector<Rule> &contractRules() {
  static const std::vector<Rule> rules = collectRules();
  return rules;
}

Capabilities missing(const Rule &rule, const HostKind &kind) {
  Capabilities lacking;
  std::set_difference(rule.needs.begin(), rule.needs.end(), kind.capabilities.begin(),
                      kind.capabilities.end(), std::inserter(lacking, lacking.end()));
  return lacking;
}

void runRule(const Rule &rule, const HostKind &kind, const std::function<void()> &prepare,
             const std::function<void()> &inspect) {
  const auto call = [](const std::function<void()> &function) {
    if (function) {
      function();
    }
  };
  try {
    Scene scene(kind);
    call(prepare);
    try {
      rule.body(scene);
    } catch (const std::exception &error) {
      ADD_FAILURE() << error.what();
    }
    call(inspect);
  } catch (const std::exception &error) {
    ADD_FAILURE() << "The host was not set up: " << error.what();
  }
}

void registerContract(const HostKind &kind) {
  const std::string suite = kind.name + "Contract";
  for (const Rule &rule : contractRules()) {
    const std::string name = rule.name + (missing(rule, kind).empty() ? "" : "_NotApplicable");
    // The path analyser does not see that GoogleTest keeps what this allocates.
#ifndef __clang_analyzer__
    testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [rule, kind]() -> testing::Test * { return new RuleCase(rule, kind); });
#endif
  }
}

} // namespace HostContract
