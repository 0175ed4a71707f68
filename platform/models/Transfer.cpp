#include "platform/models/Transfer.h"

#include <curl/curl.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <memory>
#include <mutex>
#include <new>

#include "platform/models/AnswerHead.h"
#include "platform/models/ModelError.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

constexpr int pollMs = 100;
constexpr long connectSeconds = 20;
constexpr long mostRedirects = 10;

struct FreeEasy {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct FreeMulti {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using Easy = std::unique_ptr<CURL, FreeEasy>;
using Multi = std::unique_ptr<CURLM, FreeMulti>;
using List = std::unique_ptr<curl_slist, FreeList>;
using Clock = std::chrono::steady_clock;

void prepareLibraryOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

bool bringsTheFile(long status) {
    return status == 200 || status == 206;
}

/// Adds the transfer to the multi handle for its lifetime.
class Attached {
  public:
    Attached(CURLM* multi, CURL* easy) : multi_(multi), easy_(easy) { curl_multi_add_handle(multi, easy); }
    ~Attached() { curl_multi_remove_handle(multi_, easy_); }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

  private:
    CURLM* multi_;
    CURL* easy_;
};

class Exchange {
  public:
    Exchange(const TransferRequest& request, const TransferCallbacks& callbacks)
        : request_(request), callbacks_(callbacks), easy_(curl_easy_init()), multi_(curl_multi_init()) {
        if (!easy_ || !multi_)
            throw std::bad_alloc();
        setUp();
    }

    TransferEnd run(const std::stop_token& stop) {
        const Attached attached(multi_.get(), easy_.get());
        const std::stop_callback wake(stop, [this] { curl_multi_wakeup(multi_.get()); });
        for (int running = 1; running != 0;) {
            checkCancelled(stop);
            curl_multi_perform(multi_.get(), &running);
            if (thrown_)
                std::rethrow_exception(thrown_);
            callbacks_.tick();
            if (running != 0 && Clock::now() - heard_ > request_.silence)
                return silent();
            if (running != 0)
                curl_multi_poll(multi_.get(), nullptr, 0, pollMs, nullptr);
        }
        checkCancelled(stop);
        return end();
    }

  private:
    template <class T>
    void set(CURLoption option, T value) {
        if (curl_easy_setopt(easy_.get(), option, value) == CURLE_OUT_OF_MEMORY)
            throw std::bad_alloc();
    }

    void setUp() {
        set(CURLOPT_URL, request_.address.c_str());
        set(CURLOPT_USERAGENT, "korvane");
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_ERRORBUFFER, words_.data());
        // What was asked for over TLS never comes without.
        const char* protocols = request_.address.starts_with("https:") ? "https" : "http,https";
        set(CURLOPT_PROTOCOLS_STR, protocols);
        set(CURLOPT_REDIR_PROTOCOLS_STR, protocols);
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, mostRedirects);
        set(CURLOPT_CONNECTTIMEOUT, connectSeconds);
        set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
        set(CURLOPT_PROXYAUTH, CURLAUTH_ANY);
#if LIBCURL_VERSION_NUM >= 0x075700
        // A name that is being looked up can't be interrupted; without this, stopping waits for it.
        set(CURLOPT_QUICK_EXIT, 1L);
#endif
        if (!request_.proxy.empty()) {
            set(CURLOPT_PROXY, request_.proxy.c_str());
            set(CURLOPT_NOPROXY, "");
        }
        // As OpenSSL's own programs: for whom the system's certificates are not the right ones.
        if (const char* certificates = std::getenv("SSL_CERT_FILE"))
            set(CURLOPT_CAINFO, certificates);
        set(CURLOPT_HEADERFUNCTION, &Exchange::onHeader);
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Exchange::onBody);
        set(CURLOPT_WRITEDATA, this);
        if (request_.from == 0)
            return;
        set(CURLOPT_RANGE, (std::to_string(request_.from) + "-").c_str());
        if (request_.version.empty())
            return;
        headers_.reset(curl_slist_append(nullptr, ("If-Range: " + request_.version).c_str()));
        set(CURLOPT_HTTPHEADER, headers_.get());
    }

    long status() const {
        long status = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
        return status;
    }

    static std::size_t onHeader(char* line, std::size_t, std::size_t count, void* self) {
        auto& exchange = *static_cast<Exchange*>(self);
        try {
            exchange.takeHeader({line, count});
            return count;
        } catch (...) {
            exchange.thrown_ = std::current_exception();
            return 0;
        }
    }

    static std::size_t onBody(char* bytes, std::size_t, std::size_t count, void* self) {
        auto& exchange = *static_cast<Exchange*>(self);
        try {
            exchange.take({reinterpret_cast<const std::byte*>(bytes), count});
            return count;
        } catch (...) {
            exchange.thrown_ = std::current_exception();
            return 0;
        }
    }

    void takeHeader(std::string_view line) {
        heard_ = Clock::now();
        head_.addLine(line);
        const bool last = line == "\r\n" || line == "\n";
        if (last && bringsTheFile(status()))
            announce();
    }

    void take(std::span<const std::byte> bytes) {
        heard_ = Clock::now();
        if (!bringsTheFile(status()))
            return;  // a page that explains an error
        announce();
        callbacks_.received(bytes);
    }

    void announce() {
        if (announced_)
            return;
        announced_ = true;
        callbacks_.answered(head_.answer(static_cast<int>(status())));
    }

    TransferEnd silent() const {
        TransferEnd end;
        end.failure = sentence(CURLE_OPERATION_TIMEDOUT, 0);
        return end;
    }

    TransferEnd end() {
        TransferEnd end;
        end.status = static_cast<int>(status());
        end.pause = head_.retryAfter();
        int left = 0;
        const CURLMsg* message = curl_multi_info_read(multi_.get(), &left);
        const CURLcode code = message ? message->data.result : CURLE_OUT_OF_MEMORY;
        if (code == CURLE_OK)
            return end;
        long tunnel = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_CONNECTCODE, &tunnel);
        if (end.status == 0 && tunnel >= 300) {
            end.status = static_cast<int>(tunnel);
            end.ofProxy = true;
            return end;
        }
        end.failure = sentence(code, end.status);
        end.hopeless = code == CURLE_PEER_FAILED_VERIFICATION || code == CURLE_SSL_CACERT_BADFILE ||
                       code == CURLE_TOO_MANY_REDIRECTS || code == CURLE_URL_MALFORMAT ||
                       (code == CURLE_UNSUPPORTED_PROTOCOL && end.status >= 300);
        return end;
    }

    std::string sentence(CURLcode code, int status) const {
        const std::string server = "The server \"" + hostOf(request_.address) + "\"";
        switch (code) {
            case CURLE_COULDNT_RESOLVE_HOST:
                return server + " can't be found; is there a connection to the internet?";
            case CURLE_COULDNT_RESOLVE_PROXY:
                return "The proxy for the way to \"" + hostOf(request_.address) + "\" can't be found.";
            case CURLE_COULDNT_CONNECT:
                return server + ", or the proxy on the way to it, can't be reached.";
            case CURLE_OPERATION_TIMEDOUT:
                return server + " doesn't answer any more.";
            case CURLE_PEER_FAILED_VERIFICATION:
                return server +
                       " can't be trusted: its certificate is not valid here; some networks want you to sign "
                       "in on "
                       "a web page first.";
            case CURLE_TOO_MANY_REDIRECTS:
                return server + " sends the request on and on, from one address to the next.";
            case CURLE_UNSUPPORTED_PROTOCOL:
                if (status >= 300)
                    return server +
                           " sends the request on to an address without encryption, which is not followed.";
                return server + " doesn't speak HTTP.";
            case CURLE_PARTIAL_FILE:
            case CURLE_GOT_NOTHING:
            case CURLE_RECV_ERROR:
            case CURLE_SEND_ERROR:
            case CURLE_HTTP2:
            case CURLE_HTTP2_STREAM:
                return "The connection to \"" + hostOf(request_.address) + "\" broke.";
            default:
                return "The download from \"" + hostOf(request_.address) +
                       "\" failed: " + (words_[0] != '\0' ? words_.data() : curl_easy_strerror(code)) + ".";
        }
    }

    const TransferRequest& request_;
    const TransferCallbacks& callbacks_;
    Easy easy_;
    Multi multi_;
    List headers_;
    std::array<char, CURL_ERROR_SIZE> words_{};
    AnswerHead head_;
    Clock::time_point heard_ = Clock::now();  ///< when something came, at first when it began
    bool announced_ = false;
    std::exception_ptr thrown_;
};

}  // namespace

std::string hostOf(const std::string& address) {
    const auto scheme = address.find("://");
    const auto start = scheme == std::string::npos ? 0 : scheme + 3;
    std::string host = address.substr(start, address.find('/', start) - start);
    if (const auto at = host.rfind('@'); at != std::string::npos)
        host.erase(0, at + 1);
    // The colons of an address of numbers stand in brackets.
    if (const auto colon = host.rfind(':');
        colon != std::string::npos && host.find(']', colon) == std::string::npos)
        host.erase(colon);
    return host;
}

TransferEnd transfer(const TransferRequest& request, const TransferCallbacks& callbacks,
                     const std::stop_token& stop) {
    prepareLibraryOnce();
    return Exchange(request, callbacks).run(stop);
}

}  // namespace korvane
