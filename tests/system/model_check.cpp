#include "system/model_check.h"

#include "model/endpoint.h"
#include "model/run_model.h"

void ModelCheckedTest::RunBoth(const std::vector<std::string>& arguments) {
  model::Store expected = store.Contents();
  const Finished real = Ostrafel(arguments);

  model::ReplayEndpoint replay(recording.flights);
  const model::Outcome replayed = model::RunModel(replay, arguments);
  if (const auto divergence = replay.FirstDivergence()) FAIL() << model::Describe(*divergence);
  ASSERT_EQ(real.out, replayed.out);
  ASSERT_EQ(real.err, replayed.err);
  ASSERT_EQ(real.status, replayed.status);

  model::MemoryEndpoint memory(expected);
  const model::Outcome outcome = model::RunModel(memory, arguments);
  ASSERT_EQ(real.err, outcome.err);
  ASSERT_EQ(real.status, outcome.status);
  ASSERT_EQ(store.Dump(), model::Dump(expected));
}
