#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/text/error.h"

namespace zrl {

// Makes components by program id. A component that this build or this machine lacks is simply not
// registered; asking for it raises error 429, an ordinary failed step for a page.
class ComponentRegistry {
 public:
  // `make` is called for every create() and returns a new instance or raises. Registering a
  // program id again replaces the factory.
  template <typename Interface>
  void add(std::string_view program_id, std::function<std::shared_ptr<Interface>()> make) {
    factories_.insert_or_assign(std::string(program_id),
                                [make = std::move(make)]() -> std::shared_ptr<void> { return make(); });
  }

  // Registered under the interface's own program id.
  template <typename Interface>
  void add(std::function<std::shared_ptr<Interface>()> make) {
    add<Interface>(Interface::program_id, std::move(make));
  }

  // A new instance. `Interface` must be the one that the program id was registered with.
  template <typename Interface>
  std::shared_ptr<Interface> create(std::string_view program_id = Interface::program_id) const {
    return std::static_pointer_cast<Interface>(make(program_id));
  }

  void remove(std::string_view program_id);
  bool has(std::string_view program_id) const;

 private:
  std::shared_ptr<void> make(std::string_view program_id) const;

  std::map<std::string, std::function<std::shared_ptr<void>()>, std::less<>> factories_;
};

}  // namespace zrl
