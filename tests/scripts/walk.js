// Makes a table, walks it both ways, and changes a value that another object then reads.
var folder = WScript.Arguments(0);
var checks = 0;

function check(what, expected, actual) {
  checks++;
  if (expected !== actual) WScript.Echo("FAILED " + what + ": expected " + expected + ", got " + actual);
}

var schema = new ActiveXObject("OvFile.OvSchema");
schema.CreatePointsFile();
schema.AddStringColumn("NAME", 12, "none", 0);
check("fields", 4, schema.FieldCount);
check("kind", 0x40000400, schema.TypeHint);

var table = new ActiveXObject("OvFile.OvTable");
table.Create(folder + "\\points.ovt", schema);
for (var i = 1; i <= 5; i++) {
  table.AddRow();
  table.SetColumn(1, i * 0.5);
  table.SetColumnDouble(2, i);
  table.SetColumnFloat(3, -i);
  if (i != 3) table.SetColumnString(4, "point " + i);
}
table.FlushChanges();
check("rows", 5, table.GetRowCount());

var there = "";
for (table.GetFirstRow(); !table.EOF; table.GetNextRow()) {
  there += table.GetColumn(1) + " " + table.GetColumnAsString(4).replace(/ +$/, "") + ";";
}
check("there", "0.5 point 1;1 point 2;1.5 none;2 point 4;2.5 point 5;", there);
var back = "";
for (table.GetLastRow(); !table.BOF; table.GetPreviousRow()) back += table.GetColumnAsDouble(3) + ";";
check("back", "-5;-4;-3;-2;-1;", back);
check("a flag is a truth", "boolean", typeof table.EOF);
check("names have no case", 5, table.getrowcount());

table.GetRowAt(2);
check("a number is a number", "number", typeof table.GetColumnAsDouble(1));
table.SetColumn(2, 77);
table.Close();
var other = new ActiveXObject("OvFile.OvTableADO");
other.Open(folder + "\\points.ovt", 1);
other.MoveTo(2);
check("read by another", 77, other.GetNamedColumn("YPT"));
other.Close();

WScript.Echo("done " + checks);
WScript.Quit(7);
