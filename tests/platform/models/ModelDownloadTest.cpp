// The downloader and servers that behave, more or less.
#include "DownloadFixture.h"

#include <latch>

using namespace korvane;
using namespace korvane::test;

namespace {

class ModelDownload : public DownloadFixture {};

TEST_F(ModelDownload, appearsUnderItsNameOnlyWhenItIsWhole) {
    std::latch seen(1);
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", "Content-Length: " + std::to_string(content.size()) + "\r\n"));
        peer.send(content.substr(0, half));
        seen.wait();
        peer.send(content.substr(half));
    });
    bool looked = false;
    const auto file =
        downloadModel(modelAt(server.address("a.bin")), store, {}, [&](const DownloadProgress& now) {
            if (now.receivedBytes != half || looked)
                return;
            looked = true;
            EXPECT_FALSE(std::filesystem::exists(whole));
            EXPECT_EQ(std::filesystem::file_size(part), half);
            seen.count_down();
        });
    EXPECT_TRUE(looked);
    EXPECT_EQ(file, whole);
    expectWhole();
}

TEST_F(ModelDownload, nothingButTheRequestForTheFileLeavesTheMachine) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    download(modelAt(server.address("models/a.bin")));
    ASSERT_EQ(server.requests(), 1);
    const auto request = server.received()[0];
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.target, "/models/a.bin");
    const std::map<std::string, std::string> headers{
        {"host", "127.0.0.1:" + std::to_string(server.port())}, {"user-agent", "korvane"}, {"accept", "*/*"}};
    EXPECT_EQ(request.headers, headers);
}

TEST_F(ModelDownload, whatIsThereIsNotFetchedAgain) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    const auto model = modelAt(server.address("a.bin"));
    download(model);
    download(model);
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(ModelDownload, aDamagedFileOfItsNameIsReplaced) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    for (const auto& damaged : {std::string(content.size(), 'x'), content.substr(0, half)}) {
        folder.file(whole, damaged);
        download(modelAt(server.address("a.bin")));
        expectWhole();
    }
}

TEST_F(ModelDownload, goesOnWhereTheConnectionBroke) {
    TestServer server([&](const Received& request, Peer& peer) {
        if (request.from() > 0)
            return serveFile(request, peer, content);
        peer.send(
            head("200 OK", "ETag: \"v1\"\r\nContent-Length: " + std::to_string(content.size()) + "\r\n"));
        peer.send(content.substr(0, half));
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
    ASSERT_EQ(server.requests(), 2);
    EXPECT_EQ(server.received()[1].header("range"), "bytes=" + std::to_string(half) + "-");
    EXPECT_EQ(server.received()[1].header("if-range"), "\"v1\"");
}

TEST_F(ModelDownload, aDateServesWhereTheServerHasNoTag) {
    TestServer server([&](const Received& request, Peer& peer) {
        const std::string date = "Thu, 01 Aug 2024 10:00:00 GMT";
        if (request.from() > 0)
            return serveFile(request, peer, content, date);
        peer.send(head("200 OK", "ETag: W/\"weak\"\r\nLast-Modified: " + date +
                                     "\r\nContent-Length: " + std::to_string(content.size()) + "\r\n"));
        peer.send(content.substr(0, half));
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.received()[1].header("if-range"), "Thu, 01 Aug 2024 10:00:00 GMT");
}

TEST_F(ModelDownload, survivesAConnectionThatBreaksAgainAndAgainAsLongAsItBringsSomething) {
    TestServer server([&](const Received& request, Peer& peer) {
        const auto from = request.from();
        peer.send(head(from == 0 ? "200 OK" : "206 Partial Content",
                       "Content-Length: " + std::to_string(content.size() - from) +
                           "\r\nContent-Range: bytes " + std::to_string(from) + "-" +
                           std::to_string(content.size() - 1) + "/" + std::to_string(content.size()) +
                           "\r\n"));
        peer.send(content.substr(from, content.size() / 10 + 1));
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.requests(), 10);
}

TEST_F(ModelDownload, stoppedAndResumedFetchesOnlyTheRest) {
    std::atomic<bool> first = true;
    TestServer server([&](const Received& request, Peer& peer) {
        if (!first.exchange(false))
            return serveFile(request, peer, content);
        peer.send(
            head("200 OK", "ETag: \"v1\"\r\nContent-Length: " + std::to_string(content.size()) + "\r\n"));
        peer.send(content.substr(0, half));
        peer.waitForTheEnd();
    });
    const auto model = modelAt(server.address("a.bin"));
    downloadUntil(model, half);
    EXPECT_EQ(downloadedPart(model, store), half);
    std::vector<DownloadProgress> reports;
    downloadModel(
        model, store, {}, [&](const DownloadProgress& now) { reports.push_back(now); }, options);
    expectWhole();
    EXPECT_EQ(server.received()[1].from(), half);
    EXPECT_EQ(server.received()[1].header("if-range"), "\"v1\"");
    for (const auto& now : reports)
        EXPECT_TRUE(now.receivedBytes >= half || now.stage == DownloadStage::verifying);
}

TEST_F(ModelDownload, anotherVersionOnTheServerStartsAnew) {
    folder.file(part, std::string(half, 'o'));
    const auto model0 = modelAt("");
    TestServer server(
        [&](const Received& request, Peer& peer) { serveFile(request, peer, content, "\"v2\""); });
    const auto model = modelAt(server.address("a.bin"));
    folder.file(part.string() + ".json", R"({"address": ")" + model.address +
                                             R"(", "version": "\"v1\"", "sha256": ")" + model.sha256 + "\"}");
    download(model);
    expectWhole();
    EXPECT_EQ(server.received()[0].header("if-range"), "\"v1\"");
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(ModelDownload, aPartOfWhatTheListNoLongerNamesIsNotUsed) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    folder.file(part, std::string(half, 'o'));
    folder.file(part.string() + ".json", R"({"sha256": "0123"})");
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.received()[0].header("range"), "");
}

TEST_F(ModelDownload, aPartWithWrongBytesIsFetchedOnceMoreFromTheBeginning) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    folder.file(part, std::string(half, 'o'));  // as a loss of power may leave it
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.requests(), 2);
}

TEST_F(ModelDownload, aPartThatIsWholeNeedsNoServer) {
    folder.file(part, content);
    download(modelAt("http://127.0.0.1:9/a.bin"));
    expectWhole();
}

TEST_F(ModelDownload, aPartLongerThanTheModelIsOfSomethingElse) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    folder.file(part, content + "more");
    const auto model = modelAt(server.address("a.bin"));
    EXPECT_EQ(downloadedPart(model, store), 0U);
    download(model);
    expectWhole();
}

TEST_F(ModelDownload, followsRedirectsAndAsksThereForTheRestToo) {
    TestServer content2([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("302 Found", "ETag: \"other\"\r\nLocation: " + content2.address("b.bin") +
                                        "\r\nContent-Length: 5\r\n") +
                  "moved");
    });
    folder.file(part, content.substr(0, half));
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(content2.received()[0].from(), half);
}

TEST_F(ModelDownload, reportsHowFarItIsAtMostTenTimesASecondAndNeverBackwards) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", "Content-Length: " + std::to_string(content.size()) + "\r\n"));
        for (int i = 0; i < 100; ++i) {
            peer.send(content.substr(content.size() * i / 100,
                                     content.size() * (i + 1) / 100 - content.size() * i / 100));
            std::this_thread::sleep_for(std::chrono::milliseconds(12));  // a slow line
        }
    });
    std::vector<DownloadProgress> reports;
    const auto start = Clock::now();
    downloadModel(modelAt(server.address("a.bin")), store, {},
                  [&](const DownloadProgress& now) { reports.push_back(now); });
    const std::chrono::duration<double> took = Clock::now() - start;
    EXPECT_LE(static_cast<double>(reports.size()), took.count() * 10 + 3);
    EXPECT_GE(reports.size(), 5U);
    std::uint64_t before = 0;
    for (const auto& now : reports) {
        EXPECT_GE(now.receivedBytes, before);
        EXPECT_EQ(now.totalBytes, content.size());
        before = now.receivedBytes;
    }
    EXPECT_EQ(before, content.size());
    const auto& late = reports[reports.size() - 2];
    EXPECT_GT(late.bytesPerSecond, static_cast<double>(content.size()) / took.count() / 2);
    EXPECT_LT(late.bytesPerSecond, static_cast<double>(content.size()) / took.count() * 2);
    ASSERT_TRUE(late.secondsLeft);
    EXPECT_LT(*late.secondsLeft, 1);
}

}  // namespace
