' Lists that grow, and texts that are read.
Class Guard
  Private Sub Class_Terminate : WScript.Echo "ends" : End Sub
End Class
Set l = CreateObject("System.Collections.ArrayList")
For i = 1 To 20 : l.Add i * i Mod 17 : Next
WScript.Echo l.Count, l(3), l.Item(19), TypeName(l), l.IndexOf(16), l.LastIndexOf(16), l.Contains("16")  '=> 20 16 9 ArrayList 3 12 False
l.Sort : WScript.Echo l(0), l(19)             '=> 0 16
l.Reverse : WScript.Echo l(0), l(19)          '=> 16 0
l.RemoveAt 0 : l.Remove 16 : l.Insert 0, "first" : l(1) = "second"
WScript.Echo l.Count, l(0), l(1), UBound(l.ToArray)  '=> 19 first second 18
Set c = l.Clone : l.Clear
WScript.Echo l.Count, c.Count                 '=> 0 19
l.AddRange Array("b", "A", "a", "B") : l.AddRange l : l.Sort
WScript.Echo Join(l.ToArray, "")              '=> aaAAbbBB
l.Clear
l.Add New Guard : l.Add l
l.RemoveAt 1
l.Clear : WScript.Echo "cleared"
'=> ends
'=> cleared
On Error Resume Next
l.Add 1 : l.Add "x"
l.Sort : WScript.Echo Err.Number, l(0) : Err.Clear     '=> 5 1
x = l(2) : WScript.Echo Err.Number : Err.Clear         '=> 5
l.Insert 3, 1 : WScript.Echo Err.Number : Err.Clear    '=> 5
l.AddRange 5 : WScript.Echo Err.Number : Err.Clear     '=> 13
l.Nope : WScript.Echo Err.Number : Err.Clear           '=> 438
Set files = CreateObject("Scripting.FileSystemObject")
Set words = files.OpenTextFile("words.txt", 1)
WScript.Echo words.Read(2), words.Line, words.Column, words.AtEndOfLine  '=> vi 1 3 False
words.SkipLine
WScript.Echo words.Line, words.ReadAll, words.AtEndOfStream              '=> 2 casino True
x = words.ReadLine : WScript.Echo Err.Number : Err.Clear                 '=> 62
words.Close : x = words.AtEndOfStream : WScript.Echo Err.Number : Err.Clear  '=> 52
words.WriteLine "x" : WScript.Echo Err.Number : Err.Clear                '=> 70
files.OpenTextFile "words.txt", 2 : WScript.Echo Err.Number : Err.Clear  '=> 70
files.DeleteFile "words.txt" : WScript.Echo Err.Number : Err.Clear       '=> 70
files.OpenTextFile "none.txt" : WScript.Echo Err.Number : Err.Clear      '=> 53
WScript.Echo files.FolderExists("lib"), files.GetBaseName("a/b.c.txt"), files.GetParentFolderName("a\b\c"), files.BuildPath("a", "b")  '=> True b.c a\b a\b
WScript.Echo WScript.Arguments.Count, WScript.Arguments.Named.Exists("x"), WScript.ScriptName  '=> 0 False test
For Each x In WScript.Arguments : WScript.Echo "never" : Next
