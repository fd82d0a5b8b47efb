' make_table.vbs TABLE: makes a table of two rows, and says what goes wrong.
Option Explicit
Dim schema, table
Set schema = CreateObject("OvFile.OvSchema")
schema.DoublePrecision = True
schema.Description = "Collars of the north pit"
schema.AddStringColumn "BHID", 8, "", 0
schema.AddNumericColumn "XCOLLAR", 0, 0
schema.AddNumericColumn "ZONE", 7, 1   ' 1: implicit, one value for all rows

Set table = CreateObject("OvFile.OvTable")
table.Create WScript.Arguments(0), schema
table.AddRow
table.SetColumn 1, "LK001"
table.SetColumn 2, 1250.5
table.AddRow
table.SetColumn 1, "LK002"
table.SetColumn 2, 1275.25

On Error Resume Next
table.SetColumn 2, "unknown"
If Err.Number <> 0 Then WScript.Echo Err.Source & ": " & Err.Description
On Error Goto 0

table.Close
WScript.Echo "made"
