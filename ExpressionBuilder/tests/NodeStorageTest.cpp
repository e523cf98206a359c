#include "ExpressionBuilder/src/NodeStorage.h"

#include "ExpressionBuilder/ElementConstant.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <thread>
#include <utility>
#include <vector>

namespace ExpressionBuilder {
namespace {

constexpr std::size_t kNodes = 5000;

TEST(NodeStorageTest, Nodes_OverlapNeitherEachOtherNorTheirChunks) {
  std::vector<std::pair<unsigned char *, std::size_t>> nodes;
  for (std::size_t i = 0; i < kNodes; ++i) {
    const std::size_t size = 8 + i * 7 % 300;
    auto *const memory = static_cast<unsigned char *>(NodeStorage::allocate(size));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(void *), 0U);
    std::memset(memory, static_cast<int>(i % 251), size);
    nodes.emplace_back(memory, size);
  }
  int damaged = 0;
  for (std::size_t i = 0; i < kNodes; ++i) {
    for (std::size_t k = 0; k < nodes[i].second; ++k) {
      damaged += nodes[i].first[k] == i % 251 ? 0 : 1;
    }
  }
  EXPECT_EQ(damaged, 0);
  for (const auto &node : nodes) {
    NodeStorage::release(node.first);
  }
}

TEST(NodeStorageTest, NodesThatComeAndGo_NeedFewPlaces) {
  std::set<const void *> places;
  for (std::size_t i = 0; i < kNodes; ++i) {
    const ElementConstant<double> *const node = new ElementConstant<double>(1.5);
    places.insert(node);
    delete node;
  }
  // Each one is gone before the next one is made, so the place is used again; the sanitizers' allocator keeps
  // places back for a while.
#ifndef OPTSTUDY_ADDRESS_SANITIZER
  EXPECT_LT(places.size(), 10U);
#else
  EXPECT_LE(places.size(), kNodes);
#endif
}

TEST(NodeStorageTest, NodesOfEndedThreads_LiveOnAndAreReleasedByOthers) {
  std::vector<std::unique_ptr<ElementAbstract>> nodes[2];
  for (auto &list : nodes) {
    std::thread([&list] {
      for (std::size_t i = 0; i < kNodes; ++i) {
        list.push_back(std::make_unique<ElementConstant<double>>(static_cast<double>(i)));
      }
      list.resize(kNodes - 10);
    }).join();
  }
  double sum = 0.0;
  for (const auto &node : nodes[0]) {
    sum += static_cast<const ElementConstant<double> &>(*node).value();
  }
  EXPECT_EQ(sum, 4990.0 * 4989.0 / 2.0);
  nodes[0].clear();
  std::thread([&nodes] { nodes[1].clear(); }).join();
  EXPECT_TRUE(nodes[1].empty());
}

TEST(NodeStorageTest, ThreadsReleasingEachOthersNodes_LoseNone) {
  for (int round = 0; round < 20; ++round) {
    std::vector<std::unique_ptr<ElementAbstract>> mine;
    for (std::size_t i = 0; i < kNodes / 10; ++i) {
      mine.push_back(std::make_unique<ElementConstant<int>>(static_cast<int>(i)));
    }
    std::thread other([&mine] {
      for (std::size_t i = 0; i < mine.size(); i += 2) {
        mine[i].reset();
      }
    });
    std::vector<std::unique_ptr<ElementAbstract>> more;
    for (std::size_t i = 0; i < kNodes; ++i) {
      more.push_back(std::make_unique<ElementConstant<int>>(7));
      if (i % 3 == 0) {
        more.clear();
      }
    }
    other.join();
    int sum = 0;
    for (std::size_t i = 1; i < mine.size(); i += 2) {
      sum += static_cast<const ElementConstant<int> &>(*mine[i]).value();
    }
    EXPECT_EQ(sum, 250 * 250);
  }
}

/// Makes nodes when its thread ends.
struct LateMaker {
  ~LateMaker() {
    if (nodes != nullptr) {
      for (int i = 0; i < 3; ++i) {
        nodes->push_back(std::make_unique<ElementConstant<double>>(1.5 + i));
      }
    }
  }
  std::vector<std::unique_ptr<ElementAbstract>> *nodes = nullptr;
};

TEST(NodeStorageTest, NodesMadeWhileAThreadEnds_LiveOnAndAreReleasedByOthers) {
  std::vector<std::unique_ptr<ElementAbstract>> nodes;
  std::thread([&nodes] {
    // Made before the thread's first node, it goes after all that the thread has for its nodes.
    thread_local LateMaker maker;
    maker.nodes = &nodes;
    const ElementConstant<double> *const first = new ElementConstant<double>(0.5);
    delete first;
  }).join();
  ASSERT_EQ(nodes.size(), 3U);
  const std::set<const void *> places{nodes[0].get(), nodes[1].get(), nodes[2].get()};
  EXPECT_EQ(places.size(), 3U);
  EXPECT_TRUE(nodes[2]->equals(ElementConstant<double>(3.5)));
  nodes.clear();
}

TEST(NodeStorageTest, Release_OfNothing_TakesNoNodeAway) {
  auto *const node = static_cast<unsigned char *>(NodeStorage::allocate(16));
  std::memset(node, 0x5A, 16);
  NodeStorage::release(nullptr);
  auto *const next = static_cast<unsigned char *>(NodeStorage::allocate(16));
  EXPECT_NE(next, node);
  EXPECT_EQ(node[15], 0x5A);
  NodeStorage::release(next);
  NodeStorage::release(node);
}

} // namespace
} // namespace ExpressionBuilder
