#pragma once

#include <filesystem>
#include <string>
#include <thread>

#include "host/composition.h"
#include "host/folder.h"
#include "host/web/web_client.h"
#include "host/web/web_host.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// A web host on a free port, with a folder of its own and with passwords that cost little.
class RunningHost {
 public:
  static constexpr const char* password = "correct horse";

  explicit RunningHost(web::WebHostOptions options) : host_(complete(std::move(options))) {
    secret = host_.make_setup_secret();
    thread_ = std::thread([this] { host_.run(); });
  }
  ~RunningHost() {
    if (!thread_.joinable()) return;
    host_.stop();
    thread_.join();
  }

  std::uint16_t port() const {
    const std::string& address = host_.address();
    return static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
  }

  // A browser that is signed in; the first one chooses the password.
  WebClient sign_in() {
    WebClient client(port());
    const json::object credentials{{"account", "admin"}, {"password", password}, {"secret", secret}};
    const HttpAnswer answer = client.post(is_set_up_ ? "/api/login" : "/api/setup", credentials);
    is_set_up_ = true;
    if (answer.status != 200) throw std::runtime_error("not signed in: " + answer.body);
    return client;
  }

  const std::filesystem::path& folder() const { return folder_.path(); }
  std::filesystem::path audit_file() const { return folder() / "secrets" / "audit.log"; }
  web::WebHost& host() { return host_; }
  void stop() { host_.stop(); }
  // After stop(): returns when all sessions have ended.
  void join() { thread_.join(); }

  std::string secret;

 private:
  web::WebHostOptions complete(web::WebHostOptions options) {
    RecordingHost nobody;
    Console console(folder_.path(), nobody);
    register_components(console);
    lay_out_folder(console);
    options.folder = folder_.path();
    options.listen = "127.0.0.1:0";
    options.register_components = register_components;
    options.password_cost = {.operations = 1, .memory_bytes = 8192};
    return options;
  }

  TemporaryFolder folder_;
  web::WebHost host_;
  std::thread thread_;
  bool is_set_up_ = false;
};

}  // namespace zrl::test
