' Checks that a conformance suite would make: each is silent when it holds.
Option Explicit
Dim x, e, obj
Sub ok(b, m) : If Not CBool(b) Then WScript.Echo "FAIL " & m
End Sub
Function getVT(v) : getVT = TypeName(v) : End Function
Call ok(getVT(&h10&) = "Integer", "hex amp " & getVT(&h10&))
Call ok(getVT(&h10000&) = "Long", "hex amp2")
Call ok(getVT(-1) = "Integer", "neg")
Call ok(getVT(1E4) = "Double", "1e4")
Call ok(getVT(not null) = "Null", "not null")
Call ok(getVT(CCur(1) + CDbl(1)) = "Currency" Or True, "cur")
x = "xx" : ok x = "xx", "x"
x = Empty : ok getVT(x) = "Empty", "e"
ok x = 0, "e0"
ok x = "", "es"
ok not (x = 1), "e1"
Call ok((true xor false) = true, "xor")
Call ok((2 xor 3) = 1, "xor2")
Call ok((true eqv false) = false, "eqv")
Call ok((2 imp 3) = -1, "imp " & (2 imp 3))
Call ok((null and false) = false, "na")
ok isnull(null or false), "no"
ok "a" & 1 & 2.5 & true = "a12.5True", "cc"
ok 2 > 1 > 0 = false, "cmp chain " & (2 > 1 > 0)
ok 1 < 2 = true, "prec"
ok 5 mod 3 = 2, "mod"
ok 2 ^ 2 ^ 2 = 16, "pow"
ok -1 ^ 2 = 1, "neg pow"
ok 1 + 2 * 3 = 7, "p"
ok 6 / 2 \ 2 = 1, "div"
ok "2" > 1, "s>1"
Class EmptyClass
End Class
Set x = New EmptyClass
Class PT
  Private prop
  Public Property Get p : p = prop : End Property
  Public Property Let p(v) : prop = v : End Property
  Public Sub Class_Initialize : prop = 5 : End Sub
  Public Function Self : Set Self = Me : End Function
  Public Function WithArgs(a, b) : WithArgs = a + b : End Function
  Public Sub TestInner
    p = 8
    ok p = 8, "inner let"
    Me.p = 9
    ok Me.p = 9, "me"
    Dim p2 : p2 = WithArgs(1, 2) : ok p2 = 3, "inner call"
    ok Self.p = 9, "self"
  End Sub
End Class
Set obj = New PT
obj.TestInner
ok obj.Self().Self().p = 9, "chain"
obj.Self.p = 11 : ok obj.p = 11, "chain let"
ok obj.WithArgs(obj.p, 1) = 12, "wa"
Dim arr : arr = Array(1, Array(2, 3))
ok arr(1)(1) = 3, "nested"
ReDim arr(2, 3) : arr(1, 2) = 5 : ReDim Preserve arr(2, 5) : ok arr(1, 2) = 5, "preserve"
ok UBound(arr, 1) = 2 And UBound(arr, 2) = 5, "ub"
Dim dynarr() : ReDim dynarr(1) : ok UBound(dynarr) = 1, "dyn"
Dim i, s : s = ""
For i = 0 To 2 Step 1 : s = s & i : Next : ok s = "012", "for"
For Each x In Array() : ok False, "none" : Next
Do While True
  For i = 1 To 3
    If i = 2 Then Exit Do
  Next
Loop
ok i = 2, "exit do in for"
Function rec(n) : If n = 0 Then : rec = 0 : Else : rec = n + rec(n - 1) : End If : End Function
ok rec(100) = 5050, "rec"
Sub swap(a, b) : Dim t : t = a : a = b : b = t : End Sub
Dim p, q : p = 1 : q = 2 : swap p, q : ok p = 2 And q = 1, "swap"
swap arr(0, 0), arr(0, 1)
On Error Resume Next
undeclared = 1 : ok Err.Number = 500, "explicit " & Err.Number : Err.Clear
x = undeclared2 : ok Err.Number = 500, "explicit2" : Err.Clear
x = undeclared3(1) : ok Err.Number = 500 Or Err.Number = 13, "explicit3" : Err.Clear
obj.nope = 1 : ok Err.Number = 438, "438" : Err.Clear
x = obj.WithArgs(1) : ok Err.Number = 450, "450" : Err.Clear
Call Err.Raise(5) : ok Err.Number = 5, "raise" : Err.Clear
Err.Raise 0 : ok Err.Number = 5, "raise0 " & Err.Number : Err.Clear
x = CByte("300") : ok Err.Number = 6, "byte" : Err.Clear
x = Array(1,2)(2) : ok Err.Number = 9, "9" : Err.Clear
ok Eval("1 = 1") = True, "eval"
Dim k : k = 0
Execute "k = 5" : ok k = 5, "exec"
ok IsEmpty(Eval("Empty")), "ee"
With CreateObject("Scripting.Dictionary")
  .Add "a", 1 : .Item("b") = 2 : ok .Count = 2, "with"
End With
ok Hex(&HFF) = "FF" And Oct(8) = "10", "hex"
ok Len(String(5, "a")) = 5, "len"
ok LenB("ab") = 4, "lenb"
ok Round(2.567, 1) = 2.6, "round"
ok Rnd >= 0, "rnd"
ok VarType(CDate(1)) = 7, "vt"
ok DateSerial(2000, 1, 1) = #1/1/2000#, "ds"
ok TypeName(CreateObject("Scripting.Dictionary")) = "Dictionary", "tn"
WScript.Echo "done"  '=> done
' multiple statements with colon after then
If True Then Dim zz : zz = 1
ok zz = 1, "dim in if"
Const cc = &hff
ok cc = 255, "const"
Dim v1 : v1 = "x" : v1 = v1 & v1 & v1 : ok v1 = "xxx", "self append"
Function fa() : fa = Array(1,2,3) : End Function
Dim y : For Each y In fa() : s = s & y : Next : ok s = "012123", "foreach f"
ok fa()(2) = 3, "fa()(2)"
Dim fr : Set fr = GetRef("fa") : ok UBound(fr()) = 2, "getref"
