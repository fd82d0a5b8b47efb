// What a script sees of failures with try and catch.
var folder = WScript.Arguments(0);
var checks = 0;

function check(what, expected, actual) {
  checks++;
  if (expected !== actual) WScript.Echo("FAILED " + what + ": expected " + expected + ", got " + actual);
}

function fails(what, message, body) {
  var caught = null;
  try {
    body();
  } catch (e) {
    caught = e;
  }
  check(what + " is an error", true, caught !== null);
  if (caught === null) return;
  check(what + ", number", 0x80004005 | 0, caught.number | 0);
  check(what + ", message", message, caught.message);
}

var table = new ActiveXObject("OvFile.OvTable");
var schema = new ActiveXObject("OvFile.OvSchema");
schema.CreatePointsFile();
fails("a missing file", "File does not exist", function () { table.Open(folder + "\\missing.ovt", 0); });
fails("merging nothing", "Merge failed, invalid input", function () { schema.Merge(null, 0); });
var other = new ActiveXObject("OvFile.OvSchema");
other.DoublePrecisionFlag = 1;
fails("merging another precision", "Merge failed, precision of both schemas should match",
      function () { schema.Merge(other, 1); });
table.Create(folder + "\\points.ovt", schema);
fails("an empty table", "index out of bounds", function () { table.GetColumn(1); });
table.AddRow();
fails("no such column", "index out of range, field not found.", function () { table.GetColumn(4); });
table.Close();
var records = new ActiveXObject("OvFile.OvTableADO");
records.Open(folder + "\\points.ovt", 0);
fails("no such name", "Error: GettNamedColumn failed, no column with given name.",
      function () { records.GetNamedColumn("POEM"); });
fails("no such row", "Error: DeleteRow failed, invalid row index.", function () { records.DeleteRow(2); });
records.Close();

WScript.Echo("done " + checks);
WScript.Quit(7);
