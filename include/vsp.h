/* vsp: one-dimensional signal-processing primitives (libvspsm7), the public C interface.
 *
 * Every function returns a VspStatus unless its row says otherwise: 0 on success, a negative
 * code on error (nothing is written then), a positive code for a warning (the whole output was
 * written). Arguments are checked in one order everywhere: pointers in argument order (-8),
 * then lengths (-6), then the family's own parameters; the family comments in the export
 * lists below name every exception to that order.
 *
 * The exported functions are listed once, in the files vsp/<subsystem>.def, as rows
 *     VSP_FN(return type, name, (parameters))
 * which this header turns into declarations. The same rows build the library's entry table,
 * so the declarations below are exactly what the library exports.
 *
 * The header is valid C99 and C++.
 */
#ifndef VSP_H
#define VSP_H

#include "vspcore.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Element types ---------------------------------------------------------------------- */

typedef unsigned char Vsp8u;
typedef signed char Vsp8s;
typedef unsigned short Vsp16u;
typedef short Vsp16s;
typedef unsigned int Vsp32u;
typedef int Vsp32s;
typedef unsigned long long Vsp64u;
typedef long long Vsp64s;
typedef float Vsp32f;
typedef double Vsp64f;

/* IEEE 754 half precision, kept as its 16 bits (sign, 5 exponent bits, 10 fraction bits). */
typedef struct { Vsp16u bits; } Vsp16f;

/* Complex elements: real part first, stored interleaved in vectors. */
typedef struct { Vsp8s re; Vsp8s im; } Vsp8sc;
typedef struct { Vsp16s re; Vsp16s im; } Vsp16sc;
typedef struct { Vsp32s re; Vsp32s im; } Vsp32sc;
typedef struct { Vsp64s re; Vsp64s im; } Vsp64sc;
typedef struct { Vsp32f re; Vsp32f im; } Vsp32fc;
typedef struct { Vsp64f re; Vsp64f im; } Vsp64fc;

/* ---- Status codes ----------------------------------------------------------------------- */

typedef int VspStatus;

enum VspStatusCode {
  vspStatOk = 0,
  /* warnings: the whole output was written */
  vspStatSqrtNegArg = 3,     /* a square-root argument was negative */
  vspStatDivByZeroWarn = 6,  /* an element was divided by zero */
  vspStatLnZeroArg = 7,      /* a logarithm argument was zero */
  vspStatLnNegArg = 8,       /* a logarithm argument was negative */
  vspStatNonFiniteArg = 9,   /* infinite or NaN inputs were treated as zero */
  /* errors: nothing was written */
  vspStatSizeOverflowErr = -4,   /* a 64-bit size query would report a size above 2^63 */
  vspStatBadArg = -5,            /* a parameter is outside its allowed set */
  vspStatBadSize = -6,           /* a length or size is out of range (below 1 for lengths) */
  vspStatNullPtr = -8,           /* a required pointer is NULL */
  vspStatDivByZeroErr = -10,     /* a constant divisor (or a normalising tap) is zero */
  vspStatDataTypeErr = -12,      /* the data-type code is not served by the function */
  vspStatFftOrderErr = -15,      /* the FFT order is outside the accepted range */
  vspStatFftFlagErr = -16,       /* the FFT normalisation flag is not 1, 2, 4 or 8 */
  vspStatBadContext = -17,       /* a spec or state block has the wrong identifier */
  vspStatThreshLevelOrder = -18, /* lower threshold level above the upper one */
  vspStatNegThreshold = -19,     /* a magnitude threshold level is negative */
  vspStatIIROrderErr = -25,      /* IIR order or biquad count below 1 */
  vspStatFIRLenErr = -26,        /* FIR tap count below 1 */
  vspStatRelFreqErr = -27,       /* relative frequency outside [0, 1) */
  vspStatFIRMRPhaseErr = -28,    /* multi-rate phase outside 0 .. factor - 1 */
  vspStatFIRMRFactorErr = -29,   /* multi-rate up or down factor negative */
  vspStatShiftErr = -32,         /* negative shift count */
  vspStatMaskSizeErr = -33,      /* window or mask length below 1 */
  vspStatJaehneErr = -38,        /* negative magnitude of VectorJaehne */
  vspStatHugeWinErr = -39,       /* Kaiser window parameter too large */
  vspStatTrnglAsymErr = -40,     /* triangle asymmetry outside [-pi, pi) */
  vspStatTrnglPhaseErr = -41,    /* triangle start phase outside [0, 2 pi) */
  vspStatTrnglFreqErr = -42,     /* triangle relative frequency outside [0, 0.5) */
  vspStatTrnglMagnErr = -43,     /* triangle magnitude not above 0 */
  vspStatTonePhaseErr = -44,     /* tone start phase outside [0, 2 pi) */
  vspStatToneFreqErr = -45,      /* tone relative frequency outside [0, 0.5) */
  vspStatToneMagnErr = -46,      /* tone magnitude not above 0 */
  vspStatNumChannelsErr = -47,   /* channel count below 1 (vspsIIR64f_32s_PSfs) */
  vspStatChannelErr = -53,       /* channel count below 1 (vspsIIR_32f_P) */
  vspStatRoundModeErr = -213,    /* the rounding mode is not accepted */
  vspStatAlgTypeErr = -228       /* the algorithm or normalisation argument is not accepted */
};

/* Warning of the thresholded reciprocals (vspsThreshold_LTInv_*): some element was zero and
   was not raised by the level (the level is 0), so its reciprocal was written as an infinity;
   every element was written. */
enum { vspStatInvZeroWarn = 4 };

/* ---- Shared enumerations ---------------------------------------------------------------- */

/* Accuracy hint of the float sums, means and generators: only vspAlgHintFast selects the
   faster path; any other value selects the accurate one. Never rejected. */
typedef enum { vspAlgHintNone = 0, vspAlgHintFast = 1, vspAlgHintAccurate = 2 } VspHintAlgorithm;

/* Algorithm of filters, convolution and correlation; other values give vspStatAlgTypeErr. */
typedef enum { vspAlgAuto = 0, vspAlgDirect = 1, vspAlgFFT = 2 } VspAlgType;

/* Normalisation of the correlations, carried in bits 8..15 of their algorithm argument. */
typedef enum { vspNormNone = 0, vspNormBiased = 0x100, vspNormUnbiased = 0x200 } VspNormMode;

/* Data-type codes of the size queries that serve several element types. */
typedef enum {
  vsp1u = 0, vsp8u = 1, vsp8uc = 2, vsp8s = 3, vsp8sc = 4, vsp16u = 5, vsp16uc = 6,
  vsp16s = 7, vsp16sc = 8, vsp32u = 9, vsp32uc = 10, vsp32s = 11, vsp32sc = 12,
  vsp32f = 13, vsp32fc = 14, vsp64u = 15, vsp64uc = 16, vsp64s = 17, vsp64sc = 18,
  vsp64f = 19, vsp64fc = 20
} VspDataType;

/* Rounding of the functions that take a rndMode (conversions, vspsDiv_Round_*). */
typedef enum {
  vspRndZero = 0,     /* toward zero (truncation) */
  vspRndNear = 1,     /* to nearest, ties to even */
  vspRndHalfAway = 2  /* to nearest, ties away from zero */
} VspRoundMode;

/* Measure of vspsZeroCrossing_*: half-steps of the sign function, sign-bit changes, or strict
   sign changes; other values give vspStatBadArg. */
typedef enum { vspZCR = 0, vspZCXor = 1, vspZCC = 2 } VspZCType;

/* Relation operator of vspsThreshold_*: threshold from below or from above. */
typedef enum { RelOpLess = 0, RelOpGreater = 4 } VspRelOp;

/* FFT normalisation flags. */
enum {
  FFT_SCALE_FWD_BY_N = 1, /* forward scaled by 1/N, inverse unscaled */
  FFT_SCALE_INV_BY_N = 2, /* inverse scaled by 1/N, forward unscaled */
  FFT_SCALE_BY_SQRTN = 4, /* both scaled by 1/sqrt(N) */
  FFT_SCALE_NONE = 8      /* neither scaled */
};

/* FFT spec blocks: opaque, laid out by vspsFFTInit_* in caller memory of the size that
   vspsFFTGetSize_* reports, read-only afterwards (one spec may serve concurrent calls).
   Spec and state blocks of every family must not be moved or copied after Init: the FFT header
   holds the addresses of its own tables, so a copy would silently read the original's. To move
   a block, run its Init again at the new address. A block whose Init returned an error is
   refused by the processing functions with vspStatBadContext (-17). */
typedef struct VspFFTSpec_C_32fc VspFFTSpec_C_32fc;
typedef struct VspFFTSpec_C_32f VspFFTSpec_C_32f;
typedef struct VspFFTSpec_R_32f VspFFTSpec_R_32f;
typedef struct VspFFTSpec_C_64fc VspFFTSpec_C_64fc;
typedef struct VspFFTSpec_C_64f VspFFTSpec_C_64f;
typedef struct VspFFTSpec_R_64f VspFFTSpec_R_64f;

/* ---- Version record --------------------------------------------------------------------- */

typedef struct {
  int majorVersion;          /* the release year */
  int minorVersion;
  int updateNumber;
  int buildNumber;           /* revision */
  char cpuCode[4];           /* processor-target code, NUL-padded: "m7" */
  const char* nameText;      /* "vspSP SSE3 (m7 threaded)" */
  const char* versionText;   /* "<major>.<minor>.<update> (r<build>)" */
  const char* buildDateText; /* "Mmm d yyyy" */
} VspVersionRecord;

/* ---- The exported functions ------------------------------------------------------------- */

#if defined(__GNUC__)
#define VSPAPI __attribute__((visibility("default")))
#else
#define VSPAPI
#endif

/* Opaque spec and state types of the groups (the VSP_DEF_TYPES sections of the list), then the
   rows. */
#define VSP_DEF_TYPES
#define VSP_FN(ret, name, params)
#include "vsp/exports.def"
#undef VSP_FN
#undef VSP_DEF_TYPES

#define VSP_FN(ret, name, params) VSPAPI ret name params;
#include "vsp/exports.def"
#undef VSP_FN

#ifdef __cplusplus
}
#endif

#endif /* VSP_H */
