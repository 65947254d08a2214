Function Program(x)
  Dim i, j, sum
  sum = 0
  For i = 1 To 3000
    For j = 1 To 3000
      sum = (sum + i * j) Mod 1000003
    Next
  Next
  Program = sum
End Function
