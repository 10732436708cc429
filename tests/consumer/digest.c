/* The provider alone: the HAS-160 digest of "abc". */
#include <stdio.h>
#include <string.h>
#include <velpki/pkv.h>

int main(void) {
  unsigned char digest[PKV_MAX_DIGEST_LENGTH];
  int length = 0;
  if (PKV_DIGEST(PKV_DIGEST_HAS160, (const unsigned char *)"abc", 3, digest, &length)) return 1;
  for (int i = 0; i < length; ++i) printf("%02x", digest[i]);
  putchar('\n');
  return 0;
}
