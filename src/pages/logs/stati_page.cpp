#include "pages/logs/stati_page.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "pages/tools/composer_dialog.h"

namespace zrl {

StatiPage::StatiPage(Console& console) : Page(console, "stati", "Statistics") {
  bind_busy(Command1, &StatiPage::calculate);
  bind_busy(Command2, &StatiPage::mail_report);

  set_layout(column({grow(frame(Frame1, column({grow(Text1)}))), row({Command1, Command2})}));
}

std::int64_t StatiPage::Counts::rejected() const {
  return std::int64_t{ip_black} + header_black + body_hits + subject_hits + attachment_hits;
}

// The share is written with 15 significant digits before it is cut, so that 29 of 100 yields 29 although
// the double is slightly less.
std::string StatiPage::Counts::quota() const {
  if (total == 0) return {};
  constexpr double hundred = 100;
  std::array<char, 32> digits{};
  std::snprintf(digits.data(), digits.size(), "%.15g", static_cast<double>(rejected()) / total * hundred);
  return std::to_string(static_cast<std::int64_t>(std::strtod(digits.data(), nullptr)));
}

void StatiPage::calculate() {
  take_counts();
  Text1.set_text(report());
}

void StatiPage::take_counts() {
  take_count("select status from iplog", counts_.total);
  take_count("select status from iplog where status=2", counts_.ip_black);
  take_count("select status from iplog where status=1", counts_.ip_white);
  take_count("select status from predatalog where status=1", counts_.header_white);
  take_count("select status from predatalog where status=2", counts_.header_black);
  take_count("select * from bodylog", counts_.body_hits);
  take_count("select * from subjectlog", counts_.subject_hits);
  take_count("select * from avlog", counts_.attachment_hits);
}

void StatiPage::take_count(Literal select, std::int32_t& count) {
  if (const auto counted = count_value(select)) count = static_cast<std::int32_t>(*counted);
}

std::string StatiPage::report() {
  std::string text;
  const auto line = [&](std::int64_t count, std::string_view what, std::string_view end) {
    text.append(std::to_string(count)).append(" ").append(translate(what)).append(end);
  };
  line(counts_.total, "total incoming connections", "\r\n\r\n");
  line(counts_.ip_black, "where blacklisted in IP checking", "\r\n");
  line(counts_.ip_white, "where whitelisted in IP checking", "\r\n\r\n");
  line(counts_.header_black, "where blacklisted in header checking", "\r\n");
  line(counts_.header_white, "where whitelisted in header checking", "\r\n\r\n");
  line(counts_.subject_hits, "where blacklisted in subject checking", "\r\n");
  line(counts_.body_hits, "where blacklisted in body checking", "\r\n");
  line(counts_.attachment_hits, "where blacklisted in attachment checking", "\r\n\r\n");
  line(counts_.rejected(), "were rejected", "\r\n");
  line(counts_.delivered(), "reached destination mailbox", "\r\n\r\n");
  return text.append(counts_.quota())
      .append("% ")
      .append(translate("is your personal SPAM Quota"))
      .append("\r\n");
}

void StatiPage::mail_report() {
  open_composer(console(), {}, {}, std::string(product_name) + " Statistics", Text1.text());
}

}  // namespace zrl
