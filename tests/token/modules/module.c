/* Two modules for the tests. Every function answers the number that its name has in the list, 1001 for the first. One
 * module exports all but C_DigestKey by name; the other (LIST_ONLY) exports C_GetFunctionList alone. */
#include "../entry_points.h"

#define NUMBER(name) k##name,
enum { kBefore = 1000, VELPKI_ENTRY_POINTS(NUMBER) };
#define EXPORTED __attribute__((visibility("default")))

#ifdef LIST_ONLY
#include <p11-kit/pkcs11.h>

/* The caller removes what it passed, so a function need not name its parameters. */
#define ANSWER(name) \
  static CK_RV name(void) { return k##name; }
#define SET(name) list.C_##name = (CK_C_##name)(void (*)(void))name;
VELPKI_ENTRY_POINTS(ANSWER)

EXPORTED CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR out) {
  static CK_FUNCTION_LIST list = {.version = {2, 40}};
  VELPKI_ENTRY_POINTS(SET)
  list.C_DigestKey = 0;
  *out = &list;
  return CKR_OK;
}
#else
#define C_DigestKey not_exported
#define ANSWER(name) PASTE(C_##name, k##name)
#define PASTE(name, number)          \
  EXPORTED unsigned long name(void); \
  EXPORTED unsigned long name(void) { return number; }
VELPKI_ENTRY_POINTS(ANSWER)
#endif
