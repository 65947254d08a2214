#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "core/contracts/service_manager.h"
#include "core/page.h"

namespace zrl {

// Where the proxy listens and where it forwards mail to, and the proxy's service: its state, and orders to
// start and stop it. The name of the service is the product key. Addresses and ports take effect when the
// proxy reads them, which this page does not cause.
//
// After an order the timer asks for the state once a second, until the service is neither starting nor
// stopping, or the service manager has not answered 20 times in a row. A restart is a stop, followed by a
// start then.
class ServiceControlPage : public Page {
 public:
  explicit ServiceControlPage(Console& console);

  Frame Frame1{*this, "Frame1", "Accepted mail"};
  TextField Text1{*this, "Text1",
                  "Where the proxy forwards accepted mail to; saving also puts it on the IP white list and "
                  "among the local IP numbers"};
  Label Label3{*this, "Label3", "Address of the mail server", Text1};
  TextField Text3{*this, "Text3",
                  "Left empty, it is 26 if the proxy listens on the mail server's address, else 25"};
  Label Label4{*this, "Label4", "Port of the mail server", Text3};

  Frame Frame2{*this, "Frame2", "Incoming connections"};
  TextField listenip{
      *this, "listenip",
      "The IP number on which the proxy takes connections; one that is not valid is not saved"};
  Label Label5{*this, "Label5", "Address to listen on", listenip};
  TextField Text2{*this, "Text2", "Left empty, it is 25"};
  Label Label6{*this, "Label6", "Port to listen on", Text2};

  Button Command1{*this, "Command1", "Save addresses and ports",
                  "Stores the four fields; a field that is refused shows its stored value again"};

  Frame Frame3{*this, "Frame3", "Service"};
  Label Label1{*this, "Label1", "Service Status: "};
  Label Label2{*this, "Label2", "Service State: "};
  CheckBox dontstartproxy{*this, "dontstartproxy", "The proxy is to be started",
                          "Untick it where the proxy shall not run; starting the service ticks it"};
  Button starts{*this, "starts", "Start", "Starts the proxy's service"};
  Button stopservice{*this, "stopservice", "Stop",
                     "Stops the proxy's service; no mail comes in until it is started again"};
  Button rservice{*this, "rservice", "Restart",
                  "Stops the proxy's service, and starts it when it has stopped"};
  Button Command2{*this, "Command2", "Refresh", "Asks for the status and state of the service"};
  Button Command3{*this, "Command3", "Open the service program", "Starts the program ProxyServiceControl"};

  Timer Timer1{*this, "Timer1", 1000, false};

 private:
  enum class Pending : std::uint8_t { none = 0, start = 1, restart = 2 };
  using ServiceCall = void (ServiceManager::*)(std::string_view);

  void load() override;

  void load_fields();
  void load_listen();
  void load_forward();
  void load_start_switch();
  void save();
  void store_start_switch();

  void begin(Pending pending, std::string_view name, ServiceCall call);
  void give_order(std::string_view name, ServiceCall call);
  std::optional<ServiceState> refresh_status();
  void offer_orders(const ServiceState& service);
  void follow_service();

  Held<ServiceManager> services_{*this, "service manager"};
  Pending pending_ = Pending::none;
  int unanswered_ = 0;
};

}  // namespace zrl
