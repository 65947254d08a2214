Sub Inc(x) : x = x + 1 : End Sub
Sub IncV(ByVal x) : x = x + 1 : End Sub
a = 1
Inc a : WScript.Echo a         '=> 2
Inc (a) : WScript.Echo a       '=> 2
IncV a : WScript.Echo a        '=> 2
Call Inc(a) : WScript.Echo a   '=> 3
Dim arr(2) : arr(1) = 10
Inc arr(1) : WScript.Echo arr(1)  '=> 11
Sub Two(x, y) : WScript.Echo x & "|" & y : End Sub
Two (2)*8, 7                   '=> 16|7
Two (1), (2)                   '=> 1|2
Function Fact(n)
  If n <= 1 Then Fact = 1 Else Fact = n * Fact(n - 1)
End Function
WScript.Echo Fact(10), Fact(20)  '=> 3628800 2.43290200817664E+18
Function Nested(x)
  Nested = Inner(x) + Inner(x + 1)
End Function
Function Inner(x) : Inner = x * 2 : End Function
WScript.Echo Nested(3)          '=> 14
Function NoValue() : End Function
WScript.Echo IsEmpty(NoValue()) '=> True
Function Arr3() : Arr3 = Array(1, 2, 3) : End Function
WScript.Echo Arr3()(1), UBound(Arr3)  '=> 2 2
Sub Outer
  Dim local : local = 1
  Inc local
  WScript.Echo local            '=> 2
End Sub
Outer
Function Swap(a, b) : Dim t : t = a : a = b : b = t : End Function
p = 1 : q = 2 : Swap p, q
WScript.Echo p, q               '=> 2 1
Set f = GetRef("Fact")
WScript.Echo f(5), TypeName(f)  '=> 120 Object
Sub ExitEarly(n)
  If n > 1 Then Exit Sub
  WScript.Echo "reached"
End Sub
ExitEarly 2
ExitEarly 1                     '=> reached
If False Then
  Const hoisted = 7
End If
WScript.Echo hoisted            '=> 7
Function Dup : Dup = 1 : End Function
Function Dup : Dup = 2 : End Function
WScript.Echo Dup                '=> 2
On Error Resume Next
Fact 1, 2 : WScript.Echo Err.Number : Err.Clear      '=> 450
Fact = 3 : WScript.Echo Err.Number : Err.Clear       '=> 501
hoisted = 3 : WScript.Echo Err.Number : Err.Clear    '=> 501
NoSuch 1 : WScript.Echo Err.Number, Err.Description : Err.Clear  '=> 13 Type mismatch
Sub Deep(n) : Deep n + 1 : End Sub
Deep 1 : WScript.Echo Err.Number                     '=> 28
