#include "components/dns/caller_id_record.h"

#include <memory>
#include <optional>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::dns {

namespace {

constexpr std::string_view policy_namespace = "http://ms.net/1";

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;
using Text = std::unique_ptr<xmlChar, decltype(xmlFree)>;

std::string_view view(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

[[noreturn]] void refuse(const std::string& problem) {
  throw Error(error_number::invalid_call, "Caller-ID record: " + problem);
}

// Without a document type there are only the five predefined entities. The text is read as UTF-8 whatever
// encoding it declares, so that no encoding can hide a document type.
Document read(std::string_view text) {
  if (!is_caller_id_record(text)) refuse("not an e-mail policy");
  if (text.size() > CallerIdRecord::longest) refuse("too long");
  if (text.find("<!DOCTYPE") != text.npos) refuse("a document type is not allowed");
  constexpr int options =
      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA | XML_PARSE_IGNORE_ENC;
  Document document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8", options),
                    xmlFreeDoc);
  if (!document) refuse("not well-formed");
  if (document->intSubset != nullptr) refuse("a document type is not allowed");
  return document;
}

bool is(const xmlNode& node, std::string_view name) {
  return node.type == XML_ELEMENT_NODE && view(node.name) == name && node.ns != nullptr &&
         view(node.ns->href) == policy_namespace;
}

std::string content_of(const xmlNode& node) {
  const Text text(xmlNodeGetContent(&node), xmlFree);
  return std::string(trim(view(text.get())));
}

CallerIdRecord::Network network(const std::string& text) {
  const std::size_t slash = std::min(text.find('/'), text.size());
  const std::optional<IpAddress> address = IpAddress::parse(text.substr(0, slash));
  if (!address) refuse("not an address: " + text);
  const unsigned bits = IpAddress::bits(address->family());
  if (slash == text.size()) return {*address, bits};
  const std::string digits = text.substr(slash + 1);
  const bool is_number =
      !digits.empty() && digits.size() <= 3 && digits.find_first_not_of("0123456789") == digits.npos;
  if (!is_number || std::stoul(digits) > bits) refuse("not a range of addresses: " + text);
  return {*address, static_cast<unsigned>(std::stoul(digits))};
}

// The content of <out> and <m>.
void read_servers(const xmlNode& parent, CallerIdRecord& record) {
  for (const xmlNode* node = parent.children; node != nullptr; node = node->next) {
    if (is(*node, "mx")) record.exchangers = true;
    if (is(*node, "noMailServers")) record.no_mail_servers = true;
    if (is(*node, "a") || is(*node, "r")) record.networks.push_back(network(content_of(*node)));
    if (is(*node, "indirect")) record.indirect.push_back(content_of(*node));
  }
}

void read_policy(const xmlNode& out, CallerIdRecord& record) {
  read_servers(out, record);
  for (const xmlNode* node = out.children; node != nullptr; node = node->next) {
    if (is(*node, "m")) read_servers(*node, record);
  }
}

bool is_testing(const xmlNode& root) {
  const Text value(xmlGetNoNsProp(&root, reinterpret_cast<const xmlChar*>("testing")), xmlFree);
  const std::string_view text = trim(view(value.get()));
  return text == "true" || text == "1";
}

}  // namespace

bool is_caller_id_record(std::string_view text) {
  text = trim(text);
  return text.starts_with("<ep") || text.starts_with("<?xml");
}

CallerIdRecord parse_caller_id_record(std::string_view text) {
  const Document document = read(trim(text));
  const xmlNode* root = xmlDocGetRootElement(document.get());
  if (root == nullptr || !is(*root, "ep")) refuse("not an e-mail policy");
  CallerIdRecord record;
  record.testing = is_testing(*root);
  for (const xmlNode* node = root->children; node != nullptr; node = node->next) {
    if (is(*node, "out")) read_policy(*node, record);
  }
  return record;
}

}  // namespace zrl::dns
