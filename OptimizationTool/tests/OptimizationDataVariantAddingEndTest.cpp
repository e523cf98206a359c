// A study may end inside any call of the host while it makes a row: then there is no row, and so no index of one.

#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace OptimizationTool {
namespace {

using EmbeddedHost::HostBehaviour;
using StudyTesting::RecordedStudy;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

// The call inside which the study ended, and the index that addVariant then gave; one for each call.
using Answers = std::vector<std::pair<std::string, std::size_t>>;

Answers answers(const HostBehaviour &behaviour) {
  Answers all;
  for (int number = 1;; ++number) {
    RecordedStudy study(behaviour);
    study.begin();
    study.addRow("A", "11", "21");
    std::string call;
    study.hooked().runBefore(number, [&study, &call] {
      call = study.host().texts().back();
      study.drop();
    });
    const std::size_t index = study.data().addVariant({"13", "23"}, "C", kAtEnd);
    if (study.isAlive()) {
      return all;
    }
    all.emplace_back(call.substr(0, call.find('(')), index);
  }
}

TEST(OptimizationDataVariantAddingEndTest, SilentHost_ZeroUntilTheRowIsThere) {
  EXPECT_EQ(answers({false, false}), (Answers{
                                         {"ChangeManager::startNewAlternate", 0U},
                                         {"ModelVersion::setLabel", 0U},
                                         {"ModelVersion::clearStudy", 0U},
                                         {"ModelVersion::setReadOnlyVersion", 0U},
                                         {"ChangeManager::setCurrentVersion", 0U},
                                         {"ObserverManager::broadcastChangedVersion", 0U},
                                         {"ChangeManager::editedVersion", 0U},
                                         {"ProjectStore::remove", 0U},
                                         {"ProjectStore::copyResults", 0U},
                                         {"EntityManager::checkSelectionsAreValid", 0U},
                                         {"EntityManager::setNeedsSave", 0U},
                                         {"EntityManager::setValue", 0U},
                                         {"EntityManager::setValue", 0U},
                                         {"EntityManager::setValue", 0U},
                                         {"ChangeManager::setCurrentVersion", 2U},
                                         {"ObserverManager::broadcastChangedVersion", 2U},
                                     }));
}

TEST(OptimizationDataVariantAddingEndTest, NewVersionsBecomeCurrent_ZeroUntilTheRowIsThere) {
  EXPECT_EQ(answers({true, true}), (Answers{
                                       {"ChangeManager::startNewAlternate", 0U},
                                       {"ModelVersion::setLabel", 0U},
                                       {"ModelVersion::clearStudy", 0U},
                                       {"ModelVersion::setReadOnlyVersion", 0U},
                                       {"ChangeManager::editedVersion", 0U},
                                       {"ProjectStore::remove", 0U},
                                       {"ProjectStore::copyResults", 0U},
                                       {"EntityManager::checkSelectionsAreValid", 0U},
                                       {"EntityManager::setNeedsSave", 0U},
                                       {"EntityManager::setValue", 0U},
                                       {"EntityManager::setValue", 0U},
                                       {"EntityManager::setValue", 0U},
                                       {"ChangeManager::setCurrentVersion", 2U},
                                       {"ObserverManager::broadcastChangedVersion", 2U},
                                   }));
}

} // namespace
} // namespace OptimizationTool
