' print_column.vbs TABLE COLUMN: prints a column, a line for each row.
Option Explicit
Dim table, column
Set table = CreateObject("OvFile.OvTable")
table.Open WScript.Arguments(0), 1   ' 1: for reading
column = table.Schema.GetFieldIndex(WScript.Arguments(1))   ' -1: no such column
table.GetFirstRow
Do Until table.EOF
  WScript.Echo table.GetColumn(column)
  table.GetNextRow
Loop
table.Close
