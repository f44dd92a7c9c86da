#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include "bench/Reference.h"

/// Seconds that `work` takes in this process and in those that it starts and waits for.
template <typename Work>
double SecondsOf(Work work) {
  const double before = WorkSeconds();
  work();
  return WorkSeconds() - before;
}

/// Seconds by the clock, for work that two threads share: what a user waits.
template <typename Work>
double ElapsedSecondsOf(Work work) {
  const auto before = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
}

inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

struct Timing {
  double Measured;
  double Reference;
};

/// Medians of two timings, each a procedure that returns seconds. They take turns, so that whatever
/// else the machine does meets both.
template <typename Measured, typename Reference>
Timing TakeTurns(int rounds, Measured measured, Reference reference) {
  std::vector<double> own;
  std::vector<double> other;
  for (int i = 0; i < rounds; ++i) {
    other.push_back(reference());
    own.push_back(measured());
  }
  return {Median(own), Median(other)};
}

template <typename Measured>
double MedianOf(int rounds, Measured measured) {
  std::vector<double> own;
  for (int i = 0; i < rounds; ++i) own.push_back(measured());
  return Median(own);
}
