#include "testing/RecordingHost.h"

#include <stdexcept>
#include <utility>

namespace HostTesting {

namespace {

// An object that registers itself while it is made cannot be asked for its state yet.
bool belongsToRegistration(const std::string &operation) {
  return operation == "ObserverManager::addObserver" || operation == "ObserverManager::removeObserver" ||
         operation == "EntityManager::getObserverManager" || operation == "Host::getEntityManager";
}

void requireOperation(const char *caller, const std::string &operation) {
  if (findHostOperation(operation) == nullptr) {
    throw std::invalid_argument(std::string(caller) + ": No such operation: " + operation);
  }
}

} // namespace

RecordingHost::RecordingHost(HostModel::Host &host) : WrappedHost(host) {}

RecordingHost::~RecordingHost() = default;

void RecordingHost::setStateQuery(StateQuery query) {
  m_stateQuery = std::move(query);
}

void RecordingHost::recordEverything() {
  m_recordsEverything = true;
}

void RecordingHost::record(const std::string &operation) {
  requireOperation("RecordingHost::record", operation);
  m_ignored.erase(operation);
  m_recorded.insert(operation);
}

void RecordingHost::ignore(const std::string &operation) {
  requireOperation("RecordingHost::ignore", operation);
  m_recorded.erase(operation);
  m_ignored.insert(operation);
}

void RecordingHost::clear() {
  m_calls.clear();
}

std::vector<std::string> RecordingHost::texts() const {
  std::vector<std::string> result;
  for (const RecordedCall &call : m_calls) {
    if (!call.isByHost) {
      result.push_back(call.text);
    }
  }
  return result;
}

std::vector<std::string> RecordingHost::textsWithState() const {
  std::vector<std::string> result;
  for (const RecordedCall &call : m_calls) {
    if (!call.isByHost) {
      result.push_back(std::string(call.state.isEditing ? "E" : "-") + (call.state.isSolving ? "S " : "- ") +
                       call.text);
    }
  }
  return result;
}

std::vector<std::string> RecordingHost::tree() const {
  std::vector<std::string> result;
  for (const RecordedCall &call : m_calls) {
    result.push_back(std::string(2 * static_cast<std::size_t>(call.depth), ' ') + call.text);
  }
  return result;
}

bool RecordingHost::isWanted(const HostCall &call) const {
  if (m_isQuerying || m_ignored.count(call.operation.name) != 0) {
    return false;
  }
  return m_recordsEverything || m_recorded.count(call.operation.name) != 0 ||
         (call.operation.effect != OperationEffect::Query && !call.isDetached);
}

StudyState RecordingHost::queryState(const std::string &operation) {
  if (!m_stateQuery || belongsToRegistration(operation)) {
    return {};
  }
  m_isQuerying = true;
  const StudyState state = m_stateQuery();
  m_isQuerying = false;
  return state;
}

Verdict RecordingHost::intercept(const HostCall &call) {
  if (isWanted(call)) {
    RecordedCall recorded;
    recorded.operation = call.operation.name;
    recorded.text = recorded.operation + "(" + call.arguments() + ")";
    recorded.state = queryState(recorded.operation);
    recorded.depth = call.depth;
    recorded.isByHost = call.isByHost;
    m_calls.push_back(std::move(recorded));
  }
  return Verdict::Proceed;
}

} // namespace HostTesting
