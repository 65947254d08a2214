Sub T(x) : WScript.Echo TypeName(x) & " " & CStr(x) : End Sub
T 32767 + 1             '=> Long 32768
T 2147483647 + 1        '=> Double 2147483648
T CByte(255) + CByte(1) '=> Integer 256
T CByte(1) + CByte(1)   '=> Byte 2
T CByte(1) - CByte(2)   '=> Integer -1
T 200 * 200             '=> Long 40000
T 65536 * 65536         '=> Double 4294967296
T True + True           '=> Integer -2
T Empty + Empty         '=> Integer 0
T 1 / 2                 '=> Double 0.5
T 4 / 2                 '=> Double 2
T 7 \ 2                 '=> Integer 3
T 7.5 \ 2               '=> Long 4
T 2.5 Mod 2             '=> Long 0
T -7 \ 2                '=> Integer -3
T -7 Mod 3              '=> Integer -1
T 2 ^ 3                 '=> Double 8
T "3" + 4               '=> Double 7
T "3" + "4"             '=> String 34
T "3" * "4"             '=> Double 12
T -"3"                  '=> Double -3
T CSng(1.5) + 1         '=> Single 2.5
T CSng(1.5) + 100000    '=> Double 100001.5
T CCur(1.5) + 1         '=> Currency 2.5
T CCur(2) * 1.5         '=> Double 3
T #1/2/2020# + 1        '=> Date 1/3/2020
T #1/2/2020# - #1/1/2020# '=> Double 1
T 1 And 3               '=> Integer 1
T True And 3            '=> Integer 3
T True And False        '=> Boolean False
T Not 0                 '=> Integer -1
T Not Empty             '=> Long -1
T 1.5 Or 0              '=> Long 2
T CByte(12) And CByte(10) '=> Byte 8
T - -32768              '=> Long 32768
T Abs(-5)               '=> Integer 5
T Int(-2.5)             '=> Double -3
T Fix(-2.5)             '=> Double -2
T CInt(2.5)             '=> Integer 2
T CInt(3.5)             '=> Integer 4
T CLng("12")            '=> Long 12
T Round(2.5)            '=> Double 2
T Round(3.14159, 2)     '=> Double 3.14
T Round(-1.5)           '=> Double -2
i = 32767 : i = i + 1
T i                     '=> Long 32768
For i = 32766 To 32768 : Next
T i                     '=> Long 32769
On Error Resume Next
x = CInt(40000) : WScript.Echo Err.Number : Err.Clear '=> 6
x = CByte(256) : WScript.Echo Err.Number : Err.Clear  '=> 6
x = 1 \ 0 : WScript.Echo Err.Number : Err.Clear       '=> 11
x = 1E308 * 10 : WScript.Echo Err.Number : Err.Clear  '=> 6
x = Null + 1 : WScript.Echo IsNull(x), Err.Number     '=> True 0
x = "a" + 1 : WScript.Echo Err.Number                 '=> 13
x = Array(1) + 1 : WScript.Echo Err.Number            '=> 13
' Currency is exact, from texts too.
WScript.Echo CCur("900000000000000.1234") * CCur(1), CCur("-922337203685477.5808")  '=> 900000000000000.1234 -922337203685477.5808
WScript.Echo CCur("123456.789") * CCur("98765.4321"), CCur("-0.0003") * CCur("0.5"), CCur("0.0001") * CCur("0.5")  '=> 12193263111.2635 -0.0002 0
