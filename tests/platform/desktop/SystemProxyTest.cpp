#include "platform/desktop/SystemProxy.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <new>
#include <thread>

namespace korvane {
namespace {

QNetworkProxy proxy(QNetworkProxy::ProxyType type, const char* host, quint16 port = 0, const char* user = "",
                    const char* password = "") {
    return {type, QString::fromUtf8(host), port, QString::fromUtf8(user), QString::fromUtf8(password)};
}

TEST(SystemProxy, isWrittenAsInTheEnvironment) {
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::HttpProxy, "proxy.example", 3128)),
              "http://proxy.example:3128");
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::HttpCachingProxy, "proxy.example")), "http://proxy.example");
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::Socks5Proxy, "10.0.0.1", 1080)), "socks5h://10.0.0.1:1080");
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::HttpProxy, "::1", 8080)), "http://[::1]:8080");
}

TEST(SystemProxy, carriesANameAndAPassword) {
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::HttpProxy, "proxy.example", 3128, "ann", "p@ss:w/rd")),
              "http://ann:p%40ss:w%2Frd@proxy.example:3128");
}

TEST(SystemProxy, isNoneWhereNothingGoesThroughOne) {
    EXPECT_EQ(proxyAddress(QNetworkProxy(QNetworkProxy::NoProxy)), "");
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::FtpCachingProxy, "proxy.example", 21)), "");
    EXPECT_EQ(proxyAddress(proxy(QNetworkProxy::HttpProxy, "")), "");
}

TEST(SystemProxy, leavesTheEnvironmentToWhoeverLoads) {
    qputenv("https_proxy", "http://from-environment.example:1");
    EXPECT_EQ(systemProxyFor("https://example.com/file"), "");
    qunsetenv("https_proxy");
}

TEST(SystemProxy, isWhatIsAnsweredInTime) {
    EXPECT_EQ(answerWithin(std::chrono::minutes(1), {}, [] { return std::string("http://proxy.example"); }),
              "http://proxy.example");
    EXPECT_FALSE(isAnswerAwaited());
    EXPECT_EQ(answerWithin(std::chrono::minutes(1), {}, []() -> std::string { throw std::bad_alloc(); }), "");
    EXPECT_FALSE(isAnswerAwaited());
}

// A script that the desktop has to fetch may never come.
TEST(SystemProxy, isNoneWhereNobodyAnswers) {
    static std::promise<void> never;
    const auto silent = [waiting = never.get_future().share()] {
        waiting.wait();
        return std::string("http://too.late");
    };
    EXPECT_EQ(answerWithin(std::chrono::milliseconds(20), {}, silent), "");

    std::stop_source stop;
    const std::jthread person([&] { stop.request_stop(); });
    EXPECT_EQ(answerWithin(std::chrono::hours(1), stop.get_token(), silent), "");
    EXPECT_TRUE(isAnswerAwaited()) << "both threads were left behind";
}

}  // namespace
}  // namespace korvane
