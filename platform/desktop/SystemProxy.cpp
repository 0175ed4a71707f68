#include "platform/desktop/SystemProxy.h"

#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>
#include <QString>
#include <algorithm>

namespace korvane {
namespace {

bool environmentNamesAProxy() {
    const auto names = {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy",
                        "ALL_PROXY",  "no_proxy",    "NO_PROXY"};
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

std::string systemProxyFor(const std::string& address) {
    if (environmentNamesAProxy())
        return {};
    const auto proxies =
        QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(QUrl(QString::fromStdString(address))));
    return proxies.isEmpty() ? std::string() : proxyAddress(proxies.front());
}

}  // namespace korvane
