// The proxy that the desktop's own settings name.
#pragma once

#include <QNetworkProxy>
#include <QUrl>
#include <string>

namespace korvane {

/// What the desktop says for `address`, as in http_proxy: "http://host:3128", "socks5h://host:1080". Empty
/// when it says nothing or "directly", and when a variable such as https_proxy is set: those go before the
/// desktop's settings, and whoever loads reads them himself. May block while a script of the desktop's is
/// fetched; any thread but the main one.
std::string systemProxyFor(const std::string& address);

/// How a proxy is written in such a variable; empty for none and for kinds that can't carry a download.
std::string proxyAddress(const QNetworkProxy& proxy);

}  // namespace korvane
