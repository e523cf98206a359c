#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

namespace HostTesting {

/// The proxies of objects of one class, one for each object, owned by the table.
template <class T> class ProxyTable {
public:
  bool isProxy(const T *object) const { return m_originals.count(object) != 0; }

  /// The original behind a proxy; any other pointer as it is.
  T *original(T *object) const {
    const auto found = m_originals.find(object);
    return found == m_originals.end() ? object : found->second;
  }

  /// The proxy of an original; null when it has none.
  T *find(const T *original) const {
    const auto found = m_proxies.find(original);
    return found == m_proxies.end() ? nullptr : found->second;
  }

  T *add(T *original, std::unique_ptr<T> proxy) {
    T *result = proxy.get();
    m_proxies[original] = result;
    m_originals[result] = original;
    m_owned.push_back(std::move(proxy));
    return result;
  }

private:
  std::unordered_map<const T *, T *> m_proxies;
  std::unordered_map<const T *, T *> m_originals;
  std::vector<std::unique_ptr<T>> m_owned;
};

} // namespace HostTesting
