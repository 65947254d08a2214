' What goes together ends in order, and what an object drops goes before the next one.
Class Part
  Public name, child
  Private Sub Class_Terminate : WScript.Echo "end of " & name : End Sub
End Class
Function NewPart(name) : Set NewPart = New Part : NewPart.name = name : End Function
Function Parent(name) : Set Parent = NewPart(name) : Set Parent.child = NewPart(name & "'s") : End Function
nodes = Array(Parent("a"), Parent("b"))
nodes = Empty
'=> end of a
'=> end of a's
'=> end of b
'=> end of b's
Sub Locals : Dim one, two : Set one = NewPart("one") : Set two = NewPart("two") : End Sub
Locals
'=> end of one
'=> end of two
Set g1 = NewPart("g1") : Set g2 = NewPart("g2")
' Arguments for a property that takes none and returns no array.
Class Plain : Public Property Get P : P = 5 : End Property : End Class
On Error Resume Next
Set o = New Plain : x = o.P(1) : WScript.Echo Err.Number  '=> 450
'=> end of g1
'=> end of g2
