#include "scripting/vbscript/builtins.h"

namespace zrl::vbs {

namespace {

constexpr BuiltinConstant number(const char* name, std::int64_t value) {
  const bool small = value >= -32768 && value <= 32767;
  return {name, small ? Type::integer : Type::long_integer, value, nullptr};
}

constexpr BuiltinConstant long_number(const char* name, std::int64_t value) {
  return {name, Type::long_integer, value, nullptr};
}

constexpr BuiltinConstant text(const char* name, const char16_t* value, std::int64_t length) {
  return {name, Type::string, length, value};
}

constexpr BuiltinConstant constants[] = {
    long_number("vbBlack", 0),
    long_number("vbRed", 0xff),
    long_number("vbGreen", 0xff00),
    long_number("vbYellow", 0xffff),
    long_number("vbBlue", 0xff0000),
    long_number("vbMagenta", 0xff00ff),
    long_number("vbCyan", 0xffff00),
    long_number("vbWhite", 0xffffff),
    number("vbBinaryCompare", 0),
    number("vbTextCompare", 1),
    number("vbDatabaseCompare", 2),
    number("vbSunday", 1),
    number("vbMonday", 2),
    number("vbTuesday", 3),
    number("vbWednesday", 4),
    number("vbThursday", 5),
    number("vbFriday", 6),
    number("vbSaturday", 7),
    number("vbUseSystem", 0),
    number("vbUseSystemDayOfWeek", 0),
    number("vbFirstJan1", 1),
    number("vbFirstFourDays", 2),
    number("vbFirstFullWeek", 3),
    number("vbGeneralDate", 0),
    number("vbLongDate", 1),
    number("vbShortDate", 2),
    number("vbLongTime", 3),
    number("vbShortTime", 4),
    long_number("vbObjectError", -2147221504),
    number("vbOKOnly", 0),
    number("vbOKCancel", 1),
    number("vbAbortRetryIgnore", 2),
    number("vbYesNoCancel", 3),
    number("vbYesNo", 4),
    number("vbRetryCancel", 5),
    number("vbCritical", 16),
    number("vbQuestion", 32),
    number("vbExclamation", 48),
    number("vbInformation", 64),
    number("vbDefaultButton1", 0),
    number("vbDefaultButton2", 256),
    number("vbDefaultButton3", 512),
    number("vbDefaultButton4", 768),
    number("vbApplicationModal", 0),
    number("vbSystemModal", 4096),
    long_number("vbMsgBoxHelpButton", 16384),
    long_number("vbMsgBoxSetForeground", 65536),
    long_number("vbMsgBoxRight", 524288),
    long_number("vbMsgBoxRtlReading", 1048576),
    number("vbOK", 1),
    number("vbCancel", 2),
    number("vbAbort", 3),
    number("vbRetry", 4),
    number("vbIgnore", 5),
    number("vbYes", 6),
    number("vbNo", 7),
    text("vbCr", u"\r", 1),
    text("vbCrLf", u"\r\n", 2),
    text("vbFormFeed", u"\f", 1),
    text("vbLf", u"\n", 1),
    text("vbNewLine", u"\r\n", 2),
    text("vbNullChar", u"\0", 1),
    text("vbNullString", u"", 0),
    text("vbTab", u"\t", 1),
    text("vbVerticalTab", u"\v", 1),
    number("vbUseDefault", -2),
    number("vbTrue", -1),
    number("vbFalse", 0),
    number("vbEmpty", 0),
    number("vbNull", 1),
    number("vbInteger", 2),
    number("vbLong", 3),
    number("vbSingle", 4),
    number("vbDouble", 5),
    number("vbCurrency", 6),
    number("vbDate", 7),
    number("vbString", 8),
    number("vbObject", 9),
    number("vbError", 10),
    number("vbBoolean", 11),
    number("vbVariant", 12),
    number("vbDataObject", 13),
    number("vbDecimal", 14),
    number("vbByte", 17),
    number("vbArray", 8192),
};

}  // namespace

std::span<const BuiltinConstant> builtin_constants() {
  return constants;
}

}  // namespace zrl::vbs
