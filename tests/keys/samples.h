// Owners that the tests of this folder share.
#pragma once

#include <velpki/asn1_error.h>
#include <velpki/pem.h>
#include <velpki/pkcs1.h>
#include <velpki/pkcs12.h>
#include <velpki/pkcs5.h>

#include "support/keys.h"

namespace test {}  // namespace test
