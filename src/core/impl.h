// The implementation layer: declarations of every implementation, derived from the export list.
//
// Each export `name` jumps through its entry-table slot to the implementation `<target>_name`
// (m7_name for this build). Implementations are defined with VSP_IMPL, which spells the same
// extern "C" declaration, so a parameter list that differs from the export row is a compile
// error ("conflicting declaration of C function"), and the link flag --no-undefined turns a
// row without an implementation into a link error.
#pragma once

#include "vsp.h"

#ifndef VSP_TARGET
#define VSP_TARGET m7
#endif

#define VSP_PASTE_(a, b) a##_##b
#define VSP_PASTE(a, b) VSP_PASTE_(a, b)
// The implementation symbol of an export for the target being compiled.
#define VSP_TARGET_NAME(name) VSP_PASTE(VSP_TARGET, name)
#define VSP_HIDDEN __attribute__((visibility("hidden")))

extern "C" {
#define VSP_FN(ret, name, params) VSP_HIDDEN ret VSP_TARGET_NAME(name) params;
#include "vsp/exports.def"
#undef VSP_FN
}

// Defines the implementation of an export: VSP_IMPL(VspStatus, vspsZero_8u, (Vsp8u* pDst, int len)) { ... }
#define VSP_IMPL(ret, name, params) extern "C" VSP_HIDDEN ret VSP_TARGET_NAME(name) params

// Calls another export's implementation directly (same target, no entry jump): used by the
// short-cuts that settle a result through another operation, with that operation's checks.
#define VSP_CALL(name) VSP_TARGET_NAME(name)
