// A stop takes effect at once, whatever the download is doing.
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <condition_variable>
#include <mutex>

#include "DownloadFixture.h"

using namespace korvane;
using namespace korvane::test;

namespace {

// Looking up this name hangs until the test lets it go, as it does where the network's name server is gone.
constexpr std::string_view hangingHost = "hangs.invalid";
std::mutex lookupMutex;
std::condition_variable lookupChanged;
bool lookupHangs = false;
int lookups = 0;

}  // namespace

// Stands before the C library's for the library that downloads.
extern "C" int getaddrinfo(const char* name, const char*, const addrinfo*, addrinfo** result) {
    std::unique_lock lock(lookupMutex);
    if (name && name == hangingHost) {
        ++lookups;
        lookupChanged.notify_all();
        lookupChanged.wait(lock, [] { return !lookupHangs; });
        --lookups;
        lookupChanged.notify_all();
        return EAI_AGAIN;
    }
    (void)result;
    return EAI_NONAME;
}
extern "C" void freeaddrinfo(addrinfo*) {}

namespace {

class DownloadStopping : public DownloadFixture {
  protected:
    /// Stops when `ready` says so, and measures from then on.
    void expectQuickStop(const SpeechModel& model,
                         const std::function<bool(const DownloadProgress&)>& ready) {
        std::stop_source stop;
        Clock::time_point asked{};
        bool requested = false;
        // From another thread, as the person's click comes.
        std::thread clicker;
        const auto progress = [&](const DownloadProgress& now) {
            if (requested || !ready(now))
                return;
            requested = true;
            clicker = std::thread([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                asked = Clock::now();
                stop.request_stop();
            });
        };
        EXPECT_THROW(downloadModel(model, store, stop.get_token(), progress, options), CancellationError);
        const auto ended = Clock::now();
        ASSERT_TRUE(requested);
        clicker.join();
        EXPECT_LT(ended - asked, std::chrono::milliseconds(300));
        EXPECT_FALSE(std::filesystem::exists(whole));
    }
};

TEST_F(DownloadStopping, whileNothingComesAnyMore) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", "Content-Length: " + std::to_string(content.size()) + "\r\n") +
                  content.substr(0, half));
        peer.waitForTheEnd();
    });
    expectQuickStop(modelAt(server.address("a.bin")),
                    [&](const auto& now) { return now.receivedBytes == half; });
    EXPECT_EQ(downloadedPart(modelAt(""), store), half);
}

TEST_F(DownloadStopping, whileTheServerIsSilentFromTheBeginning) {
    TestServer server([&](const Received&, Peer& peer) { peer.waitForTheEnd(); });
    expectQuickStop(modelAt(server.address("a.bin")), [&](const auto&) { return server.requests() == 1; });
    EXPECT_TRUE(std::filesystem::is_empty(whole.parent_path()));
}

TEST_F(DownloadStopping, whileTheConnectionIsBeingMade) {
    // Nobody takes connections off this queue, and it is full: the next one gets no answer.
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(::listen(listener, 0), 0);
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    std::vector<int> fillers;
    for (int i = 0; i < 3; ++i) {
        fillers.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        ::connect(fillers.back(), reinterpret_cast<const sockaddr*>(&address), size);
    }
    int reports = 0;
    expectQuickStop(
        modelAt("http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/a.bin"),
        [&](const auto& now) { return now.stage == DownloadStage::connecting && ++reports == 3; });
    for (const int filler : fillers)
        ::close(filler);
    ::close(listener);
}

TEST_F(DownloadStopping, whileTheNameIsBeingLookedUp) {
    {
        const std::lock_guard lock(lookupMutex);
        lookupHangs = true;
    }
    expectQuickStop(modelAt("http://" + std::string(hangingHost) + "/a.bin"), [](const auto&) {
        const std::lock_guard lock(lookupMutex);
        return lookups > 0;
    });
    std::unique_lock lock(lookupMutex);
    EXPECT_GT(lookups, 0) << "it had not been looked up at all";
    lookupHangs = false;
    lookupChanged.notify_all();
    lookupChanged.wait(lock, [] { return lookups == 0; });
}

TEST_F(DownloadStopping, whileItWaitsForTheNextAttempt) {
    options.firstPause = std::chrono::seconds(20);
    TestServer server([&](const Received&, Peer&) {});
    expectQuickStop(modelAt(server.address("a.bin")),
                    [](const auto& now) { return now.stage == DownloadStage::waiting; });
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(DownloadStopping, whileEverythingComesFast) {
    auto model = modelAt("");
    model.bytes = 200 << 20;
    const std::string piece = "lmgg" + std::string(1 << 20, 'x');
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", "Content-Length: " + std::to_string(model.bytes) + "\r\n"));
        while (peer.send(piece)) {
        }
    });
    model.address = server.address("a.bin");
    expectQuickStop(model, [](const auto& now) { return now.receivedBytes > 0; });
}

TEST_F(DownloadStopping, beforeItBegan) {
    std::stop_source stop;
    stop.request_stop();
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    EXPECT_THROW(downloadModel(modelAt(server.address("a.bin")), store, stop.get_token()), CancellationError);
    EXPECT_EQ(server.requests(), 0);
    EXPECT_FALSE(std::filesystem::exists(whole.parent_path()));
}

}  // namespace
