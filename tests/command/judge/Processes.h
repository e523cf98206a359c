#pragma once

#include "tests/fault/judge/Command.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace CommandTests {

/// What everything that the command starts carries in its environment, and nothing that it does takes away.
constexpr const char *kMarkVariable = "OPTSTUDY_TEST_MARK";

/// Waits until something is so. \return false when it is not after so long
bool waitUntil(const std::function<bool()> &isSo,
               std::chrono::milliseconds longest = std::chrono::milliseconds(60000));

/// Waits for a process; one that has not ended after a minute is killed. \return false then
bool waitAtMostAMinute(int process, FaultTests::Ending &ending);

/// Waits until a process has taken notice of a signal that it was sent; two that wait together would be one.
void waitUntilDelivered(int process, int signal);

/// Waits until no process carries the mark. \return those that do after ten seconds, "" for none
std::string survivorsOf(const std::string &mark);
void killMarked(const std::string &mark);

} // namespace CommandTests
