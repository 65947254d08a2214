#pragma once

#include <functional>
#include <string_view>

#include "core/contracts/dns_client.h"
#include "core/contracts/statement.h"
#include "core/text/error.h"
#include "support/fake_components.h"

namespace zrl::test {

// One row of an address log.
inline Statement logged(Literal table, std::string_view address, std::string_view status,
                        std::string_view time, std::string_view reason = {}) {
  if (table.text() == "iplog") {
    return "INSERT INTO iplog (IPNumber,status,servertime) VALUES ('" + value(address) + "'," +
           number(status) + ",'" + value(time) + "')";
  }
  return "INSERT INTO predatalog (IPNumber,status,servertime,reason) VALUES ('" + value(address) + "'," +
         number(status) + ",'" + value(time) + "','" + value(reason) + "')";
}

// Knows every address but 192.0.2.9.
class FakeDns : public FakeDnsClient {
 public:
  FakeDns() = default;
  // `meanwhile` runs during a look-up, and must outlive this object.
  explicit FakeDns(const std::function<void()>& meanwhile) : meanwhile_(&meanwhile) {}

  std::string PTR_Query(std::string_view address) override {
    if (meanwhile_ != nullptr && *meanwhile_) (*meanwhile_)();
    if (address == "192.0.2.9") throw Error(1, "no name");
    return "host-" + std::string(address) + ".example";
  }

 private:
  const std::function<void()>* meanwhile_ = nullptr;
};

}  // namespace zrl::test
