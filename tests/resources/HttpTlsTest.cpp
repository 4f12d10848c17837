// Opening https: URIs: which certificates are trusted.
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>

#include <RynCommon/RyUriStream.h>

#include "tests/resources/Fetching.h"
#include "tests/resources/TestServer.h"

namespace RynCommon {
namespace {

template <auto FREE>
struct Freer {
    template <class T>
    void operator()(T* object) const {
        FREE(object);
    }
};
template <class T, auto FREE>
using Owned = std::unique_ptr<T, Freer<FREE>>;

/// A key and the certificate that it signed itself, for 127.0.0.1.
class Certificate {
public:
    Certificate() {
        X509_set_version(x509.get(), X509_VERSION_3);
        ASN1_INTEGER_set(X509_get_serialNumber(x509.get()), 1);
        X509_gmtime_adj(X509_getm_notBefore(x509.get()), -3600);
        X509_gmtime_adj(X509_getm_notAfter(x509.get()), 3600);
        X509_set_pubkey(x509.get(), key.get());
        X509_NAME* const name = X509_get_subject_name(x509.get());
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>("test"), -1, -1, 0);
        X509_set_issuer_name(x509.get(), name);
        const Owned<X509_EXTENSION, X509_EXTENSION_free> host(
            X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1"));
        X509_add_ext(x509.get(), host.get(), -1);
        X509_sign(x509.get(), key.get(), EVP_sha256());
    }

    std::string toPem() const {
        const Owned<BIO, BIO_free_all> out(BIO_new(BIO_s_mem()));
        PEM_write_bio_X509(out.get(), x509.get());
        char* text = nullptr;
        const long size = BIO_get_mem_data(out.get(), &text);
        return {text, static_cast<std::size_t>(size)};
    }

    Owned<EVP_PKEY, EVP_PKEY_free> key{EVP_EC_gen("P-256")};
    Owned<X509, X509_free> x509{X509_new()};
};

TEST(HttpTlsTest, OnlyTrustedCertificatesOpen) {
    const Certificate certificate;
    const Certificate other;
    httplib::SSLServer routes(certificate.x509.get(), certificate.key.get());
    ASSERT_TRUE(routes.is_valid());
    const std::string body = makeNoise(500'000);
    routes.Get("/", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(body, "text/xml;charset=UTF-8");
    });
    routes.Get("/down", [&](const httplib::Request& request, httplib::Response& response) {
        response.set_redirect(request.get_param_value("to"));
    });
    TestServer server(routes);
    httplib::Server plainRoutes;
    plainRoutes.Get("/", [&](const httplib::Request&, httplib::Response& response) {
        response.set_redirect("https://" + server.at("/"));
    });
    TestServer plain(plainRoutes);

    ScratchFolder folder;
    folder.write("right.pem", certificate.toPem());
    folder.write("wrong.pem", other.toPem());
    const std::string right = folder.path("right.pem");
    const std::string wrong = folder.path("wrong.pem");
    const std::string address = "https://" + server.at("/");
    const std::string byName = "https://localhost:" + std::to_string(server.port()) + "/";
    using Path = std::optional<std::string>;
    const struct {
        const char* what;
        Path bundle, file;
        std::string uri;
        const char* error;
    } rows[] = {
        {"bundle", right, {}, address, ""},
        {"file", {}, right, address, ""},
        {"empty bundle", "", right, address, ""},
        {"bundle before file", right, wrong, address, ""},
        {"redirect from http", right, {}, "http://" + plain.at("/"), ""},
        {"other bundle", wrong, {}, address, "Cannot open URL: 003C"},
        {"bundle before right file", wrong, right, address, "Cannot open URL: 003C"},
        {"system's certificates", {}, {}, address, "Cannot open URL: 003C"},
        {"redirect from http, untrusted",
         {},
         {},
         "http://" + plain.at("/"),
         "Cannot open URL: 003C"},
        {"other host", right, {}, byName, "Cannot open URL: 003C"},
        {"missing bundle", folder.path("no.pem"), {}, address, "Cannot open URL: 004D"},
        {"no TLS there", right, {}, "https://" + plain.at("/"), "Cannot open URL: 0023"},
    };
    const ScopedVariable noProxy("https_proxy");
    const ScopedVariable noProxyForAll("all_proxy");
    for (const auto& row : rows) {
        const ScopedVariable bundle("CURL_CA_BUNDLE", row.bundle);
        const ScopedVariable file("SSL_CERT_FILE", row.file);
        const Fetched fetched = fetch(row.uri);
        EXPECT_EQ(fetched.error, row.error) << row.what;
        const bool opens = fetched.error.empty();
        EXPECT_TRUE(fetched.content == (opens ? body : "(none)")) << row.what;
        EXPECT_EQ(fetched.contentType, opens ? "text/xml" : "") << row.what;
    }
}

}  // namespace
}  // namespace RynCommon
