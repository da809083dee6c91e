#pragma once
// The JSON form of a scan result: keys are the field names in declaration order.

#include "core/json.h"
#include "scan/scan_data.h"

Json encodeJson(const ScanResult& result);
