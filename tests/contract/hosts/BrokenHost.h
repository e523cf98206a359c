#pragma once

#include "testing/FaultyHost.h"
#include "tests/contract/HostUnderTest.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace HostContract {

/// A host that is sound until it is given a defect.
class BrokenHost final : public HostTesting::FaultyHost {
public:
  explicit BrokenHost(HostModel::Host &sound) : FaultyHost(sound) {}

  /// Does something else besides, whenever the library or a case has called the operation and before the host acts.
  void onCall(const std::string &operation, std::function<void()> action) {
    m_actions[operation] = std::move(action);
  }
  void healAll();
  /// How often a defect has shown.
  int defectsShown() const { return strikes() + m_actionsDone; }

protected:
  HostTesting::Verdict intercept(const HostTesting::HostCall &call) override;

private:
  std::map<std::string, std::function<void()>> m_actions;
  int m_actionsDone = 0;
};

/// A sound host behind a wrapper that can break it.
class BreakableHostUnderTest final : public HostUnderTest {
public:
  explicit BreakableHostUnderTest(std::unique_ptr<HostUnderTest> sound);
  ~BreakableHostUnderTest() override;

  BrokenHost &wrapper() { return *m_wrapper; }

  HostModel::Host &host() override { return *m_wrapper; }
  void open() override { m_sound->open(); }
  /// Without the defects, which are the rule's business and not the closing's.
  void close() override;

  bool switchByUser(EntityModel::ModelVersion *version) override;
  bool editByUser(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                  const std::string &text) override;
  bool relabelByUser(EntityModel::ModelVersion *version, const std::string &label) override;
  bool destroyByUser(EntityModel::ModelVersion *version) override;
  bool closeByUser() override { return m_sound->closeByUser(); }
  void setSolverRuns(bool runs) override { m_sound->setSolverRuns(runs); }
  bool save(const std::string &path) override { return m_sound->save(path); }
  bool reopen() override;

private:
  std::unique_ptr<HostUnderTest> m_sound;
  std::unique_ptr<BrokenHost> m_wrapper;
};

} // namespace HostContract
