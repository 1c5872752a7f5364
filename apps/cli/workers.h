// Many pieces of work at once.
#pragma once

#include <cstddef>
#include <functional>

namespace lumetra {

/// Calls `makeWorker` once for each of `jobs` threads, and what it returns for the numbers from 0
/// to `count` − 1, each once, in order of their start. Stops handing out numbers once a signal has
/// come. Calls `tick` in the calling thread a few times a second, and returns when all have ended.
///
/// A worker throws Interrupted to give up its piece; any other exception is rethrown here.
void runWorkers(int jobs, std::size_t count,
                const std::function<std::function<void(std::size_t)>()>& makeWorker,
                const std::function<void()>& tick);

/// How many threads each of several pieces can have that are worked on at once.
int jobsOfEach(int jobs, std::size_t pieces);

/// How many threads there are to be by default.
int defaultJobs();

} // namespace lumetra
