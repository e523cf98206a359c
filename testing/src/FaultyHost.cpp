#include "testing/FaultyHost.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace HostTesting {

namespace {

const HostOperation &operationNamed(const std::string &name) {
  const HostOperation *operation = findHostOperation(name);
  if (operation == nullptr) {
    throw std::invalid_argument("FaultyHost: No such operation: " + name);
  }
  return *operation;
}

bool isBroadcast(const HostOperation &operation) {
  return std::string_view(operation.name).find("ObserverManager::broadcast") == 0;
}

} // namespace

FaultyHost::FaultyHost(HostModel::Host &host) : WrappedHost(host) {}

FaultyHost::~FaultyHost() = default;

std::vector<std::string> FaultyHost::operations() {
  std::vector<std::string> names;
  for (const HostOperation &operation : hostOperations()) {
    names.emplace_back(operation.name);
  }
  return names;
}

std::vector<FaultKind> FaultyHost::kinds(const std::string &operation) {
  switch (operationNamed(operation).result) {
  case OperationResult::Pointer:
    return {FaultKind::Null, FaultKind::Throws};
  case OperationResult::RangeEnd:
    return {FaultKind::Throws};
  case OperationResult::Nothing:
  case OperationResult::Flag:
  case OperationResult::Value:
  case OperationResult::RangeBegin:
    break;
  }
  return {FaultKind::Refused, FaultKind::Throws};
}

void FaultyHost::fail(const std::string &operation, FaultKind kind, int occurrence) {
  const std::vector<FaultKind> possible = kinds(operation);
  if (std::find(possible.begin(), possible.end(), kind) == possible.end()) {
    throw std::invalid_argument("FaultyHost: Operation cannot fail in this kind: " + operation);
  }
  m_faults[operation] = {kind, occurrence, 0};
}

void FaultyHost::heal() {
  m_faults.clear();
  m_occurrences.clear();
  m_strikes = 0;
}

void FaultyHost::setStrikeAction(StrikeAction action) {
  m_strikeAction = std::move(action);
}

int FaultyHost::occurrences(const std::string &operation) const {
  const auto found = m_occurrences.find(operationNamed(operation).name);
  return found == m_occurrences.end() ? 0 : found->second;
}

Verdict FaultyHost::intercept(const HostCall &call) {
  if (m_isStriking || (call.isByHost && !isBroadcast(call.operation))) {
    return Verdict::Proceed;
  }
  ++m_occurrences[call.operation.name];
  const auto found = m_faults.find(call.operation.name);
  if (found == m_faults.end()) {
    return Verdict::Proceed;
  }
  Fault &fault = found->second;
  ++fault.seen;
  if (fault.occurrence != kAlways && fault.seen != fault.occurrence) {
    return Verdict::Proceed;
  }
  ++m_strikes;
  const FaultKind kind = fault.kind;
  if (m_strikeAction) {
    m_isStriking = true;
    m_strikeAction(call);
    m_isStriking = false;
  }
  if (kind == FaultKind::Throws) {
    throw std::runtime_error("injected fault");
  }
  return Verdict::Refuse;
}

} // namespace HostTesting
