/* A walk through the library with its public C interface: a sensor-style signal is captured as
 * 16-bit samples, measured, cleaned, and analysed with the FFT.
 *
 * Build against an installed library with
 *     cc demo.c $(pkg-config --cflags --libs vsp) -lm
 */
#include <math.h>
#include <stdio.h>
#include <vsp.h>

#define ORDER 10
#define N (1 << ORDER)
#define RATE 8000.0 /* samples per second */

static int failures = 0;

static void check(VspStatus st, const char* what) {
  if (st < 0) {
    fprintf(stderr, "%s failed with status %d\n", what, st);
    ++failures;
  } else if (st > 0) {
    printf("  (%s returned the warning %d)\n", what, st);
  }
}

int main(void) {
  const double pi = 3.14159265358979323846;
  const VspVersionRecord* v = vspsGetLibVersion();
  printf("%s %s, target %s, built %s; %d threads available\n\n", v->nameText, v->versionText, v->cpuCode,
         v->buildDateText, ownGetNumThreads());

  Vsp32f* x = vspsMalloc_32f(N);
  Vsp32f* work = vspsMalloc_32f(N);
  Vsp16s* pcm = vspsMalloc_16s(N);
  Vsp32f* spectrum = vspsMalloc_32f(N + 2); /* N/2 + 1 complex bins in CCS layout */
  if (!x || !work || !pcm || !spectrum) {
    fprintf(stderr, "allocation failed\n");
    return 1;
  }

  /* 1. A signal: a 437.5 Hz tone of amplitude 0.5, a weaker 1,250 Hz tone (both on FFT bins), a DC offset of 0.1 and
   *    a few spikes (a faulty sensor). */
  for (int i = 0; i < N; ++i) {
    double t = i / RATE;
    x[i] = (Vsp32f)(0.1 + 0.5 * sin(2 * pi * 437.5 * t) + 0.2 * sin(2 * pi * 1250 * t));
  }
  x[100] = 3.0f, x[517] = -2.5f, x[900] = 4.0f;

  /* 2. Capture as 16-bit samples: scale by 2^13, round to nearest, saturate. Scale factor -13
   *    multiplies by 2^13. */
  check(vspsConvert_32f16s_Sfs(x, pcm, N, vspRndNear, -13), "Convert_32f16s_Sfs");
  Vsp16s lo, hi;
  check(vspsMinMax_16s(pcm, N, &lo, &hi), "MinMax_16s");
  printf("16-bit capture: min %d, max %d (the 4.0 spike saturates at 32767)\n", lo, hi);

  /* 3. Back to float, undo the 2^13 scale, and measure. */
  check(vspsConvert_16s32f(pcm, x, N), "Convert_16s32f");
  check(vspsMulC_32f_I(1.0f / 8192.0f, x, N), "MulC_32f_I");
  Vsp32f mean, sdev, peak;
  int peakAt;
  check(vspsMeanStdDev_32f(x, N, &mean, &sdev), "MeanStdDev_32f");
  check(vspsMaxIndx_32f(x, N, &peak, &peakAt), "MaxIndx_32f");
  printf("mean %.4f, standard deviation %.4f, largest sample %.3f at %d\n", mean, sdev, peak, peakAt);

  /* 4. The median (robust against the spikes), from a radix sort of a copy. */
  int bufSize = 0;
  check(vspsSortRadixGetBufferSize(N, vsp32f, &bufSize), "SortRadixGetBufferSize");
  Vsp8u* sortBuf = vspsMalloc_8u(bufSize);
  check(vspsCopy_32f(x, work, N), "Copy_32f");
  check(vspsSortRadixAscend_32f_I(work, N, sortBuf), "SortRadixAscend_32f_I");
  printf("median %.4f\n", 0.5 * (work[N / 2 - 1] + work[N / 2]));

  /* 5. Clean: remove the DC offset, clip the spikes to +-1. */
  check(vspsSubC_32f_I(mean, x, N), "SubC_32f_I");
  check(vspsThreshold_GTAbs_32f_I(x, N, 1.0f), "Threshold_GTAbs_32f_I");

  /* 6. Spectrum: real FFT into CCS, power of each bin, strongest bins. */
  int specSize, initSize, fftBufSize;
  check(vspsFFTGetSize_R_32f(ORDER, FFT_SCALE_FWD_BY_N, vspAlgHintNone, &specSize, &initSize, &fftBufSize),
        "FFTGetSize_R_32f");
  Vsp8u* specMem = vspsMalloc_8u(specSize);
  Vsp8u* initMem = initSize > 0 ? vspsMalloc_8u(initSize) : NULL;
  Vsp8u* fftBuf = fftBufSize > 0 ? vspsMalloc_8u(fftBufSize) : NULL;
  VspFFTSpec_R_32f* spec = NULL;
  check(vspsFFTInit_R_32f(&spec, ORDER, FFT_SCALE_FWD_BY_N, vspAlgHintNone, specMem, initMem), "FFTInit_R_32f");
  check(vspsFFTFwd_RToCCS_32f(x, spectrum, spec, fftBuf), "FFTFwd_RToCCS_32f");
  /* Power of bin k: re^2 + im^2, from the interleaved CCS values squared. */
  for (int k = 0; k <= N / 2; ++k)
    work[k] = spectrum[2 * k] * spectrum[2 * k] + spectrum[2 * k + 1] * spectrum[2 * k + 1];
  printf("strongest bins (bin width %.2f Hz):\n", RATE / N);
  for (int rank = 0; rank < 2; ++rank) {
    Vsp32f power;
    int bin;
    check(vspsMaxIndx_32f(work, N / 2 + 1, &power, &bin), "MaxIndx_32f");
    printf("  %7.1f Hz  amplitude %.3f\n", bin * RATE / N, 2 * sqrt(power));
    for (int k = bin - 2; k <= bin + 2; ++k)
      if (k >= 0 && k <= N / 2) work[k] = 0; /* the tone's leakage into its neighbours */
  }

  /* 7. Generators: a tone made in two blocks (the phase carries over), a Hann window, and
   *    Gaussian noise from a seeded generator whose state lives in our memory. */
  {
    Vsp32f phase = 0.0f;
    check(vspsTone_32f(x, N / 2, 1.0f, 0.01f, &phase, vspAlgHintNone), "Tone_32f");
    check(vspsTone_32f(x + N / 2, N / 2, 1.0f, 0.01f, &phase, vspAlgHintNone), "Tone_32f");
    check(vspsWinHann_32f_I(x, N), "WinHann_32f_I");
    printf("\nHann-windowed tone: x[0] %.3f, x[N/4] %.3f, x[N/2] %.3f\n", x[0], x[N / 4], x[N / 2]);
    int stateSize = 0;
    check(vspsRandGaussGetSize_32f(&stateSize), "RandGaussGetSize_32f");
    Vsp8u* stateMem = vspsMalloc_8u(stateSize);
    if (stateMem) {
      VspRandGaussState_32f* rng = (VspRandGaussState_32f*)stateMem;
      check(vspsRandGaussInit_32f(rng, 0.0f, 0.25f, 2024u), "RandGaussInit_32f");
      check(vspsRandGauss_32f(work, N, rng), "RandGauss_32f");
      Vsp32f m = 0, sd = 0;
      check(vspsMeanStdDev_32f(work, N, &m, &sd), "MeanStdDev_32f");
      printf("Gaussian noise (mean 0, deviation 0.25): measured mean %.4f, deviation %.4f\n", m, sd);
      vspsFree(stateMem);
    }
  }

  /* 8. Errors leave outputs untouched and say why. */
  printf("\nvspsZero_32f with length 0 returns %d (vspStatBadSize is %d)\n", vspsZero_32f(x, 0), vspStatBadSize);
  printf("vspsDivC_32f by 0 returns %d (vspStatDivByZeroErr is %d)\n", vspsDivC_32f(x, 0.0f, work, N),
         vspStatDivByZeroErr);

  vspsFree(x), vspsFree(work), vspsFree(pcm), vspsFree(spectrum), vspsFree(sortBuf);
  vspsFree(specMem), vspsFree(initMem), vspsFree(fftBuf);
  return failures != 0;
}
