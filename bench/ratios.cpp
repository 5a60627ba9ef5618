#include "ratios.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

std::vector<std::pair<std::string, std::vector<std::string>>>& table() {
    static std::vector<std::pair<std::string, std::vector<std::string>>> rows;
    return rows;
}

std::string readable(double seconds) {
    char text[32];
    if (seconds < 1e-3)
        std::snprintf(text, sizeof text, "%.1f us", seconds * 1e6);
    else if (seconds < 1)
        std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
    else
        std::snprintf(text, sizeof text, "%.3f s", seconds);
    return text;
}

}  // namespace

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void add_to_table(const std::string& what, const std::string& who) {
    auto& rows = table();
    if (rows.empty() || rows.back().first != what) rows.push_back({what, {}});
    rows.back().second.push_back(who);
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred)
            std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
        else if (run.run_type == Run::RT_Iteration)
            m_seconds[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                            static_cast<double>(run.iterations));
    }
}

void RatioReporter::Finalize() {
    for (const auto& [what, whos] : table()) {
        std::printf("\n%-34s %12s %8s %12s %8s\n", what.c_str(), "median", "ratio", "best", "ratio");
        double first_median = 0;
        double first_best = 0;
        for (const std::string& who : whos) {
            const std::vector<double>& seconds = m_seconds[what + "/" + who];
            if (seconds.empty()) {
                std::printf("  %-32s did not run\n", who.c_str());
                continue;
            }
            const double middle = median(seconds);
            const double best = *std::min_element(seconds.begin(), seconds.end());
            if (first_median == 0) {
                first_median = middle;
                first_best = best;
            }
            std::printf("  %-32s %12s %8.3f %12s %8.3f\n", who.c_str(), readable(middle).c_str(),
                        middle / first_median, readable(best).c_str(), best / first_best);
        }
    }
    std::fflush(stdout);
}

int run_interleaved(const char* program) {
    std::string name = program;
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {name.data(), interleaving.data(), nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
