#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "components/sqlite/sqlite_engine.h"
#include "core/contracts/statement.h"

namespace zrl::sqlite {

// A compiled statement on loan from the cache; it is reset when the loan ends.
class Loan {
 public:
  explicit Loan(Query& query) : query_(query) {}
  Loan(const Loan&) = delete;
  Loan& operator=(const Loan&) = delete;
  ~Loan() { query_.reset(); }

  Query* operator->() const { return &query_; }
  Query& operator*() const { return query_; }

 private:
  Query& query_;
};

// Compiled statements, one for each skeleton; the least recently used ones are dropped. A statement must not
// be on loan twice at the same time.
class StatementCache {
 public:
  explicit StatementCache(Engine& engine, std::size_t capacity = 128)
      : engine_(engine), capacity_(capacity) {}

  // The statement with its values bound. They must live as long as the loan. A statement with a
  // fault raises error malformed_statement.
  Loan prepare(const Statement& statement) { return prepare(statement.skeleton(), statement); }

  // The same where the statement is only a part of the skeleton that is executed.
  Loan prepare(std::string_view skeleton, const Statement& values);

  // Statement text of the component's own, whose parameters the caller binds.
  Loan prepare(std::string_view sql) { return Loan(find(sql).query); }

 private:
  // The value bound to one parameter: literal text with a marker byte in place of each inserted value.
  struct Parameter {
    std::string pattern;
    std::size_t first_value;
  };

  struct Entry {
    std::string skeleton;
    std::vector<Parameter> parameters;
    std::vector<std::string> joined;
    Query query;
  };

  Entry& find(std::string_view skeleton);
  static void bind(Entry& entry, const Statement& values);
  Entry compile(std::string_view skeleton);

  Engine& engine_;
  std::size_t capacity_;
  std::list<Entry> entries_;  // the one used last comes first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> by_skeleton_;
};

}  // namespace zrl::sqlite
