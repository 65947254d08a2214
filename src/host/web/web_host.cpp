#include "host/web/web_host.h"

#include <charconv>
#include <stdexcept>

#include "core/contracts/console_folder.h"
#include "host/secrets_folder.h"
#include "host/web/assets.h"
#include "host/web/uploads.h"

namespace zrl::web {

namespace {

// A console that is only asked for its settings never gets as far as its host.
class NoHost : public Host {
 public:
  BoxReply message_box(const MessageBox&) override { return BoxReply::cancel; }
  bool allows_modeless() const override { return false; }
  void show(Form&) override {}
  void process_events() override {}
  void wait(std::chrono::milliseconds) override {}
  void start_program(const ProgramStart&) override {}
  void offer_file(const std::filesystem::path&) override {}
  void open_page(std::string_view, std::string_view) override {}
  void show_progress(const Progress&) override {}
};

struct Endpoint {
  std::string address;
  std::uint16_t port = 0;
};

Endpoint endpoint_in(std::string_view text) {
  Endpoint endpoint;
  const std::size_t colon = text.rfind(':');
  const std::string_view port = colon == text.npos ? std::string_view() : text.substr(colon + 1);
  const auto [end, failure] = std::from_chars(port.data(), port.data() + port.size(), endpoint.port);
  std::string_view address = text.substr(0, colon == text.npos ? 0 : colon);
  if (address.size() > 2 && address.front() == '[' && address.back() == ']') {
    address = address.substr(1, address.size() - 2);
  } else if (address.find(':') != address.npos) {
    address = {};
  }
  if (address.empty() || failure != std::errc() || end != port.data() + port.size()) {
    throw std::runtime_error("not an ADDRESS:PORT to listen on: " + std::string(text));
  }
  endpoint.address = address;
  return endpoint;
}

ServerOptions server_options(const WebHostOptions& options) {
  const Endpoint endpoint = endpoint_in(options.listen);
  return {endpoint.address, endpoint.port,         options.certificate,
          options.key,      options.server_limits, options.notify};
}

ApplicationSettings application_settings(WebHostOptions options) {
  NoHost host;
  Console console(options.folder, host);
  if (options.register_components) options.register_components(console);
  const std::string language = console.localisation().current_language();
  ApplicationSettings settings;
  settings.limits = options.session_limits;
  settings.password_cost = options.password_cost;
  settings.listen_address = endpoint_in(options.listen).address;
  settings.told_hosts = std::move(options.hosts);
  settings.assets = built_in_assets();
  settings.version = console.settings().product_version();
  settings.language = language.empty() ? "english" : language;
  const auto if_unwritable =
      options.audit_required ? AuditFile::IfUnwritable::refuse : AuditFile::IfUnwritable::carry_on;
  auto audit = std::make_shared<AuditFile>(console_folder::secrets(console.folder()) / "audit.log",
                                           if_unwritable, std::move(options.notify), AuditFile::Limits());
  settings.console = {console.folder(), options.pages, std::move(options.register_components),
                      std::move(audit), options.modeless_dialogs};
  return settings;
}

std::string address_of(const WebHostOptions& options, std::uint16_t port) {
  const std::string listen = endpoint_in(options.listen).address;
  const std::string host = listen.find(':') == listen.npos ? listen : "[" + listen + "]";
  return (options.certificate.empty() ? "http://" : "https://") + host + ":" + std::to_string(port) + "/";
}

}  // namespace

WebHost::WebHost(WebHostOptions options)
    : warnings_(secure_folder(options.folder)),
      server_(server_options(options)),
      address_(address_of(options, server_.port())) {
  for (std::string& warning : server_.warnings()) warnings_.push_back(std::move(warning));
  const UploadFolder uploads(options.folder);
  if (!uploads.sweep()) {
    warnings_.push_back(uploads.path().string() +
                        " cannot take files from browsers, because it is a link or somebody else's: find out "
                        "who made it, and remove it");
  }
  application_ = std::make_unique<Application>(application_settings(std::move(options)), server_);
  server_.start(*application_);
}

WebHost::~WebHost() = default;

std::string WebHost::make_setup_secret() {
  return application_->make_setup_secret();
}

void WebHost::run() {
  server_.run();
}

void WebHost::reload() {
  server_.reload();
}

void WebHost::stop() {
  server_.post([this] {
    server_.close_listener();
    application_->stop([this] { server_.stop(); });
  });
}

}  // namespace zrl::web
