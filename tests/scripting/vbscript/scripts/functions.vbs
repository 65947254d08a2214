WScript.Echo Len("abc"), Left("abc", 2), Right("abc", 2), Mid("abcdef", 2, 3), Mid("abc", 2)  '=> 3 ab bc bcd bc
WScript.Echo InStr("abcabc", "c"), InStr(4, "abcabc", "c"), InStr(1, "ABC", "b", 1), InStrRev("abcabc", "c"), InStr("abc", "")  '=> 3 6 2 6 1
WScript.Echo UCase("aä"), LCase("AÄ"), "[" & Trim("  a ") & "]", "[" & LTrim(" a ") & "]", "[" & RTrim(" a ") & "]"  '=> AÄ aä [a] [a ] [ a]
WScript.Echo Replace("aXbXc", "X", "--"), Replace("aXbXc", "x", "", 1, 1, 1), Replace("abcabc", "c", "", 4)  '=> a--b--c abXc ab
WScript.Echo Space(2) & "|" & String(3, "x") & String(2, 65)  '=>   |xxxAA
WScript.Echo StrComp("a", "b"), StrComp("A", "a", 1), StrReverse("abc"), Asc("A"), Chr(66), AscW("€"), Asc("€")  '=> -1 0 cba 65 B 8364 128
WScript.Echo Hex(255), Hex(-1), Hex(CLng(-1)), Oct(8), Hex(65536)  '=> FF FFFF FFFFFFFF 10 10000
WScript.Echo Join(Array(1, 2, 3), "-"), UBound(Split("a,b,c", ",")), Split("a b")(1), UBound(Split("", ","))  '=> 1-2-3 2 b -1
WScript.Echo Join(Filter(Array("ab", "cd", "abc"), "ab")), Join(Split("a-b-c", "-", 2), "|")  '=> ab abc a|b-c
WScript.Echo Escape("a b€"), Unescape("a%20b%u20AC")  '=> a%20b%u20AC a b€
WScript.Echo Sgn(-3), Abs(-2.5), Sqr(16), Int(2.7), Fix(-2.7), Exp(0), Round(2.345, 2)  '=> -1 2.5 4 2 -2 1 2.34
WScript.Echo IsNumeric("1e5"), IsNumeric("abc"), IsNumeric(""), IsDate("1/2/2020"), IsArray(Array()), IsEmpty(Empty)  '=> True False False True True True
WScript.Echo TypeName(1), TypeName("a"), TypeName(Null), TypeName(Nothing), TypeName(Array()), TypeName(#1/1/2020#), TypeName(Empty)  '=> Integer String Null Nothing Variant() Date Empty
WScript.Echo VarType(1), VarType("a"), VarType(Array()), VarType(Null), VarType(1.5), VarType(True)  '=> 2 8 8204 1 5 11
WScript.Echo RGB(1, 2, 3), vbCrLf = Chr(13) & Chr(10), vbObjectError  '=> 197121 True -2147221504
WScript.Echo 0.1 + 0.2, 1/3, 1e15, 123456789012345, 1e-5, 1/30, 100000 * 100000  '=> 0.3 0.333333333333333 1E+15 123456789012345 0.00001 3.33333333333333E-02 10000000000
WScript.Echo CStr(CSng(1/3)), CCur("1.23456"), CBool("true"), CDbl("1,234.5"), CLng("&H10")  '=> 0.3333333 1.2346 True 1234.5 16
WScript.Echo LenB("ab"), AscB("a"), LeftB("ab", 2), MidB("abc", 3, 2), InStrB("abc", "b")  '=> 4 97 a b 3
Rnd -1 : Randomize 5 : a = Rnd : Rnd -1 : Randomize 5
WScript.Echo a = Rnd, Rnd(0) = a, TypeName(Rnd)  '=> True True Single
WScript.Echo ScriptEngine, GetLocale(), UBound(Array())  '=> VBScript 1033 -1
On Error Resume Next
x = FormatPercent(1e305) : WScript.Echo Err.Number : x = FormatPercent(1e308) : WScript.Echo Err.Number
'=> 0
'=> 6
