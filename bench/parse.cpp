// A listing of 10,000 entries: the library's parser next to jsoncpp alone, which reads the text and touches
// nothing of it.

#include <benchmark/benchmark.h>
#include <json/json.h>

#include <cstdint>
#include <string>

#include "files/GetNodeInfoJson.h"
#include "ratios.h"

namespace {

constexpr int kEntries = 10000;

std::string listing() {
    std::string text = R"({"status":1,"total":)" + std::to_string(kEntries) + R"(,"datas":[)";
    for (int i = 0; i < kEntries; ++i) {
        const std::string number = std::to_string(i);
        if (i > 0) text += ',';
        text += R"({"filename":"a file of ordinary length )" + number + R"(.txt","isfolder":0,"filesize":")" +
                number +
                R"(","group":"everyone","owner":"admin","privilege":"777","filetype":0,"epochmt":17000)" +
                std::to_string(10000 + i) + R"(,"mt":"2023/11/14 22:13:20","exist":1})";
    }
    return text + "]}";
}

}  // namespace

int main(int, char** argv) {
    const std::string text = listing();
    const std::string what = "listing of 10,000 entries";

    add_to_table(what, "jsoncpp alone");
    benchmark::RegisterBenchmark((what + "/jsoncpp alone").c_str(),
                                 [&text](benchmark::State& state) {
                                     for (auto _ : state) {
                                         Json::Value root;
                                         if (!Json::Reader().parse(text, root, false))
                                             state.SkipWithError("not JSON");
                                         benchmark::DoNotOptimize(root);
                                     }
                                 })
        ->Iterations(5)
        ->Repetitions(11)
        ->UseRealTime();

    // Names only, and every field: a record is large, and filling it is part of the price.
    for (const auto& [who, mask] :
         {std::pair<const char*, uint32_t>{"CGetNodeInfoJson, names", 0x20u},
          std::pair<const char*, uint32_t>{"CGetNodeInfoJson, all fields", 0x27fu}}) {
        add_to_table(what, who);
        benchmark::RegisterBenchmark(
            (what + "/" + who).c_str(),
            [&text, fields = mask](benchmark::State& state) {
                std::string copy = text;
                for (auto _ : state) {
                    CGetNodeInfoJson parser;
                    parser.pattern = L"*";
                    parser.fieldMask = fields;
                    if (parser.Parser(copy.data()) != 1 || parser.records.size() != kEntries)
                        state.SkipWithError("not understood");
                    benchmark::DoNotOptimize(parser.records);
                }
            })
            ->Iterations(5)
            ->Repetitions(11)
            ->UseRealTime();
    }
    return run_interleaved(argv[0]);
}
