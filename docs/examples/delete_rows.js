// delete_rows.js TABLE COLUMN VALUE: deletes the rows with that text in the column.
var records = new ActiveXObject("OvFile.OvTableADO");
records.Open(WScript.Arguments(0), 0);
for (var row = records.GetRowCount(); row >= 1; row--) {
  records.MoveTo(row);
  var text = records.GetNamedColumn(WScript.Arguments(1)).replace(/ +$/, "");
  if (text == WScript.Arguments(2)) records.DeleteRow(row);
}
WScript.Echo(records.GetRowCount() + " rows left");
records.Close();
