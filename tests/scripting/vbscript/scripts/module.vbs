' Me outside of classes: the module, whose procedures and variables are members.
Option Explicit
Const limit = 7
Dim total, list(2), later
total = 5 : list(1) = "one"
Function Add(a, b) : Add = a + b : End Function
Function Plain : Plain = "plain" : End Function
Sub Change(x) : x = x + 1 : End Sub
WScript.Echo Me.total, Me.limit, Me.Add(2, 3), Me.Plain  '=> 5 7 5 plain
Me.total = 6 : Me.Change total
WScript.Echo total                        '=> 7
Me.list(2) = "two"
WScript.Echo Me.list(1), list(2)          '=> one two
Set Me.later = Me
WScript.Echo later.Plain(), later Is Me, IsObject(Me)  '=> plain True True
Function FromInside : FromInside = Me.Add(1, Me.total) : End Function
WScript.Echo FromInside                   '=> 8
With Me
  .total = .Add(.total, 10)
  WScript.Echo .total                     '=> 17
End With
Class Own
  Public total
  Public Function Self : Set Self = Me : End Function
End Class
Dim o : Set o = New Own : o.total = 1
WScript.Echo o.Self.total, Eval("Me.total")  '=> 1 17
On Error Resume Next
WScript.Echo Me.nope                      : WScript.Echo Err.Number : Err.Clear  '=> 438
Me.nope = 1                               : WScript.Echo Err.Number : Err.Clear  '=> 438
Me.Plain = 1                              : WScript.Echo Err.Number : Err.Clear  '=> 438
WScript.Echo Me + 1                       : WScript.Echo Err.Number : Err.Clear  '=> 438
WScript.Echo GetRef("Add").nope           : WScript.Echo Err.Number              '=> 438
