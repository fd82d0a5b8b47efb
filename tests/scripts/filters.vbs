' Asks which rows pass a filter.
Option Explicit
Dim folder, checks
folder = WScript.Arguments(0)
checks = 0

Sub Check(what, expected, actual)
  checks = checks + 1
  If expected <> actual Then WScript.Echo "FAILED " & what & ": expected " & expected & ", got " & actual
End Sub

Function Passing(table, filter)
  table.FilterString(0) = filter
  Passing = ""
  table.GetFirstRow
  Do Until table.EOF
    If table.IsFilteredIn(0, 0) Then Passing = Passing & table.GetCurrentRow() & " "
    table.GetNextRow
  Loop
End Function

Dim schema, table, i, rocks
Set schema = CreateObject("OvFile.OvSchema")
schema.AddNumericColumn "AU", 0, 0
schema.AddStringColumn "ROCK", 8, "", 0
Set table = CreateObject("OvFile.OvTable")
table.Create folder & "\filtered.ovt", schema
rocks = Array("ORE", "WASTE", "ORE", "OXIDE")
For i = 0 To 3
  table.AddRow
  table.SetColumn 1, i * 0.75
  table.SetColumn 2, rocks(i)
Next
table.AddRow
table.SetColumn 1, schema.SpecialValueAbsent

Check "no filter", "", table.FilterString(0)
Check "all pass", "1 2 3 4 5 ", Passing(table, "")
Check "by number", "3 4 ", Passing(table, "AU >= 1.5")
Check "by text", "1 3 ", Passing(table, "ROCK = 'ORE'")
Check "by both", "3 ", Passing(table, "AU > 0 AND ROCK IN ('ORE', 'MARBLE')")
Check "kept", "AU > 0 AND ROCK IN ('ORE', 'MARBLE')", table.FilterString(1)
table.GetFirstRow
Check "out", 1, Abs(CInt(table.IsFilteredOut(0, 0)))
table.GetRowAt 3
Check "in", 0, CInt(table.IsFilteredOut(0, 0))

On Error Resume Next
table.SetFilteredIn 1
Check "not provided", 445, Err.Number
On Error GoTo 0
table.Close

WScript.Echo "done " & checks
WScript.Quit 7
