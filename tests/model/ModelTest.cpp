#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/model/ModelRun.h"

using model::ModelRun;

namespace {

int FromEnvironment(const char* name, int usual) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::stoi(value) : usual;
}

// MODEL_SEED and MODEL_STEPS replay one run; MODEL_RUNS makes as many.
TEST(Model, TheProgramDoesWhatAPlainModelOfItSays) {
  const int first = FromEnvironment("MODEL_SEED", 1);
  const int steps = FromEnvironment("MODEL_STEPS", 1000);
  const int runs = FromEnvironment("MODEL_RUNS", std::getenv("MODEL_SEED") != nullptr ? 1 : 30);
  for (int seed = first; seed < first + runs && !HasFailure(); ++seed) ModelRun(seed).Go(steps);
}

// ENDURANCE_STEPS=450000 is the work of a month.
TEST(Endurance, HoldsNoMoreAfterAMonthsWork) {
  ModelRun month(FromEnvironment("MODEL_SEED", 1), true);
  month.Go(FromEnvironment("ENDURANCE_STEPS", 5000));
  std::printf("%d changes, %d reports with a popup each, %d rebuilds, %d starts\n", month.Changes(),
              month.Reports, month.Rebuilds, month.Starts);
  if (HasFailure()) return;
  for (std::size_t i = 0; i < month.After.Things.size(); ++i) {
    const auto& [what, count, slack] = month.After.Things[i];
    const long before = month.Before.Things.at(i).Count;
    std::printf("%s: %ld, then %ld\n", what, before, count);
    EXPECT_LE(count, before + slack) << what;
  }
  const auto& [what, memory, slack] = month.After.Memory;
  std::printf("%s: %ld kB, then %ld kB\n", what, month.Before.Memory.Count, memory);
#ifndef __SANITIZE_ADDRESS__  // which keeps back what is freed
  // A line of the log, with long names among them, takes up to 300 bytes.
  EXPECT_LT(memory, month.Before.Memory.Count + slack + month.Reports * 300 / 1024);
#endif
}

}  // namespace
