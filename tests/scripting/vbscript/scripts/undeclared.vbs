' Without Option Explicit an element of a name that nothing declares is no variable yet.
On Error Resume Next
q(0) = 42 : WScript.Echo Err.Number : Err.Clear        '=> 13
x = y(0) : WScript.Echo Err.Number : Err.Clear         '=> 13
z = Array(1) : z(0) = 42 : WScript.Echo z(0), Err.Number  '=> 42 0
