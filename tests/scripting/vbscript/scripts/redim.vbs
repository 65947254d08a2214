' ReDim declares what nothing else does, even where all names are to be declared.
Option Explicit
ReDim first(3) : first(3) = "kept"
ReDim Preserve first(5)
WScript.Echo first(3), UBound(first)         '=> kept 5
Sub Local
  ReDim mine(2)
  WScript.Echo UBound(mine)
End Sub
Local                                        '=> 2
On Error Resume Next
WScript.Echo UBound(mine)
WScript.Echo Err.Number                      '=> 500
Err.Clear
ReDim Preserve never(1)
WScript.Echo Err.Number, UBound(never)       '=> 0 1
Dim fixed(2)
ReDim fixed(3)
WScript.Echo Err.Number                      '=> 10
