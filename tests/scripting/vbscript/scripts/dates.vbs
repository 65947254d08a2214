d = #2/29/2020 3:04:05 PM#
WScript.Echo d, Year(d), Month(d), Day(d), Hour(d), Minute(d), Second(d), Weekday(d)  '=> 2/29/2020 3:04:05 PM 2020 2 29 15 4 5 7
WScript.Echo DateAdd("m", 1, #1/31/2020#), DateAdd("yyyy", 1, #2/29/2020#), DateAdd("h", 25, #1/1/2020#), DateAdd("s", -1, #1/1/2020#)  '=> 2/29/2020 2/28/2021 1/2/2020 1:00:00 AM 12/31/2019 11:59:59 PM
WScript.Echo DateDiff("d", #1/1/2020#, #3/1/2020#), DateDiff("m", #1/31/2020#, #2/1/2020#), DateDiff("yyyy", #12/31/2019#, #1/1/2020#), DateDiff("h", #1/1/2020#, #1/2/2020#), DateDiff("ww", #1/4/2020#, #1/5/2020#)  '=> 60 1 1 24 1
WScript.Echo DatePart("q", d), DatePart("y", d), DatePart("ww", d), DatePart("w", d)  '=> 1 60 9 7
WScript.Echo DateSerial(2020, 14, 1), DateSerial(99, 1, 0), TimeSerial(25, 0, 0), TimeSerial(1, 2, 3)  '=> 2/1/2021 12/31/1998 12/31/1899 1:00:00 AM 1:02:03 AM
WScript.Echo DateValue("Jan 5, 2021"), TimeValue("4:35 pm"), CDate("2021-03-04 05:06"), CDate(1.5)  '=> 1/5/2021 4:35:00 PM 3/4/2021 5:06:00 AM 12/31/1899 12:00:00 PM
WScript.Echo MonthName(1), MonthName(12, True), WeekdayName(1), WeekdayName(2, True, 2)  '=> January Dec Sunday Tue
WScript.Echo FormatDateTime(d, 0), FormatDateTime(d, 1), FormatDateTime(d, 2), FormatDateTime(d, 3), FormatDateTime(d, 4)
'=> 2/29/2020 3:04:05 PM Saturday, February 29, 2020 2/29/2020 3:04:05 PM 15:04
WScript.Echo CDbl(#1/1/1900#), CDbl(CDate(-1.25)), CDate(0), CLng(#1/1/2020#)  '=> 2 -1.25 12:00:00 AM 43831
WScript.Echo IsDate("foo"), IsDate("13/1/2020"), IsDate("2/30/2020"), CDate("5 March 2019")  '=> False True False 3/5/2019
WScript.Echo FormatNumber(1234.567), FormatNumber(-0.5, 1), FormatNumber(.5, 2, 0), FormatNumber(-5, 0, -1, -1), FormatNumber(1234567, 0, -1, 0, 0)  '=> 1,234.57 -0.5 .50 (5) 1234567
WScript.Echo FormatCurrency(1234.5), FormatCurrency(-1), FormatPercent(0.1234), FormatPercent(1, 0)  '=> $1,234.50 ($1.00) 12.34% 100%
SetLocale "de-de"
WScript.Echo CStr(1.5), CDbl("1,5"), CStr(#2/1/2020#), FormatNumber(1234.5), MonthName(3)  '=> 1,5 1,5 01.02.2020 1.234,50 März
