Dim words(199999)

Sub Sort(first, last)
  Dim i, j, pivot, kept
  i = first
  j = last
  pivot = words((first + last) \ 2)
  Do While i <= j
    Do While words(i) < pivot
      i = i + 1
    Loop
    Do While pivot < words(j)
      j = j - 1
    Loop
    If i <= j Then
      kept = words(i)
      words(i) = words(j)
      words(j) = kept
      i = i + 1
      j = j - 1
    End If
  Loop
  If first < j Then Sort first, j
  If i < last Then Sort i, last
End Sub

Function Program(x)
  Dim i, number
  number = 12345
  For i = 0 To 199999
    number = (number * 4093 + 7919) Mod 524287
    words(i) = "word" & number
  Next
  Sort 0, 199999
  number = 0
  For i = 1 To 199999
    If words(i - 1) <= words(i) Then number = number + 1
  Next
  Program = number
End Function
