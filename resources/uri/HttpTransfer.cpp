// Requests through libcurl's multi interface.
#include "resources/uri/HttpTransfer.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace RynCommon::uri {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr long CONNECT_TIMEOUT_MS = 5000;
constexpr milliseconds STALL_LIMIT{30000};
/// The library wakes up itself when its sockets or timers do; this only bounds one wait.
constexpr milliseconds LONGEST_POLL{1000};
constexpr long MAX_REDIRECTS = 16;
constexpr const char* PROTOCOLS = "http,https";
/// Heads of all answers together, trailers included.
constexpr std::size_t MAX_HEAD_BYTES = 256 * 1024;
/// What an answer may carry that is read only to get past it: the body of a redirect.
constexpr curl_off_t MAX_SKIPPED_BYTES = 1024 * 1024;
/// At least CURL_MAX_WRITE_SIZE, the most that one callback brings.
constexpr std::size_t BUFFER_BYTES = 64 * 1024;
static_assert(BUFFER_BYTES >= CURL_MAX_WRITE_SIZE);

#if defined(__linux__)
#define RYN_SYSTEM_NAME "Linux"
#elif defined(_WIN32)
#define RYN_SYSTEM_NAME "Windows"
#else
#define RYN_SYSTEM_NAME "POSIX"
#endif
constexpr const char* USER_AGENT =
    "RynCommon/" RYNCOMMON_VERSION " (" RYN_SYSTEM_NAME "; C++ library)";

constexpr std::array REQUEST_HEADERS = {"Accept: */*", "Cache-Control: no-cache",
                                        "Pragma: no-cache"};

struct CleanEasy {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct CleanMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using Headers = std::unique_ptr<curl_slist, FreeList>;

/// Never undone: other users of the library may live in the process.
CURLcode startLibrary() {
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    return result;
}

/// Null when memory ran out.
Headers makeHeaders() {
    Headers list;
    for (const char* const line : REQUEST_HEADERS) {
        curl_slist* const longer = curl_slist_append(list.get(), line);
        if (longer == nullptr) return nullptr;
        static_cast<void>(list.release());
        list.reset(longer);
    }
    return list;
}

/// The file of trusted certificates that the user chose; null when there is none.
const char* findCertificates() {
    for (const char* const name : {"CURL_CA_BUNDLE", "SSL_CERT_FILE"}) {
        const char* const path = std::getenv(name);
        if (path != nullptr && *path != '\0') return path;
    }
    return nullptr;
}

bool isSuccess(long status) {
    return status >= 200 && status < 300;
}

/// Sets options until one fails.
class Options {
public:
    explicit Options(CURL* easy) : easy_(easy) {}

    template <class T>
    void set(CURLoption option, T value) {
        if (result_ == CURLE_OK) result_ = curl_easy_setopt(easy_, option, value);
    }
    CURLcode getResult() const { return result_; }

private:
    CURL* easy_;
    CURLcode result_ = CURLE_OK;
};

void setCertificates(Options& options) {
    const char* const file = findCertificates();
    if (file == nullptr) return;
    const char* const noDirectory = nullptr;
    options.set(CURLOPT_CAINFO, file);
    options.set(CURLOPT_CAPATH, noDirectory);
    options.set(CURLOPT_PROXY_CAINFO, file);
    options.set(CURLOPT_PROXY_CAPATH, noDirectory);
}

}  // namespace

struct HttpTransfer::Request {
    Request();
    ~Request();

    bool isUsable() const { return easy && multi && headers; }
    CURLcode configure(const char* url);
    /// Lets the library do what it can without waiting.
    void perform();
    /// Waits until `isReached` or the end of the transfer.
    template <class Condition>
    void waitFor(Condition isReached);
    void end(CURLcode code);
    std::size_t filled() const { return last - first; }
    long status() const;
    std::string contentType() const;

    std::size_t takeHead(std::string_view line);
    std::size_t takeBody(const char* bytes, std::size_t count);
    static std::size_t onHead(char* bytes, std::size_t size, std::size_t count, void* user);
    static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* user);
    static int onProgress(void* user, curl_off_t total, curl_off_t now, curl_off_t, curl_off_t);

    Headers headers;
    // The easy handle leaves the multi handle before either is freed.
    std::unique_ptr<CURLM, CleanMulti> multi;
    std::unique_ptr<CURL, CleanEasy> easy;
    std::unique_ptr<char[]> buffer = std::make_unique_for_overwrite<char[]>(BUFFER_BYTES);
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t headBytes = 0;
    /// Changes with every byte that counts against the stall limit.
    std::uint64_t received = 0;
    CURLcode result = CURLE_OK;
    bool hasStatusLine = false;
    /// Whether the head of the final answer is complete.
    bool hasHead = false;
    bool isPaused = false;
    bool isEnded = false;
};

HttpTransfer::Request::Request()
    : headers(makeHeaders()), multi(curl_multi_init()), easy(curl_easy_init()) {}

HttpTransfer::Request::~Request() {
    if (easy && multi) curl_multi_remove_handle(multi.get(), easy.get());
}

CURLcode HttpTransfer::Request::configure(const char* url) {
    Options options(easy.get());
    options.set(CURLOPT_URL, url);
    options.set(CURLOPT_PROTOCOLS_STR, PROTOCOLS);
    options.set(CURLOPT_REDIR_PROTOCOLS_STR, PROTOCOLS);
    options.set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    options.set(CURLOPT_HTTPHEADER, headers.get());
    options.set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
    options.set(CURLOPT_USERAGENT, USER_AGENT);
    options.set(CURLOPT_FOLLOWLOCATION, 1L);
    options.set(CURLOPT_MAXREDIRS, MAX_REDIRECTS);
    options.set(CURLOPT_UNRESTRICTED_AUTH, 0L);
    options.set(CURLOPT_SSL_VERIFYPEER, 1L);
    options.set(CURLOPT_SSL_VERIFYHOST, 2L);
    setCertificates(options);
    options.set(CURLOPT_NOSIGNAL, 1L);
    options.set(CURLOPT_CONNECTTIMEOUT_MS, CONNECT_TIMEOUT_MS);
    // A proxy's answer to CONNECT is none of the server's.
    options.set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    options.set(CURLOPT_HEADERFUNCTION, &onHead);
    options.set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    options.set(CURLOPT_WRITEFUNCTION, &onBody);
    options.set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    options.set(CURLOPT_XFERINFOFUNCTION, &onProgress);
    options.set(CURLOPT_XFERINFODATA, static_cast<void*>(this));
    options.set(CURLOPT_NOPROGRESS, 0L);
    if (options.getResult() != CURLE_OK) return options.getResult();
    const CURLMcode added = curl_multi_add_handle(multi.get(), easy.get());
    return added == CURLM_OK ? CURLE_OK : CURLE_FAILED_INIT;
}

/// Redirects are followed and 1xx is no answer; whatever else has a head ends the search for one.
std::size_t HttpTransfer::Request::takeHead(std::string_view line) {
    headBytes += line.size();
    received += line.size();
    if (headBytes > MAX_HEAD_BYTES) return 0;
    if (line.starts_with("HTTP/")) hasStatusLine = true;
    const long code = line == "\r\n" || line == "\n" ? status() : 0;
    if (isSuccess(code) || code >= 400) hasHead = true;
    return line.size();
}

/// The bodies of redirects do not come here.
std::size_t HttpTransfer::Request::takeBody(const char* bytes, std::size_t count) {
    hasHead = true;
    if (count > BUFFER_BYTES - last) {
        isPaused = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    std::memcpy(buffer.get() + last, bytes, count);
    last += count;
    received += count;
    return count;
}

std::size_t HttpTransfer::Request::onHead(char* bytes, std::size_t size, std::size_t count,
                                          void* user) {
    return static_cast<Request*>(user)->takeHead({bytes, size * count});
}

std::size_t HttpTransfer::Request::onBody(char* bytes, std::size_t size, std::size_t count,
                                          void* user) {
    return static_cast<Request*>(user)->takeBody(bytes, size * count);
}

int HttpTransfer::Request::onProgress(void* user, curl_off_t, curl_off_t now, curl_off_t,
                                      curl_off_t) {
    return !static_cast<Request*>(user)->hasHead && now > MAX_SKIPPED_BYTES ? 1 : 0;
}

void HttpTransfer::Request::end(CURLcode code) {
    isEnded = true;
    result = code;
}

void HttpTransfer::Request::perform() {
    if (isEnded) return;
    if (first == last) first = last = 0;
    if (isPaused && last == 0) {
        isPaused = false;
        const CURLcode resumed = curl_easy_pause(easy.get(), CURLPAUSE_CONT);
        if (resumed != CURLE_OK) return end(resumed);
    }
    int running = 0;
    if (curl_multi_perform(multi.get(), &running) != CURLM_OK) return end(CURLE_FAILED_INIT);
    int waiting = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi.get(), &waiting)) {
        if (message->msg == CURLMSG_DONE) end(message->data.result);
    }
}

template <class Condition>
void HttpTransfer::Request::waitFor(Condition isReached) {
    perform();
    std::uint64_t seen = received;
    Clock::time_point deadline = Clock::now() + STALL_LIMIT;
    while (!isEnded && !isReached()) {
        const Clock::time_point now = Clock::now();
        if (received != seen) deadline = now + STALL_LIMIT;
        seen = received;
        const auto left = std::chrono::duration_cast<milliseconds>(deadline - now);
        if (left.count() <= 0) return end(CURLE_OPERATION_TIMEDOUT);
        curl_multi_poll(multi.get(), nullptr, 0,
                        static_cast<int>(std::min(left, LONGEST_POLL).count()), nullptr);
        perform();
    }
}

long HttpTransfer::Request::status() const {
    long code = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &code);
    return code;
}

std::string HttpTransfer::Request::contentType() const {
    constexpr int LAST_REQUEST = -1;
    curl_header* header = nullptr;
    const CURLHcode found =
        curl_easy_header(easy.get(), "Content-Type", 0, CURLH_HEADER, LAST_REQUEST, &header);
    return found == CURLHE_OK ? header->value : "";
}

HttpTransfer::HttpTransfer() = default;
HttpTransfer::~HttpTransfer() = default;

/// Before an answer begins and after a connection was made, the status is what is missing.
HttpTransfer::Failure HttpTransfer::findFailure() const {
    long sent = 0;
    curl_easy_getinfo(request_->easy.get(), CURLINFO_REQUEST_SIZE, &sent);
    return sent > 0 && !request_->hasStatusLine ? Failure::NO_STATUS : Failure::NOT_OPENED;
}

void HttpTransfer::close(int result) {
    result_ = result;
    request_.reset();
}

HttpTransfer::Failure HttpTransfer::open(const std::string& url) {
    result_ = startLibrary();
    if (result_ != CURLE_OK) return Failure::NO_ACCESS;
    request_ = std::make_unique<Request>();
    if (!request_->isUsable()) {
        close(CURLE_FAILED_INIT);
        return Failure::NO_ACCESS;
    }
    // The library would take "http:80" for a host of that name and a port.
    const bool hasAuthority = url.find("://") != std::string::npos;
    const CURLcode configured =
        hasAuthority ? request_->configure(url.c_str()) : CURLE_URL_MALFORMAT;
    if (configured != CURLE_OK) {
        close(configured);
        return Failure::NOT_OPENED;
    }
    request_->waitFor([this] { return request_->hasHead; });
    // A redirect without a target is an answer, too, known as such when it ends.
    const long status = request_->status();
    const bool isUnfollowed = request_->result == CURLE_OK && status >= 300 && status < 400;
    if (!request_->hasHead && !isUnfollowed) {
        const int result = request_->result == CURLE_OK ? CURLE_PARTIAL_FILE : request_->result;
        const Failure failure = findFailure();
        close(result);
        return failure;
    }
    status_ = static_cast<int>(status);
    contentType_ = request_->contentType();
    if (!isSuccess(status_)) {
        close(CURLE_OK);
    } else {
        request_->waitFor([this] { return request_->filled() > 0; });
    }
    return Failure::NONE;
}

std::size_t HttpTransfer::available() {
    if (!request_) return 0;
    if (request_->filled() == 0) request_->perform();
    return request_->filled();
}

bool HttpTransfer::isAtEnd() const {
    return !request_ || (request_->isEnded && request_->filled() == 0);
}

std::size_t HttpTransfer::read(char* target, std::size_t count) {
    if (!request_) return 0;
    if (request_->filled() == 0) request_->waitFor([this] { return request_->filled() > 0; });
    const std::size_t taken = std::min(count, request_->filled());
    std::memcpy(target, request_->buffer.get() + request_->first, taken);
    request_->first += taken;
    if (isAtEnd()) close(request_->result);
    return taken;
}

}  // namespace RynCommon::uri
