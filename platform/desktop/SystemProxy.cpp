#include "platform/desktop/SystemProxy.h"

#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>
#include <QString>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace korvane {
namespace {

// Of the process, as the threads are.
std::atomic<int> asked = 0;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

bool environmentNamesAProxy() {
    const auto names = {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"};
    return std::any_of(names.begin(), names.end(),
                       [](const char* name) { return !qEnvironmentVariableIsEmpty(name); });
}

QString schemeOf(QNetworkProxy::ProxyType type) {
    switch (type) {
        case QNetworkProxy::HttpProxy:
        case QNetworkProxy::HttpCachingProxy:
            return QStringLiteral("http");
        case QNetworkProxy::Socks5Proxy:
            return QStringLiteral("socks5h");
        case QNetworkProxy::DefaultProxy:
        case QNetworkProxy::NoProxy:
        case QNetworkProxy::FtpCachingProxy:
            return {};
    }
    return {};
}

}  // namespace

std::string proxyAddress(const QNetworkProxy& proxy) {
    const QString scheme = schemeOf(proxy.type());
    if (scheme.isEmpty() || proxy.hostName().isEmpty())
        return {};
    QUrl url;
    url.setScheme(scheme);
    url.setHost(proxy.hostName());
    url.setPort(proxy.port() == 0 ? -1 : proxy.port());
    if (!proxy.user().isEmpty())
        url.setUserName(proxy.user(), QUrl::DecodedMode);
    if (!proxy.password().isEmpty())
        url.setPassword(proxy.password(), QUrl::DecodedMode);
    return url.toString(QUrl::FullyEncoded).toStdString();
}

std::string answerWithin(std::chrono::milliseconds patience, const std::stop_token& stop,
                         std::function<std::string()> ask) {
    struct Answer {
        std::mutex mutex;
        std::condition_variable_any changed;
        std::optional<std::string> text;
    };
    const auto answer = std::make_shared<Answer>();
    ++asked;
    std::thread([answer, ask = std::move(ask)] {
        std::string text;
        try {
            text = ask();
        } catch (const std::exception&) {
            text.clear();
        }
        --asked;
        const std::lock_guard lock(answer->mutex);
        answer->text = std::move(text);
        answer->changed.notify_all();
    }).detach();
    std::unique_lock lock(answer->mutex);
    answer->changed.wait_for(lock, stop, patience, [&] { return answer->text.has_value(); });
    return answer->text.value_or(std::string());
}

bool isAnswerAwaited() {
    return asked != 0;
}

std::string systemProxyFor(const std::string& address, const std::stop_token& stop) {
    if (environmentNamesAProxy())
        return {};
    constexpr std::chrono::seconds patience(5);
    return answerWithin(patience, stop, [url = QUrl(QString::fromStdString(address))] {
        const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
        return proxies.isEmpty() ? std::string() : proxyAddress(proxies.front());
    });
}

}  // namespace korvane
