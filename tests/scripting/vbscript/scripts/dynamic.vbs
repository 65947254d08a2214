x = 1
Execute "x = x + 1 : y = 10"
WScript.Echo x, y                    '=> 2 10
WScript.Echo Eval("x + y"), Eval("x = 2")  '=> 12 True
Sub Inside
  Dim a : a = 5
  Execute "a = a * 2 : b = 7 : Dim c : c = 8"
  WScript.Echo a, Eval("b"), Eval("a + c")  '=> 10 7 18
  ExecuteGlobal "g = 99 : a = 1"
  WScript.Echo a, g                  '=> 10 99
  Execute "b = b + 1"
  WScript.Echo Eval("b")             '=> 8
End Sub
Inside
WScript.Echo a, g                    '=> 1 99
WScript.Echo Eval("IsEmpty(b)")      '=> True
ExecuteGlobal "Function Later(n) : Later = n * 3 : End Function"
WScript.Echo Later(4)                '=> 12
Sub UsesLater : WScript.Echo Defined(2) : End Sub
Execute "Function Defined(n) : Defined = n + 40 : End Function"
UsesLater                            '=> 42
Sub Calls : WScript.Echo Deferred : End Sub
ExecuteGlobal "Function Deferred : Deferred = ""d"" : End Function"
Calls                                '=> d
ExecuteGlobal "Class Made : Public V : End Class"
Set m = Eval("New Made")
m.V = 3 : WScript.Echo m.V           '=> 3
Execute "Option Explicit" & vbCrLf & "On Error Resume Next : q = 1 : WScript.Echo Err.Number" '=> 500
z = 5 : WScript.Echo z               '=> 5
