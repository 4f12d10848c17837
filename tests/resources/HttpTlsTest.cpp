// Opening https: URIs: which certificates are trusted.
#include <RynCommon/RyUriStream.h>

#include <gtest/gtest.h>
#include <httplib.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>
#include <thread>

#include "tests/resources/Fetching.h"
#include "tests/resources/RawServer.h"

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

/// Delivers one body to all who trust the certificate.
class TlsServer {
public:
    TlsServer(const Certificate& certificate, const std::string& body)
        : routes_(certificate.x509.get(), certificate.key.get()) {
        EXPECT_TRUE(routes_.is_valid());
        routes_.set_keep_alive_timeout(1);
        routes_.Get("/", [&body](const httplib::Request&, httplib::Response& response) {
            response.set_content(body, "text/xml;charset=UTF-8");
        });
        port_ = routes_.bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { routes_.listen_after_bind(); });
        while (!routes_.is_running()) std::this_thread::yield();
    }
    ~TlsServer() {
        routes_.stop();
        thread_.join();
    }

    std::string at(const std::string& host) const {
        return "https://" + host + ":" + std::to_string(port_) + "/";
    }

private:
    httplib::SSLServer routes_;
    int port_ = 0;
    std::thread thread_;
};

TEST(HttpTlsTest, OnlyTrustedCertificatesOpen) {
    const Certificate certificate;
    const Certificate other;
    const std::string body = makeNoise(500'000);
    const TlsServer server(certificate, body);
    const std::string address = server.at("127.0.0.1");
    const RawServer plain([&](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.0 302 Found\r\nLocation: " + address + "\r\n\r\n");
    });
    const RawServer talksFirst(
        [](Connection& connection) { connection.send("HTTP/1.0 400 Bad\r\n\r\n"); });

    ScratchFolder folder;
    folder.write("right.pem", certificate.toPem());
    folder.write("wrong.pem", other.toPem());
    const std::string right = folder.path("right.pem");
    const std::string wrong = folder.path("wrong.pem");
    using Path = std::optional<std::string>;
    const struct {
        const char* what;
        Path bundle, file;
        std::string uri;
        const char* error;
    } rows[] = {
        {"bundle", right, {}, address, ""},
        {"file", {}, right, address, ""},
        {"bundle before file", right, wrong, address, ""},
        {"redirect from http", right, {}, plain.url(), ""},
        {"system's certificates", {}, {}, address, "Cannot open URL: 003C"},
        {"other host", right, {}, server.at("localhost"), "Cannot open URL: 003C"},
        {"missing bundle", folder.path("no.pem"), {}, address, "Cannot open URL: 004D"},
        {"no TLS there", right, {}, "https" + talksFirst.url().substr(4), "Cannot open URL: 0023"},
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
