#include "components/sqlite/statement_cache.h"

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

constexpr char text_mark = static_cast<char>(Value::Kind::text);
constexpr char number_mark = static_cast<char>(Value::Kind::number);

// The quoted region that starts at `begin`, with its quotes; two quotes in a row belong to it.
std::string_view quoted_region(std::string_view skeleton, std::size_t begin) {
  std::size_t end = begin + 1;
  while (end < skeleton.size()) {
    if (skeleton[end] == '\'') {
      if (end + 1 == skeleton.size() || skeleton[end + 1] != '\'') break;
      ++end;
    }
    ++end;
  }
  return skeleton.substr(begin, end + 1 - begin);
}

// What a quoted region means: without its quotes, each pair of quotes inside made one.
std::string unquoted(std::string_view region) {
  std::string result;
  for (std::size_t i = 1; i + 1 < region.size(); ++i) {
    result += region[i];
    if (region[i] == '\'') ++i;
  }
  return result;
}

}  // namespace

Loan StatementCache::prepare(std::string_view skeleton, const Statement& values) {
  if (const std::string_view fault = values.fault(); !fault.empty()) {
    throw Error(error_number::malformed_statement, std::string(fault));
  }
  Entry& entry = find(skeleton);
  bind(entry, values);
  return Loan(entry.query);
}

void StatementCache::bind(Entry& entry, const Statement& values) {
  for (std::size_t i = 0; i < entry.parameters.size(); ++i) {
    const Parameter& parameter = entry.parameters[i];
    const int place = static_cast<int>(i) + 1;
    std::size_t next = parameter.first_value;
    if (parameter.pattern.size() == 1) {
      const std::string_view value = values.value_at(next);
      if (parameter.pattern[0] == number_mark) {
        entry.query.bind(place, to_number(value).value_or(0));
      } else {
        entry.query.bind(place, value);
      }
      continue;
    }
    std::string& text = entry.joined[i];
    text.clear();
    for (const char c : parameter.pattern) {
      if (c == text_mark) {
        text += values.value_at(next++);
      } else {
        text += c;
      }
    }
    entry.query.bind(place, text);
  }
}

StatementCache::Entry& StatementCache::find(std::string_view skeleton) {
  if (const auto found = by_skeleton_.find(skeleton); found != by_skeleton_.end()) {
    entries_.splice(entries_.begin(), entries_, found->second);
    return entries_.front();
  }
  entries_.push_front(compile(skeleton));
  by_skeleton_.emplace(entries_.front().skeleton, entries_.begin());
  if (entries_.size() > capacity_) {
    by_skeleton_.erase(entries_.back().skeleton);
    entries_.pop_back();
  }
  return entries_.front();
}

StatementCache::Entry StatementCache::compile(std::string_view skeleton) {
  Entry entry;
  entry.skeleton = skeleton;
  std::string sql;
  std::size_t values = 0;
  for (std::size_t i = 0; i < skeleton.size(); ++i) {
    const char c = skeleton[i];
    if (c == number_mark) {
      sql += '?';
      entry.parameters.push_back({std::string(1, c), values++});
    } else if (c == '\'') {
      const std::string_view region = quoted_region(skeleton, i);
      if (region.find(text_mark) == region.npos) {
        sql += region;
      } else {
        sql += '?';
        entry.parameters.push_back({unquoted(region), values});
        for (const char inside : region) values += inside == text_mark ? 1 : 0;
      }
      i += region.size() - 1;
    } else {
      sql += c;
    }
  }
  entry.joined.resize(entry.parameters.size());
  entry.query = Query(engine_, sql, Query::Life::kept);
  return entry;
}

}  // namespace zrl::sqlite
