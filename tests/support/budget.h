// Test-time budget: the whole suite runs twice in CI (Release, then with AddressSanitizer and
// UndefinedBehaviorSanitizer) on two cores. Sweeps that are exhaustive in Release may thin out
// their largest loops under the sanitizers with Thin(n).
#pragma once

namespace vsptest {

#ifdef VSP_TEST_SANITIZED
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

// The step of a long sweep: 1 in Release, `sanitizedStep` under the sanitizers.
constexpr long long Thin(long long sanitizedStep) { return kSanitized ? sanitizedStep : 1; }

}  // namespace vsptest
