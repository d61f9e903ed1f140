#include "backend/relay/RelayServer.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <atomic>
#include <future>
#include <thread>

#include "backend/authority/BackgroundListener.h"
#include "backend/relay/RelaySession.h"
#include "platform/log/Log.h"

namespace quillet::backend {

struct RelayServer::Impl {
  explicit Impl(RelayServerOptions o)
      : options(std::move(o)),
        mailbox(options.credentials, options.devices),
        clock(options.clock ? options.clock : platform::Clock::system()) {}

  void accept();
  // Runs `task` on the io thread and waits for it.
  void onIoThread(const std::function<void()>& task);
  void forEachSession(const std::function<void(RelaySession&)>& task);
  // Queues the message for the device and hands it to the device's signed-in sessions; its persistent id.
  std::string queueAndDeliver(const std::string& device, messaging::RelayDataMessageStanza stanza);
  void answerQueue(const httplib::Request& request, httplib::Response& response);
  void answerList(httplib::Response& response);
  void answerControl(const httplib::Request& request, httplib::Response& response);

  RelayServerOptions options;
  RelayMailbox mailbox;
  std::shared_ptr<platform::Clock> clock;
  asio::ssl::context ssl{asio::ssl::context::tls_server};  // outlives the io context's sessions
  asio::io_context io;
  std::unique_ptr<asio::ip::tcp::acceptor> acceptor;
  std::vector<std::weak_ptr<RelaySession>> sessions;  // io thread only
  uint64_t nextSessionId = 1;
  std::thread ioThread;
  httplib::Server http;
  std::thread httpThread;
  int boundPort = 0;
  int boundAdminPort = 0;
  bool running = false;
};

void RelayServer::Impl::accept() {
  acceptor->async_accept([this](const asio::error_code& ec, asio::ip::tcp::socket socket) {
    if (ec) return;
    auto session = std::make_shared<RelaySession>(std::move(socket), ssl, mailbox, clock,
                                                  options.heartbeatIntervalSeconds, nextSessionId++);
    std::erase_if(sessions, [](const auto& weak) { return weak.expired(); });
    sessions.push_back(session);
    session->start();
    accept();
  });
}

void RelayServer::Impl::onIoThread(const std::function<void()>& task) {
  if (!running) return;
  std::promise<void> done;
  asio::post(io, [&] {
    task();
    done.set_value();
  });
  done.get_future().wait();
}

void RelayServer::Impl::forEachSession(const std::function<void(RelaySession&)>& task) {
  onIoThread([&] {
    for (auto& weak : sessions) {
      if (auto session = weak.lock()) task(*session);
    }
  });
}

RelayServer::RelayServer(RelayServerOptions options) : impl_(std::make_unique<Impl>(std::move(options))) {}

RelayServer::~RelayServer() { stop(); }

bool RelayServer::start(platform::Error* error) {
  Impl& impl = *impl_;
  auto fail = [&](const std::string& message) {
    if (error) *error = platform::Error::withDescription("quillet.backend.relay", 1, message);
    return false;
  };
  asio::error_code ec;
  impl.ssl.use_certificate_chain_file(impl.options.certificateFile.string(), ec);
  if (!ec) impl.ssl.use_private_key_file(impl.options.keyFile.string(), asio::ssl::context::pem, ec);
  if (ec) return fail("relay server: cannot load the certificate: " + ec.message());
  try {
    asio::ip::tcp::endpoint endpoint(asio::ip::make_address(impl.options.host),
                                     static_cast<uint16_t>(impl.options.port));
    impl.acceptor = std::make_unique<asio::ip::tcp::acceptor>(impl.io, endpoint);
  } catch (const std::exception& e) {
    return fail("relay server: cannot listen on " + impl.options.host + ":" + std::to_string(impl.options.port) + ": " +
                e.what());
  }
  impl.boundPort = impl.acceptor->local_endpoint().port();
  if (impl.options.adminPort >= 0) {
    impl.http.Post("/relay/messages",
                   [this](const httplib::Request& q, httplib::Response& r) { impl_->answerQueue(q, r); });
    impl.http.Get("/relay/messages", [this](const httplib::Request&, httplib::Response& r) { impl_->answerList(r); });
    impl.http.Post("/relay/_control",
                   [this](const httplib::Request& q, httplib::Response& r) { impl_->answerControl(q, r); });
    int bound = impl.options.adminPort == 0
                    ? impl.http.bind_to_any_port(impl.options.host)
                    : (impl.http.bind_to_port(impl.options.host, impl.options.adminPort) ? impl.options.adminPort : -1);
    if (bound <= 0) return fail("relay server: cannot listen for the admin interface");
    impl.boundAdminPort = bound;
    bool listening = false;
    impl.httpThread = listenInBackground(impl.http, &listening);
    if (!listening) {
      impl.httpThread.join();
      impl.boundAdminPort = 0;
      return fail("relay server: the admin interface did not start");
    }
  }
  impl.accept();
  impl.running = true;
  impl.ioThread = std::thread([&impl] {
    auto guard = asio::make_work_guard(impl.io);
    impl.io.run();
  });
  return true;
}

void RelayServer::stop() {
  Impl& impl = *impl_;
  if (!impl.running) return;
  impl.forEachSession([](RelaySession& session) { session.close(); });
  impl.running = false;
  if (impl.boundAdminPort > 0) {
    impl.http.stop();
    if (impl.httpThread.joinable()) impl.httpThread.join();
  }
  asio::post(impl.io, [&impl] {
    asio::error_code ignored;
    impl.acceptor->close(ignored);
  });
  impl.io.stop();
  if (impl.ioThread.joinable()) impl.ioThread.join();
}

int RelayServer::port() const { return impl_->boundPort; }
int RelayServer::adminPort() const { return impl_->boundAdminPort; }
std::string RelayServer::adminUrl() const {
  return "http://" + impl_->options.host + ":" + std::to_string(impl_->boundAdminPort);
}

std::string RelayServer::Impl::queueAndDeliver(const std::string& device, messaging::RelayDataMessageStanza stanza) {
  std::string persistentId = mailbox.queue(device, std::move(stanza));
  forEachSession([&](RelaySession& session) {
    if (session.isSignedIn() && session.device() == device) session.deliverHeld();
  });
  return persistentId;
}

std::string RelayServer::queueDataMessage(const std::string& device, messaging::RelayDataMessageStanza stanza) {
  return impl_->queueAndDeliver(device, std::move(stanza));
}

void RelayServer::setCredential(const std::string& device, const std::string& secret) {
  impl_->mailbox.setCredential(device, secret);
}

void RelayServer::setFault(RelayFault fault, bool on) {
  if (isRelayFaultMode(fault)) {
    impl_->mailbox.setMode(fault, on);
    return;
  }
  impl_->forEachSession([&](RelaySession& session) {
    if (session.isSignedIn()) session.perform(fault);
  });
}

void RelayServer::clearFaults() { impl_->mailbox.clearModes(); }

void RelayServer::dropConnections() {
  impl_->forEachSession([](RelaySession& session) { session.close(); });
}

int RelayServer::signedInCount() const {
  int count = 0;
  impl_->forEachSession([&](RelaySession& session) { count += session.isSignedIn() ? 1 : 0; });
  return count;
}

RelayMailbox& RelayServer::mailbox() { return impl_->mailbox; }

void RelayServer::Impl::answerQueue(const httplib::Request& request, httplib::Response& response) {
  auto body = nlohmann::json::parse(request.body, nullptr, false);
  if (!body.is_object() || !body.contains("device") || !body["device"].is_string()) {
    response.status = 400;
    response.set_content(R"({"error": "a JSON object with \"device\" is required"})", "application/json");
    return;
  }
  messaging::RelayDataMessageStanza stanza;
  stanza.set_from(body.value("from", std::string("relay")));
  stanza.set_category(body.value("category", std::string("com.quillet.app")));
  if (body.contains("data") && body["data"].is_object()) {
    for (auto& [key, value] : body["data"].items()) {
      auto* appData = stanza.add_appdataarray();
      appData->set_key(key);
      appData->set_value(value.is_string() ? value.get<std::string>() : value.dump());
    }
  }
  if (body.value("immediateAck", false)) stanza.set_immediateack(true);
  const std::string device = body["device"].get<std::string>();
  const std::string persistentId = queueAndDeliver(device, std::move(stanza));
  response.set_content(nlohmann::json{{"persistentId", persistentId}}.dump(), "application/json");
}

void RelayServer::Impl::answerList(httplib::Response& response) {
  static const char* kStates[] = {"queued", "delivered", "received"};
  nlohmann::json held = nlohmann::json::array();
  for (const auto& message : mailbox.held()) {
    nlohmann::json data = nlohmann::json::object();
    for (const auto& pair : message.stanza.appdataarray()) data[pair.key()] = pair.value();
    held.push_back({{"device", message.device},
                    {"persistentId", message.persistentId},
                    {"category", message.stanza.category()},
                    {"data", data},
                    {"state", kStates[static_cast<int>(message.state)]}});
  }
  nlohmann::json received = nlohmann::json::array();
  for (const auto& message : mailbox.received()) {
    received.push_back({{"device", message.device},
                        {"tag", message.tag},
                        {"persistentId", message.persistentId},
                        {"length", message.body.size()}});
  }
  response.set_content(nlohmann::json{{"held", held}, {"received", received}}.dump(), "application/json");
}

void RelayServer::Impl::answerControl(const httplib::Request& request, httplib::Response& response) {
  auto body = nlohmann::json::parse(request.body, nullptr, false);
  if (body.is_object() && body.value("clear", false)) {
    mailbox.clearModes();
    response.set_content("{}", "application/json");
    return;
  }
  std::optional<RelayFault> fault;
  if (body.is_object() && body.contains("fault") && body["fault"].is_string()) {
    fault = relayFaultNamed(body["fault"].get<std::string>());
  }
  if (!fault) {
    response.status = 400;
    response.set_content(R"({"error": "unknown fault"})", "application/json");
    return;
  }
  const bool on = body.value("on", true);
  if (isRelayFaultMode(*fault)) {
    mailbox.setMode(*fault, on);
  } else {
    forEachSession([&](RelaySession& session) {
      if (session.isSignedIn()) session.perform(*fault);
    });
  }
  response.set_content("{}", "application/json");
}

}  // namespace quillet::backend
