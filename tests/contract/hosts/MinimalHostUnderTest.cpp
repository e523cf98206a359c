#include "examples/minimal-host/MinimalHost.h"
#include "tests/contract/hosts/Hosts.h"

namespace HostContract {

namespace {

using EntityModel::TypeRef;
using MinimalHost::Kind;

class MinimalHostUnderTest final : public HostUnderTest {
public:
  HostModel::Host &host() override { return m_host; }
  void open() override { m_host.open(); }
  void close() override { m_host.close(); }

private:
  MinimalHost::Host m_host{{{TypeRef::fromLabel("Parts"), Kind::List}},
                           {{"Part",
                             {{TypeRef::fromLabel("Width"), Kind::Real, "4"},
                              {TypeRef::fromLabel("Ratio"), Kind::Real, "0.5"},
                              {TypeRef::fromLabel("Open"), Kind::Boolean, "1"},
                              {TypeRef::fromLabel("Note"), Kind::Text},
                              {TypeRef::fromLabel("Mass"), Kind::Real, "", true},
                              {TypeRef::fromLabel("Next"), Kind::Link},
                              {TypeRef::fromLabel("Parts"), Kind::List}}}}};
};

} // namespace

HostKind minimalHost() {
  return {"MinimalHost", {Capability::NotifyingSwitches, Capability::QuietCreation}, [] {
            return std::make_unique<MinimalHostUnderTest>();
          }};
}

} // namespace HostContract
