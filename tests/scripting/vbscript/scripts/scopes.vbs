' What nobody declares comes into being with its first value; until then procedures have their own.
Sub Own : a = "in" : b = "in" : c = "in" : End Sub
Own
WScript.Echo "[" & a & "]", IsEmpty(b)   '=> [] True
WScript.Echo c                           '=>
c = 1
Own
WScript.Echo c                           '=> in
Sub Counts : n = n + 1 : End Sub
n = 0 : Counts : Counts
WScript.Echo n                           '=> 2
Sub Fill(x) : x = 9 : End Sub
Sub More : fresh = fresh + 1 : End Sub
Fill fresh : More
WScript.Echo fresh                       '=> 10
Dim declared
Sub SetsDeclared : declared = 4 : End Sub
SetsDeclared
WScript.Echo declared                    '=> 4
Sub Executes : Execute "e1 = 1" : ExecuteGlobal "e2 = 2" : WScript.Echo e1, e2 : End Sub
Executes                                 '=> 1 2
WScript.Echo TypeName(e1), e2            '=> Empty 2
Sub Outer : q = 1 : Inner : WScript.Echo q : End Sub
Sub Inner : q = 2 : End Sub
Outer                                    '=> 1
' A procedure on one line.
Function Twice(x) Twice = 2 * x End Function
Sub Empty_() End Sub
Empty_
WScript.Echo Twice(4)                    '=> 8
' Procedures and constants are there even where their block is not run.
If False Then
  Function Hoisted : Hoisted = Constant : End Function
  Const Constant = 7
End If
WScript.Echo Hoisted                     '=> 7
' The result of a function is a variable in it, with elements too.
Function Squares(n) : ReDim Squares(n) : Dim i : For i = 0 To n : Squares(i) = i * i : Next : End Function
WScript.Echo Join(Squares(3))            '=> 0 1 4 9
Class Maker : Public Function List : ReDim List(1) : List(0) = "p" : List(1) = "q" : End Function : End Class
WScript.Echo Join((New Maker).List)      '=> p q
On Error Resume Next
s = "abc" : Mid(s, 1, 1) = "x" : WScript.Echo Err.Number, s : Err.Clear  '=> 501 abc
Squares(1) = 3 : WScript.Echo Err.Number : Err.Clear                     '=> 501
