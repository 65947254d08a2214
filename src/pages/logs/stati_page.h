#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/page.h"

namespace zrl {

// The counts of all logs as a short report in the user's language, which can be mailed.
class StatiPage : public Page {
 public:
  explicit StatiPage(Console& console);

  Frame Frame1{*this, "Frame1", "Statistic"};
  TextField Text1{*this,
                  "Text1",
                  "What the logs hold now, as a text",
                  {.multi_line = true, .fixed_pitch = true, .counts = true}};
  Label Label1{*this, "Label1", "Report", Text1};
  Button Command1{*this, "Command1", "Calculate", "Counts the rows of all logs again"};
  Button Command2{*this, "Command2", "Mail Result", "Opens a mail with the report as its text"};

 private:
  struct Counts {
    std::int32_t total = 0;
    std::int32_t ip_black = 0;
    std::int32_t ip_white = 0;
    std::int32_t header_white = 0;
    std::int32_t header_black = 0;
    std::int32_t body_hits = 0;
    std::int32_t subject_hits = 0;
    std::int32_t attachment_hits = 0;

    std::int64_t rejected() const;
    std::int64_t delivered() const { return total - rejected(); }
    // The share of rejected mail in whole percent, rounded down; empty if there was no mail.
    std::string quota() const;
  };

  void load() override { calculate(); }

  void calculate();
  void take_counts();
  void take_count(Literal select, std::int32_t& count);
  std::string report();
  void mail_report();

  Counts counts_;
};

}  // namespace zrl
