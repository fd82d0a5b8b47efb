' Sorts and repairs a table, and deletes rows through the record set.
Option Explicit
Dim folder, checks
folder = WScript.Arguments(0)
checks = 0

Sub Check(what, expected, actual)
  checks = checks + 1
  If expected <> actual Then WScript.Echo "FAILED " & what & ": expected " & expected & ", got " & actual
End Sub

Function Numbers(table)
  Numbers = ""
  table.GetFirstRow
  Do Until table.EOF
    Numbers = Numbers & table.GetColumnAsDouble(1) & " "
    table.GetNextRow
  Loop
End Function

Dim schema, table, records, i, values, path
path = folder & "\grades.ovt"
Set schema = CreateObject("OvFile.OvSchema")
schema.AddNumericColumn "CU", 0, 0
schema.AddStringColumn "ROCK", 4, "ORE", 0
Set table = CreateObject("OvFile.OvTable")
table.Create path, schema
values = Array(3, 1, 2, 5, 4)
For i = 0 To 4
  table.AddRow
  table.SetColumn 1, values(i)
Next

table.Sort 1, True
Check "ascending", "1 2 3 4 5 ", Numbers(table)
table.Sort 1, False
Check "descending", "5 4 3 2 1 ", Numbers(table)

table.ReduceRowCountTo 4
Check "cut", "5 4 3 2 ", Numbers(table)

' A further column; the last row is not taken over.
schema.AddNumericColumn "AU", 0.5, 0
table.Repair schema
Check "columns", 3, table.Schema.FieldCount
Check "rows after repair", "5 4 3 ", Numbers(table)
table.GetFirstRow
Check "the new column's default", 0.5, table.GetColumn(3)
Check "the old column's text", "ORE ", table.GetColumn(2)
table.AddImplicitNumericColumnDouble "DENSITY", 2.75
Check "an implicit column", 4, table.Schema.FieldCount
Check "its value", 2.75, table.GetColumn(4)
table.SetColumnName 4, "SG"
Check "renamed", "SG", table.Schema.GetFieldName(4)
table.Close

Set records = CreateObject("OvFile.OvTableADO")
records.Open path, 0
Check "records", 3, records.GetRowCount()
records.DeleteRow 2
Check "after the deletion", 2, records.GetRowCount()
records.MoveFirst
Check "first", 5, records.GetColumn(1)
records.MoveNext
Check "second", 3, records.GetNamedColumn("CU")
records.SetNamedColumn "ROCK", "WSTE"
records.Update
Check "still there", 2, records.GetCurrentRow()
records.MoveNext
Check "at the end", 1, Abs(CInt(records.EOF))
records.MoveFirst
records.AddRow
Check "added", 3, records.GetRowCount()
records.Close

table.Open path, 1
Check "as the table sees it", "5 3 0 ", Numbers(table)
table.GetRowAt 2
Check "changed through the record set", "WSTE", table.GetColumnAsString(2)
table.Close

WScript.Echo "done " & checks
WScript.Quit 7
