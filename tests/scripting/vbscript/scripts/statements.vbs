If 1 Then WScript.Echo "a" Else WScript.Echo "b"   '=> a
If 0 Then WScript.Echo "a" : WScript.Echo "x" Else WScript.Echo "b" : WScript.Echo "c"
'=> b
'=> c
If False Then
  WScript.Echo 1
ElseIf True Then
  WScript.Echo 2   '=> 2
Else
  WScript.Echo 3
End If
For i = 3 To 1 Step -1 : s = s & i : Next
WScript.Echo s, i  '=> 321 0
For i = 1 To 0 : WScript.Echo "never" : Next
WScript.Echo i     '=> 1
For x = 1 To 2 Step 0.5 : r = r & x & " " : Next
WScript.Echo r     '=> 1 1.5 2 
For i = 1 To 10
  If i = 3 Then Exit For
Next
WScript.Echo i     '=> 3
For i = 1 To 5 : i = i + 1 : n = n + 1 : Next
WScript.Echo n, i  '=> 3 7
i = 0
Do While i < 3 : i = i + 1 : Loop
WScript.Echo i     '=> 3
Do Until i = 0 : i = i - 1 : Loop
WScript.Echo i     '=> 0
Do : i = i + 1 : Loop While i < 5
WScript.Echo i     '=> 5
Do : i = i + 1 : Loop Until i > 7
WScript.Echo i     '=> 8
Do : Exit Do : Loop
While i > 0 : i = i - 3 : Wend
WScript.Echo i     '=> -1
Select Case "b"
  Case "a" : WScript.Echo "A"
  Case "x", "b" : WScript.Echo "B"  '=> B
  Case Else : WScript.Echo "E"
End Select
name = "holiday.SCR"
Select Case LCase(Mid(name, InStrRev(name, ".") + 1))
  Case "pif", "scr" : WScript.Echo "program"  '=> program
  Case Else : WScript.Echo "other"
End Select
Select Case 9
  Case 1 : WScript.Echo "1"
  Case Else : WScript.Echo "else"   '=> else
End Select
For Each v In Array(1, "two", 3.5) : l = l & v & ";" : Next
WScript.Echo l, IsEmpty(v)  '=> 1;two;3.5; True
Class P : Public X, Y : End Class
With New P
  .X = 3 : .Y = 4
  WScript.Echo .X * .Y   '=> 12
End With
Dim m(1, 2)
m(1, 2) = "last" : m(0, 0) = "first"
For Each v In m : c = c & "[" & v & "]" : Next
WScript.Echo c     '=> [first][][][][][last]
ReDim d(2) : d(2) = 5
ReDim Preserve d(4)
WScript.Echo d(2), UBound(d)  '=> 5 4
ReDim d(1)
WScript.Echo IsEmpty(d(1))    '=> True
b = d : b(0) = "copy"
WScript.Echo IsEmpty(d(0)), b(0)  '=> True copy
Erase d
On Error Resume Next
x = UBound(d) : WScript.Echo Err.Number : Err.Clear   '=> 9
x = m(2, 0) : WScript.Echo Err.Number : Err.Clear     '=> 9
ReDim m(5) : WScript.Echo Err.Number : Err.Clear      '=> 10
x = b(-1) : WScript.Echo Err.Number : Err.Clear       '=> 9
Dim fixed(1) : fixed(0) = 1 : Erase fixed
WScript.Echo IsEmpty(fixed(0)), UBound(fixed)         '=> True 1
Dim nest : nest = Array(Array(1, 2), Array(3, 4))
nest(1)(0) = 30
WScript.Echo nest(1)(0), nest(0)(1)  '=> 30 2
Stop
WScript.Echo "end"  '=> end
