n = 5 : s = "abc" : t = "5"
WScript.Echo "abc" = n            '=> False
WScript.Echo s = n, s > n, t = n  '=> False True False
WScript.Echo t = 5, "5" = n       '=> True True
WScript.Echo Empty = 0, Empty = "", Empty = False  '=> True True True
WScript.Echo IsNull(Null = 1), IsNull(Null & Null), "a" & Null  '=> True True a
If Null Then WScript.Echo "then" Else WScript.Echo "else"  '=> else
WScript.Echo "a" < "B", "a" = "A"  '=> False False
WScript.Echo True = -1, True = "True", s = True  '=> True True False
WScript.Echo False And Null, IsNull(True And Null), True Or Null, IsNull(False Or Null)  '=> False True True True
WScript.Echo #1/1/2020# < #1/2/2020#, 1 < 1.5  '=> True True
On Error Resume Next
x = ("abc" = 5) : WScript.Echo Err.Number : Err.Clear  '=> 13
x = (s = 5) : WScript.Echo Err.Number : Err.Clear      '=> 13
x = (Array() = 1) : WScript.Echo Err.Number : Err.Clear '=> 13
x = Nothing Is Nothing : WScript.Echo x                '=> True
x = 1 Is Nothing : WScript.Echo Err.Number             '=> 424
Err.Clear : Set o = Nothing
x = (o = 1) : WScript.Echo Err.Number                  '=> 91
