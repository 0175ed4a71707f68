// A server on this machine that does to a request whatever a test wants, with or without TLS.
#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace korvane::test {

struct Received {
    std::string method;
    std::string target;
    std::map<std::string, std::string> headers;  ///< names in lower case

    std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found == headers.end() ? "" : found->second;
    }
    /// Of "Range: bytes=N-"; 0 without.
    std::size_t from() const;
};

class TlsIdentity;

/// One connection; the handler's thread.
class Peer {
  public:
    Peer(int socket, const TlsIdentity* identity);
    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// \return false once the other side has gone.
    bool send(const std::string& bytes);
    /// Up to the empty line; empty when the other side has gone.
    std::string receiveHead();
    /// Blocks until the other side goes or the server ends.
    void waitForTheEnd();
    /// Carries bytes to and fro between this and a server until one side goes.
    void tunnelTo(int port);
    int socket() const { return socket_; }

  private:
    int socket_;
    void* tls_ = nullptr;
};

/// Listens on a port of its own on 127.0.0.1. Each connection brings one request.
class TestServer {
  public:
    using Handler = std::function<void(const Received&, Peer&)>;

    explicit TestServer(Handler handler, const TlsIdentity* identity = nullptr);
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    int port() const { return port_; }
    /// "http://127.0.0.1:PORT/name", or https.
    std::string address(const std::string& name) const;
    int requests() const { return requests_; }
    std::vector<Received> received() const;

  private:
    void accept();
    void serve(int socket);

    Handler handler_;
    const TlsIdentity* identity_;
    int listener_;
    int port_ = 0;
    std::atomic<int> requests_{0};
    mutable std::mutex mutex_;
    std::list<int> open_;
    bool ending_ = false;
    std::vector<Received> received_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

/// A key and a certificate for 127.0.0.1 that it vouches for itself, made now.
class TlsIdentity {
  public:
    TlsIdentity();
    ~TlsIdentity();
    void* context() const { return context_; }
    std::string certificate() const { return pem_; }

  private:
    void* context_;
    std::string pem_;
};

/// "HTTP/1.1 STATUS\r\n" with the headers, of which each ends in "\r\n", and "Connection: close".
std::string head(const std::string& status, const std::string& headers = "");

/// Serves `content` as a good server does: by range, if the version is still the same.
void serveFile(const Received& request, Peer& peer, const std::string& content,
               const std::string& tag = "\"v1\"");

/// Passes a request for "http://..." on to the server it is for, and the answer back; CONNECT opens a tunnel.
void actAsProxy(const Received& request, Peer& peer);

}  // namespace korvane::test
