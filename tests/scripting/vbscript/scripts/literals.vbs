Sub T(x) : WScript.Echo TypeName(x) & " " & CStr(x) : End Sub
T 32767       '=> Integer 32767
T 32768       '=> Long 32768
T 2147483647  '=> Long 2147483647
T 2147483648  '=> Double 2147483648
T &HFFFF      '=> Integer -1
T &HFFFF&     '=> Long 65535
T &H8000      '=> Long -32768
T &H8001      '=> Integer -32767
T &h10&       '=> Integer 16
T &HFFFFFFFF  '=> Integer -1
T &H10000     '=> Long 65536
T &O17        '=> Integer 15
x = &17
T x           '=> Integer 15
T 1.5         '=> Double 1.5
T .5          '=> Double 0.5
T 1e3         '=> Double 1000
T 1E-3        '=> Double 0.001
T #1/2/2020#  '=> Date 1/2/2020
T #13:05#     '=> Date 1:05:00 PM
T "a""b"      '=> String a"b
T True        '=> Boolean True
WScript.Echo 1 + _
  2  '=> 3
a = 1 : b = 2 : Rem nothing here
WScript.Echo a & b  '=> 12
Dim [odd name] : [odd name] = 5
WScript.Echo [ODD NAME]  '=> 5
WScript.Echo a&b '=> 12
' Words of the language after a dot, and words that are no reserved ones.
Class C
  Public Property Get Default_() : Default_ = "d" : End Property
  Public Function [Next]() : [Next] = "n" : End Function
End Class
Set o = New C
WScript.Echo o.Next  '=> n
Dim step, error, property : step = 1 : property = 2
WScript.Echo step + property  '=> 3
WScript.Echo -3^2, 2^3^2, 2^-1, -2 ^ -2  '=> 9 64 0.5 0.25
WScript.Echo 7 \ 2 * 2, 7 Mod 4 * 3, 10 - 2 - 3, 2 + 3 & 4  '=> 1 7 5 54
WScript.Echo Not 1 = 2, Not True Or True, 1 = 1 And 2 = 3  '=> True True False
WScript.Echo 1 =< 2, 1 => 2, 1 >< 2  '=> True False True
' A number may touch the word behind it.
For i=1To 2:s=s&i:Next:If s="12"Then WScript.Echo "touching"Else WScript.Echo "apart"  '=> touching
If 1=2Then x=1Else x=2
WScript.Echo x, True&1, Null&7  '=> 2 True1 7
