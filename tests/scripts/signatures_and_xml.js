// Signatures of tables, and the XML form of schemas.
var folder = WScript.Arguments(0);
var checks = 0;

function check(what, expected, actual) {
  checks++;
  if (expected !== actual) WScript.Echo("FAILED " + what + ": expected " + expected + ", got " + actual);
}

var xml = '<?xml version="1.0" ?>\r\n' +
    '<OvDefinition precision="extended" desc="Holes">\r\n' +
    '\t<OvFields>\r\n' +
    '\t\t<OvField name="BHID" type="alphanumeric" length="8" default="none"/>\r\n' +
    '\t\t<OvField name="AU" type="numeric" default="-"/>\r\n' +
    '\t\t<OvField name="SG" type="numeric" default="2.75" implicit="true"/>\r\n' +
    '\t</OvFields>\r\n' +
    '</OvDefinition>\r\n';
var schema = new ActiveXObject("OvFile.OvSchema");
schema.SetSchemaUsingXML(xml);
check("fields", 3, schema.FieldCount);
check("description", "Holes", schema.Description);
check("precision", true, schema.DoublePrecision);
check("type of a text", 3, schema.GetFieldType(1));
check("type of a number", 2, schema.GetFieldType(2));
check("implicit", true, schema.IsFieldImplicit(3));
check("the same text again", xml, schema.GetSchemaAsXML());

function make(name, description, first, second) {
  var definition = new ActiveXObject("OvFile.OvSchema");
  definition.Description = description;
  definition.AddNumericColumn(first, 0, 0);
  definition.AddNumericColumn(second, 0, 0);
  var table = new ActiveXObject("OvFile.OvTable");
  table.Create(folder + "\\" + name, definition);
  table.AddRow();
  table.SetColumn(definition.GetFieldIndex("A"), 1.5);
  table.SetColumn(definition.GetFieldIndex("B"), 2.25);
  return table;
}

// SHA-1 of what the two tables say, told by another program.
var one = make("one.ovt", "first", "A", "B");
var two = make("two.ovt", "second", "B", "A");
check("loose", "4ba2ccfb0f4f947e3391463e91717cecfd0a008d", one.GetLooseSignature());
check("loose of the other", "4ba2ccfb0f4f947e3391463e91717cecfd0a008d", two.GetLooseSignature());
check("tight", "17e4f6cd2444e76e6c2af8c546b3dadb59431613", one.GetTightSignature());
check("tight of the other", "5edc3138e410c0d2026d7647c015af9748c671a1", two.GetTightSignature());
check("with two digits", "7336be919e15edcbb14d4606be4ed732a3ea42e9", one.GetSignature(true, false, true, 2));
one.Close();
two.Close();

WScript.Echo("done " + checks);
WScript.Quit(7);
