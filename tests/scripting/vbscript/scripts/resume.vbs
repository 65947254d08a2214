' Where a script goes on after an error at the end of a branch: behind the whole statement.
On Error Resume Next
If True Then
  x = 1 / 0
Else
  WScript.Echo "else"
End If
WScript.Echo "behind", Err.Number                     '=> behind 11
If False Then
  WScript.Echo "then"
ElseIf True Then
  x = CInt("a")
ElseIf True Then
  WScript.Echo "second"
Else
  WScript.Echo "else"
End If
WScript.Echo "behind", Err.Number                     '=> behind 13
If True Then x = 1 / 0 Else WScript.Echo "else"
If True Then If True Then x = 1 / 0 Else WScript.Echo "inner" Else WScript.Echo "outer"
Select Case 2
  Case 1 : WScript.Echo "one"
  Case 2 : WScript.Echo "two" : x = 1 / 0             '=> two
  Case 3 : WScript.Echo "three"
  Case Else : WScript.Echo "else"
End Select
WScript.Echo "behind"                                 '=> behind
Sub Fails : x = 1 / 0 : End Sub
Function Inner(n)
  On Error Resume Next
  If n = 1 Then
    If True Then
      Fails
    Else
      WScript.Echo "inner else"
    End If
  ElseIf n = 2 Then
    WScript.Echo "two"
  Else
    WScript.Echo "outer else"
  End If
  Inner = "ended"
End Function
WScript.Echo Inner(1)                                 '=> ended
For i = 1 To 2
  If i = 1 Then
    Err.Raise 1000
  Else
    WScript.Echo "round", i                           '=> round 2
  End If
Next
Err.Clear
' What fails in the head of a loop runs its body once.
For i = "a" To 3 : WScript.Echo "body" : Next         '=> body
WScript.Echo Err.Number                               '=> 92
Err.Clear
For i = 1 To 3 Step "b" : WScript.Echo "body" : Next  '=> body
WScript.Echo Err.Number                               '=> 92
