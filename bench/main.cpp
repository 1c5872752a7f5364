#include "rivals.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    cv::setNumThreads(1); // the library has one thread; so have its rivals
    registerLevels();
    registerColourise();
    registerComposite();
    registerRender();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
}
