#include "TestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
#include <stdexcept>

namespace korvane::test {
namespace {

sockaddr_in localAddress(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int connectTo(int port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto address = localAddress(port);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        throw std::runtime_error("the server behind the proxy can't be reached");
    return socket;
}

Received parse(const std::string& text) {
    Received request;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    std::istringstream(line) >> request.method >> request.target;
    while (std::getline(lines, line) && line.size() > 1) {
        const auto colon = line.find(':');
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        request.headers[name] = line.substr(colon + 2, line.size() - colon - 3);
    }
    return request;
}

}  // namespace

std::size_t Received::from() const {
    const auto range = header("range");
    return range.starts_with("bytes=") ? std::stoul(range.substr(6)) : 0;
}

Peer::Peer(int socket, const TlsIdentity* identity) : socket_(socket) {
    if (!identity)
        return;
    auto* tls = SSL_new(static_cast<SSL_CTX*>(identity->context()));
    SSL_set_fd(tls, socket);
    if (SSL_accept(tls) == 1) {
        tls_ = tls;
        return;
    }
    SSL_free(tls);
    ::shutdown(socket_, SHUT_RDWR);
}

Peer::~Peer() {
    if (!tls_)
        return;
    SSL_shutdown(static_cast<SSL*>(tls_));
    SSL_free(static_cast<SSL*>(tls_));
}

bool Peer::send(const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const auto left = bytes.size() - done;
        const auto step =
            tls_ ? SSL_write(static_cast<SSL*>(tls_), bytes.data() + done, static_cast<int>(left))
                 : ::send(socket_, bytes.data() + done, left, MSG_NOSIGNAL);
        if (step <= 0)
            return false;
        done += static_cast<std::size_t>(step);
    }
    return true;
}

std::string Peer::receiveHead() {
    std::string text;
    for (char c = 0; !text.ends_with("\r\n\r\n");) {
        const auto got = tls_ ? SSL_read(static_cast<SSL*>(tls_), &c, 1) : ::recv(socket_, &c, 1, 0);
        if (got <= 0)
            return {};
        text += c;
    }
    return text;
}

void Peer::waitForTheEnd() {
    char c = 0;
    while (::recv(socket_, &c, 1, 0) > 0) {
    }
}

void Peer::tunnelTo(int port) {
    const int other = connectTo(port);
    std::array<pollfd, 2> both{pollfd{socket_, POLLIN, 0}, pollfd{other, POLLIN, 0}};
    for (bool open = true; open;) {
        ::poll(both.data(), both.size(), -1);
        for (std::size_t i = 0; i < both.size() && open; ++i) {
            if (both[i].revents == 0)
                continue;
            std::array<char, 65536> buffer;
            const auto got = ::recv(both[i].fd, buffer.data(), buffer.size(), 0);
            open = got > 0 &&
                   ::send(both[1 - i].fd, buffer.data(), static_cast<std::size_t>(got), MSG_NOSIGNAL) == got;
        }
    }
    ::close(other);
}

TestServer::TestServer(Handler handler, const TlsIdentity* identity)
    : handler_(std::move(handler)),
      identity_(identity),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    auto address = localAddress(0);
    socklen_t size = sizeof(address);
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(listener_, 64) != 0)
        throw std::runtime_error("no port to listen on");
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

TestServer::~TestServer() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        for (const int socket : open_)
            ::shutdown(socket, SHUT_RDWR);
    }
    acceptor_.join();
    for (auto& thread : threads_)
        thread.join();
    ::close(listener_);
}

std::string TestServer::address(const std::string& name) const {
    return std::string(identity_ ? "https" : "http") + "://127.0.0.1:" + std::to_string(port_) + "/" + name;
}

std::vector<Received> TestServer::received() const {
    const std::lock_guard lock(mutex_);
    return received_;
}

void TestServer::accept() {
    for (;;) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return;
        const std::lock_guard lock(mutex_);
        if (ending_) {
            ::close(socket);
            return;
        }
        open_.push_back(socket);
        threads_.emplace_back([this, socket] { serve(socket); });
    }
}

void TestServer::serve(int socket) {
    // A client that has left must not end the program with SIGPIPE, which the TLS library lets come. Only for
    // this thread: what is tested has to look after itself.
    sigset_t broken;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &broken, nullptr);
    {
        Peer peer(socket, identity_);
        const auto text = peer.receiveHead();
        if (!text.empty()) {
            const auto request = parse(text);
            {
                const std::lock_guard lock(mutex_);
                received_.push_back(request);
            }
            ++requests_;
            try {
                handler_(request, peer);
            } catch (const std::exception&) {
                // The connection ends, which is all that the other side may learn.
            }
        }
    }
    const std::lock_guard lock(mutex_);
    open_.remove(socket);
    ::close(socket);
}

TlsIdentity::TlsIdentity() : context_(SSL_CTX_new(TLS_server_method())) {
    EVP_PKEY* key = EVP_EC_gen("P-256");
    X509* certificate = X509_new();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
    X509_set_pubkey(certificate, key);
    auto* name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("test"), -1,
                               -1, 0);
    X509_set_issuer_name(certificate, name);
    auto* names = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1");
    X509_add_ext(certificate, names, -1);
    X509_EXTENSION_free(names);
    X509_sign(certificate, key, EVP_sha256());
    SSL_CTX_use_certificate(static_cast<SSL_CTX*>(context_), certificate);
    SSL_CTX_use_PrivateKey(static_cast<SSL_CTX*>(context_), key);
    BIO* text = BIO_new(BIO_s_mem());
    PEM_write_bio_X509(text, certificate);
    char* bytes = nullptr;
    const auto length = BIO_get_mem_data(text, &bytes);
    pem_.assign(bytes, static_cast<std::size_t>(length));
    BIO_free(text);
    X509_free(certificate);
    EVP_PKEY_free(key);
}

TlsIdentity::~TlsIdentity() {
    SSL_CTX_free(static_cast<SSL_CTX*>(context_));
}

std::string head(const std::string& status, const std::string& headers) {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n";
}

void serveFile(const Received& request, Peer& peer, const std::string& content, const std::string& tag) {
    const auto from = request.from();
    const auto condition = request.header("if-range");
    const std::string tagLine = tag.empty() ? "" : "ETag: " + tag + "\r\n";
    if (from == 0 || (!condition.empty() && condition != tag)) {
        peer.send(head("200 OK", tagLine + "Content-Length: " + std::to_string(content.size()) + "\r\n"));
        peer.send(content);
        return;
    }
    peer.send(head("206 Partial Content",
                   tagLine + "Content-Length: " + std::to_string(content.size() - from) +
                       "\r\nContent-Range: bytes " + std::to_string(from) + "-" +
                       std::to_string(content.size() - 1) + "/" + std::to_string(content.size()) + "\r\n"));
    peer.send(content.substr(from));
}

void actAsProxy(const Received& request, Peer& peer) {
    const auto portBehind = [&](std::size_t start) {
        return std::stoi(request.target.substr(request.target.find(':', start) + 1));
    };
    if (request.method == "CONNECT") {
        peer.send("HTTP/1.1 200 Connection established\r\n\r\n");
        peer.tunnelTo(portBehind(0));
        return;
    }
    const int server = connectTo(portBehind(7));
    std::string text =
        request.method + " " + request.target.substr(request.target.find('/', 7)) + " HTTP/1.1\r\n";
    for (const auto& [name, value] : request.headers)
        text += name + ": " + value + "\r\n";
    Peer onward(server, nullptr);
    onward.send(text + "\r\n");
    std::array<char, 65536> buffer;
    for (ssize_t got = 0; (got = ::recv(server, buffer.data(), buffer.size(), 0)) > 0;)
        peer.send({buffer.data(), static_cast<std::size_t>(got)});
    ::close(server);
}

}  // namespace korvane::test
