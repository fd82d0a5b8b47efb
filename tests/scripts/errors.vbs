' What a script sees of failures with On Error Resume Next.
Option Explicit
Dim folder, checks
folder = WScript.Arguments(0)
checks = 0

Sub Check(what, expected, actual)
  checks = checks + 1
  If expected <> actual Then WScript.Echo "FAILED " & what & ": expected " & expected & ", got " & actual
End Sub

Sub CheckError(what, number, source, description)
  Check what & ", number", number, Err.Number
  Check what & ", source", source, Err.Source
  Check what & ", description", description, Err.Description
  Err.Clear
End Sub

Const failed = &H80004005
Dim table, schema, records, other, value
Set table = CreateObject("OvFile.OvTable")
Set schema = CreateObject("OvFile.OvSchema")
Set records = CreateObject("OvFile.OvTableADO")
schema.CreatePointsFile

On Error Resume Next
table.Open folder & "\missing.ovt", 1
CheckError "a missing file", failed, "OvFile.OvTable.1", "File does not exist"
records.Open folder & "\missing.ovt", 1
CheckError "a missing file of the record set", failed, "OvFile.OvTableADO.1", "Error: File does not exist."
table.Create folder & "\none.ovt", Nothing
CheckError "no schema", failed, "OvFile.OvTable.1", "Empty table definition (schema)"
schema.Merge Nothing, 1
CheckError "merging nothing", failed, "OvFile.OvSchema.1", "Merge failed, invalid input"
Set other = CreateObject("OvFile.OvSchema")
other.DoublePrecision = True
schema.Merge other, 0
CheckError "merging another precision", failed, "OvFile.OvSchema.1", _
  "Merge failed, precision of both schemas should match"

table.Create folder & "\points.ovt", schema
Check "made", 0, Err.Number
table.AddRow
Check "added", 0, Err.Number
table.GetNextRow
Check "running off the end is no error", 0, Err.Number
table.GetNextRow
CheckError "beyond the end", failed, "OvFile.OvTable.1", "GetNextRow failed, current row is not valid"
table.GetFirstRow
table.SetColumn 9, 1
CheckError "no such column", failed, "OvFile.OvTable.1", "index out of range, field not found."
table.ReduceRowCountTo 5
CheckError "more rows than there are", failed, "OvFile.OvTable.1", _
  "SetRowCount failed, requested row count must not be greater than the current row count"
table.Close
table.Open folder & "\points.ovt", 1
table.SetColumn 1, 1
CheckError "read-only", failed, "OvFile.OvTable.1", "SetColumn failed, file is open in read-only mode"
table.DeleteRow 1
Check "not provided", 445, Err.Number
Err.Clear
table.Polish
Check "no such method", 438, Err.Number
Err.Clear
value = table.GetColumnAsDouble("first")
Check "no number", 13, Err.Number
Err.Clear
value = table.GetColumnAsDouble(1, 2)
Check "too many arguments", 450, Err.Number
Err.Clear
value = table.GetColumnAsDouble(1)
Check "after all that", 0, Err.Number
Check "its value", 0, value
table.Close
On Error GoTo 0

WScript.Echo "done " & checks
WScript.Quit 7
