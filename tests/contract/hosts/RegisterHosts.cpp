// Runs the contract over the hosts of this tree.

#include "tests/contract/Contract.h"
#include "tests/contract/hosts/Hosts.h"

namespace HostContract {

namespace {

bool registerHosts() {
  registerContract(minimalHost());
  for (const HostKind &kind : embeddedHosts()) {
    registerContract(kind);
  }
  return true;
}

// Like the cases of any suite these have to be known before main() runs them.
[[maybe_unused]] const bool kAreRegistered = registerHosts();

} // namespace

} // namespace HostContract
