// Argument-check rules of the frame's families.
#include "support/check_rules.h"
#include "vsp.h"

VSP_CHECK_RULES(kCoreRules)({
    // Offsets are tested with the length: a negative one is a size error, after the pointers.
    {"vspsCopy?E_1u",
     "srcBitOffset=3 dstBitOffset=13",
     {{"srcBitOffset=-1", vspStatBadSize},
      {"dstBitOffset=-1", vspStatBadSize},
      {"pDst=null dstBitOffset=-1", vspStatNullPtr}}},
    // Equal pointers select the in-place reversal before any other test.
    {"vspsFlip_32fc", "", {{"pDst=alias:pSrc", vspStatOk}, {"pDst=alias:pSrc len=0", vspStatBadSize}}},
});
