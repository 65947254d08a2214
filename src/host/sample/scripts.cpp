#include "host/sample/scripts.h"

#include "core/text/utf16.h"

namespace zrl::sample {

namespace {

constexpr Script all[] = {{"count_of", "NEVER", 1, false, R"(Function count_of(input)
	' How many lines a text has. Shared by other scripts.
	count_of = UBound(Split(input & "", vbCrLf)) + 1
End Function
)"},
                          {"field_of", "NEVER", 2, false, R"(Function field_of(input)
	' The value of the subject field of a header, in lower case; "" if there is none.
	Dim lines, i
	field_of = ""
	lines = Split(input & "", vbCrLf)
	For i = 0 To UBound(lines)
		If LCase(Left(lines(i), 8)) = "subject:" Then
			field_of = LCase(Trim(Mid(lines(i), 9)))
			Exit For
		End If
	Next
End Function
)"},
                          {"check_net", "CONNECT", 10, true, R"(Function check_net(input)
On Error Resume Next

	check_net = 0
	' A net that sent nothing but advertisements all month.
	If Left(input, 10) = "203.0.113." Then check_net = 2
End Function
)"},
                          {"check_helo", "ENVELOPE", 10, true, R"(Function check_helo(input)
On Error Resume Next

	Dim name
	check_helo = 0
	name = LCase(Trim(input))
	If Left(name, 5) = "helo " Or Left(name, 5) = "ehlo " Then
		name = Mid(name, 6)
		If InStr(name, ".") = 0 Then check_helo = 1
		If name = "localhost" Or Right(name, 15) = ".mirvan.example" Then check_helo = 5
	End If
End Function
)"},
                          {"check_sender", "ENVELOPE", 20, true, R"(Function check_sender(input)
On Error Resume Next

	Dim expression
	check_sender = 0
	Set expression = New RegExp
	expression.IgnoreCase = True
	expression.Pattern = "mail from:\s*<?[a-z]*\d{5,}@"
	' Nobody we know has five digits in a row in the name.
	If expression.Test(input) Then check_sender = 3
End Function
)"},
                          {"check_subject", "HEADER", 10, true, R"(Function check_subject(input)
On Error Resume Next

	Dim subject, word
	check_subject = 0
	subject = field_of(input)
	For Each word In Array("casino", "pills", "replica", "lottery")
		If InStr(subject, word) > 0 Then check_subject = check_subject + 2
	Next
	If Len(subject) > 110 Then check_subject = check_subject + 1
End Function
)"},
                          {"check_recipients", "HEADERENV", 10, true, R"(Function check_recipients(input)
On Error Resume Next

	Dim pieces
	pieces = Split(LCase(input), "rcpt to:")
	check_recipients = 0
	If UBound(pieces) > 20 Then check_recipients = UBound(pieces) - 20
End Function
)"},
                          {"check_links", "BODYSTREAM", 10, true, R"(Function check_links(input)
On Error Resume Next

	Dim place
	check_links = 0
	place = InStr(1, input, "http://", vbTextCompare)
	Do While place > 0
		check_links = check_links + 1
		place = InStr(place + 7, input, "http://", vbTextCompare)
	Loop
	If check_links < 10 Then check_links = 0
End Function
)"},
                          {"check_length", "BODY", 10, true, R"(Function check_length(input)
On Error Resume Next

	' Many short lines are how pictures made of letters look (größer als 400 Zeilen).
	check_length = 0
	If count_of(input) > 400 And Len(input) / count_of(input) < 12 Then check_length = 4
End Function
)"},
                          {"check_ending", "AV", 10, true, R"(Function check_ending(input)
On Error Resume Next

	Dim name
	name = LCase(Trim(input))
	Select Case Mid(name, InStrRev(name, ".") + 1)
		Case "pif", "scr", "vbs", "cpl"
			check_ending = 10
		Case "zip", "rar"
			check_ending = 1
		Case Else
			check_ending = 0
	End Select
End Function
)"},
                          {"my_first_script", "NEVER", 0, true, R"(Function my_first_script(input)
On Error Resume Next

	my_first_script=0			'set return value (always Integer)
	'msgbox input			'output Testdata


End Function 
)"}};

}  // namespace

std::string Script::stored() const {
  std::string lines;
  for (const char c : source) {
    if (c == '\n') lines += '\r';
    lines += c;
  }
  return to_utf16_bytes(lines);
}

std::span<const Script> scripts() {
  return all;
}

}  // namespace zrl::sample
