' Errors by operation: the number each of these raises.
Option Explicit
Dim number, x, nix, plain, empties(2), later, withlet, d, re
Class Bare : Public prop : Public list : End Class
Class LetOnly : Public Property Let p(v) : End Property : End Class
Set nix = Nothing : Set plain = New Bare : Set withlet = New LetOnly : plain.prop = 5
Sub tells(what)
  If Err.Number <> number Then WScript.Echo what, Err.Number, "instead of", number
  Err.Clear
End Sub
On Error Resume Next
number = 13
x = DateValue(44000) : tells "DateValue(44000)"
x = DateValue(Empty) : tells "DateValue(Empty)"
x = TimeValue(-1) : tells "TimeValue(-1)"
x = CDate("08.02.2024") : tells "CDate with points"
x = Day("15.03.2026") : tells "Day with points"
Execute 42 : tells "Execute 42"
x = GetRef(123) : tells "GetRef(123)"
x = Join(Array(1, Null)) : tells "Join of Null in a list"
x = Join(5) : tells "Join(5)"
x = CInt("1 2") : tells "CInt"
x = "abc" + 1 : tells "abc + 1"
x = "abc" And 1 : tells "And of a text"
x = Array(1) & "" : tells "concatenation of an array"
number = 94
x = Join(Null) : tells "Join(Null)"
x = Filter(Null, "a") : tells "Filter(Null)"
x = Escape(Null) : tells "Escape(Null)"
x = Unescape(Null) : tells "Unescape(Null)"
x = Sgn(Null) : tells "Sgn(Null)"
x = CDbl(Null) : tells "CDbl(Null)"
x = InStr(Null, "a", "b") : tells "InStr from Null"
number = 91
x = Join(nix) : tells "Join(Nothing)"
x = LBound(nix) : tells "LBound(Nothing)"
x = nix + 1 : tells "Nothing + 1"
x = nix(1) : tells "index of Nothing"
x = CStr(nix) : tells "CStr(Nothing)"
number = 424
x = nix.member : tells "member of Nothing"
nix.member = 1 : tells "assigning a member of Nothing"
x = number.member : tells "member of a number"
Set x = 5 : tells "Set to a number"
number = 438
x = LBound(plain) : tells "LBound of an object"
x = plain & "" : tells "object without default"
x = plain.prop(0) : tells "index of a property"
Set withlet.p = plain : tells "Set of a property with Let only"
plain.nope = 1 : tells "no such member"
number = 5
x = InStrRev("abc", "b", -2) : tells "InStrRev from -2"
x = InStrRev("abc", "b", 0) : tells "InStrRev from 0"
x = Mid("abc", 0) : tells "Mid from 0"
x = String(1, "") : tells "String of nothing"
x = Asc("") : tells "Asc of nothing"
x = Chr(256) : tells "Chr(256)"
x = Sqr(-1) : tells "Sqr(-1)"
x = 0 ^ -1 : tells "0 ^ -1"
Err.Raise 0 : tells "Raise 0"
number = 6
x = ChrB(256) : tells "ChrB(256)"
x = CByte(256) : tells "CByte(256)"
x = CInt(32768) : tells "CInt(32768)"
x = 0 / 0 : tells "0 / 0"
x = 1E308 * 10 : tells "1E308 * 10"
x = CDbl("1e999") : tells "CDbl(1e999)"
number = 9
x = empties() : tells "list()"
x = empties(3) : tells "list(3)"
x = UBound(empties, 2) : tells "second dimension"
number = 11
x = 5 Mod 0 : tells "Mod 0"
x = 5 \ 0 : tells "\ 0"
number = 500
Set x = New Undeclared : tells "New Undeclared"
x = undeclared : tells "undeclared"
number = 506 : Set x = New number : tells "New of a variable"
number = 450 : x = Len() : tells "Len()"
number = 1002 : x = Eval("1 + ") : tells "Eval of half a sum"
number = 1023 : Execute "x = 1 + " : tells "Execute of half a sum"
number = 1031 : Execute "x = 1e999" : tells "1e999"
' Codes of the system.
number = 70 : Err.Raise &H80070005 : tells "access denied"
number = 7 : Err.Raise &H8007000E : tells "out of memory"
number = 5 : Err.Raise &H80070057 : tells "invalid argument"
number = 438 : Err.Raise &H80020003 : tells "member not found"
number = 13 : Err.Raise &H80020005 : tells "type mismatch"
number = 429 : Err.Raise &H80040154 : tells "class not registered"
number = 58 : Err.Raise &H80030050 : tells "file exists"
number = 11 : Err.Raise &H800A000B : tells "a number of the language"
number = &H80070006 : Err.Raise &H80070006 : tells "a code without a number"
number = vbObjectError + 1 : Err.Raise vbObjectError + 1 : tells "an object's own"
' What a script gave Err stays for what is raised next.
Err.Raise 1000, "me", "mine"
Err.Raise 5
WScript.Echo Err.Number, Err.Source, Err.Description  '=> 5 me mine
Err.Clear : Err.Raise 5
WScript.Echo Err.Description              '=> Invalid procedure call or argument
x = 1 / 0 : Err.Raise 5
WScript.Echo Err.Description              '=> Invalid procedure call or argument
Sub Made : Execute "Dim fresh" : fresh = 5 : WScript.Echo fresh : End Sub
Made                                      '=> 5
