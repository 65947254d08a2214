#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/text/error.h"

namespace zrl {

// Makes components by program id, a fixed name such as "dbfunctions.dba"; case matters. A component that this
// build or this machine lacks is not registered; asking for it raises error 429, an ordinary failed step for
// a page. Each console has one registry, which the host fills before it shows a page. It belongs to the
// console's thread.
class ComponentRegistry {
 public:
  // `make` is called for every create() and returns an instance or raises; it may return the same one again.
  // What it refers to must outlive the registry. Registering a program id again replaces the factory, which
  // does not affect instances that exist.
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

  // An instance, never null unless the factory returns that. `Interface` must be the very type that the
  // program id was registered with: nothing checks it, and another one is undefined behaviour.
  template <typename Interface>
  std::shared_ptr<Interface> create(std::string_view program_id = Interface::program_id) const {
    return std::static_pointer_cast<Interface>(make(program_id));
  }

  // Removing a program id that is not registered has no effect.
  void remove(std::string_view program_id);
  bool has(std::string_view program_id) const;

 private:
  std::shared_ptr<void> make(std::string_view program_id) const;

  std::map<std::string, std::function<std::shared_ptr<void>()>, std::less<>> factories_;
};

}  // namespace zrl
