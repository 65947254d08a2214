Class Counter
  Private n
  Public Step_
  Public Items(2)
  Private Sub Class_Initialize
    n = 10 : Step_ = 1
  End Sub
  Private Sub Class_Terminate
    WScript.Echo "bye " & n
  End Sub
  Public Default Property Get Value
    Value = n
  End Property
  Public Property Let Value(v)
    n = v
  End Property
  Public Property Get Item(i) : Item = Items(i) : End Property
  Public Property Let Item(i, v) : Items(i) = v : End Property
  Public Property Set Other(o) : WScript.Echo "set " & TypeName(o) : End Property
  Public Function Add(k)
    n = n + k
    Set Add = Me
  End Function
  Public Sub Twice : Add n : End Sub
  Private Sub Hidden : End Sub
  Public Function CallHidden : Hidden : CallHidden = "ok" : End Function
End Class
Set c = New Counter
WScript.Echo c, c + 1, c & "x"    '=> 10 11 10x
c.Value = 5
WScript.Echo c.Value              '=> 5
c.Add(1).Add(2).Twice
WScript.Echo c.Value              '=> 16
c.Item(1) = "one"
WScript.Echo c.Item(1), c.Items(1)  '=> one one
c.Items(2) = "two"
WScript.Echo c.Items(2)           '=> two
Set c.Other = c                   '=> set Counter
x = c
WScript.Echo TypeName(x), TypeName(c), VarType(c)  '=> Integer Counter 2
WScript.Echo c.CallHidden         '=> ok
Set d = c
WScript.Echo d Is c               '=> True
Set c = Nothing
Set d = Nothing                   '=> bye 16
Sub Local
  Dim t : Set t = New Counter
  WScript.Echo "in"
End Sub
Local
'=> in
'=> bye 10
WScript.Echo (New Counter).Value
'=> 10
'=> bye 10
Set e = New Counter
Set e = New Counter               '=> bye 10
On Error Resume Next
e.Hidden : WScript.Echo Err.Number : Err.Clear     '=> 438
e.NoSuch = 1 : WScript.Echo Err.Number : Err.Clear '=> 438
x = e.Add : WScript.Echo Err.Number : Err.Clear    '=> 450
Class Node : Public NextNode : End Class
Dim head, i
For i = 1 To 100000
  Set t = New Node
  If i > 1 Then Set t.NextNode = head
  Set head = t
Next
Set t = Nothing
Set head = Nothing
WScript.Echo "freed"              '=> freed
e.Value = 1
WScript.Echo "end"                '=> end
'=> bye 1
