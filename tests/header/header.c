/* Compiles the public header on its own, as C99 and as C++. */
#include <vsp.h>

int main(void) {
  const VspVersionRecord* v = vspsGetLibVersion();
  Vsp32fc c = {1.0f, -1.0f};
  (void)c;
  return v == 0 ? vspStatNullPtr : vspStatOk;
}
