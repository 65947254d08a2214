#include "pages/traffic/overview_page.h"

#include <algorithm>
#include <utility>

#include "core/text/row_filter.h"
#include "core/text/time_stamp.h"

namespace zrl {

namespace {

constexpr std::size_t most_leaders = 10;
// Rows that were deleted, or came late, are noticed this often.
constexpr std::chrono::minutes check_interval{5};

struct PeriodWord {
  std::string_view item;
  Period period;
};
constexpr PeriodWord periods[] = {{"day", Period::day}, {"week", Period::week}, {"month", Period::month}};

}  // namespace

OverviewPage::OverviewPage(Console& console) : Page(console, "overview", "Overview") {
  period.on_click = [this] { count(); };
  mails.on_click = [this] { open_mark(); };
  Timer1.on_tick = [this] { refresh(); };
  attention.set_empty_text("Nothing needs an eye");
  reasons.set_empty_text("No reasons in this period");
  clients.set_empty_text("No clients in this period");
  domains.set_empty_text("No senders in this period");

  set_layout(column({
      row({period, service}),
      row({frame(Frame1, attention), frame(Frame2, first_steps)}),
      frame(Frame3, mails),
      row({frame(Frame4, reasons), frame(Frame5, clients), frame(Frame6, domains)}),
  }));
}

void OverviewPage::load() {
  for (const PeriodWord& one : periods) period.add_item(one.item);
  period.set_text(periods[0].item);
  attention_.show_again();
  checked_ = {};
  count();
}

void OverviewPage::open_query(std::string_view query) {
  if (period.items().find(query) == period.items().size()) return;
  period.set_text(query);
  set_query(query);
  count();
}

Period OverviewPage::chosen_period() const {
  const auto chosen = std::ranges::find(periods, period.text(), &PeriodWord::item);
  return chosen == std::end(periods) ? Period::day : chosen->period;
}

// Where nothing was logged and no hour has begun, only what else may have changed is looked at.
void OverviewPage::refresh() {
  const bool same = counts_.newest_rows() == newest_ && console().time_stamp().substr(0, 10) == hour_ &&
                    console().now() - checked_ < check_interval;
  if (same) {
    look();
  } else {
    count();
  }
}

void OverviewPage::count() {
  const bool thorough = console().now() - checked_ >= check_interval;
  newest_ = counts_.newest_rows();
  hour_ = console().time_stamp().substr(0, 10);
  if (thorough) checked_ = console().now();
  LogCounts::Result result =
      counts_.count(chosen_period(), thorough ? LogCounts::Check::thorough : LogCounts::Check::quick);
  unread_ = result.unread;
  show_mails(std::move(result));
  look();
}

void OverviewPage::show_mails(LogCounts::Result result) {
  const auto values = [&](LogVerdict verdict) {
    std::vector<std::int64_t> numbers;
    numbers.reserve(result.verdicts.size());
    for (const auto& label : result.verdicts) numbers.push_back(label[static_cast<std::size_t>(verdict)]);
    return numbers;
  };
  mails.set(std::move(result.labels),
            {values(LogVerdict::rejected), values(LogVerdict::allowed), values(LogVerdict::neutral)});
  show_leaders(reason_rows_, result.totals.reasons, "reason", "");
  show_leaders(client_rows_, result.totals.clients, "ip", "");
  show_leaders(domain_rows_, result.totals.domains, "from", "@");
}

// Each leads to its messages of the period that was counted. The rows are shown anew only if they are others.
void OverviewPage::show_leaders(HeldRows& rows, const NameCounts& counts, std::string_view field,
                                std::string_view before) {
  const std::string since = mails.labels().empty() ? std::string() : filter_term("since", mails.labels()[0]);
  TableRows leaders;
  for (const NamedCount& leader : leaders_of(counts, most_leaders)) {
    const std::string query = since + " " + filter_term(field, std::string(before).append(leader.name));
    leaders.row(std::to_string(leaders.size())).cell(leader.name).link("messages", query).cell(leader.count);
  }
  const TableRows& shown = rows.rows();
  bool same = shown.size() == leaders.size();
  for (std::size_t i = 0; same && i < leaders.size(); ++i) {
    same = shown.cell_at(i, 0) == leaders.cell_at(i, 0) && shown.cell_at(i, 1) == leaders.cell_at(i, 1) &&
           shown.link_at(i, 0)->query == leaders.link_at(i, 0)->query;
  }
  if (!same) rows.show(std::move(leaders));
}

void OverviewPage::look() {
  attention_.look();
  attention_.add_unread(unread_);
  show_service();
  if (attention_.findings() != shown_findings_) {
    shown_findings_ = attention_.findings();
    TableRows rows;
    for (const Finding& finding : shown_findings_) {
      rows.row(std::to_string(rows.size()))
          .cell(name_of(finding.severity))
          .cell(finding.text)
          .link(finding.page, {})
          .cell(finding.page)
          .link(finding.page, {});
    }
    attention_rows_.show(std::move(rows));
  }
  if (attention_.first_steps() == shown_steps_) return;
  shown_steps_ = attention_.first_steps();
  TableRows rows;
  for (const FirstStep& step : shown_steps_) {
    rows.row(std::to_string(rows.size())).cell(step.text).link(step.page, {}).cell(step.done ? 1 : 0);
  }
  step_rows_.show(std::move(rows));
  Frame2.set_visible(!std::ranges::all_of(shown_steps_, &FirstStep::done));
}

void OverviewPage::show_service() {
  const std::optional<ServiceState>& state = attention_.service();
  const bool known = state && !state->status.empty();
  std::string text = translate("Service Status: ");
  text += known ? state->status + " (" + state->state + ")" : translate("unknown");
  if (known && state->since > 0)
    text += ", " + translate("since") + " " + local_time(state->since, "%Y-%m-%d %H:%M");
  service.set_caption(text);
  const bool settled = known && state->checkpoint == 0;
  service.set_tone(!known                      ? Label::Tone::plain
                   : !settled                  ? Label::Tone::waiting
                   : state->status == "active" ? Label::Tone::good
                                               : Label::Tone::bad);
}

// The messages of the hour or day that was clicked.
void OverviewPage::open_mark() {
  const std::string label(mails.labels()[static_cast<std::size_t>(mails.clicked())]);
  const std::size_t blank = label.find(' ');
  if (blank == label.npos) {
    console().open("messages", "since:" + label + " until:" + label);
  } else {
    const std::string last_minute = label.substr(0, blank + 4) + "59";
    console().open("messages", filter_term("since", label) + " " + filter_term("until", last_minute));
  }
}

}  // namespace zrl
