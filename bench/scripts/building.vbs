Function Program(x)
  Dim i, text
  For i = 1 To 20000
    text = text & "line " & i & vbLf
  Next
  Program = Len(text)
End Function
