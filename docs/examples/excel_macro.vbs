' excel_macro.vbs TABLE COLUMN: runs a macro of Excel, and prints what it writes into the sheet.
Option Explicit

' Stands for the sheet.
Class Sheet
  Public Property Let Cells(row, column, value)
    WScript.Echo "row " & row & ", column " & column & ": " & value
  End Property
End Class
Dim ActiveSheet
Set ActiveSheet = New Sheet

Sub FillColumn(path, name)
  Dim table, column, absent, row
  Set table = CreateObject("OvFile.OvTable")
  table.Open path, 1   ' 1: for reading
  column = table.Schema.GetFieldIndex(name)
  absent = table.Schema.SpecialValueAbsent
  row = 0
  table.GetFirstRow
  Do Until table.EOF
    If table.GetColumn(column) <> absent Then
      row = row + 1
      ActiveSheet.Cells(row, 1) = table.GetColumn(column)
    End If
    table.GetNextRow
  Loop
  table.Close
End Sub

FillColumn WScript.Arguments(0), WScript.Arguments(1)
