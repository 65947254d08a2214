' Values and sub-types where others go wrong.
Const five = 5
Function t(v) : t = TypeName(v) & " " & v : End Function
single_ = CSng(0.1) : double_ = 0.1
WScript.Echo single_ = double_, CSng(0.1) = 0.1, CSng(0.1) < 0.1000001  '=> True True True
abc = "abc" : minus = -5
WScript.Echo abc = -5, "abc" = minus, abc = five, -5 = abc, abc > five  '=> False False False False True
truth = True : word = "True"
WScript.Echo word = truth, truth = word, word = True, "True" = truth, word > truth  '=> False False True True True
WScript.Echo t(CByte(1) + Empty), t(Empty * CByte(3)), t(CByte(True)), t(CByte(False))  '=> Byte 1 Byte 0 Byte 255 Byte 0
WScript.Echo t(1 Or Null), t(Null Or CByte(2)), IsNull(0 Or Null), t(0 And Null)  '=> Integer 1 Byte 2 True Integer 0
WScript.Echo t(CByte(0) Imp Null), IsNull(CByte(255) Imp Null), t(Null Imp CByte(3)), IsNull(Null Imp CByte(0)) '=> Byte 255 True Byte 3 True
WScript.Echo t(False Imp Null), IsNull(True Imp Null), t(CByte(1) Imp CByte(2))  '=> Boolean True True Byte 254
WScript.Echo CBool("#TRUE#"), CBool("#False#"), "#TRUE#" And True  '=> True False True
WScript.Echo t(+"5"), t(+True), TypeName(+Empty), t(+CByte(3)), TypeName(+Null)  '=> String 5 Boolean True Empty Byte 3 Null
WScript.Echo t(vbBlack), t(vbMsgBoxHelpButton)  '=> Long 0 Long 16384
WScript.Echo LenB(ChrB(65)), LenB(LeftB("ABC", 3)), Len(ChrB(65)), LenB(ChrB(65) & ChrB(66)), ChrB(65) & ChrB(0)  '=> 1 3 0 2 A
b = "" : For i = 1 To 5 : b = b & ChrB(64 + i) : Next
WScript.Echo LenB(b), AscB(MidB(b, 5, 1)), InStrB(b, ChrB(67)), LenB(MidB(b, 2)), LenB(RightB(b, 3))  '=> 5 69 3 4 3
WScript.Echo LenB(b & "x"), LenB("x" & b), Left(ChrB(65) & ChrB(0) & "B", 2)  '=> 7 7 AB
Class WithArray : Public Default Property Get a : a = Array(1, 2, 3) : End Property : End Class
Class Bare : End Class
WScript.Echo UBound(New WithArray), LBound(New WithArray), Join(New WithArray, "-"), IsDate(New Bare), IsNumeric(New Bare)  '=> 2 0 1-2-3 False False
Class RegExp : Public x : End Class
Set r = New RegExp : r.Pattern = "b" : r.Global = True
WScript.Echo TypeName(r), r.Replace("abab", True)  '=> IRegExp2 a-1a-1
Function InProcedure
  Execute "Dim made : made = 3"
  made = made + 1
  InProcedure = made
End Function
WScript.Echo InProcedure                  '=> 4
first = Timer
For i = 1 To 200000 : last = Timer : If last < first And first - last < 80000 Then back = back + 1
first = last : Next
WScript.Echo "back", CLng(back)           '=> back 0

' An array that is stored in one of its own elements is a copy of what it was.
Dim outer(1), inner(1), deep
inner(0) = "inner"
outer(0) = inner
outer(1) = "outer"
outer(0)(0) = outer
WScript.Echo outer(0)(0)(0)(0), outer(0)(0)(1), TypeName(outer(0)(1))  '=> inner outer Empty
deep = Array(Array(Array(1)))
deep(0)(0)(0) = deep
WScript.Echo deep(0)(0)(0)(0)(0)(0)  '=> 1

' What is written by a reference to an element does not reach the copies taken meanwhile.
Dim taken
Sub take_and_write(ByRef element)
  taken = deep
  element = 2
End Sub
deep = Array(Array(1))
take_and_write deep(0)(0)
WScript.Echo deep(0)(0), taken(0)(0)  '=> 2 1
WScript.Echo TypeName(taken(0)), UBound(taken(0))  '=> Variant() 0

' At any depth, an element of an array in an array is itself, for assignments, ByRef parameters and Erase.
Dim cube : cube = Array(Array(Array(1, 2), 3), 4)
cube(0)(0)(1) = 5
take_and_write cube(0)(0)(0)
WScript.Echo cube(0)(0)(0), cube(0)(0)(1), cube(0)(1)  '=> 2 5 3
Dim places : places = Array(Array(0, 1), 0)
cube(places(0)(0))(places(1))(places(0)(1)) = places(0)
take_and_write cube(places(0)(0))(places(1))(places(0)(1))(places(0)(0))
WScript.Echo cube(0)(0)(1)(0), places(0)(0)  '=> 2 0
Erase cube(0)(0)
WScript.Echo TypeName(cube(0)(0)), cube(0)(1)  '=> Variant() 3
