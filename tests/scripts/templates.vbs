' Makes tables from the templates of the standard kinds.
Option Explicit
Dim folder, checks
folder = WScript.Arguments(0)
checks = 0

Sub Check(what, expected, actual)
  checks = checks + 1
  If expected <> actual Then WScript.Echo "FAILED " & what & ": expected " & expected & ", got " & actual
End Sub

Function Names(schema)
  Dim i
  Names = ""
  For i = 1 To schema.FieldCount
    If i > 1 Then Names = Names & " "
    Names = Names & schema.GetFieldName(i)
    If schema.IsFieldImplicit(i) Then Names = Names & "*"
  Next
End Function

Dim model, table, schema
Set model = CreateObject("OvFile.OvSchema")
model.CreateModelFile 10, 10, 5, 1000, 2000, -50, 0, 99, 0, 49, 0, 19
Check "model", "IJK XC YC ZC XINC YINC ZINC XMORIG* YMORIG* ZMORIG* NX* NY* NZ*", Names(model)
Check "kind of model", &H40000020, model.TypeHint
Check "cells in x", 100, model.GetFieldDefault(model.GetFieldIndex("NX"))
Check "no such field", -1, model.GetFieldIndex("NOWHERE")

Set table = CreateObject("OvFile.OvTable")
table.Create folder & "\model.ovt", model
table.AddRow
table.SetColumn 1, 7
table.Close
table.Open folder & "\model.ovt", 1
Check "fields of the file", "IJK XC YC ZC XINC YINC ZINC XMORIG* YMORIG* ZMORIG* NX* NY* NZ*", Names(table.Schema)
Check "stored", 7, table.GetColumn(1)
Check "default", 10, table.GetColumn(5)
Check "implicit", -50, table.GetColumn(10)
Check "implicit count", 20, table.GetColumn(13)
table.Close

Set schema = CreateObject("OvFile.OvSchema")
schema.CreateRegularGrid 10, 10, 5, 0, 0, 0, 99, 49, 19, True
Check "grid", "IJK XINC* YINC* ZINC* XMORIG* YMORIG* ZMORIG* NX* NY* NZ*", Names(schema)
Set schema = CreateObject("OvFile.OvSchema")
schema.CreateStringsFile
Check "strings", "XP YP ZP PTN PVALUE", Names(schema)
Set schema = CreateObject("OvFile.OvSchema")
schema.CreateWfTriangleFile
Check "triangles", "PID1 PID2 PID3 TRIANGLE", Names(schema)
Check "kind of triangles", &H40000008, schema.TypeHint
Set schema = CreateObject("OvFile.OvSchema")
schema.CreateWfPointFile
Check "wireframe points", "XP YP ZP PID", Names(schema)

' A schema goes from one object to another, and either may go first.
Set schema = CreateObject("OvFile.OvSchema")
schema.CreatePointsFile
Set table = CreateObject("OvFile.OvTable")
Set table.Schema = schema
Set schema = Nothing
Check "schema put", "XPT YPT ZPT", Names(table.Schema)
Set schema = table.Schema
Set table = Nothing
Check "schema kept", "XPT YPT ZPT", Names(schema)

WScript.Echo "done " & checks
WScript.Quit 7
