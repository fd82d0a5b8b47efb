// The XML form of a schema: one line for each element, nothing escaped.
//
//   <?xml version="1.0" ?>
//   <OvDefinition precision="single" desc="assays">
//   	<OvFields>
//   		<OvField name="BHID" type="alphanumeric" length="8" default="NONE"/>
//   		<OvField name="AU" type="numeric" default="-" implicit="true"/>
//   	</OvFields>
//   </OvDefinition>
#pragma once

#include <optional>

#include "base/text.h"
#include "schema/schema_fields.h"

namespace ovf {

/// The text, its lines ended by CR and LF; nothing when it would have 2,047 characters or more. A field
/// whose type was never set leaves its element open, with the next one behind it on the same line.
std::optional<wide> schema_as_xml(const schema_fields& fields, wide_view description, bool is_double);

}  // namespace ovf
