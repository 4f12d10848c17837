// Opening https: URIs: which certificates are trusted.
#include <RynCommon/RyUriStream.h>

#include <gtest/gtest.h>
#include <httplib.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cstdio>
#include <memory>
#include <thread>
#include <tuple>

#include "tests/resources/Fetching.h"
#include "tests/resources/RawServer.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

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
        const auto* const text = reinterpret_cast<const unsigned char*>("127.0.0.1");
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0);
        X509_set_issuer_name(x509.get(), name);
        X509_sign(x509.get(), key.get(), EVP_sha256());
    }

    void write(const std::string& path) const {
        std::FILE* const file = std::fopen(path.c_str(), "w");
        PEM_write_X509(file, x509.get());
        std::fclose(file);
    }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{EVP_EC_gen("P-256"), &EVP_PKEY_free};
    std::unique_ptr<X509, decltype(&X509_free)> x509{X509_new(), &X509_free};
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

Fetched refused(const std::string& code) {
    return {.error = "Cannot open URL: " + code};
}

TEST(HttpTlsTest, OnlyTrustedCertificatesOpen) {
    const Certificate certificate;
    const Certificate other;
    const std::string body = makeRandom(500'000);
    const TlsServer server(certificate, body);
    const std::string address = server.at("127.0.0.1");
    const RawServer plain([&](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.0 302 Found\r\nLocation: " + address + "\r\n\r\n");
    });
    const RawServer talksFirst(
        [](Connection& connection) { connection.send("HTTP/1.0 400 Bad\r\n\r\n"); });

    const ScratchFolder folder;
    const std::string right = folder.path("right.pem");
    const std::string wrong = folder.path("wrong.pem");
    certificate.write(right);
    other.write(wrong);
    using Path = std::optional<std::string>;
    const Fetched opened{body, "", "text/xml"};
    const std::tuple<const char*, Path, Path, std::string, Fetched> rows[] = {
        {"bundle", right, {}, address, opened},
        {"file", {}, right, address, opened},
        {"bundle before file", right, wrong, address, opened},
        {"redirect from http", right, {}, plain.url(), opened},
        {"system's certificates", {}, {}, address, refused("003C")},
        {"other host", right, {}, server.at("localhost"), refused("003C")},
        {"missing bundle", folder.path("no.pem"), {}, address, refused("004D")},
        {"no TLS there", right, {}, "https" + talksFirst.url().substr(4), refused("0023")},
    };
    const ScopedVariable noProxy("https_proxy");
    const ScopedVariable noProxyForAll("all_proxy");
    for (const auto& [what, bundle, file, uri, expected] : rows) {
        const ScopedVariable bundleThere("CURL_CA_BUNDLE", bundle);
        const ScopedVariable fileThere("SSL_CERT_FILE", file);
        EXPECT_EQ(fetch(uri), expected) << what;
    }
}

}  // namespace
}  // namespace RynCommon
