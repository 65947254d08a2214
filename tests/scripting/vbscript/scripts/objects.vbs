Set d = CreateObject("Scripting.Dictionary")
d.Add "a", 1 : d("b") = 2 : d.Item("c") = 3
WScript.Echo d.Count, d("a"), d.Exists("x"), Join(d.Keys, ","), Join(d.Items, ",")  '=> 3 1 False a,b,c 1,2,3
x = d("new") : WScript.Echo d.Count, IsEmpty(x)  '=> 4 True
d.Remove "a" : d.Key("b") = "B"
WScript.Echo Join(d.Keys, ","), d("B")  '=> B,c,new 2
For Each k In d : s = s & k & ";" : Next
WScript.Echo s  '=> B;c;new;
d.Add "b", 4 : d.Key("c") = "C"
WScript.Echo Join(d.Keys, ","), d("b"), d("C"), d.Exists("c")  '=> B,C,new,b 4 3 False
d.RemoveAll : WScript.Echo d.Count  '=> 0
d.CompareMode = vbTextCompare : d("Key") = 1
WScript.Echo d("KEY"), d.CompareMode  '=> 1 1
d.RemoveAll : d(1) = "int" : d("1") = "str"
WScript.Echo d.Count, d(1.0), d(CLng(1)), d("1")  '=> 2 int int str
Set d("obj") = d
WScript.Echo TypeName(d("obj")), d("obj").Count, TypeName(d)  '=> Dictionary 3 Dictionary
d.Remove "obj"
a = Array(1, 2) : d("arr") = a
WScript.Echo d("arr")(1)  '=> 2
Set r = New RegExp
r.Pattern = "(\w+)@(\w+)(\.x)?" : r.Global = True
Set ms = r.Execute("joe@home ann@work")
WScript.Echo ms.Count, ms(0).Value, ms(1).FirstIndex, ms(1).Length, ms(0).SubMatches(1), ms(0).SubMatches.Count  '=> 2 joe@home 9 8 home 3
For Each m In ms : t = t & m & ";" : Next
WScript.Echo t  '=> joe@home;ann@work;
WScript.Echo r.Replace("joe@home", "$2 at $1 [$&] $$ $9"), r.Test("none")  '=> home at joe [joe@home] $ $9 False
r.IgnoreCase = True : r.Pattern = "A" : r.Global = False
WScript.Echo r.Replace("banana", "_"), r.Global, r.IgnoreCase, r.Pattern  '=> b_nana False True A
r.Pattern = "" : r.Global = True
WScript.Echo r.Execute("ab").Count, r.Replace("ab", "-")  '=> 3 -a-b-
r.Pattern = "^b" : r.MultiLine = True
WScript.Echo r.Test("a" & vbLf & "b"), TypeName(r)  '=> True IRegExp2
p = "x" : r.Pattern = p : p = p & "y" : WScript.Echo r.Pattern, p  '=> x xy
' A function makes the replacement, and may use the expression itself.
Function Shout(match, word, mark, at, text)
  r.Pattern = "none" : r.Global = False
  If word = "c" Then Exit Function
  Shout = UCase(word) & Len(mark) & at & Len(text)
End Function
r.Pattern = "([a-z])(!)?" : r.Global = True
WScript.Echo r.Replace("a! b-c.", GetRef("Shout")), r.Pattern  '=> A107 B037-. none
r.Pattern = "z" : WScript.Echo r.Replace("abc", GetRef("Shout"))  '=> abc
On Error Resume Next
r.Pattern = "b" : x = r.Replace("abc", GetRef("Shout")) : WScript.Echo Err.Number : Err.Clear  '=> 450
r.Pattern = "(" : x = r.Test("a") : WScript.Echo Err.Number  '=> 5020
WScript.Echo MsgBox("hi", 3, "T"), InputBox("q", "U", "pre"), IsEmpty(InputBox("q", "U", "cancel"))
'=> [T] hi
'=> [U] q
'=> [U] q
'=> 4 pre True
WScript.Echo Null, Empty, "x"  '=> null  x
Set h = CreateObject("Scripting.Dictionary")
WScript.Echo h.HashVal("ab"), h.HashVal(1)  '=> 546 161
On Error Resume Next
Err.Raise 65536 : WScript.Echo Err.Number : Err.Clear  '=> 5
Err.Raise 65535 : WScript.Echo Err.Number : Err.Clear  '=> 65535
