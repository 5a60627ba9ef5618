#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// Gathers the repetitions of benchmarks named "<what>/<who>" and prints, for each what, the who's side by
/// side: median and best time, and both as a ratio to the first one registered.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::map<std::string, std::vector<double>> m_seconds;
};

/// Names in the order of the table; the first of a group is what the others are measured by.
void add_to_table(const std::string& what, const std::string& who);

double median(std::vector<double> values);

/// Runs what is registered, each repetition of one next to those of the others.
int run_interleaved(const char* program);
