Function Program(x)
  Dim i, words, sum
  Set words = CreateObject("Scripting.Dictionary")
  For i = 1 To 200000 : words("key" & i) = i : Next
  For i = 1 To 200000
    If words.Exists("key" & i) Then sum = (sum + words("key" & i)) Mod 1000003
  Next
  Program = sum
End Function
