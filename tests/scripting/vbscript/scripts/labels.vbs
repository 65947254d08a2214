' Labels of another type do not fit, which is no error.
Function Fits(value)
  Select Case value
    Case 1, 2.5 : Fits = "number"
    Case "abc", "" : Fits = "text"
    Case True : Fits = "truth"
    Case #1/2/2020# : Fits = "date"
    Case Else : Fits = "nothing"
  End Select
End Function
WScript.Echo Fits("abc"), Fits("x"), Fits(1), Fits("1"), Fits(2.5)  '=> text nothing number number number
WScript.Echo Fits(Empty), Fits(Null), Fits(True), Fits(#1/2/2020#)  '=> text nothing truth date
Select Case "viagra"
  Case 5 : WScript.Echo "5"
  Case -5 : WScript.Echo "-5"
  Case CLng(7) : WScript.Echo "7"
  Case "viagra" : WScript.Echo "found"    '=> found
End Select
Select Case "99999999999999999999999999999999"
  Case 1 : WScript.Echo 1
  Case Else : WScript.Echo "large"        '=> large
End Select
Select Case CStr("a")
  Case #1/1/2000# : WScript.Echo "date"
  Case Else : WScript.Echo "no date"      '=> no date
End Select
On Error Resume Next
Select Case Array(1)
  Case 1 : WScript.Echo "entered", Err.Number  '=> entered 13
End Select
