#include "core/html_text.h"

#include "core/console.h"
#include "core/contracts/html_converter.h"

namespace zrl {

std::string HtmlText::html_to_text(std::string_view html) {
  using Kind = ActivityRecord::Kind;
  using Step = Console::Step;
  if (!converter_) {
    console_.attempt(Kind::component, "create mirvan.html", Step::read,
                     [&] { converter_ = console_.components().create<HtmlConverter>(); });
  }
  if (!converter_) return std::string(html);
  std::string result;
  console_.attempt(Kind::component, "html2txt", Step::read, [&] { result = converter_->html2txt(html); });
  return result;
}

}  // namespace zrl
