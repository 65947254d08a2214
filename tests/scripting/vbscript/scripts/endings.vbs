' Ends that need no colon, and statements that go on in the next line.
Sub Say(x) : WScript.Echo x End Sub
Function Twice(x)
  Call Say("twice")
  Twice = x * 2 End Function
Class Holder
  Public items
  Public Sub Class_Initialize : Set items = CreateObject("Scripting.Dictionary") End Sub
  Public Function Add(x) : items.Add x, x : Set Add = Me End Function
  Public Property Get Count : Count = items.Count End Property
  Public Default Function Init(n) : items.Add "n", n : Set Init = Me : End Function End Class
WScript.Echo Twice(4)
'=> twice
'=> 8
If False Then
  x = 1
Else x = 3 End If
WScript.Echo x                            '=> 3
If False Then
ElseIf True Then x = 4 End If
WScript.Echo x                            '=> 4
If True Then
Else
  x = 5 End If
If False Then
Else End If
If True Then x = 6 End If
WScript.Echo x                            '=> 6
' A chain that goes on in the next line, at the level of statements.
Set h = New Holder
h _
  .Add 1
h.Add(2) _
  .Add(3) _
  .Add 4
h.Add(5). _
  Add 6
WScript.Echo h _
  .Count                                  '=> 6
With h
  Say .Count                              '=> 6
End With
' New with a member.
Set n = New Holder.Init(5)
WScript.Echo n.Count, New Holder.Init(7).items.Item("n")  '=> 1 7
Set n = (New Holder)(8)
WScript.Echo n.Count                      '=> 1
' Exit Do leaves the Do around a While.
Do
  While True
    rounds = rounds + 1
    If rounds = 3 Then Exit Do
  Wend
  WScript.Echo "never"
Loop
WScript.Echo rounds                       '=> 3
For i = 1 To 2
  While True
    Exit For
  Wend
Next
WScript.Echo i                            '=> 1
