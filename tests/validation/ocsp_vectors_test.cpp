// OCSP messages that others made, against their manifest.
#include "samples.h"

using namespace test;

namespace {

std::string status_text(const OCSP_CERT_STATUS *status) {
  if (status->type != OCSP_STATUS_REVOKED) return status->type == OCSP_STATUS_GOOD ? "good" : "unknown";
  const OCSP_REVOKED_INFO *info = status->revokedInfo;
  const std::string reason = info->revocationReason < 0 ? "" : ":" + std::to_string(info->revocationReason);
  return "revoked@" + text_of(info->revocationTime) + reason;
}
std::string serial_text(const OCSP_CERT_ID *id) {
  int length = 0;
  const unsigned char *octets = PKV_Get_BIGINT_Octets(id->serialNumber, &length);
  return to_hex(octets, size_t(length));
}
std::string without_zeros(std::string hexadecimal) {
  while (hexadecimal.size() >= 2 && hexadecimal.compare(0, 2, "00") == 0) hexadecimal.erase(0, 2);
  return hexadecimal;
}
std::string extension_list(const X509_EXTENSIONS *list) {
  std::string out;
  for (int i = 0; i < get_X509_EXTENSION_count(list); ++i)
    out += (i ? "," : "") + text_of(get_X509_EXTENSION(list, i)->object);
  return out;
}
std::string hash_oid(const OCSP_CERT_ID *id) { return text_of(id->hashAlgorithm->algorithm); }

// Whether the answer differs from openssl's, by a rule that the table says.
bool differs(const std::string &file) {
  static const std::vector<Row> differences = table("ocsp_differences");
  return std::any_of(differences.begin(), differences.end(),
                     [&](const Row &each) { return file.find(each.at("file") + ".") != std::string::npos; });
}

void check_request(const Row &row, const Bytes &der) {
  const std::string &file = row.at("file");
  const auto request = read_by(readDER_OCSP_REQUEST_from_Binary, der);
  ASSERT_TRUE(request) << file;
  // The one that openssl does not read has a number that is not written like that again.
  EXPECT_EQ(encoded(OCSP_REQUEST_to_Seq, request) == der, row.at("openssl_decodes") == "yes") << file;
  const auto serials = split(row.at("serials"));
  ASSERT_EQ(get_OCSP_REQUEST_list_count(request), number_in(row, "entries")) << file;
  for (size_t i = 0; i < serials.size(); ++i) {
    const auto *single = item<OCSP_SINGLE_REQUEST>(get_OCSP_REQUEST_list(request), int(i));
    EXPECT_EQ(serial_text(single->reqCert), without_zeros(serials[i])) << file;
    if (i == 0) EXPECT_EQ(hash_oid(single->reqCert), row.at("first_hash_algorithm")) << file;
  }
  EXPECT_EQ(extension_list(request->tbsRequest->requestExtensions), row.at("extensions")) << file;
  EXPECT_EQ(is_OCSP_REQUEST_signature(request), row.at("signed_request") == "1") << file;
  if (!is_OCSP_REQUEST_signature(request)) return;
  X509_CERT *signer = get_OCSP_REQUEST_signature_cert(request);
  EXPECT_EQ(verify_OCSP_REQUEST_strict(request, signer), 0) << file;
  EXPECT_EQ(verify_OCSP_REQUEST(request, nullptr), file.find("_ec") == file.npos ? 0 : kOcsp | 0x29) << file;
}

void check_basic(const Row &row, const BASIC_OCSP_RESPONSE *basic) {
  const std::string &file = row.at("file");
  const OCSP_RESPONSE_DATA *data = basic->tbsResponseData;
  EXPECT_EQ(data->responderID->type == OCSP_RESPONDER_BY_KEY ? "byKey" : "byName", row.at("responder_id")) << file;
  EXPECT_EQ(text_of(data->producedAt), row.at("produced_at")) << file;
  EXPECT_EQ(text_of(basic->signatureAlgorithm->algorithm), row.at("signature_algorithm")) << file;
  EXPECT_EQ(extension_list(data->responseExtensions), row.at("extensions")) << file;
  EXPECT_EQ(basic->certs ? basic->certs->count : 0, number_in(row, "certificates_inside")) << file;
  ASSERT_EQ(get_CERT_STATUS_count_from_OCSP_RESPONSE(basic), number_in(row, "entries")) << file;
  const auto statuses = split(row.at("statuses")), serials = split(row.at("serials"));
  for (size_t i = 0; i < statuses.size(); ++i) {
    const auto *single = item<OCSP_SINGLE_RESPONSE>(data->responses, int(i));
    EXPECT_EQ(status_text(get_CERT_STATUS_from_OCSP_RESPONSE_index(basic, int(i))), statuses[i]) << file;
    EXPECT_EQ(serial_text(single->certID), without_zeros(serials[i])) << file;
    if (i > 0) continue;
    EXPECT_EQ(hash_oid(single->certID), row.at("first_hash_algorithm")) << file;
    EXPECT_EQ(text_of(single->thisUpdate), row.at("this_update")) << file;
    EXPECT_EQ(single->nextUpdate ? text_of(single->nextUpdate) : "", row.at("next_update")) << file;
  }
}

// A certificate of the issuer with the serial number of the first entry.
Certificate asked_about(const X509_CERT *issuer, const BASIC_OCSP_RESPONSE *basic) {
  Certificate cert(new_X509_CERT());
  const auto *single = item<OCSP_SINGLE_RESPONSE>(basic->tbsResponseData->responses, 0);
  if (single) set_X509_serial(cert, single->certID->serialNumber);
  set_X509_issuer(cert, get_X509_subject(issuer));
  return cert;
}

int verify(const Row &row, const BASIC_OCSP_RESPONSE *basic, const std::string &folder) {
  const auto issuer = read_by(readDER_X509_CERT_from_Binary_RFC5280, read_file(folder + "/" + row.at("issuer_file")));
  EXPECT_TRUE(issuer) << row.at("issuer_file");
  const Certificate cert = asked_about(issuer, basic);
  const auto time = time_of(row.at("this_update").empty() ? row.at("produced_at") : row.at("this_update"));
  const OCSP_SINGLE_RESPONSE *answer = nullptr;
  const int code =
      verify_BASIC_OCSP_RESPONSE_strict(basic, cert, issuer, nullptr, 0, time, OCSP_ALLOW_NO_NEXT_UPDATE, &answer);
  EXPECT_EQ(code == 0, answer != nullptr);
  return code;
}

void check_response(const Row &row, const Bytes &der, const std::string &folder) {
  const std::string &file = row.at("file");
  const auto response = read_by(readDER_OCSP_RESPONSE_from_Binary, der);
  if (row.at("response_status").empty()) {
    EXPECT_TRUE(!response || !Basic(get_BASIC_OCSP_RESPONSE(response))) << file;
    return;
  }
  ASSERT_TRUE(response) << file;
  EXPECT_EQ(to_hex(encoded(OCSP_RESPONSE_to_Seq, response)), to_hex(der)) << file;
  EXPECT_EQ(response->responseStatus, number_in(row, "response_status")) << file;
  const Basic basic(get_BASIC_OCSP_RESPONSE(response)), strict = strict_basic(response);
  const bool has_basic = response->responseStatus == 0 && !row.at("responder_id").empty() &&
                         row.at("notes").find("not basic") == std::string::npos;
  ASSERT_EQ(basic != nullptr, has_basic) << file;
  if (!has_basic) return;
  check_basic(row, basic);
  ASSERT_NE(strict, nullptr) << file;
  check_basic(row, strict);
  if (row.at("verifies").empty()) return;
  const int verified = verify(row, strict, folder);
  EXPECT_EQ(verified == 0, (row.at("verifies") == "ok") != differs(file)) << file << " " << std::hex << verified;
}

TEST(OcspVectors, AgreeWithTheirManifest) {
  VELPKI_NEED_VECTORS("ocsp", folder);
  size_t rows = 0;
  for (const Row &row : read_tsv(folder + "/manifest.tsv")) {
    const Bytes der = read_file(folder + "/" + row.at("file"));
    ASSERT_FALSE(der.empty()) << row.at("file");
    if (row.at("kind") == "request")
      check_request(row, der);
    else
      check_response(row, der, folder);
    ++rows;
  }
  EXPECT_EQ(rows, 128u);
}

}  // namespace
