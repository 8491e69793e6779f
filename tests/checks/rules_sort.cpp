// Argument-check rules of the sorting families.
#include "support/check_rules.h"
#include "vsp.h"

VSP_CHECK_RULES(kSortRules)({
    // The stride is tested after the length: below the key size it is a size error.
    {"vspsSortRadixIndex*end_*", "srcStrideBytes=8", {{"pSrc=null srcStrideBytes=1", vspStatNullPtr}}},
    {"vspsSortRadixIndex*_16?", "", {{"srcStrideBytes=1", vspStatBadSize}, {"srcStrideBytes=-1", vspStatBadSize}}},
    // The 64-bit size queries serve no 8-bit type: a valid call names one of theirs.
    {"vspsSortRadixGetBufferSize_L", "dataType=13"},
    {"vspsSortRadixIndexGetBufferSize_L", "dataType=17"},
    // Work buffers of 32- and 64-bit keys exceed the harness's buffers at any length.
    {"vspsSortRadix*_32?_I*", "", {}, "SortRadixChecks.OrderAndUntouchedOutputs"},
    {"vspsSortRadix*_64?_I*", "", {}, "SortRadixChecks.OrderAndUntouchedOutputs"},
    {"vspsSortRadixIndex*_32?", "", {}, "SortRadixChecks.OrderAndUntouchedOutputs"},
    {"vspsSortRadixIndex*_64?_L", "", {}, "SortRadixChecks.OrderAndUntouchedOutputs"},
});
