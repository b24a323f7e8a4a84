#include "web_server.h"

#include <websocketpp/config/asio.hpp>
#include <websocketpp/server.hpp>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <type_traits>

namespace tarnwick::test {
namespace {

namespace asio = boost::asio;
using websocketpp::connection_hdl;
using websocketpp::frame::opcode::value;

constexpr std::chrono::seconds kPatience(60);

template <class Config>
class Running final : public WebServer {
public:
    Running(const std::string& certificate, const std::string& key, Answer answer)
        : answer_(std::move(answer)) {
        server_.clear_access_channels(websocketpp::log::alevel::all);
        server_.clear_error_channels(websocketpp::log::elevel::all);
        server_.init_asio();
        server_.set_reuse_addr(true);
        server_.set_close_handshake_timeout(500); // milliseconds; a viewer that has ended answers no more
        server_.set_open_handler([this](connection_hdl connection) {
            Note([&] {
                open_.insert(connection);
                ++opens_;
            });
        });
        server_.set_close_handler([this](connection_hdl connection) {
            Note([&] {
                open_.erase(connection);
                ++closes_;
            });
        });
        server_.set_message_handler([this](connection_hdl connection, typename Server::message_ptr message) {
            const std::string text = message->get_payload();
            const std::string answer = answer_ ? answer_(text) : std::string();
            websocketpp::lib::error_code error;
            if (!answer.empty()) { server_.send(connection, answer, value::text, error); }
            Note([&] { messages_.push_back(text); });
        });
        server_.set_http_handler([this](connection_hdl handle) {
            const auto connection = server_.get_con_from_hdl(handle);
            const std::lock_guard<std::mutex> hold(lock_);
            requests_.push_back(connection->get_resource());
            const auto file = files_.find(connection->get_resource());
            if (file == files_.end()) {
                connection->set_status(websocketpp::http::status_code::not_found);
                return;
            }
            connection->set_body(file->second);
            connection->set_status(websocketpp::http::status_code::ok);
        });
        if constexpr (std::is_same_v<Config, websocketpp::config::asio_tls>) {
            server_.set_tls_init_handler([certificate, key](connection_hdl) {
                auto context = std::make_shared<asio::ssl::context>(asio::ssl::context::tls_server);
                context->use_certificate_chain_file(certificate);
                context->use_private_key_file(key, asio::ssl::context::pem);
                return context;
            });
        }
        server_.listen(asio::ip::tcp::endpoint(asio::ip::address_v4::loopback(), 0));
        server_.start_accept();
        boost::system::error_code error;
        port_ = server_.get_local_endpoint(error).port();
        thread_ = std::thread([this] { server_.run(); });
    }

    ~Running() override {
        server_.get_io_service().post([this] {
            websocketpp::lib::error_code error;
            server_.stop_listening(error);
        });
        Drop();
        std::unique_lock<std::mutex> hold(lock_);
        changed_.wait_for(hold, std::chrono::seconds(2), [this] { return open_.empty(); });
        hold.unlock();
        server_.stop();
        thread_.join();
    }

    int Port() const override { return port_; }

    void SendText(const std::string& text) override { Send(text, value::text); }
    void SendBinary(const std::string& bytes) override { Send(bytes, value::binary); }
    void Drop() override {
        ForEach([this](connection_hdl connection) {
            websocketpp::lib::error_code error;
            server_.close(connection, websocketpp::close::status::going_away, "", error);
        });
    }
    void Serve(const std::string& path, const std::string& body) override {
        const std::lock_guard<std::mutex> hold(lock_);
        files_[path] = body;
    }

    bool WaitForMessages(std::size_t count) override {
        return Wait([this, count] { return messages_.size() >= count; });
    }
    bool WaitForConnections(int count) override {
        return Wait([this, count] { return opens_ >= count; });
    }
    bool WaitForCloses(int count) override {
        return Wait([this, count] { return closes_ >= count; });
    }
    std::vector<std::string> Messages() override {
        const std::lock_guard<std::mutex> hold(lock_);
        return messages_;
    }
    int Connections() override {
        const std::lock_guard<std::mutex> hold(lock_);
        return opens_;
    }
    std::vector<std::string> Requests() override {
        const std::lock_guard<std::mutex> hold(lock_);
        return requests_;
    }

private:
    using Server = websocketpp::server<Config>;

    template <class Change>
    void Note(Change change) {
        const std::lock_guard<std::mutex> hold(lock_);
        change();
        changed_.notify_all();
    }
    template <class Condition>
    bool Wait(Condition condition) {
        std::unique_lock<std::mutex> hold(lock_);
        return changed_.wait_for(hold, kPatience, condition);
    }
    void Send(const std::string& text, typename websocketpp::frame::opcode::value kind) {
        // A client is connected before this side knows of it.
        WaitForConnections(1);
        ForEach([this, text, kind](connection_hdl connection) {
            websocketpp::lib::error_code error;
            server_.send(connection, text, kind, error);
        });
    }
    // On the server's own thread.
    void ForEach(std::function<void(connection_hdl)> what) {
        server_.get_io_service().post([this, what = std::move(what)] {
            std::vector<connection_hdl> all;
            {
                const std::lock_guard<std::mutex> hold(lock_);
                all.assign(open_.begin(), open_.end());
            }
            for (const connection_hdl& connection : all) { what(connection); }
        });
    }

    Answer answer_;
    Server server_;
    int port_ = 0;
    std::thread thread_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::set<connection_hdl, std::owner_less<connection_hdl>> open_;
    std::vector<std::string> messages_;
    std::vector<std::string> requests_;
    std::map<std::string, std::string> files_;
    int opens_ = 0;
    int closes_ = 0;
};

} // namespace

std::unique_ptr<WebServer> WebServer::Plain(Answer answer) {
    return std::make_unique<Running<websocketpp::config::asio>>("", "", std::move(answer));
}

std::unique_ptr<WebServer> WebServer::Tls(const std::string& certificate, const std::string& key,
                                          Answer answer) {
    return std::make_unique<Running<websocketpp::config::asio_tls>>(certificate, key, std::move(answer));
}

} // namespace tarnwick::test
