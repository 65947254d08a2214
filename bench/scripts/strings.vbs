Function Program(x)
  Dim i, text, words, count
  ReDim parts(200000)
  For i = 1 To 200000
    parts(i) = "word" & i
  Next
  text = Join(parts, " ")
  For i = 1 To Len(text)
    If Mid(text, i, 1) = " " Then count = count + 1
  Next
  i = InStr(text, "word199999")
  text = Replace(text, "word", "w")
  Program = count + i + Len(UCase(text))
End Function
