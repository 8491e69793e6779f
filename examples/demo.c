/* A walk through the library with its public C interface: build information, aligned vectors,
 * filling, copying and reversing. Build against an installed library with
 *     cc demo.c $(pkg-config --cflags --libs vsp) -lm
 */
#include <stdio.h>
#include <string.h>

#include <vsp.h>

static int check(VspStatus st, const char* what) {
  if (st != vspStatOk) fprintf(stderr, "%s failed with status %d\n", what, st);
  return st != vspStatOk;
}

int main(void) {
  const VspVersionRecord* v = vspsGetLibVersion();
  printf("%s %s, target %s, built %s\n", v->nameText, v->versionText, v->cpuCode, v->buildDateText);
  printf("threads available to the library: %d\n", ownGetNumThreads());

  enum { N = 8 };
  Vsp32f* x = vspsMalloc_32f(N);
  Vsp32f* y = vspsMalloc_32f(N);
  if (!x || !y) {
    fprintf(stderr, "allocation failed\n");
    return 1;
  }
  printf("vectors at %p and %p (64-byte aligned: %s)\n", (void*)x, (void*)y,
         ((size_t)x % 64 == 0 && (size_t)y % 64 == 0) ? "yes" : "no");

  int failed = 0;
  failed |= check(vspsSet_32f(0.5f, x, N), "Set");
  for (int i = 0; i < N; ++i) x[i] += (Vsp32f)i;
  failed |= check(vspsCopy_32f(x, y, N), "Copy");
  failed |= check(vspsFlip_32f_I(y, N), "Flip");
  printf("x         :");
  for (int i = 0; i < N; ++i) printf(" %5.2f", x[i]);
  printf("\nflipped x :");
  for (int i = 0; i < N; ++i) printf(" %5.2f", y[i]);
  printf("\n");

  /* Errors leave the output untouched and say why. */
  VspStatus st = vspsZero_32f(y, 0);
  printf("vspsZero_32f with length 0 returns %d (vspStatBadSize is %d)\n", st, vspStatBadSize);

  /* Bit strings: copy 12 bits starting at bit 4 of the source to bit 0 of the destination. */
  Vsp8u bitsIn[2] = {0x5A, 0xC3}, bitsOut[2] = {0, 0};
  failed |= check(vspsCopyLE_1u(bitsIn, 4, bitsOut, 0, 12), "CopyLE_1u");
  printf("bits 5A C3 from bit 4: %02X %02X\n", bitsOut[0], bitsOut[1]);

  vspsFree(x);
  vspsFree(y);
  return failed;
}
