// The proxy that the desktop's own settings name.
#pragma once

#include <QNetworkProxy>
#include <QUrl>
#include <chrono>
#include <functional>
#include <stop_token>
#include <string>

namespace korvane {

/// What the desktop says for `address`, as in http_proxy: "http://host:3128", "socks5h://host:1080". Empty
/// when it says nothing or "directly", and when a variable such as https_proxy is set: those go before the
/// desktop's settings, and whoever loads reads them himself. Some desktops fetch a script to know it: after
/// five seconds, or once stopped, the answer is empty. Blocks until then; any thread but the main one.
std::string systemProxyFor(const std::string& address, const std::stop_token& stop = {});

/// What `ask` answers, or nothing when it fails, takes longer than `patience` or is stopped. It works on a
/// thread of its own, which is left behind then: what it uses has to outlive the program.
std::string answerWithin(std::chrono::milliseconds patience, const std::stop_token& stop,
                         std::function<std::string()> ask);

/// Whether such a thread still works. The desktop's libraries wait for it when a program leaves in order, so
/// one that has put everything away leaves at once instead.
bool isAnswerAwaited();

/// How a proxy is written in such a variable; empty for none and for kinds that can't carry a download.
std::string proxyAddress(const QNetworkProxy& proxy);

}  // namespace korvane
