// Every export against its reference row (rows_*.cpp), and the completeness of the suite: each
// export has a row, a block fixture for the argument checks, or a waiver naming its test.
#include <gtest/gtest.h>

#include "support/check_rules.h"
#include "support/refrows.h"

namespace vsptest {
namespace {

const Waiver* WaiverOf(const std::string& name) {
  for (const Waiver& w : AllWaivers())
    if (GlobMatch(w.pattern, name)) return &w;
  return nullptr;
}

// The row of an export: the matching row with the longest pattern (a family row and a member's
// own row may overlap). Exports with a waiver have none.
const RefRow* RowOf(const std::string& name, std::string* error = nullptr) {
  if (WaiverOf(name)) return nullptr;
  const RefRow* best = nullptr;
  for (const RefRow& r : AllRefRows()) {
    if (!GlobMatch(r.pattern, name)) continue;
    if (best && std::strlen(best->pattern) == std::strlen(r.pattern) && error)
      *error = std::string("rows '") + best->pattern + "' and '" + r.pattern + "' both match";
    if (!best || std::strlen(r.pattern) > std::strlen(best->pattern)) best = &r;
  }
  return best;
}

std::vector<std::string> RowExports() {
  std::vector<std::string> names;
  for (const Export& e : Exports())
    if (RowOf(e.name)) names.push_back(e.name);
  return names;
}

class ReferenceRows : public ::testing::TestWithParam<std::string> {};

TEST_P(ReferenceRows, EveryLengthOffsetAndValue) {
  std::string error;
  const RefRow* row = RowOf(GetParam(), &error);
  ASSERT_TRUE(error.empty()) << error;
  CheckAgainstRow(*FindExport(GetParam()), *row);
}

INSTANTIATE_TEST_SUITE_P(AllExports, ReferenceRows, ::testing::ValuesIn(RowExports()),
                         [](const auto& info) { return info.param; });

TEST(SuiteCompleteness, EveryExportHasARowAFixtureOrAWaiver) {
  for (const Export& e : Exports()) {
    bool fixture = false;
    for (const CheckRule& r : AllCheckRules()) fixture |= static_cast<bool>(r.fixture) && GlobMatch(r.pattern, e.name);
    EXPECT_TRUE(RowOf(e.name) || fixture || WaiverOf(e.name))
        << e.name << " has no reference row, no block fixture and no waiver naming the test that covers it";
  }
}

TEST(SuiteCompleteness, EveryRowAndWaiverMatchesAnExport) {
  auto any = [](const char* pattern) {
    for (const Export& e : Exports())
      if (GlobMatch(pattern, e.name)) return true;
    return false;
  };
  for (const RefRow& r : AllRefRows()) EXPECT_TRUE(any(r.pattern)) << "row '" << r.pattern << "' matches no export";
  for (const Waiver& w : AllWaivers()) {
    EXPECT_TRUE(any(w.pattern)) << "waiver '" << w.pattern << "' matches no export";
    EXPECT_NE(std::string(w.test).find('.'), std::string::npos) << "waiver '" << w.pattern << "' names no Suite.Test";
  }
}

}  // namespace
}  // namespace vsptest
