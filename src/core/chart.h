#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "core/controls.h"
#include "core/text/string_list.h"

namespace zrl {

// Numbers over labels, such as mails over time: one or more series, each with a value for every label.
//
//   Chart mails{*this, "mails", "Mails", "What became of the mails", {.stacked = true, .times = true},
//               {{"rejected", "Rejected", Label::Tone::bad}, {"allowed", "Allowed", Label::Tone::good}}};
//
// Hosts that can draw show lines or bars, with the numbers as a table beside them for those who cannot see
// it; others print the numbers. Meant for some hundred labels. A mark is what stands at a label, the values
// of all series together; a click on one runs on_click.
class Chart : public CaptionedControl {
 public:
  enum class Shape : std::uint8_t { bars, lines };

  struct Style {
    Shape shape = Shape::bars;
    bool stacked = false;  // the series add up to a whole
    // Labels are local times, "2026-11-21" or "2026-11-21 14:00", which hosts write as their users do.
    bool times = false;
  };

  // `name` is for machines. Both texts are literals and not copied.
  struct Series {
    std::string_view name;
    std::string_view caption;  // English; the page translates it when it is shown
    // Whether much of it is good or bad news. Hosts colour it; plain has a colour of its own.
    Label::Tone tone = Label::Tone::plain;
  };

  Chart(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip,
        const Style& style, std::initializer_list<Series> series);

  // The user has clicked the mark clicked(), or the same once more.
  Event on_click;

  const Style& style() const { return style_; }
  const std::vector<Series>& series() const { return series_; }
  // In the user's language, once the page has been shown.
  std::string_view caption_of(std::size_t series) const { return captions_[series]; }

  const StringList& labels() const { return labels_; }
  // One value for each label.
  const std::vector<std::int64_t>& values_of(std::size_t series) const { return values_[series]; }
  // Replaces labels and values: one list of values for each series, in their order, each as long as the
  // labels; else raises error 380. Nothing is clicked then, unless all is as it was.
  void set(StringList labels, std::vector<std::vector<std::int64_t>> values);

  // The index of the mark that was clicked last; -1 if none was.
  std::int64_t clicked() const { return clicked_; }

  // The user clicks the mark at this index.
  void user_choose(std::int64_t index) override;

 private:
  friend class Form;

  Style style_;
  std::vector<Series> series_;
  std::vector<std::string> captions_;
  StringList labels_;
  std::vector<std::vector<std::int64_t>> values_;
  std::int64_t clicked_ = -1;
};

}  // namespace zrl
