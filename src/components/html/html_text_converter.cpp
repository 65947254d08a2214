#include <string>
#include <string_view>

#include "components/html/html.h"
#include "components/html/html_reader.h"
#include "core/text/utf8.h"

namespace zrl::html {

namespace {

class HtmlTextConverter : public HtmlConverter {
 public:
  std::string html2txt(std::string_view html) override {
    TextLayout layout;
    const std::string valid = valid_utf8(html);
    HtmlReader(valid, layout).run();
    return layout.take();
  }
};

}  // namespace

std::shared_ptr<HtmlConverter> make(ConsoleServices&) {
  return std::make_shared<HtmlTextConverter>();
}

}  // namespace zrl::html
