On Error Resume Next
x = 1 / 0
WScript.Echo Err.Number, Err.Description, Err.Source  '=> 11 Division by zero Microsoft VBScript runtime error
Err.Clear
WScript.Echo Err.Number, "[" & Err.Description & "]"  '=> 0 []
If 1 / 0 Then WScript.Echo "entered"                  '=> entered
Select Case 1
  Case 1 / 0 : WScript.Echo "case entered"            '=> case entered
End Select
Err.Clear
For i = 1 / 0 To 3 : WScript.Echo "body" : Next       '=> body
WScript.Echo Err.Number                               '=> 92
Err.Clear
For Each v In 5 : WScript.Echo "each" : Next          '=> each
WScript.Echo Err.Number                               '=> 451
Sub Fails
  WScript.Echo "in"
  x = 1 / 0
  WScript.Echo "never"
End Sub
Err.Clear
Fails                                                 '=> in
WScript.Echo "after", Err.Number                      '=> after 11
Sub Handles
  On Error Resume Next
  Err.Raise 5
  WScript.Echo "handled", Err.Number                  '=> handled 5
End Sub
Handles
WScript.Echo Err.Number                               '=> 5
Err.Raise 1234, "me", "mine"
WScript.Echo Err.Number, Err.Source, Err.Description  '=> 1234 me mine
Err.Raise vbObjectError + 1
WScript.Echo Err.Number, Err.Description              '=> -2147221503 mine
Err.Clear : Err.Raise vbObjectError + 1
WScript.Echo Err.Number, Err.Description              '=> -2147221503 Unknown runtime error
On Error GoTo 0
WScript.Echo Err.Number                               '=> 0
On Error Resume Next
Set o = 5 : WScript.Echo Err.Number : Err.Clear       '=> 424
o.Foo : WScript.Echo Err.Number : Err.Clear           '=> 424
Set n = Nothing
n.Foo : WScript.Echo Err.Number : Err.Clear           '=> 424
x = n + 1 : WScript.Echo Err.Number : Err.Clear       '=> 91
Set q = New Missing : WScript.Echo Err.Number : Err.Clear   '=> 500
Set q = New n : WScript.Echo Err.Number : Err.Clear   '=> 506
Set q = CreateObject("Some.Thing") : WScript.Echo Err.Number : Err.Clear  '=> 429
Set d = CreateObject("Scripting.Dictionary")
d.Foo : WScript.Echo Err.Number : Err.Clear           '=> 438
d.Add 1, 2 : d.Add 1, 3 : WScript.Echo Err.Number : Err.Clear  '=> 457
d.Remove 7 : WScript.Echo Err.Number : Err.Clear      '=> 32811
x = Left("a", -1) : WScript.Echo Err.Number : Err.Clear     '=> 5
x = CInt(Null) : WScript.Echo Err.Number : Err.Clear  '=> 94
x = .Foo : WScript.Echo Err.Number : Err.Clear        '=> 505
Execute "x = (" : WScript.Echo Err.Number             '=> 1023
On Error GoTo 0
x = 1
  y = Undefined_(3) '=> error 13 (58, 3): Type mismatch: 'Undefined_'
