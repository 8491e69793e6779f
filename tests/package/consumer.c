/* Uses the installed library: the version record and one call. */
#include <stdio.h>
#include <string.h>

#include <vsp.h>

int main(void) {
  const VspVersionRecord* v = vspsGetLibVersion();
  Vsp16s x[4] = {1, 2, 3, 4};
  if (strcmp(v->nameText, "vspSP SSE3 (m7 threaded)") != 0) return 1;
  if (vspsFlip_16u_I((Vsp16u*)x, 4) != vspStatOk || x[0] != 4) return 2;
  printf("%s %s\n", v->nameText, v->versionText);
  return 0;
}
