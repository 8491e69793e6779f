/* Prints the thread count the core library reports; run with VSP_NUM_THREADS set. */
#include <stdio.h>

#include <vspcore.h>

int main(void) {
  printf("%d\n", ownGetNumThreads());
  return 0;
}
