#include "core/text/dns_fields.h"

#include "core/text/domain_names.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr unsigned pointer_bits = 0xC0;

}  // namespace

DnsBytes DnsFields::bytes(std::size_t count) {
  if (failed_ || offset_ > message_.size() || count > message_.size() - offset_) {
    failed_ = true;
    return {};
  }
  const DnsBytes result = message_.subspan(offset_, count);
  offset_ += count;
  return result;
}

unsigned DnsFields::number8() {
  const DnsBytes field = bytes(1);
  return field.empty() ? 0 : field[0];
}

unsigned DnsFields::number16() {
  const DnsBytes field = bytes(2);
  return field.empty() ? 0 : field[0] * 256U + field[1];
}

void DnsFields::skip_name() {
  for (unsigned length = number8(); length != 0; length = number8()) {
    if (length >= pointer_bits) return skip(1);
    if (length > longest_label) failed_ = true;
    skip(length);
  }
}

std::string DnsFields::name() {
  DnsFields part(message_, offset_);
  skip_name();
  std::string result;
  for (int pointers = 0; pointers <= most_dns_pointers && !failed_;) {
    const unsigned length = part.number8();
    if (length >= pointer_bits) {
      const std::size_t target = (length - pointer_bits) * std::size_t{256} + part.number8();
      part = DnsFields(message_, target);
      ++pointers;
      continue;
    }
    const DnsBytes label = part.bytes(length);
    if (part.failed() || length > longest_label || result.size() + length + 1 > longest_dns_name) break;
    if (length == 0) return lower(result);
    result += static_cast<char>(length);
    result.append(label.begin(), label.end());
  }
  failed_ = true;
  return {};
}

}  // namespace zrl
