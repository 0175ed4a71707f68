// The downloader and servers that lie, fail, or send something else.
#include <sys/resource.h>
#include <sys/wait.h>
#include <csignal>

#include "DownloadFixture.h"

using namespace korvane;
using namespace korvane::test;
using testing::HasSubstr;

namespace {

class DownloadTrouble : public DownloadFixture {
  protected:
    static std::string lengthLine(std::size_t bytes) {
        return "Content-Length: " + std::to_string(bytes) + "\r\n";
    }
};

TEST_F(DownloadTrouble, aRefusedRangeStartsAnew) {
    std::atomic<bool> first = true;
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", lengthLine(content.size())));
        peer.send(first.exchange(false) ? content.substr(0, half) : content);
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.requests(), 2);
}

TEST_F(DownloadTrouble, aRangeThatTheServerCallsImpossibleStartsAnew) {
    TestServer server([&](const Received& request, Peer& peer) {
        if (request.from() > 0)
            peer.send(head("416 Range Not Satisfiable", lengthLine(0)));
        else
            serveFile(request, peer, content);
    });
    folder.file(part, content.substr(0, half));
    download(modelAt(server.address("a.bin")));
    expectWhole();
}

TEST_F(DownloadTrouble, anotherRangeThanTheOneAskedForStartsAnew) {
    TestServer server([&](const Received& request, Peer& peer) {
        if (request.from() == 0)
            return serveFile(request, peer, content);
        peer.send(head("206 Partial Content", lengthLine(content.size()) + "Content-Range: bytes 0-" +
                                                  std::to_string(content.size() - 1) + "/" +
                                                  std::to_string(content.size()) + "\r\n"));
        peer.send(content);
    });
    folder.file(part, content.substr(0, half));
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.requests(), 2);
}

TEST_F(DownloadTrouble, aRangeOfAnotherVersionStartsAnew) {
    TestServer server([&](const Received& request, Peer& peer) {
        auto asked = request;
        asked.headers.erase("if-range");  // a server that doesn't know it
        serveFile(asked, peer, content, "\"v2\"");
    });
    const auto model = modelAt(server.address("a.bin"));
    folder.file(part, std::string(half, 'o'));
    folder.file(part.string() + ".json", R"({"address": ")" + model.address +
                                             R"(", "version": "\"v1\"", "sha256": ")" + model.sha256 + "\"}");
    download(model);
    expectWhole();
    EXPECT_EQ(server.requests(), 2);
}

TEST_F(DownloadTrouble, aFileOfAnotherLengthIsRefusedBeforeItIsFetched) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", lengthLine(1234)));
        peer.waitForTheEnd();
    });
    folder.file(part, content.substr(0, half));
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("1234 bytes instead of"));
    EXPECT_EQ(server.requests(), 1);
    EXPECT_EQ(contentOf(part), content.substr(0, half)) << "what had arrived may still be good";
}

TEST_F(DownloadTrouble, lessThanWasAnnouncedEachTimeIsGivenUp) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", lengthLine(content.size())));
        peer.send(content.substr(0, half));
    });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("broke"));
    EXPECT_EQ(server.requests(), 6);  // one that brought something, five that brought nothing more
    EXPECT_EQ(contentOf(part), content.substr(0, half));
}

TEST_F(DownloadTrouble, anAnswerWithoutLengthThatEndsEarlyGoesOn) {
    TestServer server([&](const Received& request, Peer& peer) {
        if (request.from() > 0)
            return serveFile(request, peer, content);
        peer.send(head("200 OK"));
        peer.send(content.substr(0, half));
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
}

TEST_F(DownloadTrouble, anAnswerWithoutLengthThatNeverEndsIsCutShort) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK"));
        while (peer.send(content)) {
        }
    });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("doesn't end where it should"));
    EXPECT_FALSE(std::filesystem::exists(part));
}

TEST_F(DownloadTrouble, wrongBytesAreRefusedAndNothingIsKept) {
    auto wrong = content;
    wrong[half] ^= 1;
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, wrong); });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("SHA-256"));
    EXPECT_EQ(server.requests(), 1);
    EXPECT_TRUE(std::filesystem::is_empty(whole.parent_path()));
}

TEST_F(DownloadTrouble, aWebPageIsNotAModel) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", "Content-Type: text/html; charset=utf-8\r\n") +
                  "<html>Sign in, please</html>");
    });
    folder.file(part, content.substr(0, half));
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("web page"));
    EXPECT_EQ(contentOf(part), content.substr(0, half));
}

TEST_F(DownloadTrouble, aWebPageThatDoesNotSaySoIsNotAModelEither) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK") + "\n<!DOCTYPE html><title>Sign in, please</title>");
    });
    folder.file(part, content.substr(0, half));
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("web page"));
    EXPECT_EQ(server.requests(), 1);
    EXPECT_TRUE(contentOf(part) == content.substr(0, half)) << "what had arrived is lost";
}

TEST_F(DownloadTrouble, whatBeginsLikeNoModelIsRefusedAtOnce) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", lengthLine(content.size())) + std::string(half, 'x'));
        peer.waitForTheEnd();
    });
    folder.file(part, content.substr(0, half));
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("sent something else than a model"));
    EXPECT_TRUE(contentOf(part) == content.substr(0, half)) << "what had arrived is lost";
}

TEST_F(DownloadTrouble, aNetworkThatWantsASignInIsNamed) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("511 Network Authentication Required", "Content-Type: text/html\r\n") + "<html>");
    });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("sign in"));
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(DownloadTrouble, whatWillNotPassIsNotAskedForAgain) {
    for (const std::string status :
         {"404 Not Found", "403 Forbidden", "401 Unauthorized", "410 Gone", "400 Bad"}) {
        TestServer server(
            [&](const Received&, Peer& peer) { peer.send(head(status, lengthLine(4)) + "Oops"); });
        EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr(status.substr(0, 3)));
        EXPECT_EQ(server.requests(), 1);
        EXPECT_TRUE(std::filesystem::is_empty(whole.parent_path()))
            << "the page that explains it is no model";
    }
}

TEST_F(DownloadTrouble, whatMayPassIsAskedForAgain) {
    for (const std::string status :
         {"500 Internal Server Error", "503 Busy", "429 Too Many", "408 Timeout"}) {
        std::filesystem::remove(whole);
        std::atomic<int> left = 2;
        TestServer server([&](const Received& request, Peer& peer) {
            if (left-- > 0)
                peer.send(head(status, lengthLine(4)) + "Oops");
            else
                serveFile(request, peer, content);
        });
        download(modelAt(server.address("a.bin")));
        expectWhole();
    }
}

TEST_F(DownloadTrouble, aServerThatWasThereIsWaitedForLongerThanOneThatNeverWas) {
    std::atomic<int> requests = 0;
    TestServer server([&](const Received& request, Peer& peer) {
        const int number = requests++;
        if (number == 0)
            peer.send(head("200 OK", lengthLine(content.size())) + content.substr(0, half));
        else if (number >= 5)
            serveFile(request, peer, content);
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.requests(), 6);
}

TEST_F(DownloadTrouble, aServerThatFailsForGoodIsGivenUp) {
    TestServer server([&](const Received&, Peer& peer) { peer.send(head("500 Oops", lengthLine(0))); });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("can't do it now (500)"));
    EXPECT_EQ(server.requests(), 3);
}

TEST_F(DownloadTrouble, aServerThatAsksForTimeGetsIt) {
    std::atomic<bool> first = true;
    TestServer server([&](const Received& request, Peer& peer) {
        if (first.exchange(false))
            peer.send(head("503 Busy", "Retry-After: 1\r\n" + lengthLine(0)));
        else
            serveFile(request, peer, content);
    });
    const auto start = Clock::now();
    download(modelAt(server.address("a.bin")));
    EXPECT_GE(Clock::now() - start, std::chrono::seconds(1));
}

TEST_F(DownloadTrouble, aServerThatAsksForAnHourIsNotWaitedFor) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("503 Busy", "Retry-After: 3600\r\n" + lengthLine(0)));
    });
    failure(modelAt(server.address("a.bin")));
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(DownloadTrouble, garbageInsteadOfHttpIsGivenUp) {
    TestServer server([&](const Received&, Peer& peer) { peer.send("SSH-2.0-OpenSSH_9.2\r\n\r\n\r\n"); });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("doesn't speak HTTP"));
    TestServer silent([&](const Received&, Peer&) {});
    EXPECT_THAT(failure(modelAt(silent.address("a.bin"))), HasSubstr("broke"));
}

TEST_F(DownloadTrouble, aServerThatFallsSilentIsAskedAgain) {
    options.silence = std::chrono::milliseconds(300);
    std::atomic<bool> first = true;
    TestServer server([&](const Received& request, Peer& peer) {
        if (!first.exchange(false))
            return serveFile(request, peer, content);
        peer.send(head("200 OK", lengthLine(content.size())) + content.substr(0, half));
        peer.waitForTheEnd();
    });
    download(modelAt(server.address("a.bin")));
    expectWhole();
    EXPECT_EQ(server.received()[1].from(), half);
}

TEST_F(DownloadTrouble, nobodyListening) {
    EXPECT_THAT(failure(modelAt("http://127.0.0.1:9/a.bin")), HasSubstr("\"127.0.0.1\", or the proxy"));
    EXPECT_THAT(failure(modelAt("http://no-such-host.invalid/a.bin")), HasSubstr("can't be found"));
}

TEST_F(DownloadTrouble, redirectsWithoutEndAreGivenUp) {
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("302 Found", "Location: /again\r\n" + lengthLine(0)));
    });
    EXPECT_THAT(failure(modelAt(server.address("a.bin"))), HasSubstr("on and on"));
    EXPECT_EQ(server.requests(), 11);
}

TEST_F(DownloadTrouble, tooLittleRoomIsSaidBeforeAnythingIsAskedFor) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    auto model = modelAt(server.address("a.bin"));
    model.bytes = std::uint64_t{1} << 60;
    EXPECT_THAT(failure(model), HasSubstr("not enough room"));
    EXPECT_EQ(server.requests(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(whole.parent_path()));
}

TEST_F(DownloadTrouble, aDiskThatFillsUpMeanwhileIsGivenBack) {
    TestServer server([&](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{half, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const auto sentence = failure(modelAt(server.address("a.bin")));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, ignored);
    EXPECT_THAT(sentence, HasSubstr("The disk is full"));
    EXPECT_TRUE(std::filesystem::is_empty(whole.parent_path()));
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(DownloadTrouble, aFolderThatCanNotBeMadeIsSaid) {
    folder.file("data/korvane", "a file is in the way");
    EXPECT_THAT(failure(modelAt("http://127.0.0.1:9/a.bin")), HasSubstr("can't be made"));
}

TEST_F(DownloadTrouble, theSecondOfTwoAtOnceSaysSo) {
    std::stop_source stop;
    TestServer server([&](const Received&, Peer& peer) {
        peer.send(head("200 OK", lengthLine(content.size())) + content.substr(0, half));
        peer.waitForTheEnd();
    });
    const auto model = modelAt(server.address("a.bin"));
    std::string second;
    EXPECT_THROW(downloadModel(model, store, stop.get_token(),
                               [&](const DownloadProgress& now) {
                                   if (now.receivedBytes < half)
                                       return;
                                   discardPart(model, store);  // takes nothing away from the first
                                   second = failure(model);
                                   stop.request_stop();
                               }),
                 CancellationError);
    EXPECT_THAT(second, HasSubstr("being downloaded already"));
    EXPECT_EQ(downloadedPart(model, store), half);
    discardPart(model, store);
    EXPECT_EQ(downloadedPart(model, store), 0U);
    EXPECT_TRUE(std::filesystem::is_empty(whole.parent_path()));
}

TEST_F(DownloadTrouble, aProgramKilledInTheMiddleGoesOnNextTime) {
    TestServer server([&](const Received& request, Peer& peer) {
        if (request.from() > 0)
            return serveFile(request, peer, content);
        peer.send(head("200 OK", "ETag: \"v1\"\r\n" + lengthLine(content.size())) + content.substr(0, half));
        peer.waitForTheEnd();
    });
    const auto model = modelAt(server.address("a.bin"));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        downloadModel(model, store, {});
        _exit(0);
    }
    const auto deadline = Clock::now() + std::chrono::seconds(20);
    while (downloadedPart(model, store) < half && Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    // Held by another process now.
    EXPECT_THAT(failure(model), HasSubstr("being downloaded already"));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    download(model);
    expectWhole();
    EXPECT_EQ(server.received().back().from(), half);
}

}  // namespace
