#include "components/html/html.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "core/text/text.h"
#include "support/fake_services.h"

namespace zrl::html {
namespace {

std::string html2txt(std::string_view html) {
  test::FakeServices console;
  return make(console)->html2txt(html);
}

struct Case {
  std::string_view html;
  std::string_view text;
};

TEST(Html, IsReadAsAReaderSeesIt) {
  const Case cases[] = {
      {"plain  text\r\n with\tblanks ", "plain text with blanks"},
      {"<html><head><title>T</title></head><body>Hello <b>big</b>\n<i>world</i></body></html>",
       "Hello big world"},
      {"V<b></b>i<span>a</span>gra", "Viagra"},
      {"<p>one</p>\n<p>two<div>three</div><div>four</div>", "one\n\ntwo\nthree\nfour"},
      {"a<br>b<BR/><br >c<br><br><br><br>d", "a\nb\n\nc\n\nd"},
      {"<h1>Head</h1>text<hr>more", "Head\n\ntext\n\nmore"},
      {"<ul><li>one<li>two <b>x</b></li><li></li></ul>end", "* one\n* two x\nend"},
      {"<table><tr><td>a</td> <td>b</td></tr><tr><th>c<td><p>d</table>", "a\tb\nc\n\nd"},
      {"<a href=\"http://x/?a>b\" title='>'>link</a> <img src=x alt=y>", "link"},
      {"<pre>\n a  b\r\n\n  c</pre>d", " a  b\n\n  c\n\nd"},
      {"</body></html> behind", "behind"},
      {"<o:p></o:p><font color=red>x</FONT>", "x"},
  };
  for (const Case& c : cases) EXPECT_EQ(html2txt(c.html), c.text) << c.html;
}

TEST(Html, Entities) {
  const Case cases[] = {
      {"&lt;b&gt; &amp;amp; &quot;&apos;", "<b> &amp; \"'"},
      {"a&nbsp;&nbsp;b&#160;c", "a b c"},
      {"&auml;&Auml;&euro;&eacute", "äÄ€é"},
      {"&#228;&#xE4;&#XE4&#8364;x", "äää€x"},
      {"&#x1F600;", "\U0001F600"},
      {"&#147;q&#148;", "“q”"},
      {"&#0;&#xD800;&#x110000;&#99999999999999999999;", "\ufffd\ufffd\ufffd\ufffd"},
      {"a & b &unknown; &; &# &#x; &ampx", "a & b &unknown; &; &# &#x; &ampx"},
      {"&lt;script&gt;x", "<script>x"},
      {"&", "&"},
      {"&#", "&#"},
  };
  for (const Case& c : cases) EXPECT_EQ(html2txt(c.html), c.text) << c.html;
}

TEST(Html, WhatNobodySeesLeavesNothing) {
  const Case cases[] = {
      {"a<script>if (a<b) \"</scripty>\"</script >b", "ab"},
      {"a<SCRIPT src='x'>x</sCript\n>b<style>p{}</style>c", "abc"},
      {"a<script>never closed", "a"},
      {"a<!-- x > -- y -->b<!-->c<!--->d<!-- e --!>f", "abcdf"},
      {"a<!-- never closed", "a"},
      {"<!DOCTYPE html><?xml version='1.0'?><![CDATA[x]]>a", "a"},
      {"<![if !mso]>shown<![endif]><!--[if mso]>not<![endif]-->", "shown"},
      {"a<iframe>x<b>y</iframe>b", "ab"},
      {"a</ x>b</>c", "abc"},
      {"a<b title=\"never closed>b", "a"},
  };
  for (const Case& c : cases) EXPECT_EQ(html2txt(c.html), c.text) << c.html;
}

TEST(Html, WhatIsNoMarkupIsText) {
  EXPECT_EQ(html2txt("1 < 2 <3 a<"), "1 < 2 <3 a<");
  EXPECT_EQ(html2txt("<p a=b\"c>d\">e"), "d\">e");  // a quote inside a value opens nothing
  EXPECT_EQ(html2txt(std::string_view("a\0b", 3)), "ab");
  EXPECT_EQ(html2txt("a\xff\xc3"), "a\ufffd\ufffd");
}

std::string repeat(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

// Each would take minutes, or overflow the stack, where nesting, attributes or searches cost more
// than the text that they consist of.
TEST(Html, HostileTextsCostNoMoreThanTheirLength) {
  constexpr std::size_t many = 100'000;
  EXPECT_EQ(html2txt(repeat("<div>", many) + "deep" + repeat("</div>", many)), "deep");
  EXPECT_EQ(html2txt(repeat("<b>", many) + repeat("</i>", many) + "x"), "x");
  EXPECT_EQ(html2txt("<p " + repeat("a b=c d='e' ", many) + ">x"), "x");
  EXPECT_EQ(html2txt(repeat("<script>", many)), "");
  EXPECT_EQ(html2txt("<script>" + repeat("</script", many) + "></script>x"), "x");
  EXPECT_EQ(html2txt("<!--" + repeat("--", many) + "x"), "");
  EXPECT_EQ(html2txt(repeat("<!", many) + ">x"), "x");
  EXPECT_EQ(html2txt(repeat("&", many)).size(), many);
  EXPECT_EQ(html2txt("&#" + repeat("9", many) + ";"), "\ufffd");
  EXPECT_EQ(html2txt(repeat("<br>", many) + "x"), "x");
  EXPECT_EQ(html2txt("<" + repeat("a", many) + ">x"), "x");
  EXPECT_EQ(html2txt(repeat("<", many)).size(), many);
}

}  // namespace
}  // namespace zrl::html
