' Default members with arguments, properties with parameters, arrays in objects.
Class Thing
  Public Default Function Foo(x) : Foo = "foo" & x : End Function
  Public list, F
  Public Property Get P(i, j) : P = i & "," & j : End Property
  Public Property Let P(i, j, v) : WScript.Echo "let", i, j, v : End Property
  Public Property Set P(i, j, v) : WScript.Echo "set", i, j, TypeName(v) : End Property
  Public Sub PassField : Change F : End Sub
End Class
Sub Change(x) : x = 99 : End Sub
Set a = New Thing
WScript.Echo a(5), a.Foo(6), a.P(1, 2)   '=> foo5 foo6 1,2
a.P(3, 4) = 5                            '=> let 3 4 5
Set a.P(6, 7) = a                        '=> set 6 7 Thing
a.list = Array(1, 2, 3) : a.list(1) = 20
WScript.Echo a.list(1), UBound(a.list)   '=> 20 2
' A field is passed by reference inside the class, by value outside.
a.F = 1 : a.PassField : WScript.Echo a.F  '=> 99
a.F = 1 : Change a.F : WScript.Echo a.F   '=> 1
' Arrays: copied when assigned, even while an element is passed by reference.
Sub Grow(list) : list(0) = "changed" : ReDim Preserve list(5) : End Sub
Dim dyn() : ReDim dyn(2)
Grow dyn
WScript.Echo dyn(0), UBound(dyn)         '=> changed 5
Dim shared
Sub CopyAndChange(x) : shared = dyn : x = "new" : End Sub
CopyAndChange dyn(1)
WScript.Echo dyn(1), "[" & shared(1) & "]"  '=> new []
Sub Redimension(x) : ReDim dyn(9) : End Sub
On Error Resume Next
Redimension dyn(1) : WScript.Echo Err.Number, UBound(dyn) : Err.Clear  '=> 10 5
For Each x In dyn : ReDim dyn(1) : Exit For : Next
WScript.Echo Err.Number : Err.Clear      '=> 10
ReDim dyn(1) : WScript.Echo Err.Number   '=> 0
b = Array(1, 2) : Erase b : x = UBound(b) : WScript.Echo Err.Number : Err.Clear  '=> 9
On Error GoTo 0
' Dictionaries in dictionaries, arrays in dictionaries.
Set d = CreateObject("Scripting.Dictionary")
d.Add "k", Array(1, 2)
WScript.Echo d("k")(1), d.Items()(0)(1), d.Keys()(0)  '=> 2 2 k
d.Add "d", CreateObject("Scripting.Dictionary")
d("d")("x") = 5
WScript.Echo d("d")("x"), d("d").Count   '=> 5 1
d("k")(0) = 99
WScript.Echo d("k")(0)                   '=> 1
Function TheDictionary : Set TheDictionary = d : End Function
WScript.Echo TheDictionary.Count, TheDictionary()("d")("x"), TheDictionary.Item("d").Item("x")  '=> 2 5 5
' Left-out arguments, many arguments.
Sub Three(a1, a2, a3) : WScript.Echo TypeName(a1), TypeName(a2), a3 : End Sub
Three , , 3                              '=> Error Error 3
Dim s : s = "Array(0"
For i = 1 To 400 : s = s & "," & i : Next
WScript.Echo UBound(Eval(s & ")"))       '=> 400
' Objects in conditions end with the statement.
Class Guard
  Public Default Property Get Value : Value = 1 : End Property
  Private Sub Class_Terminate : WScript.Echo "guard ends" : End Sub
End Class
Function NewGuard : Set NewGuard = New Guard : End Function
If NewGuard = 1 Then WScript.Echo "then"
'=> guard ends
'=> then
If NewGuard Then WScript.Echo "then"
'=> guard ends
'=> then
Select Case NewGuard
  Case 1 : WScript.Echo "one"
End Select
'=> guard ends
'=> one
n = 0
Do While NewGuard > n : n = n + 1 : Loop
'=> guard ends
'=> guard ends
x = NewGuard + NewGuard : WScript.Echo x
'=> guard ends
'=> guard ends
'=> 2
' Terminators that fail are silent, and do not disturb Err.
Class Fails : Private Sub Class_Terminate : x = 1 / 0 : End Sub : End Class
Set f = New Fails : Set f = Nothing : WScript.Echo "on"  '=> on
WScript.Echo 10 Mod 3 * 2, -2 ^ 2, 2 * -3, Not 5 > 3      '=> 4 4 -6 False
WScript.Echo 5 / 2, 5 \ 2, -5 \ 2, 5 Mod -3, 2 ^ 0.5      '=> 2.5 2 -2 2 1.4142135623731
