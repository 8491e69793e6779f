// Registration and the ratio table of the benchmark harness.
#include "harness.h"

#include <cstdio>
#include <map>

namespace vspbench {

void Register(const std::string& kase, const std::string& impl, const std::vector<long long>& sizes,
              double bytesPerElement, Body body) {
  for (long long n : sizes) {
    std::string name = kase + "/" + impl + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), [body, n, bytesPerElement](benchmark::State& st) {
      body(st, n);
      st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * n * bytesPerElement));
      st.counters["ns/elem"] = benchmark::Counter(static_cast<double>(st.iterations() * n),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    });
  }
}

std::vector<long long> ByteSizes64ToMiB64(size_t elementBytes) {
  std::vector<long long> sizes;
  for (long long bytes = 64; bytes <= (64LL << 20); bytes *= 4) sizes.push_back(bytes / static_cast<long long>(elementBytes));
  return sizes;
}

namespace {

// Console output as usual, then one line per case and size: vsp's time and each peer's ratio.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration || r.error_occurred) continue;
      std::string name = r.benchmark_name();
      size_t a = name.find('/'), b = name.rfind('/');
      if (a == std::string::npos || a == b) continue;
      std::string key = name.substr(0, a) + "/" + name.substr(b + 1);
      std::string impl = name.substr(a + 1, b - a - 1);
      auto& row = table_[key];
      if (row.empty()) order_.push_back(key);
      row[impl] = r.GetAdjustedRealTime();
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-40s %12s   peer time / vsp time (above 1: vsp faster)\n", "case/size", "vsp ns");
    for (const std::string& key : order_) {
      const auto& row = table_[key];
      auto v = row.find("vsp");
      if (v == row.end()) continue;
      std::printf("%-40s %12.1f  ", key.c_str(), v->second);
      for (const auto& [impl, t] : row)
        if (impl != "vsp") std::printf(" %s %.2f", impl.c_str(), t / v->second);
      std::printf("\n");
    }
  }

 private:
  std::map<std::string, std::map<std::string, double>> table_;
  std::vector<std::string> order_;
};

}  // namespace
}  // namespace vspbench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  vspbench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
