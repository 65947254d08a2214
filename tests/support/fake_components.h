#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/contracts/components.h"
#include "core/contracts/dns_client.h"
#include "core/contracts/registry.h"
#include "core/contracts/translator.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::test {

// A registry in memory. While `broken`, every operation fails.
class MemoryRegistry : public Registry {
 public:
  struct Store {
    std::map<std::string, std::string> values;  // by lower-case path
    std::vector<std::string> writes;
    bool broken = false;
    int instances = 0;
  };

  explicit MemoryRegistry(Store& store) : store_(store) { ++store_.instances; }

  std::optional<std::string> regread(std::string_view path) override {
    check();
    const auto found = store_.values.find(lower(path));
    if (found == store_.values.end()) return std::nullopt;
    return found->second;
  }
  void write_string(std::string_view path, std::string_view text) override { write("REG_SZ", path, text); }
  void write_dword(std::string_view path, std::uint32_t number) override {
    write("REG_DWORD", path, std::to_string(number));
  }
  void delete_value(std::string_view path) override {
    check();
    store_.values.erase(lower(path));
  }

 private:
  void check() const {
    if (store_.broken) throw Error(70, "Permission denied");
  }
  void write(std::string_view kind, std::string_view path, std::string_view text) {
    check();
    store_.values[lower(path)] = text;
    store_.writes.push_back(std::string(kind) + " " + std::string(path) + "=" + std::string(text));
  }

  Store& store_;
};

// A translator that turns texts into upper case and counts what it is asked for.
class ShoutingTranslator : public Translator {
 public:
  struct Log {
    int created = 0;
    int asked = 0;
    int failures_of_info = 0;  // how often info() fails from now on
    std::vector<std::string> translated;
    std::string default_of_new_instances;
  };

  explicit ShoutingTranslator(Log& log) : log_(log), language_(log.default_of_new_instances) {
    ++log_.created;
  }

  std::string defaultlanguage() const override { return language_; }
  void set_defaultlanguage(std::string_view language) override { language_ = language; }
  int info() override {
    ++log_.asked;
    if (log_.failures_of_info > 0) {
      --log_.failures_of_info;
      throw Error(462, "the component does not answer");
    }
    return 1;
  }
  std::string translate(std::string_view text, std::string_view) override {
    log_.translated.emplace_back(text);
    std::string result(text);
    for (char& c : result) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    return result;
  }

 private:
  Log& log_;
  std::string language_;
};

// Finds nothing.
class FakeDnsClient : public DnsClient {
 public:
  std::string PTR_Query(std::string_view) override { throw Error(1, "no name"); }
  std::string get_spf_records(std::string_view) override { return {}; }
  std::string get_redirect(std::string_view) override { throw Error(1, "no record"); }
  std::string get_cid_records(std::string_view) override { return {}; }
  SenderCheck check_spf(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return {};
  }
  SenderCheck check_cid(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return {};
  }
};

inline void add_registry(ComponentRegistry& components, MemoryRegistry::Store& store) {
  components.add<Registry>([&store] { return std::make_shared<MemoryRegistry>(store); });
}

inline void add_translator(ComponentRegistry& components, ShoutingTranslator::Log& log) {
  components.add<Translator>([&log] { return std::make_shared<ShoutingTranslator>(log); });
}

}  // namespace zrl::test
