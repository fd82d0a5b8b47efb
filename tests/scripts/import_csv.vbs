' Makes a table of a CSV file, and walks it from the first row to the last and back.
Option Explicit
Dim folder, checks
folder = WScript.Arguments(0)
checks = 0

Sub Check(what, expected, actual)
  checks = checks + 1
  If expected <> actual Then WScript.Echo "FAILED " & what & ": expected " & expected & ", got " & actual
End Sub

Function Cell(table, column)
  Dim value
  value = table.GetColumn(column)
  If VarType(value) = vbString Then
    Cell = RTrim(value)
  ElseIf value = absent Then
    Cell = ""
  Else
    Cell = CStr(value)
  End If
End Function

Function Row(table)
  Dim i
  Row = Cell(table, 1)
  For i = 2 To table.Schema.FieldCount
    Row = Row & "," & Cell(table, i)
  Next
End Function

Dim files, csv, header, cells, i, schema, table, absent
Set files = CreateObject("Scripting.FileSystemObject")
Set csv = files.OpenTextFile(folder & "\assays.csv", 1)
header = Split(csv.ReadLine, ",")

Set schema = CreateObject("OvFile.OvSchema")
schema.DoublePrecision = True
schema.Description = "Assays from a CSV"
schema.AddStringColumn header(0), 8, "", 0
For i = 1 To UBound(header)
  schema.AddNumericColumn header(i), 0, 0
Next
absent = schema.SpecialValueAbsent
Check "fields", 4, schema.FieldCount
Check "kind", &H40001000, schema.TypeHint

Set table = CreateObject("OvFile.OvTable")
table.Create folder & "\assays.ovt", schema
Do Until csv.AtEndOfStream
  cells = Split(csv.ReadLine, ",")
  table.AddRow
  For i = 0 To UBound(cells)
    If cells(i) = "-" Then
      table.SetColumn i + 1, absent
    Else
      table.SetColumn i + 1, cells(i)
    End If
  Next
Loop
csv.Close
Check "rows written", 3, table.GetRowCount()
table.Close
Set table = Nothing

Set table = CreateObject("OvFile.OvTable.1")
table.Open folder & "\assays.ovt", 1
Check "read-only schema", 1, Abs(CInt(table.Schema.ReadOnly))
Check "description", "Assays from a CSV", table.Schema.Description
Check "linked", 0, CInt(table.IsLinked)

Dim there, back
there = ""
table.GetFirstRow
Do Until table.EOF
  there = there & Row(table) & ";"
  table.GetNextRow
Loop
Check "there", "DH001,0,1.5,0.25;DH001,1.5,3,;DH002,0,2,12.125;", there

back = ""
table.GetLastRow
Do Until table.BOF
  back = back & Row(table) & ";"
  table.GetPreviousRow
Loop
Check "back", "DH002,0,2,12.125;DH001,1.5,3,;DH001,0,1.5,0.25;", back

table.GetRowAt 2
Check "current row", 2, table.GetCurrentRow()
Check "as double", 3, table.GetColumnAsDouble(3)
Check "as text", "DH001", RTrim(table.GetColumnAsString(1))
Check "smallest", 0, table.GetColumnMin(2)
Check "largest", 12.125, table.GetColumnMax(4)
table.Close

WScript.Echo "done " & checks
WScript.Quit 7
