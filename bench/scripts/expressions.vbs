Function Program(x)
  Dim i, words, count
  Set words = New RegExp
  words.Pattern = "([a-z]+)[0-9]+@([a-z]+)"
  For i = 1 To 50000
    If words.Test("some mail from user" & i & "@example") Then count = count + 1
  Next
  Program = count
End Function
