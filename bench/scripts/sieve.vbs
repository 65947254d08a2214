Function Program(x)
  Dim i, j, count, last
  last = 1000000
  ReDim sieve(last)
  For i = 2 To last : sieve(i) = True : Next
  i = 2
  Do While i * i <= last
    If sieve(i) Then
      For j = i * i To last Step i : sieve(j) = False : Next
    End If
    i = i + 1
  Loop
  For i = 2 To last
    If sieve(i) Then count = count + 1
  Next
  Program = count
End Function
