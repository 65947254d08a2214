#include "scripting/vbscript/locale.h"

#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

using Names = const char16_t* const;

Names english_months[] = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
                          u"July",    u"August",   u"September", u"October", u"November", u"December"};
Names english_short_months[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
Names english_days[] = {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};
Names english_short_days[] = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
Names german_months[] = {u"Januar", u"Februar", u"M\u00e4rz", u"April",   u"Mai",      u"Juni",
                         u"Juli",   u"August",  u"September", u"Oktober", u"November", u"Dezember"};
Names german_short_months[] = {u"Jan", u"Feb", u"Mrz", u"Apr", u"Mai", u"Jun",
                               u"Jul", u"Aug", u"Sep", u"Okt", u"Nov", u"Dez"};
Names german_days[] = {u"Sonntag",    u"Montag",  u"Dienstag", u"Mittwoch",
                       u"Donnerstag", u"Freitag", u"Samstag"};
Names german_short_days[] = {u"So", u"Mo", u"Di", u"Mi", u"Do", u"Fr", u"Sa"};
Names french_months[] = {u"janvier",   u"f\u00e9vrier", u"mars",     u"avril",
                         u"mai",       u"juin",         u"juillet",  u"ao\u00fbt",
                         u"septembre", u"octobre",      u"novembre", u"d\u00e9cembre"};
Names french_short_months[] = {u"janv.", u"f\u00e9vr.", u"mars",  u"avr.", u"mai",  u"juin",
                               u"juil.", u"ao\u00fbt",  u"sept.", u"oct.", u"nov.", u"d\u00e9c."};
Names french_days[] = {u"dimanche", u"lundi", u"mardi", u"mercredi", u"jeudi", u"vendredi", u"samedi"};
Names french_short_days[] = {u"dim.", u"lun.", u"mar.", u"mer.", u"jeu.", u"ven.", u"sam."};

using Order = Locale::DateOrder;

constexpr Locale locales[] = {
    {1033, "en-us", u'.', u',', u"$", true, false, true, Order::month_day_year, u'/', false, true, false,
     u"W, M D, y", english_months, english_short_months, english_days, english_short_days},
    {2057, "en-gb", u'.', u',', u"\u00a3", true, false, false, Order::day_month_year, u'/', true, false, true,
     u"D M y", english_months, english_short_months, english_days, english_short_days},
    {3081, "en-au", u'.', u',', u"$", true, false, false, Order::day_month_year, u'/', false, true, false,
     u"W, d M y", english_months, english_short_months, english_days, english_short_days},
    {4105, "en-ca", u'.', u',', u"$", true, false, false, Order::year_month_day, u'-', true, true, false,
     u"M d, y", english_months, english_short_months, english_days, english_short_days},
    {1031, "de-de", u',', u'.', u"\u20ac", false, true, false, Order::day_month_year, u'.', true, false, true,
     u"W, d. M y", german_months, german_short_months, german_days, german_short_days},
    {3079, "de-at", u',', u'.', u"\u20ac", true, true, false, Order::day_month_year, u'.', true, false, true,
     u"W, D. M y", german_months, german_short_months, german_days, german_short_days},
    {2055, "de-ch", u'.', u'\'', u"CHF", true, true, false, Order::day_month_year, u'.', true, false, true,
     u"W, d. M y", german_months, german_short_months, german_days, german_short_days},
    {1036, "fr-fr", u',', u'\u00a0', u"\u20ac", false, true, false, Order::day_month_year, u'/', true, false,
     true, u"W d M y", french_months, french_short_months, french_days, french_short_days},
};

}  // namespace

const Locale& american_locale() {
  return locales[0];
}

const Locale* find_locale(std::int32_t id) {
  if (id == 0 || id == 1024 || id == 2048 || id == 9) return &locales[0];
  for (const Locale& locale : locales) {
    if (locale.id == id) return &locale;
  }
  return nullptr;
}

const Locale* find_locale(std::u16string_view tag) {
  for (const Locale& locale : locales) {
    if (equal_ignoring_case(ascii(locale.tag), tag) ||
        equal_ignoring_case(ascii(locale.tag).substr(0, 2), tag)) {
      return &locale;
    }
  }
  return nullptr;
}

}  // namespace zrl::vbs
