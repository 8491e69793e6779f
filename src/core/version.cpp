// vspsGetLibVersion: the constant record of this build. The numbers and the date come from the
// build system (VSP_VERSION_* and VSP_BUILD_DATE); the target code and name are fixed here.
#include "core/impl.h"

#ifndef VSP_VERSION_MAJOR
#error "VSP_VERSION_MAJOR, _MINOR, _UPDATE, _BUILD and VSP_BUILD_DATE come from the build system"
#endif

#define VSP_STR_(x) #x
#define VSP_STR(x) VSP_STR_(x)

namespace {

constexpr VspVersionRecord kVersion = {
    VSP_VERSION_MAJOR,
    VSP_VERSION_MINOR,
    VSP_VERSION_UPDATE,
    VSP_VERSION_BUILD,
    {'m', '7', '\0', '\0'},
    "vspSP SSE3 (m7 threaded)",
    VSP_STR(VSP_VERSION_MAJOR) "." VSP_STR(VSP_VERSION_MINOR) "." VSP_STR(VSP_VERSION_UPDATE) " (r" VSP_STR(
        VSP_VERSION_BUILD) ")",
    VSP_BUILD_DATE,
};

}  // namespace

VSP_IMPL(const VspVersionRecord*, vspsGetLibVersion, (void)) { return &kVersion; }
