// The derivations by libcrypto.
#pragma once

namespace peer {

void pbkdf2(const char *digest, const char *password, int password_length, const unsigned char *salt, int salt_length,
            int iterations, unsigned char *out, int length);
// The password as ASCII.
void pkcs12_key(const char *digest, const char *password, int password_length, const unsigned char *salt,
                int salt_length, int id, int iterations, unsigned char *out, int length);

}  // namespace peer
