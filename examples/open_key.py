#!/usr/bin/env python3
"""Opens an encrypted private key (signPri.key, or any encrypted PKCS#8) through the C interface, and tells what it is.

open_key.py KEY [CERTIFICATE]: the password comes from VELPKI_PASSWORD or is asked for. With a certificate it says whether
the key is that one's. The libraries are those that the loader finds (LD_LIBRARY_PATH, /usr/lib ...).
"""
import ctypes
import getpass
import os
import sys

try:
    pki = ctypes.CDLL("libvelPKI.so.1")
except OSError as error:
    sys.exit(f"{error} (LD_LIBRARY_PATH may name its folder)")
handle = ctypes.c_void_p


def function(name, result, *arguments):
    """A function of the library. Without its types ctypes would cut pointers down to an int."""
    found = getattr(pki, name)
    found.restype, found.argtypes = result, arguments
    return found


describe = function("describe_velpki_code", ctypes.c_int, ctypes.c_int, ctypes.c_char_p, ctypes.c_int)
ln_from_index = function("ln_from_index", ctypes.c_char_p, ctypes.c_int)
index_of = function("index_from_OBJECT_IDENTIFIER", ctypes.c_int, handle)
key_oid = function("get_PRIV_KEY_OID", handle, handle)
key_numbers = function("get_PRIV_KEY_KeyParams", handle, handle)
check_keypair = function("check_X509_keypair", ctypes.c_int, handle, handle)
decrypt = function("decrypt_PKCS5_strict", ctypes.c_int, handle, ctypes.POINTER(handle), ctypes.c_char_p, ctypes.c_int,
                   ctypes.c_int, ctypes.POINTER(ctypes.c_int))


class Failure(Exception):
    """A status code that is not 0."""

    def __init__(self, code):
        text = ctypes.create_string_buffer(128)
        describe(code, text, len(text))
        super().__init__(text.value.decode())


class Record:
    """Owns a record that the library made; leaving the block releases it, which wipes what is secret in it."""

    def __init__(self, kind, make, *arguments):
        self.release = function("free_" + kind, None, handle)
        self.handle = handle()
        code = make(ctypes.byref(self.handle), *arguments)
        if code:
            raise Failure(code)

    def __enter__(self):
        return self.handle

    def __exit__(self, *_):
        self.release(self.handle)


def read(kind, path, encoding="DER"):
    reader = function(f"read{encoding}_{kind}_from_File", ctypes.c_int, ctypes.POINTER(handle), ctypes.c_char_p)
    return Record(kind, reader, os.fsencode(path))


def opened(container, password):
    return Record("P8_PRIV_KEY_INFO",
                  lambda out: decrypt(container, out, password, len(password), 0, None))


def ask_password():
    """An empty VELPKI_PASSWORD is a password too."""
    try:
        return os.environ["VELPKI_PASSWORD"] if "VELPKI_PASSWORD" in os.environ else getpass.getpass("password: ")
    except EOFError:
        sys.exit("no password: VELPKI_PASSWORD is not set, and nobody is there to be asked")


def main(key_path, certificate_path=None):
    password = os.fsencode(ask_password())
    with read("PKCS8", key_path) as container, opened(container, password) as key:
        print("a key of the algorithm", ln_from_index(index_of(key_oid(key))).decode())
        if certificate_path:
            with read("X509_CERT", certificate_path) as certificate:
                same = check_keypair(certificate, key_numbers(key)) == 0
            print("it is the key of the certificate" if same else "the certificate has another key")


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    try:
        main(*sys.argv[1:])
    except Failure as failure:
        sys.exit(f"{sys.argv[1]}: {failure}")
