' Makes, uses and lets go of a hundred thousand objects.
Option Explicit
Dim folder, table, schema, records, i, n
folder = WScript.Arguments(0)
Set schema = CreateObject("OvFile.OvSchema")
schema.CreatePointsFile
Set table = CreateObject("OvFile.OvTable")
table.Create folder & "\many.ovt", schema
table.AddRow
table.SetColumn 1, 2.5
table.Close
Set table = Nothing

n = 0
For i = 1 To 49500
  Set schema = CreateObject("OvFile.OvSchema")
  schema.AddNumericColumn "V", i, 0
  If schema.GetFieldDefault(1) = i Then n = n + 1
  Set table = CreateObject("OvFile.OvTable")
  Set table.Schema = schema
  If table.Schema.FieldCount = 1 Then n = n + 1
Next
For i = 1 To 500
  Set table = CreateObject("OvFile.OvTable")
  table.Open folder & "\many.ovt", 1
  If table.GetColumn(1) = 2.5 Then n = n + 1
  Set records = CreateObject("OvFile.OvTableADO")
  records.Open folder & "\many.ovt", 1
  If records.GetNamedColumn("XPT") = 2.5 Then n = n + 1
Next

WScript.Echo "done " & n
WScript.Quit 7
