/* The entry layer: for every row of the export list, one slot of the entry table and one
 * exported entry that does nothing but jump through that slot.
 *
 * The table lives in writable data; each slot holds the address of the implementation for
 * this build's target (m7_<name>), filled by the loader as an ordinary R_X86_64_RELATIVE
 * relocation. The slots follow the order of the rows, 8 bytes each. */

#ifndef VSP_TARGET
#define VSP_TARGET m7
#endif
#define VSP_PASTE_(a, b) a##_##b
#define VSP_PASTE(a, b) VSP_PASTE_(a, b)

#ifdef __CET__
#define VSP_ENDBR endbr64;
#else
#define VSP_ENDBR
#endif

#define VSP_FN(ret, name, params)                                        \
  .pushsection .data.vsp_entry_table, "aw", @progbits;                   \
  vsp_slot_##name: .quad VSP_PASTE(VSP_TARGET, name);                    \
  .popsection;                                                           \
  .globl name; .type name, @function; .p2align 3;                        \
  name: VSP_ENDBR jmp *vsp_slot_##name(%rip); .size name, . - name;

  .pushsection .data.vsp_entry_table, "aw", @progbits
  .p2align 6
vsp_entry_table:
  .popsection

  .text
#include "vsp/exports.def"

  .section .note.GNU-stack, "", @progbits
