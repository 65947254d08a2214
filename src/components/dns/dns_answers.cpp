#include "components/dns/dns_answers.h"

#include <cstring>
#include <memory>

#include <ares.h>
#include <netdb.h>

namespace zrl::dns {

namespace {

using Reply = DnsQueries::Reply;

template <typename Data>
using AresData = std::unique_ptr<Data, decltype(&ares_free_data)>;
using Host = std::unique_ptr<hostent, decltype(&ares_free_hostent)>;

int size_of(const Reply& reply) {
  return static_cast<int>(reply.message.size());
}

int answered(int status, bool anything) {
  return status == ARES_SUCCESS && !anything ? ARES_ENODATA : status;
}

std::string without_dot(std::string name) {
  if (name.ends_with('.')) name.pop_back();
  return name;
}

template <typename Bytes>
IpAddress address_of(const char* data) {
  Bytes bytes{};
  std::memcpy(bytes.data(), data, bytes.size());
  return IpAddress(bytes);
}

}  // namespace

int read_addresses(const Reply& reply, IpAddress::Family family, std::vector<IpAddress>& found) {
  if (reply.status != ARES_SUCCESS) return reply.status;
  const bool v4 = family == IpAddress::Family::v4;
  const unsigned char* message = reply.message.data();
  hostent* parsed = nullptr;
  const int status = v4 ? ares_parse_a_reply(message, size_of(reply), &parsed, nullptr, nullptr)
                        : ares_parse_aaaa_reply(message, size_of(reply), &parsed, nullptr, nullptr);
  const Host host(parsed, ares_free_hostent);
  for (char** data = host ? host->h_addr_list : nullptr; data != nullptr && *data != nullptr; ++data) {
    found.push_back(v4 ? address_of<IpAddress::Bytes4>(*data) : address_of<IpAddress::Bytes6>(*data));
  }
  return answered(status, !found.empty());
}

// The aliases are the names in the order of the answer; the name itself is the last of them.
int read_host_names(const Reply& reply, const IpAddress& address, std::vector<std::string>& found) {
  if (reply.status != ARES_SUCCESS) return reply.status;
  hostent* parsed = nullptr;
  const int family = address.family() == IpAddress::Family::v4 ? AF_INET : AF_INET6;
  const int status = ares_parse_ptr_reply(reply.message.data(), size_of(reply), address.data(),
                                          address.size(), family, &parsed);
  const Host host(parsed, ares_free_hostent);
  for (char** name = host ? host->h_aliases : nullptr; name != nullptr && *name != nullptr; ++name) {
    found.push_back(without_dot(*name));
  }
  if (host && found.empty() && host->h_name != nullptr) found.push_back(without_dot(host->h_name));
  std::erase(found, "");
  return answered(status, !found.empty());
}

int read_exchangers(const Reply& reply, std::vector<std::string>& found) {
  if (reply.status != ARES_SUCCESS) return reply.status;
  ares_mx_reply* parsed = nullptr;
  const int status = ares_parse_mx_reply(reply.message.data(), size_of(reply), &parsed);
  const AresData<ares_mx_reply> held(parsed, ares_free_data);
  for (const ares_mx_reply* mx = parsed; mx != nullptr; mx = mx->next) found.push_back(without_dot(mx->host));
  std::erase(found, "");  // the root says that there is none (RFC 7505)
  return answered(status, !found.empty());
}

int read_texts(const Reply& reply, std::vector<std::string>& found) {
  if (reply.status != ARES_SUCCESS) return reply.status;
  ares_txt_ext* parsed = nullptr;
  const int status = ares_parse_txt_reply_ext(reply.message.data(), size_of(reply), &parsed);
  const AresData<ares_txt_ext> held(parsed, ares_free_data);
  for (const ares_txt_ext* part = parsed; part != nullptr; part = part->next) {
    if (part->record_start != 0 || found.empty()) found.emplace_back();
    found.back().append(reinterpret_cast<const char*>(part->txt), part->length);
  }
  return answered(status, !found.empty());
}

}  // namespace zrl::dns
