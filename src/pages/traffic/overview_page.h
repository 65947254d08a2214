#pragma once

#include <string>
#include <vector>

#include "core/chart.h"
#include "core/page.h"
#include "core/table.h"
#include "pages/traffic/attention.h"
#include "pages/traffic/log_counts.h"

namespace zrl {

// What happened lately, and what needs an eye: the start page. Mails are the rows of all five logs, as the
// page of the messages shows them: those of the keyword and attachment logs are rejected, the others are what
// their status says. All counts lead to the messages behind them.
//
// The timer refreshes the page. The logs are counted again only if rows were added, or after some minutes.
class OverviewPage : public Page {
 public:
  explicit OverviewPage(Console& console);

  ComboBox period{*this, "period", "How far back the counts go", {.words = true}};
  Label Label1{*this, "Label1", "Period", period};
  Label service{*this, "service", "",
                "The proxy's service, as the service manager of the machine reports it"};

  // The tables and the chart have captions of their own.
  Frame Frame1{*this, "Frame1", ""};
  Table attention{*this,
                  "attention",
                  "What needs an eye",
                  "Each line leads to the page where it can be mended",
                  {{.name = "severity", .caption = "Severity", .kind = ColumnKind::severity},
                   {.name = "text", .caption = "Finding"},
                   {.name = "page", .caption = "Page", .kind = ColumnKind::page, .minor = true}}};
  Frame Frame2{*this, "Frame2", ""};
  Table first_steps{
      *this,
      "first_steps",
      "First steps",
      "What a new console needs; a step that is done ticks itself off",
      {{.name = "text", .caption = "Step"}, {.name = "done", .caption = "Done", .kind = ColumnKind::check}}};

  Frame Frame3{*this, "Frame3", ""};
  Chart mails{*this,
              "mails",
              "Mails over time",
              "What the proxy did with connections and mails; a click on a bar leads to them",
              {.stacked = true, .times = true},
              {{"rejected", "Rejected", Label::Tone::bad},
               {"allowed", "Allowed", Label::Tone::good},
               {"neutral", "Neutral"}}};

  Frame Frame4{*this, "Frame4", ""};
  Table reasons{*this,
                "reasons",
                "Most frequent reasons",
                "Reasons and keywords; each leads to its messages",
                {{.name = "text", .caption = "Reason"},
                 {.name = "count", .caption = "Count", .kind = ColumnKind::number}}};
  Frame Frame5{*this, "Frame5", ""};
  Table clients{*this,
                "clients",
                "Most frequent client networks",
                "Networks of 256 addresses; each leads to its messages",
                {{.name = "text", .caption = "Network", .kind = ColumnKind::address},
                 {.name = "count", .caption = "Count", .kind = ColumnKind::number}}};
  Frame Frame6{*this, "Frame6", ""};
  Table domains{*this,
                "domains",
                "Most frequent sender domains",
                "What stands behind the @ of the senders; each leads to its messages",
                {{.name = "text", .caption = "Domain"},
                 {.name = "count", .caption = "Count", .kind = ColumnKind::number}}};

  Timer Timer1{*this, "Timer1", 30'000, true};

 private:
  void load() override;
  void hide() override { counts_.forget(); }
  void open_query(std::string_view query) override;

  Period chosen_period() const;
  void refresh();
  void count();
  void look();
  void show_service();
  void show_mails(LogCounts::Result result);
  void show_leaders(HeldRows& rows, const NameCounts& counts, std::string_view field,
                    std::string_view before);
  void open_mark();

  HeldRows attention_rows_{attention};
  HeldRows step_rows_{first_steps};
  HeldRows reason_rows_{reasons};
  HeldRows client_rows_{clients};
  HeldRows domain_rows_{domains};

  LogCounts counts_{*this, console()};
  Attention attention_{*this, console()};
  std::string newest_;  // what the logs ended with when they were counted
  std::string hour_;    // and when that was
  std::chrono::system_clock::time_point checked_;
  std::vector<std::string_view> unread_;
  std::vector<Finding> shown_findings_;
  std::vector<FirstStep> shown_steps_;
};

}  // namespace zrl
