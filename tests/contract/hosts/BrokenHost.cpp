#include "tests/contract/hosts/BrokenHost.h"

#include "HostModel/Attribute.h"
#include "HostModel/ModelVersion.h"

#include <utility>

namespace HostContract {

void BrokenHost::healAll() {
  heal();
  m_actions.clear();
}

HostTesting::Verdict BrokenHost::intercept(const HostTesting::HostCall &call) {
  const auto found = m_actions.find(call.operation.name);
  if (found != m_actions.end() && found->second && !call.isByHost) {
    ++m_actionsDone;
    // Away for its own duration, so that it may call the host itself.
    const std::function<void()> action = std::exchange(found->second, nullptr);
    action();
    found->second = action;
  }
  return FaultyHost::intercept(call);
}

BreakableHostUnderTest::BreakableHostUnderTest(std::unique_ptr<HostUnderTest> sound)
    : m_sound(std::move(sound)), m_wrapper(std::make_unique<BrokenHost>(m_sound->host())) {}

BreakableHostUnderTest::~BreakableHostUnderTest() = default;

void BreakableHostUnderTest::close() {
  m_wrapper->healAll();
  m_sound->close();
}

bool BreakableHostUnderTest::switchByUser(EntityModel::ModelVersion *version) {
  return m_sound->switchByUser(m_wrapper->original(version));
}

bool BreakableHostUnderTest::editByUser(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                                        const std::string &text) {
  return m_sound->editByUser(m_wrapper->original(entity), path, text);
}

bool BreakableHostUnderTest::relabelByUser(EntityModel::ModelVersion *version, const std::string &label) {
  return m_sound->relabelByUser(m_wrapper->original(version), label);
}

bool BreakableHostUnderTest::destroyByUser(EntityModel::ModelVersion *version) {
  return m_sound->destroyByUser(m_wrapper->original(version));
}

bool BreakableHostUnderTest::reopen() {
  m_wrapper.reset();
  const bool isOpen = m_sound->reopen();
  m_wrapper = std::make_unique<BrokenHost>(m_sound->host());
  return isOpen;
}

} // namespace HostContract
