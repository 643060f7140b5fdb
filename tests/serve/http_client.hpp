#pragma once
// A small HTTP/1.1 client over a loopback socket for the server's tests: one connection, kept alive
// across requests, as a browser tab keeps it.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cctype>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace nimbara::testing {

struct HttpAnswer {
    int status = 0;
    std::multimap<std::string, std::string> headers;  // names in lower case
    std::string body;

    std::string header(const std::string& name) const
    {
        const auto it = headers.find(name);
        return it == headers.end() ? std::string() : it->second;
    }
};

class HttpClient {
public:
    explicit HttpClient(int port) : port_(port) {}
    ~HttpClient() { disconnect(); }
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    // The session cookie the server set last is sent with every request after it.
    std::string cookie;

    HttpAnswer request(const std::string& method, const std::string& target, const std::string& body = {},
                       std::vector<std::pair<std::string, std::string>> headers = {})
    {
        std::string text = method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n";
        if (!cookie.empty()) text += "Cookie: " + cookie + "\r\n";
        for (const auto& [name, value] : headers) text += name + ": " + value + "\r\n";
        if (!body.empty() || method == "POST" || method == "PUT")
            text += "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
        text += "\r\n" + body;
        if (fd_ < 0) connect_now();
        send_all(text);
        HttpAnswer answer = read_answer();
        if (answer.header("connection") == "close") disconnect();
        const auto set = answer.header("set-cookie");
        if (!set.empty()) cookie = set.substr(0, set.find(';'));
        return answer;
    }

    // Sends raw bytes as they are (a path the client library would have cleaned, say).
    HttpAnswer raw(const std::string& text)
    {
        if (fd_ < 0) connect_now();
        send_all(text);
        return read_answer();
    }

private:
    void connect_now()
    {
        fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("cannot connect to port " + std::to_string(port_));
    }
    void disconnect()
    {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
        buffer_.clear();
    }
    void send_all(const std::string& text)
    {
        for (std::size_t sent = 0; sent < text.size();) {
            const ssize_t n = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (n <= 0) return;  // the server closed early (a refused body): its answer is still read
            sent += static_cast<std::size_t>(n);
        }
    }
    bool fill()
    {
        char chunk[65536];
        const ssize_t n = ::recv(fd_, chunk, sizeof chunk, 0);
        if (n <= 0) return false;
        buffer_.append(chunk, static_cast<std::size_t>(n));
        return true;
    }
    HttpAnswer read_answer()
    {
        std::size_t end;
        while ((end = buffer_.find("\r\n\r\n")) == std::string::npos)
            if (!fill()) throw std::runtime_error("the server closed the connection without an answer");
        HttpAnswer answer;
        const std::string head = buffer_.substr(0, end);
        buffer_.erase(0, end + 4);
        answer.status = std::stoi(head.substr(head.find(' ') + 1, 3));
        for (std::size_t at = head.find("\r\n"); at != std::string::npos;) {
            const auto next = head.find("\r\n", at + 2);
            const std::string line = head.substr(at + 2, next == std::string::npos ? std::string::npos : next - at - 2);
            const auto colon = line.find(':');
            std::string name = line.substr(0, colon);
            for (auto& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            std::string value = line.substr(colon + 1);
            while (value.starts_with(' ')) value.erase(0, 1);
            answer.headers.emplace(name, value);
            at = next;
        }
        const std::size_t length = std::stoul(answer.header("content-length").empty() ? "0" : answer.header("content-length"));
        while (buffer_.size() < length)
            if (!fill()) throw std::runtime_error("the server closed the connection inside an answer");
        answer.body = buffer_.substr(0, length);
        buffer_.erase(0, length);
        return answer;
    }

    int port_;
    int fd_ = -1;
    std::string buffer_;
};

}  // namespace nimbara::testing
