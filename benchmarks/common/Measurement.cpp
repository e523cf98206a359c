#include "benchmarks/common/Measurement.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <malloc.h>
#include <memory>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Benchmarking {

namespace {

using Clock = double (*)();

double secondsOf(const Way &way, std::size_t times, Clock now) {
  const double begin = now();
  way(times);
  return now() - begin;
}

double secondsBy(clockid_t clock) {
  std::timespec time{};
  if (clock_gettime(clock, &time) != 0) {
    throw std::system_error(errno, std::generic_category(), "clock_gettime");
  }
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

std::vector<double> mediansOf(std::vector<std::vector<double>> seconds) {
  std::vector<double> medians;
  medians.reserve(seconds.size());
  for (std::vector<double> &of : seconds) {
    medians.push_back(median(std::move(of)));
  }
  return medians;
}

// How often a way does its thing within one repetition.
std::size_t calibrate(const Way &way, double seconds, Clock now) {
  std::size_t times = 1;
  double taken = secondsOf(way, times, now);
  while (taken < seconds / 4.0) {
    times *= 2;
    taken = secondsOf(way, times, now);
  }
  const double wanted = std::ceil(static_cast<double>(times) * seconds / taken);
  return std::max<std::size_t>(1, static_cast<std::size_t>(wanted));
}

} // namespace

double processorSeconds() {
  return secondsBy(CLOCK_PROCESS_CPUTIME_ID);
}

double wallSeconds() {
  return secondsBy(CLOCK_MONOTONIC);
}

std::vector<double> measureInterleaved(const std::vector<Way> &ways, const Effort &effort, double (*now)()) {
  std::vector<std::size_t> times;
  times.reserve(ways.size());
  for (const Way &way : ways) {
    times.push_back(calibrate(way, effort.secondsPerRepetition, now));
  }
  std::vector<std::vector<double>> seconds(ways.size());
  for (std::size_t repetition = 0; repetition < effort.repetitions; ++repetition) {
    for (std::size_t turn = 0; turn < ways.size(); ++turn) {
      const std::size_t way = (repetition + turn) % ways.size();
      seconds[way].push_back(secondsOf(ways[way], times[way], now) / static_cast<double>(times[way]));
    }
  }
  return mediansOf(std::move(seconds));
}

std::vector<double> measureOneByOne(const std::vector<TimedWay> &ways, std::size_t repetitions) {
  std::vector<std::vector<double>> seconds(ways.size());
  for (std::size_t repetition = 0; repetition < repetitions; ++repetition) {
    for (std::size_t turn = 0; turn < ways.size(); ++turn) {
      const std::size_t way = (repetition + turn) % ways.size();
      seconds[way].push_back(ways[way]());
    }
  }
  return mediansOf(std::move(seconds));
}

void keepMemory() {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
  constexpr std::size_t kMost = std::size_t{4} << 30U;
  constexpr std::size_t kPiece = std::size_t{64} << 20U;
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t free = static_cast<std::size_t>(sysconf(_SC_AVPHYS_PAGES)) * page;
  std::vector<std::unique_ptr<char[]>> pieces;
  for (std::size_t touched = 0; touched < std::min(kMost, free / 2); touched += kPiece) {
    pieces.emplace_back(new char[kPiece]);
    for (std::size_t offset = 0; offset < kPiece; offset += page) {
      static_cast<volatile char *>(pieces.back().get())[offset] = 1;
    }
  }
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) {
    return *middle;
  }
  return (*std::max_element(values.begin(), middle) + *middle) / 2.0;
}

void Ratios::add(const std::string &name, double ratio) {
  m_ratios.push_back(ratio);
  m_names.push_back(name);
  if (ratio > m_ratios[m_worst]) {
    m_worst = m_ratios.size() - 1;
  }
}

double Ratios::geometricMean() const {
  double sum = 0.0;
  for (const double ratio : m_ratios) {
    sum += std::log(ratio);
  }
  return std::exp(sum / static_cast<double>(m_ratios.size()));
}

double Ratios::worst() const {
  return m_ratios.at(m_worst);
}

std::string Ratios::worstName() const {
  return m_names.at(m_worst);
}

} // namespace Benchmarking
