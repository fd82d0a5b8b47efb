// passing_rows.js TABLE FILTER: prints the numbers of the rows that pass a filter.
var table = new ActiveXObject("OvFile.OvTable");
try {
  table.Open(WScript.Arguments(0), 1);
  table.FilterString(0) = WScript.Arguments(1);
  for (table.GetFirstRow(); !table.EOF; table.GetNextRow()) {
    if (table.IsFilteredIn(0, 0)) WScript.Echo(table.GetCurrentRow());
  }
  table.Close();
} catch (error) {
  WScript.Echo(error.description);
}
