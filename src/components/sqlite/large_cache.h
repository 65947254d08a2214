#pragma once

#include <string>

#include "components/sqlite/sqlite_engine.h"

namespace zrl::sqlite {

// More memory for pages and sorting while it lives, for work on whole tables.
class LargeCache {
 public:
  explicit LargeCache(Engine& engine) : engine_(engine), before_(engine.number("PRAGMA cache_size")) {
    engine.run("PRAGMA cache_size=-65536");
  }
  LargeCache(const LargeCache&) = delete;
  LargeCache& operator=(const LargeCache&) = delete;
  ~LargeCache() {
    const std::string sql = "PRAGMA cache_size=" + std::to_string(before_) + "; PRAGMA shrink_memory";
    sqlite3_exec(engine_.handle(), sql.c_str(), nullptr, nullptr, nullptr);
  }

 private:
  Engine& engine_;
  std::int64_t before_;
};

}  // namespace zrl::sqlite
