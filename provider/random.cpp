// Random octets from the generator of the provider's own context, which reseeds itself after a fork.
#include <openssl/rand.h>
#include <velpki/pkv.h>

#include "provider/internal/arguments.h"
#include "provider/internal/libcrypto.h"

using namespace velcrypto;

int PKV_Rand_Bytes(unsigned char *out, int length) noexcept {
  if (int code = check_octets(out, length)) return code;
  if (!length) return 0;
  const ErrorScope errors;
  OSSL_LIB_CTX *context = library_context();
  if (!context) return PKV_ERR_NO_MEMORY;
  if (RAND_bytes_ex(context, out, size_t(length), 0) == 1) return 0;
  PKV_Wipe(out, size_t(length));
  return PKV_ERR_FAILED;
}
